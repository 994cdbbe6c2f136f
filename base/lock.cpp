#include "base/lock.h"

#include <cstddef>

namespace base {
namespace {
// The library has a handful of tables; a lock enrolls at its first use.
constexpr std::size_t kMaxLocks = 16;
TableLock* enrolled[kMaxLocks];
std::size_t enrolled_count = 0;
pthread_mutex_t enrol_mutex = PTHREAD_MUTEX_INITIALIZER;
pthread_once_t atfork_once = PTHREAD_ONCE_INIT;
}  // namespace

// Before fork: every table lock, in enrolment order (the same order every time).
void fork_prepare() noexcept {
    pthread_mutex_lock(&enrol_mutex);
    for (std::size_t i = 0; i < enrolled_count; ++i) pthread_mutex_lock(&enrolled[i]->mutex_);
}

void fork_parent() noexcept {
    for (std::size_t i = enrolled_count; i > 0; --i) pthread_mutex_unlock(&enrolled[i - 1]->mutex_);
    pthread_mutex_unlock(&enrol_mutex);
}

// The child has one thread: its locks start afresh.
void fork_child() noexcept {
    for (std::size_t i = 0; i < enrolled_count; ++i) pthread_mutex_init(&enrolled[i]->mutex_, nullptr);
    pthread_mutex_init(&enrol_mutex, nullptr);
}

namespace {
void install_fork_handlers() noexcept { pthread_atfork(fork_prepare, fork_parent, fork_child); }
}  // namespace

void TableLock::enroll() noexcept {
    pthread_once(&atfork_once, install_fork_handlers);
    pthread_mutex_lock(&enrol_mutex);
    if (!enrolled_.load(std::memory_order_relaxed) && enrolled_count < kMaxLocks) {
        enrolled[enrolled_count++] = this;
        enrolled_.store(true, std::memory_order_release);
    }
    pthread_mutex_unlock(&enrol_mutex);
}

}  // namespace base
