#include "frame/handles.h"

#include <cstddef>
#include <cstring>

#include "frame/memory.h"

namespace frame {

#if TARVO_HANDLE_TABLES

namespace {
// A table is a chain of blocks of 256 pointer-sized slots: 255 addresses (0 = free)
// and, in the last slot, the link to the next block.
constexpr int kSlotsPerBlock = 255;
constexpr int kFirstStaticSlot = 15;  // the first static handle ever given is 16

struct Block {
    std::uintptr_t slot[kSlotsPerBlock];
    Block* next;
};
static_assert(sizeof(Block) == 256 * sizeof(void*));

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
        block = block->next;
        if (block == nullptr) return nullptr;
    }
    return block;
}

Block* append_block(Block* last) noexcept {
    auto* block = static_cast<Block*>(allocate_zeroed(1, sizeof(Block)));
    if (block != nullptr) last->next = block;
    return block;
}

void free_chain(Block& first) noexcept {
    Block* block = first.next;
    first.next = nullptr;
    while (block != nullptr) {
        Block* next = block->next;
        release(block);
        block = next;
    }
}

// Walks the chain from `first_slot` (first block only); `visit` returns true to stop
// at a slot. A full chain grows by one block whose slot 0 receives the address.
template <class Visit>
std::int32_t find_or_append(Block& first, int first_slot, std::uintptr_t address, Visit visit) noexcept {
    int number = 0;
    Block* block = &first;
    for (int slot = first_slot;; slot = 0) {
        for (; slot < kSlotsPerBlock; ++slot)
            if (visit(block->slot[slot])) {
                block->slot[slot] = address;
                return handle_of(number, slot);
            }
        if (block->next == nullptr) break;
        block = block->next;
        ++number;
    }
    Block* added = append_block(block);
    if (added == nullptr) return 0;
    added->slot[0] = address;
    return handle_of(number + 1, 0);
}

__attribute__((constructor)) void load_handle_tables() { init_handle_table(); }
__attribute__((destructor)) void unload_handle_tables() { destroy_handle_table(); }
}  // namespace

int init_handle_table() noexcept {
    std::memset(AllocatableHandles.slot, 0, sizeof AllocatableHandles.slot);
    for (int slot = 0; slot < kSlotsPerBlock; ++slot)
        StaticHandles.slot[slot] = slot < kFirstStaticSlot ? ~std::uintptr_t{0} : 0;
    return 0;
}

void destroy_handle_table() noexcept {
    free_chain(AllocatableHandles);
    free_chain(StaticHandles);
}

std::int32_t get_handle_from_alloc_address(void* address) noexcept {
    return find_or_append(AllocatableHandles, 0, reinterpret_cast<std::uintptr_t>(address),
                          [](std::uintptr_t held) { return held == 0; });
}

std::int32_t get_handle_from_static_address(void* address) noexcept {
    const auto a = reinterpret_cast<std::uintptr_t>(address);
    return find_or_append(StaticHandles, kFirstStaticSlot, a,
                          [a](std::uintptr_t held) { return held == a || held == 0; });
}

void* get_address_from_handle(std::int32_t handle, HandleTable table) noexcept {
    Block* block = block_of(handle, table == HandleTable::allocatable ? AllocatableHandles : StaticHandles);
    const int low = handle & 0xFF;
    if (block == nullptr || low == 0) return nullptr;
    return reinterpret_cast<void*>(block->slot[low - 1]);
}

int free_alloc_handle(std::int32_t handle) noexcept {
    Block* block = block_of(handle, AllocatableHandles);
    const int low = handle & 0xFF;
    if (block == nullptr || low == 0) return -1;
    block->slot[low - 1] = 0;
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
