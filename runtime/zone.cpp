#include "runtime/zone.h"

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "base/export.h"
#include "base/lock.h"

namespace runtime {
namespace {

// Changes made to the environment through the C library's four writers, counted by the
// wrappers at the end of this file. The count is raised after the change is complete.
std::atomic<unsigned> environment_changes{0};

// The TZ value the zone was last read with. A longer value is never remembered, so the
// zone is read again on every check while such a value is set.
constexpr std::size_t kRemembered = 256;
char last_tz[kRemembered];
bool last_tz_set = false;
bool zone_read = false;
base::TableLock zone_lock;

// The environment as it was when TZ was last compared: the change count plus one (0 until
// the first comparison) and the list itself, which a program may also replace directly.
std::atomic<unsigned> checked_changes{0};
std::atomic<char**> checked_list{nullptr};

bool same_as_last(const char* tz) noexcept {
    if (!zone_read) return false;
    if (tz == nullptr) return !last_tz_set;
    return last_tz_set && std::strlen(tz) < kRemembered && std::strcmp(tz, last_tz) == 0;
}

// Compares TZ with the value the zone was read with, and reads the zone again if it
// differs. `changes` is the count seen before TZ is looked up: a change made meanwhile
// leaves the marks stale, so the next call compares again.
[[gnu::noinline]] void compare_tz(unsigned changes) noexcept {
    base::TableGuard guard(zone_lock);
    char** const list = ::environ;
    const char* tz = std::getenv("TZ");
    const std::size_t length = tz != nullptr ? std::strlen(tz) : 0;
    const bool remembered = length < kRemembered;
    if (!same_as_last(tz)) {
        tzset();
        zone_read = true;
        last_tz_set = tz != nullptr;
        if (tz != nullptr) std::memcpy(last_tz, tz, remembered ? length + 1 : kRemembered);
    }
    checked_list.store(list, std::memory_order_relaxed);
    checked_changes.store(remembered ? changes + 1 : 0, std::memory_order_release);
}

template <class F>
F next_definition(const char* name) noexcept {
    return reinterpret_cast<F>(dlsym(RTLD_NEXT, name));
}

// Runs the C library's own writer, then counts the change.
template <class F, class... Args>
int counted(F real, Args... args) noexcept {
    const int result = real(args...);
    environment_changes.fetch_add(1, std::memory_order_acq_rel);
    return result;
}

}  // namespace

void keep_zone_current() noexcept {
    // Nothing can have changed TZ while the count and the list are as they were at the last
    // comparison: one load each instead of a search of the environment.
    const unsigned changes = environment_changes.load(std::memory_order_acquire);
    if (checked_changes.load(std::memory_order_acquire) == changes + 1 &&
        checked_list.load(std::memory_order_relaxed) == ::environ)
        return;
    compare_tz(changes);
}

std::tm local_time(std::time_t t) noexcept {
    keep_zone_current();
    std::tm tm{};
    localtime_r(&t, &tm);
    return tm;
}

}  // namespace runtime

// The C library's environment writers, wrapped so that every change is counted: programs
// linked with the library reach these first (it precedes the C library in the search
// order), and so do the library's own environment routines.
extern "C" TARVO_API int setenv(const char* name, const char* value, int overwrite) noexcept {
    static const auto real = runtime::next_definition<int (*)(const char*, const char*, int)>("setenv");
    return runtime::counted(real, name, value, overwrite);
}

extern "C" TARVO_API int unsetenv(const char* name) noexcept {
    static const auto real = runtime::next_definition<int (*)(const char*)>("unsetenv");
    return runtime::counted(real, name);
}

extern "C" TARVO_API int putenv(char* text) noexcept {
    static const auto real = runtime::next_definition<int (*)(char*)>("putenv");
    return runtime::counted(real, text);
}

extern "C" TARVO_API int clearenv() noexcept {
    static const auto real = runtime::next_definition<int (*)()>("clearenv");
    return runtime::counted(real);
}
