// Dimensions, axis kinds and stop points of the tables.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;

TEST(TableDimensions, AnOldCalibrationIs16By16OnFirstUse) {
    OrbaCalibration cal;
    cal.host.head.programVersion = 9.44F;
    for (const auto& [table, cell] :
         std::vector<std::pair<const char*, int>>{{"VE", 2292}, {"GPO1", 2294}, {"GPO2", 2296}}) {
        EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS(table, "COLS"), 16);
        EXPECT_EQ(cal.unit.DirectIndex(cell), 16);
        EXPECT_EQ(cal.unit.DirectIndex(cell + 1), 16);
    }
}

TEST(TableDimensions, ANewerCalibrationAnswersItsCells) {
    OrbaCalibration cal;
    cal.host.head.programVersion = 9.45F;
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 0);
    EXPECT_EQ(cal.unit.DirectIndex(2292), 0);
}

TEST(TableDimensions, OneSetCellKeepsAnOldPair) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(12, 2293);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 0);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("ADV", "COLS"), 12);
}

TEST(TableDimensions, From8To24IsStoredAndAnythingElseIgnored) {
    OrbaCalibration cal;
    for (const auto& [count, stored] :
         std::vector<std::pair<int, float>>{{8, 8}, {24, 24}, {7, 24}, {25, 24}}) {
        cal.unit.SET_TBL_DIMENSIONS("AFR", "ROWS", count);
        EXPECT_EQ(cal.unit.DirectIndex(2292), stored);
    }
    cal.unit.SET_TBL_DIMENSIONS("AFR", "SIDES", 9);
    cal.unit.SET_TBL_DIMENSIONS("XYZ", "ROWS", 9);
    EXPECT_EQ(cal.unit.DirectIndex(2292), 24);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("XYZ", "ROWS"), 0);
    EXPECT_EQ(cal.unit.GET_TBL_DIMENSIONS("SPW", "ROWS"), 24);  // the main tables share one pair
}

TEST(AxisKinds, EachNameHasItsCodeInEitherNibble) {
    const std::vector<std::string> names = {"CLT",   "RAW MAP", "BLEND MAP", "TPS",   "ACTUAL AFR",
                                            "MAT",   "RPM",     "GPIO1",     "GPIO2", "GPIO3",
                                            "GPIO4", "GPIO5",   "GPIO6",     "GPIO7", "GPIO8"};
    OrbaCalibration cal;
    for (std::size_t i = 0; i < names.size(); ++i) {
        cal.unit.SET_TBL_AXIS_TYPE("GPO2", "ROW-AXIS", names[i]);
        cal.unit.SET_TBL_AXIS_TYPE("GPO2", "COL-AXIS", names[names.size() - 1 - i]);
        EXPECT_EQ(cal.unit.DirectIndex(2291), static_cast<float>((i + 1) * 16 + 15 - i));
        EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO2", "ROW-AXIS"), names[i]);
        EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO2", "COL-AXIS"), names[names.size() - 1 - i]);
    }
    EXPECT_EQ(cal.unit.DirectIndex(2290), 0);
}

TEST(AxisKinds, UnknownNamesAndTablesWithoutAWordLeaveTheWordAlone) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(0x12, 2290);
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "OIL");
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "");
    cal.unit.SET_TBL_AXIS_TYPE("VE", "ROW-AXIS", "TPS");
    EXPECT_EQ(cal.unit.DirectIndex(2290), 0x12);
}

TEST(AxisKinds, MainTablesAreAlwaysPressureBySpeed) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(0x11, 2290);
    for (const char* table : {"ADV", "AFR", "SPW", "VE"}) {
        EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
        EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
    }
}

TEST(AxisKinds, ACodeOutsideTheListHasNoName) {
    OrbaCalibration cal;
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
    cal.unit.AssignDirectIndex(0x120, 2290);
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
    cal.unit.AssignDirectIndex(-20, 2290);
    EXPECT_EQ(cal.unit.GET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS"), "");
}

TEST(StopPoints, EachAxisHasItsCells) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    const std::vector<std::tuple<const char*, const char*, int>> axes = {{"GPO1", "Y-Axis", 2226},
                                                                         {"GPO1", "X-Axis", 2242},
                                                                         {"GPO2", "Y-Axis", 2258},
                                                                         {"GPO2", "X-Axis", 2274}};
    for (const auto& [table, axis, cell] : axes) {
        EXPECT_TRUE(cal.unit.Set_GPO_Stop(12.5, 15, axis, table));
        EXPECT_EQ(cal.unit.DirectIndex(cell + 15), 12.5F);
        EXPECT_EQ(cal.unit.Get_GPO_Stop(15, axis, table), 12.5F);
        EXPECT_THROW(cal.unit.Get_GPO_Stop(16, axis, table), BoundsError);
        EXPECT_THROW(cal.unit.Set_GPO_Stop(1, -1, axis, table), BoundsError);
    }
    EXPECT_TRUE(cal.host.sent.empty());
    EXPECT_EQ(cal.unit.Get_GPO_Stop(0, "X-Axis", "VE"), 0);
    EXPECT_FALSE(cal.unit.Set_GPO_Stop(1, 0, "X-Axis", "VE"));
    EXPECT_FALSE(cal.unit.Set_GPO_Stop("", 0, "X-Axis", "GPO1"));
}

struct StopRange {
    const char* kind;
    float low;
    float high;
    const char* text;
};

TEST(StopPoints, ANumberThatFitsNoCellIsAnOverflowEvenOnAnAxisWithoutAKind) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.Set_GPO_Stop(1000, 3, "X-Axis", "GPO1"));
    EXPECT_THROW(cal.unit.Set_GPO_Stop("1E+39", 3, "X-Axis", "GPO1"), Overflow);
    EXPECT_EQ(cal.unit.Get_GPO_Stop(3, "X-Axis", "GPO1"), 1000);
}

TEST(StopPoints, AreCheckedAgainstTheKindOfTheirAxis) {
    OrbaCalibration cal;
    cal.unit.set("AFR", 14);
    const float lowest = cal.unit.MAPMin();
    const float highest = cal.unit.MAPMax();
    for (const auto& [kind, low, high, text] :
         std::vector<StopRange>{{"CLT", -40, 150, "(-40 to 150 C)"},
                                {"MAT", -40, 150, "(-40 to 150 C)"},
                                {"RAW MAP", lowest, highest, "(10.3 to 104.8 kPa)"},
                                {"BLEND MAP", lowest, highest, "(10.3 to 104.8 kPa)"},
                                {"TPS", 0, 5, "(0 to 5 Volts)"},
                                {"ACTUAL AFR", 9.338F, 28, "(9.338 to 28 AFR)"},
                                {"RPM", 0, 20000, "(0 to 20000 RPM)"},
                                {"GPIO1", 0, 100, "(0 to 100%)"},
                                {"GPIO8", 0, 100, "(0 to 100%)"}}) {
        cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", kind);
        EXPECT_TRUE(cal.unit.Set_GPO_Stop(low, 0, "Y-Axis", "GPO1")) << kind;
        EXPECT_TRUE(cal.unit.Set_GPO_Stop(high, 1, "Y-Axis", "GPO1")) << kind;
        for (const double beyond : {low - 0.25, high + 0.25}) {
            const Refusal refusal = refusalOf(cal.unit.Set_GPO_Stop(beyond, 1, "Y-Axis", "GPO1"));
            EXPECT_EQ(refusal.warning, 1001) << kind;
            EXPECT_EQ(refusal.text, text) << kind;
        }
        EXPECT_EQ(cal.unit.Get_GPO_Stop(0, "Y-Axis", "GPO1"), low) << kind;
        EXPECT_EQ(cal.unit.Get_GPO_Stop(1, "Y-Axis", "GPO1"), high) << kind;
    }
}

TEST(StopPoints, TemperatureAndLambdaTextsFollowTheSettings) {
    OrbaCalibration cal;
    cal.host.isFahrenheit = true;
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "CLT");
    EXPECT_TRUE(cal.unit.Set_GPO_Stop(302, 0, "X-Axis", "GPO1"));
    EXPECT_EQ(refusalOf(cal.unit.Set_GPO_Stop(303, 0, "X-Axis", "GPO1")).text, "(-40 to 302 F)");
    // 302 F is 150 C, and the cell holds Celsius.
    EXPECT_EQ(cal.unit.Get_GPO_Stop(0, "X-Axis", "GPO1"), 150);
    cal.unit.set("AFR", 1);
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "ACTUAL AFR");
    EXPECT_TRUE(cal.unit.Set_GPO_Stop(1.5, 0, "X-Axis", "GPO1"));
    EXPECT_EQ(refusalOf(cal.unit.Set_GPO_Stop(2.5, 0, "X-Axis", "GPO1")).text, "(0.667 to 2 lambda)");
}

}  // namespace
}  // namespace zentaq::testing
