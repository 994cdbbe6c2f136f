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
// one load. Blocks are never unlinked before unload. The allocatable table also keeps an
// occupancy bitmap per block, so finding the lowest free slot takes a few word reads
// instead of a walk over 255 slots.
constexpr int kSlotsPerBlock = 255;
constexpr int kFirstStaticSlot = 15;  // the first static handle ever given is 16

constexpr int kBitmapWords = 4;

struct Block {
    std::atomic<std::uintptr_t> slot[kSlotsPerBlock];
    std::atomic<Block*> next;
    std::atomic<std::uint64_t> used[kBitmapWords];  // allocatable table: slots taken
};
static_assert(kBitmapWords * 64 > kSlotsPerBlock);
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

// Takes the lowest free slot of a block of the allocatable table for address; -1 when
// the block is full. The bit is taken first, so no other thread can take the slot.
int claim_lowest_free(Block& block, int first_slot, std::uintptr_t address) noexcept {
    for (int word = first_slot / 64; word < kBitmapWords; ++word) {
        std::uint64_t taken = block.used[word].load(std::memory_order_relaxed);
        while (~taken != 0) {
            const int bit = __builtin_ctzll(~taken);
            const int slot = word * 64 + bit;
            if (slot >= kSlotsPerBlock) break;
            const std::uint64_t mask = std::uint64_t{1} << bit;
            taken = block.used[word].fetch_or(mask, std::memory_order_acq_rel);
            if ((taken & mask) == 0) {
                block.slot[slot].store(address, std::memory_order_release);
                return slot;
            }
        }
    }
    return -1;
}

// The static table: the slot that already holds address, else the first free one, which
// then receives it; -1 when the block has neither. Static slots are never freed.
int claim_same_or_free(Block& block, int first_slot, std::uintptr_t address) noexcept {
    for (int slot = first_slot; slot < kSlotsPerBlock; ++slot) {
        std::uintptr_t held = block.slot[slot].load(std::memory_order_acquire);
        if (held == 0 && block.slot[slot].compare_exchange_strong(held, address, std::memory_order_acq_rel))
            return slot;
        if (held == address) return slot;  // also when another thread filled it just now
    }
    return -1;
}

// Walks the chain from `first_slot` (first block only) and takes the slot `claim` gives. A full chain grows by one block whose slot 0 receives the address.
template <class Claim>
std::int32_t find_or_append(Block& first, int first_slot, std::uintptr_t address, Claim claim) noexcept {
    int number = 0;
    Block* block = &first;
    for (int slot = first_slot;; slot = 0, ++number) {
        const int claimed = claim(*block, slot, address);
        if (claimed >= 0) return handle_of(number, claimed);
        Block* next = block->next.load(std::memory_order_acquire);
        if (next == nullptr) {
            auto* added = static_cast<Block*>(base::allocate_zeroed(1, sizeof(Block)));
            if (added == nullptr) return 0;
            added->slot[0].store(address, std::memory_order_relaxed);
            added->used[0].store(1, std::memory_order_relaxed);
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
    for (auto& word : AllocatableHandles.used) word.store(0, std::memory_order_relaxed);
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
    return find_or_append(AllocatableHandles, 0, reinterpret_cast<std::uintptr_t>(address), claim_lowest_free);
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
    const int slot = low - 1;
    block->slot[slot].store(0, std::memory_order_release);
    block->used[slot / 64].fetch_and(~(std::uint64_t{1} << (slot % 64)), std::memory_order_release);
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
