#include "unit/axis_order.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class AxisOrder : public ::testing::Test {
 protected:
    AxisOrder() {
        setProgramVersion(calibration.unit, 10);
        unit.AssignDirectIndex(0.05F, 126);  // volts a kPa
        for (const char* table : {"ADV", "GPO1", "GPO2"}) {
            unit.SET_TBL_DIMENSIONS(table, "ROWS", 16);
            unit.SET_TBL_DIMENSIONS(table, "COLS", 16);
        }
        for (int i = 0; i < 16; ++i) {
            unit.AssignDirectIndex(500.0F * static_cast<float>(i + 1), 592 + 2 * i);
            unit.AssignDirectIndex(20.0F + 5.0F * static_cast<float>(i), 624 + 2 * i);
        }
    }
    OrbaCalibration calibration;
    Unit& unit = calibration.unit;
};

TEST_F(AxisOrder, RisingAxesAreInOrderAndAnOutputTableThatWasNeverSetUpIsNotLookedAt) {
    EXPECT_THAT(axesWithoutOrder(unit), IsEmpty());
}

TEST_F(AxisOrder, EachAxisThatDoesNotRiseIsOneLine) {
    unit.AssignDirectIndex(9000, 592 + 2 * 7);  // 4500 follows
    unit.AssignDirectIndex(30, 2226);           // rows of GPO1: 30, then 0
    EXPECT_THAT(axesWithoutOrder(unit),
                ElementsAre("RPM axis of the tables: 9000 is followed by 4500",
                            "Y-Axis of GPO1: 30 is followed by 0, and 14 more stops do not rise"));
}

TEST_F(AxisOrder, AStopThatIsEqualToItsNeighborOrNoNumberDoesNotRise) {
    unit.AssignDirectIndex(500, 592 + 2);
    EXPECT_THAT(axesWithoutOrder(unit), ElementsAre("RPM axis of the tables: 500 is followed by 500"));
    unit.AssignDirectIndex(std::nanf(""), 592 + 2);
    EXPECT_EQ(axesWithoutOrder(unit).size(), 1U);
}

TEST_F(AxisOrder, StopsBehindTheLastColumnAreNotInUse) {
    unit.AssignDirectIndex(0, 592 + 2 * 12);
    EXPECT_EQ(axesWithoutOrder(unit).size(), 1U);
    unit.SET_TBL_DIMENSIONS("ADV", "COLS", 12);
    EXPECT_THAT(axesWithoutOrder(unit), IsEmpty());
    EXPECT_EQ(stopBefore(unit, "ADV", "X-Axis", 12), std::nullopt);
}

TEST_F(AxisOrder, TheFirstStopHasNoneInFront) {
    EXPECT_EQ(stopBefore(unit, "VE", "X-Axis", 0), std::nullopt);
    EXPECT_EQ(stopBefore(unit, "VE", "X-Axis", 7), 3500);
}

TEST_F(AxisOrder, OnlyAStopThatIsNotBelowTheNextOneIsTold) {
    EXPECT_EQ(stopNotBelowNext(3000, 3500), "");
    EXPECT_TRUE(
        stopNotBelowNext(3500, 3500).starts_with("3500 is not below the next value of the axis, 3500."));
    EXPECT_TRUE(stopNotBelowNext(9000, 3500).starts_with("9000 is not below"));
}

}  // namespace
}  // namespace zentaq::testing
