// The lock of a process-wide table of the library (the native units, the wildcard searches,
// the environment scan position). Every such lock is taken before a fork and released on
// both sides after it, so a child never inherits a lock another thread held, nor a table
// half changed.
#pragma once

#include <pthread.h>

#include <atomic>

namespace base {

class TableLock {
public:
    constexpr TableLock() noexcept = default;
    TableLock(const TableLock&) = delete;
    TableLock& operator=(const TableLock&) = delete;

    void lock() noexcept {
        if (!enrolled_.load(std::memory_order_acquire)) enroll();
        pthread_mutex_lock(&mutex_);
    }
    void unlock() noexcept { pthread_mutex_unlock(&mutex_); }

private:
    friend void fork_prepare() noexcept;
    friend void fork_parent() noexcept;
    friend void fork_child() noexcept;
    void enroll() noexcept;

    pthread_mutex_t mutex_ = PTHREAD_MUTEX_INITIALIZER;
    std::atomic<bool> enrolled_{false};
};

// Holds a table lock for the length of a scope.
class TableGuard {
public:
    explicit TableGuard(TableLock& lock) noexcept : lock_(lock) { lock_.lock(); }
    ~TableGuard() { lock_.unlock(); }
    TableGuard(const TableGuard&) = delete;
    TableGuard& operator=(const TableGuard&) = delete;

private:
    TableLock& lock_;
};

}  // namespace base
