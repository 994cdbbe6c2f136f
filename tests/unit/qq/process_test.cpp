// SYSTEMQQ, RUNQQ, SLEEPQQ, BEEPQQ and the environment routines, called as Fortran calls them.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

std::int32_t call(std::int32_t (*routine)(const char*, std::size_t), const std::string& text) {
    return routine(text.data(), text.size());
}

class Commands : public tarvo_test::ScratchDirTest {};

TEST_F(Commands, SystemqqAnswersWhetherTheCommandRanAndRestoresSignals) {
    EXPECT_TRUE(call(systemqq_, "exit 3") == 1 && call(systemqq_, "echo hi > out   ") == 1 && read_file("out") == "hi\n");
    struct sigaction action {};
    sigaction(SIGINT, nullptr, &action);
    sigset_t mask;
    sigprocmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_TRUE(action.sa_handler == SIG_DFL && !sigismember(&mask, SIGCHLD));
}

TEST_F(Commands, RunqqQuotesTheProgramAndPassesTheArgumentsAsWritten) {
    write_file("my prog", "#!/bin/sh\nprintf '%s|' \"$@\" > args\nexit \"$1\"\n", 0755);
    const auto run = [](const std::string& program, const std::string& arguments) {
        return runqq_(program.data(), arguments.data(), program.size(), arguments.size());
    };
    EXPECT_TRUE(run("./my prog", "0 'b c'   ") == 0 && read_file("args") == "0|b c|");
    EXPECT_TRUE(run("./my prog  ", "7") == -1 && run("./my prog", "   ") == -1 && read_file("args") == "|");
    base::testing::fail_allocations_after(1);  // the name copied, no room for the command
    EXPECT_EQ(run("./my prog", "0"), -1);
    base::testing::allow_allocations();
    EXPECT_EQ(base::testing::last_recorded_error(), ENOMEM);
}

TEST(Sleepqq, WaitsTheMillisecondsAndNotForNegativeOnes) {
    const auto elapsed_ms = [](std::int32_t duration) {
        const auto start = std::chrono::steady_clock::now();
        sleepqq_(&duration);
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    EXPECT_TRUE(elapsed_ms(-5) < 5 && elapsed_ms(INT32_MIN) < 5);
    const double waited = elapsed_ms(1250);  // over a second: the seconds part counts
    EXPECT_TRUE(waited >= 1250 && waited < 2500) << waited;
    tarvo_test::CapturedOutput out(1);
    beepqq_();
    EXPECT_EQ(out.text(), "\a");
}

TEST(Environment, SetThenGetStoresCutsAndReportsCounts) {
    const auto get = [](std::size_t length) {
        std::string value(length, 'x');
        const std::int32_t n = getenvqq_("TARVO_QQ  ", value.data(), 10, length);
        return value + std::to_string(n) + "/" + std::to_string(base::testing::last_recorded_error());
    };
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(get(4), "    0/0");
    EXPECT_TRUE(call(setenvqq_, "TARVO_QQ=value  ") == 1 && get(7) == "value  5/0" && get(3) == "val3/22");
    EXPECT_TRUE(call(setenvqq_, "TARVO_QQ=") == 1 && std::getenv("TARVO_QQ") == std::string());  // empty, still set
    EXPECT_EQ(call(setenvqq_, "TARVO_QQ=a=b"), 0);  // the last "=" ends the name: "TARVO_QQ=a" is refused
    unsetenv("TARVO_QQ");
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_TRUE(call(setenvqq_, "PATH") == 0 && base::testing::last_recorded_error() == EINVAL);
    EXPECT_EQ(establishqq_(), 0);
}

}  // namespace
