#include "runtime/zone.h"

#include <cstdlib>
#include <cstring>

#include "base/lock.h"

namespace runtime {
namespace {
// The TZ value the zone was last read with. A longer value is never remembered, so the
// zone is read again on every call while such a value is set.
constexpr std::size_t kRemembered = 256;
char last_tz[kRemembered];
bool last_tz_set = false;
bool zone_read = false;
base::TableLock zone_lock;

bool same_as_last(const char* tz) noexcept {
    if (!zone_read) return false;
    if (tz == nullptr) return !last_tz_set;
    return last_tz_set && std::strncmp(tz, last_tz, kRemembered) == 0 && std::strlen(tz) < kRemembered;
}
}  // namespace

void keep_zone_current() noexcept {
    const char* tz = std::getenv("TZ");
    base::TableGuard guard(zone_lock);
    if (same_as_last(tz)) return;
    tzset();
    zone_read = true;
    last_tz_set = tz != nullptr;
    if (tz != nullptr) std::strncpy(last_tz, tz, kRemembered);
}

std::tm local_time(std::time_t t) noexcept {
    keep_zone_current();
    std::tm tm{};
    localtime_r(&t, &tm);
    return tm;
}

}  // namespace runtime
