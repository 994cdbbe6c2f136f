// Packed times (seconds since 1970, INTEGER(4)) and their calendar parts in local time.
#include <cstdint>
#include <ctime>

#include "base/export.h"
#include "runtime/zone.h"
#include <tarvo/qq.h>

// SUBROUTINE PACKTIMEQQ(TIMEDATE, IYR, IMON, IDAY, IHR, IMIN, ISEC) -- parts INTEGER(2), in
extern "C" TARVO_API void packtimeqq_(std::int32_t* timedate, const std::int16_t* iyr, const std::int16_t* imon,
                                      const std::int16_t* iday, const std::int16_t* ihr, const std::int16_t* imin,
                                      const std::int16_t* isec) noexcept {
    // No range check: mktime carries parts over (month 13 is January of the next year).
    std::tm parts{};
    parts.tm_sec = *isec;
    parts.tm_min = *imin;
    parts.tm_hour = *ihr;
    parts.tm_mday = *iday;
    parts.tm_mon = *imon - 1;
    parts.tm_year = *iyr - 1900;
    parts.tm_isdst = -1;
    *timedate = static_cast<std::int32_t>(std::mktime(&parts));
}

// SUBROUTINE UNPACKTIMEQQ(TIMEDATE, IYR, IMON, IDAY, IHR, IMIN, ISEC) -- parts INTEGER(2), out
extern "C" TARVO_API void unpacktimeqq_(const std::int32_t* timedate, std::int16_t* iyr, std::int16_t* imon,
                                        std::int16_t* iday, std::int16_t* ihr, std::int16_t* imin,
                                        std::int16_t* isec) noexcept {
    const std::time_t when = *timedate;
    std::tm parts;
    runtime::keep_zone_current();  // a zone set since the last call counts
    if (localtime_r(&when, &parts) == nullptr) {
        *iyr = *imon = *iday = *ihr = *imin = *isec = -1;
        return;
    }
    *iyr = static_cast<std::int16_t>(parts.tm_year + 1900);
    *imon = static_cast<std::int16_t>(parts.tm_mon + 1);
    *iday = static_cast<std::int16_t>(parts.tm_mday);
    *ihr = static_cast<std::int16_t>(parts.tm_hour);
    *imin = static_cast<std::int16_t>(parts.tm_min);
    *isec = static_cast<std::int16_t>(parts.tm_sec);
}
