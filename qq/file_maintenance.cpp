// File and directory maintenance, and the drive routines of a system without drives.
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include "frame/api.h"
#include "frame/memory.h"
#include "frame/strings.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {

using frame::CString;

constexpr std::int32_t logical(bool value) { return value ? TARVO_TRUE : TARVO_FALSE; }

// Deletes the regular files of dir (symbolic links count by their target) whose names match
// the pattern. Works through a descriptor of dir, so the working directory never changes.
std::int32_t delete_matching(const char* dir, const char* pattern) noexcept {
    const int fd = open(dir, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return 0;
    DIR* stream = fdopendir(fd);
    if (stream == nullptr) {
        close(fd);
        return 0;
    }
    std::int32_t count = 0;
    while (const dirent* entry = readdir(stream)) {
        if (qq::patternMatch(entry->d_name, pattern) != 0) continue;
        struct stat st;
        if (fstatat(fd, entry->d_name, &st, 0) != 0 || !S_ISREG(st.st_mode)) continue;
        if (unlinkat(fd, entry->d_name, 0) == 0) ++count;
    }
    closedir(stream);
    return count;
}

// A routine that hands one name to the host and answers whether that worked.
template <int (*operation)(const char*)>
std::int32_t on_name(const char* name, std::size_t name_len) noexcept {
    const CString path(name, name_len);
    return logical(path && operation(path.c_str()) == 0);
}

int make_directory(const char* path) noexcept { return mkdir(path, 0755); }

}  // namespace

// INTEGER(4) FUNCTION DELFILESQQ(FILES) -- number of files deleted
extern "C" TARVO_API std::int32_t delfilesqq_(const char* files, std::size_t files_len) noexcept {
    char cwd[qq::kDirMax];
    if (getcwd(cwd, sizeof cwd) == nullptr) return 0;
    CString text(files, files_len);
    if (!text) return 0;
    const qq::PathParts parts = qq::split_at_last_slash(text.get());
    return delete_matching(parts.dir != nullptr ? parts.dir : cwd, parts.name);
}

// LOGICAL(4) FUNCTION MAKEDIRQQ(DIRNAME)
extern "C" TARVO_API std::int32_t makedirqq_(const char* dirname, std::size_t dirname_len) noexcept {
    return on_name<make_directory>(dirname, dirname_len);
}

// LOGICAL(4) FUNCTION DELDIRQQ(DIRNAME)
extern "C" TARVO_API std::int32_t deldirqq_(const char* dirname, std::size_t dirname_len) noexcept {
    return on_name<rmdir>(dirname, dirname_len);
}

// LOGICAL(4) FUNCTION CHANGEDIRQQ(DIRNAME)
extern "C" TARVO_API std::int32_t changedirqq_(const char* dirname, std::size_t dirname_len) noexcept {
    const CString path(dirname, dirname_len);
    if (!path) {
        runtime::record_errno(ENOMEM);
        return TARVO_FALSE;
    }
    if (chdir(path.c_str()) != 0) {
        runtime::record_errno(errno);
        return TARVO_FALSE;
    }
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION RENAMEFILEQQ(OLDNAME, NEWNAME)
extern "C" TARVO_API std::int32_t renamefileqq_(const char* oldname, const char* newname,
                                                std::size_t oldname_len, std::size_t newname_len) noexcept {
    const CString from(oldname, oldname_len);
    if (!from) {
        runtime::record_errno(ENOMEM);
        return TARVO_FALSE;
    }
    const CString to(newname, newname_len);
    if (!to) {
        runtime::record_errno(ENOMEM);
        return TARVO_FALSE;
    }
    if (std::rename(from.c_str(), to.c_str()) != 0) {
        runtime::record_errno(errno);
        return TARVO_FALSE;
    }
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION SETFILETIMEQQ(FILENAME, TIMEDATE) -- TIMEDATE -1 means now
extern "C" TARVO_API std::int32_t setfiletimeqq_(const char* filename, const std::int32_t* timedate,
                                                 std::size_t filename_len) noexcept {
    const CString path(filename, filename_len);
    if (!path) return TARVO_FALSE;
    if (timedate == nullptr) {
        runtime::record_errno(EINVAL);
        return TARVO_FALSE;
    }
    const std::int64_t when = *timedate;
    const utimbuf times{static_cast<time_t>(when), static_cast<time_t>(when)};
    if (utime(path.c_str(), when == -1 ? nullptr : &times) != 0) {
        runtime::record_errno(errno);
        return TARVO_FALSE;
    }
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION SETFILEACCESSQQ(FILENAME, ACCESS) -- not supported: always false, 22
extern "C" TARVO_API std::int32_t setfileaccessqq_(const char*, const std::int32_t*, std::size_t) noexcept {
    runtime::record_errno(EINVAL);
    return TARVO_FALSE;
}

// INTEGER(4) FUNCTION GETDRIVEDIRQQ(DRIVEDIR) -- in: blank drive; out: the working directory
extern "C" TARVO_API std::int32_t getdrivedirqq_(char* drivedir, std::size_t drivedir_len) noexcept {
    const frame::flen length = frame::signed_length(drivedir_len);
    if (drivedir == nullptr || length < 1) return 0;
    if (drivedir[0] != ' ' && drivedir[0] != '\0') return 0;  // a drive is named: there is none
    const auto size = static_cast<std::size_t>(std::min<frame::flen>(length + 1, qq::kDirMax));
    auto* buffer = static_cast<char*>(frame::allocate(size));
    if (buffer == nullptr) {
        frame::blank_fill(drivedir, length);
        runtime::record_errno(ENOMEM);
        return 0;
    }
    if (getcwd(buffer, size) == nullptr) {
        frame::release(buffer);
        return 0;
    }
    // The buffer is deliberately never released: the routine's established behaviour, kept.
    return static_cast<std::int32_t>(frame::CstrToFstr(drivedir, buffer, length, length));
}

// LOGICAL(4) FUNCTION CHANGEDRIVEQQ(DRIVE) -- there are no drives
extern "C" TARVO_API std::int32_t changedriveqq_(const char*, std::size_t) noexcept { return TARVO_FALSE; }

// CHARACTER(26) FUNCTION GETDRIVESQQ() -- no drive letters: all blank
extern "C" TARVO_API void getdrivesqq_(char* drives, std::size_t drives_len) noexcept {
    frame::blank_fill(drives, frame::signed_length(drives_len));
}

// LOGICAL(4) FUNCTION GETDRIVESIZEQQ(DRIVE, TOTAL, AVAIL) -- false; TOTAL and AVAIL untouched
extern "C" TARVO_API std::int32_t getdrivesizeqq_(const char*, void*, void*, std::size_t) noexcept {
    return TARVO_FALSE;
}

// LOGICAL(4) FUNCTION GETDRIVESIZEQQI8(DRIVE, TOTAL, AVAIL) -- the same routine
extern "C" TARVO_API std::int32_t getdrivesizeqqi8_(const char*, void*, void*, std::size_t) noexcept
    __attribute__((alias("getdrivesizeqq_")));
