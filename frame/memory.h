// Heap blocks of the library. Everything the routines hand over or keep comes from malloc,
// so an allocation failure is a null result, never an exception.
#pragma once

#include <cstddef>

namespace frame {

void* allocate(std::size_t size) noexcept;
void* allocate_zeroed(std::size_t count, std::size_t size) noexcept;

// Owns a malloc'd block for the length of a scope.
template <class T>
class HeapBlock {
public:
    explicit HeapBlock(std::size_t count) noexcept
        : p_(static_cast<T*>(allocate(count * sizeof(T)))) {}
    ~HeapBlock();
    HeapBlock(const HeapBlock&) = delete;
    HeapBlock& operator=(const HeapBlock&) = delete;
    explicit operator bool() const noexcept { return p_ != nullptr; }
    T* get() const noexcept { return p_; }

private:
    T* p_;
};

void release(void* block) noexcept;

template <class T>
HeapBlock<T>::~HeapBlock() { release(p_); }

namespace testing {
// Lets the next `successes` allocations through, then fails every allocation
// until allow_allocations(). Test-only: the library never calls these.
void fail_allocations_after(long successes) noexcept;
void allow_allocations() noexcept;
}  // namespace testing

}  // namespace frame
