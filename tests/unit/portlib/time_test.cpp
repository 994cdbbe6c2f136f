// Time and date routines, checked against the host's own conversions in a fixed zone.
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <string>
#include <utility>

#include "portlib/testing.h"
#include "support/support.h"
#include <tarvo/portlib.h>

namespace {

using tarvo_test::FString;

// Nine hours east of UTC, so that local and universal results differ.
class TimeAndDate : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "JST-9", 1);
        tzset();
    }
};

// Calls fn until the second of the clock stayed the same during the call, by both time()
// (a coarse clock) and the precise clock, which disagree for a few milliseconds after a
// second begins; local receives that second.
template <class F>
auto within_one_second(F fn, std::tm& local) {
    const auto second = [] {
        timespec precise{};
        clock_gettime(CLOCK_REALTIME, &precise);
        const std::time_t coarse = std::time(nullptr);
        return coarse == precise.tv_sec ? coarse : -1;
    };
    for (;;) {
        const std::time_t before = second();
        auto got = fn();
        if (before != -1 && second() == before) return localtime_r(&before, &local), got;
    }
}

// The text a character routine gives into a result of the given length.
template <void (*routine)(char*, tarvo_len_t), std::size_t length>
std::string text() {
    FString out(length, 'x');
    routine(out.data(), out.size());
    return out.text;
}

// Three integers as strftime writes them with %d, %m, %y, %H ...: two digits at least.
std::string numbers(int a, int b, int c) {
    char s[48];
    std::snprintf(s, sizeof s, "%02d %02d %02d", a, b, c);
    return s;
}

TEST_F(TimeAndDate, CurrentDateAndTimeInEveryForm) {
    using I2 = std::int16_t;
    const std::pair<std::string (*)(), const char*> cases[] = {
        {text<time2_, 8>, "%H:%M:%S"}, {text<clock_, 10>, "%H:%M:%S  "}, {text<date_, 8>, "%m/%d/%y"},
        {text<date_, 12>, "%d-%b-%y   "}, {text<date4_, 11>, "%d-%b-%Y"}, {text<jdate_, 5>, "%y%j"},
        {text<jdate4_, 7>, "%Y%j"}, {text<fdate_, 26>, "%a %b %e %T %Y  "},
        {[] { std::int32_t a[3]; idate_(a); return numbers(a[0], a[1], a[2]); }, "%d %m %y"},
        {[] { std::int32_t a[3]; f_idate4_(a); return numbers(a[0], a[1], a[2]); }, "%d %m %Y"},
        {[] { std::int32_t a[3]; itime_(a); return numbers(a[0], a[1], a[2]); }, "%H %M %S"},
        {[] { std::int32_t m, d, y; idate1_(&m, &d, &y); return numbers(m, d, y); }, "%m %d %y"},
        {[] { std::int32_t m, d, y; idate4_(&m, &d, &y); return numbers(m, d, y); }, "%m %d %Y"},
        {[] { std::int32_t y, m, d; getdat_(&y, &m, &d); return numbers(y, m, d); }, "%Y %m %d"},
        {[] { I2 y, m, d; getdati2_(&y, &m, &d); return numbers(y, m, d); }, "%Y %m %d"},
        {[] { std::int32_t h, m, s, c; gettim_(&h, &m, &s, &c); return numbers(h, m, c < 100 ? s : -1); }, "%H %M %S"},
        {[] { I2 h, m, s, c; gettimi2_(&h, &m, &s, &c); return numbers(h, m, c < 100 ? s : -1); }, "%H %M %S"},
    };
    for (const auto& [routine, format] : cases) {
        std::tm t{};
        const std::string got = within_one_second(routine, t);
        char want[64];
        EXPECT_EQ(got, std::string(want, std::strftime(want, sizeof want, format, &t))) << format;
    }
}

TEST_F(TimeAndDate, ConversionsOfGivenInstantsMatchTheHost) {
    // Before 1970, the epoch, the first and last second of a leap year in UTC, the INTEGER(4) ends.
    for (const std::int32_t s : {-31536001, -1, 0, 1704067200, 1735689599, INT_MIN, INT_MAX}) {
        const std::time_t t = s;
        std::tm local{}, utc{};
        localtime_r(&t, &local);
        gmtime_r(&t, &utc);
        std::array<std::int32_t, 9> lt{}, gt{};
        ltime_(&s, lt.data());
        gmtime_(&s, gt.data());
        const auto fields = [](const std::tm& x, int day_base) {
            return std::array{x.tm_sec, x.tm_min, x.tm_hour, x.tm_mday, x.tm_mon, x.tm_year, x.tm_wday,
                              x.tm_yday + day_base, x.tm_isdst};
        };
        EXPECT_EQ(lt, fields(local, 1)) << s;  // day of the year from 1
        EXPECT_EQ(gt, fields(utc, 0)) << s;    // and from 0
        // The newline is the 25th character; cutting it off is reported.
        char host[32];
        const std::string text = ctime_r(&t, host);
        FString wide(30, 'x'), exact(24, 'x');
        ctime_(wide.data(), wide.size(), &s);
        errno = 0;
        ctime_(exact.data(), exact.size(), &s);
        EXPECT_EQ(wide.text + exact.text + std::to_string(errno), text + "     " + text.substr(0, 24) + "22");
    }
}

int hour_in_current(std::int32_t when) {
    std::array<std::int32_t, 9> t{};
    ltime_(&when, t.data());
    return t[2];
}

// The zone is read once per TZ value: a change of TZ (set, changed, removed) shows at the
// very next call, also when nothing else called tzset in between.
TEST_F(TimeAndDate, ZoneFollowsEveryChangeOfTz) {
    const std::int32_t noon_utc = 43200;
    const auto hour_in = [&](const char* tz) {
        if (tz != nullptr) setenv("TZ", tz, 1);
        else unsetenv("TZ");
        std::array<std::int32_t, 9> t{};
        ltime_(&noon_utc, t.data());
        return t[2];
    };
    EXPECT_EQ(hour_in("JST-9"), 21);
    EXPECT_EQ(hour_in("JST-9"), 21);
    EXPECT_EQ(hour_in("EST5"), 7);
    EXPECT_EQ(hour_in("UTC0"), 12);
    EXPECT_EQ(hour_in("EST5"), 7);
    const int machine_hour = hour_in(nullptr);  // no TZ: the machine's zone
    tzset();
    const std::time_t noon = noon_utc;
    std::tm host{};
    localtime_r(&noon, &host);
    EXPECT_EQ(machine_hour, host.tm_hour);
    // Every other way of changing the environment is seen too: putenv, and a new list
    // assigned to environ.
    static char placed[] = "TZ=JST-9";
    putenv(placed);
    EXPECT_EQ(hour_in_current(noon_utc), 21);
    char east[] = "TZ=EET-2";
    char* replacement[] = {east, nullptr};
    char** const saved = environ;
    environ = replacement;
    EXPECT_EQ(hour_in_current(noon_utc), 14);
    environ = saved;
    EXPECT_EQ(hour_in_current(noon_utc), 21);
    setenv("TZ", "XYZ-3", 1);
    FString when(24, 'x');
    const std::int32_t epoch = 0;
    ctime_(when.data(), when.size(), &epoch);
    EXPECT_EQ(when.text.substr(11, 8), "03:00:00");
}

TEST_F(TimeAndDate, ClocksAndSecondsSinceMidnight) {
    timeval tv{};
    gettimeofday(&tv, nullptr);
    double micro = 0;
    std::int32_t pair[2], ierr = 5;
    gettimeofday_(pair, &ierr);
    EXPECT_EQ(clockx_(&micro), 0);
    for (const double s : {micro / 1e6, double(pair[0] + ierr), double(time_()), rtc_()})
        EXPECT_NEAR(s, double(tv.tv_sec), 2.0);
    std::tm t{};
    localtime_r(&tv.tv_sec, &t);
    const float zero = 0.0f, now = secnds_(&zero), earlier = now - 5.0f, later = now + 10.0f, too_late = 2e5f;
    EXPECT_NEAR(now, float(t.tm_hour * 3600 + t.tm_min * 60 + t.tm_sec), 2.0f);
    EXPECT_NEAR(secnds_(&earlier), 5.0f, 1.0f);
    EXPECT_NEAR(fortran_f_secnds(&later), 86390.0f, 1.0f);  // X taken before midnight
    EXPECT_EQ(secnds_(&too_late), 0.0f);                    // never negative
    EXPECT_EQ(timef_(), 0.0);
    EXPECT_NEAR(dclock_(), 0.0, 60.0);  // this process started a moment ago
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
    float total = dtime_(d);
    EXPECT_NEAR(total, etime_(e), 0.011f);  // the first interval runs from the start
    for (int i = 0; i < 4; ++i) {
        burn_cpu(0.02);
        total += i % 2 == 0 ? float(dtimer8_(d8)) : dtime_(d);
        EXPECT_GE(i % 2 == 0 ? d8[0] : d[0], 0.0);
    }
    const float all = etime_(e);
    EXPECT_NEAR(total, all, 0.021f);
    EXPECT_FLOAT_EQ(all, e[0] + e[1]);
}

TEST(ProcessorTime, SeveralProcessorsMixTheSourcesAsDocumented) {
    portlib::testing::set_processor_count(4);
    burn_cpu(0.03);
    float e[2], d1[2], d2[2];
    const float e1 = etime_(e);
    EXPECT_EQ(e[1], 0.0f);  // user time only
    // The kernel may book part of a busy stretch as system time: burn until user time shows
    // 20 ms more, within two seconds of processor time.
    float later = e1;
    for (int i = 0; i < 200 && later < e1 + 0.02f; ++i) {
        burn_cpu(0.01);
        later = etime_(e);
    }
    EXPECT_GE(later, e1 + 0.02f);
    const float first = dtime_(d1), second = dtime_(d2);
    EXPECT_EQ(d2[1], -d1[1]);  // the clock() sample has no system part
    EXPECT_NEAR(first + second, double(std::clock()) / CLOCKS_PER_SEC, 0.011);
}

}  // namespace
