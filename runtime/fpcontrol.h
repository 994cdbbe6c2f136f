// Floating-point control: the abstract control word exchanged by controlfp, statusfp and
// clearfp, and the processor registers behind it. The word is applied to both the x87
// control word and MXCSR on both builds, so the rounding and the traps hold for x87 code
// (REAL(10), and all of the i386 build) and for SSE code alike. The state is per thread.
#pragma once

#include <cstdint>

namespace runtime::fp {

// The abstract word. A set exception bit masks (disables) its trap.
constexpr std::uint32_t kInexact = 0x1, kUnderflow = 0x2, kOverflow = 0x4, kZeroDivide = 0x8,
                        kInvalid = 0x10, kDenormal = 0x80000;
constexpr std::uint32_t kExceptions = kInexact | kUnderflow | kOverflow | kZeroDivide | kInvalid | kDenormal;
constexpr std::uint32_t kRoundMask = 0x300, kRoundDown = 0x100, kRoundUp = 0x200, kRoundChop = 0x300;
constexpr std::uint32_t kPrecisionMask = 0x30000, kPrecision53 = 0x10000, kPrecision24 = 0x20000;
constexpr std::uint32_t kInfinity = 0x40000;
// Every bit a caller can set: exceptions, rounding, precision and infinity control.
constexpr std::uint32_t kAll = 0xF031F;

// The x87 control word and status word share the exception layout; MXCSR has the same
// six flags in bits 0-5 and their masks seven bits higher.
constexpr std::uint16_t kX87Invalid = 0x01, kX87Denormal = 0x02, kX87ZeroDivide = 0x04,
                        kX87Overflow = 0x08, kX87Underflow = 0x10, kX87Inexact = 0x20;
constexpr std::uint16_t kX87Exceptions = 0x3F;
constexpr std::uint16_t kX87PrecisionMask = 0x300, kX87Precision53 = 0x200, kX87Precision64 = 0x300;
constexpr std::uint16_t kX87RoundMask = 0xC00, kX87RoundDown = 0x400, kX87RoundUp = 0x800;
constexpr std::uint16_t kX87Infinity = 0x1000;
constexpr int kMxcsrMaskShift = 7;
constexpr int kMxcsrRoundShift = 13 - 10;  // MXCSR rounding field sits 3 bits above the x87 one
constexpr std::uint32_t kMxcsrRoundMask = 0x6000;

// One exception in both layouts.
struct ExceptionBit {
    std::uint32_t abstract;
    std::uint16_t x87;
};
constexpr ExceptionBit kExceptionBits[] = {
    {kInexact, kX87Inexact},       {kUnderflow, kX87Underflow}, {kOverflow, kX87Overflow},
    {kZeroDivide, kX87ZeroDivide}, {kInvalid, kX87Invalid},     {kDenormal, kX87Denormal},
};

// Exception bits between the layouts (masks and flags alike); other bits are dropped.
constexpr std::uint16_t x87_exceptions(std::uint32_t abstract) noexcept {
    std::uint16_t x87 = 0;
    for (const ExceptionBit& e : kExceptionBits)
        if (abstract & e.abstract) x87 = static_cast<std::uint16_t>(x87 | e.x87);
    return x87;
}
constexpr std::uint32_t abstract_exceptions(std::uint32_t x87) noexcept {
    std::uint32_t abstract = 0;
    for (const ExceptionBit& e : kExceptionBits)
        if (x87 & e.x87) abstract |= e.abstract;
    return abstract;
}

// The processor registers of the calling thread.
inline std::uint16_t x87_control() noexcept {
    std::uint16_t cw;
    asm volatile("fnstcw %0" : "=m"(cw));
    return cw;
}
inline void load_x87_control(std::uint16_t cw) noexcept { asm volatile("fldcw %0" : : "m"(cw)); }
inline std::uint16_t x87_status() noexcept {
    std::uint16_t sw;
    asm volatile("fnstsw %0" : "=m"(sw));
    return sw;
}
inline void clear_x87_exceptions() noexcept { asm volatile("fnclex"); }
inline std::uint32_t mxcsr() noexcept {
    std::uint32_t v;
    asm volatile("stmxcsr %0" : "=m"(v));
    return v;
}
inline void load_mxcsr(std::uint32_t v) noexcept { asm volatile("ldmxcsr %0" : : "m"(v)); }

}  // namespace runtime::fp

namespace runtime {

// Replaces the bits of the abstract word selected by mask with those of new_word and
// returns the resulting word; controlfp(0, 0) reads it.
std::uint32_t controlfp(std::uint32_t new_word, std::uint32_t mask) noexcept;
// The accrued exception flags of the x87 unit and of MXCSR together, in the abstract layout.
std::uint32_t statusfp() noexcept;
// Clears the accrued flags of both units; returns them as they were.
std::uint32_t clearfp() noexcept;

}  // namespace runtime
