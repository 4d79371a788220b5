// Two channels of a log against each other.
#include "logs/scatter.h"

#include <gtest/gtest.h>

#include <limits>

namespace zentaq {
namespace {

/// Four places across 0 to 4000, two up 0 to 100.
LogScatter four() {
    return {{0, 4000}, {0, 100}, 4, 2};
}

TEST(LogScatter, ARowFallsIntoItsPlace) {
    LogScatter scatter = four();
    scatter.add(7, 999, 49, 10);
    scatter.add(8, 1000, 50, 20);
    scatter.add(9, 1999, 99, 40);
    EXPECT_EQ(scatter.at(0, 0).count, 1);
    EXPECT_EQ(scatter.at(0, 0).firstRow, 7U);
    EXPECT_EQ(scatter.at(1, 1).count, 2);
    EXPECT_EQ(scatter.at(1, 1).mean(), 30);
    EXPECT_EQ(scatter.at(1, 1).firstRow, 8U);
    EXPECT_EQ(scatter.count(), 3);
}

TEST(LogScatter, BothEndsOfARangeBelongToIt) {
    LogScatter scatter = four();
    scatter.add(0, 0, 0, 1);
    scatter.add(1, 4000, 100, 1);
    EXPECT_EQ(scatter.at(0, 0).count, 1);
    EXPECT_EQ(scatter.at(3, 1).count, 1);
}

TEST(LogScatter, WhatLiesOutsideOrIsNoNumberIsLeftOut) {
    LogScatter scatter = four();
    const double none = std::numeric_limits<double>::quiet_NaN();
    scatter.add(0, -1, 50, 1);
    scatter.add(0, 4001, 50, 1);
    scatter.add(0, 100, 101, 1);
    scatter.add(0, none, 50, 1);
    scatter.add(0, 100, none, 1);
    scatter.add(0, 100, 50, none);
    EXPECT_EQ(scatter.count(), 0);
}

TEST(LogScatter, AChannelThatStandsStillHasOnePlace) {
    LogScatter scatter({5, 5}, {0, 1}, 3, 3);
    scatter.add(0, 5, 1, 1);
    EXPECT_EQ(scatter.at(0, 2).count, 1);
}

TEST(LogScatter, FindsTheNearestPlaceWithRows) {
    LogScatter scatter({0, 10}, {0, 10}, 10, 10);
    scatter.add(3, 2.5, 2.5, 1);
    scatter.add(4, 5.5, 5.5, 1);
    EXPECT_EQ(scatter.nearest(3, 3, 2)->firstRow, 3U);
    EXPECT_EQ(scatter.nearest(5, 4, 2)->firstRow, 4U);
    EXPECT_FALSE(scatter.nearest(9, 9, 2).has_value());
    EXPECT_FALSE(scatter.nearest(-20, 40, 2).has_value());
}

TEST(LogScatter, ZoomKeepsTheValueUnderThePointer) {
    EXPECT_EQ(zoomed({0, 100}, 0.5, 50), (ScatterRange{25, 75}));
    EXPECT_EQ(zoomed({0, 100}, 0.5, 0), (ScatterRange{0, 50}));
    EXPECT_EQ(zoomed({20, 40}, 2, 40), (ScatterRange{0, 40}));
}

}  // namespace
}  // namespace zentaq
