#include "tables/table_cells.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "live/calibration_fixture.h"
#include "unit/axis_kinds.h"

namespace zentaq {
namespace {

class Tables : public testing::Test {
 protected:
    Tables() : calibration(3), unit(calibration.unit), host(calibration.host) {
        unit.AssignDirectIndex(14.7F, test::afrCell);
        for (int i = 0; i < 16; ++i) {
            unit.set("RPMTBL", 500.0 * (i + 1), i);
            unit.set("MAPTBL", 15.0 + 5 * i, i);
        }
        unit.AssignDirectIndex(8750, 58);  // REV_Limiter
    }

    std::vector<float> stops(std::string_view axis, std::string_view table, int count) {
        std::vector<float> all;
        for (int i = 0; i < count; ++i) all.push_back(unit.Get_GPO_Stop(i, axis, table));
        return all;
    }

    test::Calibration calibration;
    Unit& unit;
    RecordingHost& host;
};

TEST_F(Tables, AreFoundByName) {
    EXPECT_EQ(findTable("GPO2")->gpoNumber, 2);
    EXPECT_EQ(findTable("AFR")->nudge, 0.1);
    EXPECT_EQ(findTable("VEX"), nullptr);
}

TEST_F(Tables, TargetRatioComesBackWithTwoDecimals) {
    unit.AssignDirectIndex(12.3456F, 1424 + 5);
    EXPECT_EQ(get_binValueByIndex(unit, "AFR", 5, false), 12.35F);
}

TEST_F(Tables, AbsoluteViewAdds100ToVeAlone) {
    unit.AssignDirectIndex(-5, 912 + 7);
    unit.AssignDirectIndex(40, 1168 + 7);
    EXPECT_EQ(get_binValueByIndex(unit, "VE", 7, true), 95);
    EXPECT_EQ(get_binValueByIndex(unit, "SPW", 7, true), 40);
    EXPECT_TRUE(set_binValueByIndex(unit, "VE", 112, 7, true));
    EXPECT_EQ(unit.DirectIndex(912 + 7), 12);
}

TEST_F(Tables, OutputTablesTakeWholeNumbersHalvesToEven) {
    set_binValueByIndex(unit, "GPO1", 12.5F, 3, false);
    EXPECT_EQ(unit.DirectIndex(1680 + 3), 12);
    set_binValueByIndex(unit, "GPO2", 13.5F, 3, false);
    EXPECT_EQ(unit.DirectIndex(1936 + 3), 14);
    EXPECT_EQ(get_binValueByIndex(unit, "GPO2", 3, false), 14);
}

TEST_F(Tables, OutputTablesRefuseWhatIsOutOfRangeByEveryWriter) {
    for (const float value : {500.0F, -20.0F, 444.0F, 100.4F, -0.4F, 1e9F, INFINITY}) {
        EXPECT_EQ(test::told(set_binValueByIndex(unit, "GPO1", value, 3, false)), "1001 (0 to 100%)");
        EXPECT_EQ(test::told(unit.Set_GPIO_Table(2, 3, value)), "1001 (0 to 100%)");
    }
    EXPECT_EQ(unit.DirectIndex(1680 + 3), 0);
    EXPECT_EQ(unit.DirectIndex(1936 + 3), 0);
    EXPECT_TRUE(set_binValueByIndex(unit, "GPO1", 100, 3, false));
    EXPECT_TRUE(set_binValueByIndex(unit, "GPO1", 0, 3, false));
}

TEST_F(Tables, OutputTablesAreReadAsWholePercent) {
    unit.AssignDirectIndex(12.7F, 1680 + 3);
    unit.AssignDirectIndex(1e9F, 1680 + 4);
    EXPECT_EQ(get_binValueByIndex(unit, "GPO1", 3, false), 13);
    EXPECT_EQ(get_binValueByIndex(unit, "GPO1", 4, false), 1e9F);
}

TEST_F(Tables, EveryRatioTakesTheStopsThatItsOwnAxisIsSpreadOver) {
    constexpr int ratios = 1901;  // 1.00 to 20.00
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "ACTUAL AFR");
    for (int n = 0; n < ratios; ++n) {
        const float ratio = static_cast<float>(100 + n) / 100;
        unit.AssignDirectIndex(ratio, 2225);
        for (int i = 0; i < 16; ++i) unit.AssignDirectIndex(-1, 2242 + i);
        EXPECT_TRUE(spreadAxis(unit, "GPO1", "COL-AXIS", "ACTUAL AFR").empty());
        for (int i = 0; i < 16; ++i) ASSERT_NE(unit.DirectIndex(2242 + i), -1) << ratio << ", stop " << i;
        EXPECT_NEAR(unit.DirectIndex(2242), 0.667 * ratio, 0.051) << ratio;
        EXPECT_NEAR(unit.DirectIndex(2242 + 15), 2 * ratio, 0.051) << ratio;
    }
}

TEST_F(Tables, HeadersOfMainTablesAreTheSharedLists) {
    EXPECT_EQ(tableHeader(unit, "ADV", "X-Axis", 2), 1500);
    EXPECT_EQ(tableHeader(unit, "SPW", "Y-Axis", 2), 25);
    EXPECT_TRUE(setTableHeader(unit, "AFR", "X-Axis", 2, 1600.0));
    EXPECT_EQ(tableHeader(unit, "VE", "X-Axis", 2), 1600);
}

TEST_F(Tables, HeadersOfOutputTablesAreTheirOwnStops) {
    unit.SET_TBL_AXIS_TYPE("GPO2", "ROW-AXIS", "TPS");
    EXPECT_TRUE(setTableHeader(unit, "GPO2", "Y-Axis", 4, 2.5));
    EXPECT_FALSE(setTableHeader(unit, "GPO2", "Y-Axis", 4, 5.1));
    EXPECT_EQ(tableHeader(unit, "GPO2", "Y-Axis", 4), 2.5F);
    EXPECT_EQ(unit.DirectIndex(2258 + 4), 2.5F);
    EXPECT_EQ(tableHeader(unit, "GPO1", "Y-Axis", 4), 0);
}

TEST_F(Tables, SpansOfAxisKinds) {
    EXPECT_EQ(axisKindOf("CLT")->span(unit).high, 150);
    host.isFahrenheit = true;
    EXPECT_EQ(axisKindOf("MAT")->span(unit).low, -40);
    EXPECT_EQ(axisKindOf("MAT")->span(unit).high, 302);
    EXPECT_FLOAT_EQ(axisKindOf("ACTUAL AFR")->span(unit).low, 9.8049F);
    EXPECT_FLOAT_EQ(axisKindOf("ACTUAL AFR")->span(unit).high, 29.4F);
    EXPECT_EQ(axisKindOf("RPM")->span(unit).low, 750);
    EXPECT_EQ(axisKindOf("RPM")->span(unit).high, 8750);
    EXPECT_EQ(axisKindOf("GPIO8")->span(unit).high, 100);
    EXPECT_EQ(axisKindOf("GPIO9"), nullptr);
    EXPECT_EQ(axisKindOf(""), nullptr);
}

TEST_F(Tables, SpreadingAnAxisFillsItEvenlyToOneDecimal) {
    unit.SET_TBL_DIMENSIONS("GPO1", "COLS", 9);
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "TPS");
    spreadAxis(unit, "GPO1", "COL-AXIS", "TPS");
    // Steps of 0.625; ties go to the even digit.
    EXPECT_EQ(stops("X-Axis", "GPO1", 9),
              (std::vector<float>{0, 0.6F, 1.2F, 1.9F, 2.5F, 3.1F, 3.8F, 4.4F, 5}));
    EXPECT_EQ(unit.Get_GPO_Stop(9, "X-Axis", "GPO1"), 0);
}

TEST_F(Tables, SpreadingKeepsRoundedStopsInsideTheSpan) {
    unit.SET_TBL_DIMENSIONS("GPO1", "ROWS", 8);
    unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "BLEND MAP");
    spreadAxis(unit, "GPO1", "ROW-AXIS", "BLEND MAP");
    // The sensor spans 10.3377 to 104.7664; 10.3 and 104.8 lie outside.
    EXPECT_EQ(unit.Get_GPO_Stop(0, "Y-Axis", "GPO1"), unit.MAPMin());
    EXPECT_EQ(unit.Get_GPO_Stop(7, "Y-Axis", "GPO1"), unit.MAPMax());
    EXPECT_EQ(unit.Get_GPO_Stop(1, "Y-Axis", "GPO1"), 23.8F);  // 10.3377 + 13.4898
}

TEST_F(Tables, ResettingOutputAxesTakesTheSharedLists) {
    unit.SET_TBL_AXIS_TYPE("GPO2", "ROW-AXIS", "TPS");
    unit.SET_TBL_DIMENSIONS("GPO2", "ROWS", 8);
    EXPECT_TRUE(hasEmptyAxis(unit, "GPO2"));
    resetGpoAxes(unit);
    for (const std::string_view table : {"GPO1", "GPO2"}) {
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 16);
        EXPECT_EQ(unit.Get_GPO_Stop(3, "X-Axis", table), 2000);
        EXPECT_EQ(unit.Get_GPO_Stop(3, "Y-Axis", table), 30);
    }
    EXPECT_FALSE(hasEmptyAxis(unit, "GPO1"));
}

TEST_F(Tables, OneStopOnEachAxisIsEnoughToKeepThem) {
    unit.AssignDirectIndex(50, 2226 + 15);
    EXPECT_TRUE(hasEmptyAxis(unit, "GPO1"));
    unit.AssignDirectIndex(1000, 2242);
    EXPECT_FALSE(hasEmptyAxis(unit, "GPO1"));
}

TEST_F(Tables, SizesThatNoFileShouldHoldAreHeld) {
    unit.AssignDirectIndex(1000, 2292);
    unit.AssignDirectIndex(-5, 2293);
    EXPECT_EQ(shownRows(unit, "VE"), 24);
    EXPECT_EQ(shownColumns(unit, "VE"), 0);
}

}  // namespace
}  // namespace zentaq
