// The abstract floating-point control word over the x87 unit and MXCSR. A change touches
// only the fields its mask selects, in both units; reading reports the unit that the
// build's REAL(4)/REAL(8) arithmetic uses for rounding, and a trap as enabled when either
// unit has it enabled.
#include "runtime/fpcontrol.h"

namespace runtime {
namespace {

using namespace fp;

#if defined(__x86_64__)
constexpr bool kSseArithmetic = true;
#else
constexpr bool kSseArithmetic = false;
#endif

// Processors that ignore the x87 infinity-control bit read it back as 0; the bit a caller
// set is then kept here, per thread like the registers.
thread_local bool kept_infinity = false;

std::uint32_t abstract_rounding(std::uint16_t x87_field) noexcept {
    return static_cast<std::uint32_t>(x87_field & kX87RoundMask) >> 2;  // 0x400 -> 0x100
}
std::uint16_t x87_rounding(std::uint32_t abstract) noexcept {
    return static_cast<std::uint16_t>((abstract & kRoundMask) << 2);
}

std::uint32_t abstract_precision(std::uint16_t cw) noexcept {
    switch (cw & kX87PrecisionMask) {
        case 0: return kPrecision24;
        case kX87Precision53: return kPrecision53;
        default: return 0;  // 64-bit, and the reserved value 0x100
    }
}
std::uint16_t x87_precision(std::uint32_t abstract) noexcept {
    if (abstract & kPrecision24) return 0;
    return (abstract & kPrecision53) ? kX87Precision53 : kX87Precision64;
}

std::uint32_t read_word() noexcept {
    const std::uint16_t cw = x87_control();
    const std::uint32_t csr = mxcsr();
    const std::uint32_t masked_x87 = abstract_exceptions(cw);
    const std::uint32_t masked_sse = abstract_exceptions(csr >> kMxcsrMaskShift);
    const std::uint16_t rounding =
        kSseArithmetic ? static_cast<std::uint16_t>((csr & kMxcsrRoundMask) >> kMxcsrRoundShift) : cw;
    std::uint32_t word = (masked_x87 & masked_sse) | abstract_rounding(rounding) | abstract_precision(cw);
    if ((cw & kX87Infinity) || kept_infinity) word |= kInfinity;
    return word;
}

}  // namespace

std::uint32_t controlfp(std::uint32_t new_word, std::uint32_t mask) noexcept {
    mask &= kAll;
    if (mask == 0) return read_word();
    const std::uint32_t target = (read_word() & ~mask) | (new_word & mask);

    std::uint16_t cw = x87_control();
    std::uint32_t csr = mxcsr();
    const std::uint16_t changed = x87_exceptions(mask);
    const std::uint16_t masked = x87_exceptions(target);
    cw = static_cast<std::uint16_t>((cw & ~changed) | (masked & changed));
    csr = (csr & ~(std::uint32_t{changed} << kMxcsrMaskShift)) |
          (std::uint32_t{static_cast<std::uint16_t>(masked & changed)} << kMxcsrMaskShift);
    if (mask & kRoundMask) {
        const std::uint16_t rounding = x87_rounding(target);
        cw = static_cast<std::uint16_t>((cw & ~kX87RoundMask) | rounding);
        csr = (csr & ~kMxcsrRoundMask) | (std::uint32_t{rounding} << kMxcsrRoundShift);
    }
    if (mask & kPrecisionMask)
        cw = static_cast<std::uint16_t>((cw & ~kX87PrecisionMask) | x87_precision(target));
    if (mask & kInfinity)
        cw = static_cast<std::uint16_t>((target & kInfinity) ? (cw | kX87Infinity) : (cw & ~kX87Infinity));

    load_x87_control(cw);
    load_mxcsr(csr);
    if (mask & kInfinity) kept_infinity = (target & kInfinity) && !(x87_control() & kX87Infinity);
    return read_word();
}

std::uint32_t statusfp() noexcept {
    return abstract_exceptions((x87_status() | mxcsr()) & kX87Exceptions);
}

std::uint32_t clearfp() noexcept {
    const std::uint32_t before = statusfp();
    clear_x87_exceptions();
    load_mxcsr(mxcsr() & ~std::uint32_t{kX87Exceptions});
    return before;
}

}  // namespace runtime
