// The views of a table, its estimates, and what the window offers.
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

// ---- Views

TEST_F(TableWindow, PulseWidthViewShowsOnTimesAndTheirAlarms) {
    unit.AssignDirectIndex(20, veBase);
    unit.AssignDirectIndex(3, 151);  // MT
    open("VE");
    model.keyOnGrid('P');
    // 15 kPa: (0.05295 * 15 - 0.54738) / 5 = 0.049374; 0.5 + 1.2 * 10 * 0.049374 = 1.0925
    EXPECT_EQ(text(16, 1), "1.09");
    EXPECT_EQ(sheet.grid().colour(16, 1), 255);
    // 90 kPa: (4.7655 - 0.54738) / 5 = 0.843624; 0.5 + 8.43624 = 8.9362
    EXPECT_EQ(text(1, 16), "8.94");
    EXPECT_EQ(sheet.grid().colour(1, 16), TableGrid::white);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::Ignored);
    EXPECT_FALSE(editor.headerPrompt(0, 1));
    model.keyOnGrid('P');
    EXPECT_EQ(text(16, 1), "20");
}

TEST_F(TableWindow, DutyViewMarks100PercentAndAbove) {
    open("VE");
    model.keyOnGrid('D');
    // 8.9362 ms of 15 ms at 8000 rpm in two turns = 59.6
    EXPECT_EQ(text(1, 16), "60");
    unit.AssignDirectIndex(1, 2205);  // PHDSEQ: injection in every turn
    estimates.refresh();
    model.showView(TableView::DutyCycle);
    EXPECT_EQ(text(1, 16), "119");
    EXPECT_EQ(sheet.grid().colour(1, 16), 255);
    EXPECT_EQ(sheet.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, OneViewTakesThePlaceOfTheOther) {
    open("SPW");
    model.keyOnGrid('P');
    EXPECT_EQ(estimates.view(), TableView::PulseWidth);
    model.keyOnGrid('D');
    EXPECT_EQ(estimates.view(), TableView::DutyCycle);
    model.home();
    EXPECT_EQ(estimates.view(), TableView::Values);
}

TEST_F(TableWindow, AnotherTableBeginsWithItsValues) {
    open("VE");
    model.keyOnGrid('P');
    open("ADV");
    EXPECT_EQ(estimates.view(), TableView::Values);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
}

TEST_F(TableWindow, StagedOnTimesCarryTheStagedShareAndNoAlarm) {
    unit.AssignDirectIndex(50, stagedBase + 255);
    unit.AssignDirectIndex(100, 151);  // MT
    open("SPW");
    model.keyOnGrid('P');
    EXPECT_EQ(text(1, 16), "4.47");  // 8.9362 / 2
    EXPECT_EQ(sheet.grid().colour(1, 16), TableGrid::white);
}

TEST_F(TableWindow, NudgingInAViewChangesTheTableValue) {
    open("VE");
    model.keyOnGrid('P');
    cursor.select(1, 16, 1, 16);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase + 255), 1);
    EXPECT_EQ(sheet.cellsWritten(), 1);
    EXPECT_EQ(text(1, 16), "9.02");  // 0.5 + 1.01 * 8.43624 = 9.0206
}

TEST_F(TableWindow, SavingFromAViewWritesValuesNotOnTimes) {
    unit.AssignDirectIndex(20, veBase);
    open("VE");
    model.keyOnGrid('P');
    model.save();
    EXPECT_EQ(unit.DirectIndex(veBase), 20);
    EXPECT_EQ(estimates.view(), TableView::Values);
}

TEST_F(TableWindow, AbsoluteTogglesOnlyOnVeAndEndsAView) {
    open("VE");
    model.keyOnGrid('P');
    model.keyOnGrid('A');
    EXPECT_TRUE(sheet.absoluteVe());
    EXPECT_EQ(estimates.view(), TableView::Values);
    open("SPW");
    EXPECT_EQ(model.keyOnGrid('A'), KeyResult::StartEdit);
    EXPECT_TRUE(sheet.absoluteVe());
}

TEST_F(TableWindow, TimesBesideTheGridAreCheckedAndStored) {
    open("VE");
    EXPECT_EQ(estimates.timeOfGap(), "10");
    EXPECT_EQ(estimates.injectorOn(), "0.5");
    EXPECT_EQ(told(model.enterTime("scale1", "")), "1005 ");
    EXPECT_EQ(told(model.enterTime("scale1", "x")), "1000 Retype Data");
    EXPECT_TRUE(model.enterTime("scale1", "20"));
    EXPECT_EQ(host.log.back(), "Change Accepted");
    EXPECT_FLOAT_EQ(ecu.pulseWidthMs(255), 17.37248F);  // 0.5 + 20 * 0.843624
    EXPECT_TRUE(model.enterTime("INJ_On", "0.56"));
    EXPECT_EQ(estimates.injectorOn(), "0.5");  // steps of an eighth: 4.48 rounds to 4
}

// ---- What the window offers

TEST_F(TableWindow, RowAndColumnCommandsDependOnFirmwareSelectionAndSize) {
    open("VE");
    EXPECT_TRUE(model.popupItems().rowsAndColumns);
    EXPECT_FALSE(model.popupItems().newColumn);
    EXPECT_TRUE(model.popupItems().removeColumn);
    size(8, 9);
    open("VE");
    EXPECT_TRUE(model.popupItems().newRow);
    EXPECT_FALSE(model.popupItems().removeRow);
    EXPECT_TRUE(model.popupItems().removeColumn);
    cursor.select(1, 1, 2, 2);
    EXPECT_FALSE(model.popupItems().rowsAndColumns);
    EXPECT_TRUE(model.popupItems().interpolateAndSmooth);
    cursor.select(1, 1, 1, 1);
    EXPECT_FALSE(model.popupItems().interpolateAndSmooth);
    unit.FW_Release(4);
    EXPECT_FALSE(model.popupItems().rowsAndColumns);
}

TEST_F(TableWindow, TheToolbarFollowsTheTable) {
    open("VE");
    EXPECT_TRUE(model.toolbarItems().fuelViews);
    EXPECT_EQ(model.toolbarItems().displayCaption, "VE %");
    open("ADV");
    EXPECT_FALSE(model.toolbarItems().fuelViews);
    EXPECT_EQ(model.toolbarItems().displayCaption, "Table Adv");
    open("GPO2");
    EXPECT_TRUE(model.toolbarItems().axisButtons);
    EXPECT_EQ(model.toolbarItems().displayCaption, "");
}

TEST_F(TableWindow, KeyXAsksToUnload) {
    open("VE");
    EXPECT_EQ(model.keyOnGrid('X'), KeyResult::Unload);
    EXPECT_EQ(model.keyOnGrid('7'), KeyResult::StartEdit);
}

TEST_F(TableWindow, OutputCellsStoreAndShowWholePercent) {
    open("GPO1");
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("12.5"));
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12);
    EXPECT_EQ(text(16, 1), "12");
}

TEST_F(TableWindow, AnOutputCellOfAFileIsShownAsWholePercentAndKeepsItsDigits) {
    unit.AssignDirectIndex(12.7F, gpo1Base);
    open("GPO1");
    EXPECT_EQ(text(16, 1), "13");
    sheet.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12.7F);
}

// ---- Estimates

TEST_F(TableWindow, StagedOnTimesAreItsOwnAfterTheAbsoluteViewOfVe) {
    for (int i = 0; i < 256; ++i) unit.AssignDirectIndex(50, stagedBase + i);
    open("SPW");
    model.togglePulsewidth();
    const std::string staged = text(16, 1);
    open("VE");
    model.toggleAbsolute();
    open("VE");
    model.togglePulsewidth();
    const std::string whole = text(16, 1);
    ASSERT_NE(whole, staged);
    open("SPW");
    model.togglePulsewidth();
    EXPECT_EQ(text(16, 1), staged);
    open("VE");
    model.togglePulsewidth();
    EXPECT_TRUE(sheet.absoluteVe());
    EXPECT_EQ(text(16, 1), whole);
}

}  // namespace
}  // namespace zentaq
