#include "runtime/errsns.h"

#include <atomic>

namespace runtime {
namespace {
std::atomic<int> recorded_error{0};
}

void for_errsns_load(int, int error_number, int, int, int) noexcept {
    recorded_error.store(error_number, std::memory_order_relaxed);
}

int last_recorded_error() noexcept { return recorded_error.load(std::memory_order_relaxed); }

}  // namespace runtime
