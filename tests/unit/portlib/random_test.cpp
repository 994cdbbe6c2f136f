// Random-number routines: RAN's own generator and the flag rule over the shared sequence.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "support/support.h"
#include <tarvo/portlib.h>

namespace {

TEST(Ran, LehmerSequenceWithItsSeedRules) {
    std::int32_t seed = 12345;
    EXPECT_NEAR(ran_(&seed), 0.2774901f, 1e-7f);
    // Schrage's split against the plain 64-bit product, over a long run of the sequence.
    std::int64_t reference = seed;
    for (int i = 0; i < 100000; ++i) {
        reference = reference * 48271 % 2147483647;
        ASSERT_EQ(ran_(&seed), static_cast<float>(reference) * 0x1p-31f);
        ASSERT_EQ(seed, reference);
    }
    std::int32_t minus_one = -1, lowest = INT32_MIN, zero = 0, one = 1;
    ran_(&minus_one);  // works from 2147483646
    ran_(&lowest);     // from -1, as 32-bit arithmetic gives
    EXPECT_EQ(minus_one, 2147483647 - 48271);
    EXPECT_EQ(lowest, 2147483647 - 48271);
    for (int i = 0; i < 2; ++i) {  // seeds 0 and 1 stay and give the same value each time
        EXPECT_EQ(ran_(&zero), 1.0f);
        EXPECT_EQ(ran_(&one), 48271 * 0x1p-31f);
    }
    EXPECT_EQ(zero + one, 1);
}

TEST(FlagRule, OneRestartsZeroContinuesOtherValuesReseedEveryEntry) {
    const std::int32_t restart = 1, go_on = 0, seed = 424242;
    const float first = rand_(&restart);
    const float second = rand_(&go_on);
    EXPECT_EQ(rand_(&restart), first);
    EXPECT_EQ(rand_(nullptr), second);
    EXPECT_EQ(quenvatix_random(&restart), first);
    const std::int32_t whole = irandm_(&seed);
    EXPECT_EQ(irand_(&seed), whole);
    iranset_(&seed);
    EXPECT_EQ(irand_(nullptr), whole % 32768);  // without a flag the value is reduced
    EXPECT_EQ(drand_(&seed), drandm_(&seed));
    bool wide = false;
    for (int i = 0; i < 1000; ++i) {
        const std::int32_t small = irand_(nullptr);
        ASSERT_TRUE(small >= -32767 && small <= 32767);
        wide |= irand_(&go_on) > 32767;
    }
    EXPECT_TRUE(wide);
}

TEST(Seeds, RoundTripAndRealSeedsTruncateTowardZero) {
    std::int32_t saved = 0, again = 0;
    rand_(nullptr);
    ranget_(&saved);
    std::vector<float> draws;
    for (int i = 0; i < 10000; ++i) draws.push_back(rand_(nullptr));
    iranset_(&saved);
    iranget_(&again);
    EXPECT_EQ(again, saved);
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(rand_(nullptr), draws[i]) << "draw " << i;

    const auto seed_after = [](auto set, auto value) {
        set(&value);
        std::int32_t s;
        ranget_(&s);
        return s;
    };
    EXPECT_EQ(seed_after(ranset_, 123.9f), 123);
    EXPECT_EQ(seed_after(dranset_, -5.7), -5);
    EXPECT_EQ(seed_after(dranset_, 1e12), INT32_MAX);  // beyond the range: the nearest end
    EXPECT_EQ(seed_after(dranset_, std::nan("")), 0);
}

TEST(Srand, SeedsTheCLibraryForRanfToo) {
    std::srand(7);
    const int expected = std::rand();
    const std::int32_t seven = 7;
    srand_(&seven);
    EXPECT_EQ(ranf_(), static_cast<float>(expected));
}

}  // namespace
