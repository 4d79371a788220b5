// A table beside that of another calibration.
#include "tables/table_comparison.h"

#include <gmock/gmock.h>

#include "base/errors.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

class Comparison : public TableWindow {
 protected:
    Comparison() { open("VE"); }
    void compareWith(const Calibration& other) { model.compare(other, unit.kind(), "other.ZQ4OA"); }
    std::string whyNot(const Calibration& other, const UnitKind& kind) {
        try {
            model.compare(other, kind, "other");
        } catch (const Failure& failure) {
            return failure.what();
        }
        return {};
    }
};

TEST_F(Comparison, TellsWhatTheCellsHaveMore) {
    const Calibration before = unit.calibration();
    unit.set("VE", 12.5, 0);
    unit.set("VE", -3, 17);
    compareWith(before);
    EXPECT_EQ(model.comparison().differenceText(0), "+12.5");
    EXPECT_EQ(model.comparison().differenceText(17), "-3");
    EXPECT_EQ(model.comparison().differenceText(1), "");
    EXPECT_EQ(sheet.grid().note(16, 1), "+12.5");
    EXPECT_EQ(sheet.grid().note(15, 2), "-3");
    EXPECT_EQ(sheet.grid().note(1, 1), "");
    EXPECT_FALSE(model.comparison().otherAxes());
}

TEST_F(Comparison, NotesFollowAChange) {
    compareWith(unit.calibration());
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("4"));
    model.noteDifferences();
    EXPECT_EQ(sheet.grid().note(16, 1), "+4");
}

TEST_F(Comparison, TheViewOfDifferencesShowsThemInPlaceOfTheValues) {
    const Calibration before = unit.calibration();
    unit.set("VE", 12.5, 0);
    open("VE");
    EXPECT_TRUE(model.toggleDifference().empty());
    EXPECT_TRUE(estimates.showsValues()) << "there is nothing to compare with";
    compareWith(before);
    model.toggleDifference();
    EXPECT_EQ(text(16, 1), "+12.5");
    EXPECT_EQ(text(16, 2), "0");
    EXPECT_EQ(sheet.grid().colour(16, 1), paintColour(Paint::LightGreen));
    EXPECT_FALSE(estimates.showsValues());
    EXPECT_TRUE(model.save().empty()) << "goes back to the values first";
    EXPECT_EQ(unit.get("VE", 0), 12.5F);
    EXPECT_EQ(text(16, 1), "12.5");
}

TEST_F(Comparison, NudgingInTheViewOfDifferencesChangesTheTable) {
    compareWith(unit.calibration());
    model.toggleDifference();
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.nudge(true));
    EXPECT_EQ(unit.get("VE", 0), 1);
    EXPECT_EQ(text(16, 1), "+1");
}

TEST_F(Comparison, OtherHeadersAreLookedUpBetweenTheirOwn) {
    test::Calibration other(3);
    for (int i = 0; i < 16; ++i) {
        other.unit.set("RPMTBL", 1000.0 * (i + 1), i);
        other.unit.set("MAPTBL", 15.0 + 5 * i, i);
    }
    other.unit.set("VE", 10, 0);  // 1000 rpm
    other.unit.set("VE", 20, 1);  // 2000 rpm
    compareWith(other.unit.calibration());
    EXPECT_TRUE(model.comparison().otherAxes());
    EXPECT_EQ(model.comparison().other(0), 10) << "500 rpm lies below its axis";
    EXPECT_EQ(model.comparison().other(1), 10);
    EXPECT_EQ(model.comparison().other(2), 15) << "1500 rpm";
    EXPECT_EQ(model.comparison().other(3), 20);
}

TEST_F(Comparison, InTheAbsoluteViewBothCountFromAHundred) {
    const Calibration before = unit.calibration();
    unit.set("VE", 5, 0);
    model.toggleAbsolute();
    compareWith(before);
    EXPECT_EQ(model.comparison().other(0), 100);
    EXPECT_EQ(model.comparison().differenceText(0), "+5");
}

TEST_F(Comparison, ATableThatTheOtherLacksIsSaid) {
    test::Calibration spark(5);
    EXPECT_EQ(whyNot(spark.unit.calibration(), spark.unit.kind()),
              "It is for PZK-2, which has no such table");
    EXPECT_FALSE(model.comparison().on());
}

TEST_F(Comparison, AxesThatStandForSomethingElseAreSaid) {
    open("GPO1");
    test::Calibration other(3);
    other.unit.calibration(unit.calibration());
    other.unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "TPS");
    EXPECT_EQ(whyNot(other.unit.calibration(), unit.kind()), "Its columns stand for TPS, here for RPM");
}

TEST_F(Comparison, WhatCannotBeComparedLeavesTheComparisonInHand) {
    compareWith(unit.calibration());
    test::Calibration spark(5);
    EXPECT_THAT(whyNot(spark.unit.calibration(), spark.unit.kind()), HasSubstr("no such table"));
    EXPECT_EQ(model.comparison().name(), "other.ZQ4OA");
    EXPECT_EQ(model.comparison().other(0), 0);
}

TEST_F(Comparison, GoesOnWithAnotherTableThatBothHave) {
    unit.set("ADV", 20, 0);
    const Calibration before = unit.calibration();
    unit.set("ADV", 25, 0);
    compareWith(before);
    open("ADV");
    EXPECT_EQ(model.comparison().differenceText(0), "+5");
    EXPECT_EQ(sheet.grid().note(16, 1), "+5");
}

TEST_F(Comparison, EndsWithItsNotesAndItsView) {
    const Calibration before = unit.calibration();
    unit.set("VE", 5, 0);
    compareWith(before);
    model.toggleDifference();
    model.compareNoMore();
    EXPECT_TRUE(estimates.showsValues());
    EXPECT_EQ(text(16, 1), "5");
    EXPECT_EQ(sheet.grid().note(16, 1), "");
}

}  // namespace
}  // namespace zentaq
