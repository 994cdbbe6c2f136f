#include "frame/strings.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <cwctype>

#include "frame/api.h"
#include "frame/memory.h"
#include "runtime/errsns.h"
#include <tarvo/frame.h>

namespace frame {
namespace {
// Every terminated copy carries this many spare bytes beyond its text; callers may rely on it.
constexpr std::size_t kCstrSlack = 23;
}  // namespace

flen trimmed_length(const char* s, flen len) noexcept {
    if (s == nullptr) return 0;
    while (len > 0 && s[len - 1] == ' ') --len;
    return len < 0 ? 0 : len;
}

char* allocCstr(const char* s, flen len) noexcept {
    if (s == nullptr) {
        runtime::record_errno(EINVAL);
        return nullptr;
    }
    const flen n = trimmed_length(s, len);
    auto* copy = static_cast<char*>(allocate(static_cast<std::size_t>(n) + kCstrSlack));
    if (copy == nullptr) {
        runtime::record_errno(ENOMEM);
        return nullptr;
    }
    std::memmove(copy, s, static_cast<std::size_t>(n));
    copy[n] = '\0';
    return copy;
}

void deallocCstr(char* p) noexcept {
    if (p != nullptr) release(p);
}

void blank_fill(char* dst, flen len) noexcept {
    if (dst != nullptr && len > 0) std::memset(dst, ' ', static_cast<std::size_t>(len));
}

flen CstrToFstr(char* dst, const char* src, flen dlen, flen smax) noexcept {
    if (dst == nullptr) {
        runtime::record_errno(EINVAL);
        return 0;
    }
    flen remaining = dlen;
    flen copied = 0;
    if (smax > 0 && src != nullptr) {
        flen budget = smax;
        while (budget > 0 && remaining >= 1 && src[copied] != '\0') {
            dst[copied] = src[copied];
            ++copied;
            --budget;
            --remaining;
        }
        if (remaining == 0) {
            // Full destination: the byte after the copy tells whether text was cut,
            // even when smax ran out at the same moment.
            if (src[copied] != '\0') runtime::record_errno(EINVAL);
            return dlen;
        }
    }
    blank_fill(dst + copied, remaining);
    return dlen - remaining;
}

int isspace(int code) noexcept {
    if (code >= 0 && code <= 127) return std::isspace(code) ? 1 : 0;
    return std::iswspace(static_cast<wint_t>(code)) ? 1 : 0;
}

}  // namespace frame

// INTEGER FUNCTION LNBLNK(STRING)
extern "C" TARVO_API std::int32_t lnblnk_(const char* s, std::size_t len) noexcept {
    return static_cast<std::int32_t>(frame::trimmed_length(s, frame::signed_length(len)));
}

// INTEGER FUNCTION IPXFLENTRIM(STRING) -- reads the low 32 bits of the hidden length
extern "C" TARVO_API std::int32_t ipxflentrim_(const char* s, std::size_t len) noexcept {
    return static_cast<std::int32_t>(frame::trimmed_length(s, frame::low32_length(len)));
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
