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

#include "base/export.h"
#include "base/memory.h"
#include "base/fstring.h"
#include "qq/qq.h"
#include <tarvo/qq.h>

namespace {


constexpr std::int32_t logical(bool value) { return value ? TARVO_TRUE : TARVO_FALSE; }

// Whether a directory entry is a regular file, a symbolic link counting by its target. The
// entry's own type answers for everything but links (and file systems that give no type),
// so only those cost a status query.
bool regular_file(int dir_fd, const dirent& entry) noexcept {
    if (entry.d_type == DT_REG) return true;
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) return false;
    struct stat st;
    return fstatat(dir_fd, entry.d_name, &st, 0) == 0 && S_ISREG(st.st_mode);
}

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
        if (!regular_file(fd, *entry)) continue;
        if (unlinkat(fd, entry->d_name, 0) == 0) ++count;
    }
    closedir(stream);
    return count;
}

// A routine that hands one name to the host and answers whether that worked.
template <int (*operation)(const char*)>
std::int32_t on_name(const char* name, std::size_t name_len) noexcept {
    const auto path = base::c_string(name, name_len);
    return logical(path && operation(path.c_str()) == 0);
}

int make_directory(const char* path) noexcept { return mkdir(path, 0755); }

}  // namespace

// INTEGER(4) FUNCTION DELFILESQQ(FILES) -- number of files deleted
extern "C" TARVO_API std::int32_t delfilesqq_(const char* files, std::size_t files_len) noexcept {
    char cwd[qq::kDirMax];
    if (getcwd(cwd, sizeof cwd) == nullptr) return 0;
    auto text = base::c_string(files, files_len);
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
    const auto path = base::c_string(dirname, dirname_len);
    if (!path) return qq::fail(ENOMEM, TARVO_FALSE);
    if (chdir(path.c_str()) != 0) return qq::fail(errno, TARVO_FALSE);
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION RENAMEFILEQQ(OLDNAME, NEWNAME)
extern "C" TARVO_API std::int32_t renamefileqq_(const char* oldname, const char* newname,
                                                std::size_t oldname_len, std::size_t newname_len) noexcept {
    const auto from = base::c_string(oldname, oldname_len);
    if (!from) return qq::fail(ENOMEM, TARVO_FALSE);
    const auto to = base::c_string(newname, newname_len);
    if (!to) return qq::fail(ENOMEM, TARVO_FALSE);
    if (std::rename(from.c_str(), to.c_str()) != 0) return qq::fail(errno, TARVO_FALSE);
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION SETFILETIMEQQ(FILENAME, TIMEDATE) -- TIMEDATE -1 means now
extern "C" TARVO_API std::int32_t setfiletimeqq_(const char* filename, const std::int32_t* timedate,
                                                 std::size_t filename_len) noexcept {
    const auto path = base::c_string(filename, filename_len);
    if (!path) return TARVO_FALSE;
    if (timedate == nullptr) return qq::fail(EINVAL, TARVO_FALSE);
    const std::int64_t when = *timedate;
    const utimbuf times{static_cast<time_t>(when), static_cast<time_t>(when)};
    if (utime(path.c_str(), when == TARVO_FILE_CURTIME ? nullptr : &times) != 0) return qq::fail(errno, TARVO_FALSE);
    return TARVO_TRUE;
}

// LOGICAL(4) FUNCTION SETFILEACCESSQQ(FILENAME, ACCESS) -- not supported: always false, 22
extern "C" TARVO_API std::int32_t setfileaccessqq_(const char*, const std::int32_t*, std::size_t) noexcept {
    return qq::fail(EINVAL, TARVO_FALSE);
}

// INTEGER(4) FUNCTION GETDRIVEDIRQQ(DRIVEDIR) -- in: blank drive; out: the working directory
extern "C" TARVO_API std::int32_t getdrivedirqq_(char* drivedir, std::size_t drivedir_len) noexcept {
    const base::flen length = base::signed_length(drivedir_len);
    if (drivedir == nullptr || length < 1) return 0;
    if (drivedir[0] != ' ' && drivedir[0] != '\0') return 0;  // a drive is named: there is none
    const auto size = static_cast<std::size_t>(std::min<base::flen>(length + 1, qq::kDirMax));
    auto* buffer = static_cast<char*>(base::allocate(size));
    if (buffer == nullptr) {
        base::blank_fill(drivedir, length);
        return qq::fail(ENOMEM);
    }
    if (getcwd(buffer, size) == nullptr) {
        base::release(buffer);
        return 0;
    }
    // The buffer is kept for the life of the process on purpose: callers may hold on to it.
    base::keep(buffer);
    return static_cast<std::int32_t>(base::CstrToFstr(drivedir, buffer, length, length));
}

// LOGICAL(4) FUNCTION CHANGEDRIVEQQ(DRIVE) -- there are no drives
extern "C" TARVO_API std::int32_t changedriveqq_(const char*, std::size_t) noexcept { return TARVO_FALSE; }

// CHARACTER(26) FUNCTION GETDRIVESQQ() -- no drive letters: all blank
extern "C" TARVO_API void getdrivesqq_(char* drives, std::size_t drives_len) noexcept {
    base::blank_fill(drives, base::signed_length(drives_len));
}

// LOGICAL(4) FUNCTION GETDRIVESIZEQQ(DRIVE, TOTAL, AVAIL) -- false; TOTAL and AVAIL untouched
extern "C" TARVO_API std::int32_t getdrivesizeqq_(const char*, void*, void*, std::size_t) noexcept {
    return TARVO_FALSE;
}

// LOGICAL(4) FUNCTION GETDRIVESIZEQQI8(DRIVE, TOTAL, AVAIL) -- the same routine
extern "C" TARVO_API std::int32_t getdrivesizeqqi8_(const char*, void*, void*, std::size_t) noexcept
    __attribute__((alias("getdrivesizeqq_")));
