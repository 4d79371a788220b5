#include "base/text.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

using Parts = std::vector<std::string>;

TEST(Text, TrimmingTakesBlanksAndLineEnds) {
    EXPECT_EQ(trimmed(" \ta b\r\n"), "a b");
    EXPECT_EQ(trimmed(" \r\n"), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(Text, FixedWidthPadsOrCuts) {
    EXPECT_EQ(fixedWidth("ISC1", 7), "ISC1   ");
    EXPECT_EQ(fixedWidth("FUEL PUMP", 7), "FUEL PU");
    EXPECT_EQ(fixedWidth("", 2), "  ");
}

TEST(Text, SplittingKeepsEmptyFields) {
    EXPECT_EQ(split("a\t\tb", '\t'), (Parts{"a", "", "b"}));
    EXPECT_EQ(split("", '\t'), (Parts{""}));
    EXPECT_EQ(split("a\t", '\t'), (Parts{"a", ""}));
}

TEST(Text, HeadsCompareWithoutCase) {
    EXPECT_TRUE(startsWithNoCase("s0Data", "S0"));
    EXPECT_FALSE(startsWithNoCase("S", "S0"));
    EXPECT_EQ(upper("zq4-oa"), "ZQ4-OA");
}

TEST(Text, BlanksInFrontAlignATextOnTheRightAndALongOneStaysWhole) {
    EXPECT_EQ(rightAligned("7.5", 5), "  7.5");
    EXPECT_EQ(rightAligned("7.5", 3), "7.5");
    EXPECT_EQ(rightAligned("1234", 3), "1234");
}

TEST(Text, FileNamesEndAtEitherSlash) {
    EXPECT_EQ(fileNameOf(R"(C:\cars\Race.ZQ4OA)"), "Race.ZQ4OA");
    EXPECT_EQ(fileNameOf("/home/x/race.ZQ4OA"), "race.ZQ4OA");
    EXPECT_EQ(fileNameOf("race"), "race");
}

TEST(Text, TheExtensionIsThatOfTheNameNotOfAFolder) {
    EXPECT_EQ(extensionOf("/a.b/race"), "");
    EXPECT_EQ(extensionOf("/a.b/race.v2.ZQ4OA"), ".ZQ4OA");
    EXPECT_EQ(extensionOf("race."), ".");
}

}  // namespace
}  // namespace zentaq
