// Time and date routines, checked against the host's own conversions in fixed zones.
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <string>

#include "portlib/testing.h"
#include "runtime/errsns.h"
#include "support/support.h"
#include <tarvo/frame.h>
#include <tarvo/portlib.h>

namespace {

using tarvo_test::FString;

void use_zone(const char* tz) {
    setenv("TZ", tz, 1);
    tzset();
}

// A zone nine hours east of UTC, so that local and universal results differ.
class TimeAndDate : public ::testing::Test {
protected:
    void SetUp() override { use_zone("JST-9"); }
};

// Calls fn until no second boundary passed during the call, then returns what it gave and
// the local time of that second.
template <class F>
auto within_one_second(F fn, std::tm& local) {
    for (;;) {
        const std::time_t before = std::time(nullptr);
        auto got = fn();
        if (std::time(nullptr) == before) {
            localtime_r(&before, &local);
            return got;
        }
    }
}

std::string padded(const std::tm& t, const char* format, std::size_t length) {
    char text[64];
    std::string s(text, std::strftime(text, sizeof text, format, &t));
    s.resize(length, ' ');
    return s;
}

TEST_F(TimeAndDate, TextFormsOfTheCurrentDate) {
    struct Case {
        void (*routine)(char*, tarvo_len_t);
        std::size_t length;
        const char* format;
    };
    const Case cases[] = {
        {time2_, 8, "%H:%M:%S"},  {clock_, 10, "%H:%M:%S"}, {date_, 8, "%m/%d/%y"},
        {date_, 12, "%d-%b-%y"},  {date4_, 11, "%d-%b-%Y"}, {jdate_, 5, "%y%j"},
        {jdate4_, 7, "%Y%j"},     {fdate_, 30, "%a %b %e %H:%M:%S %Y"},
    };
    for (const Case& c : cases) {
        std::tm t{};
        const std::string got = within_one_second([&] {
            FString out(c.length, 'x');
            c.routine(out.data(), out.size());
            return out.text;
        }, t);
        EXPECT_EQ(got, padded(t, c.format, c.length)) << c.format;
    }
}

TEST_F(TimeAndDate, IntegerFormsOfTheCurrentDateAndTime) {
    using Three = std::array<int, 3>;
    struct Case {
        const char* name;
        Three (*call)();
        Three (*want)(const std::tm&);
    };
    const Case cases[] = {
        {"idate", [] { std::int32_t a[3]; idate_(a); return Three{a[0], a[1], a[2]}; },
         [](const std::tm& t) { return Three{t.tm_mday, t.tm_mon + 1, t.tm_year % 100}; }},
        {"idate1", [] { std::int32_t m, d, y; idate1_(&m, &d, &y); return Three{m, d, y}; },
         [](const std::tm& t) { return Three{t.tm_mon + 1, t.tm_mday, t.tm_year % 100}; }},
        {"f_idate4", [] { std::int32_t a[3]; f_idate4_(a); return Three{a[0], a[1], a[2]}; },
         [](const std::tm& t) { return Three{t.tm_mday, t.tm_mon + 1, 2000 + t.tm_year % 100}; }},
        {"idate4", [] { std::int32_t m, d, y; idate4_(&m, &d, &y); return Three{m, d, y}; },
         [](const std::tm& t) { return Three{t.tm_mon + 1, t.tm_mday, 2000 + t.tm_year % 100}; }},
        {"itime", [] { std::int32_t a[3]; itime_(a); return Three{a[0], a[1], a[2]}; },
         [](const std::tm& t) { return Three{t.tm_hour, t.tm_min, t.tm_sec}; }},
        {"getdat", [] { std::int32_t y, m, d; getdat_(&y, &m, &d); return Three{y, m, d}; },
         [](const std::tm& t) { return Three{t.tm_year + 1900, t.tm_mon + 1, t.tm_mday}; }},
        {"getdati2", [] { std::int16_t y, m, d; getdati2_(&y, &m, &d); return Three{y, m, d}; },
         [](const std::tm& t) { return Three{t.tm_year + 1900, t.tm_mon + 1, t.tm_mday}; }},
        {"gettim", [] { std::int32_t h, m, s, c; gettim_(&h, &m, &s, &c); return Three{h, m, c < 100 ? s : -1}; },
         [](const std::tm& t) { return Three{t.tm_hour, t.tm_min, t.tm_sec}; }},
        {"gettimi2", [] { std::int16_t h, m, s, c; gettimi2_(&h, &m, &s, &c); return Three{h, m, c < 100 ? s : -1}; },
         [](const std::tm& t) { return Three{t.tm_hour, t.tm_min, t.tm_sec}; }},
    };
    for (const Case& c : cases) {
        std::tm t{};
        const Three got = within_one_second(c.call, t);
        EXPECT_EQ(got, c.want(t)) << c.name;
    }
}

TEST_F(TimeAndDate, ConversionsOfGivenInstantsMatchTheHost) {
    // Before 1970, the epoch, the first and last second of a leap year, the INTEGER(4) ends.
    const std::int32_t instants[] = {-31536001, -1, 0, 1704067200, 1735689599, INT_MIN, INT_MAX};
    for (const std::int32_t s : instants) {
        const std::time_t t = s;
        std::tm local{}, utc{};
        localtime_r(&t, &local);
        gmtime_r(&t, &utc);
        std::int32_t lt[9], gt[9];
        ltime_(&s, lt);
        gmtime_(&s, gt);
        const auto fields = [](const std::tm& x, int base) {
            return std::array<int, 9>{x.tm_sec, x.tm_min,  x.tm_hour,         x.tm_mday, x.tm_mon,
                                      x.tm_year, x.tm_wday, x.tm_yday + base, x.tm_isdst};
        };
        EXPECT_EQ((std::array<int, 9>{lt[0], lt[1], lt[2], lt[3], lt[4], lt[5], lt[6], lt[7], lt[8]}), fields(local, 1)) << s;
        EXPECT_EQ((std::array<int, 9>{gt[0], gt[1], gt[2], gt[3], gt[4], gt[5], gt[6], gt[7], gt[8]}), fields(utc, 0)) << s;

        char host[32];
        const std::string text = ctime_r(&t, host);
        FString wide(30, 'x'), exact(24, 'x');
        ctime_(wide.data(), wide.size(), &s);
        EXPECT_EQ(wide.text, text + "     ");  // the newline is the 25th character
        errno = 0;
        ctime_(exact.data(), exact.size(), &s);
        EXPECT_EQ(exact.text, text.substr(0, 24));
        EXPECT_EQ(errno, EINVAL);  // the newline was cut
    }
    // Day of the year on 1 January and 31 December of a leap year, in UTC.
    use_zone("UTC0");
    std::int32_t lt[9], gt[9];
    const std::int32_t first = 1704067200, last = 1735689599;
    ltime_(&first, lt);
    gmtime_(&first, gt);
    EXPECT_EQ(lt[7], 1);
    EXPECT_EQ(gt[7], 0);
    ltime_(&last, lt);
    EXPECT_EQ(lt[7], 366);
}

TEST_F(TimeAndDate, ClocksAgreeWithTheSystemClock) {
    const std::time_t before = std::time(nullptr);
    double micro = 0;
    std::int32_t tv[2], ierr = 5;
    EXPECT_EQ(clockx_(&micro), 0);
    gettimeofday_(tv, &ierr);
    const std::intptr_t now = time_();
    const double real = rtc_();
    const std::time_t after = std::time(nullptr);
    EXPECT_EQ(ierr, 0);
    for (const double s : {micro / 1e6, double(tv[0]), double(now), real}) {
        EXPECT_GE(s, double(before) - 1);
        EXPECT_LE(s, double(after) + 1);
    }
    EXPECT_LT(tv[1], 1000000);
}

TEST_F(TimeAndDate, SecndsCountsFromMidnightAndAcrossIt) {
    timeval tv{};
    gettimeofday(&tv, nullptr);
    std::tm t{};
    localtime_r(&tv.tv_sec, &t);
    const float midnight = float(t.tm_hour * 3600 + t.tm_min * 60 + t.tm_sec);
    const float zero = 0.0f, now = secnds_(&zero);
    EXPECT_NEAR(now, midnight, 2.0f);
    const float earlier = now - 5.0f, later = now + 10.0f, too_late = 200000.0f;
    EXPECT_NEAR(secnds_(&earlier), 5.0f, 1.0f);
    EXPECT_NEAR(fortran_f_secnds(&later), 86390.0f, 1.0f);  // X taken before midnight
    EXPECT_EQ(secnds_(&too_late), 0.0f);                    // never negative
}

TEST_F(TimeAndDate, SettingTheClockIsRefused) {
    const std::int32_t ierrno_before = ierrno_();
    const std::int32_t y = 2000, m = 1, d = 1;
    const std::int16_t h = 1, n = 2, s = 3, c = 4;
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(setdat_(&y, &m, &d), 0);
    EXPECT_EQ(runtime::last_recorded_error(), ENOTSUP);
    runtime::for_errsns_load(0, 0, 0, 0, 0);
    EXPECT_EQ(settimi2_(&h, &n, &s, &c), 0);
    EXPECT_EQ(runtime::last_recorded_error(), ENOTSUP);
    EXPECT_EQ(ierrno_(), ierrno_before);
}

void burn_cpu(double seconds) {
    const std::clock_t start = std::clock();
    volatile double x = 1;
    while (double(std::clock() - start) / CLOCKS_PER_SEC < seconds)
        for (int i = 0; i < 100000; ++i) x = std::sqrt(x + 1);  // user time, not clock()'s system time
}

TEST(ProcessorTime, OneProcessorDtimeIntervalsAddUpToEtime) {
    portlib::testing::set_processor_count(1);
    burn_cpu(0.05);
    float d[2], e[2];
    double d8[2];
    const float first = dtime_(d);
    EXPECT_NEAR(first, etime_(e), 0.011f);  // the first interval runs from the start
    EXPECT_NEAR(d[0], e[0], 0.011f);
    float total = first;
    for (int i = 0; i < 4; ++i) {
        burn_cpu(0.02);
        total += i % 2 == 0 ? float(dtimer8_(d8)) : dtime_(d);
        EXPECT_GE(i % 2 == 0 ? d8[0] : d[0], 0.0);
    }
    EXPECT_NEAR(total, etime_(e), 0.021f);
    EXPECT_FLOAT_EQ(etime_(e), e[0] + e[1]);
}

TEST(ProcessorTime, SeveralProcessorsMixTheSourcesAsDocumented) {
    portlib::testing::set_processor_count(4);
    burn_cpu(0.03);
    float e[2], d1[2], d2[2];
    const float e1 = etime_(e);
    EXPECT_EQ(e[1], 0.0f);  // user time only
    burn_cpu(0.03);
    EXPECT_GE(etime_(e), e1 + 0.02f);
    const float first = dtime_(d1);
    const float second = dtime_(d2);
    EXPECT_EQ(d2[1], -d1[1]);  // the clock() sample has no system part
    EXPECT_NEAR(first + second, double(std::clock()) / CLOCKS_PER_SEC, 0.011);
}

TEST(ElapsedTime, TimefAndDclockCountUpFromTheirOrigins) {
    EXPECT_EQ(timef_(), 0.0);
    const double dc = dclock_();
    EXPECT_GE(dc, 0.0);
    EXPECT_LT(dc, 60.0);  // this process started a moment ago
    EXPECT_GE(timef_(), 0.0);
    EXPECT_GE(dclock_(), dc);
}

}  // namespace
