// Bit, shift and numeric routines: small pure functions older programs expect as externals.
// Their boundary rules (counts out of range, sign handling, widths) are the contract; like
// routines are one template each, instantiated per kind below.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "base/export.h"
#include "base/fstring.h"
#include "base/memory.h"
#include "base/record.h"
#include <tarvo/portlib.h>

namespace {

using std::int16_t;
using std::int32_t;
using std::int64_t;

// --- single bits: positions outside the word change nothing and read as clear ---
template <class W>
bool in_word(int32_t n) noexcept {
    return n >= 0 && n < static_cast<int32_t>(sizeof(W) * 8);
}

template <class W>
W bit_mask(int32_t n) noexcept {
    return static_cast<W>(std::make_unsigned_t<W>{1} << n);
}

template <class W>
void set_bit(const int32_t* n, W* word) noexcept {
    if (in_word<W>(*n)) *word |= bit_mask<W>(*n);
}

template <class W>
void clear_bit(const int32_t* n, W* word) noexcept {
    if (in_word<W>(*n)) *word &= static_cast<W>(~bit_mask<W>(*n));
}

template <class W>
bool bit_set(const int32_t* n, const W* word) noexcept {
    return in_word<W>(*n) && (*word & bit_mask<W>(*n)) != 0;
}

// --- INTEGER(4) shifts: a count (taken as unsigned) above max_count gives 0; an accepted
// count shifts by its value modulo 32, so LSHIFT and RSHIFT wrap counts 32 to 63 on purpose ---
enum class Shift { left, arithmetic_right, logical_right };

template <Shift kind, std::uint32_t max_count>
int32_t shift(const int32_t* value, const int32_t* count) noexcept {
    auto n = static_cast<std::uint32_t>(*count);
    if (n > max_count) return 0;
    n %= 32;
    const auto bits = static_cast<std::uint32_t>(*value);
    switch (kind) {
        case Shift::left: return static_cast<int32_t>(bits << n);
        case Shift::arithmetic_right: return *value >> n;
        case Shift::logical_right: return static_cast<int32_t>(bits >> n);
    }
    return 0;
}

// --- INTEGER(8) funnel shifts of the pair (left, right): a count of 64 gives the other
// word whole, a count above 64 (or negative, taken as unsigned) gives 0 ---
template <bool toward_left>
int64_t funnel(int64_t left, int64_t right, int64_t count) noexcept {
    const auto n = static_cast<std::uint64_t>(count);
    const auto l = static_cast<std::uint64_t>(left), r = static_cast<std::uint64_t>(right);
    if (n == 0) return toward_left ? left : right;
    if (n == 64) return toward_left ? right : left;
    if (n > 64) return 0;
    return static_cast<int64_t>(toward_left ? (l << n) | (r >> (64 - n)) : (r >> n) | (l << (64 - n)));
}

// --- positive differences: 0 when y exceeds x (NaN compares false, so it passes through) ---
template <class T, class R = T>
R positive_difference(const T* x, const T* y) noexcept {
    return *y > *x ? R{0} : static_cast<R>(static_cast<R>(*x) - static_cast<R>(*y));
}

template <class From, class To>
To converted(const From* value) noexcept {
    return static_cast<To>(*value);
}

// --- Bessel functions: the REAL(4) forms compute in double; the Y forms give 0 at infinity ---
template <class R, double (*f)(double), bool zero_at_infinity>
R bessel(const R* x) noexcept {
    if (zero_at_infinity && std::isinf(*x)) return R{0};
    return static_cast<R>(f(static_cast<double>(*x)));
}

template <class R, double (*f)(int, double), bool zero_at_infinity>
R bessel_n(const int32_t* n, const R* x) noexcept {
    if (zero_at_infinity && std::isinf(*x)) return R{0};
    return static_cast<R>(f(*n, static_cast<double>(*x)));
}

}  // namespace

// SUBROUTINE BIS(N, WORD), BIC(N, WORD); LOGICAL FUNCTION BIT(N, WORD) -- bits 0 to 31
extern "C" TARVO_API void bis_(const int32_t* n, int32_t* word) noexcept { set_bit(n, word); }
extern "C" TARVO_API void bic_(const int32_t* n, int32_t* word) noexcept { clear_bit(n, word); }
extern "C" TARVO_API int32_t bit_(const int32_t* n, const int32_t* word) noexcept {
    return bit_set(n, word) ? TARVO_TRUE : TARVO_FALSE;
}

// SUBROUTINE BISI8(N, WORD), BICI8(N, WORD); INTEGER(8) FUNCTION BITI8(N, WORD) -- bits 0 to 63
extern "C" TARVO_API void bisi8_(const int32_t* n, int64_t* word) noexcept { set_bit(n, word); }
extern "C" TARVO_API void bici8_(const int32_t* n, int64_t* word) noexcept { clear_bit(n, word); }
extern "C" TARVO_API int64_t biti8_(const int32_t* n, const int64_t* word) noexcept { return bit_set(n, word) ? 1 : 0; }

// INTEGER FUNCTION LSHIFT(VALUE, COUNT) -- counts 0 to 63, shifting by COUNT modulo 32
extern "C" TARVO_API int32_t lshift_(const int32_t* value, const int32_t* count) noexcept {
    return shift<Shift::left, 63>(value, count);
}

// INTEGER FUNCTION RSHIFT(VALUE, COUNT) -- arithmetic; counts 0 to 63, modulo 32
extern "C" TARVO_API int32_t rshift_(const int32_t* value, const int32_t* count) noexcept {
    return shift<Shift::arithmetic_right, 63>(value, count);
}

// INTEGER FUNCTION SHIFTL(VALUE, COUNT) -- counts 0 to 31
extern "C" TARVO_API int32_t shiftl_(const int32_t* value, const int32_t* count) noexcept {
    return shift<Shift::left, 31>(value, count);
}

// INTEGER FUNCTION SHIFTR(VALUE, COUNT) -- logical; counts 0 to 31
extern "C" TARVO_API int32_t shiftr_(const int32_t* value, const int32_t* count) noexcept {
    return shift<Shift::logical_right, 31>(value, count);
}

// INTEGER(8) FUNCTION DSHIFTL(LEFT, RIGHT, COUNT) -- the high word of (LEFT:RIGHT) << COUNT
extern "C" TARVO_API int64_t dshiftl_(const int64_t* left, const int64_t* right, const int64_t* count) noexcept {
    return funnel<true>(*left, *right, *count);
}

// INTEGER(8) FUNCTION DSHIFTR(LEFT, RIGHT, COUNT) -- the low word of (LEFT:RIGHT) >> COUNT
extern "C" TARVO_API int64_t dshiftr_(const int64_t* left, const int64_t* right, const int64_t* count) noexcept {
    return funnel<false>(*left, *right, *count);
}

// The same two shifts for callers that pass the three values themselves.
extern "C" TARVO_API int64_t _dshiftl(int64_t left, int64_t right, int64_t count) noexcept {
    return funnel<true>(left, right, count);
}
extern "C" TARVO_API int64_t _dshiftr(int64_t left, int64_t right, int64_t count) noexcept {
    return funnel<false>(left, right, count);
}

// INTEGER FUNCTION COMPLINT(I)
extern "C" TARVO_API int32_t complint_(const int32_t* i) noexcept { return ~*i; }

// REAL FUNCTION COMPLREAL(R) -- the complement of R's bit pattern
extern "C" TARVO_API float complreal_(const float* r) noexcept {
    std::uint32_t bits;
    std::memcpy(&bits, r, sizeof bits);
    bits = ~bits;
    float result;
    std::memcpy(&result, &bits, sizeof result);
    return result;
}

// LOGICAL FUNCTION COMPLLOG(L)
extern "C" TARVO_API int32_t compllog_(const int32_t* l) noexcept { return *l == 0 ? TARVO_TRUE : TARVO_FALSE; }

// INTEGER FUNCTION CSMG(X, Y, MASK) -- bits of X where MASK is set, of Y elsewhere
extern "C" TARVO_API int32_t csmg_(const int32_t* x, const int32_t* y, const int32_t* mask) noexcept {
    return (*x & *mask) | (*y & ~*mask);
}

// REAL(4) FUNCTION DIM(X, Y); REAL(8) FUNCTION DDIM(X, Y); INTEGER FUNCTION IIDIM(X, Y) with
// INTEGER(2) X, Y, computed in 32 bits
extern "C" TARVO_API float dim_(const float* x, const float* y) noexcept { return positive_difference(x, y); }
extern "C" TARVO_API double ddim_(const double* x, const double* y) noexcept { return positive_difference(x, y); }
extern "C" TARVO_API int32_t iidim_(const int16_t* x, const int16_t* y) noexcept {
    return positive_difference<int16_t, int32_t>(x, y);
}

// INTEGER FUNCTION JDIM(X, Y) -- the sign of the wrapped 32-bit difference decides, so
// JDIM(2147483647, -1) is 0; kept as callers have always seen it
extern "C" TARVO_API int32_t jdim_(const int32_t* x, const int32_t* y) noexcept {
    const auto d = static_cast<int32_t>(static_cast<std::uint32_t>(*x) - static_cast<std::uint32_t>(*y));
    return d < 0 ? 0 : d;
}

// INTEGER FUNCTION JABS(I) -- -2147483648 stays as it is
extern "C" TARVO_API int32_t jabs_(const int32_t* i) noexcept {
    return *i < 0 ? static_cast<int32_t>(0u - static_cast<std::uint32_t>(*i)) : *i;
}

// INTEGER FUNCTION JMOD(A, P) -- A and P are read as INTEGER(2); the remainder has A's sign.
// A zero P raises the processor's divide fault (SIGFPE), which callers may trap.
extern "C" TARVO_API int32_t jmod_(const int16_t* a, const int16_t* p) noexcept {
    int32_t quotient = *a, remainder;
    const int32_t divisor = *p;
    // The division instruction itself, so that a zero divisor faults as it always has.
    __asm__ volatile("cltd\n\tidivl %2" : "=&d"(remainder), "+a"(quotient) : "r"(divisor) : "cc");
    return remainder;
}

// INTEGER FUNCTION INMAX()
extern "C" TARVO_API int32_t inmax_() noexcept { return 2147483647; }

// INTEGER FUNCTION INTC(I); LONG(I2) with an INTEGER(2) argument; SHORT(I) -- the caller
// keeps SHORT's low two bytes
extern "C" TARVO_API int32_t intc_(const int32_t* i) noexcept { return converted<int32_t, int32_t>(i); }
extern "C" TARVO_API int32_t long_(const int16_t* i) noexcept { return converted<int16_t, int32_t>(i); }
extern "C" TARVO_API int32_t short_(const int32_t* i) noexcept { return converted<int32_t, int32_t>(i); }

// REAL(4) FUNCTION IFLOATI(I2), IFLOATJ(I); REAL(8) FUNCTION DFLOATI(I2), DFLOATJ(I),
// IDFLOAT(I), DFLOATK(I8), CDFLOAT(R) -- CDFLOAT widens the real part of a COMPLEX(4)
extern "C" TARVO_API float ifloati_(const int16_t* i) noexcept { return converted<int16_t, float>(i); }
extern "C" TARVO_API float ifloatj_(const int32_t* i) noexcept { return converted<int32_t, float>(i); }
extern "C" TARVO_API double dfloati_(const int16_t* i) noexcept { return converted<int16_t, double>(i); }
extern "C" TARVO_API double dfloatj_(const int32_t* i) noexcept { return converted<int32_t, double>(i); }
extern "C" TARVO_API double idfloat_(const int32_t* i) noexcept __attribute__((alias("dfloatj_")));
extern "C" TARVO_API double dfloatk_(const int64_t* i) noexcept { return converted<int64_t, double>(i); }
extern "C" TARVO_API double cdfloat_(const float* re) noexcept { return converted<float, double>(re); }

// Each Bessel function in both kinds: NAME over REAL(4) and DNAME over REAL(8).
#define TARVO_BESSEL(name, f, zero_at_infinity)                                                   \
    extern "C" TARVO_API float name##_(const float* x) noexcept {                                 \
        return bessel<float, f, zero_at_infinity>(x);                                             \
    }                                                                                              \
    extern "C" TARVO_API double d##name##_(const double* x) noexcept {                            \
        return bessel<double, f, zero_at_infinity>(x);                                            \
    }
#define TARVO_BESSEL_N(name, f, zero_at_infinity)                                                 \
    extern "C" TARVO_API float name##_(const int32_t* n, const float* x) noexcept {               \
        return bessel_n<float, f, zero_at_infinity>(n, x);                                        \
    }                                                                                              \
    extern "C" TARVO_API double d##name##_(const int32_t* n, const double* x) noexcept {          \
        return bessel_n<double, f, zero_at_infinity>(n, x);                                       \
    }

// REAL FUNCTION BESJ0(X), BESJ1(X), BESJN(N, X); REAL(8) FUNCTION DBESJ0(X), DBESJ1(X), DBESJN(N, X)
TARVO_BESSEL(besj0, ::j0, false)
TARVO_BESSEL(besj1, ::j1, false)
TARVO_BESSEL_N(besjn, ::jn, false)
// REAL FUNCTION BESY0(X), BESY1(X), BESYN(N, X); REAL(8) FUNCTION DBESY0(X), DBESY1(X), DBESYN(N, X)
TARVO_BESSEL(besy0, ::y0, true)
TARVO_BESSEL(besy1, ::y1, true)
TARVO_BESSEL_N(besyn, ::yn, true)

// INTEGER FUNCTION RINDEX(STRING, SUBSTR) -- position of the last occurrence of SUBSTR,
// comparing the full declared lengths (trailing blanks count); 0 when there is none. An
// empty SUBSTR matches after the end: the result is LEN(STRING) + 1.
extern "C" TARVO_API int32_t rindex_(const char* string, const char* substr, std::size_t string_hidden,
                                     std::size_t substr_hidden) noexcept {
    // A hidden length that is negative as a Fortran length is no text at all.
    const std::size_t string_len = static_cast<std::size_t>(std::max<base::flen>(base::signed_length(string_hidden), 0));
    const std::size_t substr_len = static_cast<std::size_t>(std::max<base::flen>(base::signed_length(substr_hidden), 0));
    if (substr_len > string_len) return 0;
    // Zeroed copies two bytes longer than the texts: the empty SUBSTR then matches the
    // terminator just past the end of STRING.
    base::Owned<char> text(static_cast<char*>(base::allocate_zeroed(string_len + 2, 1)));
    base::Owned<char> pattern(static_cast<char*>(base::allocate_zeroed(substr_len + 2, 1)));
    if (!text || !pattern) {
        base::record_errno(ENOMEM);  // what the failed allocation left in errno
        return 0;
    }
    if (string_len > 0) std::memcpy(text.get(), string, string_len);
    if (substr_len > 0) std::memcpy(pattern.get(), substr, substr_len);
    for (std::size_t p = string_len - substr_len + 1; p-- > 0;) {
        if (text.get()[p] == pattern.get()[0] && std::memcmp(text.get() + p, pattern.get(), substr_len) == 0)
            return static_cast<int32_t>(p + 1);
    }
    return 0;
}
