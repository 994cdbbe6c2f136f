#include "base/memory.h"

#include <atomic>
#include <cstdlib>

// Present only when the process carries the leak checker.
extern "C" void __lsan_ignore_object(const void*) __attribute__((weak));

namespace base {
namespace {
// -1: no failure injected; otherwise the number of allocations still allowed.
std::atomic<long> allowed_allocations{-1};

bool injected_failure() noexcept {
    long left = allowed_allocations.load(std::memory_order_relaxed);
    while (left >= 0) {
        if (left == 0) return true;
        if (allowed_allocations.compare_exchange_weak(left, left - 1, std::memory_order_relaxed))
            return false;
    }
    return false;
}
}  // namespace

void* allocate(std::size_t size) noexcept {
    return injected_failure() ? nullptr : std::malloc(size);
}

void* allocate_zeroed(std::size_t count, std::size_t size) noexcept {
    return injected_failure() ? nullptr : std::calloc(count, size);
}

void release(void* block) noexcept { std::free(block); }

void keep(const void* block) noexcept {
    if (block != nullptr && __lsan_ignore_object != nullptr) __lsan_ignore_object(block);
}

namespace testing {
void fail_allocations_after(long successes) noexcept {
    allowed_allocations.store(successes < 0 ? 0 : successes, std::memory_order_relaxed);
}
void allow_allocations() noexcept { allowed_allocations.store(-1, std::memory_order_relaxed); }
}  // namespace testing

}  // namespace base
