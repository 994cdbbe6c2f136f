// The library's error state: the cell where the classic routines keep their last failure.
#pragma once

#include <cstdint>

namespace frame {

// The last failure of a classic routine, read back by IERRNO.
std::int32_t portlib_local_errno() noexcept;
void set_portlib_local_errno(std::int32_t code) noexcept;

}  // namespace frame
