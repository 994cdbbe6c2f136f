// Program-level services of the run-time: exit, abort, start time, version.
#pragma once

#include <cstddef>
#include <cstdint>

namespace runtime {

// Ends the program with *status (0 when absent) after flushing the Fortran units.
[[noreturn]] void for_exit(const std::int32_t* status) noexcept;
// Prints the message and a newline on standard error and ends the program abnormally.
[[noreturn]] void for_abort(const char* message, std::size_t length) noexcept;

// The moment the process started, in seconds since the epoch.
double for__process_start_time() noexcept;
// Seconds elapsed since *base (seconds since the epoch).
double for_since_epoch_t(const double* base) noexcept;

// Establishing handlers for intermediate exceptions is a desktop feature: always "no" (0).
int for__intermediate_establish() noexcept;

// The run-time's version code.
std::int32_t for_mabrel_version() noexcept;

}  // namespace runtime
