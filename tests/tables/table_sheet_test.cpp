// What a table shows of its calibration, and how it goes back there.
#include "base/errors.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

// ---- Building

TEST_F(TableWindow, ShowsTheLowestStoredRowAtTheBottom) {
    unit.AssignDirectIndex(7, veBase);                    // stored row 0, column 0
    unit.AssignDirectIndex(-8.5F, veBase + 15 * 16 + 2);  // stored row 15, column 2
    open("VE");
    EXPECT_EQ(sheet.rows(), 16);
    EXPECT_EQ(sheet.columns(), 16);
    EXPECT_EQ(text(16, 1), "7");
    EXPECT_EQ(text(1, 3), "-8.5");
    EXPECT_EQ(text(16, 0), "15");
    EXPECT_EQ(text(1, 0), "90");
    EXPECT_EQ(text(0, 1), "500");
    EXPECT_EQ(text(0, 16), "8000");
    EXPECT_EQ(sheet.headers(false)[0], 15);
    EXPECT_EQ(sheet.headers(true)[15], 8000);
    EXPECT_EQ(sheet.title(), "A table");
}

TEST_F(TableWindow, AnEmptyNameOrTitleKeepsTheCurrentOne) {
    open("ADV");
    model.Setup_Grid("", "", false);
    EXPECT_EQ(sheet.table(), "ADV");
    EXPECT_EQ(sheet.title(), "A table");
}

TEST_F(TableWindow, InvertedShowsTheLowestRowOnTop) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.invert();
    EXPECT_EQ(text(1, 1), "7");
    EXPECT_EQ(text(1, 0), "15");
    EXPECT_EQ(sheet.tableIndex(1, 1), 0);
    cursor.select(1, 1, 1, 1);
    ASSERT_TRUE(editor.enterValue("9"));
    EXPECT_EQ(unit.DirectIndex(veBase), 9);
    model.home();
    EXPECT_EQ(text(16, 1), "9");
}

TEST_F(TableWindow, SavingAnInvertedGridDoesNotTurnTheTableOver) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.invert();
    sheet.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(veBase), 7);
    EXPECT_EQ(unit.DirectIndex(veBase + 15 * 16), 0);
}

TEST_F(TableWindow, ASmallTableKeepsTheStoredStrideOf16) {
    size(8, 9);
    unit.AssignDirectIndex(5, veBase + 7 * 16 + 8);
    open("VE");
    EXPECT_EQ(sheet.rows(), 8);
    EXPECT_EQ(sheet.columns(), 9);
    EXPECT_EQ(text(1, 9), "5");
    EXPECT_EQ(sheet.tableIndex(1, 1), 7 * 16);
    EXPECT_EQ(sheet.tableIndex(8, 1), 0);
}

TEST_F(TableWindow, CopiesAreFilledByARunningCountOfShownCells) {
    size(8, 8);
    unit.AssignDirectIndex(5, veBase + 16);  // stored row 1, column 0: the ninth shown cell
    open("VE");
    EXPECT_EQ(sheet.undoCopy(8), 5);
    EXPECT_EQ(sheet.baseCopies()[8], 5);
    EXPECT_EQ(sheet.undoCopy(16), 0);
}

TEST_F(TableWindow, AnOutputTableWithoutAxesGetsTheSharedOnes) {
    open("GPO1");
    EXPECT_EQ(text(0, 4), "2000");
    EXPECT_EQ(text(13, 0), "30");
    EXPECT_EQ(unit.Get_GPO_Stop(3, "X-Axis", "GPO2"), 2000);
}

TEST_F(TableWindow, TemperatureStopsOfAnOutputTableFollowTheChosenScale) {
    resetGpoAxes(unit);
    unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "CLT");
    unit.AssignDirectIndex(20.04F, 2226);
    open("GPO1");
    EXPECT_EQ(text(16, 0), "20.04");
    host.isFahrenheit = true;
    open("GPO1");
    EXPECT_EQ(text(16, 0), "68.1");  // 68.07
    EXPECT_EQ(text(0, 1), "500");
}

// ---- Access by grid row

TEST_F(TableWindow, ValuesByRowCountFromTheTopAndColumnsFromZero) {
    size(8, 16);
    unit.AssignDirectIndex(5, veBase + 7 * 16 + 3);
    open("VE");
    EXPECT_EQ(sheet.get_BinValue("VE", 1, 3), 5);
    EXPECT_EQ(sheet.get_BinValue("VE", -9, 0), 0);  // index 272
    EXPECT_TRUE(sheet.set_BinValue("VE", 8, 0, 4));
    EXPECT_EQ(unit.DirectIndex(veBase), 4);
    EXPECT_FALSE(sheet.set_BinValue("VE", -9, 0, 4));
    EXPECT_FALSE(sheet.set_BinValue("VE", 9, 0, 4));
    EXPECT_EQ(unit.DirectIndex(veBase + 256), 0);
    EXPECT_EQ(unit.DirectIndex(veBase - 16), 0);
}

// ---- The whole grid

TEST_F(TableWindow, ASelectionOfAHeaderNeverChangesTheHeader) {
    open("VE");
    cursor.select(0, 1, 1, 1);
    ASSERT_TRUE(editor.enterValue("5"));
    EXPECT_EQ(text(0, 1), "500");
    EXPECT_EQ(text(1, 1), "5");
}

TEST_F(TableWindow, AShrinkingTableTakesItsCursorAndSelectionAlong) {
    open("VE");
    cursor.select(16, 16, 15, 16);
    size(8, 8);
    model.rebuild();
    EXPECT_EQ(cursor.row(), 1);
    EXPECT_FALSE(cursor.selection().present);
    EXPECT_TRUE(editor.enterValue("5"));
    EXPECT_EQ(unit.DirectIndex(veBase + 7 * 16), 5);
}

TEST_F(TableWindow, SavingSendsOnlyTheCellsWhoseValueDiffers) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    unit.ONFLY_MODE(true);
    sheet.saveEntireTable();
    EXPECT_TRUE(host.sent.empty());
    EXPECT_EQ(sheet.cellsWritten(), 0);
    sheet.grid().text(16, 1, "5.0");  // the value it has
    sheet.grid().text(15, 2, "-7");   // stored row 1, column 1: address 4352 + 912 + 17 = 0x14A1
    sheet.saveEntireTable();
    // -7 + 50 = 43 = 0x2B; 0x04 + 0x14 + 0xA1 + 0x2B = 0xE4, inverted 0x1B
    EXPECT_EQ(host.sent, std::vector<std::string>{"S10414A12B1B"});
    EXPECT_EQ(sheet.cellsWritten(), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 17), -7);
}

TEST_F(TableWindow, SavingKeepsTheDigitsThatACellDoesNotShow) {
    unit.AssignDirectIndex(12.3456F, afrBase);
    open("AFR");
    EXPECT_EQ(text(16, 1), "12.3");  // 12.3456 * 14.64 / 14.7 = 12.2952
    sheet.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(afrBase), 12.3456F);
}

TEST_F(TableWindow, AnOutputCellWhoseTextIsNoWholeNumberIsSavedOnce) {
    open("GPO1");
    sheet.grid().text(16, 1, "12.5");
    sheet.saveEntireTable();
    sheet.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12);
    EXPECT_EQ(sheet.cellsWritten(), 1);
}

TEST_F(TableWindow, WhatIsSavedAfterARestoreIsSentAgain) {
    open("VE");
    unit.ONFLY_MODE(true);
    cursor.select(16, 1, 16, 1);
    editor.enterValue("9");
    model.restore();
    host.sent.clear();
    sheet.grid().text(16, 1, "8");
    sheet.saveEntireTable();
    EXPECT_EQ(host.sent.size(), 1U);
}

TEST_F(TableWindow, RestoringBringsBackTheLastBuild) {
    unit.AssignDirectIndex(5, veBase + 20);
    open("VE");
    unit.ONFLY_MODE(true);
    cursor.select(15, 5, 15, 5);
    editor.enterValue("9");
    const auto sent = host.sent.size();
    model.restore();
    EXPECT_EQ(unit.DirectIndex(veBase + 20), 5);
    EXPECT_EQ(text(15, 5), "5");
    EXPECT_EQ(host.log.back(), "TBL: Data Restore Completed Successfully.");
    EXPECT_EQ(host.sent.size(), sent);
}

TEST_F(TableWindow, RestoringASmallTablePacksItsRows) {
    size(8, 8);
    for (int r = 0; r < 8; ++r) unit.AssignDirectIndex(static_cast<float>(r + 1), veBase + r * 16);
    open("VE");
    model.restore();
    // Two shown rows of 8 fill one stored row of 16.
    EXPECT_EQ(unit.DirectIndex(veBase), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 8), 2);
    EXPECT_EQ(unit.DirectIndex(veBase + 16), 3);
    EXPECT_EQ(unit.DirectIndex(veBase + 56), 8);
    EXPECT_EQ(unit.DirectIndex(veBase + 64), 0);
}

TEST_F(TableWindow, RestoringRaisesNoBoxForCellsThatNoBuildHasSeen) {
    size(8, 8);
    for (int i = 0; i < 256; ++i) unit.AssignDirectIndex(14.7F, afrBase + i);
    open("AFR");
    ASSERT_EQ(sheet.undoCopy(63), 14.64F);
    cursor.select(8, 1, 8, 1);
    editor.enterValue("12");
    EXPECT_TRUE(model.restore().empty());
    EXPECT_FLOAT_EQ(unit.DirectIndex(afrBase), 14.7F);
    EXPECT_EQ(unit.DirectIndex(afrBase + 255), 14.7F);
}

// ---- Stops that an output table does not take

/// Column 3 of the output tables cannot follow the speeds, and no cell shows it.
TEST_F(TableWindow, EveryBuildOfAnOutputTableWithoutStopsTellsThoseRefused) {
    open("GPO1");
    const auto withoutStops = [&](auto build) {
        for (int i = 0; i < 16; ++i) {
            unit.AssignDirectIndex(0, 2226 + i);
            unit.AssignDirectIndex(0, 2242 + i);
        }
        unit.AssignDirectIndex(30000, unit.find("RPMTBL")->cell(2));
        return told(build());
    };
    // For both output tables.
    const Refusals twice(2, "1001 (0 to 20000 RPM)");
    EXPECT_EQ(withoutStops([&] { return model.rebuild(); }), twice);
    EXPECT_EQ(withoutStops([&] { return model.home(); }), twice);
    EXPECT_EQ(withoutStops([&] { return model.reset(); }), twice);
    EXPECT_EQ(withoutStops([&] { return model.restore(); }), twice);
    EXPECT_EQ(withoutStops([&] { return model.showView(TableView::Values); }), twice);
    EXPECT_EQ(text(0, 3), "0");
    EXPECT_EQ(text(0, 4), "2000");
}

// ---- A table that cannot be shown

TEST_F(TableWindow, ANameThatIsNoTableChangesNothing) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    EXPECT_THROW(model.Setup_Grid("FUEL", "Fuel", true), NoSuchMember);
    EXPECT_EQ(sheet.table(), "VE");
    EXPECT_EQ(sheet.title(), "A table");
    EXPECT_FALSE(sheet.inverted());
    model.rebuild();
    EXPECT_EQ(text(16, 1), "7");
}

TEST_F(TableWindow, ATableWhoseSizeIsDamagedLeavesTheFormerOneWhole) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.togglePulsewidth();
    cursor.select(3, 3, 4, 4);
    const std::string shown = text(16, 1);
    unit.AssignDirectIndex(1e9F, 2294);  // rows of GPO1
    EXPECT_THROW(model.Setup_Grid("GPO1", "Full Table", false), Overflow);
    EXPECT_EQ(sheet.table(), "VE");
    EXPECT_EQ(estimates.view(), TableView::PulseWidth);
    EXPECT_EQ(text(16, 1), shown);
    EXPECT_EQ(cursor.selection().bottom, 4);
}

TEST_F(TableWindow, ADamagedAxisWordLeavesBothOutputTablesAsTheyWere) {
    unit.AssignDirectIndex(1e9F, 2291);  // axis kinds of GPO2; all stops are 0
    open("VE");
    EXPECT_THROW(model.Setup_Grid("GPO1", "Full Table", false), Overflow);
    EXPECT_EQ(unit.DirectIndex(2290), 0);
    EXPECT_EQ(unit.DirectIndex(2242), 0);
    EXPECT_EQ(sheet.table(), "VE");
}

}  // namespace
}  // namespace zentaq
