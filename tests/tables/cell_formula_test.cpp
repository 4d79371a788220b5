// The entry line for many cells.
#include "tables/cell_formula.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "base/errors.h"

namespace zentaq {
namespace {

float applied(std::string_view formula, float value) {
    return CellFormula::of(formula).applied(value);
}

std::string refusalOfFormula(std::string_view formula) {
    try {
        static_cast<void>(CellFormula::of(formula));
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

TEST(CellFormula, SetsAddsMultipliesAndDivides) {
    EXPECT_EQ(applied("=12", 40), 12);
    EXPECT_EQ(applied("=-12.5", 40), -12.5F);
    EXPECT_EQ(applied("+3", 40), 43);
    EXPECT_EQ(applied("-2", 40), 38);
    EXPECT_EQ(applied("*1.05", 40), 42);
    EXPECT_EQ(applied("/4", 40), 10);
}

TEST(CellFormula, ChangesByAShareOfTheCell) {
    EXPECT_EQ(applied("+5%", 40), 42);
    EXPECT_EQ(applied("-5%", 40), 38);
    EXPECT_EQ(applied("+10%", -20), -22) << "away from 0";
}

TEST(CellFormula, TakesBlanksAndADecimalComma) {
    EXPECT_EQ(applied(" = 12,5 ", 0), 12.5F);
    EXPECT_EQ(applied("* 0,5", 7), 3.5F);
    EXPECT_EQ(applied("+ 5 %", 100), 105);
}

TEST(CellFormula, RefusesWhatBeginsWithNoOperator) {
    EXPECT_THAT(refusalOfFormula("12"), ::testing::StartsWith("12 begins with no =, +, -, * or /"));
    EXPECT_THAT(refusalOfFormula("abc"), ::testing::StartsWith("abc begins with no"));
    EXPECT_THAT(refusalOfFormula("  "), ::testing::StartsWith("Nothing is entered"));
}

TEST(CellFormula, RefusesWhatIsNoNumber) {
    for (const char* formula :
         {"=", "=x", "+", "-", "*", "/", "+-3", "--3", "*-2", "=1 2", "=1e999", "+3%%", "=%"})
        EXPECT_NE(refusalOfFormula(formula), "") << formula;
}

TEST(CellFormula, RefusesAShareThatIsNeitherAddedNorTakenAway) {
    EXPECT_THAT(refusalOfFormula("*5%"), ::testing::HasSubstr("as +5% or -5%"));
    EXPECT_THAT(refusalOfFormula("=5%"), ::testing::HasSubstr("as +5% or -5%"));
}

TEST(CellFormula, RefusesToDivideByNothing) {
    EXPECT_EQ(refusalOfFormula("/0"), "Nothing can be divided by 0");
    EXPECT_EQ(refusalOfFormula("/0.0"), "Nothing can be divided by 0");
}

}  // namespace
}  // namespace zentaq
