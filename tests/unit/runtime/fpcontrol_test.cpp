// The abstract control word over both units: the state a process starts with, changes that
// reach the x87 unit and MXCSR alike, and flags raised by real arithmetic.
#include <cfloat>

#include "runtime/fpcontrol.h"
#include "support/fp_state.h"

namespace {

using namespace runtime::fp;
using tarvo_test::keep;
using tarvo_test::run_time;

class FpControl : public tarvo_test::FpStateTest {};

TEST_F(FpControl, StartsAllMaskedNearestExtendedInBothUnits) {
    EXPECT_EQ(x87_control(), 0x037F);
    EXPECT_EQ(mxcsr() & ~0x3Fu, 0x1F80u);
    EXPECT_EQ(runtime::controlfp(0, 0), kExceptions);
}

TEST_F(FpControl, ChangesOnlyTheSelectedFieldsInBothUnits) {
    EXPECT_EQ(runtime::controlfp(kRoundUp | kPrecision53, kRoundMask | kPrecisionMask),
              kExceptions | kRoundUp | kPrecision53);
    EXPECT_EQ(runtime::controlfp(0, kZeroDivide | kDenormal), kExceptions - kZeroDivide - kDenormal + kRoundUp + kPrecision53);
    EXPECT_EQ(x87_control() & 0x0F3F, 0x0A00 | 0x3F - kX87ZeroDivide - kX87Denormal);
    EXPECT_EQ(mxcsr() & 0x7F80u, 0x4000u | 0x1F80u - (0x4u << 7) - (0x2u << 7));
    // Precision 0x30000 is 24-bit, as in the x87 routines.
    EXPECT_EQ(runtime::controlfp(kPrecisionMask, kPrecisionMask) & kPrecisionMask, kPrecision24);
    EXPECT_EQ(x87_control() & kX87PrecisionMask, 0);
    EXPECT_TRUE(runtime::controlfp(kInfinity, kInfinity) & kInfinity);
    EXPECT_FALSE(runtime::controlfp(0, kInfinity) & kInfinity);
}

TEST_F(FpControl, RoundingChangesResultsOfBothUnits) {
    runtime::controlfp(kRoundDown, kRoundMask);
    const double down = run_time(1.0) / run_time(3.0);
    const long double ld_down = run_time(1.0L) / run_time(3.0L);
    runtime::controlfp(kRoundUp, kRoundMask);
    EXPECT_LT(down, run_time(1.0) / run_time(3.0));
    EXPECT_LT(ld_down, run_time(1.0L) / run_time(3.0L));
    runtime::controlfp(kRoundChop, kRoundMask);
    EXPECT_EQ(run_time(-1.0) / run_time(3.0), -down);
    runtime::controlfp(0, kRoundMask);
    runtime::controlfp(kPrecision24, kPrecisionMask);
    EXPECT_EQ(run_time(1.0L) / run_time(3.0L), static_cast<long double>(1.0f / 3.0f));
}

TEST_F(FpControl, StatusIsTheUnionOfBothUnitsUntilCleared) {
    keep(run_time(1.0) / run_time(0.0));
    keep(run_time(LDBL_MAX) * run_time(2.0L));
    const std::uint32_t want = kZeroDivide | kOverflow | kInexact;
    EXPECT_EQ(runtime::statusfp(), want);
    EXPECT_EQ(runtime::clearfp(), want);
    EXPECT_EQ(runtime::statusfp(), 0u);
    keep(run_time(DBL_MIN) / run_time(1e10));
    keep(run_time(0.0L) / run_time(0.0L));
    EXPECT_EQ(runtime::statusfp(), kUnderflow | kInexact | kInvalid);
}

}  // namespace
