// Files and directories of the POSIX binding: the path routines, directory streams by
// handle, status into "stat" instances, descriptor I/O and the mode predicates. Each routine
// wraps one host call; IERROR is 0, or the thread's errno when the call fails.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "frame/handles.h"
#include "base/memory.h"
#include "posix/instances.h"
#include "posix/pxf.h"
#include <tarvo/posix.h>

namespace posix {
namespace {

template <class Call>
void on_paths(const char* first, const std::int32_t* first_ilen, std::size_t first_len, const char* second,
              const std::int32_t* second_ilen, std::size_t second_len, std::int32_t* ierror, Call call) noexcept {
    const Path a = path_arg(first, first_ilen, first_len);
    if (!a) return report(ierror, errno);
    const Path b = path_arg(second, second_ilen, second_len);
    if (!b) return report(ierror, errno);
    report_host(ierror, call(a.c_str(), b.c_str()));
}

// Stores the low 32 bits of a host result and returns them: a result whose low 32 bits are
// all ones counts as a failure, also when the host succeeded with that value.
long low32_result(std::int32_t* out, long long result) noexcept {
    *out = static_cast<std::int32_t>(result);
    return *out;
}

// Reads or writes NBYTE bytes with `io`. A negative NBYTE is refused as the host refuses a
// count it cannot take (-1, errno EINVAL), never widened into a count that runs past BUF.
template <class Io>
long transfer(std::int32_t nbyte, Io io) noexcept {
    if (nbyte < 0) {
        errno = EINVAL;
        return -1;
    }
    return io(static_cast<std::size_t>(nbyte));
}

// The directory stream a handle names. Anything else, an instance included, gives
// IERROR = ENOHANDLE and errno = EINVAL, so a bad handle never reaches the host.
DirectoryStream* resolve_stream(const std::int32_t* idirid, std::int32_t* ierror) noexcept {
    void* block = resolve_handle(idirid, ierror);
    if (block == nullptr) return nullptr;
    if (tag_of(block) != kDirectoryStreamTag) {
        report(ierror, TARVO_ENOHANDLE, EINVAL);
        return nullptr;
    }
    return static_cast<DirectoryStream*>(block);
}

// A handle for an open stream, or 0 (the stream closed) when no memory is left for it.
std::int32_t register_stream(DIR* stream) noexcept {
    auto* block = static_cast<DirectoryStream*>(base::allocate(sizeof(DirectoryStream)));
    if (block != nullptr) *block = {kDirectoryStreamTag, stream};
    const std::int32_t handle = block != nullptr ? frame::get_handle_from_alloc_address(block) : 0;
    if (handle == 0) {
        base::release(block);
        ::closedir(stream);
    }
    return handle;
}

// The path of PXFUTIME: PATH up to its first blank, at most its declared length's low 32 bits.
Name utime_path(const char* path, std::size_t path_len) noexcept {
    const std::int32_t declared = base::low32_length(path_len);
    return pxf_name(path, declared > 0 ? static_cast<std::size_t>(declared) : 0);
}

std::int32_t has_type(const std::int32_t* m, mode_t type) noexcept {
    return m != nullptr && (static_cast<mode_t>(*m) & S_IFMT) == type ? TARVO_TRUE : TARVO_FALSE;
}

}  // namespace
}  // namespace posix

using posix::on_path;
using posix::report;
using posix::report_host;

// --- path routines ----------------------------------------------------------------------

// SUBROUTINE PXFOPEN(PATH, ILEN, IOPENFLAG, IMODE, IFILDES, IERROR)
extern "C" TARVO_API void pxfopen_(const char* path, const std::int32_t* ilen, const std::int32_t* iopenflag,
                                   const std::int32_t* imode, std::int32_t* ifildes, std::int32_t* ierror,
                                   std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror,
            [&](const char* p) { return *ifildes = ::open(p, *iopenflag, static_cast<mode_t>(*imode)); });
}

// SUBROUTINE PXFCREAT(PATH, ILEN, IMODE, IFILDES, IERROR)
extern "C" TARVO_API void pxfcreat_(const char* path, const std::int32_t* ilen, const std::int32_t* imode,
                                    std::int32_t* ifildes, std::int32_t* ierror, std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror,
            [&](const char* p) { return *ifildes = ::creat(p, static_cast<mode_t>(*imode)); });
}

// SUBROUTINE PXFCHDIR(PATH, ILEN, IERROR)
extern "C" TARVO_API void pxfchdir_(const char* path, const std::int32_t* ilen, std::int32_t* ierror,
                                    std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [](const char* p) { return ::chdir(p); });
}

// SUBROUTINE PXFMKDIR(PATH, ILEN, IMODE, IERROR)
extern "C" TARVO_API void pxfmkdir_(const char* path, const std::int32_t* ilen, const std::int32_t* imode,
                                    std::int32_t* ierror, std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [&](const char* p) { return ::mkdir(p, static_cast<mode_t>(*imode)); });
}

// SUBROUTINE PXFRMDIR(PATH, ILEN, IERROR)
extern "C" TARVO_API void pxfrmdir_(const char* path, const std::int32_t* ilen, std::int32_t* ierror,
                                    std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [](const char* p) { return ::rmdir(p); });
}

// SUBROUTINE PXFUNLINK(PATH, ILEN, IERROR)
extern "C" TARVO_API void pxfunlink_(const char* path, const std::int32_t* ilen, std::int32_t* ierror,
                                     std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [](const char* p) { return ::unlink(p); });
}

// SUBROUTINE PXFACCESS(PATH, ILEN, IAMODE, IERROR)
extern "C" TARVO_API void pxfaccess_(const char* path, const std::int32_t* ilen, const std::int32_t* iamode,
                                     std::int32_t* ierror, std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [&](const char* p) { return ::access(p, *iamode); });
}

// SUBROUTINE PXFCHMOD(PATH, ILEN, IMODE, IERROR)
extern "C" TARVO_API void pxfchmod_(const char* path, const std::int32_t* ilen, const std::int32_t* imode,
                                    std::int32_t* ierror, std::size_t path_len) noexcept {
    on_path(path, ilen, path_len, ierror, [&](const char* p) { return ::chmod(p, static_cast<mode_t>(*imode)); });
}

// SUBROUTINE PXFLINK(EXISTING, LENEXIST, NEW, LENNEW, IERROR)
extern "C" TARVO_API void pxflink_(const char* existing, const std::int32_t* lenexist, const char* created,
                                   const std::int32_t* lennew, std::int32_t* ierror, std::size_t existing_len,
                                   std::size_t created_len) noexcept {
    posix::on_paths(existing, lenexist, existing_len, created, lennew, created_len, ierror,
                    [](const char* from, const char* to) { return ::link(from, to); });
}

// SUBROUTINE PXFRENAME(OLD, LENOLD, NEW, LENNEW, IERROR)
extern "C" TARVO_API void pxfrename_(const char* old, const std::int32_t* lenold, const char* renamed,
                                     const std::int32_t* lennew, std::int32_t* ierror, std::size_t old_len,
                                     std::size_t renamed_len) noexcept {
    posix::on_paths(old, lenold, old_len, renamed, lennew, renamed_len, ierror,
                    [](const char* from, const char* to) { return ::rename(from, to); });
}

// SUBROUTINE PXFSTAT(PATH, ILEN, JSTAT, IERROR)
extern "C" TARVO_API void pxfstat_(const char* path, const std::int32_t* ilen, const std::int32_t* jstat,
                                   std::int32_t* ierror, std::size_t path_len) noexcept {
    auto* instance = posix::resolve_instance<posix::StatInstance>(jstat, ierror);
    if (instance == nullptr) return;
    struct stat host;
    on_path(path, ilen, path_len, ierror, [&](const char* p) { return ::stat(p, &host); });
    if (*ierror == 0) posix::store_stat(*instance, host);
}

// SUBROUTINE PXFUTIME(PATH, ILEN, JUTIMBUF, IERROR) -- JUTIMBUF 0: both times become now
extern "C" TARVO_API void pxfutime_(const char* path, const std::int32_t*, const std::int32_t* jutimbuf,
                                    std::int32_t* ierror, std::size_t path_len) noexcept {
    utimbuf times{};
    const bool now = jutimbuf != nullptr && *jutimbuf == 0;
    if (!now) {
        const auto* instance = posix::resolve_instance<posix::UtimbufInstance>(jutimbuf, ierror);
        if (instance == nullptr) return;
        times = {instance->actime, instance->modtime};
    }
    // Unlike every other path routine, on purpose: the path ends at its first blank and
    // ILEN is not looked at, so a PATH that begins with a blank is the empty path.
    const posix::Name name = posix::utime_path(path, path_len);
    const posix::Path p = posix::path_copy(name.text, static_cast<base::flen>(name.length));
    if (!p) return report(ierror, errno);
    report_host(ierror, ::utime(p.c_str(), now ? nullptr : &times));
}

// SUBROUTINE PXFPATHCONF(PATH, ILEN, NAME, IVAL, IERROR)
extern "C" TARVO_API void pxfpathconf_(const char* path, const std::int32_t* ilen, const std::int32_t* name,
                                       std::int32_t* ival, std::int32_t* ierror, std::size_t path_len) noexcept {
    // Only this routine holds ILEN against the declared length; the others take it as given.
    if (ilen != nullptr && *ilen > base::low32_length(path_len)) return report(ierror, EINVAL, EINVAL);
    on_path(path, ilen, path_len, ierror, [&](const char* p) {
        errno = 0;  // a name without a limit answers -1 and leaves errno alone: IERROR 0
        return posix::low32_result(ival, ::pathconf(p, *name));
    });
}

// --- directory streams ------------------------------------------------------------------

// SUBROUTINE PXFOPENDIR(DIRNAME, LENDIRNAME, IDIRID, IERROR)
extern "C" TARVO_API void pxfopendir_(const char* dirname, const std::int32_t* lendirname, std::int32_t* idirid,
                                      std::int32_t* ierror, std::size_t dirname_len) noexcept {
    const posix::Path path = posix::path_arg(dirname, lendirname, dirname_len);
    if (!path) return report(ierror, errno);
    DIR* stream = ::opendir(path.c_str());
    if (stream == nullptr) {
        *idirid = 0;
        return report(ierror, errno);
    }
    *idirid = posix::register_stream(stream);
    *ierror = *idirid != 0 ? 0 : TARVO_ENOHANDLE;
}

// SUBROUTINE PXFREADDIR(IDIRID, JDIRENT, IERROR)
extern "C" TARVO_API void pxfreaddir_(const std::int32_t* idirid, const std::int32_t* jdirent,
                                      std::int32_t* ierror) noexcept {
    posix::DirectoryStream* dir = posix::resolve_stream(idirid, ierror);
    if (dir == nullptr) return;
    auto* instance = posix::resolve_instance<posix::DirentInstance>(jdirent, ierror);
    if (instance == nullptr) return;
    // errno is deliberately not cleared first: at the end of the stream a failure left by an
    // earlier call is reported in place of the end code, as callers of this binding expect.
    const dirent* entry = ::readdir(dir->stream);
    if (entry == nullptr) return report(ierror, errno != 0 ? errno : TARVO_EENDDIR);
    posix::store_dirent(*instance, *entry);
    *ierror = 0;
}

// SUBROUTINE PXFREWINDDIR(IDIRID, IERROR)
extern "C" TARVO_API void pxfrewinddir_(const std::int32_t* idirid, std::int32_t* ierror) noexcept {
    posix::DirectoryStream* dir = posix::resolve_stream(idirid, ierror);
    if (dir == nullptr) return;
    ::rewinddir(dir->stream);
    *ierror = 0;
}

// SUBROUTINE PXFCLOSEDIR(IDIRID, IERROR) -- IDIRID becomes 0
extern "C" TARVO_API void pxfclosedir_(std::int32_t* idirid, std::int32_t* ierror) noexcept {
    posix::DirectoryStream* dir = posix::resolve_stream(idirid, ierror);
    if (dir == nullptr) return;
    report_host(ierror, ::closedir(dir->stream));  // the stream is gone either way
    base::release(dir);
    frame::free_alloc_handle(*idirid);
    *idirid = 0;
}

// --- working directory, mask, status ----------------------------------------------------

// SUBROUTINE PXFGETCWD(BUF, ILEN, IERROR)
extern "C" TARVO_API void pxfgetcwd_(char* buf, std::int32_t* ilen, std::int32_t* ierror,
                                     std::size_t buf_len) noexcept {
    // The name is asked for in full and its length compared here: given BUF's length, the
    // host would refuse a longer name instead of handing over its first characters.
    char* cwd = ::getcwd(nullptr, 0);
    if (cwd == nullptr) {
        *ilen = 0;
        return report(ierror, errno);
    }
    posix::store_text(cwd, std::strlen(cwd), buf, buf_len, ilen, ierror);
    if (*ierror == TARVO_ETRUNC) *ilen = 0;  // a cut name reports no length
    std::free(cwd);
}

// SUBROUTINE PXFUMASK(ICMASK, IPREVCMASK, IERROR)
extern "C" TARVO_API void pxfumask_(const std::int32_t* icmask, std::int32_t* iprevcmask,
                                    std::int32_t* ierror) noexcept {
    *iprevcmask = static_cast<std::int32_t>(::umask(static_cast<mode_t>(*icmask)));
    *ierror = 0;
}

// SUBROUTINE PXFFSTAT(IFILDES, JSTAT, IERROR)
extern "C" TARVO_API void pxffstat_(const std::int32_t* ifildes, const std::int32_t* jstat,
                                    std::int32_t* ierror) noexcept {
    auto* instance = posix::resolve_instance<posix::StatInstance>(jstat, ierror);
    if (instance == nullptr) return;
    struct stat host;
    report_host(ierror, ::fstat(*ifildes, &host));
    if (*ierror == 0) posix::store_stat(*instance, host);
}

// SUBROUTINE PXFFPATHCONF(IFILDES, NAME, IVAL, IERROR)
extern "C" TARVO_API void pxffpathconf_(const std::int32_t* ifildes, const std::int32_t* name, std::int32_t* ival,
                                        std::int32_t* ierror) noexcept {
    errno = 0;  // as in PXFPATHCONF: no limit is no failure
    report_host(ierror, posix::low32_result(ival, ::fpathconf(*ifildes, *name)));
}

// --- descriptors ------------------------------------------------------------------------

// SUBROUTINE PXFDUP(IFILDES, IFID, IERROR)
extern "C" TARVO_API void pxfdup_(const std::int32_t* ifildes, std::int32_t* ifid, std::int32_t* ierror) noexcept {
    report_host(ierror, *ifid = ::dup(*ifildes));
}

// SUBROUTINE PXFDUP2(IFILDES, IFILDES2, IERROR) -- the new descriptor is the function result
extern "C" TARVO_API std::int32_t pxfdup2_(const std::int32_t* ifildes, const std::int32_t* ifildes2,
                                           std::int32_t* ierror) noexcept {
    const int fd = ::dup2(*ifildes, *ifildes2);
    report_host(ierror, fd);
    return fd;
}

// SUBROUTINE PXFCLOSE(IFILDES, IERROR)
extern "C" TARVO_API void pxfclose_(const std::int32_t* ifildes, std::int32_t* ierror) noexcept {
    report_host(ierror, ::close(*ifildes));
}

// SUBROUTINE PXFREAD(IFILDES, BUF, NBYTE, NREAD, IERROR)
extern "C" TARVO_API void pxfread_(const std::int32_t* ifildes, void* buf, const std::int32_t* nbyte,
                                   std::int32_t* nread, std::int32_t* ierror) noexcept {
    if (ifildes == nullptr || buf == nullptr || nbyte == nullptr || nread == nullptr) return report(ierror, -1);
    const long count = posix::transfer(*nbyte, [&](std::size_t n) { return ::read(*ifildes, buf, n); });
    *nread = static_cast<std::int32_t>(count);
    report_host(ierror, count);
}

// SUBROUTINE PXFWRITE(IFILDES, BUF, NBYTE, NWRITTEN, IERROR)
extern "C" TARVO_API void pxfwrite_(const std::int32_t* ifildes, const void* buf, const std::int32_t* nbyte,
                                    std::int32_t* nwritten, std::int32_t* ierror) noexcept {
    const long written = posix::transfer(*nbyte, [&](std::size_t n) { return ::write(*ifildes, buf, n); });
    report_host(ierror, posix::low32_result(nwritten, written));
}

// SUBROUTINE PXFLSEEK(IFILDES, IOFFSET, IWHENCE, IPOSITION, IERROR) -- no argument checks
extern "C" TARVO_API void pxflseek_(const std::int32_t* ifildes, const std::int32_t* ioffset,
                                    const std::int32_t* iwhence, std::int32_t* iposition,
                                    std::int32_t* ierror) noexcept {
    report_host(ierror, posix::low32_result(iposition, ::lseek(*ifildes, off_t{*ioffset}, *iwhence)));
}

// SUBROUTINE PXFPIPE(IREADFD, IWRITEFD, IERROR)
extern "C" TARVO_API void pxfpipe_(std::int32_t* ireadfd, std::int32_t* iwritefd, std::int32_t* ierror) noexcept {
    int ends[2];
    report_host(ierror, ::pipe(ends));
    if (*ierror != 0) return;
    *ireadfd = ends[0];
    *iwritefd = ends[1];
}

// --- mode predicates --------------------------------------------------------------------

// LOGICAL FUNCTION PXFISDIR(M)
extern "C" TARVO_API std::int32_t pxfisdir_(const std::int32_t* m) noexcept { return posix::has_type(m, S_IFDIR); }
// LOGICAL FUNCTION PXFISCHR(M)
extern "C" TARVO_API std::int32_t pxfischr_(const std::int32_t* m) noexcept { return posix::has_type(m, S_IFCHR); }
// LOGICAL FUNCTION PXFISBLK(M)
extern "C" TARVO_API std::int32_t pxfisblk_(const std::int32_t* m) noexcept { return posix::has_type(m, S_IFBLK); }
// LOGICAL FUNCTION PXFISREG(M)
extern "C" TARVO_API std::int32_t pxfisreg_(const std::int32_t* m) noexcept { return posix::has_type(m, S_IFREG); }
// LOGICAL FUNCTION PXFISFIFO(M)
extern "C" TARVO_API std::int32_t pxfisfifo_(const std::int32_t* m) noexcept { return posix::has_type(m, S_IFIFO); }
