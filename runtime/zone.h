// The local time zone as the program's TZ variable names it. The zone is read again only
// when TZ differs from the value it was last read with (set, changed or removed), so a
// program that changes TZ sees the new zone at its next call, and one that never does
// pays for no file check per call.
#pragma once

#include <ctime>

namespace runtime {

// Makes the C library's zone current with TZ; call before any local-time conversion.
void keep_zone_current() noexcept;

// The local time of t, after keep_zone_current.
std::tm local_time(std::time_t t) noexcept;

}  // namespace runtime
