// Shades by value and the live point over them.
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

// ---- Colours and the live point

TEST_F(TableWindow, OnlyVeIsShadedByValue) {
    unit.AssignDirectIndex(50, veBase);
    unit.AssignDirectIndex(-50, veBase + 1);
    open("VE");
    EXPECT_EQ(sheet.grid().colour(16, 1), 256 * 255);
    EXPECT_EQ(sheet.grid().colour(16, 2), 255);
    EXPECT_EQ(sheet.grid().colour(16, 3), TableGrid::white);
    overlay.colorizeGraph(true);
    EXPECT_EQ(sheet.grid().colour(16, 1), TableGrid::white);
    unit.AssignDirectIndex(50, stagedBase);
    open("SPW");
    EXPECT_EQ(sheet.grid().colour(16, 1), TableGrid::white);
}

// Shades by hand: 256 - 256 * 25 / 50 = 128 is the rest of the other two parts at +25 and -25.
constexpr std::int32_t halfGreen = 128 + 256 * 255 + 65536 * 128;
constexpr std::int32_t halfRed = 255 + 256 * 128 + 65536 * 128;

TEST_F(TableWindow, AShadeFollowsATypedValueAtOnce) {
    open("VE");
    cursor.select(15, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("25"));
    EXPECT_EQ(sheet.grid().colour(15, 1), halfGreen);
    EXPECT_EQ(sheet.grid().colour(16, 1), halfGreen);
    EXPECT_EQ(sheet.grid().colour(16, 2), TableGrid::white);
    ASSERT_TRUE(editor.enterValue("0"));
    EXPECT_EQ(sheet.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, AShadeFollowsInTheAbsoluteViewAndUpsideDown) {
    open("VE");
    model.toggleAbsolute();
    model.invert();
    cursor.select(1, 1, 1, 1);
    ASSERT_TRUE(editor.enterValue("75"));
    // Below 100 towards red: 256 - 256 * -75 / 50 = 640, and 640 mod 256 = 128.
    EXPECT_EQ(sheet.grid().colour(1, 1), halfRed);
}

TEST_F(TableWindow, AShadeFollowsANudge) {
    unit.AssignDirectIndex(26, veBase);
    open("VE");
    cursor.select(16, 1, 16, 1);
    press(',');
    EXPECT_EQ(sheet.grid().colour(16, 1), halfGreen);
}

TEST_F(TableWindow, AShadeFollowsPastedAndSavedValues) {
    open("VE");
    cursor.select(16, 1, 16, 1);
    editor.paste("25\t-25\t99");
    EXPECT_EQ(sheet.grid().colour(16, 1), halfGreen);
    EXPECT_EQ(sheet.grid().colour(16, 2), halfRed);
    EXPECT_EQ(sheet.grid().colour(16, 3), TableGrid::white);
    cursor.moveTo(16, 4);
    editor.leaveEdit("25");
    EXPECT_EQ(sheet.grid().colour(16, 4), TableGrid::white);
    model.save();
    EXPECT_EQ(sheet.grid().colour(16, 4), halfGreen);
}

TEST_F(TableWindow, APaintedCellKeepsItsPaintWhenItsValueChanges) {
    open("VE");
    overlay.Show_Current_Activity(1200, 40);
    ASSERT_TRUE(editor.enterValue("25"));
    EXPECT_EQ(unit.DirectIndex(veBase + 5 * 16 + 1), 25);
    EXPECT_EQ(sheet.grid().colour(11, 2), 0x00FFFF);
}

TEST_F(TableWindow, TypingShadesNoOtherTableThanVe) {
    open("SPW");
    cursor.select(16, 1, 16, 1);
    ASSERT_TRUE(editor.enterValue("25"));
    EXPECT_EQ(text(16, 1), "25");
    EXPECT_EQ(sheet.grid().colour(16, 1), TableGrid::white);
}

TEST_F(TableWindow, TheLivePointPaintsYellowAndIsRemembered) {
    open("SPW");
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(cursor.row(), 11);
    EXPECT_EQ(cursor.column(), 2);
    EXPECT_EQ(sheet.grid().colour(11, 2), 0x00FFFF);
    EXPECT_EQ(paints.at(11, 2), Paint::Yellow);
    open("SPW");
    EXPECT_EQ(sheet.grid().colour(11, 2), 0x00FFFF);
    overlay.whiteOut();
    EXPECT_EQ(sheet.grid().colour(11, 2), TableGrid::white);
}

TEST_F(TableWindow, TheMarkerStandsBetweenHeaders) {
    open("VE");
    overlay.Show_Current_Activity(1200, 42);
    EXPECT_TRUE(overlay.marker().visible);
    EXPECT_DOUBLE_EQ(overlay.marker().column, 2.4);
    EXPECT_NEAR(overlay.marker().row, 10.6, 1e-6);  // 42 kPa: 0.4 of a row above grid row 11
    overlay.Show_Current_Activity(100, 200);
    EXPECT_DOUBLE_EQ(overlay.marker().column, 1);
    EXPECT_DOUBLE_EQ(overlay.marker().row, 1);
}

TEST_F(TableWindow, BothZeroTakesTheLiveValues) {
    live.RPM = 1200;
    live.MAP = 40;
    open("VE");
    overlay.Show_Current_Activity(0, 0);
    EXPECT_EQ(cursor.row(), 11);
    EXPECT_EQ(cursor.column(), 2);
}

TEST_F(TableWindow, SuppressedOverlayMovesTheMarkerOnly) {
    open("VE");
    cursor.moveTo(3, 3);
    cursor.Set_KeyDownFlag(true);
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_DOUBLE_EQ(overlay.marker().column, 2.4);
    EXPECT_EQ(cursor.row(), 3);
    EXPECT_EQ(paints.at(11, 2), Paint::White);
}

TEST_F(TableWindow, TypingIntoASelectedBlockBeginsInTheBlockWhereverTheEngineIs) {
    open("VE");
    cursor.select(3, 4, 5, 6);
    overlay.Show_Current_Activity(1200, 40);
    ASSERT_EQ(cursor.row(), 11);
    EXPECT_EQ(model.keyOnGrid('5'), KeyResult::StartEdit);
    EXPECT_EQ(cursor.row(), 3);
    EXPECT_EQ(cursor.column(), 4);
    editor.leaveEdit("5");
    EXPECT_EQ(text(3, 4), "5");
    EXPECT_EQ(text(11, 2), "0");
}

TEST_F(TableWindow, WhileTheTableTunesItselfTheCursorMovesButNothingIsPainted) {
    open("VE");
    overlay.autoVeActive(true);
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(cursor.row(), 11);
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
    overlay.colourMode(TableColour::Afr);
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(sheet.grid().colour(11, 2), GetParam().shown);
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
    overlay.Show_Current_Activity(0, 0);
    EXPECT_NEAR(overlay.marker().column, 8.5, 1e-5);
    // A raw pressure axis follows the coolant: 50 between 48.1 and 54.4.
    EXPECT_NEAR(overlay.marker().row, 16 - (6 + (50 - 48.1) / (54.4 - 48.1)), 1e-5);
}

TEST_F(TableWindow, AnAxisOnAPinFollowsItsDisplayedNumber) {
    open("GPO1");
    model.pickAxis("X_GPIO2");
    unit.GPIODisplay()[1] = "40%";
    live.MAP = 40;
    overlay.Show_Current_Activity(0, 0);
    EXPECT_NEAR(overlay.marker().column, 7, 1e-5);  // stops of 6.667: the seventh is 40
}

TEST_F(TableWindow, ATemperatureAxisInFahrenheitIsFollowedInFahrenheit) {
    resetGpoAxes(unit);
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "CLT");
    for (int i = 0; i < 16; ++i) unit.AssignDirectIndex(static_cast<float>(10 * i), 2242 + i);
    host.isFahrenheit = true;
    live.CLT = 45;
    live.MAP = 40;
    open("GPO1");
    EXPECT_EQ(text(0, 5), "104");
    overlay.Show_Current_Activity(0, 0);
    EXPECT_NEAR(overlay.marker().column, 5.5, 1e-5);
}

TEST_F(TableWindow, BeyondTheLastColumnOfASmallTableTheCursorDoesNotMove) {
    size(8, 8);
    open("VE");
    cursor.moveTo(3, 3);
    overlay.Show_Current_Activity(9000, 40);  // asks for column 16
    EXPECT_EQ(cursor.column(), 3);
    EXPECT_DOUBLE_EQ(overlay.marker().column, 8);
}

}  // namespace
}  // namespace zentaq
