// Many cells at once: all or none.
#include "tables/cell_changes.h"

#include <gmock/gmock.h>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using CellChanges = TableWindow;

TEST_F(CellChanges, AreStoredAndShown) {
    open("VE");
    EXPECT_TRUE(storeAll(sheet, std::vector<CellChange>{{{16, 1}, 12.5F}, {{1, 16}, -3}}).empty());
    EXPECT_EQ(unit.DirectIndex(veBase), 12.5F);
    EXPECT_EQ(unit.DirectIndex(veBase + 255), -3);
    EXPECT_EQ(text(16, 1), "12.5");
    EXPECT_EQ(text(1, 16), "-3");
}

TEST_F(CellChanges, OfWhichOneIsRefusedChangeNothingAndNameItsCell) {
    open("VE");
    const auto refused = storeAll(sheet, std::vector<CellChange>{{{16, 1}, 12}, {{3, 4}, 51}, {{3, 5}, 50}});
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].where, "cell 3,4");
    EXPECT_EQ(refused[0].brief(), "Invalid Entry: 51 -> (-50 to 50%), cell 3,4");
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
    EXPECT_EQ(text(16, 1), "0");
}

TEST_F(CellChanges, GoToARunningUnitOneRecordACellThatDiffers) {
    open("VE");
    unit.ONFLY_MODE(true);
    storeAll(sheet, std::vector<CellChange>{{{16, 1}, 0}, {{16, 2}, 1}, {{16, 3}, 2}});
    EXPECT_EQ(host.sent.size(), 2U);
}

TEST_F(CellChanges, LeaveACellThatShowsTheValueAlreadyItsDigits) {
    unit.AssignDirectIndex(14.672F, afrBase);  // times 14.64 / 14.7: 14.612
    open("AFR");
    ASSERT_EQ(text(16, 1), "14.61");
    storeAll(sheet, std::vector<CellChange>{{{16, 1}, 14.61F}});
    EXPECT_EQ(unit.DirectIndex(afrBase), 14.672F);
}

TEST_F(CellChanges, OfAnOutputTableAreWholePercents) {
    open("GPO1");
    EXPECT_TRUE(storeAll(sheet, std::vector<CellChange>{{{16, 1}, 12.5F}, {{16, 2}, 13.5F}}).empty());
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12);
    EXPECT_EQ(unit.DirectIndex(gpo1Base + 1), 14);
    EXPECT_EQ(storeAll(sheet, std::vector<CellChange>{{{16, 1}, 100.4F}}).size(), 1U);
}

TEST_F(CellChanges, AreWorkedOutForEachCellOfABlockFromWhatItShows) {
    unit.AssignDirectIndex(7, veBase + 16);
    open("VE");
    model.toggleAbsolute();
    const auto changes =
        changesOf(sheet, {15, 16, 1, 2, true}, [](GridCell, float value) { return value + 1; });
    ASSERT_EQ(changes.size(), 4U);
    EXPECT_EQ(changes[0].cell, (GridCell{15, 1}));
    EXPECT_EQ(changes[0].value, 108);
    EXPECT_EQ(changes[3].value, 101);
    EXPECT_TRUE(storeAll(sheet, changes).empty());
    EXPECT_EQ(unit.DirectIndex(veBase + 16), 8);
}

}  // namespace
}  // namespace zentaq
