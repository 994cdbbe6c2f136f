// The library's own unit table, for processes without a gfortran run-time. A unit is a
// descriptor; reads and writes go straight to it, so there is nothing to buffer or flush.
#include <cerrno>
#include <cstring>
#include <pthread.h>
#include <unistd.h>

#include "base/lock.h"
#include "base/memory.h"
#include "runtime/unit_backend.h"
#include "runtime/units.h"

namespace runtime {
namespace {

struct NativeUnit {
    std::int64_t unit;
    int fd;
};

// Units 5, 6 and 0 are preconnected to standard input, output and error.
NativeUnit preconnected[] = {{5, 0}, {6, 1}, {0, 2}};
NativeUnit* table = preconnected;
std::size_t used = 3;
std::size_t capacity = 3;
base::TableLock table_lock;

NativeUnit* find(std::int64_t unit) noexcept {
    for (std::size_t i = 0; i < used; ++i)
        if (table[i].unit == unit) return &table[i];
    return nullptr;
}

bool grow() noexcept {
    const std::size_t wanted = capacity * 2;
    auto* bigger = static_cast<NativeUnit*>(base::allocate(wanted * sizeof(NativeUnit)));
    if (bigger == nullptr) return false;
    std::memcpy(bigger, table, used * sizeof(NativeUnit));
    if (table != preconnected) base::release(table);
    table = bigger;
    capacity = wanted;
    return true;
}

int descriptor(std::int64_t unit) {
    base::TableGuard guard(table_lock);
    const NativeUnit* u = find(unit);
    return u != nullptr ? u->fd : -1;
}

int flush(std::int64_t unit) { return descriptor(unit); }

int read_char(std::int64_t unit, char* dest) {
    const int fd = descriptor(unit);
    if (fd < 0) return -EBADF;
    const int c = read_one_byte(fd);
    if (c < 0) return c;
    *dest = static_cast<char>(c);
    return 0;
}

int write_char(std::int64_t unit, const char* ch) {
    const int fd = descriptor(unit);
    return fd < 0 ? -EBADF : write_one_byte(fd, static_cast<unsigned char>(*ch));
}

int seek(std::int64_t unit, std::int64_t offset, std::int64_t origin) {
    const int fd = descriptor(unit);
    if (fd < 0) return -EBADF;
    if (!valid_origin(origin)) return -EINVAL;
    return lseek(fd, offset, static_cast<int>(origin)) < 0 ? -errno : 0;
}

std::int64_t position(std::int64_t unit) {
    const int fd = descriptor(unit);
    if (fd < 0) return -EBADF;
    const off_t at = lseek(fd, 0, SEEK_CUR);
    return at < 0 ? -errno : at;
}

int attach(int fd, std::int32_t unit, UnitAccess) {
    base::TableGuard guard(table_lock);
    if (NativeUnit* u = find(unit)) {
        u->fd = fd;
        return 0;
    }
    if (used == capacity && !grow()) return ENOMEM;
    table[used++] = {unit, fd};
    return 0;
}

void flush_all() {}

constexpr UnitOps kNativeOps = {descriptor, flush, read_char, write_char, seek, position, attach, flush_all};

}  // namespace

const UnitOps& native_unit_ops() noexcept { return kNativeOps; }

}  // namespace runtime
