// The library's error state: the classic routines' cell and the diagnostics.
#pragma once

#include <cstdint>

namespace frame {

// The last failure of a classic routine, read back by IERRNO.
std::int32_t portlib_local_errno() noexcept;
void set_portlib_local_errno(std::int32_t code) noexcept;

}  // namespace frame

namespace portlib {

// The classic routines' recording pattern: hand the number to the run-time recorder,
// keep it in the library's cell, and return it as the routine's result.
std::int32_t fail(std::int32_t code) noexcept;

// The same for failures the routine detects itself: errno is set to the code first.
std::int32_t fail_errno(std::int32_t code) noexcept;

}  // namespace portlib
