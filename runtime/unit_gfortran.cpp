// Units of the gfortran run-time: the library reaches them through that run-time's
// exported entry points, so a unit opened by a Fortran OPEN is the same unit here.
#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

#include "base/export.h"
#include "runtime/gfortran.h"
#include "runtime/unit_backend.h"
#include "runtime/unit_gfortran.h"
#include "runtime/units.h"

namespace runtime {
namespace gfortran_units {

std::atomic<const GfortranRuntime*> serving{nullptr};
UnitCache unit_cache;

}  // namespace gfortran_units

namespace {

using namespace gfortran_units;

// The run-time's entry points: published before these operations are handed out.
const GfortranRuntime& rt() noexcept { return *serving.load(std::memory_order_relaxed); }

// Whether OPEN and CLOSE in every Fortran caller reach the wrappers at the end of this file:
// only then can the cache be trusted. Otherwise every call asks gfortran and lseek.
bool wrappers_bound() noexcept {
    static const bool bound = [] {
        Dl_info ours{}, open{}, close{};
        const bool ok = dladdr(reinterpret_cast<void*>(&ask_descriptor), &ours) != 0 &&
                        dladdr(dlsym(RTLD_DEFAULT, "_gfortran_st_open"), &open) != 0 &&
                        dladdr(dlsym(RTLD_DEFAULT, "_gfortran_st_close"), &close) != 0;
        return ok && open.dli_fbase == ours.dli_fbase && close.dli_fbase == ours.dli_fbase;
    }();
    return bound;
}

// gfortran issues NEWUNIT= numbers from -10 downwards and refuses OPEN on any other negative
// number, so -1 to -9 are never connected. It keeps stream-less units for internal files
// under -1 and -2, and also numbers them from -10 downwards, the same range as NEWUNIT=;
// its unit routines fault on all of those. So a negative unit is asked about only when the
// OPEN wrapper saw an OPEN with NEWUNIT= connect it (and no CLOSE since). Without the
// wrappers every number from -10 down is asked about, as nothing better is known.
constexpr std::int64_t kFirstNewUnit = -10;

// The negative units connected by OPEN with NEWUNIT=, one bit each from -10 downwards.
// Units beyond the first 2^20 (more than the usual limit of open files) are not kept and
// answer as units that are not connected.
class NewUnits {
public:
    void set(std::int32_t unit, bool connected) noexcept {
        const std::uint64_t index = bit_of(unit);
        if (index >= kUnits) return;
        const std::uint64_t mask = std::uint64_t{1} << (index % 64);
        if (connected) words_[index / 64].fetch_or(mask, std::memory_order_acq_rel);
        else words_[index / 64].fetch_and(~mask, std::memory_order_acq_rel);
    }
    bool contains(std::int64_t unit) const noexcept {
        const std::uint64_t index = bit_of(unit);
        return index < kUnits && (words_[index / 64].load(std::memory_order_acquire) >> (index % 64) & 1) != 0;
    }

private:
    static constexpr std::uint64_t kUnits = std::uint64_t{1} << 20;
    static std::uint64_t bit_of(std::int64_t unit) noexcept { return static_cast<std::uint64_t>(kFirstNewUnit - unit); }
    std::atomic<std::uint64_t> words_[kUnits / 64] = {};
};

NewUnits new_units;

}  // namespace

bool gfortran_units::askable_negative(std::int64_t unit) noexcept {
    return unit <= kFirstNewUnit && (new_units.contains(unit) || (unit >= INT32_MIN && !wrappers_bound()));
}

int gfortran_units::ask_descriptor(std::int32_t unit) noexcept {
    const std::uint32_t seen = unit_cache.generation();
    const int fd = rt().fnum_i4(&unit);
    if (fd >= 0 && wrappers_bound()) unit_cache.remember(unit, {fd, UnitCache::kUnknown}, seen);
    return fd;
}

int gfortran_units::transfer_failed(std::int32_t unit, int without_error) noexcept {
    const int error = errno;
    if (descriptor(unit) < 0) return -EBADF;
    return error != 0 ? -error : without_error;
}

int gfortran_units::read_char_rare(const GfortranRuntime& run_time, std::int64_t unit, char* dest) noexcept {
    if (!askable(unit)) return -EBADF;
    ErrnoCell::at = &errno;
    return read_char_checked(run_time, static_cast<std::int32_t>(unit), dest, errno);
}

int gfortran_units::write_char_rare(const GfortranRuntime& run_time, std::int64_t unit, const char* ch) noexcept {
    if (!askable(unit)) return -EBADF;
    ErrnoCell::at = &errno;
    return write_char_checked(run_time, static_cast<std::int32_t>(unit), ch, errno);
}

int gfortran_units::flush(const GfortranRuntime& run_time, std::int64_t unit) noexcept {
    const int fd = descriptor(unit);
    if (fd < 0) return -1;
    const auto u = static_cast<std::int32_t>(unit);
    run_time.flush_i4(&u);
    return fd;
}

namespace {

// The table's forms of the inline operations.
int flush_of(std::int64_t unit) { return flush(rt(), unit); }
int read_char_of(std::int64_t unit, char* dest) { return read_char(rt(), unit, dest); }
int write_char_of(std::int64_t unit, const char* ch) { return write_char(rt(), unit, ch); }

// Asks the descriptor (fd, or the unit's if unknown) whether it can seek, and remembers it.
[[gnu::noinline]] int learn_seek_state(std::int32_t unit, int fd, std::uint32_t seen) {
    if (fd < 0) fd = descriptor(unit);
    if (fd < 0) return -EBADF;
    const int error = lseek(fd, 0, SEEK_CUR) < 0 ? errno : 0;
    if (wrappers_bound()) unit_cache.remember(unit, {fd, static_cast<unsigned>(error)}, seen);
    return -error;
}

// 0 for a connected unit that can seek, else the negated error number (-EBADF when the
// unit is not connected).
int seek_state(std::int64_t unit) {
    if (!askable(unit)) return -EBADF;
    const auto u = static_cast<std::int32_t>(unit);
    const std::uint32_t seen = unit_cache.generation();  // before the entry is read
    UnitCache::Entry entry{-1, UnitCache::kUnknown};
    if (unit_cache.find(u, entry) && entry.state != UnitCache::kUnknown) return -static_cast<int>(entry.state);
    return learn_seek_state(u, entry.fd, seen);
}

int seek(std::int64_t unit, std::int64_t offset, std::int64_t origin) {
    const int state = seek_state(unit);
    if (state == -EBADF) return state;
    if (!valid_origin(origin)) return -EINVAL;
    if (state != 0) return state;
    auto u = static_cast<std::int32_t>(unit);
    auto whence = static_cast<std::int32_t>(origin);
    std::int32_t status = 0;
    if constexpr (sizeof(void*) == 4) errno = 0;  // see below
    rt().fseek_sub(&u, &offset, &whence, &status);
    // A seek that fails sets errno. The 32-bit run-time also reports a seek it has done as
    // failed when the new offset does not fit 32 bits (its result is truncated), and then
    // leaves errno alone (cleared above): that is a success. The unit and the origin were
    // checked before.
    if (status == 0) return 0;
    return errno == 0 ? 0 : -errno;
}

std::int64_t position(std::int64_t unit) {
    if (const int state = seek_state(unit)) return state;
    auto u = static_cast<std::int32_t>(unit);
    errno = 0;
    const std::int64_t at = rt().ftell(&u);
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
    unit_cache.forget_all();
    rt().st_open(&open);
    unit_cache.forget_all();
    if (iostat != 0) return EINVAL;
    const int unit_fd = descriptor(unit);
    if (unit_fd < 0) return EBADF;
    // dup3 keeps the unit's descriptor close-on-exec, as the program's own OPEN units are.
    if (unit_fd != fd && dup3(fd, unit_fd, O_CLOEXEC) < 0) return errno;
    unit_cache.forget_all();  // the unit's descriptor is now another file
    const off_t at = lseek(fd, 0, SEEK_CUR);
    if (!access.append && at > 0 && seek(unit, at, SEEK_SET) != 0) return ESPIPE;
    return 0;
}

void flush_all() { rt().flush_i4(nullptr); }

constexpr UnitOps kGfortranOps = {descriptor, flush_of, read_char_of, write_char_of, seek, position, attach, flush_all};

}  // namespace

const UnitOps* gfortran_unit_ops() noexcept {
    const GfortranRuntime* entries = gfortran_runtime();
    if (entries == nullptr) return nullptr;
    serving.store(entries, std::memory_order_release);
    return &kGfortranOps;
}

}  // namespace runtime

// OPEN and CLOSE statements of gfortran programs linked with the library come here first
// (the library precedes the gfortran run-time in the search order), so that what is known
// about a unit's connection is forgotten whenever a connection ends or changes.
namespace runtime {
namespace {
template <class F>
F next_definition(const char* name) noexcept {
    void* entry = dlsym(RTLD_NEXT, name);
    if (entry == nullptr)
        if (void* library = dlopen("libgfortran.so.5", RTLD_LAZY | RTLD_NOLOAD)) entry = dlsym(library, name);
    return reinterpret_cast<F>(entry);
}
}  // namespace
}  // namespace runtime

extern "C" TARVO_API void _gfortran_st_open(runtime::GfortranOpenBlock* block) noexcept {
    static const auto real = runtime::next_definition<void (*)(runtime::GfortranOpenBlock*)>("_gfortran_st_open");
    runtime::gfortran_units::unit_cache.forget_all();
    real(block);
    if ((block->flags & runtime::kOpenHasNewunit) != 0 && (block->flags & runtime::kStatementOutcome) == 0 &&
        block->newunit != nullptr)
        runtime::new_units.set(*block->newunit, true);
    runtime::gfortran_units::unit_cache.forget_all();
}

// The CLOSE block starts as the OPEN block does (flags, unit, ...).
extern "C" TARVO_API void _gfortran_st_close(runtime::GfortranOpenBlock* block) noexcept {
    static const auto real = runtime::next_definition<void (*)(runtime::GfortranOpenBlock*)>("_gfortran_st_close");
    runtime::gfortran_units::unit_cache.forget_all();
    real(block);
    if (block->unit < 0 && (block->flags & runtime::kStatementOutcome) == 0) runtime::new_units.set(block->unit, false);
    runtime::gfortran_units::unit_cache.forget_all();
}
