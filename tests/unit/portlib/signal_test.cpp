// SIGNAL with real signals (in child processes) and ALARM with real time on its thread.
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
#include <tarvo/portlib.h>

namespace {

using Clock = std::chrono::steady_clock;

std::atomic<int> handled{0};
std::atomic<std::int32_t> handled_number{0};

void fortran_handler(std::int32_t* signum) {
    handled_number = *signum;
    ++handled;
}

std::intptr_t set(std::int32_t signum, std::int32_t flag) { return signal_(&signum, fortran_handler, &flag); }

// Runs the checks in a child: 0, or the number of the first check that failed.
int child_status(const std::function<int()>& checks) {
    const int status = tarvo_test::run_in_child(checks);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + status;
}

TEST(Signal, FortranHandlerStaysInstalledAndGetsTheNumberByReference) {
    EXPECT_EQ(child_status([] {
                  if (set(SIGUSR1, -1) != 0) return 1;  // the default was in place
                  raise(SIGUSR1);
                  raise(SIGUSR1);
                  if (handled != 2 || handled_number != SIGUSR1) return 2;
                  struct sigaction now {};
                  sigaction(SIGUSR1, nullptr, &now);
                  if ((now.sa_flags & SA_RESTART) == 0) return 3;
                  const std::intptr_t trampoline = set(SIGUSR1, 1);  // ignore from now on
                  raise(SIGUSR1);
                  if (handled != 2 || trampoline <= 1 || set(SIGUSR1, 0) != 1 || set(SIGUSR1, -5) != 0) return 4;
                  if (set(NSIG - 1, -1) != 0 || raise(NSIG - 1) != 0 || handled_number != NSIG - 1) return 5;
                  return 0;
              }),
              0);
    EXPECT_EXIT((set(SIGUSR1, -1), set(SIGUSR1, 0), raise(SIGUSR1)), ::testing::KilledBySignal(SIGUSR1), "");
}

TEST(Signal, RefusedNumbersAndFlags) {
    frame::set_portlib_local_errno(5);
    for (std::int32_t bad : {NSIG, -1, INT_MIN}) {
        errno = 0;
        EXPECT_EQ(std::make_pair(set(bad, -1), errno), std::make_pair(std::intptr_t{22}, EINVAL)) << bad;
    }
    EXPECT_EQ(set(SIGUSR2, 2), 22);
    EXPECT_EQ(base::testing::last_recorded_error(), EINVAL);
    EXPECT_EQ(frame::portlib_local_errno(), 5);  // this routine leaves IERRNO alone
    // Numbers the system refuses come back as -1, not as an error number.
    for (std::int32_t refused : {0, SIGKILL, SIGSTOP, 32, 33}) EXPECT_EQ(set(refused, 0), -1) << refused;
}

// --- ALARM: real seconds on the timer thread ---

std::atomic<int> fired{0}, rearmed{0};
std::atomic<pid_t> fired_on{0};
std::atomic<bool> wrong_procedure_ran{false};
std::atomic<std::int32_t> rearm_result{-1};

std::int32_t alarm_in(std::int32_t seconds, void (*proc)()) { return alarm_(&seconds, proc); }
void on_alarm() {
    fired_on = gettid();
    ++fired;
}
void wrong_procedure() { wrong_procedure_ran = true; }
void rearming_procedure() {
    if (rearmed++ == 0) rearm_result = alarm_in(1, rearming_procedure);
    on_alarm();
}

// Waits until `count` passes `before` or `seconds` elapse; the seconds it took.
double wait_past(const std::atomic<int>& count, int before, double seconds) {
    const auto start = Clock::now();
    const auto elapsed = [&] { return std::chrono::duration<double>(Clock::now() - start).count(); };
    while (count <= before && elapsed() < seconds) std::this_thread::sleep_for(std::chrono::milliseconds(5));
    return elapsed();
}

TEST(Alarm, FiresOnceOnItsOwnThreadWhileLaterRequestsAreIgnored) {
    EXPECT_EQ(alarm_in(0, wrong_procedure) + alarm_in(-3, wrong_procedure), 0);
    const int before = fired;
    EXPECT_EQ(alarm_in(2, on_alarm), 0);  // 0 also shows that the requests above set nothing
    const std::int32_t left = alarm_in(10, wrong_procedure);
    EXPECT_TRUE(left == 2 || left == 1) << left;  // elapsed time is rounded up to a second
    EXPECT_GE(alarm_in(0, wrong_procedure), 1);   // nor can it be cancelled
    const double took = wait_past(fired, before, 5);
    EXPECT_TRUE(took > 1.9 && took < 4.0) << took;
    EXPECT_NE(fired_on, gettid());
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_EQ(fired, before + 1);
    EXPECT_FALSE(wrong_procedure_ran);
    EXPECT_EQ(alarm_in(0, wrong_procedure), 0);  // idle again
}

TEST(Alarm, ProcedureMayRearmAndOneThreadServesEveryAlarm) {
    const int before = fired;
    EXPECT_EQ(alarm_in(1, rearming_procedure), 0);
    wait_past(fired, before + 1, 5);
    const pid_t timer = fired_on;
    EXPECT_EQ(std::make_pair(fired.load(), rearm_result.load()), std::make_pair(before + 2, 0));
    // A new alarm after the last one fired wakes the same thread.
    EXPECT_EQ(alarm_in(1, on_alarm), 0);
    wait_past(fired, before + 2, 4);
    EXPECT_EQ(std::make_pair(fired.load(), fired_on.load()), std::make_pair(before + 3, timer));
#if !defined(__SANITIZE_THREAD__)  // the thread checker cannot follow threads after a threaded fork
    // A forked child starts idle, with no timer thread, and starts its own.
    ASSERT_EQ(alarm_in(2, on_alarm), 0);
    EXPECT_EQ(child_status([] {
                  const int child_before = fired;
                  if (alarm_in(1, on_alarm) != 0) return 1;
                  wait_past(fired, child_before, 4);
                  return fired == child_before + 1 && fired_on != gettid() ? 0 : 2;
              }),
              0);
    wait_past(fired, before + 3, 4);
    EXPECT_EQ(fired, before + 4);
#endif
}

}  // namespace
