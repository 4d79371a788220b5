// The checks of every entry, and the words for one that is not taken.
#include "unit/entry_outcome.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/errors.h"
#include "unit/recording_host.h"

namespace zentaq::testing {
namespace {

const Limits units{2, 100, "(2 to 100 units)"};

TEST(CheckTyped, LooksForATextThenForANumberThenAtTheLimits) {
    EXPECT_EQ(refusalOf(checkTyped("  ", units)), Refusal{1005});
    EXPECT_EQ(refusalOf(checkTyped("fast", units)), (Refusal{1000, "Retype Data"}));
    EXPECT_EQ(refusalOf(checkTyped("101", units)), (Refusal{1001, "(2 to 100 units)", "101", "2 to 100"}));
    EXPECT_TRUE(checkTyped(" 12,5 ", units));
}

TEST(CheckLimits, TakesBothEndsAndNothingBeyond) {
    EXPECT_TRUE(checkLimits(2, units));
    EXPECT_TRUE(checkLimits(100, units));
    EXPECT_FALSE(checkLimits(std::nextafter(2.0F, 0.0F), units));
    EXPECT_FALSE(checkLimits(std::nextafter(100.0F, 200.0F), units));
    EXPECT_FALSE(checkLimits(NAN, units)) << "what is no number lies in no range";
}

TEST(CheckLimits, WithoutLimitsTakesEveryNumberThatFits) {
    EXPECT_TRUE(checkLimits(-1e30F, Limits::none()));
    EXPECT_FALSE(checkTyped("1e39", Limits::none()));
}

TEST(CheckAscending, NamesBothStops) {
    EXPECT_TRUE(checkAscending("500", "500.5"));
    EXPECT_EQ(refusalOf(checkAscending("1000", "900")), (Refusal{1006, "1000 > 900 = FALSE"}));
    EXPECT_FALSE(checkAscending("500", "500"));
}

TEST(CheckWhole, TakesNoFraction) {
    EXPECT_TRUE(checkWhole(-3));
    EXPECT_EQ(refusalOf(checkWhole(2.5)), Refusal{1002});
}

TEST(ARefusal, HasTheWordsOfItsWarningOnOneLine) {
    EXPECT_EQ((Refusal{1001, "(2 to 100 units)"}).line(),
              "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.");
    EXPECT_EQ((Refusal{1000, "Retype Data"}).line(),
              "Warning 1000: Data Input Error: Non-numeric value detected. Retype Data");
    EXPECT_EQ(Refusal{1002}.line(), "Warning 1002: Data Input Error: Enter Whole Numbers Only");
    EXPECT_EQ(Refusal{1005}.line(),
              "Warning 1005: Data Input Error: Field CANNOT be NULL; please try again.");
    EXPECT_EQ((Refusal{1006, "9 > 8 = FALSE"}).line(),
              "Warning 1006: Data Input Error: The value you entered must be higher than that of the one to "
              "the left. 9 > 8 = FALSE");
}

TEST(ARefusal, OfNothingToTellIsNotNoted) {
    std::vector<Refusal> refused;
    noteRefusal(refused, EntryOutcome());
    noteRefusal(refused, EntryOutcome::ignored());
    EXPECT_TRUE(refused.empty());
    noteRefusal(refused, checkWhole(0.5));
    EXPECT_EQ(refused.size(), 1U);
}

}  // namespace
}  // namespace zentaq::testing
