// SYSTEMQQ, RUNQQ, SLEEPQQ, BEEPQQ and the environment routines, called as Fortran calls them.
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <string>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::FString;

std::int32_t str_call(std::int32_t (*routine)(const char*, std::size_t), const std::string& text) {
    return routine(text.data(), text.size());
}

class Commands : public tarvo_test::ScratchDirTest {};

TEST_F(Commands, SystemqqAnswersWhetherTheCommandRanNotHowItEnded) {
    EXPECT_EQ(str_call(systemqq_, "exit 3"), 1);
    EXPECT_EQ(str_call(systemqq_, "echo hi > out.txt   "), 1);
    EXPECT_EQ(read_file("out.txt"), "hi\n");
    // The caller's interrupt action and mask are as they were.
    struct sigaction action {};
    sigaction(SIGINT, nullptr, &action);
    sigset_t mask;
    sigprocmask(SIG_BLOCK, nullptr, &mask);
    EXPECT_TRUE(action.sa_handler == SIG_DFL && !sigismember(&mask, SIGCHLD));
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(str_call(systemqq_, "true"), 0);
    base::testing::allow_allocations();
}

TEST_F(Commands, RunqqQuotesTheProgramAndPassesTheArgumentsAsWritten) {
    write_file("my prog", "#!/bin/sh\nprintf '%s|' \"$@\" > args.txt\nexit \"$1\"\n", 0755);
    const auto run = [](const std::string& program, const std::string& arguments) {
        return runqq_(program.data(), arguments.data(), program.size(), arguments.size());
    };
    EXPECT_EQ(run("./my prog", "0 'b c'   "), 0);
    EXPECT_EQ(read_file("args.txt"), "0|b c|");
    EXPECT_EQ(run("./my prog  ", "7"), -1);
    EXPECT_EQ(run("./my prog", "   "), -1);  // no arguments: "exit" with an empty status fails
    EXPECT_EQ(read_file("args.txt"), "|");
    base::testing::fail_allocations_after(1);  // the name converted, no room for the command
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(run("./my prog", "0"), -1);
    base::testing::allow_allocations();
    EXPECT_EQ(base::last_recorded_error(), ENOMEM);
}

TEST(Sleepqq, WaitsTheMillisecondsAndNotForNegativeOnes) {
    const auto elapsed_ms = [](std::int32_t duration) {
        const auto start = std::chrono::steady_clock::now();
        sleepqq_(&duration);
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    };
    EXPECT_LT(elapsed_ms(-5), 5);
    EXPECT_LT(elapsed_ms(std::numeric_limits<std::int32_t>::min()), 5);
    const double waited = elapsed_ms(1250);  // more than a second: the seconds part counts
    EXPECT_TRUE(waited >= 1250 && waited < 2500) << waited;
}

TEST(Beepqq, WritesTheBellToStandardOutput) {
    tarvo_test::CapturedOutput out(1);
    beepqq_();
    EXPECT_EQ(out.text(), "\a");
}

class Environment : public ::testing::Test {
protected:
    void TearDown() override { unsetenv("TARVO_QQ"); }
    static std::string get(const std::string& name, std::size_t length, std::int32_t& stored) {
        FString value(length, 'x');
        stored = getenvqq_(name.data(), value.data(), name.size(), value.size());
        return value.text;
    }
};

TEST_F(Environment, SetThenGetStoresCutsAndReportsCounts) {
    std::int32_t n = -1;
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_TRUE(get("TARVO_QQ", 4, n) == "    " && n == 0);
    EXPECT_EQ(str_call(setenvqq_, "TARVO_QQ=a=b"), 0);  // the last "=" ends the name: "TARVO_QQ=a" is refused
    EXPECT_EQ(str_call(setenvqq_, "TARVO_QQ=value  "), 1);
    EXPECT_TRUE(get("TARVO_QQ  ", 8, n) == "value   " && n == 5 && base::last_recorded_error() == 0);
    EXPECT_TRUE(get("TARVO_QQ", 3, n) == "val" && n == 3 && base::last_recorded_error() == EINVAL);
    EXPECT_EQ(str_call(setenvqq_, "TARVO_QQ="), 1);  // empty, still set
    EXPECT_TRUE(std::getenv("TARVO_QQ") != nullptr && *std::getenv("TARVO_QQ") == '\0');
    base::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(str_call(setenvqq_, "PATH"), 0);
    EXPECT_EQ(base::last_recorded_error(), EINVAL);
    EXPECT_EQ(str_call(setenvqq_, "=x"), 0);  // the host refuses an empty name
}

TEST(DesktopStubs, DoNothingAndAnswerNo) {
    const std::int32_t prompt = 1;
    seterrormodeqq_(&prompt);
    EXPECT_EQ(establishqq_(), 0);
}

}  // namespace
