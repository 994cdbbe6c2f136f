// The operations each unit back end supplies (see units.h for the results).
#pragma once

#include <atomic>
#include <climits>
#include <cstdint>

namespace runtime {

constexpr int kEndOfFile = -2;  // what reading one character gives at the end of the file

// What a descriptor attached to a unit is opened for.
struct UnitAccess {
    bool read;
    bool write;
    bool append;
};

struct UnitOps {
    int (*descriptor)(std::int64_t unit);
    int (*flush)(std::int64_t unit);  // the flushed unit's descriptor, or -1
    int (*read_char)(std::int64_t unit, char* dest);  // 0 and the byte in *dest, or negative
    int (*write_char)(std::int64_t unit, const char* ch);  // writes *ch
    // Both check the unit (-EBADF) first, then seek checks the origin (-EINVAL).
    int (*seek)(std::int64_t unit, std::int64_t offset, std::int64_t origin);
    std::int64_t (*position)(std::int64_t unit);
    int (*attach)(int fd, std::int32_t unit, UnitAccess access);
    void (*flush_all)();
};

const UnitOps* gfortran_unit_ops() noexcept;  // null without a gfortran run-time
const UnitOps& native_unit_ops() noexcept;

// The back end serving this process, chosen at first use; later calls read one pointer.
extern std::atomic<const UnitOps*> chosen_unit_ops;
const UnitOps& choose_unit_ops() noexcept;
inline const UnitOps& unit_ops() noexcept {
    const UnitOps* chosen = chosen_unit_ops.load(std::memory_order_acquire);
    return chosen != nullptr ? *chosen : choose_unit_ops();
}

// Shared by both back ends.
inline bool fits_unit_number(std::int64_t unit) noexcept { return unit >= INT32_MIN && unit <= INT32_MAX; }
inline bool valid_origin(std::int64_t origin) noexcept { return origin >= 0 && origin <= 2; }
int negated_errno_or(int fallback) noexcept;  // -errno, or -fallback when errno is 0
int read_one_byte(int fd) noexcept;            // the byte, kEndOfFile, or -errno
int write_one_byte(int fd, unsigned char ch) noexcept;

}  // namespace runtime
