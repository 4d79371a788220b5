#include "base/rounding.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/errors.h"

namespace zentaq {
namespace {

TEST(Rounding, TiesGoToTheEvenNeighbour) {
    EXPECT_EQ(roundHalfEven(0.5), 0);
    EXPECT_EQ(roundHalfEven(1.5), 2);
    EXPECT_EQ(roundHalfEven(2.5), 2);
    EXPECT_EQ(roundHalfEven(-0.5), 0);
    EXPECT_EQ(roundHalfEven(-1.5), -2);
    EXPECT_EQ(roundHalfEven(-2.5), -2);
}

TEST(Rounding, ToPlacesActsOnTheValueAsItIsHeld) {
    EXPECT_EQ(roundTo(0.125F, 2), 0.12F);
    EXPECT_EQ(roundTo(0.375F, 2), 0.38F);
    EXPECT_EQ(roundTo(0.15F, 1), 0.2F);  // the 32-bit value lies above 0.15
    EXPECT_EQ(roundTo(0.45F, 1), 0.4F);  // 0.449999988
    EXPECT_EQ(roundTo(-12.25F, 1), -12.2F);
    EXPECT_EQ(roundTo(33.755F, 2), 33.76F);  // 33.7550011
}

TEST(Rounding, ToNoPlacesGivesWholes) {
    EXPECT_EQ(roundTo(104.5F, 0), 104.0F);
    EXPECT_EQ(roundTo(105.5F, 0), 106.0F);
}

TEST(Rounding, SixteenBitsEndAtTheirLimits) {
    EXPECT_EQ(toInt16(32767.4), 32767);
    EXPECT_EQ(toInt16(-32768.5), -32768);  // the tie goes to the even -32768
    EXPECT_THROW(toInt16(32767.5), Overflow);
    EXPECT_THROW(toInt16(-32769), Overflow);
    EXPECT_THROW(toInt16(std::nan("")), Overflow);
}

TEST(Rounding, BytesAreZeroTo255) {
    EXPECT_EQ(toByte(254.5), 254);
    EXPECT_EQ(toByte(-0.5), 0);
    EXPECT_THROW(toByte(255.5), Overflow);
    EXPECT_THROW(toByte(-1), Overflow);
}

TEST(Rounding, ThirtyTwoBitsEndAtTheirLimits) {
    EXPECT_EQ(toInt32(2147483647.0), 2147483647);
    EXPECT_THROW(toInt32(2147483648.0), Overflow);
    EXPECT_THROW(toInt32(HUGE_VAL), Overflow);
}

TEST(Rounding, TruncationGoesTowardZero) {
    EXPECT_EQ(truncate(2.9), 2);
    EXPECT_EQ(truncate(-2.9), -2);
}

TEST(Rounding, PowersOfTenAreThoseOfTheLibrary) {
    for (int exponent = -3; exponent <= 20; ++exponent)
        EXPECT_EQ(powerOfTen(exponent), std::pow(10.0, exponent)) << exponent;
}

}  // namespace
}  // namespace zentaq
