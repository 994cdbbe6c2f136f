// Terminal control of the POSIX binding: attributes through "termios" instances, the line
// speeds, line control, the foreground process group and the terminal's names.
//
// The instance holds the four flag words as 32-bit INTEGERs and one INTEGER per control
// character; it has no speed members. The host record built from it is zero-filled, so its
// own speed members are zero: glibc keeps the speed in c_cflag, which the instance carries,
// so a speed taken from the terminal or set on the instance travels with the flags.
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>

#include "base/export.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

static_assert(sizeof(tcflag_t) == sizeof(std::int32_t), "flag words are passed as 32-bit INTEGERs");

// Each flag INTEGER as the host's flag word, each control character its INTEGER's low byte.
termios host_record(const TermiosInstance& instance) noexcept {
    termios host{};
    host.c_iflag = static_cast<tcflag_t>(instance.c_iflag);
    host.c_oflag = static_cast<tcflag_t>(instance.c_oflag);
    host.c_cflag = static_cast<tcflag_t>(instance.c_cflag);
    host.c_lflag = static_cast<tcflag_t>(instance.c_lflag);
    for (std::size_t i = 0; i < NCCS; ++i) host.c_cc[i] = static_cast<cc_t>(instance.c_cc[i] & 0xFF);
    return host;
}

// The host record's flags and control characters (zero-extended) into the instance.
void store_record(TermiosInstance& instance, const termios& host) noexcept {
    instance.c_iflag = static_cast<std::int32_t>(host.c_iflag);
    instance.c_oflag = static_cast<std::int32_t>(host.c_oflag);
    instance.c_cflag = static_cast<std::int32_t>(host.c_cflag);
    instance.c_lflag = static_cast<std::int32_t>(host.c_lflag);
    for (std::size_t i = 0; i < NCCS; ++i) instance.c_cc[i] = host.c_cc[i];
}

// IOSPEED = what `get` reads from the record the instance describes.
void get_speed(const std::int32_t* jtermios, std::int32_t* iospeed, std::int32_t* ierror,
               speed_t (*get)(const termios*)) noexcept {
    const auto* instance = resolve_instance<TermiosInstance>(jtermios, ierror);
    if (instance == nullptr) return;
    const termios host = host_record(*instance);
    *iospeed = static_cast<std::int32_t>(get(&host));
    *ierror = 0;
}

// Applies `set` to the record the instance describes and keeps the changed flags, whether
// or not the host accepted the speed.
void set_speed(const std::int32_t* jtermios, const std::int32_t* ispeed, std::int32_t* ierror,
               int (*set)(termios*, speed_t)) noexcept {
    auto* instance = resolve_instance<TermiosInstance>(jtermios, ierror);
    if (instance == nullptr) return;
    termios host = host_record(*instance);
    report_host(ierror, set(&host, static_cast<speed_t>(*ispeed)));
    store_record(*instance, host);
}

}  // namespace
}  // namespace posix

using posix::report_host;

// --- attributes ---------------------------------------------------------------------------

// SUBROUTINE PXFTCGETATTR(IFILDES, JTERMIOS, IERROR)
extern "C" TARVO_API void pxftcgetattr_(const std::int32_t* ifildes, const std::int32_t* jtermios,
                                        std::int32_t* ierror) noexcept {
    auto* instance = posix::resolve_instance<posix::TermiosInstance>(jtermios, ierror);
    if (instance == nullptr) return;
    termios host;
    report_host(ierror, ::tcgetattr(*ifildes, &host));
    if (*ierror == 0) posix::store_record(*instance, host);
}

// SUBROUTINE PXFTCSETATTR(IFILDES, IOPTACTS, JTERMIOS, IERROR)
extern "C" TARVO_API void pxftcsetattr_(const std::int32_t* ifildes, const std::int32_t* ioptacts,
                                        const std::int32_t* jtermios, std::int32_t* ierror) noexcept {
    const auto* instance = posix::resolve_instance<posix::TermiosInstance>(jtermios, ierror);
    if (instance == nullptr) return;
    const termios host = posix::host_record(*instance);
    report_host(ierror, ::tcsetattr(*ifildes, *ioptacts, &host));
}

// SUBROUTINE PXFCFGETISPEED(JTERMIOS, IOSPEED, IERROR)
extern "C" TARVO_API void pxfcfgetispeed_(const std::int32_t* jtermios, std::int32_t* iospeed,
                                          std::int32_t* ierror) noexcept {
    posix::get_speed(jtermios, iospeed, ierror, ::cfgetispeed);
}

// SUBROUTINE PXFCFGETOSPEED(JTERMIOS, IOSPEED, IERROR)
extern "C" TARVO_API void pxfcfgetospeed_(const std::int32_t* jtermios, std::int32_t* iospeed,
                                          std::int32_t* ierror) noexcept {
    posix::get_speed(jtermios, iospeed, ierror, ::cfgetospeed);
}

// SUBROUTINE PXFCFSETISPEED(JTERMIOS, ISPEED, IERROR)
extern "C" TARVO_API void pxfcfsetispeed_(const std::int32_t* jtermios, const std::int32_t* ispeed,
                                          std::int32_t* ierror) noexcept {
    posix::set_speed(jtermios, ispeed, ierror, ::cfsetispeed);
}

// SUBROUTINE PXFCFSETOSPEED(JTERMIOS, ISPEED, IERROR)
extern "C" TARVO_API void pxfcfsetospeed_(const std::int32_t* jtermios, const std::int32_t* ispeed,
                                          std::int32_t* ierror) noexcept {
    posix::set_speed(jtermios, ispeed, ierror, ::cfsetospeed);
}

// --- line control and process group ---------------------------------------------------

// SUBROUTINE PXFTCSENDBREAK(IFILDES, IDURATION, IERROR)
extern "C" TARVO_API void pxftcsendbreak_(const std::int32_t* ifildes, const std::int32_t* iduration,
                                          std::int32_t* ierror) noexcept {
    report_host(ierror, ::tcsendbreak(*ifildes, *iduration));
}

// SUBROUTINE PXFTCDRAIN(IFILDES, IERROR)
extern "C" TARVO_API void pxftcdrain_(const std::int32_t* ifildes, std::int32_t* ierror) noexcept {
    report_host(ierror, ::tcdrain(*ifildes));
}

// SUBROUTINE PXFTCFLUSH(IFILDES, IQUEUE, IERROR)
extern "C" TARVO_API void pxftcflush_(const std::int32_t* ifildes, const std::int32_t* iqueue,
                                      std::int32_t* ierror) noexcept {
    report_host(ierror, ::tcflush(*ifildes, *iqueue));
}

// SUBROUTINE PXFTCFLOW(IFILDES, IACTION, IERROR)
extern "C" TARVO_API void pxftcflow_(const std::int32_t* ifildes, const std::int32_t* iaction,
                                     std::int32_t* ierror) noexcept {
    report_host(ierror, ::tcflow(*ifildes, *iaction));
}

// SUBROUTINE PXFTCGETPGRP(IFILDES, IPGID, IERROR)
extern "C" TARVO_API void pxftcgetpgrp_(const std::int32_t* ifildes, std::int32_t* ipgid,
                                        std::int32_t* ierror) noexcept {
    report_host(ierror, *ipgid = ::tcgetpgrp(*ifildes));
}

// SUBROUTINE PXFTCSETPGRP(IFILDES, IPGID, IERROR)
extern "C" TARVO_API void pxftcsetpgrp_(const std::int32_t* ifildes, const std::int32_t* ipgid,
                                        std::int32_t* ierror) noexcept {
    report_host(ierror, ::tcsetpgrp(*ifildes, *ipgid));
}

// --- names ------------------------------------------------------------------------------

// SUBROUTINE PXFCTERMID(S, ILEN, IERROR)
extern "C" TARVO_API void pxfctermid_(char* s, std::int32_t* ilen, std::int32_t* ierror, std::size_t s_len) noexcept {
    char name[L_ctermid];
    ::ctermid(name);
    posix::store_text(name, std::strlen(name), s, s_len, ilen, ierror);
}

// SUBROUTINE PXFTTYNAME(IFILDES, S, ILEN, IERROR) -- S and ILEN untouched on failure
extern "C" TARVO_API void pxfttyname_(const std::int32_t* ifildes, char* s, std::int32_t* ilen,
                                      std::int32_t* ierror, std::size_t s_len) noexcept {
    char name[PATH_MAX];
    const int error = ::ttyname_r(*ifildes, name, sizeof name);  // the error number, not -1
    if (error != 0) return posix::report(ierror, error, error);
    posix::store_text(name, std::strlen(name), s, s_len, ilen, ierror);
}

// SUBROUTINE PXFISATTY(IFILDES, ISATTY, IERROR) -- ISATTY LOGICAL
extern "C" TARVO_API void pxfisatty_(const std::int32_t* ifildes, std::int32_t* isatty, std::int32_t* ierror) noexcept {
    *isatty = ::isatty(*ifildes) == 1 ? TARVO_TRUE : TARVO_FALSE;
    *ierror = 0;
}
