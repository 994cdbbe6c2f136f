// Time and date: the clock in the traditional forms, broken-down arrays, and elapsed and
// processor time.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <sys/resource.h>
#include <sys/time.h>
#include <sys/times.h>
#include <unistd.h>

#include "base/export.h"
#include "portlib/report.h"
#include "base/fstring.h"
#include "portlib/testing.h"
#include "runtime/process.h"
#include "runtime/zone.h"
#include <tarvo/portlib.h>

static_assert(sizeof(std::time_t) == sizeof(std::intptr_t), "TIME returns the width of time_t");

namespace {

constexpr const char* datetable[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                       "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

using runtime::local_time;

std::tm local_now() noexcept { return local_time(std::time(nullptr)); }

// Years 1996 to 1999 come back as 96 to 99 and every other year as 2000 + (year mod 100):
// programs of that era compare these values, so the cut-off is kept exactly.
int four_digit_year(const std::tm& t) noexcept {
    const int y = t.tm_year % 100;
    return y >= 96 ? y : y + 2000;
}

// Formats a text result in a small buffer and copies it out, cut and blank padded.
template <class... Args>
void store_formatted(char* result, std::size_t result_len, const char* format, Args... args) noexcept {
    char text[32];
    std::snprintf(text, sizeof text, format, args...);
    base::store_fortran_string(result, result_len, text);
}

// ctime of t (25 characters, newline included), or an empty text if it cannot be formed.
const char* ctime_text(std::time_t t, char (&buffer)[32]) noexcept {
    runtime::keep_zone_current();
    if (ctime_r(&t, buffer) == nullptr) buffer[0] = '\0';
    return buffer;
}

template <class Int>
void store3(Int* a, Int* b, Int* c, int va, int vb, int vc) noexcept {
    if (a != nullptr) *a = static_cast<Int>(va);
    if (b != nullptr) *b = static_cast<Int>(vb);
    if (c != nullptr) *c = static_cast<Int>(vc);
}

void store_array3(std::int32_t* array, int v1, int v2, int v3) noexcept {
    if (array != nullptr) store3(array, array + 1, array + 2, v1, v2, v3);
}

// The nine-element time array; day_base 1 counts the day of the year from 1, 0 from 0.
void store_time_array(const std::tm& t, int day_base, std::int32_t* tarray) noexcept {
    if (tarray == nullptr) return;
    const int fields[9] = {t.tm_sec, t.tm_min, t.tm_hour, t.tm_mday, t.tm_mon,
                           t.tm_year, t.tm_wday, t.tm_yday + day_base, t.tm_isdst};
    std::copy(std::begin(fields), std::end(fields), tarray);
}

template <class Int>
void local_date(Int* year, Int* month, Int* day) noexcept {
    const std::tm t = local_now();
    store3(year, month, day, t.tm_year + 1900, t.tm_mon + 1, t.tm_mday);
}

template <class Int>
void local_clock(Int* hour, Int* minute, Int* second, Int* hundredths) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    const std::tm t = local_time(now.tv_sec);
    store3(hour, minute, second, t.tm_hour, t.tm_min, t.tm_sec);
    if (hundredths != nullptr) *hundredths = static_cast<Int>(now.tv_nsec / 1000000 / 10);
}

// Setting the date or time is not offered: the request is recorded and answered "no".
std::int32_t refuse_clock_change() noexcept {
    portlib::report(portlib::Policy::recorder_only, ENOTSUP);
    return TARVO_FALSE;
}

// Processor count, asked once; -1 when unknown (then timing takes the one-processor path).
std::atomic<int> ncpus{-1};

int processor_count() noexcept {
    int n = ncpus.load(std::memory_order_relaxed);
    if (n == -1) {
        const long count = sysconf(_SC_NPROCESSORS_CONF);
        n = count > 0 ? static_cast<int>(count) : -1;
        ncpus.exchange(n, std::memory_order_relaxed);
    }
    return n;
}

struct CpuTime {
    double user;
    double system;
};

CpuTime sample_times() noexcept {
    tms t{};
    times(&t);
    const auto ticks = static_cast<double>(sysconf(_SC_CLK_TCK));
    return {static_cast<double>(static_cast<unsigned long>(t.tms_utime)) / ticks,
            static_cast<double>(static_cast<unsigned long>(t.tms_stime)) / ticks};
}

CpuTime total_cpu_time() noexcept {
    if (processor_count() <= 1) return sample_times();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return {static_cast<double>(usage.ru_utime.tv_sec) + static_cast<double>(usage.ru_utime.tv_usec) / 1000000.0,
            0.0};
}

// The samples DTIME and DTIMER8 share. They alternate between two samples; on a machine
// with more than one processor every second sample comes from clock() with no system
// part, so those intervals mix the two sources. Callers of old have seen exactly these
// values, so the mixing is kept.
int flag = 1;
CpuTime tarray_tmp0{0.0, 0.0};
CpuTime tarray_tmp1{0.0, 0.0};

CpuTime next_interval() noexcept {
    if (flag != 0) {
        tarray_tmp1 = sample_times();
        flag = 0;
        return {tarray_tmp1.user - tarray_tmp0.user, tarray_tmp1.system - tarray_tmp0.system};
    }
    tarray_tmp0 = processor_count() > 1
                      ? CpuTime{static_cast<double>(std::clock()) / CLOCKS_PER_SEC, 0.0}
                      : sample_times();
    flag = 1;
    return {tarray_tmp0.user - tarray_tmp1.user, tarray_tmp0.system - tarray_tmp1.system};
}

template <class Real>
Real store_cpu_time(const CpuTime& time, Real* tarray) noexcept {
    const auto user = static_cast<Real>(time.user);
    const auto system = static_cast<Real>(time.system);
    if (tarray != nullptr) {
        tarray[0] = user;
        tarray[1] = system;
    }
    return user + system;
}

std::time_t firstTime = 0;
double base_time = 0.0;

}  // namespace

namespace portlib::testing {
void set_processor_count(int count) noexcept { ncpus.store(count, std::memory_order_relaxed); }
}  // namespace portlib::testing

// INTEGER(TIME_KIND) FUNCTION TIME() -- seconds since the epoch, the width of time_t
extern "C" TARVO_API std::intptr_t time_() noexcept { return static_cast<std::intptr_t>(std::time(nullptr)); }

// REAL(8) FUNCTION RTC()
extern "C" TARVO_API double rtc_() noexcept { return static_cast<double>(std::time(nullptr)); }

// INTEGER FUNCTION CLOCKX(X) -- X = microseconds since the epoch; X is left alone on failure
extern "C" TARVO_API std::int32_t clockx_(double* x) noexcept {
    timeval tv{};
    const int rc = gettimeofday(&tv, nullptr);
    if (rc == 0 && x != nullptr)
        *x = static_cast<double>(tv.tv_sec) * 1000000.0 + static_cast<double>(tv.tv_usec);
    return rc;
}

// SUBROUTINE GETTIMEOFDAY(TV, IERR) -- INTEGER TV(2): seconds (low 32 bits), microseconds
extern "C" TARVO_API void gettimeofday_(std::int32_t* tv, std::int32_t* ierr) noexcept {
    timeval now{};
    const int rc = gettimeofday(&now, nullptr);
    if (ierr != nullptr) *ierr = rc;
    if (tv == nullptr) return;
    tv[0] = rc == -1 ? 0 : static_cast<std::int32_t>(now.tv_sec);
    tv[1] = rc == -1 ? 0 : static_cast<std::int32_t>(now.tv_usec);
}

// CHARACTER*8 FUNCTION TIME2() -- hh:mm:ss; CLOCK is the same routine
extern "C" TARVO_API void time2_(char* result, std::size_t result_len) noexcept {
    const std::tm t = local_now();
    store_formatted(result, result_len, "%02d:%02d:%02d", t.tm_hour, t.tm_min, t.tm_sec);
}

// CHARACTER*8 FUNCTION CLOCK()
extern "C" TARVO_API void clock_(char* result, std::size_t result_len) noexcept __attribute__((alias("time2_")));

// CHARACTER*(*) FUNCTION DATE() -- dd-Mon-yy into 9 characters or more, else mm/dd/yy
extern "C" TARVO_API void date_(char* result, std::size_t result_len) noexcept {
    const std::tm t = local_now();
    if (base::signed_length(result_len) >= 9)
        store_formatted(result, result_len, "%02d-%s-%02d", t.tm_mday, datetable[t.tm_mon], t.tm_year % 100);
    else
        store_formatted(result, result_len, "%02d/%02d/%02d", t.tm_mon + 1, t.tm_mday, t.tm_year % 100);
}

// CHARACTER*11 FUNCTION DATE4() -- dd-Mon-yyyy (dd-Mon-yy for 1996 to 1999)
extern "C" TARVO_API void date4_(char* result, std::size_t result_len) noexcept {
    const std::tm t = local_now();
    store_formatted(result, result_len, "%02d-%s-%d", t.tm_mday, datetable[t.tm_mon], four_digit_year(t));
}

// CHARACTER*5 FUNCTION JDATE() -- yyddd
extern "C" TARVO_API void jdate_(char* result, std::size_t result_len) noexcept {
    const std::tm t = local_now();
    store_formatted(result, result_len, "%02d%03d", t.tm_year % 100, t.tm_yday + 1);
}

// CHARACTER*7 FUNCTION JDATE4() -- yyyyddd
extern "C" TARVO_API void jdate4_(char* result, std::size_t result_len) noexcept {
    const std::tm t = local_now();
    store_formatted(result, result_len, "%04d%03d", t.tm_year + 1900, t.tm_yday + 1);
}

// CHARACTER*24 FUNCTION FDATE() -- the current time as ctime writes it, without the newline
extern "C" TARVO_API void fdate_(char* result, std::size_t result_len) noexcept {
    char buffer[32];
    ctime_text(std::time(nullptr), buffer);
    const std::size_t n = std::strlen(buffer);
    if (n > 0 && buffer[n - 1] == '\n') buffer[n - 1] = '\0';
    base::store_fortran_string(result, result_len, buffer);
}

// CHARACTER*(*) FUNCTION CTIME(STIME) -- 25 characters, the newline included
extern "C" TARVO_API void ctime_(char* result, std::size_t result_len, const std::int32_t* stime) noexcept {
    char buffer[32] = "";
    if (stime != nullptr) ctime_text(*stime, buffer);
    base::store_fortran_string(result, result_len, buffer);
}

// SUBROUTINE LTIME(STIME, TARRAY) -- local time; day of year counted from 1
extern "C" TARVO_API void ltime_(const std::int32_t* stime, std::int32_t* tarray) noexcept {
    if (stime != nullptr) store_time_array(local_time(*stime), 1, tarray);
}

// SUBROUTINE GMTIME(STIME, TARRAY) -- UTC; day of year counted from 0, unlike LTIME: the
// asymmetry is deliberate, programs correct for it themselves
extern "C" TARVO_API void gmtime_(const std::int32_t* stime, std::int32_t* tarray) noexcept {
    if (stime == nullptr) return;
    const std::time_t t = *stime;
    std::tm tm{};
    gmtime_r(&t, &tm);
    store_time_array(tm, 0, tarray);
}

// SUBROUTINE ITIME(IARRAY) -- hour, minute, second
extern "C" TARVO_API void itime_(std::int32_t* iarray) noexcept {
    const std::tm t = local_now();
    store_array3(iarray, t.tm_hour, t.tm_min, t.tm_sec);
}

// SUBROUTINE IDATE(IARRAY) -- day, month, year mod 100
extern "C" TARVO_API void idate_(std::int32_t* iarray) noexcept {
    const std::tm t = local_now();
    store_array3(iarray, t.tm_mday, t.tm_mon + 1, t.tm_year % 100);
}

// SUBROUTINE IDATE1(MONTH, DAY, YEAR) -- year mod 100
extern "C" TARVO_API void idate1_(std::int32_t* month, std::int32_t* day, std::int32_t* year) noexcept {
    const std::tm t = local_now();
    store3(month, day, year, t.tm_mon + 1, t.tm_mday, t.tm_year % 100);
}

// SUBROUTINE F_IDATE4(IARRAY) -- day, month, four-digit year
extern "C" TARVO_API void f_idate4_(std::int32_t* iarray) noexcept {
    const std::tm t = local_now();
    store_array3(iarray, t.tm_mday, t.tm_mon + 1, four_digit_year(t));
}

// SUBROUTINE IDATE4(MONTH, DAY, YEAR) -- four-digit year
extern "C" TARVO_API void idate4_(std::int32_t* month, std::int32_t* day, std::int32_t* year) noexcept {
    const std::tm t = local_now();
    store3(month, day, year, t.tm_mon + 1, t.tm_mday, four_digit_year(t));
}

// SUBROUTINE GETDAT(IYEAR, IMONTH, IDAY)
extern "C" TARVO_API void getdat_(std::int32_t* year, std::int32_t* month, std::int32_t* day) noexcept {
    local_date(year, month, day);
}

// SUBROUTINE GETDATI2(IYEAR, IMONTH, IDAY) -- INTEGER(2)
extern "C" TARVO_API void getdati2_(std::int16_t* year, std::int16_t* month, std::int16_t* day) noexcept {
    local_date(year, month, day);
}

// SUBROUTINE GETTIM(IHR, IMIN, ISEC, I100TH)
extern "C" TARVO_API void gettim_(std::int32_t* hour, std::int32_t* minute, std::int32_t* second,
                                  std::int32_t* hundredths) noexcept {
    local_clock(hour, minute, second, hundredths);
}

// SUBROUTINE GETTIMI2(IHR, IMIN, ISEC, I100TH) -- INTEGER(2)
extern "C" TARVO_API void gettimi2_(std::int16_t* hour, std::int16_t* minute, std::int16_t* second,
                                    std::int16_t* hundredths) noexcept {
    local_clock(hour, minute, second, hundredths);
}

// LOGICAL(4) FUNCTION SETDAT(IYEAR, IMONTH, IDAY) -- always .FALSE.
extern "C" TARVO_API std::int32_t setdat_(const std::int32_t*, const std::int32_t*, const std::int32_t*) noexcept {
    return refuse_clock_change();
}

// LOGICAL(4) FUNCTION SETDATI2(IYEAR, IMONTH, IDAY) -- always .FALSE.
extern "C" TARVO_API std::int32_t setdati2_(const std::int16_t*, const std::int16_t*, const std::int16_t*) noexcept {
    return refuse_clock_change();
}

// LOGICAL(4) FUNCTION SETTIM(IHR, IMIN, ISEC, I100TH) -- always .FALSE.
extern "C" TARVO_API std::int32_t settim_(const std::int32_t*, const std::int32_t*, const std::int32_t*,
                                          const std::int32_t*) noexcept {
    return refuse_clock_change();
}

// LOGICAL(4) FUNCTION SETTIMI2(IHR, IMIN, ISEC, I100TH) -- always .FALSE.
extern "C" TARVO_API std::int32_t settimi2_(const std::int16_t*, const std::int16_t*, const std::int16_t*,
                                            const std::int16_t*) noexcept {
    return refuse_clock_change();
}

// REAL(4) FUNCTION SECNDS(X) -- seconds since midnight less X; never negative
extern "C" TARVO_API float secnds_(const float* x) noexcept {
    timeval tv{};
    if (gettimeofday(&tv, nullptr) != 0) return 0.0f;
    const std::tm t = local_time(tv.tv_sec);
    const double now = static_cast<double>(t.tm_hour * 3600 + t.tm_min * 60 + t.tm_sec) +
                       static_cast<double>(static_cast<float>(tv.tv_usec) / 1000000.0f);
    const float since = x != nullptr ? *x : 0.0f;
    if (since == 0.0f) return static_cast<float>(now);
    float today = static_cast<float>(now);
    if (since > today) today += 86400.0f;  // X was taken before midnight
    return std::max(0.0f, today - since);
}

// The same routine under the name the compiler's own SECNDS calls.
extern "C" TARVO_API float fortran_f_secnds(const float* x) noexcept __attribute__((alias("secnds_")));

// REAL(8) FUNCTION TIMEF() -- seconds since the first call (0 on the first call)
extern "C" TARVO_API double timef_() noexcept {
    if (firstTime == 0) {
        firstTime = std::time(nullptr);
        return 0.0;
    }
    return std::difftime(std::time(nullptr), firstTime);
}

// REAL(8) FUNCTION DCLOCK() -- seconds since the program started
extern "C" TARVO_API double dclock_() noexcept {
    if (base_time == 0.0) base_time = runtime::for__process_start_time();
    return runtime::for_since_epoch_t(&base_time);
}

// REAL(4) FUNCTION ETIME(TARRAY) -- processor time since the start: user, system
extern "C" TARVO_API float etime_(float* tarray) noexcept { return store_cpu_time(total_cpu_time(), tarray); }

// REAL(4) FUNCTION DTIME(TARRAY) -- processor time since the previous call
extern "C" TARVO_API float dtime_(float* tarray) noexcept { return store_cpu_time(next_interval(), tarray); }

// REAL(8) FUNCTION DTIMER8(TARRAY) -- as DTIME, in double precision
extern "C" TARVO_API double dtimer8_(double* tarray) noexcept { return store_cpu_time(next_interval(), tarray); }
