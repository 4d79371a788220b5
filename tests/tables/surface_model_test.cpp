// A surface graph without its window: titles, values, the cursor and its keys.
#include "tables/surface_model.h"

#include <gmock/gmock.h>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;

class Surface : public TableWindow {
 protected:
    std::unique_ptr<SurfaceModel> of(std::string_view table, TableView view = TableView::Values) {
        return std::make_unique<SurfaceModel>(unit, live, paints, table, "A table", view);
    }
};

// ---- Titles

TEST_F(Surface, EachTableAndViewHasItsTitle) {
    EXPECT_THAT(of("VE")->titles().lines, ElementsAre("Volumetric", "Efficiency", "(% FPW)"));
    EXPECT_EQ(of("VE")->titles().shortName, "VE Enhanced");
    EXPECT_THAT(of("VE", TableView::PulseWidth)->titles().lines,
                ElementsAre("Fundamental", "Pulsewidth (ms)"));
    EXPECT_EQ(of("VE", TableView::PulseWidth)->titles().shortName, "Fundamental PW");
    EXPECT_THAT(of("VE", TableView::DutyCycle)->titles().lines, ElementsAre("Duty Cycle (%)"));
    EXPECT_THAT(of("SPW")->titles().lines, ElementsAre("Staged", "Pulsewidth"));
    EXPECT_EQ(of("SPW")->titles().shortName, "SG Enhanced");
    EXPECT_THAT(of("GPO1")->titles().lines, ElementsAre("General Purpose Output"));
    EXPECT_THAT(of("GPO2")->titles().lines, ElementsAre("General Purpose Output"));
    EXPECT_THAT(of("ADV")->titles().lines, ElementsAre("Main Ignition", "Advance", "(degrees BTDC)"));
    EXPECT_THAT(of("AFR")->titles().lines, ElementsAre("Desired Air/Fuel Ratio", "Gasoline 14.64"));
    unit.set("AFR", 9);
    EXPECT_EQ(of("AFR")->titles().lines[1], "Fuel 9.00");
}

TEST_F(Surface, TheAxesAndTheHintAreTold) {
    EXPECT_EQ(of("VE")->titles().columnAxis, "Engine Speed (RPM)");
    EXPECT_EQ(of("VE")->titles().rowAxis, "MAP (kPa)");
    EXPECT_EQ(of("VE")->titles().hint,
              "Use + or - Keys to Adjust Graph Values. This Graph does not use ONFLY");
    EXPECT_EQ(of("VE", TableView::PulseWidth)->titles().hint,
              "Values in this graph are not Editable. This Graph does not use ONFLY");
    const auto output = of("GPO1");
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "TPS");
    EXPECT_EQ(output->titles().columnAxis, "TPS (Volts)");
}

// ---- Values

TEST_F(Surface, ShowsTheTableFromItsLowestRowOn) {
    size(8, 9);
    unit.set("VE", 10, 0);
    unit.set("VE", -10, 7 * 16 + 8);
    const auto surface = of("VE");
    EXPECT_EQ(surface->rows(), 8);
    EXPECT_EQ(surface->columns(), 9);
    EXPECT_EQ(surface->value(1, 1), 10);
    EXPECT_EQ(surface->value(8, 9), -10);
    EXPECT_EQ(surface->height(1, 1), 1);
    EXPECT_EQ(surface->height(8, 9), 0);
    EXPECT_EQ(surface->height(2, 2), 0.5);
}

TEST_F(Surface, ATableOfOneValueIsFlat) {
    const auto surface = of("VE");
    EXPECT_EQ(surface->height(3, 3), 0);
    EXPECT_EQ(surface->lowest(), surface->highest());
}

TEST_F(Surface, PulseWidthsAndDutiesFollowTheFormulasOfTheGridsViews) {
    unit.set("VE", 20, 17);  // second row and column: 20 kPa, 1000 rpm
    const auto widths = of("VE", TableView::PulseWidth);
    const double ratio = static_cast<double>(unit.pressureToRatio(20));
    const double width = 0.5 + 1.2 * 10 * ratio;  // INJ_On 0.5, scale1 10
    EXPECT_NEAR(widths->value(2, 2), width, 1e-4);
    // Sequential as the empty calibration is: 120 / 1000 rpm is 0.12 s between injections.
    const auto duties = of("VE", TableView::DutyCycle);
    EXPECT_NEAR(duties->value(2, 2), width / 1.2, 1e-3);
    unit.set("SPW", 50, 17);
    EXPECT_NEAR(of("SPW", TableView::PulseWidth)->value(2, 2), width / 2, 1e-4);
}

TEST_F(Surface, AViewHasTheColorsOfTheGridInThatView) {
    unit.set("MT", 3);  // widths below it are red
    unit.set("VE", 50, 255);
    open("VE");
    model.togglePulsewidth();
    const auto widths = of("VE", TableView::PulseWidth);
    int red = 0;
    for (int row = 1; row <= 16; ++row) {
        for (int column = 1; column <= 16; ++column) {
            EXPECT_EQ(widths->colour(row, column), sheet.grid().colour(17 - row, column));
            red += widths->colour(row, column) == 255 ? 1 : 0;
        }
    }
    EXPECT_GT(red, 0);
    EXPECT_LT(red, 256);
}

TEST_F(Surface, TakesTheHeatScaleAsTheGridDoes) {
    unit.set("ADV", 45, 20);
    open("ADV");
    overlay.heatScale(true);
    overlay.paintAnew();
    const auto surface = of("ADV");
    surface->heatScale(true);
    EXPECT_EQ(surface->colour(2, 5), sheet.grid().colour(15, 5));
    EXPECT_NE(surface->colour(2, 5), TableGrid::white);
}

// ---- The cursor

TEST_F(Surface, TheCursorGoesAroundAtTheEnds) {
    size(8, 9);
    const auto surface = of("VE");
    EXPECT_EQ(surface->row(), 1);
    EXPECT_EQ(surface->column(), 1);
    surface->move(-1, 0);
    EXPECT_EQ(surface->row(), 8);
    surface->move(1, 0);
    EXPECT_EQ(surface->row(), 1);
    surface->move(0, -1);
    EXPECT_EQ(surface->column(), 9);
    surface->move(0, 1);
    EXPECT_EQ(surface->column(), 1);
}

TEST_F(Surface, TellsHeadersAndValueAtTheCursor) {
    unit.set("VE", -12.5, 2 * 16 + 1);
    const auto surface = of("VE");
    surface->moveTo(3, 2);
    EXPECT_EQ(surface->rowText(), "25");
    EXPECT_EQ(surface->columnText(), "1000");
    EXPECT_EQ(surface->valueText(), "-12.50");
    EXPECT_EQ(surface->inWords(), "-12.50 at row 25 kPa, column 1000 RPM");
}

// ---- Changing

TEST_F(Surface, PlusAndMinusChangeTheValueByOneAndKeepItOffTheWire) {
    unit.ONFLY_MODE(true);
    const auto surface = of("VE");
    EXPECT_TRUE(surface->step(true));
    EXPECT_EQ(unit.get("VE", 0), 1);
    EXPECT_EQ(surface->valueText(), "1.00");
    EXPECT_TRUE(surface->step(false));
    EXPECT_TRUE(surface->step(false));
    EXPECT_EQ(unit.get("VE", 0), -1);
    EXPECT_TRUE(host.sent.empty());
    EXPECT_FALSE(unit.SILENT_MODE()) << "what is typed after this is meant for the unit again";
}

TEST_F(Surface, AtTheLimitsOfItsTableAValueStays) {
    unit.set("VE", 50, 0);
    EXPECT_EQ(told(of("VE")->step(true)), "1001 (-50 to 50%)");
    unit.set("VE", -50, 0);
    EXPECT_EQ(told(of("VE")->step(false)), "1001 (-50 to 50%)");
    unit.set("SPW", 100, 0);
    EXPECT_EQ(told(of("SPW")->step(true)), "") << "100 is as high as the key goes";
    EXPECT_EQ(unit.get("SPW", 0), 100);
    unit.set("ADV", 60, 0);
    EXPECT_EQ(told(of("ADV")->step(true)), "") << "60 degrees, though the table takes 70 here";
    EXPECT_EQ(unit.get("ADV", 0), 60);
    unit.set("ADV", 59.5, 0);
    EXPECT_EQ(told(of("ADV")->step(true)), "");
    EXPECT_EQ(unit.get("ADV", 0), 59.5F);
    unit.Set_GPIO_Table(1, 0, 0);
    EXPECT_EQ(told(of("GPO1")->step(false)), "1001 (0 to 100%)");
}

TEST_F(Surface, AViewThatIsWorkedOutTakesNoChange) {
    const auto surface = of("VE", TableView::DutyCycle);
    EXPECT_FALSE(surface->editable());
    EXPECT_FALSE(surface->step(true));
    EXPECT_EQ(unit.get("VE", 0), 0);
}

// ---- What happens elsewhere

TEST_F(Surface, FollowsChangesOfCellsHeadersSizesAndTimes) {
    const auto surface = of("VE");
    EXPECT_FALSE(surface->follow());
    unit.set("VE", 5, 3);
    EXPECT_TRUE(surface->follow());
    EXPECT_EQ(surface->value(1, 4), 5);
    unit.set("RPMTBL", 600, 0);
    EXPECT_TRUE(surface->follow());
    EXPECT_EQ(surface->columnText(), "600");
    surface->moveTo(16, 16);
    size(8, 8);
    EXPECT_TRUE(surface->follow());
    EXPECT_EQ(surface->row(), 8) << "the cursor stays on the surface";
    const auto widths = of("VE", TableView::PulseWidth);
    unit.set("scale1", 20);
    EXPECT_TRUE(widths->follow());
    const auto duties = of("VE", TableView::DutyCycle);
    unit.set("PHDSEQ", 1);
    EXPECT_TRUE(duties->follow()) << "the injections have another distance";
}

TEST_F(Surface, TheEnginesPointAndItsTrailStandWhereTheGridHasThem) {
    const auto surface = of("ADV");
    live.RPM = 1500;
    live.MAP = 20;
    surface->frame(TableColour::Normal);
    const LiveMarker point = surface->livePoint();
    EXPECT_TRUE(point.visible);
    EXPECT_NEAR(point.row, 2, 1e-6);
    EXPECT_NEAR(point.column, 3, 1e-6);
    EXPECT_EQ(surface->colour(2, 3), paintColour(Paint::Yellow));
    EXPECT_EQ(surface->trail(2, 3), 0);
    EXPECT_EQ(paints.at(15, 3), Paint::White) << "the grid has a memory of its own";
}

}  // namespace
}  // namespace zentaq
