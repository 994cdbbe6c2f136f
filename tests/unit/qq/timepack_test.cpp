// PACKTIMEQQ and UNPACKTIMEQQ in fixed zones.
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>
#include <tuple>

#include "support/support.h"
#include <tarvo/qq.h>

namespace {

using Parts = std::tuple<int, int, int, int, int, int>;

std::int32_t pack(int y, int mo, int d, int h, int mi, int s) {
    const std::int16_t p[] = {std::int16_t(y), std::int16_t(mo), std::int16_t(d), std::int16_t(h), std::int16_t(mi), std::int16_t(s)};
    std::int32_t t = 0;
    packtimeqq_(&t, &p[0], &p[1], &p[2], &p[3], &p[4], &p[5]);
    return t;
}
Parts unpack(std::int32_t t) {
    std::int16_t p[6] = {};
    unpacktimeqq_(&t, &p[0], &p[1], &p[2], &p[3], &p[4], &p[5]);
    return {p[0], p[1], p[2], p[3], p[4], p[5]};
}

class TimePacking : public ::testing::Test {
protected:
    void TearDown() override { saved_ ? setenv("TZ", saved_->c_str(), 1) : unsetenv("TZ"); }
    std::optional<std::string> saved_ = std::getenv("TZ") ? std::optional<std::string>(std::getenv("TZ")) : std::nullopt;
};

TEST_F(TimePacking, UtcValuesNormalisationAndDatesBefore1970) {
    setenv("TZ", "UTC0", 1);  // UNPACKTIMEQQ and mktime read it afresh
    EXPECT_EQ(pack(2024, 2, 29, 12, 34, 56), 1709210096);
    EXPECT_EQ(unpack(1709210096), Parts(2024, 2, 29, 12, 34, 56));
    EXPECT_TRUE(unpack(0) == Parts(1970, 1, 1, 0, 0, 0) && unpack(-1) == Parts(1969, 12, 31, 23, 59, 59));
    EXPECT_EQ(unpack(INT32_MIN), Parts(1901, 12, 13, 20, 45, 52));
    EXPECT_EQ(unpack(pack(2023, 13, 1, 0, 0, 0)), Parts(2024, 1, 1, 0, 0, 0));
    EXPECT_EQ(unpack(pack(2023, 3, 0, 24, 0, 60)), Parts(2023, 3, 1, 0, 1, 0));
    // Beyond 2038: cut to 32 bits where time_t is wider, unrepresentable (-1) where it is not.
    EXPECT_EQ(pack(2100, 1, 1, 0, 0, 0), sizeof(std::time_t) == 8 ? static_cast<std::int32_t>(4102444800LL) : -1);
}

TEST_F(TimePacking, LocalZonesWithDaylightSavingDecidedByTheHost) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    EXPECT_TRUE(pack(1970, 1, 1, 1, 0, 0) == 0 && pack(2024, 7, 1, 12, 0, 0) == 1719828000);  // summer: UTC+2
    for (const Parts& p : {Parts(2024, 7, 1, 12, 0, 0), Parts(1999, 12, 31, 23, 59, 59), Parts(1950, 6, 15, 6, 30, 0)})
        EXPECT_EQ(unpack(std::apply(pack, p)), p);
}

}  // namespace
