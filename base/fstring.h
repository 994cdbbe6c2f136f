// Fortran strings: address plus hidden length, blank padded, never terminated. One verb per
// direction: c_copy (Fortran text to a terminated heap copy) and store (text into a Fortran
// variable, blank filled or cut); allocCstr and CstrToFstr are those verbs with the
// recording rules of the library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

#include "base/memory.h"

namespace base {

// A Fortran length seen as the signed number the caller meant (lengths of zero and
// below are possible from C callers and mean "empty").
using flen = std::ptrdiff_t;
inline flen signed_length(std::size_t hidden) noexcept { return static_cast<flen>(hidden); }
// Routines documented to read only the low 32 bits of the hidden length do this.
inline std::int32_t low32_length(std::size_t hidden) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(hidden));
}
constexpr flen unlimited = std::numeric_limits<flen>::max();

// Length of the text without trailing blanks (0x20 only); 0 when len <= 0.
flen trimmed_length(const char* s, flen len) noexcept;

// The private white-space classifier: the host's character class for 0..127, its wide
// classification above. Never the global isspace, which a library symbol would replace.
int isspace(int code) noexcept;

void blank_fill(char* dst, flen len) noexcept;

// Fortran to C: exactly `length` characters of `text`, a terminator and `spare` more bytes.
// Empty, with errno ENOMEM, when no memory is left.
Owned<char> c_copy(const char* text, std::size_t length, std::size_t spare = 0) noexcept;

// C to Fortran: the first min(length, dlen) characters of text into dst, the rest of dst
// blank filled; returns the number of characters stored.
flen store(char* dst, flen dlen, const char* text, std::size_t length) noexcept;

// Terminated copy of the text less its trailing blanks, in a block 23 bytes larger than
// the text. Null (with errno EINVAL or ENOMEM, recorded) on a null address or no memory.
char* allocCstr(const char* s, flen len) noexcept;
void deallocCstr(char* p) noexcept;

// Copies a terminated string of at most smax characters into a Fortran string, blank
// padded; returns the number of characters copied (dlen when the destination filled up;
// text cut off records EINVAL).
flen CstrToFstr(char* dst, const char* src, flen dlen, flen smax) noexcept;

// allocCstr of a Fortran argument, owned for the length of a scope.
inline Owned<char> c_string(const char* s, std::size_t len) noexcept {
    return Owned<char>(allocCstr(s, signed_length(len)));
}

// Stores a terminated string as a Fortran string result: cut to dlen, blank padded.
inline flen store_fortran_string(char* dst, std::size_t dlen, const char* src) noexcept {
    return CstrToFstr(dst, src, signed_length(dlen), unlimited);
}

}  // namespace base
