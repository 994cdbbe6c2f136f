#include "base/record.h"

#include <atomic>
#include <cerrno>

namespace base {
namespace {
std::atomic<int> recorded_error{0};
}

void for_errsns_load(int, int error_number, int, int, int) noexcept {
    recorded_error.store(error_number, std::memory_order_relaxed);
}

void record_errno(int code) noexcept {
    errno = code;
    for_errsns_load(0, code, 0, 0, 0);
}

namespace testing {
int last_recorded_error() noexcept { return recorded_error.load(std::memory_order_relaxed); }
}  // namespace testing

}  // namespace base
