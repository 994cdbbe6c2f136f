// SORTQQ against a literal Shell sort on every type code, BSEARCHQQ, and the qsort forms.
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
#include "literal_shell_sort.h"
#include <tarvo/qq.h>

namespace {

using namespace literal_sort;

enum Shape { Random, Sorted, Reversed, FewDistinct, SignedZeros, NanLaden };

// Floating-point elements are finite values of a few magnitudes; in the last two shapes a
// third of them are zeros of both signs, infinities or denormals, and NaNs in the last.
Bytes make_input(const Code& c, std::size_t n, Shape shape, std::mt19937_64& rng) {
    const std::size_t w = c.width;
    Bytes data(n * w);
    for (auto& b : data) b = static_cast<unsigned char>(shape == FewDistinct ? 0x41 + rng() % 3 : rng());
    const bool real = c.code == TARVO_SRT_REAL4 || c.code == TARVO_SRT_REAL8 || c.code == TARVO_SRT_REAL16;
    for (std::size_t i = 0; real && i < n; ++i) {
        unsigned char* e = &data[i * w];
        const double x = shape == FewDistinct ? static_cast<double>(rng() % 3)
                                              : std::ldexp(static_cast<double>(rng() % 4001) - 2000, static_cast<int>(rng() % 8));
        const double specials[] = {0.0, -0.0, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                   5e-320, std::nan(""), -std::nan("")};
        const bool special = shape >= SignedZeros && rng() % 3 == 0;
        const double v = special ? specials[rng() % (shape == NanLaden ? 7 : 5)] : x;
        if (c.code == TARVO_SRT_REAL4) {
            const float f = v == 5e-320 ? 1e-40f : static_cast<float>(v);
            std::memcpy(e, &f, 4);
        } else if (c.code == TARVO_SRT_REAL8) {
            std::memcpy(e, &v, 8);
        } else {
            const __float128 q = v;
            std::memcpy(e, &q, 16);
            if (!special && shape != FewDistinct) e[0] = static_cast<unsigned char>(rng());  // low fraction bits vary
        }
    }
    if (shape == Sorted || shape == Reversed) shell_reference(data, c);
    if (shape == Reversed)
        for (std::size_t i = 0, j = n - 1; i < j; ++i, --j) std::swap_ranges(&data[i * w], &data[i * w] + w, &data[j * w]);
    return data;
}

std::intptr_t sort(unsigned char* first, std::intptr_t count, std::int32_t code) {
    const std::intptr_t address = reinterpret_cast<std::intptr_t>(first);
    sortqq_(&address, &count, &code);
    return count;
}

TEST(Sortqq, SameBytesAsTheShellSortForEveryCodeShapeAndSize) {
    std::mt19937_64 rng(14);
    // Sizes around the gap boundaries (13, 40, 121, 364, 1093) and the switch to radix sorting.
    const std::size_t sizes[] = {1, 2, 12, 13, 14, 40, 41, 121, 255, 256, 257, 364, 365, 1093, 1094, 5000};
    for (const Code& c : kCodes)
        for (const Shape shape : {Random, Sorted, Reversed, FewDistinct, SignedZeros, NanLaden})
            for (const std::size_t n : sizes) {
                Bytes data = make_input(c, n, shape, rng), want = data;
                shell_reference(want, c);
                const std::size_t offset = n % 2;  // odd sizes start one byte off alignment
                data.insert(data.begin(), offset, 0x5A);
                ASSERT_EQ(sort(data.data() + offset, n, c.code), static_cast<std::intptr_t>(n));
                ASSERT_TRUE(std::equal(want.begin(), want.end(), data.begin() + offset))
                    << "code " << c.code << " shape " << shape << " n " << n;
            }
}

TEST(Sortqq, RefusalsAndMissingMemory) {
    std::int32_t values[] = {3, 1, 2};
    auto* bytes = reinterpret_cast<unsigned char*>(values);
    for (const auto& [count, code] : std::initializer_list<std::pair<std::intptr_t, std::int32_t>>{
             {0, TARVO_SRT_INTEGER4}, {-5, TARVO_SRT_INTEGER4}, {3, 0x70000}, {3, 32767}, {3, 0}, {3, -4}}) {
        base::for_errsns_load(0, 0, 0, 0, 0);
        EXPECT_TRUE(sort(bytes, count, code) == 0 && base::testing::last_recorded_error() == EINVAL && values[0] == 3) << code;
    }
    // Without memory typed codes still sort (by the Shell sort); byte strings fail with 12.
    std::mt19937_64 rng(3);
    for (const Code& c : {kCodes[5], kCodes[6], kCodes[3], kCodes[11]}) {
        Bytes data = make_input(c, 3000, Random, rng), want = data;
        shell_reference(want, c);
        base::for_errsns_load(0, 0, 0, 0, 0);
        base::testing::fail_allocations_after(0);
        const std::intptr_t count = sort(data.data(), 3000, c.code);
        base::testing::allow_allocations();
        const bool typed = c.code >= 0x10000;
        EXPECT_EQ(count, typed ? 3000 : 0) << c.code;
        EXPECT_EQ(base::testing::last_recorded_error(), typed ? 0 : ENOMEM);
        if (typed) {
            EXPECT_EQ(data, want);
        }
    }
}

TEST(Bsearchqq, FindsEqualElementsOnlyAndRefusesBadArguments) {
    const std::int64_t values[] = {-9, -2, 0, 4, 4, 17, 1000};
    const auto find = [](const void* key, const void* array, std::intptr_t length, std::int32_t code) {
        const std::intptr_t k = reinterpret_cast<std::intptr_t>(key), a = reinterpret_cast<std::intptr_t>(array);
        return bsearchqq_(&k, &a, &length, &code);
    };
    for (const std::int64_t& v : values) {
        const std::intptr_t at = find(&v, values, 7, TARVO_SRT_INTEGER8);
        EXPECT_TRUE(at >= 1 && values[at - 1] == v) << v;
    }
    for (const std::int64_t absent : {-10LL, 1LL, 5LL, 2000LL}) EXPECT_EQ(find(&absent, values, 7, TARVO_SRT_INTEGER8), 0);
    const float reals[] = {1, 2, 3, 4, 5}, nan = std::nanf("");
    EXPECT_EQ(find(&nan, reals, 5, TARVO_SRT_REAL4), 3);  // "found" at the first element probed
    EXPECT_EQ(find("xyz", "abcabdxyz", 3, 3), 3);
    EXPECT_EQ(find("abc", "abc", 1, 3), 1);
    for (const auto& [length, code] : std::initializer_list<std::pair<std::intptr_t, std::int32_t>>{{0, 3}, {3, 0x70000}}) {
        base::for_errsns_load(0, 0, 0, 0, 0);
        EXPECT_TRUE(find("abc", "abc", length, code) == 0 && base::testing::last_recorded_error() == EINVAL);
    }
}

int compare_ints(const void* a, const void* b) {
    const int x = *static_cast<const int*>(a), y = *static_cast<const int*>(b);
    return (x > y) - (x < y);
}

TEST(Qsort, EveryFormReadsItsOwnIntegerKinds) {
    std::vector<int> a = {7, -3, 9, 0, 2}, b = a, c = a;
    const std::int64_t n8 = 5, size8 = 4;
    const std::int32_t n4 = 5, size4 = 4;
    qsort_(a.data(), &n8, &size8, compare_ints);
    qsort_ii_(b.data(), &n4, &size4, compare_ints);
    qsort_il_(c.data(), &n4, &size8, compare_ints);
    EXPECT_TRUE(a == std::vector<int>({-3, 0, 2, 7, 9}) && b == a && c == a);
}

}  // namespace
