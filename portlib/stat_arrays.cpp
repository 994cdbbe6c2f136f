// File status arrays: stat, lstat, fstat and their INTEGER(8) forms.
#include <cerrno>
#include <climits>
#include <sys/stat.h>

#include "base/export.h"
#include "portlib/report.h"
#include "base/fstring.h"
#include "runtime/units.h"
#include <tarvo/portlib.h>

namespace {

using portlib::fail;

// Elements 1 to 12 of the status array; element 13 (the block count) is never written.
// The INTEGER(4) form keeps the low 32 bits of each field, and a size that does not fit
// becomes -1 with ERANGE as the result (the rest of the array is still filled).
template <class Int>
std::int32_t fill_status(const struct stat& st, Int* statb) noexcept {
    std::int32_t result = 0;
    Int size = static_cast<Int>(st.st_size);
    if (sizeof(Int) == 4 && st.st_size > INT_MAX) {
        size = -1;
        result = portlib::fail_errno(ERANGE);
    }
    const Int fields[12] = {
        static_cast<Int>(st.st_dev),   static_cast<Int>(st.st_ino),     static_cast<Int>(st.st_mode),
        static_cast<Int>(st.st_nlink), static_cast<Int>(st.st_uid),     static_cast<Int>(st.st_gid),
        static_cast<Int>(st.st_rdev),  size,                            static_cast<Int>(st.st_atime),
        static_cast<Int>(st.st_mtime), static_cast<Int>(st.st_ctime),   static_cast<Int>(st.st_blksize),
    };
    for (int i = 0; i < 12; ++i) statb[i] = fields[i];
    return result;
}

// The shared second half: the host call's outcome, then the array.
template <class Int>
std::int32_t report(int rc, const struct stat& st, Int* statb) noexcept {
    if (rc != 0) return fail(errno);
    return fill_status(st, statb);
}

template <class Int, int (*host_stat)(const char*, struct stat*)>
std::int32_t status_by_name(const char* name, std::size_t name_len, Int* statb) noexcept {
    if (statb == nullptr) return portlib::fail_errno(EINVAL);
    auto path = base::c_string(name, name_len);
    if (!path) return portlib::fail_errno(ENOMEM);
    struct stat st {};
    const int rc = host_stat(path.c_str(), &st);
    return report(rc, st, statb);
}

template <class Int>
std::int32_t status_by_unit(const std::int32_t* unit, Int* statb) noexcept {
    std::int32_t no_name = 0;
    const int fd = unit != nullptr ? runtime::__quenvatix_d_gethandle(*unit, nullptr, &no_name) : -1;
    if (fd == -1 || statb == nullptr) return portlib::fail_errno(EINVAL);
    struct stat st {};
    const int rc = ::fstat(fd, &st);
    return report(rc, st, statb);
}

int follow(const char* path, struct stat* st) noexcept { return ::stat(path, st); }
int no_follow(const char* path, struct stat* st) noexcept { return ::lstat(path, st); }

}  // namespace

// INTEGER FUNCTION STAT(NAME, STATB)  -- INTEGER(4) STATB(13)
extern "C" TARVO_API std::int32_t stat_(const char* name, std::int32_t* statb, std::size_t name_len) noexcept {
    return status_by_name<std::int32_t, follow>(name, name_len, statb);
}

// INTEGER FUNCTION LSTAT(NAME, STATB)  -- a final symbolic link is reported, not followed
extern "C" TARVO_API std::int32_t lstat_(const char* name, std::int32_t* statb, std::size_t name_len) noexcept {
    return status_by_name<std::int32_t, no_follow>(name, name_len, statb);
}

// INTEGER FUNCTION FSTAT(IUNIT, STATB)
extern "C" TARVO_API std::int32_t fstat_(const std::int32_t* unit, std::int32_t* statb) noexcept {
    return status_by_unit(unit, statb);
}

// INTEGER FUNCTION STATI8(NAME, STATB)  -- INTEGER(8) STATB(13)
extern "C" TARVO_API std::int32_t stati8_(const char* name, std::int64_t* statb, std::size_t name_len) noexcept {
    return status_by_name<std::int64_t, follow>(name, name_len, statb);
}

// INTEGER FUNCTION LSTATI8(NAME, STATB)
extern "C" TARVO_API std::int32_t lstati8_(const char* name, std::int64_t* statb, std::size_t name_len) noexcept {
    return status_by_name<std::int64_t, no_follow>(name, name_len, statb);
}

// INTEGER FUNCTION FSTATI8(IUNIT, STATB)
extern "C" TARVO_API std::int32_t fstati8_(const std::int32_t* unit, std::int64_t* statb) noexcept {
    return status_by_unit(unit, statb);
}
