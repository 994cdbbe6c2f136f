#include "base/fstring.h"

#include <cctype>
#include <cerrno>
#include <cstring>
#include <cwctype>

#include "base/record.h"

namespace base {
namespace {
// Every terminated copy of allocCstr carries this many bytes beyond its text, the
// terminator included; callers may write into them.
constexpr std::size_t kCstrSlack = 23;
}  // namespace

flen trimmed_length(const char* s, flen len) noexcept {
    if (s == nullptr) return 0;
    while (len > 0 && s[len - 1] == ' ') --len;
    return len < 0 ? 0 : len;
}

int isspace(int code) noexcept {
    if (code >= 0 && code <= 127) return std::isspace(code) ? 1 : 0;
    return std::iswspace(static_cast<wint_t>(code)) ? 1 : 0;
}

void blank_fill(char* dst, flen len) noexcept {
    if (dst != nullptr && len > 0) std::memset(dst, ' ', static_cast<std::size_t>(len));
}

Owned<char> c_copy(const char* text, std::size_t length, std::size_t spare) noexcept {
    auto copy = Owned<char>::with_room_for(length + 1 + spare);
    if (!copy) {
        errno = ENOMEM;
        return copy;
    }
    if (length > 0) std::memmove(copy.get(), text, length);
    copy.get()[length] = '\0';
    return copy;
}

flen store(char* dst, flen dlen, const char* text, std::size_t length) noexcept {
    const flen n = dlen <= 0 ? 0 : (static_cast<flen>(length) < dlen ? static_cast<flen>(length) : dlen);
    if (n > 0) std::memmove(dst, text, static_cast<std::size_t>(n));
    blank_fill(dst + n, dlen - n);
    return n;
}

char* allocCstr(const char* s, flen len) noexcept {
    if (s == nullptr) {
        record_errno(EINVAL);
        return nullptr;
    }
    const auto n = static_cast<std::size_t>(trimmed_length(s, len));
    Owned<char> copy = c_copy(s, n, kCstrSlack - 1);
    if (!copy) record_errno(ENOMEM);
    return copy.hand_over();
}

void deallocCstr(char* p) noexcept { release(p); }

flen CstrToFstr(char* dst, const char* src, flen dlen, flen smax) noexcept {
    if (dst == nullptr) {
        record_errno(EINVAL);
        return 0;
    }
    if (smax <= 0 || src == nullptr) return store(dst, dlen, "", 0);
    const flen limit = dlen < smax ? dlen : smax;
    const flen n = limit > 0 ? static_cast<flen>(strnlen(src, static_cast<std::size_t>(limit))) : 0;
    // Full destination: the byte after the copy tells whether text was cut, even when
    // smax ran out at the same moment.
    if (n == dlen && src[n] != '\0') record_errno(EINVAL);
    return store(dst, dlen, src, static_cast<std::size_t>(n));
}

}  // namespace base
