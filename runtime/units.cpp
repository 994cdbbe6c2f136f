#include "runtime/units.h"

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <string_view>
#include <unistd.h>

#include "base/export.h"
#include "base/fstring.h"
#include "runtime/unit_backend.h"
#include <tarvo/runtime.h>

namespace runtime {
namespace {

inline const UnitOps& ops() noexcept { return unit_ops(); }

// Stores the name of the file behind a descriptor, as the kernel reports it.
void store_descriptor_name(int fd, char* name, std::int32_t* name_length) noexcept {
    char path[32];
    std::snprintf(path, sizeof path, "/proc/self/fd/%d", fd);
    const ssize_t n = readlink(path, name, *name_length > 0 ? static_cast<std::size_t>(*name_length) : 0);
    *name_length = n > 0 ? static_cast<std::int32_t>(n) : 0;
}

// Access texts: the stream modes "r", "w", "a", "r+", "w+", "a+" ("b" ignored) or the
// action words READ, WRITE, READWRITE, APPEND; case and trailing blanks do not matter.
// A blank text takes the descriptor's own mode.
bool parse_access(const char* text, std::size_t length, int fd_flags, UnitAccess& access) noexcept {
    const base::flen n = base::trimmed_length(text, base::signed_length(length));
    const int mode = fd_flags & O_ACCMODE;
    if (n == 0) {
        access = {mode != O_WRONLY, mode != O_RDONLY, (fd_flags & O_APPEND) != 0};
        return true;
    }
    char word[16] = {};
    if (n >= static_cast<base::flen>(sizeof word)) return false;
    for (base::flen i = 0, j = 0; i < n; ++i)
        if (text[i] != 'b' && text[i] != 'B')
            word[j++] = static_cast<char>(text[i] >= 'A' && text[i] <= 'Z' ? text[i] + 32 : text[i]);
    struct Row { const char* word; UnitAccess access; };
    static constexpr Row kRows[] = {
        {"r", {true, false, false}},    {"read", {true, false, false}},
        {"w", {false, true, false}},    {"write", {false, true, false}},
        {"a", {false, true, true}},     {"append", {false, true, true}},
        {"r+", {true, true, false}},    {"w+", {true, true, false}},
        {"readwrite", {true, true, false}}, {"a+", {true, true, true}},
    };
    for (const Row& row : kRows)
        if (std::string_view(word) == row.word) {
            access = row.access;
            return true;
        }
    return false;
}

bool compatible(UnitAccess access, int fd_flags) noexcept {
    const int mode = fd_flags & O_ACCMODE;
    return !(access.read && mode == O_WRONLY) && !(access.write && mode == O_RDONLY);
}

std::atomic<std::int32_t> posix_io_flag{0};

}  // namespace

std::atomic<const UnitOps*> chosen_unit_ops{nullptr};

const UnitOps& choose_unit_ops() noexcept {
    static const UnitOps* const chosen = [] {
        const UnitOps* g = gfortran_unit_ops();
        return g != nullptr ? g : &native_unit_ops();
    }();
    chosen_unit_ops.store(chosen, std::memory_order_release);
    return *chosen;
}

int negated_errno_or(int fallback) noexcept { return -(errno != 0 ? errno : fallback); }

int read_one_byte(int fd) noexcept {
    unsigned char c;
    for (;;) {
        const ssize_t n = read(fd, &c, 1);
        if (n == 1) return c;
        if (n == 0) return kEndOfFile;
        if (errno != EINTR) return -errno;
    }
}

int write_one_byte(int fd, unsigned char ch) noexcept {
    for (;;) {
        if (write(fd, &ch, 1) == 1) return 0;
        if (errno != EINTR) return -errno;
    }
}

UnitBackend unit_backend() noexcept {
    return &ops() == &native_unit_ops() ? UnitBackend::native : UnitBackend::gfortran;
}

int __quenvatix_d_gethandle(std::int64_t unit, char* name, std::int32_t* name_length) noexcept {
    const int fd = ops().flush(unit);
    if (fd >= 0 && name != nullptr && name_length != nullptr) store_descriptor_name(fd, name, name_length);
    return fd < 0 ? -1 : fd;
}

int read_char_by_table(std::int64_t unit, char* dest) noexcept { return ops().read_char(unit, dest); }
int write_char_by_table(std::int64_t unit, const char* ch) noexcept { return ops().write_char(unit, ch); }

int __quenvatix_d_readchar(std::int64_t unit) noexcept {
    char c = 0;
    const int result = read_char_into(unit, &c);
    return result < 0 ? result : static_cast<unsigned char>(c);
}


int __quenvatix_d_writechar(std::int64_t unit, std::int64_t ch) noexcept {
    const char c = static_cast<char>(ch);
    return write_char_from(unit, &c);
}

int __quenvatix_d_fseek_i8(std::int64_t unit, std::int64_t offset, std::int64_t origin) noexcept {
    return ops().seek(unit, offset, origin);
}

int __quenvatix_d_fseek(std::int64_t unit, std::int64_t offset, std::int64_t origin) noexcept {
    return __quenvatix_d_fseek_i8(unit, offset, origin);
}

std::int64_t __quenvatix_d_curpos_i8(std::int64_t unit) noexcept {
    return ops().position(unit);
}

std::int64_t __quenvatix_d_curpos(std::int64_t unit) noexcept { return __quenvatix_d_curpos_i8(unit); }

std::int32_t __quenvatix_set_posix_io_flag(const std::int32_t* new_value, std::int32_t*, std::int32_t*) noexcept {
    return posix_io_flag.exchange(new_value != nullptr ? *new_value : 0, std::memory_order_relaxed);
}

int for_fdopen(int fd, std::int32_t unit, const char* access, std::size_t access_length) noexcept {
    const int flags = fcntl(fd, F_GETFL);
    if (flags < 0) return EBADF;
    UnitAccess wanted{};
    if (!parse_access(access, access_length, flags, wanted) || !compatible(wanted, flags)) return EINVAL;
    // As a stream opened for appending does: the descriptor itself is put in append mode.
    if (wanted.append && (flags & O_APPEND) == 0 && fcntl(fd, F_SETFL, flags | O_APPEND) != 0) return errno;
    return ops().attach(fd, unit, wanted);
}

void flush_all_units() noexcept { ops().flush_all(); }

}  // namespace runtime

// SUBROUTINE FLUSHQQ(IUNIT)
extern "C" TARVO_API std::int32_t flushqq_(const std::int32_t* unit) noexcept {
    return runtime::flushed(unit);
}

// LOGICAL(4) FUNCTION COMMITQQ(IUNIT) -- flush, then commit to storage. Descriptors that
// cannot be synchronised (pipes, terminals) have nothing more to commit.
extern "C" TARVO_API std::int32_t commitqq_(const std::int32_t* unit) noexcept {
    const int fd = unit != nullptr ? runtime::ops().flush(*unit) : -1;
    if (fd < 0) return 0;
    return fsync(fd) == 0 || errno == EINVAL || errno == EROFS ? 1 : 0;
}
