// Bit, shift and numeric routines over their boundary grids, called as Fortran calls them.
#include <sys/wait.h>

#include <cerrno>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
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
    const std::int32_t v = -1, c5 = 5, c28 = 28;
    EXPECT_EQ(rshift_(&v, &c5), -1);   // arithmetic
    EXPECT_EQ(shiftr_(&v, &c28), 15);  // logical
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
    const std::int64_t one = 1, minus_one = -1, a = 0x0123456789ABCDEF, b = kMax64;
    EXPECT_EQ(dshiftl_(&one, &minus_one, &one), 3);
    EXPECT_EQ(_dshiftl(a, b, 64), b);
    EXPECT_EQ(_dshiftr(a, b, 64), a);
    EXPECT_EQ(_dshiftr(a, b, 4), 0xF7FFFFFFFFFFFFFF);  // zeros never enter from the right word's sign
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
        EXPECT_EQ(w4, in4 ? static_cast<std::int32_t>(1u << n) : 0);
        EXPECT_EQ(w8, in8 ? static_cast<std::int64_t>(1ull << n) : 0);
        EXPECT_EQ(bit_(&n, &w4), in4 ? 1 : 0);
        EXPECT_EQ(biti8_(&n, &w8), in8 ? 1 : 0);
        EXPECT_EQ(bit_(&n, &full4), in4 ? 1 : 0);  // bit 31 of a negative word is set
        EXPECT_EQ(biti8_(&n, &full8), in8 ? 1 : 0);
        bic_(&n, &full4);
        bici8_(&n, &full8);
        EXPECT_EQ(full4, ~w4);
        EXPECT_EQ(full8, ~w8);
    }
}

TEST(Complements, PatternsOfIntegersRealsAndLogicals) {
    const std::int32_t zero = 0, two = 2, x = 0x0F0F0F0F, y = 0x33333333, mask = 0x00FF00FF;
    EXPECT_EQ(complint_(&x), static_cast<std::int32_t>(0xF0F0F0F0));
    EXPECT_EQ(std::make_tuple(compllog_(&zero), compllog_(&two)), std::make_tuple(1, 0));
    EXPECT_EQ(csmg_(&x, &y, &mask), 0x330F330F);
    const float one = 1.0f;
    const float c = complreal_(&one);
    std::uint32_t bits;
    std::memcpy(&bits, &c, sizeof bits);
    EXPECT_EQ(bits, ~0x3F800000u);
}

TEST(Differences, SignAndWrapRules) {
    const float f1 = 1.5f, f3 = 3.0f, nan = std::nanf("");
    const double d1 = 1.0, d3 = 3.5;
    EXPECT_EQ(dim_(&f3, &f1), 1.5f);
    EXPECT_EQ(dim_(&f1, &f3), 0.0f);
    EXPECT_TRUE(std::isnan(dim_(&nan, &f1)) && std::isnan(dim_(&f1, &nan)));
    EXPECT_EQ(ddim_(&d3, &d1), 2.5);
    EXPECT_EQ(ddim_(&d1, &d3), 0.0);
    const std::int16_t hi = 32767, lo = -32768, small = 5;
    EXPECT_EQ(iidim_(&hi, &lo), 65535);  // no 16-bit wrap
    EXPECT_EQ(iidim_(&lo, &small), 0);
    const std::int32_t max = kMax32, min = kMin32, m1 = -1, seven = 7, three = 3;
    EXPECT_EQ(jdim_(&max, &m1), 0);  // the wrapped difference is negative
    EXPECT_EQ(jdim_(&seven, &three), 4);
    EXPECT_EQ(jdim_(&three, &seven), 0);
    EXPECT_EQ(std::make_tuple(jabs_(&min), jabs_(&m1), jabs_(&max)), std::make_tuple(min, 1, max));
}

TEST(IntegerFunctions, ModuloConversionsAndLimits) {
    const std::int16_t a = -7, p = 3, big = -32768, m1 = -1;
    EXPECT_EQ(jmod_(&a, &p), -1);
    EXPECT_EQ(jmod_(&big, &m1), 0);
    const std::int16_t zero = 0;
    EXPECT_EXIT(jmod_(&a, &zero), ::testing::KilledBySignal(SIGFPE), "");
    const std::int32_t v = -123456789;
    const std::int64_t k = (1LL << 53) + 1;
    EXPECT_EQ(std::make_tuple(inmax_(), intc_(&v), long_(&big), static_cast<std::int16_t>(short_(&v))),
              std::make_tuple(kMax32, v, -32768, static_cast<std::int16_t>(v)));
    EXPECT_EQ(ifloati_(&big), -32768.0f);
    EXPECT_EQ(ifloatj_(&v), static_cast<float>(v));
    EXPECT_EQ(std::make_tuple(dfloati_(&big), dfloatj_(&v), idfloat_(&v)), std::make_tuple(-32768.0, -123456789.0, -123456789.0));
    EXPECT_EQ(dfloatk_(&k), static_cast<double>(k));
    const float re = 0.1f;
    EXPECT_EQ(cdfloat_(&re), static_cast<double>(0.1f));
}

TEST(Bessel, YFormsGiveZeroAtInfinityAndSinglePrecisionNarrowsTheDoubleResult) {
    const float inf = INFINITY, ninf = -INFINITY, x = 2.5f;
    const double dinf = INFINITY, dninf = -INFINITY, dx = 2.5;
    const std::int32_t n = 3;
    for (float v : {inf, ninf}) {
        EXPECT_EQ(besy0_(&v), 0.0f);
        EXPECT_EQ(besy1_(&v), 0.0f);
        EXPECT_EQ(besyn_(&n, &v), 0.0f);
        EXPECT_EQ(besj0_(&v), static_cast<float>(j0(v)));
    }
    for (double v : {dinf, dninf}) EXPECT_EQ(dbesy0_(&v) + dbesy1_(&v) + dbesyn_(&n, &v), 0.0);
    EXPECT_TRUE(std::isnan(y0(-INFINITY)));  // what the Y forms are spared
    EXPECT_EQ(besj1_(&x), static_cast<float>(j1(2.5)));
    EXPECT_EQ(besjn_(&n, &x), static_cast<float>(jn(3, 2.5)));
    EXPECT_EQ(besy0_(&x), static_cast<float>(y0(2.5)));
    EXPECT_EQ(std::make_tuple(dbesj0_(&dx), dbesj1_(&dx), dbesjn_(&n, &dx), dbesy1_(&dx)),
              std::make_tuple(j0(2.5), j1(2.5), jn(3, 2.5), y1(2.5)));
}

std::int32_t rindex_of(const std::string& s, const std::string& sub) {
    return rindex_(s.data(), sub.data(), s.size(), sub.size());
}

TEST(Rindex, LastOccurrenceOverTheFullDeclaredLengths) {
    EXPECT_EQ(rindex_of("hello world", "o"), 8);
    EXPECT_EQ(rindex_of("abc", "abcd"), 0);
    EXPECT_EQ(rindex_of("abc", ""), 4);
    EXPECT_EQ(rindex_of("", ""), 1);
    EXPECT_EQ(rindex_of("abab", "ab"), 3);
    EXPECT_EQ(rindex_of("abab", "abab"), 1);
    EXPECT_EQ(rindex_of("a b  ", " "), 5);   // trailing blanks are part of the string
    EXPECT_EQ(rindex_of("ab", "b "), 0);
    EXPECT_EQ(rindex_of(std::string("a\0b\0", 4), std::string("\0", 1)), 4);
}

TEST(Rindex, AllocationFailureRecordsTheErrorAndFindsNothing) {
    base::testing::fail_allocations_after(1);
    const std::int32_t got = rindex_of("hello", "l");
    base::testing::allow_allocations();
    EXPECT_EQ(got, 0);
    EXPECT_EQ(base::last_recorded_error(), ENOMEM);
}

}  // namespace
