// SIGNAL with real signals (each in a child process) and ALARM with real time on its thread.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdint>
#include <thread>

#include "base/record.h"
#include "frame/errors.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using Clock = std::chrono::steady_clock;
using tarvo_test::run_in_child;

std::atomic<int> handled{0};
std::atomic<std::int32_t> handled_number{0};

void fortran_handler(std::int32_t* signum) {
    handled_number = *signum;
    ++handled;
}

std::intptr_t set(std::int32_t signum, std::int32_t flag) { return signal_(&signum, fortran_handler, &flag); }

// The child's exit status: 0, or the number of the first check that failed.
int exit_status_of(const std::function<int()>& checks) {
    const int status = run_in_child(checks);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + status;
}

TEST(Signal, FortranHandlerStaysInstalledAndGetsTheNumberByReference) {
    EXPECT_EQ(exit_status_of([] {
                  if (set(SIGUSR1, -1) != 0) return 1;  // the default was in place
                  raise(SIGUSR1);
                  raise(SIGUSR1);
                  if (handled != 2 || handled_number != SIGUSR1) return 2;
                  struct sigaction now {};
                  sigaction(SIGUSR1, nullptr, &now);
                  if ((now.sa_flags & SA_RESTART) == 0 || (now.sa_flags & SA_RESETHAND) != 0) return 3;
                  const std::intptr_t trampoline = set(SIGUSR1, 1);  // ignore from now on
                  if (trampoline == 0 || trampoline == 1 || trampoline == -1) return 4;
                  raise(SIGUSR1);
                  if (handled != 2 || set(SIGUSR1, 0) != 1 || set(SIGUSR1, -1) != 0) return 5;
                  if (set(SIGUSR1, -5) != trampoline) return 6;
                  if (set(NSIG - 1, -1) != 0) return 7;  // the highest signal number
                  raise(NSIG - 1);
                  if (handled != 3 || handled_number != NSIG - 1) return 8;
                  return 0;
              }),
              0);
    EXPECT_EXIT(
        {
            set(SIGUSR1, -1);
            set(SIGUSR1, 0);
            raise(SIGUSR1);
        },
        ::testing::KilledBySignal(SIGUSR1), "");
}

TEST(Signal, RefusedNumbersAndFlags) {
    std::int32_t cell = 5;
    frame::set_portlib_local_errno(cell);
    for (std::int32_t bad : {NSIG, NSIG + 1, -1, INT_MIN}) {
        errno = 0;
        EXPECT_EQ(set(bad, -1), 22) << bad;
        EXPECT_EQ(errno, EINVAL);
    }
    EXPECT_EQ(set(SIGUSR2, 2), 22);
    EXPECT_EQ(base::last_recorded_error(), EINVAL);
    EXPECT_EQ(ierrno_(), cell);  // this routine leaves IERRNO alone
    // Numbers the system refuses come back as -1, not as an error number.
    for (std::int32_t refused : {0, SIGKILL, SIGSTOP, 32, 33}) EXPECT_EQ(set(refused, 0), -1) << refused;
}

// --- ALARM ---

std::atomic<int> fired{0};
std::atomic<pid_t> fired_on{0};
std::atomic<bool> wrong_procedure_ran{false};

void on_alarm() {
    fired_on = gettid();
    ++fired;
}
void wrong_procedure() { wrong_procedure_ran = true; }

// Waits for the condition at most `seconds`; the time it took.
template <class Condition>
double wait_for(Condition done, double seconds) {
    const auto start = Clock::now();
    while (!done() && std::chrono::duration<double>(Clock::now() - start).count() < seconds)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return std::chrono::duration<double>(Clock::now() - start).count();
}

std::int32_t alarm_in(std::int32_t seconds, void (*proc)()) { return alarm_(&seconds, proc); }

TEST(Alarm, FiresOnceOnItsOwnThreadWhileLaterRequestsAreIgnored) {
    EXPECT_EQ(alarm_in(0, wrong_procedure) + alarm_in(-3, wrong_procedure), 0);
    const int before = fired;
    const auto start = Clock::now();
    EXPECT_EQ(alarm_in(2, on_alarm), 0);  // 0 also proves the requests above set nothing
    const std::int32_t left = alarm_in(10, wrong_procedure);
    EXPECT_TRUE(left == 2 || left == 1) << left;  // elapsed time is rounded up to a second
    EXPECT_GE(alarm_in(0, wrong_procedure), 1);   // not cancelled either
    wait_for([&] { return fired > before; }, 5);
    const double after = std::chrono::duration<double>(Clock::now() - start).count();
    EXPECT_EQ(fired, before + 1);
    EXPECT_GT(after, 1.9);
    EXPECT_LT(after, 4.0);
    EXPECT_NE(fired_on, gettid());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(fired, before + 1);
    EXPECT_FALSE(wrong_procedure_ran);
    EXPECT_EQ(alarm_in(0, wrong_procedure), 0);  // idle again
}

std::atomic<int> rearmed{0};
std::atomic<pid_t> rearm_threads[2];
std::atomic<std::int32_t> rearm_result{-1};

void rearming_procedure() {
    const int n = rearmed++;
    rearm_threads[n] = gettid();
    if (n == 0) rearm_result = alarm_in(1, rearming_procedure);
}

TEST(Alarm, ProcedureMayRearmAndOneThreadServesEveryAlarm) {
    EXPECT_EQ(alarm_in(1, rearming_procedure), 0);
    wait_for([] { return rearmed == 2; }, 5);
    ASSERT_EQ(rearmed, 2);
    EXPECT_EQ(rearm_result, 0);
    EXPECT_EQ(rearm_threads[0], rearm_threads[1]);
    // A new alarm after the last one fired wakes the same thread.
    const int before = fired;
    EXPECT_EQ(alarm_in(1, on_alarm), 0);
    wait_for([&] { return fired > before; }, 4);
    EXPECT_EQ(fired, before + 1);
    EXPECT_EQ(fired_on, rearm_threads[0]);
}

TEST(Alarm, ForkedChildStartsIdleWithATimerThreadOfItsOwn) {
#if defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the thread checker does not follow threads started after a multi-threaded fork";
#else
    const int before = fired;
    ASSERT_EQ(alarm_in(2, on_alarm), 0);
    EXPECT_EQ(exit_status_of([] {
                  const int child_before = fired;
                  if (alarm_in(1, on_alarm) != 0) return 1;  // the parent's alarm is not pending here
                  wait_for([&] { return fired > child_before; }, 4);
                  return fired == child_before + 1 && fired_on != gettid() ? 0 : 2;
              }),
              0);
    wait_for([&] { return fired > before; }, 4);
    EXPECT_EQ(fired, before + 1);
#endif
}

}  // namespace
