// QQ signal numbers: Fortran procedures installed as handlers, signals sent to the own
// process, and the math-error message.
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "base/export.h"
#include "base/handler.h"
#include "base/fstring.h"
#include "base/memory.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {

struct SignalPair {
    std::int32_t qq;
    int host;
};

// QQ numbers and the host signals they stand for. QQ 16 and QQ 20 share SIGUSR1; the three
// zero pairs let RAISEQQ(0) probe the process.
constexpr SignalPair sigXlatTable[] = {
    {TARVO_QQ_SIGINT, SIGINT},   {TARVO_QQ_SIGILL, SIGILL},   {TARVO_QQ_SIGFPE, SIGFPE},
    {TARVO_QQ_SIGSEGV, SIGSEGV}, {TARVO_QQ_SIGTERM, SIGTERM}, {TARVO_QQ_SIGUSR1, SIGUSR1},
    {TARVO_QQ_SIGUSR2, SIGUSR2}, {TARVO_QQ_SIGUSR3, SIGUSR1}, {TARVO_QQ_SIGABRT, SIGABRT},
    {0, 0},                      {0, 0},                      {0, 0},
};
constexpr int kHandled = 9;  // the pairs SIGNALQQ installs and the handler dispatches

// The procedures receive their arguments by value: the QQ number and either the signal
// information's address or, for SIG_FPE, a sub-code.
using QQHandler = void (*)(std::int32_t, std::intptr_t);
// Written by SIGNALQQ, read in signal context: lock-free atomics are async-signal-safe.
std::atomic<QQHandler> sigQQForHandlers[kHandled];
static_assert(std::atomic<QQHandler>::is_always_lock_free);

struct FpeCode {
    int host;
    std::int32_t qq;
};
constexpr FpeCode kFpeCodes[] = {
    {FPE_FLTDIV, TARVO_QQ_FPE_ZERODIVIDE}, {FPE_FLTOVF, TARVO_QQ_FPE_OVERFLOW},
    {FPE_FLTUND, TARVO_QQ_FPE_UNDERFLOW},  {FPE_FLTRES, TARVO_QQ_FPE_INEXACT},
    {FPE_FLTINV, TARVO_QQ_FPE_INVALID},
};

std::int32_t fpe_subcode(int code) noexcept {
    for (const FpeCode& entry : kFpeCodes)
        if (entry.host == code) return entry.qq;
    return -1;
}

int index_of_qq(std::int32_t qq, int pairs) noexcept {
    for (int i = 0; i < pairs; ++i)
        if (sigXlatTable[i].qq == qq) return i;
    return -1;
}

// The one handler behind every SIGNALQQ. The first pair with the host signal decides, so
// SIGUSR1 always reaches the procedure of QQ 16, with 16: callers of QQ 20 rely on QQ 16's.
// An empty entry (QQ 20 installed without QQ 16) returns without calling.
void portlib_signalQQhandler(int sig, siginfo_t* info, void*) noexcept {
    int i = 0;
    while (i < kHandled && sigXlatTable[i].host != sig) ++i;
    if (i == kHandled) return;
    const QQHandler handler = sigQQForHandlers[i].load(std::memory_order_acquire);
    if (handler == nullptr) return;
    const base::ErrnoKept kept;
    if (sig == SIGFPE && info != nullptr)
        handler(TARVO_QQ_SIGFPE, fpe_subcode(info->si_code));
    else
        handler(sigXlatTable[i].qq, reinterpret_cast<std::intptr_t>(info));
}

constexpr const char* ErrMesArr[] = {
    "Unknown error",  "Domain error",    "Singularity error",         "Overflow error", "Underflow error", "Total loss of precision", "Partial loss of precision",
};

}  // namespace

// INTEGER(4) FUNCTION SIGNALQQ(SIGNUM, HANDLER) -- 0 when installed, -1 for an unknown number
extern "C" TARVO_API std::int32_t signalqq_(const std::int32_t* signum, void (*handler)()) noexcept {
    const int i = index_of_qq(*signum, kHandled);
    if (i < 0) return TARVO_QQ_SIG_ERR;
    struct sigaction action {};
    action.sa_sigaction = portlib_signalQQhandler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_SIGINFO | SA_NODEFER | SA_RESTART;
    sigQQForHandlers[i].store(reinterpret_cast<QQHandler>(handler), std::memory_order_release);
    sigaction(sigXlatTable[i].host, &action, nullptr);
    return 0;
}

// INTEGER(4) FUNCTION RAISEQQ(SIG) -- the result of sending it; -1 for an unknown number
extern "C" TARVO_API std::int32_t raiseqq_(const std::int32_t* sig) noexcept {
    const int i = index_of_qq(*sig, static_cast<int>(std::size(sigXlatTable)));
    if (i < 0) return TARVO_QQ_SIG_ERR;
    return kill(getpid(), sigXlatTable[i].host);
}

// SUBROUTINE MATHERRQQ(NAME, LENGTH, INFO, RETCODE) -- prints "NAME: text"; RETCODE := 0
extern "C" TARVO_API void matherrqq_(const char* name, const std::int16_t* length, std::int32_t* info,
                                     std::int16_t* retcode, std::size_t) noexcept {
    const base::Owned<char> text(base::allocCstr(name, *length));
    if (text) {
        if (info[0] < 1 || info[0] > 6) info[0] = 0;
        std::printf("%s: %s\n", text.c_str(), ErrMesArr[info[0]]);
    }
    *retcode = 0;
}
