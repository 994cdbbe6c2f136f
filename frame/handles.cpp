#include "frame/handles.h"

#include <atomic>
#include <cstddef>

#include "base/memory.h"

namespace frame {

#if TARVO_HANDLE_TABLES

namespace {
// A table is a chain of blocks of 256 pointer-sized slots: 255 addresses (0 = free) and,
// in the last slot, the link to the next block. Threads of a Fortran program create and
// free handles at once, so every slot is claimed with a compare-and-swap and a block is
// linked in the same way: no lock, nothing to reset in a forked child, and a lookup is
// one load. Blocks are never unlinked before unload.
constexpr int kSlotsPerBlock = 255;
constexpr int kFirstStaticSlot = 15;  // the first static handle ever given is 16

struct Block {
    std::atomic<std::uintptr_t> slot[kSlotsPerBlock];
    std::atomic<Block*> next;
};
static_assert(sizeof(Block) == 256 * sizeof(void*));
static_assert(std::atomic<std::uintptr_t>::is_always_lock_free);

Block AllocatableHandles;
Block StaticHandles;

constexpr std::int32_t handle_of(int block_number, int slot) {
    return static_cast<std::int32_t>((block_number << 8) | (slot + 1));
}

// The block a handle points into, or null when the chain is shorter.
Block* block_of(std::int32_t handle, Block& first) noexcept {
    Block* block = &first;
    if (handle < 256) return block;
    for (std::uint32_t hops = static_cast<std::uint32_t>(handle) >> 8; hops > 0; --hops) {
        block = block->next.load(std::memory_order_acquire);
        if (block == nullptr) return nullptr;
    }
    return block;
}

// Claims a free slot for address; true when it is ours.
bool claim_free(std::atomic<std::uintptr_t>& slot, std::uintptr_t address) noexcept {
    std::uintptr_t held = slot.load(std::memory_order_relaxed);
    return held == 0 && slot.compare_exchange_strong(held, address, std::memory_order_acq_rel);
}

// True when the slot holds address, or was free and now holds it.
bool claim_same_or_free(std::atomic<std::uintptr_t>& slot, std::uintptr_t address) noexcept {
    std::uintptr_t held = slot.load(std::memory_order_acquire);
    if (held == 0 && !slot.compare_exchange_strong(held, address, std::memory_order_acq_rel)) {
        return held == address;  // another thread filled it first, perhaps with the same address
    }
    return held == 0 || held == address;
}

// Walks the chain from `first_slot` (first block only) and claims the first slot `claim`
// accepts. A full chain grows by one block whose slot 0 receives the address.
template <class Claim>
std::int32_t find_or_append(Block& first, int first_slot, std::uintptr_t address, Claim claim) noexcept {
    int number = 0;
    Block* block = &first;
    for (int slot = first_slot;; slot = 0, ++number) {
        for (; slot < kSlotsPerBlock; ++slot)
            if (claim(block->slot[slot], address)) return handle_of(number, slot);
        Block* next = block->next.load(std::memory_order_acquire);
        if (next == nullptr) {
            auto* added = static_cast<Block*>(base::allocate_zeroed(1, sizeof(Block)));
            if (added == nullptr) return 0;
            added->slot[0].store(address, std::memory_order_relaxed);
            if (block->next.compare_exchange_strong(next, added, std::memory_order_acq_rel))
                return handle_of(number + 1, 0);
            base::release(added);  // another thread linked a block first: search it
        }
        block = next;
    }
}

void free_chain(Block& first) noexcept {
    Block* block = first.next.exchange(nullptr);
    while (block != nullptr) {
        Block* next = block->next.load(std::memory_order_relaxed);
        base::release(block);
        block = next;
    }
}

__attribute__((constructor)) void load_handle_tables() { init_handle_table(); }
__attribute__((destructor)) void unload_handle_tables() { destroy_handle_table(); }
}  // namespace

int init_handle_table() noexcept {
    for (int slot = 0; slot < kSlotsPerBlock; ++slot) {
        AllocatableHandles.slot[slot].store(0, std::memory_order_relaxed);
        StaticHandles.slot[slot].store(slot < kFirstStaticSlot ? ~std::uintptr_t{0} : 0, std::memory_order_relaxed);
    }
    return 0;
}

void destroy_handle_table() noexcept {
    free_chain(AllocatableHandles);
    free_chain(StaticHandles);
}

std::int32_t get_handle_from_alloc_address(void* address) noexcept {
    return find_or_append(AllocatableHandles, 0, reinterpret_cast<std::uintptr_t>(address), claim_free);
}

std::int32_t get_handle_from_static_address(void* address) noexcept {
    return find_or_append(StaticHandles, kFirstStaticSlot, reinterpret_cast<std::uintptr_t>(address),
                          claim_same_or_free);
}

void* get_address_from_handle(std::int32_t handle, HandleTable table) noexcept {
    Block* block = block_of(handle, table == HandleTable::allocatable ? AllocatableHandles : StaticHandles);
    const int low = handle & 0xFF;
    if (block == nullptr || low == 0) return nullptr;
    return reinterpret_cast<void*>(block->slot[low - 1].load(std::memory_order_acquire));
}

int free_alloc_handle(std::int32_t handle) noexcept {
    Block* block = block_of(handle, AllocatableHandles);
    const int low = handle & 0xFF;
    if (block == nullptr || low == 0) return -1;
    block->slot[low - 1].store(0, std::memory_order_release);
    return 0;
}

#else  // address handles: the handle is the address

std::int32_t get_handle_from_alloc_address(void* address) noexcept {
    return static_cast<std::int32_t>(reinterpret_cast<std::uintptr_t>(address));
}

std::int32_t get_handle_from_static_address(void* address) noexcept {
    return get_handle_from_alloc_address(address);
}

void* get_address_from_handle(std::int32_t handle, HandleTable) noexcept {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(static_cast<std::uint32_t>(handle)));
}

int free_alloc_handle(std::int32_t handle) noexcept { return handle == 0 ? -1 : 0; }

int init_handle_table() noexcept { return 0; }
void destroy_handle_table() noexcept {}

#endif

}  // namespace frame
