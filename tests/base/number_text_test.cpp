#include "base/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "base/errors.h"

namespace zentaq {
namespace {

struct Format {
    double value;
    const char* pattern;
    const char* text;
};

class FormatNumber : public testing::TestWithParam<Format> {};

TEST_P(FormatNumber, GivesTheTextOfItsPattern) {
    EXPECT_EQ(formatNumber(GetParam().value, GetParam().pattern), GetParam().text)
        << GetParam().value << " as " << GetParam().pattern;
}

INSTANTIATE_TEST_SUITE_P(Patterns, FormatNumber,
                         testing::Values(Format{0.5, "##.0", ".5"}, Format{0, "##.0", ".0"},
                                         Format{23.529, "##.0", "23.5"}, Format{-0.25, "##.0", "-.3"},
                                         Format{-12.34, "##.0", "-12.3"}, Format{0.5, "#0.00", "0.50"},
                                         Format{2, "#.00", "2.00"}, Format{0.02, "#.00", ".02"},
                                         Format{0, "##0", "0"}, Format{2.5, "##0", "3"},
                                         Format{-2.5, "##0", "-3"}, Format{-0.4, "##0", "0"},
                                         Format{123456, "##0", "123456"}, Format{3100, "####0", "3100"},
                                         Format{42, "000000", "000042"}, Format{1.5, "#0.0##", "1.5"},
                                         Format{1.2345, "#0.0##", "1.235"}, Format{2, "#0.0##", "2.0"},
                                         Format{2.5, "##.#00", "2.500"}, Format{5.2, "##.#0", "5.20"},
                                         Format{0.3, "##.#0", ".30"}, Format{7.5, "00.00", "07.50"},
                                         Format{1.005, "0.00", "1.01"}, Format{9.995, "#0.00", "10.00"}));

TEST(NumberText, OfWhat32BitsHold) {
    EXPECT_EQ(numberText(0.5F), "0.5");
    EXPECT_EQ(numberText(0.1F), "0.1");
    EXPECT_EQ(numberText(14.7F), "14.7");
    EXPECT_EQ(numberText(-3.25F), "-3.25");
    EXPECT_EQ(numberText(8500.0F), "8500");
    EXPECT_EQ(numberText(0.0F), "0");
    EXPECT_EQ(numberText(-0.0F), "0");
    EXPECT_EQ(numberText(1.0F / 3), "0.3333333");
    EXPECT_EQ(numberText(1234567.0F), "1234567");
}

TEST(NumberText, OfWhat64BitsHold) {
    EXPECT_EQ(numberText(0.1), "0.1");
    EXPECT_EQ(numberText(1.0 / 3), "0.333333333333333");
    EXPECT_EQ(numberText(123456789012345.0), "123456789012345");
}

TEST(NumberText, GoesToExponentsWhereTheDigitsEnd) {
    EXPECT_EQ(numberText(12345678.0F), "1.234568E+07");
    EXPECT_EQ(numberText(1e20F), "1E+20");
    EXPECT_EQ(numberText(1e15), "1E+15");
    EXPECT_EQ(numberText(0.0000001F), "0.0000001");
    EXPECT_EQ(numberText(2.5e-8), "2.5E-08");
}

TEST(NumberText, NamesWhatIsNoNumber) {
    EXPECT_EQ(numberText(std::nanf("")), "NaN");
    EXPECT_EQ(numberText(-std::numeric_limits<float>::infinity()), "-Infinity");
}

TEST(ParseNumber, ReadsWhatATunerTypes) {
    EXPECT_EQ(parseNumber("14.7"), 14.7);
    EXPECT_EQ(parseNumber("14,7"), 14.7);
    EXPECT_EQ(parseNumber("  -3 "), -3);
    EXPECT_EQ(parseNumber("+5"), 5);
    EXPECT_EQ(parseNumber(".5"), 0.5);
    EXPECT_EQ(parseNumber("-.5"), -0.5);
    EXPECT_EQ(parseNumber("5."), 5);
    EXPECT_EQ(parseNumber("1e3"), 1000);
}

TEST(ParseNumber, RefusesTheRest) {
    for (const char* text :
         {"",      " ",   "-",   ".",   ",",   "+",   "abc",  "1a",   "1 2", "1,000.5", "1,2,3",
          "1.2.3", "--1", "+-5", "-+5", "inf", "nan", "-inf", "0x10", "1e",  "1e999"}) {
        EXPECT_FALSE(isNumeric(text)) << "'" << text << "'";
    }
}

TEST(NumberOf, ThrowsTypeMismatchOnNoNumber) {
    EXPECT_EQ(numberOf("2,5"), 2.5);
    EXPECT_THROW(numberOf("2.5 ms"), TypeMismatch);
}

TEST(PlainNumber, IsWhatTheDecimalFormOfA32BitValueNames) {
    EXPECT_NE(static_cast<double>(0.05295F), 0.05295);
    EXPECT_EQ(plainNumber(0.05295F), 0.05295);
    EXPECT_EQ(plainNumber(-2), -2);
}

TEST(HexText, IsUpperCaseWithoutPadding) {
    EXPECT_EQ(hexText(0), "0");
    EXPECT_EQ(hexText(171), "AB");
    EXPECT_EQ(hexText(4352), "1100");
    EXPECT_EQ(hexText(-1), "FFFF");
    EXPECT_EQ(hexText(-32769), "FFFF7FFF");
}

TEST(NumberText, OneOfAThingHasItsOwnWord) {
    EXPECT_EQ(many(1, "line", "lines"), "1 line");
    EXPECT_EQ(many(0, "line", "lines"), "0 lines");
    EXPECT_EQ(many(1440000, "row", "rows"), "1440000 rows");
}

}  // namespace
}  // namespace zentaq
