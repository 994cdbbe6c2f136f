// Heap blocks of the library. Everything the routines hand over or keep comes from malloc,
// so an allocation failure is a null result, never an exception.
#pragma once

#include <cstddef>
#include <utility>

namespace base {

void* allocate(std::size_t size) noexcept;
void* allocate_zeroed(std::size_t count, std::size_t size) noexcept;
void release(void* block) noexcept;

// Marks a block (or a stream the C library allocated) that a routine keeps for the life of
// the process on purpose. The one place such blocks are declared: under the leak checker
// they are registered as intentional, so no routine needs a suppression of its own.
void keep(const void* block) noexcept;

// The one owner of a malloc'd block: released at the end of its scope unless handed over.
template <class T>
class Owned {
public:
    Owned() noexcept = default;
    explicit Owned(T* block) noexcept : p_(block) {}
    Owned(Owned&& other) noexcept : p_(std::exchange(other.p_, nullptr)) {}
    Owned& operator=(Owned&& other) noexcept {
        std::swap(p_, other.p_);
        return *this;
    }
    ~Owned() { release(p_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;

    // `count` elements of uninitialised storage; empty when no memory is left.
    static Owned with_room_for(std::size_t count) noexcept {
        return Owned(static_cast<T*>(allocate(count * sizeof(T))));
    }

    explicit operator bool() const noexcept { return p_ != nullptr; }
    T* get() const noexcept { return p_; }
    const T* c_str() const noexcept { return p_; }
    // Gives the block up: for routines documented to keep it or hand it over.
    T* hand_over() noexcept { return std::exchange(p_, nullptr); }

private:
    T* p_ = nullptr;
};

namespace testing {
// Lets the next `successes` allocations through, then fails every allocation
// until allow_allocations(). Test-only: the library never calls these.
void fail_allocations_after(long successes) noexcept;
void allow_allocations() noexcept;
}  // namespace testing

}  // namespace base
