// The QQ control and status words (x87 layout): translated through the abstract word on
// x86-64, loaded into the x87 unit directly on i386, with the i386-only x87 routines.
#include <cstdint>

#include "support/fp_state.h"
#include <tarvo/qq.h>

namespace {

using namespace runtime::fp;
using tarvo_test::keep;
using tarvo_test::run_time;

class QqFpControl : public tarvo_test::FpStateTest {
protected:
    static std::int16_t control() {
        std::int16_t a = 0, b = 0;
        getcontrolfpqq_(&a);
        scwrqq_(&b);
        EXPECT_EQ(a, b);
        return a;
    }
};

#if !defined(__i386__)

TEST_F(QqFpControl, TranslatesThroughTheAbstractWordBothWays) {
    EXPECT_EQ(control(), 0x033F);  // the process's start state; the reserved 0x40 is not kept
    struct Case {
        std::int16_t set;
        std::uint32_t abstract;
        std::int16_t read_back;
    };
    const Case cases[] = {
        {0x037F, 0x8001F, 0x033F}, {0x023F, 0x8001F, 0x033F},  // 53-bit reads back as 64-bit
        {0x003F, 0xA001F, 0x003F}, {0x0F3F, 0x8031F, 0x0F3F},  {0x073F, 0x8011F, 0x073F},
        {0x0B3F, 0x8021F, 0x0B3F}, {0x133F, 0xC001F, 0x133F},  {0x033E, 0x8000F, 0x033E},
        {0x033D, 0x0001F, 0x033D}, {0x033B, 0x80017, 0x033B},  {0x0337, 0x8001B, 0x0337},
        {0x032F, 0x8001D, 0x032F}, {0x031F, 0x8001E, 0x031F},
    };
    for (const Case& c : cases) {
        lcwrqq_(&c.set);
        EXPECT_EQ(runtime::controlfp(0, 0), c.abstract) << std::hex << c.set;
        EXPECT_EQ(control(), c.read_back) << std::hex << c.set;
        setcontrolfpqq_(&c.set);
        EXPECT_EQ(control(), c.read_back) << std::hex << c.set;
    }
    const std::int16_t trap_zero_divide = 0x033B;
    setcontrolfpqq_(&trap_zero_divide);
    EXPECT_EQ(x87_control() & 0x3F, 0x3B);
    EXPECT_EQ(mxcsr() & 0x1F80u, 0x1D80u);
}

#else

TEST_F(QqFpControl, LoadsTheX87UnitAsItKeepsTheWord) {
    EXPECT_EQ(control(), 0x037F);
    const std::int16_t chop_single = 0x0C3F;
    setcontrolfpqq_(&chop_single);
    EXPECT_EQ(control(), static_cast<std::int16_t>(x87_control()));  // reserved bits as the unit keeps them
    EXPECT_EQ(control() & ~0x40, 0x0C3F);
    const std::int16_t double_up = 0x0A3F;
    lcwrqq_(&double_up);
    EXPECT_EQ(x87_control() & ~0x40, 0x0A3F);
    EXPECT_EQ(mxcsr() & 0x7F80u, 0x1F80u);  // MXCSR untouched
}

TEST_F(QqFpControl, Control87ChangesOnlyWholeFields) {
    EXPECT_EQ(_control87(0x12345, 0), 0x8001Fu);
    EXPECT_EQ(_control87(0x100, 0x100), 0x8001Fu);            // half a rounding mask
    EXPECT_EQ(_control87(0x10000, 0x10000), 0x8001Fu);        // half a precision mask
    EXPECT_EQ(_control87(0x40000, 0x40000), 0x8001Fu);        // infinity never changes
    EXPECT_EQ(_control87(0x10300, 0x30300), 0x8001Fu | 0x10300u);
    EXPECT_EQ(x87_control() & 0xFBF, 0x0E3F);
    EXPECT_EQ(_control87(0x30000 | 0x9, 0x3001F), 0xA0309u);  // denormal outside the mask
    EXPECT_EQ(x87_control() & 0xF3F, 0x0C26);
    EXPECT_EQ(_control87(0x80000, 0x80000) & 0x80000u, 0x80000u);
}

TEST_F(QqFpControl, StatusClearAndWholeStateRoutines) {
    keep(run_time(1.0L) / run_time(0.0L));
    std::int16_t sw = 0;
    sswrqq_(&sw);
    EXPECT_EQ(sw, 0x4);
    EXPECT_EQ(_status87(), 0x8u);
    EXPECT_EQ(_clear87(), 0x8u);
    EXPECT_EQ(_status87(), 0u);
    alignas(16) unsigned char state[108];
    const std::int16_t chop = 0x0F3F;
    setcontrolfpqq_(&chop);
    save_fp_state(state);
    EXPECT_EQ(x87_control(), 0x037F);  // saving reinitialises the unit
    restore_fp_state(state);
    EXPECT_EQ(x87_control() & ~0x40, 0x0F3F);
}

#endif

}  // namespace
