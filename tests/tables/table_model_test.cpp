#include "tables/table_model.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/errors.h"

#include "live/calibration_fixture.h"

namespace zentaq {
namespace {

using Refusals = std::vector<std::string>;
using test::told;

constexpr int advanceBase = 656;
constexpr int veBase = 912;
constexpr int stagedBase = 1168;
constexpr int afrBase = 1424;
constexpr int gpo1Base = 1680;

/// Columns 500, 1000, ... 8000 rpm; rows 15, 20, ... 90 kPa from the bottom up.
class TableWindow : public testing::Test {
 protected:
    TableWindow()
        : calibration(3), unit(calibration.unit), host(calibration.host), model(unit, ecu, live, paints) {
        unit.AssignDirectIndex(14.64F, test::afrCell);
        unit.AssignDirectIndex(10, test::moffsetCell);
        unit.AssignDirectIndex(10, 148);    // scale1
        unit.AssignDirectIndex(0.5F, 150);  // INJ_On
        for (int i = 0; i < 16; ++i) {
            unit.set("RPMTBL", 500.0 * (i + 1), i);
            unit.set("MAPTBL", 15.0 + 5 * i, i);
        }
    }
    void size(int rows, int columns) {
        unit.SET_TBL_DIMENSIONS("VE", "ROWS", rows);
        unit.SET_TBL_DIMENSIONS("VE", "COLS", columns);
    }
    void open(std::string_view table) { model.Setup_Grid(table, "A table", false); }
    EntryOutcome press(char key) {
        return model.keyOnGrid(key) == KeyResult::Nudge ? model.nudge(key == '.') : EntryOutcome();
    }
    const std::string& text(int row, int column) { return model.grid().text(row, column); }

    test::Calibration calibration;
    Unit& unit;
    test::NotingHost& host;
    Ecu ecu;
    LiveValues live;
    PaintMemory paints;
    TableModel model;
};

// ---- Building

TEST_F(TableWindow, ShowsTheLowestStoredRowAtTheBottom) {
    unit.AssignDirectIndex(7, veBase);                    // stored row 0, column 0
    unit.AssignDirectIndex(-8.5F, veBase + 15 * 16 + 2);  // stored row 15, column 2
    open("VE");
    EXPECT_EQ(model.rows(), 16);
    EXPECT_EQ(model.columns(), 16);
    EXPECT_EQ(text(16, 1), "7");
    EXPECT_EQ(text(1, 3), "-8.5");
    EXPECT_EQ(text(16, 0), "15");
    EXPECT_EQ(text(1, 0), "90");
    EXPECT_EQ(text(0, 1), "500");
    EXPECT_EQ(text(0, 16), "8000");
    EXPECT_EQ(model.rowHeaders()[0], 15);
    EXPECT_EQ(model.columnHeaders()[15], 8000);
    EXPECT_EQ(model.title(), "A table");
}

TEST_F(TableWindow, AnEmptyNameOrTitleKeepsTheCurrentOne) {
    open("ADV");
    model.Setup_Grid("", "", false);
    EXPECT_EQ(model.table(), "ADV");
    EXPECT_EQ(model.title(), "A table");
}

TEST_F(TableWindow, InvertedShowsTheLowestRowOnTop) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.invert();
    EXPECT_EQ(text(1, 1), "7");
    EXPECT_EQ(text(1, 0), "15");
    EXPECT_EQ(model.tableIndex(1, 1), 0);
    model.select(1, 1, 1, 1);
    ASSERT_TRUE(model.enterValue("9"));
    EXPECT_EQ(unit.DirectIndex(veBase), 9);
    model.home();
    EXPECT_EQ(text(16, 1), "9");
}

TEST_F(TableWindow, SavingAnInvertedGridDoesNotTurnTheTableOver) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.invert();
    model.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(veBase), 7);
    EXPECT_EQ(unit.DirectIndex(veBase + 15 * 16), 0);
}

TEST_F(TableWindow, ASmallTableKeepsTheStoredStrideOf16) {
    size(8, 9);
    unit.AssignDirectIndex(5, veBase + 7 * 16 + 8);
    open("VE");
    EXPECT_EQ(model.rows(), 8);
    EXPECT_EQ(model.columns(), 9);
    EXPECT_EQ(text(1, 9), "5");
    EXPECT_EQ(model.tableIndex(1, 1), 7 * 16);
    EXPECT_EQ(model.tableIndex(8, 1), 0);
}

TEST_F(TableWindow, CopiesAreFilledByARunningCountOfShownCells) {
    size(8, 8);
    unit.AssignDirectIndex(5, veBase + 16);  // stored row 1, column 0: the ninth shown cell
    open("VE");
    EXPECT_EQ(model.undoCopy(8), 5);
    EXPECT_EQ(model.baseCopy(8), 5);
    EXPECT_EQ(model.undoCopy(16), 0);
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
    host.showsFahrenheit = true;
    open("GPO1");
    EXPECT_EQ(text(16, 0), "68.1");  // 68.07
    EXPECT_EQ(text(0, 1), "500");
}

// ---- Access by grid row

TEST_F(TableWindow, ValuesByRowCountFromTheTopAndColumnsFromZero) {
    size(8, 16);
    unit.AssignDirectIndex(5, veBase + 7 * 16 + 3);
    open("VE");
    EXPECT_EQ(model.get_BinValue("VE", 1, 3), 5);
    EXPECT_EQ(model.get_BinValue("VE", -9, 0), 0);  // index 272
    model.set_BinValue("VE", 8, 0, 4);
    EXPECT_EQ(unit.DirectIndex(veBase), 4);
    model.set_BinValue("VE", -9, 0, 4);
    model.set_BinValue("VE", 9, 0, 4);
    EXPECT_EQ(unit.DirectIndex(veBase + 256), 0);
    EXPECT_EQ(unit.DirectIndex(veBase - 16), 0);
}

// ---- Typing

TEST_F(TableWindow, ATypedValueGoesToEveryCellOfTheSelection) {
    open("VE");
    model.select(16, 2, 15, 1);
    EXPECT_TRUE(model.selection().present);
    ASSERT_TRUE(model.enterValue("12,50"));
    for (const int index : {0, 1, 16, 17}) EXPECT_EQ(unit.DirectIndex(veBase + index), 12.5F) << index;
    EXPECT_EQ(unit.DirectIndex(veBase + 2), 0);
    EXPECT_EQ(text(15, 2), "12.5");
}

TEST_F(TableWindow, ChecksRunInOrderEmptyNumericRange) {
    open("VE");
    EXPECT_EQ(told(model.enterValue(" ")), "1005 ");
    EXPECT_EQ(told(model.enterValue("abc")), "1000 Retype Data");
    EXPECT_EQ(told(model.enterValue("51")), "1001 (-50 to 50%)");
    EXPECT_EQ(told(model.enterValue("-50.5")), "1001 (-50 to 50%)");
    EXPECT_TRUE(model.enterValue("50"));
    EXPECT_TRUE(model.enterValue("-50"));
}

TEST_F(TableWindow, RangeTextsOfTheTables) {
    const auto limits = [&](std::string_view table) {
        open(table);
        return model.typingLimits().text;
    };
    EXPECT_EQ(limits("AFR"), "(9.76 to 29.28 AFR)");
    EXPECT_EQ(limits("ADV"), "(10 to 70 Degrees)");
    EXPECT_EQ(limits("SPW"), "(0 to 100%)");
    EXPECT_EQ(limits("GPO1"), "(0 to 100%)");
    EXPECT_EQ(limits("VE"), "(-50 to 50%)");
    model.toggleAbsolute();
    EXPECT_EQ(model.typingLimits().text, "(50 to 150%)");
    unit.AssignDirectIndex(7.32F, test::afrCell);
    EXPECT_EQ(limits("AFR"), "(4.88 to 14.64 AFR)");
}

TEST_F(TableWindow, AdvanceIsTypedWithTheEnginesOffset) {
    open("ADV");
    model.select(16, 1, 16, 1);
    ASSERT_TRUE(model.enterValue("25"));
    EXPECT_EQ(unit.DirectIndex(advanceBase), 15);
    EXPECT_FALSE(model.enterValue("9.9"));
}

TEST_F(TableWindow, AbsoluteViewTypesAround100) {
    open("VE");
    model.toggleAbsolute();
    model.select(16, 1, 16, 1);
    EXPECT_EQ(text(16, 1), "100");
    ASSERT_TRUE(model.enterValue("112"));
    EXPECT_EQ(unit.DirectIndex(veBase), 12);
    EXPECT_EQ(text(16, 1), "112");
    EXPECT_FALSE(model.enterValue("12"));
}

TEST_F(TableWindow, OnASmallTableTypingInTheLastRowWritesIndex0) {
    size(8, 8);
    open("VE");
    model.select(8, 1, 8, 1);
    ASSERT_TRUE(model.enterValue("3"));
    EXPECT_EQ(unit.DirectIndex(veBase), 3);
}

TEST_F(TableWindow, TypedValuesGoToTheUnitAtOnceWhenOnTheFly) {
    open("VE");
    unit.ONFLY_MODE(true);
    unit.SILENT_MODE(true);
    model.select(16, 1, 16, 1);
    ASSERT_TRUE(model.enterValue("3"));
    EXPECT_EQ(host.records.size(), 1U);
    model.silentWrite(4, 0, true);
    EXPECT_EQ(host.records.size(), 1U);
    EXPECT_EQ(unit.DirectIndex(veBase), 4);
}

TEST_F(TableWindow, LeavingTheBoxCopiesItsTextAndWritesNothing) {
    open("VE");
    model.moveTo(16, 1);
    model.leaveEdit("99");
    EXPECT_EQ(text(16, 1), "99");
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
}

TEST_F(TableWindow, TheBoxOpensByItsFirstKey) {
    unit.AssignDirectIndex(12.5F, veBase);
    open("VE");
    model.moveTo(16, 1);
    EXPECT_EQ(model.startEdit(' ')->text, "12.5");
    EXPECT_EQ(model.startEdit(' ')->selectedCharacters, 10);
    EXPECT_EQ(model.startEdit('7')->text, "7");
    EXPECT_EQ(model.startEdit('-')->text, "-");
    for (const char key : std::string("!#$@OUX")) {
        EXPECT_FALSE(model.startEdit(key)) << key;
        EXPECT_EQ(told(TableModel::checkFirstKey(key)), "") << key;
    }
}

TEST_F(TableWindow, AFirstKeyThatIsNoNumberEndsEditingWithTheOverlayAsItWas) {
    open("VE");
    EXPECT_EQ(model.keyOnGrid('a'), KeyResult::StartEdit);
    EXPECT_TRUE(model.overlaySuppressed());
    EXPECT_FALSE(model.absoluteVe());
    EXPECT_FALSE(model.startEdit('a'));
    EXPECT_EQ(told(TableModel::checkFirstKey('a')), "1000 Retype Data");
    EXPECT_FALSE(model.overlaySuppressed());
}

TEST_F(TableWindow, TheBeginningsOfANumberMayBeTyped) {
    for (const char* text : {"", ",", "-,", "-.", "-", ".", " - ", "1.", "-1,5"}) {
        EXPECT_TRUE(TableModel::mayBeTyped(text)) << text;
    }
    for (const char* text : {"a", "1a", "--", "1..2"}) EXPECT_FALSE(TableModel::mayBeTyped(text)) << text;
}

TEST_F(TableWindow, AnEditEndsWithTheOverlayAsItWasWhateverTheNumberOfCells) {
    open("VE");
    model.select(16, 1, 15, 1);
    model.keyOnGrid('5');
    EXPECT_TRUE(model.overlaySuppressed());
    model.enterValue("5");
    EXPECT_FALSE(model.overlaySuppressed());
    EXPECT_EQ(model.toolbarItems().overlayItem, "Turn Overlay OFF");
    model.keyOnGrid('O');
    EXPECT_EQ(model.toolbarItems().overlayItem, "Turn Overlay ON");
}

TEST_F(TableWindow, AnEditEndsWithTheOverlayAsItWasBeforeTheCursorWasHeld) {
    open("VE");
    model.holdCursor();  // a click or an arrow key
    EXPECT_TRUE(model.overlaySuppressed());
    ASSERT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
    ASSERT_TRUE(model.startEdit('5'));
    ASSERT_TRUE(model.enterValue("5"));
    EXPECT_FALSE(model.overlaySuppressed());
}

TEST_F(TableWindow, AnOverlayThatWasSwitchedOffStaysOffAfterEveryKindOfEdit) {
    open("VE");
    model.keyOnGrid('O');
    for (const char* entry : {"5", "6"}) {
        model.holdCursor();
        model.keyOnGrid('5');
        ASSERT_TRUE(model.startEdit('5'));
        ASSERT_TRUE(model.enterValue(entry));
        EXPECT_TRUE(model.overlaySuppressed());
    }
    press('.');
    EXPECT_TRUE(model.overlaySuppressed());
    model.silentWrite(4, 0, true);
    EXPECT_TRUE(model.overlaySuppressed());
    model.restore();
    EXPECT_TRUE(model.overlaySuppressed());
    model.letCursorGo();
    EXPECT_TRUE(model.overlaySuppressed());
    model.keyOnGrid('O');
    EXPECT_FALSE(model.overlaySuppressed());
}

TEST_F(TableWindow, KeyOLetsAHeldCursorFollowAgain) {
    open("VE");
    model.holdCursor();
    model.keyOnGrid('O');
    EXPECT_FALSE(model.overlaySuppressed());
    model.letCursorGo();
    EXPECT_FALSE(model.overlaySuppressed());
}

TEST_F(TableWindow, RefusedEntriesHoldTheCursorUntilTheEditEnds) {
    open("VE");
    model.select(3, 4, 3, 4);
    model.keyOnGrid('9');
    ASSERT_TRUE(model.startEdit('9'));
    for (const char* entry : {"99", "", "abc"}) {
        EXPECT_FALSE(model.enterValue(entry));
        EXPECT_TRUE(model.overlaySuppressed()) << entry;
    }
    model.letCursorGo();
    EXPECT_FALSE(model.overlaySuppressed());
    for (int i = 0; i < 3; ++i) {
        model.keyOnGrid('a');
        EXPECT_FALSE(model.startEdit('a'));
        EXPECT_FALSE(model.overlaySuppressed()) << i;
    }
}

TEST_F(TableWindow, AnEntryGoesToTheCellWhereTheEditBeganEvenIfTheOverlayIsSwitchedOnMeanwhile) {
    open("VE");
    model.select(16, 1, 16, 1);
    model.holdCursor();
    model.keyOnGrid('4');
    ASSERT_TRUE(model.startEdit('4'));
    model.toggleOverlay();
    ASSERT_FALSE(model.overlaySuppressed());
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.currentRow(), 16);
    ASSERT_TRUE(model.enterValue("44"));
    EXPECT_EQ(unit.DirectIndex(veBase), 44);
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.currentRow(), 11);
}

TEST_F(TableWindow, LeavingTheBoxLetsTheCursorGo) {
    open("VE");
    model.select(16, 1, 16, 1);
    model.holdCursor();
    ASSERT_TRUE(model.startEdit(' '));
    model.leaveEdit("4");
    EXPECT_FALSE(model.overlaySuppressed());
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.currentRow(), 11);
}

TEST_F(TableWindow, NudgingAHeldCellGoesOnInThatCell) {
    open("VE");
    model.select(16, 1, 16, 1);
    model.holdCursor();
    for (int i = 0; i < 3; ++i) {
        press('.');
        model.Show_Current_Activity(1200, 40);
    }
    EXPECT_EQ(unit.DirectIndex(veBase), 3);
    model.letCursorGo();
    EXPECT_FALSE(model.overlaySuppressed());
    model.Show_Current_Activity(1200, 40);
    press('.');  // the cell of the engine, which the cursor goes on following
    EXPECT_EQ(unit.DirectIndex(veBase + 5 * 16 + 1), 1);
    EXPECT_FALSE(model.overlaySuppressed());
}

// ---- Nudging

TEST_F(TableWindow, FullStopAndCommaChangeByOne) {
    open("VE");
    model.select(16, 1, 16, 2);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 1);
    EXPECT_EQ(text(16, 2), "1");
    press(',');
    press(',');
    EXPECT_EQ(text(16, 1), "-1");
    EXPECT_FALSE(model.overlaySuppressed());
}

TEST_F(TableWindow, TargetRatiosChangeByATenth) {
    unit.set("Get_AFR", 12.2, 3);
    open("AFR");
    EXPECT_EQ(text(16, 4), "12.2");
    model.select(16, 4, 16, 4);
    press('.');
    EXPECT_EQ(text(16, 4), "12.3");
    EXPECT_FLOAT_EQ(unit.DirectIndex(afrBase + 3), 12.35041F);  // 12.3 * 14.7 / 14.64
    EXPECT_FLOAT_EQ(unit.get("AFR"), 14.64F);
}

TEST_F(TableWindow, NudgingStopsAtTheFirstCellThatWouldLeaveItsRange) {
    unit.AssignDirectIndex(50, veBase + 1);
    open("VE");
    model.select(16, 1, 16, 3);
    EXPECT_EQ(told(press('.')), "1001 (-50 to 50%)");
    EXPECT_EQ(unit.DirectIndex(veBase), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 50);
    EXPECT_EQ(unit.DirectIndex(veBase + 2), 0);
}

TEST_F(TableWindow, OnASmallTableNudgingTheLastRowWritesIndex128) {
    size(8, 8);
    open("VE");
    model.select(8, 1, 8, 1);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase + 128), 1);
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
    EXPECT_EQ(text(8, 1), "1");
}

// ---- Views

TEST_F(TableWindow, PulseWidthViewShowsOnTimesAndTheirAlarms) {
    unit.AssignDirectIndex(20, veBase);
    unit.AssignDirectIndex(3, 151);  // MT
    open("VE");
    model.keyOnGrid('P');
    // 15 kPa: (0.05295 * 15 - 0.54738) / 5 = 0.049374; 0.5 + 1.2 * 10 * 0.049374 = 1.0925
    EXPECT_EQ(text(16, 1), "1.09");
    EXPECT_EQ(model.grid().colour(16, 1), 255);
    // 90 kPa: (4.7655 - 0.54738) / 5 = 0.843624; 0.5 + 8.43624 = 8.9362
    EXPECT_EQ(text(1, 16), "8.94");
    EXPECT_EQ(model.grid().colour(1, 16), TableGrid::white);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::Ignored);
    EXPECT_FALSE(model.headerPrompt(0, 1));
    model.keyOnGrid('P');
    EXPECT_EQ(text(16, 1), "20");
}

TEST_F(TableWindow, DutyViewMarks100PercentAndAbove) {
    open("VE");
    model.keyOnGrid('D');
    // 8.9362 ms of 15 ms at 8000 rpm in two turns = 59.6
    EXPECT_EQ(text(1, 16), "60");
    unit.AssignDirectIndex(1, 2205);  // PHDSEQ: injection in every turn
    model.refreshEstimates();
    model.showView(TableView::DutyCycle);
    EXPECT_EQ(text(1, 16), "119");
    EXPECT_EQ(model.grid().colour(1, 16), 255);
    EXPECT_EQ(model.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, OneViewTakesThePlaceOfTheOther) {
    open("SPW");
    model.keyOnGrid('P');
    EXPECT_EQ(model.view(), TableView::PulseWidth);
    model.keyOnGrid('D');
    EXPECT_EQ(model.view(), TableView::DutyCycle);
    model.home();
    EXPECT_EQ(model.view(), TableView::Values);
}

TEST_F(TableWindow, AnotherTableBeginsWithItsValues) {
    open("VE");
    model.keyOnGrid('P');
    open("ADV");
    EXPECT_EQ(model.view(), TableView::Values);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
}

TEST_F(TableWindow, StagedOnTimesCarryTheStagedShareAndNoAlarm) {
    unit.AssignDirectIndex(50, stagedBase + 255);
    unit.AssignDirectIndex(100, 151);  // MT
    open("SPW");
    model.keyOnGrid('P');
    EXPECT_EQ(text(1, 16), "4.47");  // 8.9362 / 2
    EXPECT_EQ(model.grid().colour(1, 16), TableGrid::white);
}

TEST_F(TableWindow, NudgingInAViewChangesTheTableValue) {
    open("VE");
    model.keyOnGrid('P');
    model.select(1, 16, 1, 16);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase + 255), 1);
    EXPECT_EQ(text(1, 16), "9.02");  // 0.5 + 1.01 * 8.43624 = 9.0206
}

TEST_F(TableWindow, SavingFromAViewWritesValuesNotOnTimes) {
    unit.AssignDirectIndex(20, veBase);
    open("VE");
    model.keyOnGrid('P');
    model.save();
    EXPECT_EQ(unit.DirectIndex(veBase), 20);
    EXPECT_EQ(model.view(), TableView::Values);
}

TEST_F(TableWindow, AbsoluteTogglesOnlyOnVeAndEndsAView) {
    open("VE");
    model.keyOnGrid('P');
    model.keyOnGrid('A');
    EXPECT_TRUE(model.absoluteVe());
    EXPECT_EQ(model.view(), TableView::Values);
    open("SPW");
    EXPECT_EQ(model.keyOnGrid('A'), KeyResult::StartEdit);
    EXPECT_TRUE(model.absoluteVe());
}

TEST_F(TableWindow, TimesBesideTheGridAreCheckedAndStored) {
    open("VE");
    EXPECT_EQ(model.timeOfGap(), "10");
    EXPECT_EQ(model.injectorOn(), "0.5");
    EXPECT_EQ(told(model.enterTime("scale1", "")), "1005 ");
    EXPECT_EQ(told(model.enterTime("scale1", "x")), "1000 Retype Data");
    EXPECT_TRUE(model.enterTime("scale1", "20"));
    EXPECT_EQ(host.log.back(), "Change Accepted");
    EXPECT_FLOAT_EQ(ecu.pulseWidthMs(255), 17.37248F);  // 0.5 + 20 * 0.843624
    EXPECT_TRUE(model.enterTime("INJ_On", "0.56"));
    EXPECT_EQ(model.injectorOn(), "0.5");  // steps of an eighth: 4.48 rounds to 4
}

// ---- Headers

TEST_F(TableWindow, HeaderPromptsNameTheirAxis) {
    open("VE");
    EXPECT_EQ(model.headerPrompt(0, 3), "Enter a New RPM Header Value...");
    EXPECT_EQ(model.headerPrompt(3, 0), "Enter a New MAP Header Value...");
    EXPECT_FALSE(model.headerPrompt(3, 3));
    EXPECT_FALSE(model.headerPrompt(0, 0));
    resetGpoAxes(unit);
    unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "ACTUAL AFR");
    open("GPO1");
    EXPECT_EQ(model.headerPrompt(3, 0), "Enter a New ACTUAL AFR Header Value...");
}

TEST_F(TableWindow, ANewSpeedHeaderMovesZonesAndWritesTheArrayOnePlaceOn) {
    open("VE");
    ASSERT_TRUE(model.enterHeader(0, 2, "1100"));
    EXPECT_EQ(unit.get("RPMTBL", 1), 1100);
    EXPECT_EQ(text(0, 2), "1100");
    EXPECT_EQ(model.zones().column(1).high, 800);
    EXPECT_EQ(model.columnHeaders()[1], 1000);
    EXPECT_EQ(model.columnHeaders()[2], 1100);
    EXPECT_TRUE(model.enterHeader(0, 16, "8100"));
}

TEST_F(TableWindow, ANewPressureHeaderFollowsInCellAndArray) {
    open("VE");
    ASSERT_TRUE(model.enterHeader(15, 0, "22.5"));
    EXPECT_EQ(unit.get("MAPTBL", 1), 22.5F);
    EXPECT_EQ(text(15, 0), "22.5");
    EXPECT_EQ(model.rowHeaders()[1], 22.5F);
}

TEST_F(TableWindow, AHeaderOf0OrNothingIsIgnored) {
    open("VE");
    EXPECT_FALSE(model.enterHeader(0, 2, "0"));
    EXPECT_FALSE(model.enterHeader(0, 2, ""));
    EXPECT_FALSE(model.enterHeader(0, 2, "20001"));
    EXPECT_EQ(text(0, 2), "1000");
    open("GPO1");
    EXPECT_FALSE(model.enterHeader(0, 2, " "));
    EXPECT_TRUE(model.enterHeader(0, 2, "0"));
    EXPECT_EQ(unit.Get_GPO_Stop(1, "X-Axis", "GPO1"), 0);
}

TEST_F(TableWindow, PickingAnAxisKindSpreadsItsStops) {
    open("GPO1");
    model.pickAxis("Y_TPS");
    EXPECT_EQ(unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "TPS");
    EXPECT_EQ(text(16, 0), "0");
    EXPECT_EQ(text(1, 0), "5");
    EXPECT_EQ(text(0, 1), "500");
    EXPECT_EQ(model.toolbarItems().rowAxis, "Y: TPS");
    EXPECT_EQ(model.toolbarItems().columnAxis, "X: RPM");
}

// ---- Clipboard

TEST_F(TableWindow, CopyingTakesTheSelectionAsTabsAndLines) {
    unit.AssignDirectIndex(1, veBase + 16);
    unit.AssignDirectIndex(2, veBase + 17);
    unit.AssignDirectIndex(3, veBase);
    open("VE");
    model.select(15, 1, 16, 2);
    EXPECT_EQ(model.clip(), "1\t2\r3\t0");
}

TEST_F(TableWindow, PastingFillsFromTheCursorAndWritesTheGridBack) {
    open("VE");
    model.select(15, 15, 15, 15);
    EXPECT_TRUE(model.paste("1\t2\t99\r\n3\t4\r\n5\t6\r\n").empty());
    EXPECT_EQ(unit.DirectIndex(veBase + 16 + 14), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 16 + 15), 2);
    EXPECT_EQ(unit.DirectIndex(veBase + 14), 3);
    EXPECT_EQ(unit.DirectIndex(veBase + 15), 4);
}

TEST_F(TableWindow, PastedCellsThatAreRefusedShowWhatIsStored) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    model.select(16, 1, 16, 1);
    model.paste("99\t 6 \tx");
    EXPECT_EQ(text(16, 1), "5");
    EXPECT_EQ(text(16, 2), "6");
    EXPECT_EQ(text(16, 3), "0");
    EXPECT_EQ(model.cellsWritten(), 1);
}

TEST_F(TableWindow, NothingIsPastedIntoAView) {
    open("VE");
    model.keyOnGrid('P');
    const std::string shown = text(16, 1);
    model.paste("7");
    EXPECT_EQ(text(16, 1), shown);
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
}

TEST_F(TableWindow, PastingStaysInsideASelectionOfMoreCells) {
    open("VE");
    model.select(15, 1, 15, 2);
    model.paste("1\t2\t3\r4\t5\t6");
    EXPECT_EQ(text(15, 2), "2");
    EXPECT_EQ(text(15, 3), "0");
    EXPECT_EQ(text(16, 1), "0");
}

// ---- The whole grid

TEST_F(TableWindow, ASelectionOfAHeaderNeverChangesTheHeader) {
    open("VE");
    model.select(0, 1, 1, 1);
    ASSERT_TRUE(model.enterValue("5"));
    EXPECT_EQ(text(0, 1), "500");
    EXPECT_EQ(text(1, 1), "5");
}

TEST_F(TableWindow, AShrinkingTableTakesItsCursorAndSelectionAlong) {
    open("VE");
    model.select(16, 16, 15, 16);
    size(8, 8);
    model.rebuild();
    EXPECT_EQ(model.currentRow(), 1);
    EXPECT_FALSE(model.selection().present);
    EXPECT_TRUE(model.enterValue("5"));
    EXPECT_EQ(unit.DirectIndex(veBase + 7 * 16), 5);
}

TEST_F(TableWindow, SavingKeepsTheStoredValueOfARefusedCell) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    model.grid().text(16, 1, "200");
    model.grid().text(16, 2, "7");
    model.grid().text(16, 3, "");
    model.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(veBase), 5);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 7);
    EXPECT_EQ(unit.DirectIndex(veBase + 2), 0);
}

TEST_F(TableWindow, SavingSendsOnlyTheCellsWhoseValueDiffers) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    unit.ONFLY_MODE(true);
    model.saveEntireTable();
    EXPECT_TRUE(host.records.empty());
    EXPECT_EQ(model.cellsWritten(), 0);
    model.grid().text(16, 1, "5.0");  // the value it has
    model.grid().text(15, 2, "-7");   // stored row 1, column 1: address 4352 + 912 + 17 = 0x14A1
    model.saveEntireTable();
    // -7 + 50 = 43 = 0x2B; 0x04 + 0x14 + 0xA1 + 0x2B = 0xE4, inverted 0x1B
    EXPECT_EQ(host.records, std::vector<std::string>{"S10414A12B1B"});
    EXPECT_EQ(model.cellsWritten(), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 17), -7);
}

TEST_F(TableWindow, SavingKeepsTheDigitsThatACellDoesNotShow) {
    unit.AssignDirectIndex(12.3456F, afrBase);
    open("AFR");
    EXPECT_EQ(text(16, 1), "12.3");  // 12.3456 * 14.64 / 14.7 = 12.2952
    model.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(afrBase), 12.3456F);
}

TEST_F(TableWindow, AnOutputCellWhoseTextIsNoWholeNumberIsSavedOnce) {
    open("GPO1");
    model.grid().text(16, 1, "12.5");
    model.saveEntireTable();
    model.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12);
    EXPECT_EQ(model.cellsWritten(), 1);
}

TEST_F(TableWindow, WhatIsSavedAfterARestoreIsSentAgain) {
    open("VE");
    unit.ONFLY_MODE(true);
    model.select(16, 1, 16, 1);
    model.enterValue("9");
    model.restore();
    host.records.clear();
    model.grid().text(16, 1, "8");
    model.saveEntireTable();
    EXPECT_EQ(host.records.size(), 1U);
}

TEST_F(TableWindow, RestoringBringsBackTheLastBuild) {
    unit.AssignDirectIndex(5, veBase + 20);
    open("VE");
    unit.ONFLY_MODE(true);
    model.select(15, 5, 15, 5);
    model.enterValue("9");
    const auto sent = host.records.size();
    model.restore();
    EXPECT_EQ(unit.DirectIndex(veBase + 20), 5);
    EXPECT_EQ(text(15, 5), "5");
    EXPECT_EQ(host.log.back(), "TBL: Data Restore Completed Successfully.");
    EXPECT_EQ(host.records.size(), sent);
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
    ASSERT_EQ(model.undoCopy(63), 14.64F);
    model.select(8, 1, 8, 1);
    model.enterValue("12");
    EXPECT_TRUE(model.restore().empty());
    EXPECT_FLOAT_EQ(unit.DirectIndex(afrBase), 14.7F);
    EXPECT_EQ(unit.DirectIndex(afrBase + 255), 14.7F);
}

// ---- Colours and the live point

TEST_F(TableWindow, OnlyVeIsShadedByValue) {
    unit.AssignDirectIndex(50, veBase);
    unit.AssignDirectIndex(-50, veBase + 1);
    open("VE");
    EXPECT_EQ(model.grid().colour(16, 1), 256 * 255);
    EXPECT_EQ(model.grid().colour(16, 2), 255);
    EXPECT_EQ(model.grid().colour(16, 3), TableGrid::white);
    model.colorizeGraph(true);
    EXPECT_EQ(model.grid().colour(16, 1), TableGrid::white);
    unit.AssignDirectIndex(50, stagedBase);
    open("SPW");
    EXPECT_EQ(model.grid().colour(16, 1), TableGrid::white);
}

// Shades by hand: 256 - 256 * 25 / 50 = 128 is the rest of the other two parts at +25 and -25.
constexpr std::int32_t halfGreen = 128 + 256 * 255 + 65536 * 128;
constexpr std::int32_t halfRed = 255 + 256 * 128 + 65536 * 128;

TEST_F(TableWindow, AShadeFollowsATypedValueAtOnce) {
    open("VE");
    model.select(15, 1, 16, 1);
    ASSERT_TRUE(model.enterValue("25"));
    EXPECT_EQ(model.grid().colour(15, 1), halfGreen);
    EXPECT_EQ(model.grid().colour(16, 1), halfGreen);
    EXPECT_EQ(model.grid().colour(16, 2), TableGrid::white);
    ASSERT_TRUE(model.enterValue("0"));
    EXPECT_EQ(model.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, AShadeFollowsInTheAbsoluteViewAndUpsideDown) {
    open("VE");
    model.toggleAbsolute();
    model.invert();
    model.select(1, 1, 1, 1);
    ASSERT_TRUE(model.enterValue("75"));
    // Below 100 towards red: 256 - 256 * -75 / 50 = 640, and 640 mod 256 = 128.
    EXPECT_EQ(model.grid().colour(1, 1), halfRed);
}

TEST_F(TableWindow, AShadeFollowsANudge) {
    unit.AssignDirectIndex(26, veBase);
    open("VE");
    model.select(16, 1, 16, 1);
    press(',');
    EXPECT_EQ(model.grid().colour(16, 1), halfGreen);
}

TEST_F(TableWindow, AShadeFollowsPastedAndSavedValues) {
    open("VE");
    model.select(16, 1, 16, 1);
    model.paste("25\t-25\t99");
    EXPECT_EQ(model.grid().colour(16, 1), halfGreen);
    EXPECT_EQ(model.grid().colour(16, 2), halfRed);
    EXPECT_EQ(model.grid().colour(16, 3), TableGrid::white);
    model.moveTo(16, 4);
    model.leaveEdit("25");
    EXPECT_EQ(model.grid().colour(16, 4), TableGrid::white);
    model.save();
    EXPECT_EQ(model.grid().colour(16, 4), halfGreen);
}

TEST_F(TableWindow, APaintedCellKeepsItsPaintWhenItsValueChanges) {
    open("VE");
    model.Show_Current_Activity(1200, 40);
    ASSERT_TRUE(model.enterValue("25"));
    EXPECT_EQ(unit.DirectIndex(veBase + 5 * 16 + 1), 25);
    EXPECT_EQ(model.grid().colour(11, 2), 0x00FFFF);
}

TEST_F(TableWindow, TypingShadesNoOtherTableThanVe) {
    open("SPW");
    model.select(16, 1, 16, 1);
    ASSERT_TRUE(model.enterValue("25"));
    EXPECT_EQ(model.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, TheLivePointPaintsYellowAndIsRemembered) {
    open("SPW");
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.currentRow(), 11);
    EXPECT_EQ(model.currentColumn(), 2);
    EXPECT_EQ(model.grid().colour(11, 2), 0x00FFFF);
    EXPECT_EQ(paints.at(11, 2), Paint::Yellow);
    open("SPW");
    EXPECT_EQ(model.grid().colour(11, 2), 0x00FFFF);
    model.whiteOut();
    EXPECT_EQ(model.grid().colour(11, 2), TableGrid::white);
}

TEST_F(TableWindow, TheMarkerStandsBetweenHeaders) {
    open("VE");
    model.Show_Current_Activity(1200, 42);
    EXPECT_TRUE(model.marker().visible);
    EXPECT_DOUBLE_EQ(model.marker().column, 2.4);
    EXPECT_NEAR(model.marker().row, 10.6, 1e-6);  // 42 kPa: 0.4 of a row above grid row 11
    model.Show_Current_Activity(100, 200);
    EXPECT_DOUBLE_EQ(model.marker().column, 1);
    EXPECT_DOUBLE_EQ(model.marker().row, 1);
}

TEST_F(TableWindow, BothZeroTakesTheLiveValues) {
    live.RPM = 1200;
    live.MAP = 40;
    open("VE");
    model.Show_Current_Activity(0, 0);
    EXPECT_EQ(model.currentRow(), 11);
    EXPECT_EQ(model.currentColumn(), 2);
}

TEST_F(TableWindow, SuppressedOverlayMovesTheMarkerOnly) {
    open("VE");
    model.moveTo(3, 3);
    model.Set_KeyDownFlag(true);
    model.Show_Current_Activity(1200, 40);
    EXPECT_DOUBLE_EQ(model.marker().column, 2.4);
    EXPECT_EQ(model.currentRow(), 3);
    EXPECT_EQ(paints.at(11, 2), Paint::White);
}

TEST_F(TableWindow, TypingIntoASelectedBlockBeginsInTheBlockWhereverTheEngineIs) {
    open("VE");
    model.select(3, 4, 5, 6);
    model.Show_Current_Activity(1200, 40);
    ASSERT_EQ(model.currentRow(), 11);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
    EXPECT_EQ(model.currentRow(), 3);
    EXPECT_EQ(model.currentColumn(), 4);
    model.leaveEdit("5");
    EXPECT_EQ(text(3, 4), "5");
    EXPECT_EQ(text(11, 2), "0");
}

TEST_F(TableWindow, WhileTheTableTunesItselfTheCursorMovesButNothingIsPainted) {
    open("VE");
    model.autoVeActive(true);
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.currentRow(), 11);
    EXPECT_EQ(paints.at(11, 2), Paint::White);
}

struct RatioPaint {
    float actual;
    std::int32_t shown;
    Paint remembered;
};

class RatioColours : public TableWindow, public testing::WithParamInterface<RatioPaint> {};

TEST_P(RatioColours, FollowActualAgainstDesiredWithYellowAndGreenCrossed) {
    live.DAFR = 14;
    live.AAFR = GetParam().actual;
    open("SPW");
    model.colourMode(TableColour::Afr);
    model.Show_Current_Activity(1200, 40);
    EXPECT_EQ(model.grid().colour(11, 2), GetParam().shown);
    EXPECT_EQ(paints.at(11, 2), GetParam().remembered);
}

INSTANTIATE_TEST_SUITE_P(
    Ratios, RatioColours,
    testing::Values(RatioPaint{13, 0x00FFFF, Paint::Green}, RatioPaint{13.5F, 0x00FF00, Paint::Yellow},
                    RatioPaint{14.25F, 0x00FF00, Paint::Yellow}, RatioPaint{14.5F, 0x0000FF, Paint::Red},
                    RatioPaint{15, 0x0000FF, Paint::Red}, RatioPaint{14, 0xFF0000, Paint::Blue}));

TEST_F(TableWindow, OutputTablesFollowTheLiveValuesOfTheirAxisKinds) {
    live.CLT = 50;
    live.TPS = 2.5F;
    open("GPO1");
    model.pickAxis("X_TPS");  // 0, 0.3, 0.7, 1, ...: 2.5 lies between 2.3 and 2.7
    model.pickAxis("Y_RAW MAP");
    model.Show_Current_Activity(0, 0);
    EXPECT_NEAR(model.marker().column, 8.5, 1e-5);
    // A raw pressure axis follows the coolant: 50 between 48.1 and 54.4.
    EXPECT_NEAR(model.marker().row, 16 - (6 + (50 - 48.1) / (54.4 - 48.1)), 1e-5);
}

TEST_F(TableWindow, AnAxisOnAPinFollowsItsDisplayedNumber) {
    open("GPO1");
    model.pickAxis("X_GPIO2");
    unit.GPIODisplay()[1] = "40%";
    live.MAP = 40;
    model.Show_Current_Activity(0, 0);
    EXPECT_NEAR(model.marker().column, 7, 1e-5);  // stops of 6.667: the seventh is 40
}

TEST_F(TableWindow, ATemperatureAxisInFahrenheitIsFollowedInFahrenheit) {
    resetGpoAxes(unit);
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "CLT");
    for (int i = 0; i < 16; ++i) unit.AssignDirectIndex(static_cast<float>(10 * i), 2242 + i);
    host.showsFahrenheit = true;
    live.CLT = 45;
    live.MAP = 40;
    open("GPO1");
    EXPECT_EQ(text(0, 5), "104");
    model.Show_Current_Activity(0, 0);
    EXPECT_NEAR(model.marker().column, 5.5, 1e-5);
}

TEST_F(TableWindow, BeyondTheLastColumnOfASmallTableTheCursorDoesNotMove) {
    size(8, 8);
    open("VE");
    model.moveTo(3, 3);
    model.Show_Current_Activity(9000, 40);  // asks for column 16
    EXPECT_EQ(model.currentColumn(), 3);
    EXPECT_DOUBLE_EQ(model.marker().column, 8);
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
    model.select(1, 1, 2, 2);
    EXPECT_FALSE(model.popupItems().rowsAndColumns);
    EXPECT_TRUE(model.popupItems().interpolateAndSmooth);
    model.select(1, 1, 1, 1);
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
    model.select(16, 1, 16, 1);
    ASSERT_TRUE(model.enterValue("12.5"));
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12);
    EXPECT_EQ(text(16, 1), "12");
}

TEST_F(TableWindow, AnOutputCellOfAFileIsShownAsWholePercentAndKeepsItsDigits) {
    unit.AssignDirectIndex(12.7F, gpo1Base);
    open("GPO1");
    EXPECT_EQ(text(16, 1), "13");
    model.saveEntireTable();
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 12.7F);
}

// ---- What no cell takes

TEST_F(TableWindow, OutputValuesOutOfRangeAreNotPasted) {
    for (const char* table : {"GPO1", "GPO2"}) {
        const int base = table == std::string_view("GPO1") ? 1680 : 1936;
        unit.AssignDirectIndex(33, base);
        open(table);
        unit.ONFLY_MODE(true);
        host.records.clear();
        model.select(16, 1, 16, 1);
        EXPECT_EQ(told(model.paste("500\t-20\t444\t99999\t60")), Refusals(4, "1001 (0 to 100%)")) << table;
        EXPECT_EQ(unit.DirectIndex(base), 33) << table;
        for (const int i : {1, 2, 3}) EXPECT_EQ(unit.DirectIndex(base + i), 0) << table << i;
        EXPECT_EQ(unit.DirectIndex(base + 4), 60) << table;
        EXPECT_EQ(text(16, 1), "33") << table;
        EXPECT_EQ(text(16, 2), "0") << table;
        EXPECT_EQ(host.records.size(), 1U) << table;
        unit.ONFLY_MODE(false);
    }
}

TEST_F(TableWindow, AnOutputTextLeftInTheBoxIsCheckedWhenItIsSaved) {
    unit.AssignDirectIndex(33, gpo1Base);
    open("GPO1");
    model.moveTo(16, 1);
    model.leaveEdit("444");
    EXPECT_EQ(text(16, 1), "444");
    EXPECT_EQ(told(model.save()), Refusals{"1001 (0 to 100%)"});
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 33);
    EXPECT_EQ(text(16, 1), "33");
    EXPECT_TRUE(model.save().empty());
}

TEST_F(TableWindow, ARefusedCellShowsWhatIsStoredAndIsToldOnce) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    model.grid().text(16, 1, "200");
    model.grid().text(16, 2, "7");
    model.grid().text(16, 3, "x");
    model.grid().text(16, 4, "");
    model.grid().text(16, 5, "-51");
    const std::vector<Refusal> refused = model.saveEntireTable();
    EXPECT_EQ(text(16, 1), "5");
    EXPECT_EQ(text(16, 2), "7");
    EXPECT_EQ(text(16, 3), "0");
    EXPECT_EQ(text(16, 4), "0");
    Refusals lines;
    for (const Refusal& refusal : refused) lines.push_back(refusal.brief());
    EXPECT_EQ(lines, (Refusals{"Invalid Entry: 200 -> (-50 to 50%)", "Invalid Entry: no number",
                               "Invalid Entry: blank", "Invalid Entry: -51 -> (-50 to 50%)"}));
    EXPECT_TRUE(model.saveEntireTable().empty());
}

TEST_F(TableWindow, ACellThatAFileHoldsOutOfRangeIsNoEntry) {
    unit.AssignDirectIndex(444, gpo1Base);
    unit.AssignDirectIndex(NAN, gpo1Base + 1);
    open("GPO1");
    EXPECT_TRUE(model.saveEntireTable().empty());
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 444);
    EXPECT_EQ(model.cellsWritten(), 0);
}

TEST_F(TableWindow, ThePastedCellsThatAreRefusedAreToldInTheirOrder) {
    open("VE");
    model.select(16, 1, 16, 1);
    EXPECT_EQ(told(model.paste("x\t99\t")), (Refusals{"1000 Retype Data", "1001 (-50 to 50%)", "1005 "}));
    EXPECT_EQ(told(model.paste("\t99")), (Refusals{"1005 ", "1001 (-50 to 50%)"}));
}

TEST_F(TableWindow, PastingInTheAbsoluteViewIsCheckedAround100) {
    open("VE");
    model.toggleAbsolute();
    model.select(16, 1, 16, 1);
    EXPECT_EQ(told(model.paste("12\t112")), Refusals{"1001 (50 to 150%)"});
    EXPECT_EQ(text(16, 1), "100");
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 12);
}

// 9.76 / 14.64 is 0.66667, and the cell takes 0.667 of the fuel's ratio or more.
TEST_F(TableWindow, ARatioThatOnlyTypingTakesIsRefusedOnceForTheWholeSelection) {
    for (int i = 0; i < 256; ++i) unit.AssignDirectIndex(14.7F, afrBase + i);
    open("AFR");
    model.select(1, 1, 16, 16);
    EXPECT_EQ(told(model.enterValue("9.76")), "1001 (9.76488 to 29.28 AFR)");
    EXPECT_EQ(text(1, 1), "14.64");
    EXPECT_EQ(unit.DirectIndex(afrBase), 14.7F);
}

TEST_F(TableWindow, ANudgeIntoWhatOnlyTypingTakesStopsThere) {
    unit.set("AFR", 30);  // typing ends at 30 * 9.76 / 14.64 = 20, the cell at 0.667 * 30 = 20.01
    for (int i = 0; i < 256; ++i) unit.set("Get_AFR", 20.1, i);
    open("AFR");
    ASSERT_EQ(text(16, 1), "20.1");
    model.select(16, 1, 16, 16);
    EXPECT_EQ(told(model.nudge(false)), "1001 (20.01 to 60 AFR)");
    EXPECT_EQ(text(16, 1), "20.1");
    EXPECT_NEAR(unit.get("Get_AFR", 0), 20.1, 1e-5);
}

TEST_F(TableWindow, DiscardingTellsOnceOfValuesThatTheTableNoLongerTakes) {
    for (int i = 0; i < 16; ++i) unit.AssignDirectIndex(444, gpo1Base + i);
    open("GPO1");
    model.select(16, 1, 16, 16);
    ASSERT_TRUE(model.enterValue("50"));
    EXPECT_EQ(told(model.restore()), Refusals(16, "1001 (0 to 100%)"));
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 50);
    EXPECT_EQ(text(16, 1), "50");
}

// ---- A table that cannot be shown

TEST_F(TableWindow, ANameThatIsNoTableChangesNothing) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    EXPECT_THROW(model.Setup_Grid("FUEL", "Fuel", true), NoSuchMember);
    EXPECT_EQ(model.table(), "VE");
    EXPECT_EQ(model.title(), "A table");
    EXPECT_FALSE(model.inverted());
    model.rebuild();
    EXPECT_EQ(text(16, 1), "7");
}

TEST_F(TableWindow, ATableWhoseSizeIsDamagedLeavesTheFormerOneWhole) {
    unit.AssignDirectIndex(7, veBase);
    open("VE");
    model.togglePulsewidth();
    model.select(3, 3, 4, 4);
    const std::string shown = text(16, 1);
    unit.AssignDirectIndex(1e9F, 2294);  // rows of GPO1
    EXPECT_THROW(model.Setup_Grid("GPO1", "Full Table", false), Overflow);
    EXPECT_EQ(model.table(), "VE");
    EXPECT_EQ(model.view(), TableView::PulseWidth);
    EXPECT_EQ(text(16, 1), shown);
    EXPECT_EQ(model.selection().bottom, 4);
}

TEST_F(TableWindow, ADamagedAxisWordLeavesBothOutputTablesAsTheyWere) {
    unit.AssignDirectIndex(1e9F, 2291);  // axis kinds of GPO2; all stops are 0
    open("VE");
    EXPECT_THROW(model.Setup_Grid("GPO1", "Full Table", false), Overflow);
    EXPECT_EQ(unit.DirectIndex(2290), 0);
    EXPECT_EQ(unit.DirectIndex(2242), 0);
    EXPECT_EQ(model.table(), "VE");
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
    EXPECT_TRUE(model.absoluteVe());
    EXPECT_EQ(text(16, 1), whole);
}

}  // namespace
}  // namespace zentaq
