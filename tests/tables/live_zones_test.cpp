#include "tables/live_zones.h"

#include <gtest/gtest.h>

#include <vector>

namespace zentaq {
namespace {

/// 500, 1000, ... from left to right.
std::vector<float> speeds(int count) {
    std::vector<float> headers;
    for (int i = 1; i <= count; ++i) headers.push_back(500.0F * static_cast<float>(i));
    return headers;
}

/// Falling from top to bottom in steps of 5 down to 15 kPa.
std::vector<float> pressures(int count) {
    std::vector<float> headers;
    for (int i = count - 1; i >= 0; --i) headers.push_back(15.0F + 5.0F * static_cast<float>(i));
    return headers;
}

TEST(LiveZones, ColumnsMeetHalfwayBetweenHeaders) {
    LiveZones zones;
    zones.buildColumns(speeds(16));
    EXPECT_EQ(zones.column(1).low, 0);
    EXPECT_EQ(zones.column(1).high, 750);
    EXPECT_EQ(zones.column(2).low, 751);
    EXPECT_EQ(zones.column(2).high, 1250);
    EXPECT_EQ(zones.column(16).low, 7751);
    EXPECT_EQ(zones.column(16).high, 8000);
}

TEST(LiveZones, RowsOverlapByAHair) {
    LiveZones zones;
    zones.buildRows(pressures(16));
    EXPECT_EQ(zones.row(1).high, 90);
    EXPECT_FLOAT_EQ(zones.row(1).low, 87.5001F);
    EXPECT_EQ(zones.row(2).high, 87.5F);
    EXPECT_FLOAT_EQ(zones.row(2).low, 82.4999F);
    EXPECT_EQ(zones.row(16).high, 17.5F);
    EXPECT_EQ(zones.row(16).low, 0);
}

TEST(LiveZones, ANeighbourEndingAtExactly1MakesTheRowBeginAt2) {
    LiveZones zones;
    zones.buildRows(std::vector<float>{4, 1.5F, 0.5F});
    EXPECT_EQ(zones.row(3).high, 1);
    EXPECT_EQ(zones.row(2).low, 2);
}

TEST(LiveZones, TheLastColumnOfANarrowTableReadsThe15thPairOfTheBuildBefore) {
    LiveZones zones;
    zones.buildColumns(speeds(16));
    zones.buildColumns(speeds(8));
    EXPECT_EQ(zones.column(8).high, 4000);
    EXPECT_EQ(zones.column(8).low, 7751);  // 15th pair still ends at 7750
    LiveZones fresh;
    fresh.buildColumns(speeds(8));
    EXPECT_EQ(fresh.column(8).low, 1);
}

struct Point {
    const char* why;
    float x, y;
    GridCell cursor;
    GridCell cell;
};

TEST(LiveZones, FindTheCellOfAPoint) {
    LiveZones zones;
    zones.buildColumns(speeds(16));
    zones.buildRows(pressures(16));
    for (const Point& point :
         {Point{"inside", 1200, 40, {1, 1}, {11, 2}}, Point{"in the first zones", 600, 16, {1, 1}, {16, 1}},
          Point{"beyond the upper ends the outer cells answer", 9000, 200, {5, 5}, {1, 16}},
          Point{"below the lower end the outer cell answers", 600, -3, {5, 5}, {16, 1}},
          Point{"in a gap the cursor stays", 750.5F, 40, {7, 9}, {11, 9}},
          Point{"where rows overlap the lower wins", 600, 82.49995F, {1, 1}, {3, 1}}}) {
        EXPECT_EQ(zones.cellOf(point.x, point.y, point.cursor), point.cell) << point.why;
    }
}

TEST(MarkerPlace, IsTheShareBetweenTwoHeadersAndStopsAtTheEnds) {
    const auto columns = speeds(16);
    for (const auto& [speed, place] :
         {std::pair(1200.0F, 1.4), std::pair(500.0F, 0.0), std::pair(8000.0F, 15.0), std::pair(100.0F, 0.0),
          std::pair(9000.0F, 15.0)}) {
        EXPECT_DOUBLE_EQ(*placeOfColumn(columns, speed), place) << speed;
    }
    EXPECT_DOUBLE_EQ(*placeOfRow(std::vector<float>{15, 20, 30}, 25), 1.5);
    EXPECT_DOUBLE_EQ(*placeOfRow(std::vector<float>{15, 20, 30}, 30), 2);
    EXPECT_DOUBLE_EQ(*placeOfRow(columns, 100), 0);
    EXPECT_DOUBLE_EQ(*placeOfRow(columns, 9000), 15);
}

TEST(MarkerPlace, IsLeftAloneBetweenEqualHeaders) {
    EXPECT_FALSE(placeOfRow(std::vector<float>{15, 20, 20}, 20));
    EXPECT_FALSE(placeOfRow({}, 20));
}

}  // namespace
}  // namespace zentaq
