// The abstract control word over both units: the start state, changes that reach the x87
// unit and MXCSR alike, and the flags of both units.
#include <cfloat>

#include "support/fp_state.h"

namespace {

using namespace runtime::fp;
using tarvo_test::keep;
using tarvo_test::run_time;

class FpControl : public tarvo_test::FpStateTest {};

TEST_F(FpControl, ChangesOnlyTheSelectedFieldsInBothUnits) {
    EXPECT_EQ(x87_control(), 0x037F);  // the process's start state
    EXPECT_EQ(mxcsr() & ~0x3Fu, 0x1F80u);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
    EXPECT_EQ(runtime::controlfp(kRoundUp | kPrecision53, kRoundMask | kPrecisionMask),
              kExceptions | kRoundUp | kPrecision53);
    EXPECT_EQ(runtime::controlfp(0, kZeroDivide | kDenormal), 0x10217u);
    EXPECT_EQ(x87_control() & 0x0F3F, 0x0A39);
    EXPECT_EQ(mxcsr() & 0x7F80u, 0x5C80u);
    EXPECT_EQ(runtime::controlfp(kPrecisionMask, kPrecisionMask) & kPrecisionMask, kPrecision24);
    EXPECT_TRUE(runtime::controlfp(kInfinity, kInfinity) & kInfinity);
    EXPECT_FALSE(runtime::controlfp(0, kInfinity) & kInfinity);
}

TEST_F(FpControl, StatusIsTheUnionOfBothUnitsUntilCleared) {
    keep(run_time(1.0) / run_time(0.0));
    keep(run_time(LDBL_MAX) * run_time(2.0L));
    EXPECT_EQ(runtime::statusfp(), kZeroDivide | kOverflow | kInexact);
    EXPECT_EQ(runtime::clearfp(), kZeroDivide | kOverflow | kInexact);
    EXPECT_EQ(runtime::statusfp(), 0u);
    keep(run_time(DBL_MIN) / run_time(1e10));
    keep(run_time(0.0L) / run_time(0.0L));
    EXPECT_EQ(runtime::statusfp(), kUnderflow | kInexact | kInvalid);
}

}  // namespace
