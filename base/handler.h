// Steps of the signal handlers through which the families call Fortran procedures. They run
// in signal context, so they only load an atomic and call: async-signal-safe.
#pragma once

#include <atomic>
#include <cerrno>
#include <cstdint>

namespace base {

// Keeps the interrupted code's errno across the work of a handler.
class ErrnoKept {
public:
    ErrnoKept() noexcept : saved_(errno) {}
    ~ErrnoKept() { errno = saved_; }
    ErrnoKept(const ErrnoKept&) = delete;
    ErrnoKept& operator=(const ErrnoKept&) = delete;

private:
    int saved_;
};

// Calls the Fortran procedure held in slot, if any, with a reference to the signal number.
template <class Procedure>
void call_with_number(const std::atomic<Procedure>& slot, int signal_number) noexcept {
    const Procedure procedure = slot.load(std::memory_order_acquire);
    if (procedure == nullptr) return;
    const ErrnoKept kept;
    std::int32_t number = signal_number;
    procedure(&number);
}

}  // namespace base
