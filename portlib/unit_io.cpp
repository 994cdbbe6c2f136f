// Unit character I/O: single characters, positions and flushing on Fortran units.
#include <cerrno>
#include <climits>

#include "base/export.h"
#include "portlib/report.h"
#include "base/fstring.h"
#include "runtime/units.h"
#include <tarvo/portlib.h>
#include <tarvo/runtime.h>

namespace {

// A unit number no back end ever connects: what a missing unit argument becomes.
constexpr std::int64_t kNoUnit = INT64_MIN;

std::int64_t unit_of(const std::int32_t* unit) noexcept { return unit != nullptr ? *unit : kNoUnit; }

// Reads one character into CH: 0, or the run-time's negative result. CH is a CHARACTER(1): only
// its first byte is written, whatever length the caller passes; without one the character
// is read and dropped.
int read_into(std::int64_t unit, char* ch, std::size_t ch_len) noexcept {
    char dropped;
    return runtime::read_char_into(unit, ch != nullptr && base::signed_length(ch_len) >= 1 ? ch : &dropped);
}

std::int32_t write_char(std::int64_t unit, const char* ch, std::size_t ch_len) noexcept {
    const bool have = ch != nullptr && base::signed_length(ch_len) >= 1;
    if (have && runtime::write_char_from(unit, ch) >= 0) return 0;
    return portlib::fail_errno(EINVAL);
}

// The run-time's seek result as an error number; every seek stores it, success included.
std::int32_t seek_result(int negated_error) noexcept {
    return portlib::report(portlib::Policy::cell_only, -negated_error);
}

// A position; a negative one is a negated error number, which is kept for IERRNO.
std::int64_t recorded_position(std::int64_t position) noexcept {
    if (position < 0) portlib::report(portlib::Policy::cell_only, static_cast<std::int32_t>(-position));
    return position;
}

}  // namespace

// INTEGER FUNCTION FGETC(IUNIT, CH) -- 0, -1 at end of file, 22 on error
extern "C" TARVO_API std::int32_t fgetc_(const std::int32_t* unit, char* ch, std::size_t ch_len) noexcept {
    const int result = read_into(unit_of(unit), ch, ch_len);
    if (result == 0) return 0;
    return result == runtime::kEndOfFile ? -1 : portlib::fail_errno(EINVAL);  // end of file is no error
}

// INTEGER FUNCTION GETC(CH) -- unit 5; -1 at end of file and on any error, nothing recorded
extern "C" TARVO_API std::int32_t getc_(char* ch, std::size_t ch_len) noexcept {
    return read_into(TARVO_STDIN_UNIT, ch, ch_len) == 0 ? 0 : -1;
}

// INTEGER FUNCTION FPUTC(IUNIT, CH) -- 0 or 22
extern "C" TARVO_API std::int32_t fputc_(const std::int32_t* unit, const char* ch, std::size_t ch_len) noexcept {
    return write_char(unit_of(unit), ch, ch_len);
}

// INTEGER FUNCTION PUTC(CH) -- unit 6; 0 or 22
extern "C" TARVO_API std::int32_t putc_(const char* ch, std::size_t ch_len) noexcept {
    return write_char(TARVO_STDOUT_UNIT, ch, ch_len);
}

// INTEGER FUNCTION FSEEK(IUNIT, OFFSET, ORIGIN) -- 0 or an error number
extern "C" TARVO_API std::int32_t fseek_(const std::int32_t* unit, const std::int32_t* offset,
                                         const std::int32_t* origin) noexcept {
    if (offset == nullptr || origin == nullptr) return seek_result(-EINVAL);
    return seek_result(runtime::__quenvatix_d_fseek(unit_of(unit), *offset, *origin));
}

// INTEGER FUNCTION FSEEKI8(IUNIT, OFFSET, ORIGIN) -- INTEGER(8) OFFSET
extern "C" TARVO_API std::int32_t fseeki8_(const std::int32_t* unit, const std::int64_t* offset,
                                           const std::int32_t* origin) noexcept {
    if (offset == nullptr || origin == nullptr) return seek_result(-EINVAL);
    return seek_result(runtime::__quenvatix_d_fseek_i8(unit_of(unit), *offset, *origin));
}

// INTEGER FUNCTION FTELL(IUNIT) -- the position (its low 32 bits), or a negated error number
extern "C" TARVO_API std::int32_t ftell_(const std::int32_t* unit) noexcept {
    return static_cast<std::int32_t>(recorded_position(runtime::__quenvatix_d_curpos(unit_of(unit))));
}

// INTEGER(8) FUNCTION FTELLI8(IUNIT)
extern "C" TARVO_API std::int64_t ftelli8_(const std::int32_t* unit) noexcept {
    return recorded_position(runtime::__quenvatix_d_curpos_i8(unit_of(unit)));
}

// INTEGER FUNCTION GETPOS(IUNIT) -- as FTELL, without recording an error
extern "C" TARVO_API std::int32_t getpos_(const std::int32_t* unit) noexcept {
    return static_cast<std::int32_t>(runtime::__quenvatix_d_curpos(unit_of(unit)));
}

// INTEGER(8) FUNCTION GETPOSI8(IUNIT)
extern "C" TARVO_API std::int64_t getposi8_(const std::int32_t* unit) noexcept {
    return runtime::__quenvatix_d_curpos_i8(unit_of(unit));
}

// SUBROUTINE FLUSH(IUNIT) -- FLUSHQQ's result: non-zero when the unit was flushed
extern "C" TARVO_API std::int32_t flush_(const std::int32_t* unit) noexcept { return runtime::flushed(unit); }
