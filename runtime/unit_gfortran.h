// The gfortran back end's per-call operations, inline: one character read or written and a
// flush. The routines that do one of these per call (FGETC, FPUTC, FLUSH and their kin) are
// as cheap as the run-time's own entry points only when they reach them with a single
// indirect call, so units.h calls these directly once this back end serves the process.
// Everything else of the back end is in unit_gfortran.cpp.
#pragma once

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>

#include "runtime/gfortran.h"
#include "runtime/unit_backend.h"

namespace runtime::gfortran_units {

// The run-time's entry points, published when this back end is chosen; null before that and
// in a process without the gfortran run-time.
extern std::atomic<const GfortranRuntime*> serving;

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

extern UnitCache unit_cache;

// Whether gfortran may be asked about a negative unit (see unit_gfortran.cpp).
bool askable_negative(std::int64_t unit) noexcept;
inline bool askable(std::int64_t unit) noexcept { return unit >= 0 ? unit <= INT32_MAX : askable_negative(unit); }

// Asks gfortran for the unit's descriptor and remembers it.
int ask_descriptor(std::int32_t unit) noexcept;

// The address of the calling thread's errno once a transfer below has run in the thread,
// else null: with it, clearing errno on the per-call paths is one store rather than a call
// into the C library.
struct ErrnoCell {
    [[gnu::tls_model("initial-exec")]] static inline thread_local int* at = nullptr;
};

// The unit's descriptor, or -1 when it is not connected.
inline int descriptor(std::int64_t unit) noexcept {
    if (!askable(unit)) return -1;
    UnitCache::Entry entry{};
    // The cache is only ever filled when OPEN and CLOSE pass through this library.
    if (unit_cache.find(static_cast<std::int32_t>(unit), entry)) return entry.fd;
    return ask_descriptor(static_cast<std::int32_t>(unit));
}

// gfortran answers -1 both at end of file and for a unit that is not connected, and the
// same for a failed write (errno, cleared before the call, tells an error apart): only
// then is the unit looked up a second time. Out of line, so that the common path needs no
// saved registers.
[[gnu::cold]] int transfer_failed(std::int32_t unit, int without_error) noexcept;

// gfortran reads straight into the caller's byte. It first blanks as many bytes as the
// length it is given says: given 0, it blanks none, so a failed read leaves the byte as it
// was (it still reads one byte). The unit is one gfortran may be asked about, and error is
// the calling thread's errno.
inline int read_char_checked(const GfortranRuntime& rt, std::int32_t unit, char* dest, int& error) noexcept {
    error = 0;
    if (rt.fgetc(&unit, dest, 0) == 0) [[likely]] return 0;
    return transfer_failed(unit, kEndOfFile);
}

inline int write_char_checked(const GfortranRuntime& rt, std::int32_t unit, const char* ch, int& error) noexcept {
    error = 0;
    // gfortran only reads the character it is given.
    if (rt.fputc(&unit, const_cast<char*>(ch), 1) == 0) [[likely]] return 0;
    return transfer_failed(unit, -EIO);
}

// The same for a negative unit or one beyond INTEGER(4), or the first transfer in a thread.
// Out of line, as are the failure paths, so that the common path saves no registers.
int read_char_rare(const GfortranRuntime& rt, std::int64_t unit, char* dest) noexcept;
int write_char_rare(const GfortranRuntime& rt, std::int64_t unit, const char* ch) noexcept;

inline bool common_case(std::int64_t unit) noexcept {
    return static_cast<std::uint64_t>(unit) <= INT32_MAX && ErrnoCell::at != nullptr;
}

inline int read_char(const GfortranRuntime& rt, std::int64_t unit, char* dest) noexcept {
    if (!common_case(unit)) [[unlikely]] return read_char_rare(rt, unit, dest);
    return read_char_checked(rt, static_cast<std::int32_t>(unit), dest, *ErrnoCell::at);
}

inline int write_char(const GfortranRuntime& rt, std::int64_t unit, const char* ch) noexcept {
    if (!common_case(unit)) [[unlikely]] return write_char_rare(rt, unit, ch);
    return write_char_checked(rt, static_cast<std::int32_t>(unit), ch, *ErrnoCell::at);
}

// Flushes the unit: its descriptor, or -1 when it is not connected.
int flush(const GfortranRuntime& rt, std::int64_t unit) noexcept;

// Flushes the unit the caller's number names: whether it is connected. The common path (a
// unit in the cache) saves no registers and hands the run-time the caller's own number.
inline bool flush_connected(const GfortranRuntime& rt, const std::int32_t* unit) noexcept {
    UnitCache::Entry entry{};
    if (*unit >= 0 && unit_cache.find(*unit, entry)) [[likely]] {
        rt.flush_i4(unit);
        return true;
    }
    return flush(rt, *unit) >= 0;
}

}  // namespace runtime::gfortran_units
