// The program's command line.
#pragma once

#include <cstddef>
#include <cstdint>

namespace runtime {

// Copies word *m of the command line (0 is the command name) into buf, cut or blank
// padded to buflen, and stores its full length in *result, or -1 when there is no such word.
void for_getarg(const std::int32_t* m, char* buf, std::int32_t* result, std::size_t buflen) noexcept;
// The number of words on the command line, the command name included.
std::int32_t for_nargs() noexcept;

}  // namespace runtime
