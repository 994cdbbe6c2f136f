// Signals and alarm: SIGNAL installs a Fortran subroutine as a signal handler through the
// library's trampoline; ALARM runs a Fortran subroutine once after a number of seconds on
// the library's timer thread (not by SIGALRM). The timer thread is the only thread the
// library starts.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <pthread.h>
#include <sys/times.h>

#include "base/export.h"
#include "base/handler.h"
#include "portlib/report.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using SignalProc = void (*)(std::int32_t*);
using AlarmProc = void (*)();

// --- SIGNAL ---

// The Fortran handler of each signal; read in signal context, so each entry is a
// lock-free atomic.
std::atomic<SignalProc> sigForHandlers[NSIG];

// The handler SIGNAL installs: passes the Fortran subroutine a reference to the number.
void portlib_handler(int signum) {
    if (signum <= 0 || signum >= NSIG) return;
    base::call_with_number(sigForHandlers[signum], signum);
}

// Installs the disposition with BSD semantics (the handler stays, interrupted calls
// restart) and returns the previous one as an integer: its address, 0 for the default,
// 1 for ignore, -1 when the system refuses the signal.
std::intptr_t install(int signum, void (*disposition)(int)) noexcept {
    struct sigaction action = {}, previous = {};
    action.sa_handler = disposition;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    if (sigaction(signum, &action, &previous) != 0) return -1;
    return reinterpret_cast<std::intptr_t>(previous.sa_handler);
}

// --- ALARM ---
// mutx guards every variable below. The timer thread waits on condw_freeze while no alarm
// is pending and on condw_run until the pending alarm's deadline.
pthread_mutex_t mutx = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t condw_run = PTHREAD_COND_INITIALIZER;
pthread_cond_t condw_freeze = PTHREAD_COND_INITIALIZER;
std::int32_t countdown = -1;    // seconds of the pending alarm, -1 when none is pending
std::int64_t savedTicks = 0;    // half ticks when the pending alarm was set
AlarmProc pRunProc = nullptr;
bool thread_started = false;
pthread_t hThrtead;

constexpr std::int64_t kHalfTicksPerSecond = 50;

// The processor clock's low 32 bits in half ticks (100 ticks a second, so 50 a second).
std::int64_t half_ticks() noexcept {
    return static_cast<std::uint32_t>(times(nullptr)) >> 1;
}

timespec deadline_after(std::int32_t seconds) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    now.tv_sec += seconds;
    return now;
}

// The timer thread. Each wait loops on its condition, so a spurious wake-up neither
// starts a wait without a pending alarm nor ends a countdown early.
void* alarm_callback(void*) {
    pthread_mutex_lock(&mutx);
    for (;;) {
        while (countdown == -1) pthread_cond_wait(&condw_freeze, &mutx);
        const timespec deadline = deadline_after(countdown);
        int rc = 0;
        while (rc != ETIMEDOUT) rc = pthread_cond_timedwait(&condw_run, &mutx, &deadline);
        const AlarmProc proc = pRunProc;
        countdown = -1;
        // The procedure runs without the mutex, so that it may set the next alarm itself.
        pthread_mutex_unlock(&mutx);
        if (proc != nullptr) proc();
        pthread_mutex_lock(&mutx);
    }
    return nullptr;
}

// A forked child has no timer thread and must not inherit a held mutex: it starts idle.
void prepare_fork() { pthread_mutex_lock(&mutx); }
void parent_after_fork() { pthread_mutex_unlock(&mutx); }
void child_after_fork() {
    pthread_mutex_init(&mutx, nullptr);
    pthread_cond_init(&condw_run, nullptr);
    pthread_cond_init(&condw_freeze, nullptr);
    countdown = -1;
    pRunProc = nullptr;
    thread_started = false;
}

}  // namespace

// INTEGER(POINTER_KIND) FUNCTION SIGNAL(SIGNUM, PROC, FLAG) -- FLAG < 0 installs PROC, 0
// restores the default, 1 ignores the signal; the previous disposition, -1, or 22
extern "C" TARVO_API std::intptr_t signal_(const std::int32_t* signum, void (*proc)(std::int32_t*),
                                           const std::int32_t* flag) noexcept {
    const auto number = static_cast<std::uint32_t>(*signum);
    if (number >= NSIG || *flag > 1) return portlib::report(portlib::Policy::errno_only, EINVAL);
    if (*flag < 0) {
        sigForHandlers[number].store(proc, std::memory_order_release);
        return install(static_cast<int>(number), portlib_handler);
    }
    return install(static_cast<int>(number), *flag == 0 ? SIG_DFL : SIG_IGN);
}

// INTEGER FUNCTION ALARM(SECONDS, PROC) -- 0 when an alarm was set or nothing was done,
// else the seconds left of the alarm already pending, which stays as it is
extern "C" TARVO_API std::int32_t alarm_(const std::int32_t* seconds, void (*proc)()) noexcept {
    pthread_mutex_lock(&mutx);
    const std::int64_t h = half_ticks();
    if (countdown != -1) {
        // A pending alarm can be neither replaced nor cancelled: the request is ignored.
        const std::int64_t elapsed = h > savedTicks ? h - savedTicks : savedTicks - h;
        const std::int64_t left = countdown - (elapsed + kHalfTicksPerSecond - 1) / kHalfTicksPerSecond;
        pthread_mutex_unlock(&mutx);
        return static_cast<std::int32_t>(left < 1 ? 1 : left);
    }
    if (*seconds < 1) {
        pthread_mutex_unlock(&mutx);
        return 0;
    }
    savedTicks = h;
    countdown = *seconds;
    pRunProc = proc;
    if (!thread_started) {
        static const bool fork_handlers = pthread_atfork(prepare_fork, parent_after_fork, child_after_fork) == 0;
        (void)fork_handlers;
        if (pthread_create(&hThrtead, nullptr, alarm_callback, nullptr) != 0) {
            pthread_mutex_unlock(&mutx);
            __tarvo_lib_err(TARVO_DIAG_NOTHREADS);  // ends the process
        }
        thread_started = true;
    } else {
        pthread_cond_signal(&condw_run);
    }
    pthread_mutex_unlock(&mutx);
    pthread_cond_signal(&condw_freeze);
    return 0;
}
