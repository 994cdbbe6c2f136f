// SORTQQ against a literal Shell sort on every type code, BSEARCHQQ, and the qsort family.
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using Bytes = std::vector<unsigned char>;

// --- the reference: gaps 1, 4, 13, ... and strictly-greater moves, element by element ---
std::uint32_t word32(const unsigned char* p, int at) {
    std::uint32_t w;
    std::memcpy(&w, p + at, 4);
    return w;
}
std::uint32_t word16(const unsigned char* p, int at) { return p[at] | (p[at + 1] << 8); }

// Sign, then exponent, then fraction words from the most significant, reversed when negative;
// where either exponent is all ones, binary128's own greater-than.
bool quad_greater(const unsigned char* a, const unsigned char* b) {
    const bool na = (a[15] & 0x80) != 0, nb = (b[15] & 0x80) != 0;
    const std::uint32_t ea = word16(a, 14) & 0x7FFF, eb = word16(b, 14) & 0x7FFF;
    if (ea == 0x7FFF || eb == 0x7FFF) {
        __float128 x, y;
        std::memcpy(&x, a, 16);
        std::memcpy(&y, b, 16);
        return x > y;
    }
    if (na != nb) return nb;
    const std::uint32_t fa[] = {ea, word16(a, 12), word32(a, 8), word32(a, 4), word32(a, 0)};
    const std::uint32_t fb[] = {eb, word16(b, 12), word32(b, 8), word32(b, 4), word32(b, 0)};
    for (int i = 0; i < 5; ++i)
        if (fa[i] != fb[i]) return na ? fa[i] < fb[i] : fa[i] > fb[i];
    return false;
}

template <class T>
bool typed_greater(const unsigned char* a, const unsigned char* b) {
    T x, y;
    std::memcpy(&x, a, sizeof x);
    std::memcpy(&y, b, sizeof y);
    return x > y;
}

std::size_t width_of(std::int32_t code) {
    switch (code) {
    case TARVO_SRT_REAL4: case TARVO_SRT_INTEGER4: return 4;
    case TARVO_SRT_REAL8: case TARVO_SRT_INTEGER8: return 8;
    case TARVO_SRT_INTEGER1: return 1;
    case TARVO_SRT_INTEGER2: return 2;
    case TARVO_SRT_REAL16: return 16;
    default: return static_cast<std::size_t>(code);
    }
}

bool greater(std::int32_t code, const unsigned char* a, const unsigned char* b) {
    switch (code) {
    case TARVO_SRT_REAL4: return typed_greater<float>(a, b);
    case TARVO_SRT_REAL8: return typed_greater<double>(a, b);
    case TARVO_SRT_INTEGER1: return typed_greater<std::int8_t>(a, b);
    case TARVO_SRT_INTEGER2: return typed_greater<std::int16_t>(a, b);
    case TARVO_SRT_INTEGER4: return typed_greater<std::int32_t>(a, b);
    case TARVO_SRT_INTEGER8: return typed_greater<std::int64_t>(a, b);
    case TARVO_SRT_REAL16: return quad_greater(a, b);
    default: return std::memcmp(a, b, width_of(code)) > 0;
    }
}

void shell_reference(Bytes& data, std::int32_t code) {
    const std::size_t w = width_of(code);
    const long n = static_cast<long>(data.size() / w);
    long h = 1;
    if (n >= 13) {
        while (h < n) h = 3 * h + 1;
        h = ((h - 1) / 3 - 1) / 3;
    }
    Bytes v(w);
    for (;; h = (h - 1) / 3) {
        for (long i = h; i < n; ++i) {
            std::memcpy(v.data(), &data[i * w], w);
            long j = i;
            for (; j >= h && greater(code, &data[(j - h) * w], v.data()); j -= h)
                std::memcpy(&data[j * w], &data[(j - h) * w], w);
            std::memcpy(&data[j * w], v.data(), w);
        }
        if (h == 1) break;
    }
}

// --- inputs -------------------------------------------------------------------------------
enum class Shape { Random, Sorted, Reversed, FewDistinct, Special, SignedZeros };

// Values that make equal-comparing elements distinguishable, or incomparable.
// SignedZeros leaves the NaNs out, so zeros of both signs are what the sort has to keep apart.
Bytes special_value(std::int32_t code, std::mt19937_64& rng, Shape shape) {
    Bytes b(width_of(code), 0);
    static constexpr int kFloatsWithoutNan[] = {0, 1, 4, 5};
    const int any = static_cast<int>(rng() % 6), no_nan = static_cast<int>(rng() % 4);
    const int pick = shape == Shape::Special ? any : code == TARVO_SRT_REAL16 ? no_nan : kFloatsWithoutNan[no_nan];
    auto put = [&b](auto v) { std::memcpy(b.data(), &v, sizeof v); };
    switch (code) {
    case TARVO_SRT_REAL4: {
        const float v[] = {0.0f, -0.0f, std::nanf(""), -std::nanf(""), std::numeric_limits<float>::infinity(), 1e-40f};
        put(v[pick]);
        break;
    }
    case TARVO_SRT_REAL8: {
        const double v[] = {0.0, -0.0, std::nan(""), -std::nan("1"), -std::numeric_limits<double>::infinity(), 5e-320};
        put(v[pick]);
        break;
    }
    case TARVO_SRT_REAL16:  // zeros, infinities and NaNs of both signs
        b[15] = pick % 2 ? 0x80 : 0;
        if (pick >= 2) b[14] = 0xFF, b[15] |= 0x7F;
        if (pick >= 4) b[static_cast<int>(rng() % 14)] = 1;
        break;
    default:
        for (auto& c : b) c = pick % 2 ? 0xFF : 0;
        if (pick >= 4) b[0] = 0x80;
    }
    return b;
}

Bytes make_input(std::int32_t code, std::size_t n, Shape shape, std::mt19937_64& rng) {
    const std::size_t w = width_of(code);
    Bytes data(n * w);
    for (std::size_t i = 0; i < n; ++i) {
        unsigned char* e = &data[i * w];
        if ((shape == Shape::Special || shape == Shape::SignedZeros) && rng() % 3 == 0) {
            const Bytes v = special_value(code, rng, shape);
            std::memcpy(e, v.data(), w);
            continue;
        }
        for (std::size_t k = 0; k < w; ++k) e[k] = static_cast<unsigned char>(rng());
        if (shape == Shape::FewDistinct)
            for (std::size_t k = 0; k < w; ++k) e[k] = static_cast<unsigned char>(e[k] % 3 == 0 ? 0x41 : 0xC0);
        // Floating-point values of sensible magnitude (random exponents are mostly huge or NaN).
        if (code == TARVO_SRT_REAL4) {
            const float f = static_cast<float>(static_cast<std::int64_t>(rng() % 2001) - 1000) / 8.0f;
            std::memcpy(e, &f, 4);
        } else if (code == TARVO_SRT_REAL8 && shape != Shape::FewDistinct) {
            const double d = std::ldexp(static_cast<double>(static_cast<std::int64_t>(rng())), -40);
            std::memcpy(e, &d, 8);
        } else if (code == TARVO_SRT_REAL16) {
            e[14] = static_cast<unsigned char>(rng() % 8);  // keeps the exponent away from all ones
            e[15] = static_cast<unsigned char>((rng() % 2) << 7 | 0x3F);
        }
    }
    if (shape == Shape::Sorted || shape == Shape::Reversed) {
        shell_reference(data, code);
        if (shape == Shape::Reversed)
            for (std::size_t i = 0, j = n - 1; i < j; ++i, --j)
                std::swap_ranges(&data[i * w], &data[i * w] + w, &data[j * w]);
    }
    return data;
}

void sort(Bytes& data, std::size_t offset, std::int32_t code) {
    const std::intptr_t address = reinterpret_cast<std::intptr_t>(data.data() + offset);
    std::intptr_t count = static_cast<std::intptr_t>((data.size() - offset) / width_of(code));
    sortqq_(&address, &count, &code);
    ASSERT_NE(count, 0);
}

constexpr std::int32_t kCodes[] = {TARVO_SRT_REAL4,    TARVO_SRT_REAL8,    TARVO_SRT_INTEGER1,
                                   TARVO_SRT_INTEGER2, TARVO_SRT_INTEGER4, TARVO_SRT_INTEGER8,
                                   TARVO_SRT_REAL16,   1, 2, 3, 4, 5, 8, 16, 17};

TEST(Sortqq, SameBytesAsTheShellSortForEveryCodeShapeAndSize) {
    std::mt19937_64 rng(14);
    // Sizes around the gap boundaries (13, 40, 121, 364, 1093) and the switch to radix sorting.
    const std::size_t sizes[] = {1, 2, 12, 13, 14, 40, 41, 121, 255, 256, 257, 364, 365, 1093, 1094, 5000};
    for (const std::int32_t code : kCodes)
        for (const Shape shape : {Shape::Random, Shape::Sorted, Shape::Reversed, Shape::FewDistinct, Shape::Special,
                                  Shape::SignedZeros})
            for (const std::size_t n : sizes) {
                const std::size_t offset = n % 2;  // odd sizes start one byte off alignment
                Bytes data = make_input(code, n, shape, rng);
                Bytes want = data;
                shell_reference(want, code);
                data.insert(data.begin(), offset, 0x5A);
                sort(data, offset, code);
                ASSERT_TRUE(std::equal(want.begin(), want.end(), data.begin() + static_cast<long>(offset)))
                    << "code " << code << " shape " << static_cast<int>(shape) << " n " << n;
            }
}

TEST(Sortqq, WithoutMemoryTypedCodesStillSortAndStringsFail) {
    std::mt19937_64 rng(3);
    for (const std::int32_t code : std::initializer_list<std::int32_t>{TARVO_SRT_INTEGER8, TARVO_SRT_REAL16, TARVO_SRT_INTEGER2, 8, 5}) {
        Bytes data = make_input(code, 3000, Shape::Random, rng), want = data;
        shell_reference(want, code);
        const std::intptr_t address = reinterpret_cast<std::intptr_t>(data.data());
        std::intptr_t count = 3000;
        base::for_errsns_load(0, 0, 0, 0, 0);
        base::testing::fail_allocations_after(0);
        sortqq_(&address, &count, &code);
        base::testing::allow_allocations();
        if (code < 0x10000) {
            EXPECT_TRUE(count == 0 && base::last_recorded_error() == ENOMEM) << code;
        } else {
            EXPECT_TRUE(count == 3000 && data == want && base::last_recorded_error() == 0) << code;
        }
    }
}

TEST(Sortqq, BadCountsAndCodesAreRefusedUntouched) {
    std::int32_t values[] = {3, 1, 2};
    const std::intptr_t address = reinterpret_cast<std::intptr_t>(values);
    for (const std::intptr_t bad_count : {std::intptr_t{0}, std::intptr_t{-5}}) {
        std::intptr_t count = bad_count;
        const std::int32_t code = TARVO_SRT_INTEGER4;
        base::for_errsns_load(0, 0, 0, 0, 0);
        sortqq_(&address, &count, &code);
        EXPECT_TRUE(count == 0 && base::last_recorded_error() == EINVAL);
    }
    for (const std::int32_t code : std::initializer_list<std::int32_t>{0x70000, 32767, 0x90000, 0, -4}) {
        std::intptr_t count = 3;
        base::for_errsns_load(0, 0, 0, 0, 0);
        sortqq_(&address, &count, &code);
        EXPECT_TRUE(count == 0 && base::last_recorded_error() == EINVAL && values[0] == 3 && values[1] == 1) << code;
    }
    char names[] = "delta" "alpha" "charl" "bravo";  // CHARACTER(5) elements
    const std::intptr_t names_address = reinterpret_cast<std::intptr_t>(names);
    std::intptr_t count = 4;
    const std::int32_t five = 5;
    sortqq_(&names_address, &count, &five);
    EXPECT_EQ(std::string(names, 20), "alphabravocharldelta");
}

TEST(Bsearchqq, FindsEveryElementAndNothingElse) {
    const std::int64_t values[] = {-9, -2, 0, 4, 4, 17, 1000};
    const std::intptr_t address = reinterpret_cast<std::intptr_t>(values);
    const std::intptr_t length = 7;
    const std::int32_t code = TARVO_SRT_INTEGER8;
    for (int i = 0; i < 7; ++i) {
        const std::intptr_t key = reinterpret_cast<std::intptr_t>(&values[i]);
        const std::intptr_t at = bsearchqq_(&key, &address, &length, &code);
        EXPECT_TRUE(at >= 1 && values[at - 1] == values[i]) << i;
    }
    for (const std::int64_t absent : {-10LL, 1LL, 5LL, 2000LL}) {
        const std::intptr_t key = reinterpret_cast<std::intptr_t>(&absent);
        EXPECT_EQ(bsearchqq_(&key, &address, &length, &code), 0);
    }
    // A NaN key is "found" at the first element probed; byte strings compare as memcmp.
    const float reals[] = {1, 2, 3, 4, 5}, nan = std::nanf("");
    const std::intptr_t reals_at = reinterpret_cast<std::intptr_t>(reals), nan_at = reinterpret_cast<std::intptr_t>(&nan);
    const std::intptr_t five = 5, one = 1;
    const std::int32_t real4 = TARVO_SRT_REAL4, three = 3;
    EXPECT_EQ(bsearchqq_(&nan_at, &reals_at, &five, &real4), 3);
    const char words[] = "abcabdxyz", key[] = "xyz";
    const std::intptr_t words_at = reinterpret_cast<std::intptr_t>(words), key_at = reinterpret_cast<std::intptr_t>(key);
    const std::intptr_t three_long = 3;
    EXPECT_EQ(bsearchqq_(&key_at, &words_at, &three_long, &three), 3);
    EXPECT_EQ(bsearchqq_(&words_at, &words_at, &one, &three), 1);
    for (const auto& [len, size] : {std::pair<std::intptr_t, std::int32_t>{0, three}, {3, 0x70000}}) {
        base::for_errsns_load(0, 0, 0, 0, 0);
        EXPECT_EQ(bsearchqq_(&key_at, &words_at, &len, &size), 0);
        EXPECT_EQ(base::last_recorded_error(), EINVAL);
    }
}

int compare_ints(const void* a, const void* b) {
    const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

TEST(Qsort, EveryFormReadsItsOwnIntegerKinds) {
    const std::vector<int> want = {-3, 0, 2, 7, 9};
    std::vector<int> a = {7, -3, 9, 0, 2}, b = a, c = a;
    const std::int64_t n8 = 5, size8 = 4;
    const std::int32_t n4 = 5, size4 = 4;
    qsort_(a.data(), &n8, &size8, compare_ints);
    qsort_ii_(b.data(), &n4, &size4, compare_ints);
    qsort_il_(c.data(), &n4, &size8, compare_ints);
    EXPECT_TRUE(a == want && b == want && c == want);
}

}  // namespace
