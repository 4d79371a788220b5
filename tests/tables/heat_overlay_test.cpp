// The heat scale on the cells of a table, below the live point's trail.
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

class HeatTable : public TableWindow {
 protected:
    HeatTable() { overlay.heatScale(true); }
    std::int32_t colour(int row, int column) { return sheet.grid().colour(row, column); }
    static constexpr std::int32_t trailYellow = 0x00FFFF;
};

TEST_F(HeatTable, AllSixTablesAreColouredByTheirValues) {
    struct Table {
        const char* name;
        int base;
        float low;
        float high;
    };
    constexpr int gpo2Base = 1936;
    for (const Table& table : {Table{"ADV", advanceBase, 10, 40},
                               {"VE", veBase, -50, 50},
                               {"SPW", stagedBase, 0, 100},
                               {"AFR", afrBase, 10, 16},
                               {"GPO1", gpo1Base, 0, 80},
                               {"GPO2", gpo2Base, 0, 80}}) {
        for (int i = 0; i < 256; ++i) unit.AssignDirectIndex((table.low + table.high) / 2, table.base + i);
        unit.AssignDirectIndex(table.low, table.base);
        unit.AssignDirectIndex(table.high, table.base + 1);
        open(table.name);
        EXPECT_EQ(colour(16, 1), heatColour(0)) << table.name;
        EXPECT_EQ(colour(16, 2), heatColour(1)) << table.name;
        EXPECT_EQ(colour(16, 3), heatColour(0.5)) << table.name;
        EXPECT_EQ(colour(1, 16), heatColour(0.5)) << table.name;
    }
}

TEST_F(HeatTable, WithoutTheScaleTheTablesAreAsTheyWere) {
    unit.AssignDirectIndex(50, stagedBase);
    unit.AssignDirectIndex(50, veBase);
    overlay.heatScale(false);
    open("SPW");
    EXPECT_EQ(colour(16, 1), TableGrid::white);
    open("VE");
    EXPECT_EQ(colour(16, 1), 256 * 255);
}

TEST_F(HeatTable, EqualValuesStandInTheMiddle) {
    open("SPW");
    EXPECT_EQ(colour(1, 1), heatColour(0.5));
    EXPECT_EQ(colour(16, 16), heatColour(0.5));
}

TEST_F(HeatTable, CellsThatAreNotShownDoNotStretchTheSpan) {
    unit.AssignDirectIndex(50, veBase + 15);
    unit.AssignDirectIndex(20, veBase + 1);
    size(8, 8);
    open("VE");
    EXPECT_EQ(colour(8, 2), heatColour(1));
    EXPECT_EQ(colour(8, 1), heatColour(0));
}

TEST_F(HeatTable, ATypedValueTakesItsColourAtOnce) {
    unit.AssignDirectIndex(40, stagedBase);
    open("SPW");
    cursor.select(16, 2, 16, 2);
    ASSERT_TRUE(editor.enterValue("10"));
    EXPECT_EQ(colour(16, 2), heatColour(0.25));
    EXPECT_EQ(colour(16, 1), heatColour(1));
}

TEST_F(HeatTable, AllCellsFollowAValueThatMovesTheSpan) {
    unit.AssignDirectIndex(40, stagedBase);
    open("SPW");
    EXPECT_EQ(colour(16, 1), heatColour(1));
    cursor.select(16, 2, 16, 2);
    ASSERT_TRUE(editor.enterValue("80"));
    EXPECT_EQ(colour(16, 2), heatColour(1));
    EXPECT_EQ(colour(16, 1), heatColour(0.5));
    ASSERT_TRUE(editor.enterValue("0"));
    EXPECT_EQ(colour(16, 1), heatColour(1));
    EXPECT_EQ(colour(16, 2), heatColour(0));
}

TEST_F(HeatTable, NudgesPastesAndSavesAreFollowedToo) {
    unit.AssignDirectIndex(9, stagedBase);
    open("SPW");
    cursor.select(16, 1, 16, 1);
    press('.');
    EXPECT_EQ(sheet.value(0), 10);
    editor.paste("20\t5\t10");
    EXPECT_EQ(colour(16, 1), heatColour(1));
    EXPECT_EQ(colour(16, 2), heatColour(0.25));
    EXPECT_EQ(colour(16, 3), heatColour(0.5));
    cursor.moveTo(16, 4);
    editor.leaveEdit("40");
    EXPECT_EQ(colour(16, 1), heatColour(1)) << "nothing was stored yet";
    model.save();
    EXPECT_EQ(colour(16, 4), heatColour(1));
    EXPECT_EQ(colour(16, 1), heatColour(0.5));
}

TEST_F(HeatTable, RowsThatAreTurnedOverAndTheAbsoluteViewKeepTheirColours) {
    unit.AssignDirectIndex(-20, veBase);
    unit.AssignDirectIndex(20, veBase + 1);
    open("VE");
    EXPECT_EQ(colour(16, 1), heatColour(0));
    model.toggleAbsolute();
    EXPECT_EQ(colour(16, 1), heatColour(0));
    EXPECT_EQ(colour(16, 2), heatColour(1));
    model.invert();
    EXPECT_EQ(colour(1, 1), heatColour(0));
    EXPECT_EQ(colour(1, 2), heatColour(1));
    EXPECT_EQ(colour(16, 1), heatColour(0.5));
}

TEST_F(HeatTable, TheTrailStaysOnTopOfIt) {
    unit.AssignDirectIndex(50, veBase);
    open("VE");
    overlay.Show_Current_Activity(1200, 40);
    ASSERT_EQ(colour(11, 2), trailYellow);
    cursor.select(16, 2, 16, 2);
    ASSERT_TRUE(editor.enterValue("-50"));
    EXPECT_EQ(colour(11, 2), trailYellow) << "the span has moved below it";
    EXPECT_EQ(colour(16, 3), heatColour(0.5));
    model.rebuild();
    EXPECT_EQ(colour(11, 2), trailYellow);
    overlay.paintAnew();
    EXPECT_EQ(colour(11, 2), trailYellow);
    EXPECT_EQ(colour(16, 1), heatColour(1));
}

TEST_F(HeatTable, TheMixtureStaysOnTopOfIt) {
    open("SPW");
    overlay.colourMode(TableColour::Afr);
    live.AAFR = 15;
    live.DAFR = 13;
    overlay.Show_Current_Activity(1200, 40);
    EXPECT_EQ(colour(11, 2), paintColour(Paint::Red));
    EXPECT_EQ(colour(11, 3), heatColour(0.5));
}

TEST_F(HeatTable, WhiteOutWipesThePaintAndLeavesTheScale) {
    unit.AssignDirectIndex(50, stagedBase + 5 * 16 + 1);
    open("SPW");
    overlay.Show_Current_Activity(1200, 40);
    ASSERT_EQ(colour(11, 2), trailYellow);
    overlay.whiteOut();
    EXPECT_EQ(colour(11, 2), heatColour(1));
    EXPECT_EQ(colour(1, 1), heatColour(0));
}

TEST_F(HeatTable, AnErasedTrailLeavesTheScaleInEveryTable) {
    open("SPW");
    overlay.Show_Current_Activity(1200, 40);
    paints.erase();
    overlay.paintAnew();
    EXPECT_EQ(colour(11, 2), heatColour(0.5));
}

TEST_F(HeatTable, PulseWidthAndDutyCycleAreNotPartOfIt) {
    unit.AssignDirectIndex(50, veBase);
    open("VE");
    model.togglePulsewidth();
    for (int row = 1; row <= 16; ++row) {
        for (int column = 1; column <= 16; ++column) ASSERT_FALSE(isHeatColour(colour(row, column)));
    }
    press('.');
    overlay.whiteOut();
    for (int row = 1; row <= 16; ++row) {
        for (int column = 1; column <= 16; ++column) ASSERT_FALSE(isHeatColour(colour(row, column)));
    }
    model.togglePulsewidth();
    EXPECT_TRUE(isHeatColour(colour(16, 1)));
}

TEST_F(HeatTable, TheScaleThatIsChosenShowsWhenTheCellsArePaintedAnew) {
    unit.AssignDirectIndex(50, stagedBase);
    overlay.heatScale(false);
    open("SPW");
    ASSERT_EQ(colour(16, 1), TableGrid::white);
    overlay.heatScale(true);
    overlay.paintAnew();
    EXPECT_EQ(colour(16, 1), heatColour(1));
    overlay.heatScale(false);
    overlay.colorizeGraph(true);
    EXPECT_EQ(colour(16, 1), TableGrid::white);
}

}  // namespace
}  // namespace zentaq
