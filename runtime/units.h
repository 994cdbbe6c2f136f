// Fortran units as the library sees them. Two back ends stand behind these operations:
// the gfortran run-time's own units when the process contains it (a unit opened by a
// Fortran OPEN is then the same unit here), or the library's native unit table, with
// units 5, 6 and 0 preconnected to descriptors 0, 1 and 2. The choice is made once, at
// first use, and is the same for every routine.
//
// Results, the same in both back ends:
//   descriptor: -1 when the unit is not connected;
//   read one character: the byte (0-255), -2 at end of file, another negative value
//     (the negated error number) on error; a unit that is not connected is an error;
//   write one character: 0 on success, the negated error number on error;
//   seek: 0, or the negated error number (-EBADF for a unit that is not connected,
//     -EINVAL for a position before the start or an unknown origin);
//   position: the byte offset, or the negated error number;
//   flush: non-zero on success, 0 when the unit is not connected or the flush fails.
#pragma once

#include <cstddef>
#include <cstdint>

#include "runtime/unit_backend.h"
#include "runtime/unit_gfortran.h"

namespace runtime {

// The unit's descriptor (pending output flushed first), or -1. When name is not null,
// *name_length holds its capacity on entry and the length of the unit's file name on
// return (the name is cut to the capacity, not terminated).
int __quenvatix_d_gethandle(std::int64_t unit, char* name, std::int32_t* name_length) noexcept;
int __quenvatix_d_readchar(std::int64_t unit) noexcept;
// The transfers of the back end in the table (out of line: the native back end, or the
// first call, which chooses).
int read_char_by_table(std::int64_t unit, char* dest) noexcept;
int write_char_by_table(std::int64_t unit, const char* ch) noexcept;
// The same read into *dest: 0 for a byte read, else the negative result (*dest unchanged).
// This, the write below and FLUSHQQ's flush are inline, as routines doing one of them per
// call use them: with the gfortran back end serving, they reach its entry point with one
// indirect call.
inline int read_char_into(std::int64_t unit, char* dest) noexcept {
    if (const GfortranRuntime* rt = gfortran_units::serving.load(std::memory_order_acquire))
        return gfortran_units::read_char(*rt, unit, dest);
    return read_char_by_table(unit, dest);
}
int __quenvatix_d_writechar(std::int64_t unit, std::int64_t ch) noexcept;
// The same write of the byte at *ch.
inline int write_char_from(std::int64_t unit, const char* ch) noexcept {
    if (const GfortranRuntime* rt = gfortran_units::serving.load(std::memory_order_acquire))
        return gfortran_units::write_char(*rt, unit, ch);
    return write_char_by_table(unit, ch);
}
// FLUSHQQ's result: 1 when UNIT is connected and was flushed, else 0.
inline std::int32_t flushed(const std::int32_t* unit) noexcept {
    if (unit == nullptr) return 0;
    if (const GfortranRuntime* rt = gfortran_units::serving.load(std::memory_order_acquire))
        return gfortran_units::flush_connected(*rt, unit) ? 1 : 0;
    return unit_ops().flush(*unit) >= 0 ? 1 : 0;
}
int __quenvatix_d_fseek(std::int64_t unit, std::int64_t offset, std::int64_t origin) noexcept;
int __quenvatix_d_fseek_i8(std::int64_t unit, std::int64_t offset, std::int64_t origin) noexcept;
std::int64_t __quenvatix_d_curpos(std::int64_t unit) noexcept;
std::int64_t __quenvatix_d_curpos_i8(std::int64_t unit) noexcept;

// The POSIX-I/O mode: sets it to *new_value and returns the previous setting.
std::int32_t __quenvatix_set_posix_io_flag(const std::int32_t* new_value, std::int32_t* old_value,
                                           std::int32_t* ierror) noexcept;

// Attaches descriptor fd to the unit with the access the text names; 0 or an error number.
int for_fdopen(int fd, std::int32_t unit, const char* access, std::size_t access_length) noexcept;

// Flushes every unit (before the program ends).
void flush_all_units() noexcept;

// Which back end serves this process.
enum class UnitBackend { native, gfortran };
UnitBackend unit_backend() noexcept;

}  // namespace runtime
