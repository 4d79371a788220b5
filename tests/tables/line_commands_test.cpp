// Adding and removing rows and columns; cells and headers are worked out by hand.
#include "tables/line_commands.h"

#include <gmock/gmock.h>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;

class LineCommands : public TableWindow {
 protected:
    LineCommands() { fillAdvanceAndRatio(); }
    /// Cell by stored row and column of a table with 16 columns in store.
    float stored(int base, int row, int column) { return unit.DirectIndex(base + row * 16 + column); }
    void put(int base, int row, int column, float value) {
        unit.AssignDirectIndex(value, base + row * 16 + column);
    }
    std::vector<float> storedColumnHeaders(int count) {
        std::vector<float> headers;
        for (int i = 0; i < count; ++i) headers.push_back(unit.get("RPMTBL", i));
        return headers;
    }
};

// ---- Columns

TEST_F(LineCommands, AColumnIsAddedBetweenItsNeighborsInEveryMainTable) {
    size(8, 8);
    for (const char* table : {"ADV", "Get_AFR", "SPW", "VE"}) {
        unit.set(table, 20, 1);
        unit.set(table, 21, 2);
        unit.set(table, 24, 3);
    }
    open("VE");
    EXPECT_TRUE(changeLines(sheet, LineCommand::AddColumn, 3).empty());
    for (const char* table : {"ADV", "Get_AFR", "SPW", "VE"}) {
        EXPECT_EQ(unit.get(table, 1), 20);
        EXPECT_EQ(unit.get(table, 2), 20.5F) << "the mean of the old neighbors";
        EXPECT_EQ(unit.get(table, 3), 21);
        EXPECT_EQ(unit.get(table, 4), 24);
    }
    EXPECT_THAT(storedColumnHeaders(5), ElementsAre(500, 1000, 1250, 1500, 2000));
    EXPECT_EQ(sheet.columns(), 9);
    EXPECT_EQ(text(0, 3), "1250");
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("ADV", "COLS"), 9);
}

TEST_F(LineCommands, AColumnAtTheLeftEdgeHalvesTheHeaderAndDoublesTheCells) {
    size(8, 8);
    unit.set("RPMTBL", 500.5, 0);
    put(veBase, 0, 0, 10.26F);
    put(veBase, 0, 1, 30);
    open("VE");
    changeLines(sheet, LineCommand::AddColumn, 1);
    EXPECT_EQ(stored(veBase, 0, 0), 10.3F);
    EXPECT_EQ(stored(veBase, 0, 1), 10.3F);
    EXPECT_EQ(stored(veBase, 0, 2), 30);
    EXPECT_EQ(unit.get("RPMTBL", 0), 250.25F) << "half, as it is";
    EXPECT_EQ(unit.get("RPMTBL", 1), 500.5F);
}

TEST_F(LineCommands, AColumnRoundsTheCellsThatItMoves) {
    size(8, 8);
    put(veBase, 2, 3, 1.26F);
    put(veBase, 2, 4, 2.24F);
    open("VE");
    changeLines(sheet, LineCommand::AddColumn, 4);
    EXPECT_EQ(stored(veBase, 2, 4), 1.3F);
    EXPECT_EQ(stored(veBase, 2, 5), 2.2F);
}

TEST_F(LineCommands, AColumnIsRemovedAndTheOthersMoveAsTheyAre) {
    size(8, 9);
    put(veBase, 1, 2, 1.25F);
    put(veBase, 1, 3, 2.26F);
    put(veBase, 1, 8, 9);
    open("VE");
    EXPECT_TRUE(changeLines(sheet, LineCommand::RemoveColumn, 3).empty());
    EXPECT_EQ(stored(veBase, 1, 2), 2.26F);
    EXPECT_EQ(stored(veBase, 1, 7), 9);
    EXPECT_THAT(storedColumnHeaders(8), ElementsAre(500, 1000, 2000, 2500, 3000, 3500, 4000, 4500));
    EXPECT_EQ(sheet.columns(), 8);
}

// ---- Rows

TEST_F(LineCommands, ARowIsAddedBelowTheOneInHandAndOnlyItsOwnCellsAreRounded) {
    size(8, 8);
    put(veBase, 2, 0, 10);
    put(veBase, 3, 0, 21.26F);
    put(veBase, 4, 0, 30.26F);
    open("VE");
    EXPECT_TRUE(changeLines(sheet, LineCommand::AddRow, 5).empty());  // stored row 3 of 8
    EXPECT_EQ(stored(veBase, 2, 0), 10);
    EXPECT_EQ(stored(veBase, 3, 0), 15.6F);  // 31.26 / 2 = 15.63
    EXPECT_EQ(stored(veBase, 4, 0), 21.26F);
    EXPECT_EQ(stored(veBase, 5, 0), 30.26F);
    // Headers 15, 20, 25, 30, ...: the mean of 25 and 30.
    EXPECT_EQ(unit.get("MAPTBL", 2), 25);
    EXPECT_EQ(unit.get("MAPTBL", 3), 27.5F);
    EXPECT_EQ(unit.get("MAPTBL", 4), 30);
    EXPECT_EQ(sheet.rows(), 9);
    EXPECT_EQ(text(6, 0), "27.5");
    EXPECT_EQ(text(6, 1), "15.6");
}

TEST_F(LineCommands, ARowAtTheLowerEdgeIsACopyOfTheLowest) {
    size(8, 8);
    unit.set("MAPTBL", 18, 0);
    put(veBase, 0, 0, 10.26F);
    put(veBase, 1, 0, 30);
    open("VE");
    changeLines(sheet, LineCommand::AddRow, 8);
    EXPECT_EQ(stored(veBase, 0, 0), 10.3F);
    EXPECT_EQ(stored(veBase, 1, 0), 10.26F);
    EXPECT_EQ(stored(veBase, 2, 0), 30);
    EXPECT_EQ(unit.get("MAPTBL", 1), 18);
}

TEST_F(LineCommands, ARowIsRemovedWithItsHeader) {
    size(9, 8);
    put(veBase, 3, 0, 3);
    put(veBase, 4, 0, 4.26F);
    put(veBase, 8, 0, 8);
    open("VE");
    EXPECT_TRUE(changeLines(sheet, LineCommand::RemoveRow, 6).empty());  // stored row 3 of 9
    EXPECT_EQ(stored(veBase, 3, 0), 4.26F);
    EXPECT_EQ(stored(veBase, 7, 0), 8);
    EXPECT_EQ(unit.get("MAPTBL", 3), 35);
    EXPECT_EQ(sheet.rows(), 8);
}

TEST_F(LineCommands, OnAnInvertedGridTheRowIsTheOneThatStandsThere) {
    size(9, 8);
    put(veBase, 2, 0, 2);
    put(veBase, 3, 0, 3);
    open("VE");
    model.invert();
    changeLines(sheet, LineCommand::RemoveRow, 3);  // third from the top is stored row 2
    EXPECT_EQ(stored(veBase, 2, 0), 3);
}

// ---- Which tables

TEST_F(LineCommands, TheStagedTableGoesWithTheOthersWhereTheUnitHasOne) {
    open("VE");
    EXPECT_THAT(tablesOnAxesOf(sheet), ElementsAre("ADV", "AFR", "SPW", "VE"));
    open("GPO1");
    EXPECT_THAT(tablesOnAxesOf(sheet), ElementsAre("GPO1"));
    test::Calibration smaller(7);
    TableSheet other(smaller.unit);
    other.read("VE", "", false);
    EXPECT_THAT(tablesOnAxesOf(other), ElementsAre("ADV", "AFR", "VE"));
    test::Calibration ignition(5);
    TableSheet third(ignition.unit);
    third.read("GPO2", "", false);
    EXPECT_THAT(tablesOnAxesOf(third), ElementsAre("ADV", "GPO1", "GPO2")) << "it has one pair of axes";
}

TEST_F(LineCommands, ASmallUnitGetsItsColumnWithoutAStagedTable) {
    test::Calibration smaller(7);
    smaller.unit.SET_TBL_DIMENSIONS("VE", "ROWS", 8);
    smaller.unit.SET_TBL_DIMENSIONS("VE", "COLS", 8);
    smaller.unit.AssignDirectIndex(5, veBase + 3);
    TableSheet other(smaller.unit);
    other.read("VE", "", false);
    const float behindVe = smaller.unit.DirectIndex(stagedBase + 256);
    changeLines(other, LineCommand::AddColumn, 4);
    EXPECT_EQ(smaller.unit.DirectIndex(veBase + 4), 5);
    EXPECT_EQ(smaller.unit.DirectIndex(stagedBase + 256), behindVe);
}

TEST_F(LineCommands, AnOutputTableChangesAloneWithItsStops) {
    open("GPO1");
    unit.SET_TBL_DIMENSIONS("GPO1", "COLS", 8);
    unit.AssignDirectIndex(41, gpo1Base + 1);
    unit.AssignDirectIndex(44, gpo1Base + 2);
    put(veBase, 0, 2, 7);
    open("GPO1");
    changeLines(sheet, LineCommand::AddColumn, 3);
    EXPECT_EQ(unit.DirectIndex(gpo1Base + 2), 42) << "42.5 as a whole percent";
    EXPECT_EQ(unit.DirectIndex(gpo1Base + 3), 44);
    EXPECT_EQ(unit.Get_GPO_Stop(2, "X-Axis", "GPO1"), 1250);
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("GPO1", "COLS"), 9);
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("VE", "COLS"), 16);
    EXPECT_EQ(stored(veBase, 0, 2), 7);
}

TEST_F(LineCommands, StopsInFahrenheitMoveAsTheUserSeesThem) {
    open("GPO1");
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "CLT");
    unit.SET_TBL_DIMENSIONS("GPO1", "COLS", 8);
    for (int i = 0; i < 8; ++i) unit.Set_GPO_Stop(10.0 * (i + 1), i, "X-Axis", "GPO1");
    host.isFahrenheit = true;
    open("GPO1");
    ASSERT_EQ(text(0, 1), "50");
    changeLines(sheet, LineCommand::AddColumn, 2);
    // 10 and 20 Celsius are 50 and 68 Fahrenheit: between them 59, which is 15 Celsius.
    EXPECT_EQ(text(0, 2), "59");
    EXPECT_NEAR(unit.Get_GPO_Stop(1, "X-Axis", "GPO1"), 15, 1e-5);
    EXPECT_NEAR(unit.Get_GPO_Stop(2, "X-Axis", "GPO1"), 20, 1e-5);
}

// ---- Limits and gates

TEST_F(LineCommands, ATableOf16ColumnsTakesNoMoreAndOneOf15Becomes16) {
    open("ADV");
    EXPECT_EQ(whyNot(sheet, LineCommand::AddColumn), "a table has at most 16 columns");
    EXPECT_TRUE(changeLines(sheet, LineCommand::AddColumn, 2).empty());
    EXPECT_EQ(sheet.columns(), 16);
    size(16, 15);
    open("ADV");
    EXPECT_EQ(whyNot(sheet, LineCommand::AddColumn), "");
    changeLines(sheet, LineCommand::AddColumn, 2);
    EXPECT_EQ(sheet.columns(), 16);
}

TEST_F(LineCommands, ATableOf9CanLoseALineAndOneOf8Cannot) {
    size(9, 9);
    open("VE");
    changeLines(sheet, LineCommand::RemoveColumn, 1);
    changeLines(sheet, LineCommand::RemoveRow, 1);
    EXPECT_EQ(sheet.columns(), 8);
    EXPECT_EQ(sheet.rows(), 8);
    EXPECT_EQ(whyNot(sheet, LineCommand::RemoveColumn), "a table has at least 8 columns");
    EXPECT_EQ(whyNot(sheet, LineCommand::RemoveRow), "a table has at least 8 rows");
    changeLines(sheet, LineCommand::RemoveRow, 1);
    EXPECT_EQ(sheet.rows(), 8);
}

TEST_F(LineCommands, AUnitOfOlderFirmwareKeepsItsSize) {
    size(9, 9);
    unit.FW_Release(4);
    open("VE");
    EXPECT_EQ(whyNot(sheet, LineCommand::AddRow),
              "tables of another size need firmware release 5 or later; this calibration is for release 4");
    changeLines(sheet, LineCommand::AddRow, 1);
    EXPECT_EQ(sheet.rows(), 9);
}

TEST_F(LineCommands, TheIgnitionUnitKeepsItsSize) {
    test::Calibration ignition(5);
    TableSheet other(ignition.unit);
    other.read("ADV", "", false);
    EXPECT_EQ(whyNot(other, LineCommand::RemoveRow),
              "the tables of a PZK-2 keep their 16 rows and 16 columns");
}

TEST_F(LineCommands, ALineThatIsNotThereChangesNothing) {
    size(9, 9);
    open("VE");
    changeLines(sheet, LineCommand::RemoveRow, 10);
    changeLines(sheet, LineCommand::RemoveColumn, 0);
    EXPECT_EQ(sheet.rows(), 9);
    EXPECT_EQ(sheet.columns(), 9);
}

TEST_F(LineCommands, ARefusedCellKeepsItsValueAndIsNamed) {
    size(8, 8);
    put(stagedBase, 7, 2, 300);  // as a damaged file may have it
    put(stagedBase, 7, 3, 40);
    open("VE");
    const auto refused = changeLines(sheet, LineCommand::AddColumn, 3);
    // The mean of 300 and 0 is refused, and so is 300 itself in the next column.
    ASSERT_EQ(refused.size(), 2U);
    EXPECT_EQ(refused[0].where, "SPW cell 1,3");
    EXPECT_EQ(refused[0].entry, "150");
    EXPECT_EQ(refused[1].where, "SPW cell 1,4");
    EXPECT_EQ(stored(stagedBase, 7, 2), 300);
    EXPECT_EQ(stored(stagedBase, 7, 3), 40);
    EXPECT_EQ(stored(stagedBase, 7, 4), 40);
    EXPECT_EQ(sheet.columns(), 9);
}

TEST_F(LineCommands, MoreColumnsThanAreStoredAreTakenAwayWithoutTouchingTheNextRow) {
    size(16, 20);
    put(veBase, 0, 15, 5);
    put(veBase, 1, 0, 9);
    open("VE");
    changeLines(sheet, LineCommand::RemoveColumn, 18);
    EXPECT_EQ(sheet.columns(), 19);
    EXPECT_EQ(stored(veBase, 0, 15), 5);
    EXPECT_EQ(stored(veBase, 1, 0), 9);
    changeLines(sheet, LineCommand::RemoveColumn, 15);
    EXPECT_EQ(stored(veBase, 0, 14), 5);
    EXPECT_EQ(stored(veBase, 0, 15), 5) << "nothing is stored behind it";
}

}  // namespace
}  // namespace zentaq
