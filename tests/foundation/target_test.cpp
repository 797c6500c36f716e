// The data model of the shipped target. Results that depend on widths (dates near 2038, longs on the
// wire, byte differences of plain char) are pinned to it, so the ARM suite must really run there:
// a 64-bit time_t (-D_TIME_BITS=64, or a distribution that switched) changes what dates give.
#include <gtest/gtest.h>

#include <climits>
#include <ctime>

#if defined(__arm__)
TEST(TargetTest, ArmHardFloatIs32BitWithUnsignedChar)
{
    EXPECT_EQ(sizeof(long), 4u);
    EXPECT_EQ(sizeof(void*), 4u);
    EXPECT_EQ(sizeof(std::time_t), 4u);
    EXPECT_EQ(CHAR_MIN, 0);
#if !defined(__ARM_PCS_VFP)
    ADD_FAILURE() << "not the hard-float calling convention";
#endif
}
#endif
