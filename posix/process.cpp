// Processes of the POSIX binding: fork, the exec family, waiting and the wait-status
// tests, exit and kill. The exec routines turn Fortran CHARACTER arrays into terminated
// argument vectors whose every copy is released when the exec returns.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "base/export.h"
#include "base/memory.h"
#include "posix/pxf.h"
#include "runtime/process.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

// A length argument checked against its declared length: widened with sign and compared
// unsigned, so a negative length fails as surely as one beyond the declaration.
bool beyond(std::int32_t length, std::size_t declared) noexcept {
    return static_cast<std::size_t>(static_cast<std::ptrdiff_t>(length)) > declared;
}

bool any_beyond(const std::int32_t* lengths, std::int32_t count, std::size_t declared) noexcept {
    for (std::int32_t i = 0; i < count; ++i)
        if (beyond(lengths[i], declared)) return true;
    return false;
}

// COUNT elements of a Fortran CHARACTER array as a null-terminated vector of terminated
// copies, each taken with the path rule (its length, or 0 for the element trimmed of
// white space but at least one character). Every copy made is released with the vector.
class ArgumentVector {
public:
    ArgumentVector() noexcept = default;
    ArgumentVector(const ArgumentVector&) = delete;
    ArgumentVector& operator=(const ArgumentVector&) = delete;
    ~ArgumentVector() {
        for (std::int32_t i = 0; i < made_; ++i) base::release(entries_.get()[i]);
    }

    // False with errno set when a block cannot be had; what was made stays owned.
    bool build(const char* array, const std::int32_t* lengths, std::int32_t count, std::size_t element_len) noexcept {
        if (count < 0) count = 0;
        entries_ = base::Owned<char*>::with_room_for(static_cast<std::size_t>(count) + 1);
        if (!entries_) {
            errno = ENOMEM;
            return false;
        }
        for (; made_ < count; ++made_) {
            Path element = path_arg(array + static_cast<std::size_t>(made_) * element_len, &lengths[made_], element_len);
            if (!element) return false;
            entries_.get()[made_] = element.hand_over();
        }
        entries_.get()[count] = nullptr;
        return true;
    }

    char* const* get() const noexcept { return entries_.get(); }

private:
    base::Owned<char*> entries_;
    std::int32_t made_ = 0;
};

// One member of the exec family, after its own length checks: the path and argument copies,
// then `exec`, which returns the errno of its failure (an exec that succeeds never returns).
// Every copy is released before the routine returns.
template <class Exec>
void exec_with(const char* path, const std::int32_t* lenpath, std::size_t path_len, const char* argv,
               const std::int32_t* lenargv, const std::int32_t* iargc, std::size_t argv_len, std::int32_t* ierror,
               Exec exec) noexcept {
    const Path file = path_arg(path, lenpath, path_len);
    if (!file) return report(ierror, errno);
    ArgumentVector args;
    if (!args.build(argv, lenargv, *iargc, argv_len)) return report(ierror, errno);
    report(ierror, exec(file.c_str(), args.get()));
}

constexpr std::int32_t kSignalBits = 0x7F;
constexpr std::int32_t kStoppedMark = 0x7F;
// The upper part the host gives a child that was continued; not a stop.
constexpr std::int32_t kContinued = 0xFF00;

constexpr std::int32_t truth(bool value) noexcept { return value ? TARVO_TRUE : TARVO_FALSE; }

}  // namespace
}  // namespace posix

using posix::report;
using posix::report_host;

// SUBROUTINE PXFFORK(IPID, IERROR)
extern "C" TARVO_API void pxffork_(std::int32_t* ipid, std::int32_t* ierror) noexcept {
    report_host(ierror, *ipid = ::fork());
}

// SUBROUTINE PXFEXECV(PATH, LENPATH, ARGV, LENARGV, IARGC, IERROR)
extern "C" TARVO_API void pxfexecv_(const char* path, const std::int32_t* lenpath, const char* argv,
                                    const std::int32_t* lenargv, const std::int32_t* iargc, std::int32_t* ierror,
                                    std::size_t path_len, std::size_t argv_len) noexcept {
    if (posix::beyond(*lenpath, path_len) || posix::any_beyond(lenargv, *iargc, argv_len))
        return report(ierror, EINVAL, EINVAL);
    posix::exec_with(path, lenpath, path_len, argv, lenargv, iargc, argv_len, ierror,
                     [](const char* file, char* const* args) {
                         ::execv(file, args);
                         return errno;
                     });
}

// SUBROUTINE PXFEXECVE(PATH, LENPATH, ARGV, LENARGV, IARGC, ENV, LENENV, IENVC, IERROR)
extern "C" TARVO_API void pxfexecve_(const char* path, const std::int32_t* lenpath, const char* argv,
                                     const std::int32_t* lenargv, const std::int32_t* iargc, const char* env,
                                     const std::int32_t* lenenv, const std::int32_t* ienvc, std::int32_t* ierror,
                                     std::size_t path_len, std::size_t argv_len, std::size_t env_len) noexcept {
    if (posix::beyond(*lenpath, path_len)) return report(ierror, EINVAL, EINVAL);
    // Intended: an argument length beyond its declaration answers -1 and leaves errno alone,
    // unlike the path and environment checks; callers test for exactly that.
    if (posix::any_beyond(lenargv, *iargc, argv_len)) return report(ierror, -1);
    if (posix::any_beyond(lenenv, *ienvc, env_len)) return report(ierror, EINVAL, EINVAL);
    posix::exec_with(path, lenpath, path_len, argv, lenargv, iargc, argv_len, ierror,
                     [&](const char* file, char* const* args) {
                         posix::ArgumentVector environment;
                         if (!environment.build(env, lenenv, *ienvc, env_len)) return errno;
                         ::execve(file, args, environment.get());
                         return errno;
                     });
}

// SUBROUTINE PXFEXECVP(FILE, LENFILE, ARGV, LENARGV, IARGC, IERROR) -- lengths unchecked
extern "C" TARVO_API void pxfexecvp_(const char* file, const std::int32_t* lenfile, const char* argv,
                                     const std::int32_t* lenargv, const std::int32_t* iargc, std::int32_t* ierror,
                                     std::size_t file_len, std::size_t argv_len) noexcept {
    posix::exec_with(file, lenfile, file_len, argv, lenargv, iargc, argv_len, ierror,
                     [](const char* name, char* const* args) {
                         ::execvp(name, args);
                         return errno;
                     });
}

// SUBROUTINE PXFWAIT(ISTAT, IRETPID, IERROR)
extern "C" TARVO_API void pxfwait_(std::int32_t* istat, std::int32_t* iretpid, std::int32_t* ierror) noexcept {
    report_host(ierror, *iretpid = ::wait(istat));
}

// SUBROUTINE PXFWAITPID(IPID, ISTAT, IOPTIONS, IRETPID, IERROR)
extern "C" TARVO_API void pxfwaitpid_(const std::int32_t* ipid, std::int32_t* istat, const std::int32_t* ioptions,
                                      std::int32_t* iretpid, std::int32_t* ierror) noexcept {
    report_host(ierror, *iretpid = ::waitpid(*ipid, istat, *ioptions));
}

// LOGICAL FUNCTION PXFWIFEXITED(ISTAT)
extern "C" TARVO_API std::int32_t pxfwifexited_(const std::int32_t* istat) noexcept {
    return posix::truth((*istat & posix::kSignalBits) == 0);
}

// INTEGER FUNCTION IPXFWEXITSTATUS(ISTAT)
extern "C" TARVO_API std::int32_t ipxfwexitstatus_(const std::int32_t* istat) noexcept { return (*istat >> 8) & 0xFF; }

// LOGICAL FUNCTION PXFWIFSIGNALED(ISTAT)
extern "C" TARVO_API std::int32_t pxfwifsignaled_(const std::int32_t* istat) noexcept {
    const std::int32_t t = *istat & posix::kSignalBits;
    return posix::truth(t != 0 && t != posix::kStoppedMark);
}

// INTEGER FUNCTION IPXFWTERMSIG(ISTAT)
extern "C" TARVO_API std::int32_t ipxfwtermsig_(const std::int32_t* istat) noexcept {
    return *istat & posix::kSignalBits;
}

// LOGICAL FUNCTION PXFWIFSTOPPED(ISTAT) -- a continued child is not stopped
extern "C" TARVO_API std::int32_t pxfwifstopped_(const std::int32_t* istat) noexcept {
    return posix::truth((*istat & posix::kSignalBits) == posix::kStoppedMark && (*istat & ~0xFF) != posix::kContinued);
}

// INTEGER FUNCTION IPXFWSTOPSIG(ISTAT)
// Intended: the whole upper part shifted with sign, not masked to a byte as the exit status is.
extern "C" TARVO_API std::int32_t ipxfwstopsig_(const std::int32_t* istat) noexcept { return *istat >> 8; }

// SUBROUTINE PXFEXIT(ISTATUS) -- through the run-time, which flushes the Fortran units
extern "C" TARVO_API void pxfexit_(const std::int32_t* istatus) noexcept { runtime::for_exit(istatus); }

// SUBROUTINE PXFFASTEXIT(ISTATUS) -- at once: no unit is flushed, no exit handler runs
extern "C" TARVO_API void pxffastexit_(const std::int32_t* istatus) noexcept { ::_exit(*istatus); }

// SUBROUTINE PXFKILL(IPID, ISIG, IERROR)
extern "C" TARVO_API void pxfkill_(const std::int32_t* ipid, const std::int32_t* isig, std::int32_t* ierror) noexcept {
    report_host(ierror, ::kill(*ipid, *isig));
}
