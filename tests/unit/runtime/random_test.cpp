// The shared random generator: statistical quality and the seed round trip.
#include <cmath>
#include <cstdint>
#include <vector>

#include "runtime/random.h"
#include "support/support.h"

namespace {

double chi_square(const std::vector<double>& observed, double expected) {
    double chi = 0;
    for (double o : observed) chi += (o - expected) * (o - expected) / expected;
    return chi;
}

TEST(SharedGenerator, UniformFairAndSeriallyUncorrelatedOverAMillionDraws) {
    constexpr int n = 1000000;
    runtime::__FFsetseed(20240607);
    std::vector<double> bins(100), pairs(256), ones(31);
    double sum = 0, sum_sq = 0, lag = 0, previous = runtime::__FFfrand();
    for (int i = 0; i < n; ++i) {
        const double u = runtime::__FFfrand();
        ASSERT_TRUE(u >= 0.0 && u < 1.0);
        bins[static_cast<int>(u * 100)] += 1;
        pairs[static_cast<int>(previous * 16) * 16 + static_cast<int>(u * 16)] += 1;
        sum += u;
        sum_sq += u * u;
        lag += previous * u;
        previous = u;
        const std::int32_t v = runtime::__FFirand();
        ASSERT_GE(v, 0);
        for (int b = 0; b < 31; ++b) ones[b] += (v >> b) & 1;
    }
    // Limits beyond the 0.999 quantiles (148 for 99 and 330 for 255 degrees of freedom).
    EXPECT_LT(chi_square(bins, n / 100.0), 160.0);
    EXPECT_LT(chi_square(pairs, n / 256.0), 350.0);
    EXPECT_LT(chi_square(ones, n / 2.0) / 31, 3.0);  // each bit of the integers is fair
    const double mean = sum / n, variance = sum_sq / n - mean * mean;
    EXPECT_NEAR(mean, 0.5, 0.002);
    EXPECT_NEAR(variance, 1.0 / 12, 0.001);
    EXPECT_LT(std::fabs((lag / n - mean * mean) / variance), 4.0 / std::sqrt(double(n)));
}

TEST(SharedGenerator, SeedRoundTripContinuesTheSequenceExactly) {
    runtime::__FFsetseed(-77);
    for (int i = 0; i < 123; ++i) runtime::__FFdrand();
    std::int32_t seed = 0;
    runtime::__FFgetseed(&seed);
    const auto draw = [](int i) { return i % 3 == 0 ? runtime::__FFdrand() : runtime::__FFfrand(); };
    std::vector<double> first;
    for (int i = 0; i < 10000; ++i) first.push_back(draw(i));
    runtime::__FFresetseed();
    runtime::__FFsetseed(seed);
    for (int i = 0; i < 10000; ++i) ASSERT_EQ(draw(i), first[i]) << "draw " << i;
    runtime::__FFresetseed();
    runtime::__FFgetseed(&seed);
    EXPECT_EQ(seed, runtime::kInitialSeed);
    // A double takes two steps and carries more than 32 random bits.
    const double d = runtime::__FFdrand() * 0x1p32;
    EXPECT_NE(d, std::floor(d));
}

}  // namespace
