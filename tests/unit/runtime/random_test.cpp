// The shared random generator: statistical quality and the seed round trip.
#include <cmath>
#include <cstdint>
#include <vector>

#include "runtime/random.h"
#include "support/support.h"

namespace {

constexpr int kDraws = 1000000;

TEST(SharedGenerator, UniformAndSeriallyUncorrelatedOverAMillionDraws) {
    runtime::__FFsetseed(20240607);
    constexpr int kBins = 100;
    std::vector<double> counts(kBins, 0.0);
    std::vector<double> pairs(16 * 16, 0.0);
    double sum = 0, sum_sq = 0, lag = 0, previous = runtime::__FFfrand();
    for (int i = 0; i < kDraws; ++i) {
        const double u = runtime::__FFfrand();
        ASSERT_TRUE(u >= 0.0 && u < 1.0);
        counts[static_cast<int>(u * kBins)] += 1;
        pairs[static_cast<int>(previous * 16) * 16 + static_cast<int>(u * 16)] += 1;
        sum += u;
        sum_sq += u * u;
        lag += previous * u;
        previous = u;
    }
    const auto chi_square = [](const std::vector<double>& observed, double expected) {
        double chi = 0;
        for (double o : observed) chi += (o - expected) * (o - expected) / expected;
        return chi;
    };
    // Limits well beyond the 0.999 quantiles (148 for 99 and 330 for 255 degrees of freedom).
    EXPECT_LT(chi_square(counts, kDraws / double(kBins)), 160.0);
    EXPECT_LT(chi_square(pairs, kDraws / 256.0), 350.0);
    const double mean = sum / kDraws, variance = sum_sq / kDraws - mean * mean;
    EXPECT_NEAR(mean, 0.5, 0.002);
    EXPECT_NEAR(variance, 1.0 / 12, 0.001);
    const double correlation = (lag / kDraws - mean * mean) / variance;
    EXPECT_LT(std::fabs(correlation), 4.0 / std::sqrt(double(kDraws)));
}

TEST(SharedGenerator, EveryBitOfTheIntegersIsFair) {
    runtime::__FFresetseed();
    std::vector<int> ones(31, 0);
    for (int i = 0; i < kDraws; ++i) {
        const std::int32_t v = runtime::__FFirand();
        ASSERT_GE(v, 0);
        for (int b = 0; b < 31; ++b) ones[b] += (v >> b) & 1;
    }
    for (int b = 0; b < 31; ++b) EXPECT_NEAR(ones[b], kDraws / 2, 2500) << "bit " << b;  // 5 sigma
}

TEST(SharedGenerator, SeedRoundTripContinuesTheSequenceExactly) {
    runtime::__FFsetseed(-77);
    for (int i = 0; i < 123; ++i) runtime::__FFdrand();
    std::int32_t seed = 0;
    runtime::__FFgetseed(&seed);
    std::vector<double> first;
    for (int i = 0; i < 10000; ++i) first.push_back(i % 3 == 0 ? runtime::__FFdrand() : runtime::__FFfrand());
    runtime::__FFresetseed();
    runtime::__FFsetseed(seed);
    for (int i = 0; i < 10000; ++i)
        ASSERT_EQ(i % 3 == 0 ? runtime::__FFdrand() : runtime::__FFfrand(), first[i]) << "draw " << i;
    std::int32_t initial = 0;
    runtime::__FFresetseed();
    runtime::__FFgetseed(&initial);
    EXPECT_EQ(initial, runtime::kInitialSeed);
}

TEST(SharedGenerator, DoublesCarryMoreThanThirtyTwoBits) {
    runtime::__FFresetseed();
    int fine = 0;
    for (int i = 0; i < 1000; ++i) {
        const double d = runtime::__FFdrand() * 0x1p32;
        fine += d != std::floor(d);
    }
    EXPECT_GT(fine, 990);
}

}  // namespace
