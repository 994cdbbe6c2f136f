// Command line, start time, exit and abort of the run-time.
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "runtime/cmdline.h"
#include "base/record.h"
#include "runtime/process.h"
#include "runtime/units.h"
#include "support/support.h"
#include <tarvo/runtime.h>

namespace {

using tarvo_test::FString;

TEST(CommandLine, CommandNameIsWordZero) {
    ASSERT_GE(runtime::for_nargs(), 1);
    FString word(512);
    std::int32_t length = 0, zero = 0;
    runtime::for_getarg(&zero, word.data(), &length, word.size());
    EXPECT_EQ(word.trimmed(), program_invocation_name);
    EXPECT_EQ(length, static_cast<std::int32_t>(std::strlen(program_invocation_name)));
}

TEST(CommandLine, ShortBufferKeepsTheFullLength) {
    FString word(2, 'x');
    std::int32_t length = 0, zero = 0;
    runtime::for_getarg(&zero, word.data(), &length, word.size());
    EXPECT_EQ(word.text, std::string(program_invocation_name, 2));
    EXPECT_EQ(length, static_cast<std::int32_t>(std::strlen(program_invocation_name)));
}

TEST(CommandLine, MissingWordsGiveMinusOneAndBlanks) {
    FString word(8, 'x');
    std::int32_t length = 0;
    std::int32_t past = runtime::for_nargs(), negative = -1;
    runtime::for_getarg(&past, word.data(), &length, word.size());
    EXPECT_EQ(length, -1);
    EXPECT_EQ(word.text, "        ");
    runtime::for_getarg(&negative, word.data(), &length, word.size());
    EXPECT_EQ(length, -1);
}

// Re-runs this test program with extra words; the test then checks them in the new
// process (run alone, it checks the plain command line).
TEST(CommandLine, WordsOfAFreshProgram) {
    if (runtime::for_nargs() == 4) {
        FString word(16);
        std::int32_t length = 0, two = 2, three = 3;
        runtime::for_getarg(&two, word.data(), &length, word.size());
        EXPECT_EQ(word.trimmed(), "alpha beta");
        runtime::for_getarg(&three, word.data(), &length, word.size());
        EXPECT_EQ(length, 0);
        EXPECT_EQ(word.text, std::string(16, ' '));
        return;
    }
    const int status = tarvo_test::run_in_child([] {
        execl("/proc/self/exe", "/proc/self/exe", "--gtest_filter=CommandLine.WordsOfAFreshProgram",
              "alpha beta", "", nullptr);
        return 99;
    });
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(StartTime, IsThisProcessesAndBeforeNow) {
    const double start = runtime::for__process_start_time();
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    EXPECT_LE(start, static_cast<double>(now.tv_sec) + 1.0);
    EXPECT_GT(start, static_cast<double>(now.tv_sec) - 120.0);  // this test process is young
    EXPECT_NEAR(runtime::for__process_start_time(), start, 0.02);
    const double elapsed = runtime::for_since_epoch_t(&start);
    EXPECT_GE(elapsed, -0.02);  // tick resolution of the start
    EXPECT_LT(elapsed, 120.0);
}

TEST(StartTime, ChildStartsLaterThanItsParent) {
    const double parent = runtime::for__process_start_time();
    usleep(50 * 1000);
    const int status = tarvo_test::run_in_child([parent] {
        // A forked child is a new process with its own start.
        return runtime::for__process_start_time() >= parent + 0.03 ? 0 : 1;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST(ProgramEnd, ExitUsesTheStatusOrZero) {
    const std::int32_t seven = 7;
    EXPECT_EXIT(runtime::for_exit(&seven), ::testing::ExitedWithCode(7), "");
    EXPECT_EXIT(runtime::for_exit(nullptr), ::testing::ExitedWithCode(0), "");
}

TEST(ProgramEnd, AbortPrintsTheMessageAndRaisesSigabrt) {
    const char message[] = "abort: stopped by test";
    EXPECT_EXIT(runtime::for_abort(message, sizeof message - 1), ::testing::KilledBySignal(SIGABRT),
                "abort: stopped by test\n");
}

TEST(ErrorRecorder, KeepsTheLastNumber) {
    base::for_errsns_load(0, 42, 0, 0, 0);
    base::for_errsns_load(1, 7, 2, 3, 4);
    EXPECT_EQ(base::testing::last_recorded_error(), 7);
}

TEST(Stand_ins, IntermediateEstablishAnswersNoAndVersionIsOne) {
    EXPECT_EQ(runtime::for__intermediate_establish(), 0);
    EXPECT_EQ(for_mabrel_version_(), 1);
}

}  // namespace
