// Members as a whole: names, entries and raw cells. What each member does stands in expectations/*.tsv.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::IsEmpty;

TEST(Members, AnUnknownMemberIsSilent) {
    OrbaCalibration cal;
    EXPECT_FALSE(cal.unit.has("No_Such"));
    EXPECT_EQ(cal.unit.get("No_Such", 77), 0);
    const auto outcome = cal.unit.set("No_Such", 1);
    EXPECT_FALSE(outcome);
    EXPECT_EQ(refusalOf(outcome), Refusal{}) << "nothing to tell";
}

TEST(Members, ATextThatIsNoNumberIsATypeMismatch) {
    OrbaCalibration cal;
    EXPECT_THROW(cal.unit.set("KNK_MIN", "fifty"), TypeMismatch);
    EXPECT_EQ(cal.unit.DirectIndex(34), 0);
}

TEST(Members, ATableAndAScalarShareTheNameAfr) {
    const OrbaCalibration cal;
    EXPECT_EQ(cal.unit.find("AFR")->count, 1);
    EXPECT_EQ(cal.unit.find("Set_AFR")->count, 256);
    EXPECT_EQ(cal.unit.find("InjTrim"), cal.unit.find("INJTRIM"));
}

TEST(Members, EveryRowHasANameOfItsOwnAndAMeaning) {
    std::set<std::string_view> names;
    for (const Parameter& row : orbaKind().parameters) {
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
        EXPECT_FALSE(row.meaning.empty()) << row.name;
    }
}

TEST(Entries, ANumberThatFitsNoCellIsAnOverflowEvenWithoutARange) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.set("BHP", 300));
    EXPECT_THROW(cal.unit.set("BHP", "1E+39"), Overflow);
    EXPECT_THROW(cal.unit.set("MAP_Scaler", std::nan("")), Overflow);
    EXPECT_EQ(cal.unit.get("BHP"), 300);
    EXPECT_EQ(cal.unit.DirectIndex(126), 0);
}

TEST(RawAccess, ReadsAndWritesCellsWithoutSending) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.AssignDirectIndex(7.25F, 3000);
    cal.unit.AssignDirectIndex(1000, 34);
    EXPECT_EQ(cal.unit.DirectIndex(3000), 7.25F);
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 1000);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST(RawAccess, OutsideTheCellsIsABoundsError) {
    OrbaCalibration cal;
    EXPECT_THROW(cal.unit.DirectIndex(-1), BoundsError);
    EXPECT_THROW(cal.unit.DirectIndex(3001), BoundsError);
    EXPECT_THROW(cal.unit.AssignDirectIndex(1, 3001), BoundsError);
}

}  // namespace
}  // namespace zentaq::testing
