// Sorting and searching by type code, and qsort with a Fortran comparison function.
//
// SORTQQ's order is that of a Shell sort (gaps 1, 4, 13, ...; strictly-greater moves), which
// is not stable: where two distinguishable elements compare equal, their final places depend
// on the gap sequence. Where equal-comparing elements are always bit-identical (integers,
// byte strings, quadruple values without NaN, single and double values without NaN and not
// both zeros) any correct sort gives the same bytes, and a radix sort is used; otherwise the
// Shell sort itself runs.
#include <sys/mman.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/memory.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {

using Index = std::intptr_t;
using Byte = unsigned char;

constexpr std::int32_t kLongestString = 32766;
// Below this count the Shell sort is as fast as anything and needs no memory.
constexpr Index kRadixFrom = 256;

struct U128 {
    std::uint64_t lo, hi;
};

template <class W>
W load(const Byte* p) noexcept {
    W w;
    std::memcpy(&w, p, sizeof w);
    return w;
}
template <class W>
void store(Byte* p, W w) noexcept {
    std::memcpy(p, &w, sizeof w);
}

// --- keys: unsigned words whose order is the element order -------------------------------
constexpr std::uint8_t flip_sign(std::uint8_t w) { return static_cast<std::uint8_t>(w ^ 0x80u); }
constexpr std::uint16_t flip_sign(std::uint16_t w) { return static_cast<std::uint16_t>(w ^ 0x8000u); }
constexpr std::uint32_t flip_sign(std::uint32_t w) { return w ^ 0x80000000u; }
constexpr std::uint64_t flip_sign(std::uint64_t w) { return w ^ 0x8000000000000000u; }
constexpr U128 flip_sign(U128 w) { return {w.lo, flip_sign(w.hi)}; }
constexpr U128 invert(U128 w) { return {~w.lo, ~w.hi}; }
template <class W>
constexpr W invert(W w) { return static_cast<W>(~w); }
constexpr bool top_bit(U128 w) { return (w.hi >> 63) != 0; }
template <class W>
constexpr bool top_bit(W w) { return (w >> (8 * sizeof(W) - 1)) != 0; }
constexpr U128 operator^(U128 a, U128 b) { return {a.lo ^ b.lo, a.hi ^ b.hi}; }
constexpr U128 operator|(U128 a, U128 b) { return {a.lo | b.lo, a.hi | b.hi}; }
constexpr bool less(U128 a, U128 b) { return a.hi != b.hi ? a.hi < b.hi : a.lo < b.lo; }
template <class W>
constexpr bool less(W a, W b) { return a < b; }

constexpr std::uint8_t swap_bytes(std::uint8_t w) { return w; }
constexpr std::uint16_t swap_bytes(std::uint16_t w) { return __builtin_bswap16(w); }
constexpr std::uint32_t swap_bytes(std::uint32_t w) { return __builtin_bswap32(w); }
constexpr std::uint64_t swap_bytes(std::uint64_t w) { return __builtin_bswap64(w); }
constexpr U128 swap_bytes(U128 w) { return {__builtin_bswap64(w.hi), __builtin_bswap64(w.lo)}; }

// Sign and magnitude (IEEE values, and the quadruple's field-wise order) to unsigned order.
template <class W>
constexpr W magnitude_key(W w) { return top_bit(w) ? invert(w) : flip_sign(w); }
template <class W>
constexpr W magnitude_value(W k) { return top_bit(k) ? flip_sign(k) : invert(k); }

// --- element kinds: word, greater-than, key, and whether a radix sort gives the same bytes --
template <class S, class W>
struct SignedInt {
    using Word = W;
    static bool greater(W a, W b) { return static_cast<S>(a) > static_cast<S>(b); }
    static W key(W w) { return flip_sign(w); }
    static W value(W k) { return flip_sign(k); }
    static bool radix_safe(const Byte*, Index) { return true; }
};

// Whether SSE comparisons treat denormals as zero (then they compare equal to zero and the
// Shell order of such values shows).
bool denormals_are_zero() noexcept {
#if defined(__SSE_MATH__)
    return (__builtin_ia32_stmxcsr() & 0x40u) != 0;
#else
    return false;
#endif
}

template <class F, class W>
struct Ieee {
    using Word = W;
    static constexpr W kSign = flip_sign(W{0});
    static constexpr W kExponent = static_cast<W>(sizeof(W) == 4 ? 0x7F800000u : 0x7FF0000000000000u);
    static bool greater(W a, W b) {
        F x, y;
        std::memcpy(&x, &a, sizeof x);
        std::memcpy(&y, &b, sizeof y);
        return x > y;
    }
    static W key(W w) { return magnitude_key(w); }
    static W value(W k) { return magnitude_value(k); }
    // Equal values are bit-identical unless NaNs or zeros of both signs are present.
    static bool radix_safe(const Byte* a, Index n) {
        if (denormals_are_zero()) return false;
        bool positive_zero = false, negative_zero = false;
        for (Index i = 0; i < n; ++i) {
            const W w = load<W>(a + i * sizeof(W));
            if ((w & ~kSign) > kExponent) return false;
            positive_zero |= w == 0;
            negative_zero |= w == kSign;
        }
        return !(positive_zero && negative_zero);
    }
};

// Quadruple values: sign, exponent, then fraction, reversed for negative values. For NaNs
// (all-ones exponent, non-zero fraction) the ordered IEEE greater-than holds: never greater,
// never smaller. For infinities that order and the field-wise one agree.
struct Quad {
    using Word = U128;
    static bool nan(U128 w) { return (w.hi & 0x7FFFFFFFFFFFFFFFu) > 0x7FFF000000000000u ||
                                     ((w.hi & 0x7FFFFFFFFFFFFFFFu) == 0x7FFF000000000000u && w.lo != 0); }
    static bool greater(U128 a, U128 b) { return !nan(a) && !nan(b) && less(magnitude_key(b), magnitude_key(a)); }
    static U128 key(U128 w) { return magnitude_key(w); }
    static U128 value(U128 k) { return magnitude_value(k); }
    static bool radix_safe(const Byte* a, Index n) {
        for (Index i = 0; i < n; ++i)
            if (nan(load<U128>(a + i * sizeof(U128)))) return false;
        return true;
    }
};

// Byte strings of 1, 2, 4, 8 or 16 bytes: memcmp order is the big-endian unsigned order.
template <class W>
struct ShortString {
    using Word = W;
    static bool greater(W a, W b) { return less(swap_bytes(b), swap_bytes(a)); }
    static W key(W w) { return swap_bytes(w); }
    static W value(W k) { return swap_bytes(k); }
    static bool radix_safe(const Byte*, Index) { return true; }
};

// --- the Shell sort ----------------------------------------------------------------------
Index first_gap(Index n) noexcept {
    if (n < 13) return 1;
    Index h = 1;
    while (h < n && h <= (INTPTR_MAX - 1) / 3) h = 3 * h + 1;
    return ((h - 1) / 3 - 1) / 3;
}

template <class Kind>
void shell_sort(Byte* a, Index n) noexcept {
    using W = typename Kind::Word;
    constexpr Index w = sizeof(W);
    for (Index h = first_gap(n);; h = (h - 1) / 3) {
        for (Index i = h; i < n; ++i) {
            const W v = load<W>(a + i * w);
            Index j = i;
            for (; j >= h; j -= h) {
                const W u = load<W>(a + (j - h) * w);
                if (!Kind::greater(u, v)) break;
                store(a + j * w, u);
            }
            store(a + j * w, v);
        }
        if (h == 1) break;
    }
}

void shell_sort_strings(Byte* a, Index n, std::size_t width, Byte* held) noexcept {
    const auto w = static_cast<Index>(width);
    for (Index h = first_gap(n);; h = (h - 1) / 3) {
        for (Index i = h; i < n; ++i) {
            std::memcpy(held, a + i * w, width);
            Index j = i;
            for (; j >= h && std::memcmp(a + (j - h) * w, held, width) > 0; j -= h)
                std::memcpy(a + j * w, a + (j - h) * w, width);
            std::memcpy(a + j * w, held, width);
        }
        if (h == 1) break;
    }
}

// --- radix sorts of keys -----------------------------------------------------------------
// 11-bit digits. One pass by the most significant 11 bits in which keys differ cuts the
// array into 2048 buckets small enough for the processor's caches; each bucket is then
// sorted there, least significant digit first, and stored back. So the array crosses memory
// about three times, whatever the key width.
constexpr unsigned kDigitBits = 11;
constexpr std::size_t kBuckets = std::size_t{1} << kDigitBits;
// Radix sorting counts bucket sizes in 32 bits.
constexpr std::size_t kRadixUpTo = 0xFFFFFFFFu;

template <class K>
unsigned digit(K k, unsigned shift) noexcept {
    return static_cast<unsigned>(k >> shift) & (kBuckets - 1);
}
unsigned digit(U128 k, unsigned shift) noexcept {
    if (shift >= 64) return digit(k.hi >> (shift - 64), 0);
    if (shift == 0) return digit(k.lo, 0);
    return digit((k.lo >> shift) | (k.hi << (64 - shift)), 0);
}

// Position of the highest set bit; w must not be zero.
template <class K>
unsigned highest_bit(K w) noexcept {
    return 8 * sizeof(unsigned long long) - 1 - static_cast<unsigned>(__builtin_clzll(w));
}
unsigned highest_bit(U128 w) noexcept { return w.hi != 0 ? 64 + highest_bit(w.hi) : highest_bit(w.lo); }
constexpr bool is_zero(U128 w) { return (w.lo | w.hi) == 0; }
template <class K>
constexpr bool is_zero(K w) { return w == 0; }

// Sorts keys[0, n) by their bits below `bits` through spare; the result is in keys.
template <class K>
void lsd_radix(K* keys, K* spare, std::uint32_t n, unsigned bits) noexcept {
    K* from = keys;
    K* to = spare;
    for (unsigned shift = 0; shift < bits; shift += kDigitBits) {
        std::uint32_t count[kBuckets] = {};
        for (std::uint32_t i = 0; i < n; ++i) ++count[digit(from[i], shift)];
        if (count[digit(from[0], shift)] == n) continue;  // one digit value: nothing to move
        std::uint32_t sum = 0;
        for (std::uint32_t& c : count) sum += std::exchange(c, sum);
        for (std::uint32_t i = 0; i < n; ++i) to[count[digit(from[i], shift)]++] = from[i];
        std::swap(from, to);
    }
    if (from != keys) std::memcpy(keys, from, n * sizeof(K));
}

// Keys of one or two bytes: counted, then written out in order.
template <class Kind>
bool counting_sort(Byte* a, std::size_t n) noexcept {
    using W = typename Kind::Word;
    constexpr std::size_t kValues = std::size_t{1} << (8 * sizeof(W));
    auto counts = base::Owned<std::size_t>(static_cast<std::size_t*>(base::allocate_zeroed(kValues, sizeof(std::size_t))));
    if (!counts) return false;
    std::size_t* count = counts.get();
    for (std::size_t i = 0; i < n; ++i) ++count[Kind::key(load<W>(a + i * sizeof(W)))];
    Byte* out = a;
    for (std::size_t k = 0; k < kValues; ++k)
        for (std::size_t c = count[k]; c > 0; --c, out += sizeof(W)) store(out, Kind::value(static_cast<W>(k)));
    return true;
}

// Room for n keys. Large blocks ask for transparent huge pages: touching fresh memory one
// small page at a time can cost more than the sort itself.
template <class W>
struct Scratch {
    base::Owned<Byte> block;
    W* keys;
};
template <class W>
Scratch<W> scratch(std::size_t n) noexcept {
    constexpr std::size_t kHugePage = std::size_t{2} << 20;
    std::size_t bytes, total;
    if (__builtin_mul_overflow(n, sizeof(W), &bytes) || __builtin_add_overflow(bytes, kHugePage, &total)) return {};
    Scratch<W> room{base::Owned<Byte>::with_room_for(total), nullptr};
    if (!room.block) return room;
    const std::uintptr_t start = (reinterpret_cast<std::uintptr_t>(room.block.get()) + kHugePage - 1) & ~(kHugePage - 1);
    if (bytes >= kHugePage) madvise(reinterpret_cast<void*>(start), bytes & ~(kHugePage - 1), MADV_HUGEPAGE);
    room.keys = reinterpret_cast<W*>(start);
    return room;
}

// False when the memory could not be had; the array is unchanged then.
template <class Kind>
bool radix_sort_elements(Byte* a, std::size_t n) noexcept {
    using W = typename Kind::Word;
    constexpr std::size_t w = sizeof(W);
    if constexpr (w <= 2) {
        return counting_sort<Kind>(a, n);
    } else {
        // Aligned arrays hold their keys in place; others get a copy.
        const bool aligned = reinterpret_cast<std::uintptr_t>(a) % alignof(W) == 0;
        const Scratch<W> room = scratch<W>(aligned ? n : 2 * n);
        if (room.keys == nullptr) return false;
        W* spare = room.keys;
        W* keys = aligned ? reinterpret_cast<W*>(a) : spare + n;
        const W first = Kind::key(load<W>(a));
        W differ{};
        for (std::size_t i = 0; i < n; ++i) {
            const W k = Kind::key(load<W>(a + i * w));
            keys[i] = k;
            differ = differ | (k ^ first);
        }
        if (is_zero(differ)) {  // all alike: only the key form to undo
            for (std::size_t i = 0; i < n; ++i) store(a + i * w, Kind::value(keys[i]));
            return true;
        }
        const unsigned top = highest_bit(differ) + 1;
        const unsigned low = top > kDigitBits ? top - kDigitBits : 0;  // bits left to the buckets
        std::size_t start[kBuckets] = {};
        for (std::size_t i = 0; i < n; ++i) ++start[digit(keys[i], low)];
        std::size_t sum = 0;
        for (std::size_t& c : start) sum += std::exchange(c, sum);
        std::size_t next[kBuckets];
        std::memcpy(next, start, sizeof start);
        for (std::size_t i = 0; i < n; ++i) spare[next[digit(keys[i], low)]++] = keys[i];
        // Bucket b lies in spare[start[b], next[b]); sorted into the same place of keys, then
        // stored back in value form while it is still in the cache.
        for (std::size_t b = 0; b < kBuckets; ++b) {
            const std::size_t count = next[b] - start[b];
            if (count == 0) continue;
            W* in = spare + start[b];
            W* out = keys + start[b];
            std::memcpy(out, in, count * w);
            lsd_radix(out, in, static_cast<std::uint32_t>(count), low);
            Byte* to = a + start[b] * w;
            for (std::size_t i = 0; i < count; ++i) store(to + i * w, Kind::value(out[i]));
        }
        return true;
    }
}

template <class Kind>
void sort_elements(Byte* a, Index n) noexcept {
    if (n >= kRadixFrom && static_cast<std::size_t>(n) <= kRadixUpTo && Kind::radix_safe(a, n) &&
        radix_sort_elements<Kind>(a, static_cast<std::size_t>(n)))
        return;
    shell_sort<Kind>(a, n);
}

// Byte strings of other lengths: equal strings are identical, so a comparison sort of their
// addresses, then a gather, gives the Shell sort's bytes.
bool sort_strings_by_address(Byte* a, std::size_t n, std::size_t width) noexcept {
    auto order = base::Owned<const Byte*>::with_room_for(n);
    auto sorted = base::Owned<Byte>::with_room_for(n * width);
    if (!order || !sorted) return false;
    const Byte** p = order.get();
    for (std::size_t i = 0; i < n; ++i) p[i] = a + i * width;
    std::sort(p, p + n, [width](const Byte* x, const Byte* y) { return std::memcmp(x, y, width) < 0; });
    for (std::size_t i = 0; i < n; ++i) std::memcpy(sorted.get() + i * width, p[i], width);
    std::memcpy(a, sorted.get(), n * width);
    return true;
}

bool sort_strings(Byte* a, Index n, std::int32_t width) noexcept {
    // The Shell sort's one-element buffer is taken first, so running out of memory is
    // reported the same way whichever sort then runs.
    base::Owned<Byte> held = base::Owned<Byte>::with_room_for(static_cast<std::size_t>(width));
    if (!held) return false;
    if (n >= kRadixFrom && static_cast<std::size_t>(n) <= kRadixUpTo) {
        switch (width) {
        case 1: if (counting_sort<ShortString<std::uint8_t>>(a, n)) return true; break;
        case 2: if (counting_sort<ShortString<std::uint16_t>>(a, n)) return true; break;
        case 4: if (radix_sort_elements<ShortString<std::uint32_t>>(a, n)) return true; break;
        case 8: if (radix_sort_elements<ShortString<std::uint64_t>>(a, n)) return true; break;
        case 16: if (radix_sort_elements<ShortString<U128>>(a, n)) return true; break;
        default: if (sort_strings_by_address(a, n, width)) return true; break;
        }
    }
    shell_sort_strings(a, n, width, held.get());
    return true;
}

// --- binary search -----------------------------------------------------------------------
template <class Kind>
Index search_elements(const Byte* key, const Byte* a, Index length) noexcept {
    using W = typename Kind::Word;
    const W k = load<W>(key);
    Index lo = 0, hi = length - 1;
    while (lo <= hi) {
        const Index mid = (lo + hi) >> 1;
        const W e = load<W>(a + mid * sizeof(W));
        if (Kind::greater(e, k)) hi = mid - 1;
        else if (Kind::greater(k, e)) lo = mid + 1;
        else return mid + 1;
    }
    return 0;
}

Index search_strings(const Byte* key, const Byte* a, Index length, std::size_t width) noexcept {
    Index lo = 0, hi = length - 1;
    while (lo <= hi) {
        const Index mid = (lo + hi) >> 1;
        const int order = std::memcmp(a + mid * static_cast<Index>(width), key, width);
        if (order > 0) hi = mid - 1;
        else if (order < 0) lo = mid + 1;
        else return mid + 1;
    }
    return 0;
}

// One entry per typed code: the sort and the search of that element kind.
struct TypedCode {
    std::int32_t code;
    void (*sort)(Byte*, Index) noexcept;
    Index (*search)(const Byte*, const Byte*, Index) noexcept;
};
template <std::int32_t Code, class Kind>
constexpr TypedCode typed{Code, sort_elements<Kind>, search_elements<Kind>};

constexpr TypedCode kTypedCodes[] = {
    typed<TARVO_SRT_REAL4, Ieee<float, std::uint32_t>>,
    typed<TARVO_SRT_REAL8, Ieee<double, std::uint64_t>>,
    typed<TARVO_SRT_INTEGER1, SignedInt<std::int8_t, std::uint8_t>>,
    typed<TARVO_SRT_INTEGER2, SignedInt<std::int16_t, std::uint16_t>>,
    typed<TARVO_SRT_INTEGER4, SignedInt<std::int32_t, std::uint32_t>>,
    typed<TARVO_SRT_INTEGER8, SignedInt<std::int64_t, std::uint64_t>>,
    typed<TARVO_SRT_REAL16, Quad>,
};

const TypedCode* typed_code(std::int32_t code) noexcept {
    for (const TypedCode& entry : kTypedCodes)
        if (entry.code == code) return &entry;
    return nullptr;
}

// Codes 1 to 32766 are byte strings of that length. Codes of 0 and below name no element
// either and are refused like the codes above 32766.
bool string_code(std::int32_t code) noexcept { return code >= 1 && code <= kLongestString; }

Byte* address(const std::intptr_t* adr) noexcept { return reinterpret_cast<Byte*>(*adr); }

using Compare = int (*)(const void*, const void*);

// The qsort routines differ only in the integer kinds of the count and the element size,
// both sign-extended.
template <class Len, class Size>
void sort_with(void* array, const Len* len, const Size* isize, Compare compar) noexcept {
    std::qsort(array, static_cast<std::size_t>(std::int64_t{*len}), static_cast<std::size_t>(std::int64_t{*isize}), compar);
}

}  // namespace

// SUBROUTINE SORTQQ(ADRARRAY, COUNT, SIZE), ADRARRAY and COUNT INTEGER(INT_PTR_KIND())
extern "C" TARVO_API void sortqq_(const std::intptr_t* adrarray, std::intptr_t* count, const std::int32_t* size) noexcept {
    const Index n = *count;
    if (n < 1) {
        *count = 0;
        qq::fail(EINVAL);
        return;
    }
    Byte* a = address(adrarray);
    if (const TypedCode* typed = typed_code(*size)) {
        typed->sort(a, n);
    } else if (!string_code(*size)) {
        *count = 0;
        qq::fail(EINVAL);
    } else if (!sort_strings(a, n, *size)) {
        *count = 0;
        qq::fail(ENOMEM);
    }
}

// INTEGER(INT_PTR_KIND()) FUNCTION BSEARCHQQ(ADRKEY, ADRARRAY, LENGTH, SIZE) -- 1-based index, or 0
extern "C" TARVO_API std::intptr_t bsearchqq_(const std::intptr_t* adrkey, const std::intptr_t* adrarray,
                                              const std::intptr_t* length, const std::int32_t* size) noexcept {
    const Index n = *length;
    if (n < 1) return qq::fail(EINVAL);
    if (const TypedCode* typed = typed_code(*size)) return typed->search(address(adrkey), address(adrarray), n);
    if (!string_code(*size)) return qq::fail(EINVAL);
    return search_strings(address(adrkey), address(adrarray), n, static_cast<std::size_t>(*size));
}

// SUBROUTINE QSORT(ARRAY, LEN, ISIZE, COMPAR), LEN and ISIZE INTEGER(8)
extern "C" TARVO_API void qsort_(void* array, const std::int64_t* len, const std::int64_t* isize, Compare compar) noexcept {
    sort_with(array, len, isize, compar);
}

// SUBROUTINE QSORT_II(ARRAY, LEN, ISIZE, COMPAR), LEN and ISIZE INTEGER(4)
extern "C" TARVO_API void qsort_ii_(void* array, const std::int32_t* len, const std::int32_t* isize, Compare compar) noexcept {
    sort_with(array, len, isize, compar);
}

// SUBROUTINE QSORT_IL(ARRAY, LEN, ISIZE, COMPAR), LEN INTEGER(4), ISIZE INTEGER(8)
extern "C" TARVO_API void qsort_il_(void* array, const std::int32_t* len, const std::int64_t* isize, Compare compar) noexcept {
    sort_with(array, len, isize, compar);
}
