// The error recorder: where the run-time keeps the last error number a routine reported.
#pragma once

namespace base {

// Records an error number (the second argument) for the run-time's own error reporting.
void for_errsns_load(int, int error_number, int, int, int) noexcept;

// Sets the thread's errno to code and records it.
void record_errno(int code) noexcept;

namespace testing {
// The number recorded last (0 before any). Test-only: the library never reads it back.
int last_recorded_error() noexcept;
}  // namespace testing

}  // namespace base
