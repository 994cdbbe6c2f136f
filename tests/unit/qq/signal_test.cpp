// SIGNALQQ and RAISEQQ with real signals (each case in a child process), and MATHERRQQ.
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <string>
#include <tuple>

#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using tarvo_test::run_in_child;

// What the Fortran procedure received: both arguments by value, as a Fortran procedure with
// VALUE dummies receives them.
volatile std::int32_t got_number = 0;
volatile std::intptr_t got_detail = 0;
volatile int calls = 0;
void record(std::int32_t number, std::intptr_t detail) {
    got_number = number;
    got_detail = detail;
    calls = calls + 1;
}

std::int32_t install(std::int32_t qq) { return signalqq_(&qq, reinterpret_cast<void (*)()>(record)); }
std::int32_t raise_qq(std::int32_t qq) { return raiseqq_(&qq); }

// A floating-point exception with the given code, as the kernel would send it.
void send_fpe(int code) {
    siginfo_t info{};
    info.si_signo = SIGFPE;
    info.si_code = code;
    syscall(SYS_rt_tgsigqueueinfo, getpid(), gettid(), SIGFPE, &info);
}

TEST(Signalqq, RaisedSignalsReachTheProcedureWithTheQqNumber) {
    const int status = run_in_child([] {
        const std::int32_t numbers[] = {2, 4, 11, 15, 17, 22};
        for (const std::int32_t qq : numbers) {
            if (install(qq) != 0 || raise_qq(qq) != 0 || got_number != qq || got_detail == 0) return qq;
        }
        // QQ 16 and 20 share SIGUSR1: the first pair decides, so 20 reaches 16's procedure.
        if (install(16) != 0 || raise_qq(20) != 0 || got_number != 16) return 16;
        struct sigaction action {};
        sigaction(SIGUSR1, nullptr, &action);
        const int flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
        if ((action.sa_flags & flags) != flags || !sigisemptyset(&action.sa_mask)) return 50;
        return calls == 7 ? 0 : 51;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(Signalqq, FloatingPointExceptionsCarrySubCodes) {
    const int status = run_in_child([] {
        if (install(8) != 0 || raise_qq(8) != 0 || got_number != 8 || got_detail != -1) return 1;  // sent, not trapped
        const struct {
            int code;
            std::intptr_t sub;
        } cases[] = {{FPE_FLTDIV, 131}, {FPE_FLTOVF, 132}, {FPE_FLTUND, 133}, {FPE_FLTRES, 134},
                     {FPE_FLTINV, 129}, {FPE_INTDIV, -1}};
        for (const auto& c : cases) {
            send_fpe(c.code);
            if (got_number != 8 || got_detail != c.sub) return 10 + c.code;
        }
        return 0;
    });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(Signalqq, AnEmptyEntryIsNotCalled) {
    // QQ 20 alone: SIGUSR1 finds QQ 16's empty entry and returns; the process lives on.
    const int status = run_in_child([] { return install(20) == 0 && raise_qq(20) == 0 && calls == 0 ? 0 : 1; });
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

TEST(Raiseqq, UnknownNumbersAndTheProbe) {
    for (const std::int32_t qq : {1, 3, 9, 21, 23, 30, 64, -2}) EXPECT_EQ(raise_qq(qq), -1) << qq;
    EXPECT_EQ(raise_qq(0), 0);  // signal 0: only checks the process
    for (const std::int32_t qq : {9, 0, 1, 20000}) EXPECT_EQ(install(qq), -1) << qq;
    const int status = run_in_child([] { return raise_qq(22); });
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT) << status;
}

TEST(Matherrqq, PrintsTheNameAndTheTextOfTheErrorType) {
    // name, length, type in, printed, type out; RETCODE is always 0.
    const std::tuple<std::string, std::int16_t, std::int32_t, std::string, std::int32_t> cases[] = {
        {"SQRT", 4, 9, "SQRT: Unknown error\n", 0},
        {"EXPONENT", 3, 3, "EXP: Overflow error\n", 3},
        {"LOG   ", 6, 6, "LOG: Partial loss of precision\n", 6},
        {"X", 1, -1, "X: Unknown error\n", 0}};
    for (auto [name, length, type, printed, type_out] : cases) {
        tarvo_test::CapturedOutput out(1);
        std::int16_t retcode = 5;
        matherrqq_(name.data(), &length, &type, &retcode, name.size());
        EXPECT_TRUE(out.text() == printed && type == type_out && retcode == 0) << name;
    }
}

}  // namespace
