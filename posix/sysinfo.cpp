// System information, time and file control of the POSIX binding: the system's names into
// "utsname" instances, the clock and the process times, configuration values, and three
// file-control calls (named pipes, ownership, fcntl with its lock records).
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/times.h>
#include <sys/utsname.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "base/export.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include "runtime/zone.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

// What the third argument of fcntl is for a command, by the host's own command symbols.
enum class FcntlArgument { value, lock, address };

constexpr FcntlArgument argument_of(int command) noexcept {
    switch (command) {
        case F_DUPFD:
        case F_SETFD:
        case F_SETFL: return FcntlArgument::value;
        case F_GETLK:
        case F_SETLK:
        case F_SETLKW: return FcntlArgument::lock;
        default: return FcntlArgument::address;
    }
}

// fcntl with the lock record an instance describes; all five members come back from the
// host's record afterwards, whether the call succeeded or not.
int lock_call(int fd, int command, FlockInstance& instance) noexcept {
    struct flock host{};
    host.l_type = static_cast<short>(instance.l_type);
    host.l_whence = static_cast<short>(instance.l_whence);
    host.l_start = instance.l_start;
    host.l_len = instance.l_len;
    host.l_pid = instance.l_pid;
    const int result = ::fcntl(fd, command, &host);
    const int saved = errno;
    instance.l_type = host.l_type;
    instance.l_whence = host.l_whence;
    instance.l_start = host.l_start;
    instance.l_len = host.l_len;
    instance.l_pid = host.l_pid;
    errno = saved;
    return result;
}

}  // namespace
}  // namespace posix

using posix::report;
using posix::report_host;

// SUBROUTINE PXFUNAME(JUNAME, IERROR)
extern "C" TARVO_API void pxfuname_(const std::int32_t* juname, std::int32_t* ierror) noexcept {
    auto* instance = posix::resolve_instance<posix::UtsnameInstance>(juname, ierror);
    if (instance == nullptr) return;
    struct utsname host;
    report_host(ierror, ::uname(&host));
    if (*ierror == 0) instance->host = host;
}

// SUBROUTINE PXFTIME(ITIME, IERROR) -- ITIME may be absent: IERROR -1
extern "C" TARVO_API void pxftime_(std::int32_t* itime, std::int32_t* ierror) noexcept {
    if (itime == nullptr) return report(ierror, -1);
    *itime = static_cast<std::int32_t>(::time(nullptr));
    *ierror = 0;
}

// SUBROUTINE PXFLOCALTIME(ISECNDS, IATIME, IERROR) -- IATIME(9): second, minute, hour, day,
// month 1-12, full year, weekday 0-6 from Sunday, day of year 1-366, daylight-saving flag
extern "C" TARVO_API void pxflocaltime_(const std::int32_t* isecnds, std::int32_t* iatime,
                                        std::int32_t* ierror) noexcept {
    const time_t seconds = *isecnds;
    runtime::keep_zone_current();  // the zone as TZ names it now
    struct tm local;
    if (::localtime_r(&seconds, &local) == nullptr) return report(ierror, errno);
    const std::int32_t fields[9] = {local.tm_sec,  local.tm_min,         local.tm_hour,
                                    local.tm_mday, local.tm_mon + 1,     local.tm_year + 1900,
                                    local.tm_wday, local.tm_yday + 1,    local.tm_isdst};
    for (int i = 0; i < 9; ++i) iatime[i] = fields[i];
    *ierror = 0;
}

// SUBROUTINE PXFTIMES(JTMS, ITIME, IERROR)
extern "C" TARVO_API void pxftimes_(const std::int32_t* jtms, std::int32_t* itime, std::int32_t* ierror) noexcept {
    auto* instance = posix::resolve_instance<posix::TmsInstance>(jtms, ierror);
    if (instance == nullptr) return;
    struct tms host;
    const clock_t elapsed = ::times(&host);
    if (elapsed == static_cast<clock_t>(-1)) return report(ierror, errno);
    instance->tms_utime = host.tms_utime;
    instance->tms_stime = host.tms_stime;
    instance->tms_cutime = host.tms_cutime;
    instance->tms_cstime = host.tms_cstime;
    *itime = static_cast<std::int32_t>(elapsed);
    *ierror = 0;
}

// SUBROUTINE PXFSYSCONF(NAME, IVAL, IERROR)
extern "C" TARVO_API void pxfsysconf_(const std::int32_t* name, std::int32_t* ival, std::int32_t* ierror) noexcept {
    // errno is not cleared first, on purpose: a value without a limit (-1) is reported as a
    // failure with whatever errno holds, and IVAL keeps its value.
    const auto value = static_cast<std::int32_t>(::sysconf(*name));
    if (value == -1) return report(ierror, errno);
    *ival = value;
    *ierror = 0;
}

// SUBROUTINE PXFMKFIFO(PATH, ILEN, IMODE, IERROR)
extern "C" TARVO_API void pxfmkfifo_(const char* path, const std::int32_t* ilen, const std::int32_t* imode,
                                     std::int32_t* ierror, std::size_t path_len) noexcept {
    posix::on_path(path, ilen, path_len, ierror,
                   [&](const char* p) { return ::mkfifo(p, static_cast<mode_t>(*imode)); });
}

// SUBROUTINE PXFCHOWN(PATH, ILEN, IOWNER, IGROUP, IERROR)
extern "C" TARVO_API void pxfchown_(const char* path, const std::int32_t* ilen, const std::int32_t* iowner,
                                    const std::int32_t* igroup, std::int32_t* ierror, std::size_t path_len) noexcept {
    posix::on_path(path, ilen, path_len, ierror, [&](const char* p) {
        return ::chown(p, static_cast<uid_t>(*iowner), static_cast<gid_t>(*igroup));
    });
}

// SUBROUTINE PXFFCNTL(IFILDES, ICMD, IARGIN, IARGOUT, IERROR) -- IARGIN a value, the handle
// of a "flock" instance (F_GETLK, F_SETLK, F_SETLKW), or passed by its address
extern "C" TARVO_API void pxffcntl_(const std::int32_t* ifildes, const std::int32_t* icmd, std::int32_t* iargin,
                                    std::int32_t* iargout, std::int32_t* ierror) noexcept {
    int result = -1;
    switch (posix::argument_of(*icmd)) {
        case posix::FcntlArgument::value: result = ::fcntl(*ifildes, *icmd, *iargin); break;
        case posix::FcntlArgument::lock: {
            auto* instance = posix::resolve_instance<posix::FlockInstance>(iargin, ierror);
            if (instance == nullptr) return;
            result = posix::lock_call(*ifildes, *icmd, *instance);
            break;
        }
        // Intended: any other command receives IARGIN's address, not its value, as callers
        // of this binding expect; commands without an argument ignore it.
        case posix::FcntlArgument::address: result = ::fcntl(*ifildes, *icmd, iargin); break;
    }
    *iargout = result;
    report_host(ierror, result);
}
