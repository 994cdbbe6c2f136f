// File access and naming: access, chdir, chmod, getcwd, rename, unlink, isatty, ttynam.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

#include "base/export.h"
#include "portlib/report.h"
#include "base/memory.h"
#include "base/fstring.h"
#include "runtime/units.h"
#include <tarvo/portlib.h>

namespace {

using portlib::fail;

// A deliberately coarse mapping of access's failures, which callers test for.
std::int32_t access_result(int error) noexcept {
    switch (error) {
        case ENOENT: case ENOTDIR: case EINVAL: case ELOOP: case ENAMETOOLONG:
            return EINVAL;
        case EIO: case ENOMEM: case EACCES: case EFAULT: case EROFS:
            return EACCES;
        default:
            return -1;
    }
}

// Folds "r", "w", "x" and blanks (any case) into access bits; -1 for anything else.
int access_bits(const char* mode, base::flen length) noexcept {
    int bits = 0;
    for (base::flen i = 0; i < length; ++i) {
        switch (mode[i] | 0x20) {
            case 'r': bits |= R_OK; break;
            case 'w': bits |= W_OK; break;
            case 'x': bits |= X_OK; break;
            case ' ': break;
            default: return -1;
        }
    }
    return bits;
}

// One symbolic clause, [ugoa...](+|-|=)[rwxstX...], or nothing when the text is not one.
struct SymbolicMode {
    char op;
    mode_t bits;
};

bool parse_symbolic(const char* text, SymbolicMode& mode) noexcept {
    mode_t who = 0;
    bool who_given = false;
    const char* p = text;
    for (;; ++p) {
        if (*p == 'u') who |= 0700;
        else if (*p == 'g') who |= 0070;
        else if (*p == 'o') who |= 0007;
        else if (*p == 'a') who = 0777;
        else break;
        who_given = true;
    }
    if (*p != '+' && *p != '-' && *p != '=') return false;
    mode.op = *p++;
    mode_t perm = 0;
    for (; *p != '\0'; ++p) {
        switch (*p) {
            case 'r': perm |= 0444; break;
            case 'w': perm |= 0222; break;
            case 'x': perm |= 0111; break;
            case 's': perm |= 06000; who |= 06000; break;
            case 't': case 'X': break;  // accepted, without effect
            default: return false;
        }
    }
    // Without a who letter, set-ID bits fall outside 0777 and have no effect.
    mode.bits = perm & (who_given ? who : 0777);
    return true;
}

mode_t apply_symbolic(const char* name, const SymbolicMode& mode) noexcept {
    if (mode.op == '=') return mode.bits;
    struct stat st {};
    stat(name, &st);  // a failure leaves 0 and chmod reports the real problem
    const mode_t current = st.st_mode & 07777;
    return mode.op == '+' ? (current | mode.bits) : (current & ~mode.bits);
}

std::int32_t chmod_to(const char* name, mode_t bits) noexcept {
    return ::chmod(name, bits) == 0 ? 0 : fail(errno);
}

// The unit's descriptor, or -1 with EBADF recorded (the classic cell stays untouched).
int unit_descriptor(const std::int32_t* unit, char* name, std::int32_t* name_length) noexcept {
    const int fd = unit != nullptr ? runtime::__quenvatix_d_gethandle(*unit, name, name_length) : -1;
    if (fd < 0) portlib::report(portlib::Policy::errno_only, EBADF);
    return fd;
}

}  // namespace

// INTEGER FUNCTION ACCESS(NAME, MODE) -- 0 when access is granted
extern "C" TARVO_API std::int32_t access_(const char* name, const char* mode, std::size_t name_len,
                                          std::size_t mode_len) noexcept {
    const base::flen mode_length = base::signed_length(mode_len);
    if (base::signed_length(name_len) < 1 || mode_length < 1 || mode == nullptr) return portlib::fail_errno(EINVAL);
    const int bits = access_bits(mode, mode_length);
    if (bits < 0) return portlib::fail_errno(EINVAL);
    auto path = base::c_string(name, name_len);
    if (!path) return fail(ENOMEM);
    if (::access(path.c_str(), bits) == 0) return 0;
    return fail(errno == 0 ? -1 : access_result(errno));
}

// INTEGER FUNCTION CHDIR(DIRNAME)
extern "C" TARVO_API std::int32_t chdir_(const char* dir, std::size_t dir_len) noexcept {
    auto path = base::c_string(dir, dir_len);
    if (!path) return fail(ENOMEM);
    return ::chdir(path.c_str()) == 0 ? 0 : fail(errno);
}

// INTEGER FUNCTION UNLINK(NAME)
extern "C" TARVO_API std::int32_t unlink_(const char* name, std::size_t name_len) noexcept {
    auto path = base::c_string(name, name_len);
    if (!path) return fail(ENOMEM);
    return ::unlink(path.c_str()) == 0 ? 0 : fail(errno);
}

// INTEGER FUNCTION RENAME(FROM, TO)
extern "C" TARVO_API std::int32_t rename_(const char* from, const char* to, std::size_t from_len,
                                          std::size_t to_len) noexcept {
    auto old_path = base::c_string(from, from_len);
    if (!old_path) return fail(errno);
    auto new_path = base::c_string(to, to_len);
    if (!new_path) return fail(errno);
    return ::rename(old_path.c_str(), new_path.c_str()) == 0 ? 0 : fail(errno);
}

// INTEGER FUNCTION CHMOD(NAME, MODE) -- octal ("755") or one symbolic clause ("u+x")
extern "C" TARVO_API std::int32_t chmod_(const char* name, const char* mode, std::size_t name_len,
                                         std::size_t mode_len) noexcept {
    auto path = base::c_string(name, name_len);
    if (!path) return portlib::report(portlib::Policy::cell_only, errno);
    auto text = base::c_string(mode, mode_len);
    if (!text) return fail(errno);
    const char* m = text.c_str();
    if (*m >= '0' && *m <= '9') {
        char* end = nullptr;
        const long value = std::strtol(m, &end, 8);
        // An explicit "0" is rejected like any other invalid mode.
        if (value == 0 || *end != '\0') return portlib::fail_errno(EINVAL);
        return chmod_to(path.c_str(), static_cast<mode_t>(value));
    }
    SymbolicMode symbolic{};
    if (!parse_symbolic(m, symbolic)) return portlib::fail_errno(EINVAL);
    return chmod_to(path.c_str(), apply_symbolic(path.c_str(), symbolic));
}

// INTEGER FUNCTION GETCWD(DIRNAME)
extern "C" TARVO_API std::int32_t getcwd_(char* dir, std::size_t dir_len) noexcept {
    const base::flen length = base::signed_length(dir_len);
    if (length < 1) return portlib::report(portlib::Policy::cell_only, ENOENT);
    auto buffer = base::Owned<char>::with_room_for(static_cast<std::size_t>(length) + 1);
    if (!buffer) {
        return portlib::fail_errno(ENOMEM);
    }
    if (::getcwd(buffer.get(), static_cast<std::size_t>(length) + 1) == nullptr) {
        const std::int32_t error = fail(errno);
        base::blank_fill(dir, length);
        return error;
    }
    base::store_fortran_string(dir, dir_len, buffer.get());
    return 0;
}

// LOGICAL FUNCTION ISATTY(IUNIT)
extern "C" TARVO_API std::int32_t isatty_(const std::int32_t* unit) noexcept {
    const int fd = unit_descriptor(unit, nullptr, nullptr);
    return fd >= 0 && ::isatty(fd) ? 1 : 0;
}

// CHARACTER*(*) FUNCTION TTYNAM(IUNIT) -- the terminal's name, or blanks
extern "C" TARVO_API void ttynam_(char* result, std::size_t result_len, const std::int32_t* unit) noexcept {
    base::blank_fill(result, base::signed_length(result_len));
    char name[256];
    std::int32_t name_length = 255;
    const int fd = unit_descriptor(unit, name, &name_length);
    if (fd < 0) return;
    if (!::isatty(fd)) {
        portlib::report(portlib::Policy::errno_only, ENOTTY);
        return;
    }
    name[name_length] = '\0';
    base::store_fortran_string(result, result_len, name);
}
