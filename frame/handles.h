// Structure handles: 4-byte integers naming library objects. On the 64-bit build they index
// two tables of addresses; on the 32-bit build a handle is the object's address itself.
// Callers use only these functions and never learn which scheme is in force.
#pragma once

#include <cstdint>

namespace frame {

enum class HandleTable {
    allocatable,  // instances and directory streams the library owns
    fixed,        // addresses the library does not own (procedures); never freed
};

// A new handle for an object the library owns, or 0 when no memory is left.
std::int32_t get_handle_from_alloc_address(void* address) noexcept;
// The handle of an address the library does not own: the same address always gets the
// same handle. 0 when no memory is left.
std::int32_t get_handle_from_static_address(void* address) noexcept;
// The address a handle names, or null when it names nothing.
void* get_address_from_handle(std::int32_t handle, HandleTable table) noexcept;
// Frees an allocatable handle: 0, or -1 when the handle names no slot.
int free_alloc_handle(std::int32_t handle) noexcept;

// Load and unload of the tables (64-bit build); no-ops under the address scheme.
int init_handle_table() noexcept;
void destroy_handle_table() noexcept;

}  // namespace frame
