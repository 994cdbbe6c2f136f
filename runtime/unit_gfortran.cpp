// Units of the gfortran run-time: the library reaches them through that run-time's
// exported entry points, so a unit opened by a Fortran OPEN is the same unit here.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "runtime/gfortran.h"
#include "runtime/unit_backend.h"
#include "runtime/units.h"

namespace runtime {
namespace {

const GfortranRuntime* rt;  // set once, before these operations are handed out

// gfortran issues NEWUNIT= numbers from -10 downwards and refuses OPEN on any other negative
// number, so -1 to -9 are never connected. It keeps stream-less units for internal files
// under -1 and -2, and its descriptor lookup faults on those, so this range is answered
// here without asking it.
constexpr std::int64_t kFirstNewUnit = -10;

int descriptor(std::int64_t unit) {
    if (!fits_unit_number(unit) || (unit < 0 && unit > kFirstNewUnit)) return -1;
    auto u = static_cast<std::int32_t>(unit);
    return rt->fnum_i4(&u);
}

int flush(std::int64_t unit) {
    if (descriptor(unit) < 0) return 0;
    auto u = static_cast<std::int32_t>(unit);
    rt->flush_i4(&u);
    return 1;
}

// gfortran reports end of file and read errors alike; errno tells them apart.
int read_char(std::int64_t unit) {
    if (descriptor(unit) < 0) return -EBADF;
    auto u = static_cast<std::int32_t>(unit);
    char c = ' ';
    errno = 0;
    if (rt->fgetc(&u, &c, 1) == 0) return static_cast<unsigned char>(c);
    return errno != 0 ? -errno : kEndOfFile;
}

int write_char(std::int64_t unit, unsigned char ch) {
    if (descriptor(unit) < 0) return -EBADF;
    auto u = static_cast<std::int32_t>(unit);
    char c = static_cast<char>(ch);
    errno = 0;
    return rt->fputc(&u, &c, 1) == 0 ? 0 : negated_errno_or(EIO);
}

// gfortran keeps its own position for units on pipes and terminals and would report a seek
// there as done; the descriptor tells the truth, as it does in the native back end.
int unseekable(std::int64_t unit) {
    const int fd = descriptor(unit);
    return fd >= 0 && lseek(fd, 0, SEEK_CUR) < 0 ? -errno : 0;
}

int seek(std::int64_t unit, std::int64_t offset, int origin) {
    if (const int error = unseekable(unit)) return error;
    auto u = static_cast<std::int32_t>(unit);
    std::int32_t whence = origin;
    std::int32_t status = 0;
    errno = 0;
    rt->fseek_sub(&u, &offset, &whence, &status);
    // A seek that fails sets errno. The 32-bit run-time also reports a seek it has done as
    // failed when the new offset does not fit 32 bits (its result is truncated), and then
    // leaves errno alone: that is a success. The unit and the origin were checked before.
    return status == 0 || errno == 0 ? 0 : -errno;
}

std::int64_t position(std::int64_t unit) {
    if (const int error = unseekable(unit)) return error;
    auto u = static_cast<std::int32_t>(unit);
    errno = 0;
    const std::int64_t at = rt->ftell(&u);
    return at >= 0 ? at : negated_errno_or(EINVAL);
}

// gfortran has no entry point that adopts a descriptor, so the unit is opened on the
// descriptor's /proc name and its new descriptor is then replaced by a duplicate of the
// given one: the unit shares the caller's open file description (offset, append mode),
// and gfortran is told the current offset. In append mode gfortran positions the unit at
// the end itself, so that its own idea of the offset (where it ends the file when the unit
// is closed after writing) matches where the writes land.
int attach(int fd, std::int32_t unit, UnitAccess access) {
    char path[32];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    const char* action = access.read && access.write ? "readwrite" : (access.read ? "read" : "write");
    std::int32_t iostat = 0;
    GfortranOpenBlock open{};
    open.flags = kOpenHasIostat | kOpenHasFile | kOpenHasStatus | kOpenHasAction;
    open.unit = unit;
    open.source_file = __FILE__;
    open.line = __LINE__;
    open.iostat = &iostat;
    open.file = path;
    open.file_len = std::strlen(path);
    open.status = "old";
    open.status_len = 3;
    open.action = action;
    open.action_len = std::strlen(action);
    if (access.append) {
        open.flags |= kOpenHasPosition;
        open.position = "append";
        open.position_len = 6;
    }
    rt->st_open(&open);
    if (iostat != 0) return EINVAL;
    const int unit_fd = descriptor(unit);
    if (unit_fd < 0) return EBADF;
    // dup3 keeps the unit's descriptor close-on-exec, as the program's own OPEN units are.
    if (unit_fd != fd && dup3(fd, unit_fd, O_CLOEXEC) < 0) return errno;
    const off_t at = lseek(fd, 0, SEEK_CUR);
    if (!access.append && at > 0 && seek(unit, at, SEEK_SET) != 0) return ESPIPE;
    return 0;
}

void flush_all() { rt->flush_i4(nullptr); }

constexpr UnitOps kGfortranOps = {descriptor, flush, read_char, write_char, seek, position, attach, flush_all};

}  // namespace

const UnitOps* gfortran_unit_ops() noexcept {
    rt = gfortran_runtime();
    return rt != nullptr ? &kGfortranOps : nullptr;
}

}  // namespace runtime
