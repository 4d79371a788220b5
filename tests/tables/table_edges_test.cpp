// Where the rules of a table meet their ends.
#include <gmock/gmock.h>

#include "tables/block_operations.h"
#include "tables/edit_commands.h"
#include "tables/line_commands.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

class TableEdges : public TableWindow {
 protected:
    void dimensionWords(float rows, float columns) {
        unit.AssignDirectIndex(rows, 2292);
        unit.AssignDirectIndex(columns, 2293);
    }
    std::vector<float> ve(std::initializer_list<int> indexes) {
        std::vector<float> values;
        for (const int index : indexes) values.push_back(unit.get("VE", index));
        return values;
    }
};

// ---- Sizes and axes

TEST_F(TableEdges, AnOldCalibrationWithoutSizesIs16By16AndItsWordsReadSo) {
    dimensionWords(0, 0);
    setProgramVersion(unit, 9.44F);
    open("VE");
    EXPECT_EQ(sheet.rows(), 16);
    EXPECT_EQ(sheet.columns(), 16);
    EXPECT_EQ(unit.DirectIndex(2292), 16);
    EXPECT_EQ(unit.DirectIndex(2293), 16);
}

TEST_F(TableEdges, SizesOf7And25AreIgnoredAndThoseOf8And24Stored) {
    for (const auto& [asked, stored] :
         {std::pair(7, 16), std::pair(25, 16), std::pair(8, 8), std::pair(24, 24)}) {
        dimensionWords(16, 16);
        unit.SET_TBL_DIMENSIONS("VE", "ROWS", asked);
        EXPECT_EQ(unit.DirectIndex(2292), static_cast<float>(stored)) << asked;
    }
}

TEST_F(TableEdges, OfEightRowsTheUpperIsStoredRow7TheLowerRow0InStridesOf16) {
    size(8, 8);
    unit.set("VE", 7, 7 * 16 + 3);
    unit.set("VE", 9, 3);
    open("VE");
    EXPECT_EQ(text(1, 4), "7");
    EXPECT_EQ(text(8, 4), "9");
}

TEST_F(TableEdges, AxesOfAMainTableKeepTheirNamesWhateverTheImageSays) {
    for (const float word : {0.0F, 17.0F, 119.0F, 255.0F}) {
        unit.AssignDirectIndex(word, 2290);
        for (const char* table : {"ADV", "AFR", "SPW", "VE"}) {
            EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP") << word;
            EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM") << word;
        }
    }
}

TEST_F(TableEdges, StopsAreResetOnlyWhereOneWholeAxisIsZero) {
    open("GPO1");
    ASSERT_EQ(unit.Get_GPO_Stop(3, "X-Axis", "GPO1"), 2000) << "from the shared list";
    for (int i = 0; i < 16; ++i) {
        unit.Set_GPO_Stop(i == 5 ? 4000.0 : 0.0, i, "X-Axis", "GPO1");
        unit.Set_GPO_Stop(i == 9 ? 50.0 : 10.0, i, "Y-Axis", "GPO1");
    }
    open("GPO1");
    EXPECT_EQ(unit.Get_GPO_Stop(3, "X-Axis", "GPO1"), 0) << "each axis has a stop";
    unit.Set_GPO_Stop(0.0, 5, "X-Axis", "GPO1");
    open("GPO1");
    EXPECT_EQ(unit.Get_GPO_Stop(3, "X-Axis", "GPO1"), 2000);
    EXPECT_EQ(unit.Get_GPO_Stop(0, "Y-Axis", "GPO2"), 15) << "both tables are reset";
}

// ---- Keys, zones, colors

TEST_F(TableEdges, NudgingTheLowestOfEightRowsWritesIndex128AndTypingThereIndex0) {
    size(8, 8);
    open("VE");
    cursor.select(8, 1, 8, 1);
    press('.');
    EXPECT_EQ(ve({0, 128}), (std::vector<float>{0, 1}));
    ASSERT_TRUE(editor.enterValue("7"));
    EXPECT_EQ(ve({0, 128}), (std::vector<float>{7, 1}));
}

TEST_F(TableEdges, BeyondTheLastHeaderOfASmallTableColumn16IsChosenAndTheCursorStays) {
    size(8, 8);
    open("VE");
    cursor.select(4, 4, 4, 4);
    EXPECT_EQ(overlay.zones().cellOf(9000, 30, {4, 4}).column, 16);
    overlay.Show_Current_Activity(9000, 30);
    EXPECT_EQ(cursor.cell(), (GridCell{4, 4}));
}

TEST_F(TableEdges, AnActualRatioHalfAPointAboveTheDesiredOneEndsRedAndAnEqualOneBlue) {
    open("VE");
    overlay.colourMode(TableColour::Afr);
    live.DAFR = 13;
    live.AAFR = 13.5F;
    overlay.Show_Current_Activity(1000, 20);
    EXPECT_EQ(sheet.grid().colour(15, 2), 0x0000FF) << "red in its lowest byte";
    live.AAFR = 13;
    overlay.Show_Current_Activity(1000, 20);
    EXPECT_EQ(sheet.grid().colour(15, 2), 0xFF0000);
}

TEST_F(TableEdges, VeIsWhiteAt0PureGreenAt50AndPureRedAtMinus50) {
    unit.set("VE", 50, 1);
    unit.set("VE", -50, 2);
    open("VE");
    EXPECT_EQ(sheet.grid().colour(16, 1), 0xFFFFFF);
    EXPECT_EQ(sheet.grid().colour(16, 2), 0x00FF00);
    EXPECT_EQ(sheet.grid().colour(16, 3), 0x0000FF);
}

TEST_F(TableEdges, ALowerCaseAStartsAnEntryAndNotTheAbsoluteView) {
    open("VE");
    EXPECT_EQ(model.keyOnGrid('a'), KeyResult::StartEdit);
    EXPECT_FALSE(sheet.absoluteVe());
    EXPECT_EQ(model.keyOnGrid('A'), KeyResult::Done);
    EXPECT_TRUE(sheet.absoluteVe());
}

// ---- Operations

TEST_F(TableEdges, SmoothingTwoCellsWithoutExtraWeightShowsTheSecondTheNewFirst) {
    unit.set("VE", 10, 0);
    unit.set("VE", 20, 1);
    open("VE");
    cursor.select(16, 1, 16, 2);
    editCommandOf("mnuSmooth_5")->run(model);
    EXPECT_EQ(ve({0, 1}), (std::vector<float>{15, 17.5F}));
}

TEST_F(TableEdges, SmoothingThreeByThreeAtItsStrongestAveragesAllNineWithThoseAlreadyDone) {
    unit.set("VE", 45, 2);
    open("VE");
    cursor.select(14, 1, 16, 3);  // 45 is its last cell in reading order
    editCommandOf("mnuSmooth_5")->run(model);
    // 45/9 = 5; 50/9 = 5.6; 55.6/9 = 6.2; 61.8/9 = 6.9; 68.7/9 = 7.6; 76.3/9 = 8.5; 84.8/9 = 9.4;
    // 94.2/9 = 10.5; 104.7/9 = 11.6.
    EXPECT_EQ(ve({32, 33, 34, 16, 17, 18, 0, 1, 2}),
              (std::vector<float>{5, 5.6F, 6.2F, 6.9F, 7.6F, 8.5F, 9.4F, 10.5F, 11.6F}));
}

TEST_F(TableEdges, InterpolatingTwoByTwoCellsRoundsTheCornersAndNothingElse) {
    unit.set("VE", 1.26, 0);
    unit.set("VE", 2.26, 1);
    unit.set("VE", 3.26, 16);
    unit.set("VE", 4.26, 17);
    unit.set("VE", 5.26, 18);
    open("VE");
    cursor.select(15, 1, 16, 2);
    editCommandOf("mnuInterpolate")->run(model);
    EXPECT_EQ(ve({0, 1, 16, 17, 18}), (std::vector<float>{1.3F, 2.3F, 3.3F, 4.3F, 5.26F}));
}

TEST_F(TableEdges, InterpolatedRatiosKeepOneDecimalThoughTheTableShowsTwo) {
    fillAdvanceAndRatio();
    unit.set("Get_AFR", 13.26, 0);
    unit.set("Get_AFR", 14.34, 2);
    open("AFR");
    cursor.select(16, 1, 16, 3);
    EXPECT_TRUE(editCommandOf("mnuInterpolate")->run(model).empty());
    EXPECT_EQ(text(16, 1), "13.3");
    EXPECT_EQ(text(16, 2), "13.8");
    EXPECT_EQ(text(16, 3), "14.3");
}

TEST_F(TableEdges, AddingAColumnTo16IsDisabledAndTo15Gives16) {
    fillAdvanceAndRatio();
    open("ADV");
    EXPECT_FALSE(model.popupItems().newColumn);
    size(16, 15);
    open("ADV");
    EXPECT_TRUE(model.popupItems().newColumn);
    editCommandOf("mnuNewCol")->run(model);
    EXPECT_EQ(sheet.columns(), 16);
}

TEST_F(TableEdges, NineColumnsCanLoseOneAndEightCannot) {
    size(16, 9);
    open("VE");
    EXPECT_TRUE(model.popupItems().removeColumn);
    editCommandOf("mnuRmvCol")->run(model);
    EXPECT_EQ(sheet.columns(), 8);
    EXPECT_FALSE(model.popupItems().removeColumn);
    editCommandOf("mnuRmvCol")->run(model);
    EXPECT_EQ(sheet.columns(), 8);
}

TEST_F(TableEdges, AColumnOfAUnitWithoutStagingWritesNoStagedTable) {
    test::Calibration small(7);
    small.unit.SET_TBL_DIMENSIONS("VE", "ROWS", 16);
    small.unit.SET_TBL_DIMENSIONS("VE", "COLS", 8);
    for (int i = 0; i < storedCells; ++i) small.unit.set("VE", 5, i);
    small.unit.get("Get_AFR");  // a reading may repair cells
    TableSheet other(small.unit);
    other.read("VE", "", false);
    std::vector<int> changed;
    small.unit.watch(
        [&](const CalibrationChange& change, const Calibration&) { changed.push_back(change.place); });
    changeLines(other, LineCommand::AddColumn, 2);
    // Advance 656 and on, fuel 912 and on, ratio 1168 and on: there is no fourth table between or behind
    // them.
    for (const int place : changed) {
        const bool table = place >= 656 && place < 1424;
        const bool axis = place >= 592 && place < 656;
        EXPECT_TRUE(table || axis || place == 2293) << place;
    }
    EXPECT_FALSE(changed.empty());
}

TEST_F(TableEdges, RestoringATableOf8ColumnsPacksItsCellsIntoFourStoredRows) {
    size(8, 8);
    for (int row = 0; row < 8; ++row) {
        for (int column = 0; column < 8; ++column) unit.set("VE", row * 5 + column, row * 16 + column);
    }
    open("VE");
    model.restore();
    // The copies stand one behind the other: row 0, then row 1, in the first stored row.
    EXPECT_EQ(ve({0, 7, 8, 15, 16, 24}), (std::vector<float>{0, 7, 5, 12, 10, 15}));
    EXPECT_EQ(ve({63}), (std::vector<float>{42})) << "the last cell of row 7";
    EXPECT_NE(text(7, 1), "5") << "the grid is not what was shown";
}

}  // namespace
}  // namespace zentaq
