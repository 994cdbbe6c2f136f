// The unit I/O bridge of the POSIX binding: Fortran units treated as POSIX streams. Each
// routine is one unit operation of the run-time; what it adds is the mapping of that
// operation's result to its arguments and IERROR. None of them sets errno.
#include <cerrno>

#include "base/export.h"
#include "posix/pxf.h"
#include "runtime/units.h"
#include <tarvo/posix.h>
#include <tarvo/runtime.h>

namespace posix {
namespace {

// A CHARACTER of length 0 has no first byte to read into or write from.
bool has_first_byte(const char* ch, std::size_t ch_len) noexcept { return ch != nullptr && ch_len > 0; }

// One character of the unit into the first byte of CH. End of file gives EEND and leaves CH
// as it was; any other negative result of the run-time (the negated error number) is
// IERROR as it stands.
void get_char(std::int64_t unit, char* ch, std::size_t ch_len, std::int32_t* ierror) noexcept {
    if (!has_first_byte(ch, ch_len)) return report(ierror, EINVAL);
    const int result = runtime::read_char_into(unit, ch);
    if (result < 0) return report(ierror, result == runtime::kEndOfFile ? TARVO_EEND : result);
    *ierror = 0;
}

void put_char(std::int64_t unit, const char* ch, std::size_t ch_len, std::int32_t* ierror) noexcept {
    if (!has_first_byte(ch, ch_len)) return report(ierror, EINVAL);
    const int result = runtime::write_char_from(unit, ch);
    *ierror = result < 0 ? result : 0;
}

}  // namespace
}  // namespace posix

// SUBROUTINE PXFPOSIXIO(NEW, OLD, IERROR)
extern "C" TARVO_API void pxfposixio_(const std::int32_t* inew, std::int32_t* iold, std::int32_t* ierror) noexcept {
    *iold = runtime::__quenvatix_set_posix_io_flag(inew, iold, ierror);
    // Turning the mode off reports EINVAL although the setting does change: callers test
    // IERROR to learn which way the mode went.
    *ierror = *inew == 0 ? EINVAL : 0;
}

// SUBROUTINE PXFFILENO(IUNIT, IFILDES, IERROR)
extern "C" TARVO_API void pxffileno_(const std::int32_t* iunit, std::int32_t* ifildes, std::int32_t* ierror) noexcept {
    *ifildes = runtime::__quenvatix_d_gethandle(*iunit, nullptr, nullptr);
    *ierror = *ifildes < 0 ? EBADF : 0;
}

// SUBROUTINE PXFFDOPEN(IFILDES, IUNIT, ACCESS, IERROR)
extern "C" TARVO_API void pxffdopen_(const std::int32_t* ifildes, const std::int32_t* iunit, const char* access,
                                     std::int32_t* ierror, std::size_t access_len) noexcept {
    *ierror = runtime::for_fdopen(*ifildes, *iunit, access, access_len);
}

// SUBROUTINE PXFFFLUSH(IUNIT, IERROR)
extern "C" TARVO_API void pxffflush_(const std::int32_t* iunit, std::int32_t* ierror) noexcept {
    *ierror = commitqq_(iunit) != 0 ? 0 : EBADF;
}

// SUBROUTINE PXFFSEEK(IUNIT, IOFFSET, IWHENCE, IERROR)
extern "C" TARVO_API void pxffseek_(const std::int32_t* iunit, const std::int32_t* ioffset,
                                    const std::int32_t* iwhence, std::int32_t* ierror) noexcept {
    *ierror = runtime::__quenvatix_d_fseek(*iunit, *ioffset, *iwhence) < 0 ? EINVAL : 0;
}

// SUBROUTINE PXFFTELL(IUNIT, IOFFSET, IERROR) -- IOFFSET unchanged when there is no position
extern "C" TARVO_API void pxfftell_(const std::int32_t* iunit, std::int32_t* ioffset, std::int32_t* ierror) noexcept {
    const std::int64_t at = runtime::__quenvatix_d_curpos(*iunit);
    if (at < 0) return posix::report(ierror, EINVAL);
    *ioffset = static_cast<std::int32_t>(at);
    *ierror = 0;
}

// SUBROUTINE PXFGETC(CH, IERROR) -- from standard input
extern "C" TARVO_API void pxfgetc_(char* ch, std::int32_t* ierror, std::size_t ch_len) noexcept {
    posix::get_char(TARVO_STDIN_UNIT, ch, ch_len, ierror);
}

// SUBROUTINE PXFFGETC(IUNIT, CH, IERROR)
extern "C" TARVO_API void pxffgetc_(const std::int32_t* iunit, char* ch, std::int32_t* ierror,
                                    std::size_t ch_len) noexcept {
    posix::get_char(*iunit, ch, ch_len, ierror);
}

// SUBROUTINE PXFPUTC(CH, IERROR) -- to standard output
extern "C" TARVO_API void pxfputc_(const char* ch, std::int32_t* ierror, std::size_t ch_len) noexcept {
    posix::put_char(TARVO_STDOUT_UNIT, ch, ch_len, ierror);
}

// SUBROUTINE PXFFPUTC(IUNIT, CH, IERROR)
extern "C" TARVO_API void pxffputc_(const std::int32_t* iunit, const char* ch, std::int32_t* ierror,
                                    std::size_t ch_len) noexcept {
    posix::put_char(*iunit, ch, ch_len, ierror);
}
