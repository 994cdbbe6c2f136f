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
#include "runtime/units.h"

namespace runtime {
namespace {

const GfortranRuntime* rt;  // set once, before these operations are handed out

// What is known about connected units: the descriptor, and once asked, whether it can seek
// (gfortran keeps its own position for units on pipes and terminals and would report a
// seek there as done; the descriptor tells the truth, as it does in the native back end).
// An entry lives as long as the connection: every OPEN and CLOSE empties the cache.
//
// A slot holds unit << 32 | descriptor << 10 | state << 1 | 1, state being 0 for a
// descriptor that can seek, the error number lseek gave, or kUnknown; 0 is a free slot.
// A slot filled while an OPEN or CLOSE ran is emptied again.
class UnitCache {
public:
    static constexpr unsigned kUnknown = 511;
    static constexpr int kFdLimit = 1 << 22;
    struct Entry {
        int fd;
        unsigned state;
    };

    bool find(std::int32_t unit, Entry& entry) const noexcept {
        const std::uint64_t v = slot_of(unit).load(std::memory_order_acquire);
        if (v == 0 || static_cast<std::uint32_t>(v >> 32) != static_cast<std::uint32_t>(unit)) return false;
        entry = {static_cast<int>((v >> 10) & (kFdLimit - 1)), static_cast<unsigned>((v >> 1) & 511)};
        return true;
    }

    std::uint32_t generation() const noexcept { return generation_.load(std::memory_order_acquire); }

    void remember(std::int32_t unit, Entry entry, std::uint32_t seen) noexcept {
        if (entry.fd < 0 || entry.fd >= kFdLimit || entry.state > kUnknown) return;
        const std::uint64_t v = (std::uint64_t{static_cast<std::uint32_t>(unit)} << 32) |
                                (std::uint64_t{static_cast<std::uint32_t>(entry.fd)} << 10) | (entry.state << 1) | 1u;
        std::atomic<std::uint64_t>& slot = slot_of(unit);  // whatever it held is replaced
        slot.store(v, std::memory_order_release);
        std::uint64_t expected = v;
        if (generation() != seen) slot.compare_exchange_strong(expected, 0, std::memory_order_acq_rel);
    }

    void forget_all() noexcept {
        generation_.fetch_add(1, std::memory_order_acq_rel);
        for (auto& slot : slots_) slot.store(0, std::memory_order_release);
    }

private:
    // Each unit has one slot, so a look-up is one load; two units sharing a slot only take
    // turns in it.
    static constexpr unsigned kSlots = 64;
    std::atomic<std::uint64_t>& slot_of(std::int32_t unit) noexcept {
        return slots_[static_cast<std::uint32_t>(unit) % kSlots];
    }
    const std::atomic<std::uint64_t>& slot_of(std::int32_t unit) const noexcept {
        return slots_[static_cast<std::uint32_t>(unit) % kSlots];
    }
    std::atomic<std::uint64_t> slots_[kSlots] = {};
    std::atomic<std::uint32_t> generation_{0};
};

UnitCache unit_cache;

int descriptor(std::int64_t unit);

// Whether OPEN and CLOSE in every Fortran caller reach the wrappers at the end of this file:
// only then can the cache be trusted. Otherwise every call asks gfortran and lseek.
bool wrappers_bound() noexcept {
    static const bool bound = [] {
        Dl_info ours{}, open{}, close{};
        const bool ok = dladdr(reinterpret_cast<void*>(&descriptor), &ours) != 0 &&
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

bool askable(std::int64_t unit) noexcept {
    if (unit >= 0) return unit <= INT32_MAX;
    return unit <= kFirstNewUnit && (new_units.contains(unit) || (unit >= INT32_MIN && !wrappers_bound()));
}

// Asks gfortran for the unit's descriptor and remembers it.
[[gnu::noinline]] int ask_descriptor(std::int32_t unit) {
    const std::uint32_t seen = unit_cache.generation();
    const int fd = rt->fnum_i4(&unit);
    if (fd >= 0 && wrappers_bound()) unit_cache.remember(unit, {fd, UnitCache::kUnknown}, seen);
    return fd;
}

[[gnu::always_inline]] inline int descriptor(std::int64_t unit) {
    if (!askable(unit)) return -1;
    UnitCache::Entry entry{};
    // The cache is only ever filled when wrappers_bound().
    if (unit_cache.find(static_cast<std::int32_t>(unit), entry)) return entry.fd;
    return ask_descriptor(static_cast<std::int32_t>(unit));
}

int flush(std::int64_t unit) {
    const int fd = descriptor(unit);
    if (fd < 0) return -1;
    auto u = static_cast<std::int32_t>(unit);
    rt->flush_i4(&u);
    return fd;
}

// gfortran answers -1 both at end of file and for a unit that is not connected, and the
// same for a failed write (errno, cleared before the call, tells an error apart): only
// then is the unit looked up a second time. Kept out of line so that the common path
// needs no saved registers.
[[gnu::noinline, gnu::cold]] int transfer_failed(std::int32_t unit, int without_error) {
    const int error = errno;
    if (descriptor(unit) < 0) return -EBADF;
    return error != 0 ? -error : without_error;
}

// gfortran reads straight into the caller's byte, which it blanks first: on failure the
// byte gets back what it held, so a failed read leaves it as it was.
int read_char(std::int64_t unit, char* dest) {
    if (!askable(unit)) return -EBADF;
    auto u = static_cast<std::int32_t>(unit);
    const char before = *dest;
    errno = 0;
    if (rt->fgetc(&u, dest, 1) == 0) return 0;
    *dest = before;
    return transfer_failed(u, kEndOfFile);
}

int write_char(std::int64_t unit, const char* ch) {
    if (!askable(unit)) return -EBADF;
    auto u = static_cast<std::int32_t>(unit);
    errno = 0;
    // gfortran only reads the character it is given.
    if (rt->fputc(&u, const_cast<char*>(ch), 1) == 0) return 0;
    return transfer_failed(u, -EIO);
}

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
    rt->fseek_sub(&u, &offset, &whence, &status);
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
    unit_cache.forget_all();
    rt->st_open(&open);
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

void flush_all() { rt->flush_i4(nullptr); }

constexpr UnitOps kGfortranOps = {descriptor, flush, read_char, write_char, seek, position, attach, flush_all};

}  // namespace

const UnitOps* gfortran_unit_ops() noexcept {
    rt = gfortran_runtime();
    return rt != nullptr ? &kGfortranOps : nullptr;
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
    runtime::unit_cache.forget_all();
    real(block);
    if ((block->flags & runtime::kOpenHasNewunit) != 0 && (block->flags & runtime::kStatementOutcome) == 0 &&
        block->newunit != nullptr)
        runtime::new_units.set(*block->newunit, true);
    runtime::unit_cache.forget_all();
}

// The CLOSE block starts as the OPEN block does (flags, unit, ...).
extern "C" TARVO_API void _gfortran_st_close(runtime::GfortranOpenBlock* block) noexcept {
    static const auto real = runtime::next_definition<void (*)(runtime::GfortranOpenBlock*)>("_gfortran_st_close");
    runtime::unit_cache.forget_all();
    real(block);
    if (block->unit < 0 && (block->flags & runtime::kStatementOutcome) == 0) runtime::new_units.set(block->unit, false);
    runtime::unit_cache.forget_all();
}
