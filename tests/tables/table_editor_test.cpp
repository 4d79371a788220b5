// What a user does to the cells and headers of a table.
#include <cmath>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

// ---- Typing

TEST_F(TableWindow, ATypedValueGoesToEveryCellOfTheSelection) {
    open("VE");
    cursor.select(16, 2, 15, 1);
    EXPECT_TRUE(cursor.selection().present);
    ASSERT_TRUE(editor.enterValue("12,50"));
    for (const int index : {0, 1, 16, 17}) EXPECT_EQ(unit.DirectIndex(veBase + index), 12.5F) << index;
    EXPECT_EQ(unit.DirectIndex(veBase + 2), 0);
    EXPECT_EQ(text(15, 2), "12.5");
}

TEST_F(TableWindow, ChecksRunInOrderEmptyNumericRange) {
    open("VE");
    EXPECT_EQ(told(editor.enterValue(" ")), "1005 ");
    EXPECT_EQ(told(editor.enterValue("abc")), "1000 Retype Data");
    EXPECT_EQ(told(editor.enterValue("51")), "1001 (-50 to 50%)");
    EXPECT_EQ(told(editor.enterValue("-50.5")), "1001 (-50 to 50%)");
    EXPECT_TRUE(editor.enterValue("50"));
    EXPECT_TRUE(editor.enterValue("-50"));
}

TEST_F(TableWindow, RangeTextsOfTheTables) {
    const auto limits = [&](std::string_view table) {
        open(table);
        return sheet.typingLimits().text;
    };
    EXPECT_EQ(limits("AFR"), "(9.76 to 29.28 AFR)");
    EXPECT_EQ(limits("ADV"), "(10 to 70 Degrees)");
    EXPECT_EQ(limits("SPW"), "(0 to 100%)");
    EXPECT_EQ(limits("GPO1"), "(0 to 100%)");
    EXPECT_EQ(limits("VE"), "(-50 to 50%)");
    model.toggleAbsolute();
    EXPECT_EQ(sheet.typingLimits().text, "(50 to 150%)");
    unit.AssignDirectIndex(7.32F, test::afrCell);
    EXPECT_EQ(limits("AFR"), "(4.88 to 14.64 AFR)");
}

TEST_F(TableWindow, AdvanceIsTypedWithTheEnginesOffset) {
    open("ADV");
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("25"));
    EXPECT_EQ(unit.DirectIndex(advanceBase), 15);
    EXPECT_EQ(text(16, 1), "25");
    EXPECT_FALSE(editor.enterValue("9.9"));
}

TEST_F(TableWindow, AbsoluteViewTypesAround100) {
    open("VE");
    model.toggleAbsolute();
    cursor.select(16, 1, 16, 1);
    EXPECT_EQ(text(16, 1), "100");
    ASSERT_TRUE(editor.enterValue("112"));
    EXPECT_EQ(unit.DirectIndex(veBase), 12);
    EXPECT_EQ(text(16, 1), "112");
    EXPECT_FALSE(editor.enterValue("12"));
    EXPECT_EQ(told(editor.paste("13\t112")), Refusals{"1001 (50 to 150%)"});
    EXPECT_EQ(unit.DirectIndex(veBase), 12);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 12);
}

TEST_F(TableWindow, OnASmallTableTypingInTheLastRowWritesIndex0) {
    size(8, 8);
    open("VE");
    cursor.select(8, 1, 8, 1);
    ASSERT_TRUE(editor.enterValue("3"));
    EXPECT_EQ(unit.DirectIndex(veBase), 3);
}

TEST_F(TableWindow, TypedValuesGoToTheUnitAtOnceWhenOnTheFly) {
    open("VE");
    unit.ONFLY_MODE(true);
    unit.SILENT_MODE(true);
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("3"));
    EXPECT_EQ(host.sent.size(), 1U);
    editor.silentWrite(4, 0, true);
    EXPECT_EQ(host.sent.size(), 1U);
    EXPECT_EQ(unit.DirectIndex(veBase), 4);
}

TEST_F(TableWindow, LeavingTheBoxCopiesItsTextAndWritesNothing) {
    open("VE");
    cursor.moveTo(16, 1);
    editor.leaveEdit("99");
    EXPECT_EQ(text(16, 1), "99");
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
}

TEST_F(TableWindow, TheBoxOpensByItsFirstKey) {
    unit.AssignDirectIndex(12.5F, veBase);
    open("VE");
    cursor.moveTo(16, 1);
    EXPECT_EQ(editor.startEdit(' ')->text, "12.5");
    EXPECT_EQ(editor.startEdit(' ')->selectedCharacters, 10);
    EXPECT_EQ(editor.startEdit('7')->text, "7");
    EXPECT_EQ(editor.startEdit('-')->text, "-");
    for (const char key : std::string("!#$@OUX")) {
        EXPECT_FALSE(editor.startEdit(key)) << key;
        EXPECT_EQ(told(TableEditor::checkFirstKey(key)), "") << key;
    }
}

TEST_F(TableWindow, AFirstKeyThatIsNoNumberEndsEditingWithTheOverlayAsItWas) {
    open("VE");
    EXPECT_EQ(model.keyOnGrid('a'), KeyResult::StartEdit);
    EXPECT_TRUE(cursor.overlaySuppressed());
    EXPECT_FALSE(sheet.absoluteVe());
    EXPECT_FALSE(editor.startEdit('a'));
    EXPECT_EQ(told(TableEditor::checkFirstKey('a')), "1000 Retype Data");
    EXPECT_FALSE(cursor.overlaySuppressed());
}

TEST_F(TableWindow, TheBeginningsOfANumberMayBeTyped) {
    for (const char* text : {"", ",", "-,", "-.", "-", ".", " - ", "1.", "-1,5"}) {
        EXPECT_TRUE(TableEditor::mayBeTyped(text)) << text;
    }
    for (const char* text : {"a", "1a", "--", "1..2"}) EXPECT_FALSE(TableEditor::mayBeTyped(text)) << text;
}

TEST_F(TableWindow, AnEditEndsWithTheOverlayAsItWasWhateverTheNumberOfCells) {
    open("VE");
    cursor.select(16, 1, 15, 1);
    model.keyOnGrid('5');
    EXPECT_TRUE(cursor.overlaySuppressed());
    editor.enterValue("5");
    EXPECT_FALSE(cursor.overlaySuppressed());
    EXPECT_EQ(model.toolbarItems().overlayItem, "Turn Overlay OFF");
    model.keyOnGrid('O');
    EXPECT_EQ(model.toolbarItems().overlayItem, "Turn Overlay ON");
}

TEST_F(TableWindow, AnEditEndsWithTheOverlayAsItWasBeforeTheCursorWasHeld) {
    open("VE");
    cursor.hold();  // a click or an arrow key
    EXPECT_TRUE(cursor.overlaySuppressed());
    ASSERT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
    ASSERT_TRUE(editor.startEdit('5'));
    ASSERT_TRUE(editor.enterValue("5"));
    EXPECT_FALSE(cursor.overlaySuppressed());
}

TEST_F(TableWindow, AnOverlayThatWasSwitchedOffStaysOffAfterEveryKindOfEdit) {
    open("VE");
    model.keyOnGrid('O');
    for (const char* entry : {"5", "6"}) {
        cursor.hold();
        model.keyOnGrid('5');
        ASSERT_TRUE(editor.startEdit('5'));
        ASSERT_TRUE(editor.enterValue(entry));
        EXPECT_TRUE(cursor.overlaySuppressed());
    }
    press('.');
    EXPECT_TRUE(cursor.overlaySuppressed());
    editor.silentWrite(4, 0, true);
    EXPECT_TRUE(cursor.overlaySuppressed());
    model.restore();
    EXPECT_TRUE(cursor.overlaySuppressed());
    cursor.letGo();
    EXPECT_TRUE(cursor.overlaySuppressed());
    model.keyOnGrid('O');
    EXPECT_FALSE(cursor.overlaySuppressed());
}

TEST_F(TableWindow, KeyOLetsAHeldCursorFollowAgain) {
    open("VE");
    cursor.hold();
    model.keyOnGrid('O');
    EXPECT_FALSE(cursor.overlaySuppressed());
    cursor.letGo();
    EXPECT_FALSE(cursor.overlaySuppressed());
}

TEST_F(TableWindow, RefusedEntriesHoldTheCursorUntilTheEditEnds) {
    open("VE");
    cursor.select(3, 4, 3, 4);
    model.keyOnGrid('9');
    ASSERT_TRUE(editor.startEdit('9'));
    for (const char* entry : {"99", "", "abc"}) {
        EXPECT_FALSE(editor.enterValue(entry));
        EXPECT_TRUE(cursor.overlaySuppressed()) << entry;
    }
    cursor.letGo();
    EXPECT_FALSE(cursor.overlaySuppressed());
    for (int i = 0; i < 3; ++i) {
        model.keyOnGrid('a');
        EXPECT_FALSE(editor.startEdit('a'));
        EXPECT_FALSE(cursor.overlaySuppressed()) << i;
    }
}

TEST_F(TableWindow, AnEntryGoesToTheCellWhereTheEditBeganEvenIfTheOverlayIsSwitchedOnMeanwhile) {
    open("VE");
    cursor.select(16, 1, 16, 1);
    cursor.hold();
    model.keyOnGrid('4');
    ASSERT_TRUE(editor.startEdit('4'));
    cursor.toggleOverlay();
    ASSERT_FALSE(cursor.overlaySuppressed());
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(cursor.row(), 16);
    ASSERT_TRUE(editor.enterValue("44"));
    EXPECT_EQ(unit.DirectIndex(veBase), 44);
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(cursor.row(), 11);
}

TEST_F(TableWindow, LeavingTheBoxLetsTheCursorGo) {
    open("VE");
    cursor.select(16, 1, 16, 1);
    cursor.hold();
    ASSERT_TRUE(editor.startEdit(' '));
    editor.leaveEdit("4");
    EXPECT_FALSE(cursor.overlaySuppressed());
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(cursor.row(), 11);
}

TEST_F(TableWindow, NudgingAHeldCellGoesOnInThatCell) {
    open("VE");
    cursor.select(16, 1, 16, 1);
    cursor.hold();
    for (int i = 0; i < 3; ++i) {
        press('.');
        overlay.Show_Current_Activity(1200, 40);
    }
    EXPECT_EQ(unit.DirectIndex(veBase), 3);
    cursor.letGo();
    EXPECT_FALSE(cursor.overlaySuppressed());
    overlay.Show_Current_Activity(1200, 40);
    press('.');  // the cell of the engine, which the cursor goes on following
    EXPECT_EQ(unit.DirectIndex(veBase + 5 * 16 + 1), 1);
    EXPECT_FALSE(cursor.overlaySuppressed());
}

// ---- Nudging

TEST_F(TableWindow, FullStopAndCommaChangeByOne) {
    open("VE");
    cursor.select(16, 1, 16, 2);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 1);
    EXPECT_EQ(text(16, 2), "1");
    press(',');
    press(',');
    EXPECT_EQ(text(16, 1), "-1");
    EXPECT_FALSE(cursor.overlaySuppressed());
}

TEST_F(TableWindow, TargetRatiosChangeByATenth) {
    unit.set("Get_AFR", 12.2, 3);
    open("AFR");
    EXPECT_EQ(text(16, 4), "12.2");
    cursor.select(16, 4, 16, 4);
    press('.');
    EXPECT_EQ(text(16, 4), "12.3");
    EXPECT_FLOAT_EQ(unit.DirectIndex(afrBase + 3), 12.35041F);  // 12.3 * 14.7 / 14.64
    EXPECT_FLOAT_EQ(unit.get("AFR"), 14.64F);
}

TEST_F(TableWindow, NudgingStopsAtTheFirstCellThatWouldLeaveItsRange) {
    unit.AssignDirectIndex(50, veBase + 1);
    open("VE");
    cursor.select(16, 1, 16, 3);
    EXPECT_EQ(told(press('.')), "1001 (-50 to 50%)");
    EXPECT_EQ(unit.DirectIndex(veBase), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 50);
    EXPECT_EQ(unit.DirectIndex(veBase + 2), 0);
}

TEST_F(TableWindow, OnASmallTableNudgingTheLastRowWritesIndex128) {
    size(8, 8);
    open("VE");
    cursor.select(8, 1, 8, 1);
    press('.');
    EXPECT_EQ(unit.DirectIndex(veBase + 128), 1);
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
    EXPECT_EQ(text(8, 1), "1");
}

// ---- Headers

TEST_F(TableWindow, HeaderPromptsNameTheirAxis) {
    open("VE");
    EXPECT_EQ(editor.headerPrompt(0, 3), "Enter a New RPM Header Value...");
    EXPECT_EQ(editor.headerPrompt(3, 0), "Enter a New MAP Header Value...");
    EXPECT_FALSE(editor.headerPrompt(3, 3));
    EXPECT_FALSE(editor.headerPrompt(0, 0));
    resetGpoAxes(unit);
    unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "ACTUAL AFR");
    open("GPO1");
    EXPECT_EQ(editor.headerPrompt(3, 0), "Enter a New ACTUAL AFR Header Value...");
}

TEST_F(TableWindow, ANewSpeedHeaderMovesZonesAndWritesTheArrayOnePlaceOn) {
    open("VE");
    ASSERT_TRUE(editor.enterHeader(0, 2, "1100"));
    EXPECT_EQ(unit.get("RPMTBL", 1), 1100);
    EXPECT_EQ(text(0, 2), "1100");
    EXPECT_EQ(overlay.zones().column(1).high, 800);
    EXPECT_EQ(sheet.headers(true)[1], 1000);
    EXPECT_EQ(sheet.headers(true)[2], 1100);
    EXPECT_TRUE(editor.enterHeader(0, 16, "8100"));
}

TEST_F(TableWindow, ANewPressureHeaderFollowsInCellAndArray) {
    open("VE");
    ASSERT_TRUE(editor.enterHeader(15, 0, "22.5"));
    EXPECT_EQ(unit.get("MAPTBL", 1), 22.5F);
    EXPECT_EQ(text(15, 0), "22.5");
    EXPECT_EQ(sheet.headers(false)[1], 22.5F);
}

TEST_F(TableWindow, AHeaderOf0OrNothingIsIgnored) {
    open("VE");
    EXPECT_FALSE(editor.enterHeader(0, 2, "0"));
    EXPECT_FALSE(editor.enterHeader(0, 2, ""));
    EXPECT_FALSE(editor.enterHeader(0, 2, "20001"));
    EXPECT_EQ(text(0, 2), "1000");
    open("GPO1");
    EXPECT_FALSE(editor.enterHeader(0, 2, " "));
    EXPECT_TRUE(editor.enterHeader(0, 2, "0"));
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
    cursor.select(15, 1, 16, 2);
    EXPECT_EQ(editor.clip(), "1\t2\r3\t0");
}

TEST_F(TableWindow, PastingFillsFromTheCursorAndWritesTheGridBack) {
    open("VE");
    cursor.select(15, 15, 15, 15);
    EXPECT_TRUE(editor.paste("1\t2\t99\r\n3\t4\r\n5\t6\r\n").empty());
    EXPECT_EQ(unit.DirectIndex(veBase + 16 + 14), 1);
    EXPECT_EQ(unit.DirectIndex(veBase + 16 + 15), 2);
    EXPECT_EQ(unit.DirectIndex(veBase + 14), 3);
    EXPECT_EQ(unit.DirectIndex(veBase + 15), 4);
}

TEST_F(TableWindow, NothingIsPastedIntoAView) {
    open("VE");
    model.keyOnGrid('P');
    const std::string shown = text(16, 1);
    editor.paste("7");
    EXPECT_EQ(text(16, 1), shown);
    EXPECT_EQ(unit.DirectIndex(veBase), 0);
}

TEST_F(TableWindow, PastingStaysInsideASelectionOfMoreCells) {
    open("VE");
    cursor.select(15, 1, 15, 2);
    editor.paste("1\t2\t3\r4\t5\t6");
    EXPECT_EQ(text(15, 2), "2");
    EXPECT_EQ(text(15, 3), "0");
    EXPECT_EQ(text(16, 1), "0");
}

// ---- What no cell takes

TEST_F(TableWindow, OutputValuesOutOfRangeAreNotPasted) {
    for (const char* table : {"GPO1", "GPO2"}) {
        const int base = table == std::string_view("GPO1") ? 1680 : 1936;
        unit.AssignDirectIndex(33, base);
        open(table);
        unit.ONFLY_MODE(true);
        host.sent.clear();
        cursor.select(16, 1, 16, 1);
        EXPECT_EQ(told(editor.paste("500\t-20\t444\t99999\t 60 ")), Refusals(4, "1001 (0 to 100%)")) << table;
        EXPECT_EQ(unit.DirectIndex(base), 33) << table;
        for (const int i : {1, 2, 3}) EXPECT_EQ(unit.DirectIndex(base + i), 0) << table << i;
        EXPECT_EQ(unit.DirectIndex(base + 4), 60) << table;
        EXPECT_EQ(text(16, 1), "33") << table;
        EXPECT_EQ(text(16, 2), "0") << table;
        EXPECT_EQ(host.sent.size(), 1U) << table;
        unit.ONFLY_MODE(false);
    }
}

TEST_F(TableWindow, AnOutputTextLeftInTheBoxIsCheckedWhenItIsSaved) {
    unit.AssignDirectIndex(33, gpo1Base);
    open("GPO1");
    cursor.moveTo(16, 1);
    editor.leaveEdit("444");
    EXPECT_EQ(text(16, 1), "444");
    EXPECT_EQ(told(model.save()), Refusals{"1001 (0 to 100%)"});
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 33);
    EXPECT_EQ(text(16, 1), "33");
    EXPECT_TRUE(model.save().empty());
}

TEST_F(TableWindow, ARefusedCellShowsWhatIsStoredAndIsToldOnce) {
    unit.AssignDirectIndex(5, veBase);
    open("VE");
    sheet.grid().text(16, 1, "200");
    sheet.grid().text(16, 2, "7");
    sheet.grid().text(16, 3, "x");
    sheet.grid().text(16, 4, "");
    sheet.grid().text(16, 5, "-51");
    const std::vector<Refusal> refused = sheet.saveEntireTable();
    EXPECT_EQ(text(16, 1), "5");
    EXPECT_EQ(text(16, 2), "7");
    EXPECT_EQ(text(16, 3), "0");
    EXPECT_EQ(text(16, 4), "0");
    Refusals lines;
    for (const Refusal& refusal : refused) lines.push_back(refusal.brief());
    EXPECT_EQ(lines, (Refusals{"Invalid Entry: 200 -> (-50 to 50%), cell 16,1",
                               "Invalid Entry: no number, cell 16,3", "Invalid Entry: blank, cell 16,4",
                               "Invalid Entry: -51 -> (-50 to 50%), cell 16,5"}));
    EXPECT_EQ(unit.DirectIndex(veBase), 5);
    EXPECT_EQ(unit.DirectIndex(veBase + 1), 7);
    EXPECT_TRUE(sheet.saveEntireTable().empty());
}

TEST_F(TableWindow, ACellThatAFileHoldsOutOfRangeIsNoEntry) {
    unit.AssignDirectIndex(444, gpo1Base);
    unit.AssignDirectIndex(NAN, gpo1Base + 1);
    open("GPO1");
    EXPECT_TRUE(sheet.saveEntireTable().empty());
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 444);
    EXPECT_EQ(sheet.cellsWritten(), 0);
}

TEST_F(TableWindow, ThePastedCellsThatAreRefusedAreToldInTheirOrder) {
    open("VE");
    cursor.select(16, 1, 16, 1);
    EXPECT_EQ(told(editor.paste("x\t99\t")), (Refusals{"1000 Retype Data", "1001 (-50 to 50%)", "1005 "}));
    EXPECT_EQ(told(editor.paste("\t99")), (Refusals{"1005 ", "1001 (-50 to 50%)"}));
}

// 9.76 / 14.64 is 0.66667, and the cell takes 0.667 of the fuel's ratio or more.
TEST_F(TableWindow, ARatioThatOnlyTypingTakesIsRefusedOnceForTheWholeSelection) {
    for (int i = 0; i < 256; ++i) unit.AssignDirectIndex(14.7F, afrBase + i);
    open("AFR");
    cursor.select(1, 1, 16, 16);
    EXPECT_EQ(told(editor.enterValue("9.76")), "1001 (9.76488 to 29.28 AFR)");
    EXPECT_EQ(text(1, 1), "14.64");
    EXPECT_EQ(unit.DirectIndex(afrBase), 14.7F);
}

TEST_F(TableWindow, ANudgeIntoWhatOnlyTypingTakesStopsThere) {
    unit.set("AFR", 30);  // typing ends at 30 * 9.76 / 14.64 = 20, the cell at 0.667 * 30 = 20.01
    for (int i = 0; i < 256; ++i) unit.set("Get_AFR", 20.1, i);
    open("AFR");
    ASSERT_EQ(text(16, 1), "20.1");
    cursor.select(16, 1, 16, 16);
    EXPECT_EQ(told(editor.nudge(false)), "1001 (20.01 to 60 AFR)");
    EXPECT_EQ(text(16, 1), "20.1");
    EXPECT_NEAR(unit.get("Get_AFR", 0), 20.1, 1e-5);
}

TEST_F(TableWindow, DiscardingTellsOnceOfValuesThatTheTableNoLongerTakes) {
    for (int i = 0; i < 16; ++i) unit.AssignDirectIndex(444, gpo1Base + i);
    open("GPO1");
    cursor.select(16, 1, 16, 16);
    ASSERT_TRUE(editor.enterValue("50"));
    EXPECT_EQ(told(model.restore()), Refusals(16, "1001 (0 to 100%)"));
    EXPECT_EQ(unit.DirectIndex(gpo1Base), 50);
    EXPECT_EQ(text(16, 1), "50");
}

}  // namespace
}  // namespace zentaq
