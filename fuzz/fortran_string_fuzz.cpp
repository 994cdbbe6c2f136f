// The Fortran string primitives against direct models: c_copy, store, allocCstr,
// CstrToFstr (step by step as the copy rule states it) and the trimmed lengths, on texts
// with blanks, NULs and any other bytes, and destination lengths from -128 to 127.
// Input: destination length, source limit, spare bytes, then the text.
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "check.h"
#include "base/fstring.h"
#include <tarvo/frame.h>

namespace {

// A heap block of exactly n bytes (at least one, so the address is never null).
char* block(std::size_t n) { return static_cast<char*>(std::malloc(n == 0 ? 1 : n)); }

std::size_t trimmed(const std::string& text, base::flen len) {
    std::size_t n = len <= 0 ? 0 : static_cast<std::size_t>(len);
    while (n > 0 && text[n - 1] == ' ') --n;
    return n;
}

void check_copies(const std::string& text, std::size_t spare) {
    char* source = block(text.size());
    std::memcpy(source, text.data(), text.size());
    {
        base::Owned<char> copy = base::c_copy(source, text.size(), spare);
        FUZZ_CHECK(copy && std::memcmp(copy.get(), text.data(), text.size()) == 0 && copy.get()[text.size()] == '\0');
        std::memset(copy.get() + text.size() + 1, 'x', spare);  // the spare bytes are the caller's
    }
    for (const base::flen len : {static_cast<base::flen>(text.size()), base::flen{0}, base::flen{-1}}) {
        const std::size_t n = trimmed(text, len);
        char* c = base::allocCstr(source, len);
        FUZZ_CHECK(c != nullptr && std::memcmp(c, text.data(), n) == 0 && c[n] == '\0');
        std::memset(c + n + 1, 'x', 22);  // 23 bytes beyond the text, the terminator included
        base::deallocCstr(c);
        FUZZ_CHECK(base::trimmed_length(source, len) == static_cast<base::flen>(n));
        FUZZ_CHECK(lnblnk_(source, static_cast<std::size_t>(len)) == static_cast<std::int32_t>(n));
        // Only the low 32 bits of the hidden length count.
        std::size_t hidden = static_cast<std::size_t>(len);
        if constexpr (sizeof(std::size_t) == 8) hidden = (hidden & 0xFFFFFFFFu) | (std::size_t{7} << 32);
        FUZZ_CHECK(ipxflentrim_(source, hidden) == static_cast<std::int32_t>(n));
    }
    std::free(source);
}

void check_store(const std::string& text, base::flen dlen) {
    const std::size_t room = dlen > 0 ? static_cast<std::size_t>(dlen) : 0;
    char* dst = block(room);
    const base::flen n = base::store(dst, dlen, text.data(), text.size());
    const std::size_t want = room < text.size() ? room : text.size();
    FUZZ_CHECK(n == static_cast<base::flen>(want) && std::memcmp(dst, text.data(), want) == 0);
    for (std::size_t i = want; i < room; ++i) FUZZ_CHECK(dst[i] == ' ');
    std::free(dst);
}

// The copy rule literally: byte by byte while the source limit, the room and the text last;
// a full destination is not padded and reports a cut when the next source byte is not NUL.
struct Expected {
    std::string dst;
    base::flen result;
    bool cut;
};
Expected model_cstr_to_fstr(const char* src, base::flen dlen, base::flen smax, std::size_t room) {
    Expected e{std::string(room, '?'), 0, false};
    base::flen remaining = dlen, limit = smax;
    std::size_t i = 0;
    if (smax <= 0) {
        e.dst.assign(room, ' ');
        return e;
    }
    while (limit > 0 && remaining >= 1 && src[i] != '\0') {
        e.dst[i] = src[i];
        ++i;
        --limit;
        --remaining;
    }
    if (remaining == 0) {
        e.cut = src[i] != '\0';
        e.result = dlen;
        return e;
    }
    for (std::size_t j = i; j < room; ++j) e.dst[j] = ' ';
    e.result = dlen - remaining;
    if (e.result < 0) e.result = 0;
    return e;
}

void check_cstr_to_fstr(const std::string& text, base::flen dlen, base::flen smax) {
    char* src = block(text.size() + 1);
    std::memcpy(src, text.data(), text.size());
    src[text.size()] = '\0';
    const std::size_t room = dlen > 0 ? static_cast<std::size_t>(dlen) : 0;
    char* dst = block(room);
    std::memset(dst, '?', room);
    const Expected want = model_cstr_to_fstr(src, dlen, smax, room);
    errno = 0;
    const base::flen got = base::CstrToFstr(dst, src, dlen, smax);
    FUZZ_CHECK(got == want.result && std::memcmp(dst, want.dst.data(), room) == 0);
    FUZZ_CHECK((errno == EINVAL) == want.cut);
    std::free(dst);
    std::free(src);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 3) return 0;
    const base::flen dlen = static_cast<std::int8_t>(data[0]);
    const base::flen smax = static_cast<std::int8_t>(data[1]);
    const std::size_t spare = data[2] & 31;
    const std::string text(reinterpret_cast<const char*>(data + 3), size - 3);
    check_copies(text, spare);
    check_store(text, dlen);
    check_cstr_to_fstr(text, dlen, smax);
    return 0;
}
