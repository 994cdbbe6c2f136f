// Signals of the POSIX binding: Fortran procedures as handlers through sigaction, signal
// sets in "sigset" instances, the mask, and waiting for signals or time.
//
// The host calls a handler with the signal number by value; a Fortran procedure takes it
// by reference. Every Fortran handler is therefore installed as posixlib_signal_handler,
// which finds the procedure in fortran_signal_handlers. A handler some other code
// installed comes back to a Fortran caller as the handle of posixlib_fortran_wrapper, a
// Fortran-convention procedure that chains to the native handler kept in
// fortran_old_handlers; given back to pxfsigaction_, it reinstalls that handler's effect.
//
// The tables are arrays of lock-free atomics: the trampolines read them in signal context,
// and threads may install handlers at once without tearing an entry. No lock is taken, so
// a handler may itself install handlers and a forked child inherits nothing held.
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstring>

#include "base/export.h"
#include "base/handler.h"
#include "frame/handles.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

// glibc adds the kernel's restorer flag to every action it reports; its <signal.h> does
// not name the flag, and <asm/signal.h>, which does, clashes with it.
#ifndef SA_RESTORER
#define SA_RESTORER 0x04000000
#endif

namespace posix {

using FortranHandler = void (*)(const std::int32_t* signal_number);
using NativeHandler = void (*)(int);

namespace {

std::atomic<FortranHandler> fortran_signal_handlers[NSIG];
std::atomic<NativeHandler> fortran_old_handlers[NSIG];
static_assert(std::atomic<FortranHandler>::is_always_lock_free && std::atomic<NativeHandler>::is_always_lock_free,
              "the trampolines read the tables in signal context");

constexpr bool dispatched(int signal_number) noexcept { return signal_number >= 1 && signal_number < NSIG; }

}  // namespace

// Installed with the host for every Fortran handler. Runs in signal context: it reads one
// atomic entry and calls the procedure, and keeps the interrupted code's errno.
void posixlib_signal_handler(int signal_number) {
    if (!dispatched(signal_number)) return;
    base::call_with_number(fortran_signal_handlers[signal_number], signal_number);
}

// Stands in for a handler other code installed: called the Fortran way, it passes the
// signal number by value to the native handler recorded for that signal.
void posixlib_fortran_wrapper(const std::int32_t* signal_number) {
    const std::int32_t n = *signal_number;
    if (!dispatched(n)) return;
    if (const NativeHandler native = fortran_old_handlers[n].load(std::memory_order_acquire)) native(n);
}

namespace {

// The binding's bit rule on the host set: signal n is bit (n - 1) mod 64 of the set's
// first 64 bits, so 0 names signal 64; numbers above 64 name no bit. The bits are handled
// directly: the host's own set operations refuse the signals it reserves (32 and 33).
std::uint64_t bit_of(std::int32_t signal_number) noexcept {
    return signal_number <= 64 ? std::uint64_t{1} << ((signal_number - 1) & 63) : 0;
}

std::uint64_t bits_of(const sigset_t& set) noexcept {
    std::uint64_t bits;
    std::memcpy(&bits, &set, sizeof bits);
    return bits;
}

void store_bits(sigset_t& set, std::uint64_t bits) noexcept { std::memcpy(&set, &bits, sizeof bits); }

// The sigset instance JSIGSET names, for the set routines.
template <class Change>
void change_set(const std::int32_t* jsigset, std::int32_t* ierror, Change change) noexcept {
    auto* instance = resolve_instance<SigsetInstance>(jsigset, ierror);
    if (instance == nullptr) return;
    store_bits(instance->set, change(bits_of(instance->set)));
    *ierror = 0;
}

// The native action an instance describes. False after reporting when a handle in it names
// nothing usable; *procedure receives the Fortran procedure to record, or null.
bool native_action(const SigactionInstance& instance, struct sigaction& action, FortranHandler* procedure,
                   std::int32_t* ierror) noexcept {
    *procedure = nullptr;
    if (instance.handler == 0 || instance.handler == 1) {
        action.sa_handler = reinterpret_cast<NativeHandler>(static_cast<std::intptr_t>(instance.handler));
    } else {
        void* address = frame::get_address_from_handle(instance.handler, frame::HandleTable::fixed);
        // The reserved slots of the procedure table read as the all-ones address.
        if (address == nullptr || address == reinterpret_cast<void*>(~std::uintptr_t{0})) {
            report(ierror, TARVO_ENOHANDLE, EINVAL);
            return false;
        }
        *procedure = reinterpret_cast<FortranHandler>(address);
        action.sa_handler = posixlib_signal_handler;
    }
    sigemptyset(&action.sa_mask);
    if (instance.mask != 0) {
        const auto* set = resolve_instance<SigsetInstance>(&instance.mask, ierror);
        if (set == nullptr) return false;
        action.sa_mask = set->set;
    }
    action.sa_flags = instance.flags;
    return true;
}

// The handler value a Fortran caller sees for a native handler: SIG_DFL and SIG_IGN as
// they are, a Fortran handler as its procedure handle, anything else as the wrapper's
// handle (the native handler recorded for the wrapper). False after reporting.
bool fortran_handler_of(int signal_number, NativeHandler native, std::int32_t* handler,
                        std::int32_t* ierror) noexcept {
    if (native == SIG_DFL || native == SIG_IGN) {
        *handler = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(native));
        return true;
    }
    if (native == posixlib_signal_handler) {
        const FortranHandler procedure = fortran_signal_handlers[signal_number].load(std::memory_order_acquire);
        *handler = procedure != nullptr ? frame::get_handle_from_static_address(reinterpret_cast<void*>(procedure)) : 0;
        if (procedure != nullptr && *handler == 0) {
            report(ierror, TARVO_ENOHANDLE, ENOMEM);
            return false;
        }
        return true;
    }
    *handler = frame::get_handle_from_static_address(reinterpret_cast<void*>(posixlib_fortran_wrapper));
    if (*handler == 0) {
        report(ierror, TARVO_ENOHANDLE);
        return false;
    }
    fortran_old_handlers[signal_number].store(native, std::memory_order_release);
    return true;
}

// The old action into its instance: the flags as the caller gave them (the host's own
// restorer flag removed), the mask into the instance's "sigset" if it names one, the handler.
bool store_old_action(int signal_number, const struct sigaction& old, SigactionInstance& instance,
                      std::int32_t* ierror) noexcept {
    instance.flags = old.sa_flags & ~SA_RESTORER;
    if (instance.mask != 0) {
        auto* set = resolve_instance<SigsetInstance>(&instance.mask, ierror);
        if (set == nullptr) return false;
        set->set = old.sa_mask;
    }
    return fortran_handler_of(signal_number, old.sa_handler, &instance.handler, ierror);
}

// The sigset instance of JOSIGSET in the mask routine: a handle that names nothing gives
// ENOHANDLE with errno as it was.
SigsetInstance* old_set_of(const std::int32_t* josigset, std::int32_t* ierror) noexcept {
    const int saved_errno = errno;
    auto* instance = resolve_instance<SigsetInstance>(josigset, ierror);
    if (instance == nullptr && *ierror == TARVO_ENOHANDLE) errno = saved_errno;
    return instance;
}

}  // namespace
}  // namespace posix

using posix::report;
using posix::report_host;
using posix::SigsetInstance;

// SUBROUTINE PXFSIGACTION(ISIG, JSIGACT, JOSIGACT, IERROR)
extern "C" TARVO_API void pxfsigaction_(const std::int32_t* isig, const std::int32_t* jsigact,
                                        const std::int32_t* josigact, std::int32_t* ierror) noexcept {
    const std::int32_t signal_number = *isig;
    if (signal_number < 0 || signal_number >= NSIG) return report(ierror, EINVAL, EINVAL);

    struct sigaction action {};
    posix::FortranHandler procedure = nullptr;
    if (*jsigact != 0) {
        const auto* instance = posix::resolve_instance<posix::SigactionInstance>(jsigact, ierror);
        if (instance == nullptr || !posix::native_action(*instance, action, &procedure, ierror)) return;
    }
    posix::SigactionInstance* old_instance = nullptr;
    if (*josigact != 0) {
        old_instance = posix::resolve_instance<posix::SigactionInstance>(josigact, ierror);
        if (old_instance == nullptr) return;
    }

    struct sigaction old {};
    if (::sigaction(signal_number, *jsigact != 0 ? &action : nullptr, old_instance != nullptr ? &old : nullptr) != 0)
        return report(ierror, errno);
    // A failure here leaves the new action installed and its procedure unrecorded.
    if (old_instance != nullptr && !posix::store_old_action(signal_number, old, *old_instance, ierror)) return;
    // Recorded after the host call and after the old entry was read: a signal arriving in
    // between finds the previous procedure. SIG_DFL and SIG_IGN leave the entry as it was.
    if (procedure != nullptr) posix::fortran_signal_handlers[signal_number].store(procedure, std::memory_order_release);
    *ierror = 0;
}

// SUBROUTINE PXFSIGEMPTYSET(JSIGSET, IERROR)
extern "C" TARVO_API void pxfsigemptyset_(const std::int32_t* jsigset, std::int32_t* ierror) noexcept {
    posix::change_set(jsigset, ierror, [](std::uint64_t) { return std::uint64_t{0}; });
}

// SUBROUTINE PXFSIGFILLSET(JSIGSET, IERROR) -- all 64 signals, the reserved ones included
extern "C" TARVO_API void pxfsigfillset_(const std::int32_t* jsigset, std::int32_t* ierror) noexcept {
    posix::change_set(jsigset, ierror, [](std::uint64_t) { return ~std::uint64_t{0}; });
}

// SUBROUTINE PXFSIGADDSET(JSIGSET, ISIGNO, IERROR)
// Intended, as for the delete and the test: a number above 64 changes nothing and is no error.
extern "C" TARVO_API void pxfsigaddset_(const std::int32_t* jsigset, const std::int32_t* isigno,
                                        std::int32_t* ierror) noexcept {
    posix::change_set(jsigset, ierror, [&](std::uint64_t bits) { return bits | posix::bit_of(*isigno); });
}

// SUBROUTINE PXFSIGDELSET(JSIGSET, ISIGNO, IERROR)
extern "C" TARVO_API void pxfsigdelset_(const std::int32_t* jsigset, const std::int32_t* isigno,
                                        std::int32_t* ierror) noexcept {
    posix::change_set(jsigset, ierror, [&](std::uint64_t bits) { return bits & ~posix::bit_of(*isigno); });
}

// SUBROUTINE PXFSIGISMEMBER(JSIGSET, ISIGNO, ISMEMBER, IERROR) -- ISMEMBER 1 or 0
extern "C" TARVO_API void pxfsigismember_(const std::int32_t* jsigset, const std::int32_t* isigno,
                                          std::int32_t* ismember, std::int32_t* ierror) noexcept {
    posix::change_set(jsigset, ierror, [&](std::uint64_t bits) {
        *ismember = (bits & posix::bit_of(*isigno)) != 0 ? TARVO_TRUE : TARVO_FALSE;
        return bits;
    });
}

// SUBROUTINE PXFSIGPROCMASK(IHOW, JSIGSET, JOSIGSET, IERROR) -- exported without the underscore
extern "C" TARVO_API void fortran_pxfsigprocmask(const std::int32_t* ihow, const std::int32_t* jsigset,
                                                 const std::int32_t* josigset, std::int32_t* ierror) noexcept {
    const auto* set = posix::resolve_instance<SigsetInstance>(jsigset, ierror);
    if (set == nullptr) return;
    SigsetInstance* old = nullptr;
    if (*josigset != 0 && (old = posix::old_set_of(josigset, ierror)) == nullptr) return;
    report_host(ierror, ::sigprocmask(*ihow, &set->set, old != nullptr ? &old->set : nullptr));
}

// SUBROUTINE PXFSIGPENDING(JSIGSET, IERROR)
extern "C" TARVO_API void pxfsigpending_(const std::int32_t* jsigset, std::int32_t* ierror) noexcept {
    auto* set = posix::resolve_instance<SigsetInstance>(jsigset, ierror);
    if (set != nullptr) report_host(ierror, ::sigpending(&set->set));
}

// SUBROUTINE PXFSIGSUSPEND(JSIGSET, IERROR) -- IERROR is EINTR once a handler has run
extern "C" TARVO_API void pxfsigsuspend_(const std::int32_t* jsigset, std::int32_t* ierror) noexcept {
    auto* set = posix::resolve_instance<SigsetInstance>(jsigset, ierror);
    // Intended: any handle that does not name a set, whatever it names, answers ENOHANDLE.
    if (set == nullptr) return report(ierror, TARVO_ENOHANDLE, EINVAL);
    report_host(ierror, ::sigsuspend(&set->set));
}

// SUBROUTINE PXFALARM(ISECONDS, ISECLEFT, IERROR)
extern "C" TARVO_API void pxfalarm_(const std::int32_t* iseconds, std::int32_t* isecleft, std::int32_t* ierror) noexcept {
    *isecleft = static_cast<std::int32_t>(::alarm(static_cast<unsigned>(*iseconds)));
    *ierror = 0;
}

// SUBROUTINE PXFPAUSE(IERROR) -- IERROR is EINTR once a handler has run
extern "C" TARVO_API void pxfpause_(std::int32_t* ierror) noexcept { report_host(ierror, ::pause()); }

// SUBROUTINE PXFSLEEP(ISECONDS, ISECLEFT, IERROR) -- ISECLEFT: the seconds not slept
extern "C" TARVO_API void pxfsleep_(const std::int32_t* iseconds, std::int32_t* isecleft, std::int32_t* ierror) noexcept {
    *isecleft = static_cast<std::int32_t>(::sleep(static_cast<unsigned>(*iseconds)));
    *ierror = 0;
}
