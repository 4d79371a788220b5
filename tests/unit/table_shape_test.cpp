// Dimensions, axis kinds and stop points of the tables, beyond what kind_shapes_test asks of every kind.
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

TEST(TableDimensions, ANewerCalibrationAnswersItsCells) {
    OrbaCalibration cal;
    setProgramVersion(cal.unit, 9.45F);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 0);
    EXPECT_EQ(cal.unit.DirectIndex(2292), 0);
}

TEST(TableDimensions, OneSetCellKeepsAnOldPair) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(12, 2293);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 0);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "COLS"), 12);
}

TEST(TableDimensions, OfAnotherTableOrSideAreIgnored) {
    OrbaCalibration cal;
    cal.unit.SET_TBL_DIMENSIONS("AFR", "ROWS", 24);
    cal.unit.SET_TBL_DIMENSIONS("AFR", "SIDES", 9);
    cal.unit.SET_TBL_DIMENSIONS("XYZ", "ROWS", 9);
    EXPECT_EQ(cal.unit.DirectIndex(2292), 24);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("XYZ", "ROWS"), 0);
}

TEST(AxisKinds, UnknownNamesAndTablesWithoutAWordLeaveTheWordAlone) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(0x12, 2290);
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "OIL");
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "");
    cal.unit.SET_TBL_AXIS_TYPE("VE", "ROW-AXIS", "TPS");
    EXPECT_EQ(cal.unit.DirectIndex(2290), 0x12);
}

TEST(AxisKinds, ACodeOutsideTheListHasNoName) {
    OrbaCalibration cal;
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
    cal.unit.AssignDirectIndex(0x120, 2290);
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
    cal.unit.AssignDirectIndex(-20, 2290);
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
}

TEST(StopPoints, AreOfTheOutputTablesAndOfStopsThatThereAre) {
    OrbaCalibration cal;
    EXPECT_EQ(cal.unit.Get_GPO_Stop(0, "X-Axis", "VE"), 0);
    EXPECT_FALSE(cal.unit.Set_GPO_Stop(1, 0, "X-Axis", "VE"));
    EXPECT_FALSE(cal.unit.Set_GPO_Stop("", 0, "X-Axis", "GPO1"));
    EXPECT_THROW(cal.unit.Set_GPO_Stop(1, -1, "X-Axis", "GPO1"), BoundsError);
}

TEST(StopPoints, ANumberThatFitsNoCellIsAnOverflowEvenOnAnAxisWithoutAKind) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.Set_GPO_Stop(1000, 3, "X-Axis", "GPO1"));
    EXPECT_THROW(cal.unit.Set_GPO_Stop("1E+39", 3, "X-Axis", "GPO1"), Overflow);
    EXPECT_EQ(cal.unit.Get_GPO_Stop(3, "X-Axis", "GPO1"), 1000);
}

TEST(StopPoints, OfPressuresAndRatiosTellTheirRangeWithTheDecimalsOfTheSensorAndTheRatio) {
    OrbaCalibration cal;
    cal.unit.set("AFR", 14);
    for (const auto& [kind, text] : {std::pair("RAW MAP", "(10.3 to 104.8 kPa)"),
                                     {"BLEND MAP", "(10.3 to 104.8 kPa)"},
                                     {"ACTUAL AFR", "(9.338 to 28 AFR)"}}) {
        cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", kind);
        EXPECT_EQ(refusalOf(cal.unit.Set_GPO_Stop(105, 1, "Y-Axis", "GPO1")).text, text) << kind;
    }
}

TEST(StopPoints, OfTemperaturesAreKeptInCelsius) {
    OrbaCalibration cal;
    cal.host.isFahrenheit = true;
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "CLT");
    EXPECT_TRUE(cal.unit.Set_GPO_Stop(302, 0, "X-Axis", "GPO1"));
    EXPECT_EQ(cal.unit.Get_GPO_Stop(0, "X-Axis", "GPO1"), 150);
}

}  // namespace
}  // namespace zentaq::testing
