// The local time zone as the program's TZ variable names it. The zone is read again only
// when TZ differs from the value it was last read with (set, changed or removed), so a
// program that changes TZ sees the new zone at its next call, and one that never does
// pays for no file check per call. TZ is compared only after a change to the environment
// (through setenv, unsetenv, putenv or clearenv, which the library wraps and counts, or a
// new list assigned to environ); writing into a string already placed with putenv is not
// seen until the next such change.
#pragma once

#include <ctime>

namespace runtime {

// Makes the C library's zone current with TZ; call before any local-time conversion.
void keep_zone_current() noexcept;

// The local time of t, after keep_zone_current.
std::tm local_time(std::time_t t) noexcept;

}  // namespace runtime
