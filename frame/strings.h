// Fortran strings: address plus hidden length, blank padded, never terminated.
// These helpers turn them into terminated copies and back.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace frame {

// A Fortran length seen as the signed number the caller meant (lengths of zero and
// below are possible from C callers and mean "empty").
using flen = std::ptrdiff_t;
inline flen signed_length(std::size_t hidden) noexcept { return static_cast<flen>(hidden); }
// Routines documented to read only the low 32 bits of the hidden length do this.
inline std::int32_t low32_length(std::size_t hidden) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(hidden));
}
constexpr flen unlimited = std::numeric_limits<flen>::max();

// Terminated copy of the text less its trailing blanks, in a block 23 bytes larger than
// the text. Null (with errno EINVAL or ENOMEM, recorded) on a null address or no memory.
char* allocCstr(const char* s, flen len) noexcept;
void deallocCstr(char* p) noexcept;

// Copies a terminated string into a Fortran string, blank padded; returns the number of
// characters copied (dlen when the destination filled up; truncation records EINVAL).
flen CstrToFstr(char* dst, const char* src, flen dlen, flen smax) noexcept;

// Length of the text without trailing blanks (0x20 only); 0 when len <= 0.
flen trimmed_length(const char* s, flen len) noexcept;

// The private white-space classifier: the host's character class for 0..127, its wide
// classification above. Never the global isspace, which a library symbol would replace.
int isspace(int code) noexcept;

void blank_fill(char* dst, flen len) noexcept;

// Stores a terminated string as a Fortran string result: cut to dlen, blank padded.
inline flen store_fortran_string(char* dst, std::size_t dlen, const char* src) noexcept {
    return CstrToFstr(dst, src, signed_length(dlen), unlimited);
}

// A terminated copy of a Fortran argument for the length of a scope.
class CString {
public:
    CString(const char* s, std::size_t len) noexcept : p_(allocCstr(s, signed_length(len))) {}
    ~CString() { deallocCstr(p_); }
    CString(const CString&) = delete;
    CString& operator=(const CString&) = delete;
    explicit operator bool() const noexcept { return p_ != nullptr; }
    const char* c_str() const noexcept { return p_; }
    char* get() noexcept { return p_; }  // the copy is the routine's own: it may cut it in place
    // Hands the block over: for routines documented to keep it.
    char* release() noexcept {
        char* p = p_;
        p_ = nullptr;
        return p;
    }

private:
    char* p_;
};

}  // namespace frame
