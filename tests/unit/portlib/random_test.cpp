// Random-number routines: RAN's own generator and the flag rule over the shared sequence.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support/support.h"
#include <tarvo/portlib.h>

namespace {

TEST(Ran, LehmerSequenceModuloTwoToTheThirtyOneMinusOne) {
    std::int32_t seed = 12345;
    EXPECT_NEAR(ran_(&seed), 0.2774901f, 1e-7f);
    EXPECT_EQ(seed, 595905495);
    // Schrage's split against the plain 64-bit product, over a long run of the sequence.
    std::int64_t reference = seed;
    for (int i = 0; i < 100000; ++i) {
        reference = reference * 48271 % 2147483647;
        const float value = ran_(&seed);
        ASSERT_EQ(seed, reference);
        ASSERT_EQ(value, static_cast<float>(reference) * 0x1p-31f);
    }
}

TEST(Ran, NegativeSeedsAreFoldedAndSeedsZeroAndOneStayPut) {
    std::int32_t minus_one = -1, lowest = INT32_MIN;
    ran_(&minus_one);  // works from 2147483646
    ran_(&lowest);     // works from -1, as 32-bit arithmetic gives
    EXPECT_EQ(minus_one, 2147483647 - 48271);
    EXPECT_EQ(lowest, 2147483647 - 48271);
    for (int i = 0; i < 3; ++i) {
        std::int32_t zero = 0, one = 1;
        EXPECT_EQ(ran_(&zero), 1.0f);
        EXPECT_EQ(ran_(&one), 48271 * 0x1p-31f);
        EXPECT_EQ(zero + one, 1);
    }
}

TEST(FlagRule, OneRestartsZeroContinuesOtherValuesReseed) {
    const std::int32_t restart = 1, go_on = 0, seed = 424242;
    const float first = rand_(&restart);
    const float second = rand_(&go_on);
    EXPECT_EQ(rand_(&restart), first);
    EXPECT_EQ(rand_(nullptr), second);
    EXPECT_NE(first, second);
    // Every drawing entry reads the one sequence the same way.
    EXPECT_EQ(quenvatix_random(&restart), first);
    const std::int32_t by_seed = irandm_(&seed);
    EXPECT_EQ(irand_(&seed), by_seed);
    iranset_(&seed);
    EXPECT_EQ(irand_(&go_on), by_seed);
    const double d = drand_(&seed);
    EXPECT_EQ(drandm_(&seed), d);
    EXPECT_TRUE(d >= 0.0 && d < 1.0);
}

TEST(FlagRule, IrandWithoutArgumentIsReducedWithOneItIsWhole) {
    const std::int32_t seed = 99, go_on = 0;
    iranset_(&seed);
    const std::int32_t reduced = irand_(nullptr);
    const std::int32_t whole = irand_(&seed);  // reseeds to 99: the same draw, unreduced
    EXPECT_EQ(reduced, whole % 32768);
    bool wide = false;
    for (int i = 0; i < 1000; ++i) {
        const std::int32_t small = irand_(nullptr);
        ASSERT_TRUE(small >= -32767 && small <= 32767);
        wide |= irand_(&go_on) > 32767;
    }
    EXPECT_TRUE(wide);
}

TEST(Seeds, GetAndSetRoundTripAndRealSeedsTruncateTowardZero) {
    const std::int32_t start = 31337;
    iranset_(&start);
    rand_(nullptr);
    std::int32_t saved = 0, again = 0;
    ranget_(&saved);
    std::vector<float> draws;
    for (int i = 0; i < 10000; ++i) draws.push_back(rand_(nullptr));
    iranset_(&saved);
    iranget_(&again);
    EXPECT_EQ(again, saved);
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(rand_(nullptr), draws[i]) << "draw " << i;

    const auto after = [](auto set, auto seed) {
        set(&seed);
        return rand_(nullptr);
    };
    const std::int32_t minus_five = -5, hundred = 123;
    EXPECT_EQ(after(ranset_, 123.9f), after(iranset_, hundred));
    EXPECT_EQ(after(dranset_, -5.7), after(iranset_, minus_five));
    EXPECT_EQ(after(dranset_, 1e12), after(iranset_, INT32_MAX));  // beyond the range: the nearest end
    EXPECT_EQ(after(dranset_, std::nan("")), after(iranset_, 0));
}

TEST(Srand, SeedsTheSharedSequenceAndTheCLibraryForRanf) {
    std::srand(7);
    const int expected = std::rand();
    const std::int32_t seven = 7;
    srand_(&seven);
    EXPECT_EQ(ranf_(), static_cast<float>(expected));
    srand_(&seven);
    const float shared = rand_(nullptr);
    iranset_(&seven);
    EXPECT_EQ(rand_(nullptr), shared);
}

}  // namespace
