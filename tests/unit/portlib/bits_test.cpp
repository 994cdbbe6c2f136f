// Bit, shift and numeric routines over their boundary grids, called as Fortran calls them.
#include <cerrno>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "base/memory.h"
#include "base/record.h"
#include "support/support.h"
#include <tarvo/portlib.h>

namespace {

constexpr std::int32_t kMin32 = INT32_MIN, kMax32 = INT32_MAX;
constexpr std::int64_t kMin64 = INT64_MIN, kMax64 = INT64_MAX;
// The counts every shift is checked at, and what each INTEGER(4) shift gives there.
const std::vector<std::int32_t> kCounts = {-1, 0, 31, 32, 33, 63, 64, 65, kMin32, kMax32};

using Shift32 = std::int32_t (*)(const std::int32_t*, const std::int32_t*);

std::vector<std::int32_t> over_counts(Shift32 f, std::int32_t value) {
    std::vector<std::int32_t> out;
    for (std::int32_t c : kCounts) out.push_back(f(&value, &c));
    return out;
}

TEST(Shifts, IntegerFourShiftsOverTheCountGrid) {
    using V = std::vector<std::int32_t>;
    //                               -1  0      31    32  33    63  64 65 min max
    EXPECT_EQ(over_counts(lshift_, 1), (V{0, 1, kMin32, 1, 2, kMin32, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(rshift_, -8), (V{0, -8, -1, -8, -4, -1, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(rshift_, kMin32), (V{0, kMin32, -1, kMin32, kMin32 / 2, -1, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(shiftl_, 1), (V{0, 1, kMin32, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(shiftr_, -1), (V{0, -1, 1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(shiftr_, kMin32), (V{0, kMin32, 1, 0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(over_counts(lshift_, kMax32), (V{0, kMax32, kMin32, kMax32, -2, kMin32, 0, 0, 0, 0}));
}

TEST(Shifts, FunnelShiftsOverTheCountGridByReferenceAndByValue) {
    const std::vector<std::int64_t> counts = {-1, 0, 1, 31, 32, 33, 63, 64, 65, kMin64, kMax64};
    const std::int64_t left = 1, right = kMin64;  // one bit at each outer end of the pair
    const std::vector<std::int64_t> want_l = {0, 1, 3, 3LL << 30, 3LL << 31, 3LL << 32, kMin64 | (1LL << 62),
                                              kMin64, 0, 0, 0};
    const std::vector<std::int64_t> want_r = {0, kMin64, kMin64 | (1LL << 62), 3LL << 32, 3LL << 31, 3LL << 30, 3,
                                              1, 0, 0, 0};
    for (std::size_t i = 0; i < counts.size(); ++i) {
        SCOPED_TRACE(counts[i]);
        EXPECT_EQ(dshiftl_(&left, &right, &counts[i]), want_l[i]);
        EXPECT_EQ(dshiftr_(&left, &right, &counts[i]), want_r[i]);
        EXPECT_EQ(_dshiftl(left, right, counts[i]), want_l[i]);
        EXPECT_EQ(_dshiftr(left, right, counts[i]), want_r[i]);
    }
    EXPECT_EQ(_dshiftr(0x0123456789ABCDEF, kMax64, 4), 0xF7FFFFFFFFFFFFFF);  // logical, whatever the signs
}

TEST(Bits, PositionsOutsideTheWordChangeNothingAndReadAsClear) {
    const std::vector<std::int32_t> positions = {-1, 0, 31, 32, 33, 63, 64, 65, kMin32, kMax32};
    for (std::int32_t n : positions) {
        SCOPED_TRACE(n);
        std::int32_t w4 = 0, full4 = -1;
        std::int64_t w8 = 0, full8 = -1;
        bis_(&n, &w4);
        bisi8_(&n, &w8);
        const bool in4 = n >= 0 && n <= 31, in8 = n >= 0 && n <= 63;
        // Reading bit 31 (63) of a negative word gives 1.
        EXPECT_EQ(std::make_tuple(bit_(&n, &w4), biti8_(&n, &w8), bit_(&n, &full4), biti8_(&n, &full8)),
                  std::make_tuple(int{in4}, std::int64_t{in8}, int{in4}, std::int64_t{in8}));
        EXPECT_EQ(std::make_pair(w4, w8), std::make_pair(in4 ? static_cast<std::int32_t>(1u << n) : 0,
                                                         in8 ? static_cast<std::int64_t>(1ull << n) : 0));
        bic_(&n, &full4);
        bici8_(&n, &full8);
        EXPECT_EQ(std::make_pair(full4, full8), std::make_pair(~w4, ~w8));
    }
}

TEST(Numeric, ComplementsDifferencesAndIntegerEdges) {
    const std::int32_t x = 0x0F0F0F0F, y = 0x33333333, mask = 0x00FF00FF, zero = 0, two = 2;
    const float one = 1.0f, f3 = 3.0f, nan = std::nanf("");
    const float complement = complreal_(&one);
    std::uint32_t bits;
    std::memcpy(&bits, &complement, sizeof bits);
    EXPECT_EQ(std::make_tuple(complint_(&x), csmg_(&x, &y, &mask), compllog_(&zero), compllog_(&two), bits),
              std::make_tuple(~x, 0x330F330F, 1, 0, ~0x3F800000u));
    EXPECT_EQ(std::make_tuple(dim_(&f3, &one), dim_(&one, &f3)), std::make_tuple(2.0f, 0.0f));
    EXPECT_TRUE(std::isnan(dim_(&nan, &one)) && std::isnan(dim_(&one, &nan)));
    const double d1 = 1.0, d3 = 3.5;
    EXPECT_EQ(std::make_tuple(ddim_(&d3, &d1), ddim_(&d1, &d3)), std::make_tuple(2.5, 0.0));
    const std::int16_t hi = 32767, lo = -32768, small = 5, m1s = -1, a = -7, p = 3, zero_divisor = 0;
    EXPECT_EQ(std::make_tuple(iidim_(&hi, &lo), iidim_(&lo, &small)), std::make_tuple(65535, 0));  // 32 bits
    const std::int32_t max = kMax32, min = kMin32, m1 = -1, seven = 7, three = 3;
    EXPECT_EQ(std::make_tuple(jdim_(&max, &m1), jdim_(&seven, &three), jdim_(&three, &seven)),
              std::make_tuple(0, 4, 0));  // the sign of the wrapped difference decides
    EXPECT_EQ(std::make_tuple(jabs_(&min), jabs_(&m1), jmod_(&a, &p), jmod_(&lo, &m1s)),
              std::make_tuple(min, 1, -1, 0));
    // The default action, not a sanitizer's report, ends the child.
    EXPECT_EXIT((std::signal(SIGFPE, SIG_DFL), jmod_(&a, &zero_divisor)), ::testing::KilledBySignal(SIGFPE), "");
    EXPECT_EQ(std::make_pair(long_(&lo), inmax_()), std::make_pair(-32768, max));
}

TEST(Numeric, ConversionsReadTheirArgumentWidthsAndYBesselsAreZeroAtInfinity) {
    const std::int16_t i2[2] = {-32768, 1};  // a wider read would see the neighbour
    const std::int64_t i8 = (1LL << 53) + 2;
    const float complex4[2] = {0.1f, 7.0f};
    EXPECT_EQ(std::make_tuple(ifloati_(i2), dfloati_(i2), dfloatk_(&i8), cdfloat_(complex4)),
              std::make_tuple(-32768.0f, -32768.0, 9007199254740994.0, double{0.1f}));
    const std::int32_t n = 3;
    for (float inf : {INFINITY, -INFINITY}) {  // the C library gives NaN for y0(-inf)
        const double dinf = inf;
        EXPECT_EQ(std::make_tuple(besy0_(&inf), besy1_(&inf), besyn_(&n, &inf), besj0_(&inf)),
                  std::make_tuple(0.0f, 0.0f, 0.0f, static_cast<float>(j0(inf))));
        EXPECT_EQ(std::make_tuple(dbesy0_(&dinf), dbesy1_(&dinf), dbesyn_(&n, &dinf)), std::make_tuple(0.0, 0.0, 0.0));
    }
    const float x = 2.5f;  // computed in double, then rounded
    EXPECT_EQ(std::make_tuple(besjn_(&n, &x), besy0_(&x)), std::make_tuple(float(jn(3, 2.5)), float(y0(2.5))));
}

std::int32_t rindex_of(const std::string& s, const std::string& sub) {
    return rindex_(s.data(), sub.data(), s.size(), sub.size());
}

TEST(Rindex, LastOccurrenceOverTheFullDeclaredLengths) {
    EXPECT_EQ(std::make_tuple(rindex_of("hello world", "o"), rindex_of("abc", "abcd"), rindex_of("abc", ""),
                              rindex_of("", ""), rindex_of("abab", "ab"), rindex_of("abab", "abab")),
              std::make_tuple(8, 0, 4, 1, 3, 1));
    // Trailing blanks and NULs are part of the strings.
    EXPECT_EQ(std::make_tuple(rindex_of("a b  ", " "), rindex_of("ab", "b "), rindex_of(std::string("a\0b\0", 4), std::string(1, '\0'))),
              std::make_tuple(5, 0, 4));
}

TEST(Rindex, AllocationFailureRecordsTheErrorAndFindsNothing) {
    base::testing::fail_allocations_after(1);
    const std::int32_t got = rindex_of("hello", "l");
    base::testing::allow_allocations();
    EXPECT_EQ(got, 0);
    EXPECT_EQ(base::testing::last_recorded_error(), ENOMEM);
}

}  // namespace
