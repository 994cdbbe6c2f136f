// Exported string entry points of the frame: trimmed lengths and unsigned comparison.
#include <cstdint>

#include "base/export.h"
#include "base/fstring.h"
#include <tarvo/frame.h>

// INTEGER FUNCTION LNBLNK(STRING)
extern "C" TARVO_API std::int32_t lnblnk_(const char* s, std::size_t len) noexcept {
    return static_cast<std::int32_t>(base::trimmed_length(s, base::signed_length(len)));
}

// INTEGER FUNCTION IPXFLENTRIM(STRING) -- reads the low 32 bits of the hidden length
extern "C" TARVO_API std::int32_t ipxflentrim_(const char* s, std::size_t len) noexcept {
    return static_cast<std::int32_t>(base::trimmed_length(s, base::low32_length(len)));
}

// INTEGER FUNCTION PXFUCOMPARE(I1, I2, ICMPR, IDIFF)
extern "C" TARVO_API std::int32_t pxfucompare_(const std::int32_t* i1, const std::int32_t* i2,
                                               std::int32_t* icmpr, std::int32_t* idiff) noexcept {
    const auto a = static_cast<std::uint32_t>(*i1);
    const auto b = static_cast<std::uint32_t>(*i2);
    *icmpr = a < b ? -1 : (a > b ? 1 : 0);
    // The wrapped difference read as signed, made absolute; 0x80000000 stays negative.
    const auto diff = static_cast<std::int32_t>(a - b);
    *idiff = diff < 0 ? static_cast<std::int32_t>(0u - static_cast<std::uint32_t>(diff)) : diff;
    return *idiff;
}
