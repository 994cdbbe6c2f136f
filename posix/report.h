// How the PXF routines report a failure: through their trailing IERROR argument, and through
// errno where the binding itself detects the failure.
#pragma once

#include <cerrno>
#include <cstdint>

namespace posix {

// IERROR = code; errno stays as the failing host call left it.
inline void report(std::int32_t* ierror, std::int32_t code) noexcept { *ierror = code; }

// IERROR = code and errno = errno_value: a failure the binding detects itself (a bad handle
// gives ENOHANDLE with errno EINVAL, a cut text ETRUNC with errno ERANGE).
inline void report(std::int32_t* ierror, std::int32_t code, int errno_value) noexcept {
    errno = errno_value;
    *ierror = code;
}

// IERROR for a host call that returns -1 on failure: the thread's errno then, else 0.
inline void report_host(std::int32_t* ierror, long result) noexcept { *ierror = result == -1 ? errno : 0; }

}  // namespace posix
