// Floating-point control: the QQ control and status words, which have the x87 layout. The
// 64-bit build translates them to and from the run-time's abstract word; the i386 build
// reads and loads the x87 unit itself and adds the native-convention x87 routines.
#include <cstdint>

#include "base/export.h"
#include "runtime/fpcontrol.h"
#include <tarvo/qq.h>

namespace {

using namespace runtime::fp;

#if !defined(__i386__)

std::int16_t qq_control_word(std::uint32_t word) noexcept {
    std::uint32_t cw = x87_exceptions(word) | ((word & kRoundMask) << 2);
    if (word & kPrecision53)
        cw |= kX87Precision53;
    else if (!(word & kPrecision24))
        cw |= kX87Precision64;
    if (word & kInfinity) cw |= kX87Infinity;
    return static_cast<std::int16_t>(cw);
}

// Any non-zero QQ precision field selects 64-bit: a 53-bit setting reads back as 64-bit.
// The asymmetry is intended; programs written for the 64-bit build rely on it.
std::uint32_t abstract_word(std::uint16_t cw) noexcept {
    std::uint32_t word = abstract_exceptions(cw) | ((cw & kX87RoundMask) >> 2);
    if (cw & kX87Infinity) word |= kInfinity;
    if ((cw & kX87PrecisionMask) == 0) word |= kPrecision24;
    return word;
}

std::int16_t qq_status_word() noexcept { return static_cast<std::int16_t>(x87_exceptions(runtime::statusfp())); }
void load_qq_control_word(std::int16_t cw) noexcept {
    runtime::controlfp(abstract_word(static_cast<std::uint16_t>(cw)), kAll);
}
std::int16_t qq_control_word() noexcept { return qq_control_word(runtime::controlfp(0, 0)); }

#else

std::int16_t qq_status_word() noexcept { return static_cast<std::int16_t>(x87_status()); }
void load_qq_control_word(std::int16_t cw) noexcept { load_x87_control(static_cast<std::uint16_t>(cw)); }
std::int16_t qq_control_word() noexcept { return static_cast<std::int16_t>(x87_control()); }

std::uint32_t abstract_word(std::uint16_t cw) noexcept {
    std::uint32_t word = abstract_exceptions(cw) | ((cw & kX87RoundMask) >> 2);
    if ((cw & kX87PrecisionMask) == 0) word |= kPrecision24;
    if ((cw & kX87PrecisionMask) == kX87Precision53) word |= kPrecision53;
    return word & 0xFFFFF;
}

#endif

}  // namespace

// SUBROUTINE GETCONTROLFPQQ(CONTROL), INTEGER(2) CONTROL
extern "C" TARVO_API void getcontrolfpqq_(std::int16_t* control) noexcept { *control = qq_control_word(); }
// SUBROUTINE SCWRQQ(CONTROL)
extern "C" TARVO_API void scwrqq_(std::int16_t* control) noexcept { *control = qq_control_word(); }
// SUBROUTINE SETCONTROLFPQQ(CONTROL)
extern "C" TARVO_API void setcontrolfpqq_(const std::int16_t* control) noexcept { load_qq_control_word(*control); }
// SUBROUTINE LCWRQQ(CONTROL)
extern "C" TARVO_API void lcwrqq_(const std::int16_t* control) noexcept { load_qq_control_word(*control); }
// SUBROUTINE GETSTATUSFPQQ(STATUS), INTEGER(2) STATUS
extern "C" TARVO_API void getstatusfpqq_(std::int16_t* status) noexcept { *status = qq_status_word(); }
// SUBROUTINE SSWRQQ(STATUS)
extern "C" TARVO_API void sswrqq_(std::int16_t* status) noexcept { *status = qq_status_word(); }
// SUBROUTINE CLEARSTATUSFPQQ()
extern "C" TARVO_API void clearstatusfpqq_() noexcept { runtime::clearfp(); }

#if defined(__i386__)

// unsigned int _control87(unsigned int new, unsigned int mask): only the fields mask
// selects whole are changed; the infinity bit is never changed nor reported.
extern "C" TARVO_API unsigned int _control87(unsigned int new_word, unsigned int mask) noexcept {
    std::uint16_t cw = x87_control();
    const std::uint16_t changed = x87_exceptions(mask);
    cw = static_cast<std::uint16_t>((cw & ~changed) | (x87_exceptions(new_word) & changed));
    if ((mask & kRoundMask) == kRoundMask)
        cw = static_cast<std::uint16_t>((cw & ~kX87RoundMask) | ((new_word & kRoundMask) << 2));
    if ((mask & kPrecisionMask) == kPrecisionMask) {
        std::uint16_t precision = 0;
        if ((new_word & kPrecisionMask) == kPrecision53) precision = kX87Precision53;
        if ((new_word & kPrecisionMask) == 0) precision = kX87Precision64;
        cw = static_cast<std::uint16_t>((cw & ~kX87PrecisionMask) | precision);
    }
    load_x87_control(cw);
    return abstract_word(cw);
}

// unsigned int _status87(void)
extern "C" TARVO_API unsigned int _status87() noexcept { return abstract_exceptions(x87_status()); }

// unsigned int _clear87(void): the flags as they were before clearing.
extern "C" TARVO_API unsigned int _clear87() noexcept {
    const unsigned int before = abstract_exceptions(x87_status());
    clear_x87_exceptions();
    return before;
}

// void save_fp_state(void *buf): 108 bytes; the unit is reinitialised afterwards.
extern "C" TARVO_API void save_fp_state(void* buf) noexcept { asm volatile("fnsave %0" : "=m"(*static_cast<char(*)[108]>(buf))); }
// void restore_fp_state(const void *buf)
extern "C" TARVO_API void restore_fp_state(const void* buf) noexcept {
    asm volatile("frstor %0" : : "m"(*static_cast<const char(*)[108]>(buf)));
}

#endif
