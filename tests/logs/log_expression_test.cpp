// Conditions and formulas over channels.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "logs/log_expression.h"

namespace zentaq {
namespace {

using testing::HasSubstr;

const std::vector<std::string> columns{"Frame", "RPM", "MAP", "AAFR", "DAFR", "BATTV"};

/// Over a row with these values.
double valueOf(const std::string& text, double rpm = 3500, double map = 90, double aafr = 15.5,
               double dafr = 14.7) {
    const std::array<double, 6> row{1, rpm, map, aafr, dafr, 13.8};
    return LogExpression(text, columns).value([&](int column) {
        return row[static_cast<std::size_t>(column)];
    });
}

std::string refusalOf(const std::string& text) {
    try {
        LogExpression(text, columns);
    } catch (const ExpressionError& error) {
        return error.what();
    }
    return "taken";
}

struct Case {
    const char* text;
    double value;
};

class ExpressionValue : public testing::TestWithParam<Case> {};
TEST_P(ExpressionValue, IsThatOfSchoolArithmetic) {
    EXPECT_DOUBLE_EQ(valueOf(GetParam().text), GetParam().value);
}
INSTANTIATE_TEST_SUITE_P(Cases, ExpressionValue,
                         testing::ValuesIn(std::to_array<Case>({
                             {"1 + 2 * 3", 7},
                             {"(1 + 2) * 3", 9},
                             {"10 - 4 - 3", 3},
                             {"24 / 4 / 2", 3},
                             {"2 * 7 mod 4", 2},
                             {"-3 + 5", 2},
                             {"- -3", 3},
                             {"-abs(-3)", -3},
                             {"1 + 1 > 1", 1},
                             {"2 > 1 + 1", 0},
                             {"1 or 0 and 0", 1},
                             {"(1 or 0) and 0", 0},
                             {"not 1 or 1", 1},
                             {"not (1 or 1)", 0},
                             {"not 2 > 3", 1},
                             {"!0 && !0", 1},
                             {"not not 5", 1},
                             {"0 || 3", 1},
                             {"1 <> 2", 1},
                             {"1 != 1", 0},
                             {"2 == 2", 1},
                             {"2 = 2", 1},
                             {"3 <= 3", 1},
                             {"3 >= 4", 0},
                             {"min(4, 2, 3)", 2},
                             {"max(4, 2, 9)", 9},
                             {"sqrt(49)", 7},
                             {"floor(2.9) + ceil(2.1)", 5},
                             {"round(2.5) + round(3.5)", 6},
                             {"1.5e3", 1500},
                             {".5 * 4", 2},
                             {"RPM > 3000 and MAP > 80 and abs(AAFR - DAFR) > 0.5", 1},
                             {"rpm / 1000 * map", 315},
                             {"VOLT", 13.8},
                             {"AAFR-DAFR>0.5 AND NOT MAP<80", 1},
                         })));

TEST(Expression, WhatHasNoValueMakesNoComparisonTrue) {
    EXPECT_TRUE(std::isnan(valueOf("RPM / 0")));
    EXPECT_EQ(valueOf("RPM / 0 > 1"), 0);
    EXPECT_EQ(valueOf("RPM / 0 <= 1"), 0);
    EXPECT_EQ(valueOf("RPM / 0 <> 1"), 0);
    EXPECT_TRUE(std::isnan(valueOf("sqrt(-1)")));
    EXPECT_EQ(valueOf("RPM / 0 > 1 or MAP = 90"), 1);
}

TEST(Expression, ATypedNumberIsThatOfALogInSingleDigits) {
    // Columns in memory hold 32-bit numbers: 14.7 is a hair below there.
    const double held = static_cast<double>(14.7F);
    ASSERT_NE(held, 14.7);
    EXPECT_EQ(valueOf("AAFR = 14.7", 1, 1, held), 1);
    EXPECT_EQ(valueOf("AAFR >= 14.7", 1, 1, held), 1);
    EXPECT_EQ(valueOf("AAFR < 14.7", 1, 1, held), 0);
}

TEST(Expression, RefusalsSayWhatAndWhere) {
    EXPECT_THAT(refusalOf(""), HasSubstr("The expression is empty"));
    EXPECT_THAT(refusalOf("BOOST > 1"), HasSubstr("The log has no channel BOOST (at place 1)"));
    EXPECT_THAT(refusalOf("RPM >"), HasSubstr("A value is missing at the end (at place 6)"));
    EXPECT_THAT(refusalOf("> 3"), HasSubstr("A value is missing in front of \">\" (at place 1)"));
    EXPECT_THAT(refusalOf("(RPM > 3"), HasSubstr("A \")\" is missing (at place 9)"));
    EXPECT_THAT(refusalOf("RPM > 3)"), HasSubstr("\")\" stands too much here (at place 8)"));
    EXPECT_THAT(refusalOf("1000 < RPM < 3000"), HasSubstr("do not stand in a chain"));
    EXPECT_THAT(refusalOf("sin(RPM)"), HasSubstr("There is no function sin"));
    EXPECT_THAT(refusalOf("min(RPM)"), HasSubstr("MIN takes two values or more"));
    EXPECT_THAT(refusalOf("abs(RPM, MAP)"), HasSubstr("A \")\" is missing"));
    EXPECT_THAT(refusalOf("RPM & MAP"), HasSubstr("\"&\" means nothing here (at place 5)"));
    EXPECT_THAT(refusalOf("1.2.3"), HasSubstr("This is no number (at place 1)"));
    EXPECT_THAT(refusalOf("12rpm"), HasSubstr("This is no number"));
    EXPECT_THAT(refusalOf("RPM and"), HasSubstr("A value is missing at the end"));
    EXPECT_THAT(refusalOf("RPM MAP"), HasSubstr("\"MAP\" stands too much here (at place 5)"));
}

TEST(Expression, NeitherDepthNorLengthHasNoEnd) {
    EXPECT_THAT(refusalOf(std::string(2000, '(') + "1"), HasSubstr("nested too deeply"));
    EXPECT_THAT(refusalOf(std::string(5000, ' ') + "1"), HasSubstr("longer than 4096 characters"));
    EXPECT_EQ(valueOf(std::string(4000, '-') + "1"), 1);
}

}  // namespace
}  // namespace zentaq
