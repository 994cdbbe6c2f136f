// Structure handles: table bookkeeping on the 64-bit build, addresses on the 32-bit build.
#include <cstdint>
#include <vector>

#include "frame/handles.h"
#include "base/memory.h"
#include "support/support.h"

namespace {

using frame::HandleTable;

class Handles : public ::testing::Test {
protected:
    void TearDown() override {
        base::testing::allow_allocations();
        frame::destroy_handle_table();
        frame::init_handle_table();
    }
    int objects[600] = {};
    void* object(int i) { return &objects[i]; }
};

#if TARVO_HANDLE_TABLES

TEST_F(Handles, ReuseLowestFreedSlotFirst) {
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(0)), 1);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(1)), 2);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(2)), 3);
    EXPECT_EQ(frame::free_alloc_handle(2), 0);
    EXPECT_EQ(frame::free_alloc_handle(1), 0);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(3)), 1);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(4)), 2);
    EXPECT_EQ(frame::get_address_from_handle(2, HandleTable::allocatable), object(4));
}

TEST_F(Handles, EachBlockHolds255AndChainsGrow) {
    std::vector<std::int32_t> handles;
    for (int i = 0; i < 520; ++i) handles.push_back(frame::get_handle_from_alloc_address(object(i)));
    EXPECT_EQ(handles[254], 255);
    EXPECT_EQ(handles[255], 257);  // block 1, slot 0
    EXPECT_EQ(handles[510], 513);  // block 2, slot 0
    for (int i = 0; i < 520; ++i)
        ASSERT_EQ(frame::get_address_from_handle(handles[i], HandleTable::allocatable), object(i)) << i;
    // A slot freed in a later block is found again before the chain grows.
    EXPECT_EQ(frame::free_alloc_handle(300), 0);
    EXPECT_EQ(frame::get_address_from_handle(300, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(599)), 300);
}

TEST_F(Handles, NumbersThatNameNothing) {
    frame::get_handle_from_alloc_address(object(0));
    EXPECT_EQ(frame::get_address_from_handle(0, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::get_address_from_handle(256, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::get_address_from_handle(2, HandleTable::allocatable), nullptr);       // never issued
    EXPECT_EQ(frame::get_address_from_handle(0x7F01, HandleTable::allocatable), nullptr);  // no such block
    EXPECT_EQ(frame::get_address_from_handle(-256, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::free_alloc_handle(0), -1);
    EXPECT_EQ(frame::free_alloc_handle(256), -1);
    EXPECT_EQ(frame::free_alloc_handle(0x7F01), -1);
    // A negative handle reads the first block by its low byte.
    EXPECT_EQ(frame::get_address_from_handle(-255, HandleTable::allocatable), object(0));
}

TEST_F(Handles, FreeingTwiceIsHarmless) {
    const std::int32_t h = frame::get_handle_from_alloc_address(object(0));
    EXPECT_EQ(frame::free_alloc_handle(h), 0);
    EXPECT_EQ(frame::free_alloc_handle(h), 0);
    EXPECT_EQ(frame::get_address_from_handle(h, HandleTable::allocatable), nullptr);
}

TEST_F(Handles, StaticAddressesKeepTheirHandle) {
    EXPECT_EQ(frame::get_handle_from_static_address(object(0)), 16);
    EXPECT_EQ(frame::get_handle_from_static_address(object(0)), 16);
    EXPECT_EQ(frame::get_handle_from_static_address(object(1)), 17);
    EXPECT_EQ(frame::get_address_from_handle(17, HandleTable::fixed), object(1));
    // Reserved slots answer the all-ones address; they are never given out.
    EXPECT_EQ(frame::get_address_from_handle(1, HandleTable::fixed),
              reinterpret_cast<void*>(~std::uintptr_t{0}));
    EXPECT_EQ(frame::get_address_from_handle(16, HandleTable::allocatable), nullptr);
}

TEST_F(Handles, StaticTableGrowsPastItsFirstBlock) {
    std::int32_t last = 0;
    for (int i = 0; i < 241; ++i) last = frame::get_handle_from_static_address(object(i));
    EXPECT_EQ(last, 257);
    EXPECT_EQ(frame::get_handle_from_static_address(object(240)), 257);
    EXPECT_EQ(frame::get_address_from_handle(257, HandleTable::fixed), object(240));
}

TEST_F(Handles, NoMemoryForANewBlockGivesZeroAndChangesNothing) {
    for (int i = 0; i < 255; ++i) frame::get_handle_from_alloc_address(object(i));
    base::testing::fail_allocations_after(0);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(255)), 0);
    base::testing::allow_allocations();
    EXPECT_EQ(frame::get_address_from_handle(257, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::get_handle_from_alloc_address(object(255)), 257);
}

#else

TEST_F(Handles, HandleIsTheAddress) {
    const std::int32_t h = frame::get_handle_from_alloc_address(object(0));
    EXPECT_EQ(static_cast<std::uint32_t>(h), reinterpret_cast<std::uintptr_t>(object(0)));
    EXPECT_EQ(frame::get_address_from_handle(h, HandleTable::allocatable), object(0));
    EXPECT_EQ(frame::get_handle_from_static_address(object(1)), frame::get_handle_from_static_address(object(1)));
    EXPECT_EQ(frame::get_address_from_handle(0, HandleTable::allocatable), nullptr);
    EXPECT_EQ(frame::free_alloc_handle(h), 0);
    EXPECT_EQ(frame::free_alloc_handle(0), -1);
}

#endif

}  // namespace
