#include "runtime/process.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

#include "base/export.h"
#include "runtime/gfortran.h"
#include "runtime/units.h"
#include <tarvo/runtime.h>

namespace runtime {
namespace {

double seconds_of(const timespec& t) noexcept { return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9; }

double clock_seconds(clockid_t clock) noexcept {
    timespec t{};
    clock_gettime(clock, &t);
    return seconds_of(t);
}

// Field 22 of /proc/self/stat: the start, in clock ticks after boot. The command name in
// field 2 may hold blanks and parentheses, so fields are counted after its last ')'.
double start_ticks_after_boot() noexcept {
    char text[1024];
    const int fd = open("/proc/self/stat", O_RDONLY | O_CLOEXEC);
    if (fd < 0) return -1;
    const ssize_t n = read(fd, text, sizeof text - 1);
    close(fd);
    if (n <= 0) return -1;
    text[n] = '\0';
    const char* p = std::strrchr(text, ')');
    if (p == nullptr) return -1;
    for (int field = 2; field < 22 && p != nullptr; ++field) p = std::strchr(p + 1, ' ');
    return p != nullptr ? std::strtod(p + 1, nullptr) : -1;
}

double measure_start_time() noexcept {
    const double ticks = start_ticks_after_boot();
    const double now = clock_seconds(CLOCK_REALTIME);
    if (ticks < 0) return now;
    // The boot moment on the wall clock: now less the time since boot.
    const double boot = now - clock_seconds(CLOCK_BOOTTIME);
    return boot + ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace

void for_exit(const std::int32_t* status) noexcept {
    std::int32_t code = status != nullptr ? *status : 0;
    if (const GfortranRuntime* rt = gfortran_runtime()) rt->exit_i4(&code);
    flush_all_units();
    std::exit(code);
}

void for_abort(const char* message, std::size_t length) noexcept {
    if (message != nullptr && length > 0) {
        // One write, so the line is not split between other output.
        char line[512];
        const std::size_t n = length < sizeof line - 1 ? length : sizeof line - 1;
        std::memcpy(line, message, n);
        line[n] = '\n';
        [[maybe_unused]] ssize_t ignored = write(STDERR_FILENO, line, n + 1);
    }
    std::abort();
}

// Read afresh each time, so a forked child reports its own start, not its parent's.
double for__process_start_time() noexcept { return measure_start_time(); }

double for_since_epoch_t(const double* base) noexcept {
    return clock_seconds(CLOCK_REALTIME) - (base != nullptr ? *base : 0.0);
}

int for__intermediate_establish() noexcept { return 0; }

std::int32_t for_mabrel_version() noexcept { return 1; }

}  // namespace runtime

// INTEGER FUNCTION FOR_MABREL_VERSION() -- the companion run-time's version code
extern "C" TARVO_API std::int32_t for_mabrel_version_() noexcept { return runtime::for_mabrel_version(); }
