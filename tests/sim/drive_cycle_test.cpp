#include "sim/drive_cycle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <utility>

namespace zentaq::sim {
namespace {

void expectSmooth(const DriveCycle& drive) {
    constexpr double step = 0.01;
    DrivePoint last = drive.at(0);
    for (double seconds = step; seconds < drive.length(); seconds += step) {
        const DrivePoint point = drive.at(seconds);
        ASSERT_LT(std::abs(point.rpm - last.rpm), 120) << seconds;
        ASSERT_LT(std::abs(point.kpa - last.kpa), 4) << seconds;
        ASSERT_LT(std::abs(point.throttle - last.throttle), 0.05) << seconds;
        ASSERT_TRUE(point.throttle >= 0 && point.throttle <= 1) << seconds;
        last = point;
    }
    const DrivePoint first = drive.at(0);
    EXPECT_NEAR(last.rpm, first.rpm, 20) << "rounds join";
    EXPECT_NEAR(last.kpa, first.kpa, 1);
}

TEST(DriveCycle, IdlesAtOneSpeedAndPressure) {
    const Drive idle = idleDrive();
    for (const double seconds : {0.0, 7.0, 59.9}) {
        EXPECT_EQ(idle->at(seconds).rpm, 850);
        EXPECT_EQ(idle->at(seconds).kpa, 34);
        EXPECT_EQ(idle->at(seconds).throttle, 0);
    }
}

TEST(DriveCycle, RoadAndDynoMoveSmoothlyAndEndWhereTheyBegin) {
    expectSmooth(*roadDrive());
    expectSmooth(*dynoDrive());
}

TEST(DriveCycle, TheRoadBeginsWithIdleABlipAPullAndACruise) {
    const Drive road = roadDrive();
    EXPECT_EQ(road->at(4).rpm, 850);
    EXPECT_EQ(road->at(9.2).rpm, 3400);
    EXPECT_EQ(road->at(26).rpm, 6500);
    EXPECT_EQ(road->at(22).throttle, 1);
    EXPECT_EQ(road->at(35).rpm, 2600);
    EXPECT_EQ(road->at(35).kpa, 48);
}

// Fields of 500 rpm by 12 kPa from 1000 to 6000 rpm and 26 to 98 kPa: 60 of them.
TEST(DriveCycle, TheRoadGoesThroughMostOfATable) {
    const Drive road = roadDrive();
    std::set<std::pair<int, int>> fields;
    for (double seconds = 0; seconds < road->length(); seconds += 0.05) {
        const DrivePoint point = road->at(seconds);
        const int column = static_cast<int>(std::floor((point.rpm - 1000) / 500));
        const int row = static_cast<int>(std::floor((point.kpa - 26) / 12));
        if (column >= 0 && column < 10 && row >= 0 && row < 6) fields.emplace(column, row);
    }
    EXPECT_GE(fields.size(), 45u);
    EXPECT_LT(road->length(), 300) << "within some minutes";
}

TEST(DriveCycle, TheDynoHoldsEachPairOfSpeedAndLoad) {
    const Drive dyno = dynoDrive();
    EXPECT_EQ(dyno->at(1).rpm, 1000);
    EXPECT_EQ(dyno->at(1).kpa, 30);
    EXPECT_EQ(dyno->at(3.9).kpa, 30);
    EXPECT_GT(dyno->at(3.9).throttle, 0.02) << "shut, it would be an overrun with its fuel cut";
    EXPECT_EQ(dyno->at(4 + 2).kpa, 42);
    EXPECT_EQ(dyno->at(6 * 4 + 2).rpm, 1500);
    EXPECT_EQ(dyno->at(6 * 4 + 2).kpa, 95) << "downward at every second speed";
    EXPECT_EQ(dyno->at(65 * 4 + 2).rpm, 6000);
    EXPECT_EQ(dyno->at(66 * 4 + 13).rpm, 6500) << "the end of the first pull";
    EXPECT_EQ(dyno->at(66 * 4 + 10).kpa, 97);
}

}  // namespace
}  // namespace zentaq::sim
