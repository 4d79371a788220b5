#include "link/progress.h"

#include <gtest/gtest.h>

#include <limits>

namespace zentaq {
namespace {

TEST(Progress, IsHiddenBeforeAnyWork) {
    EXPECT_FALSE(Progress().state().visible);
    EXPECT_EQ(Progress().state().percentage, "");
}

TEST(Progress, InitShowsTheFrameWithItsBoundsItsMessageAndZeroPercent) {
    Progress progress;
    progress.Init(250, 10, "Reading");
    EXPECT_TRUE(progress.state().visible);
    EXPECT_EQ(progress.state().minimum, 10);
    EXPECT_EQ(progress.state().maximum, 250);
    EXPECT_EQ(progress.state().value, 10);
    EXPECT_EQ(progress.state().percentage, "0%");
    EXPECT_EQ(progress.state().message, "Reading");
}

TEST(Progress, ThePercentageIsAWholeNumberWithHalvesToEven) {
    Progress progress;
    progress.Init(200, 0, "");
    progress.Active(50, 200);
    EXPECT_EQ(progress.state().value, 50);
    EXPECT_EQ(progress.state().percentage, "25%");
    progress.Active(1, 200);  // 0.5
    EXPECT_EQ(progress.state().percentage, "0%");
    progress.Active(3, 200);  // 1.5
    EXPECT_EQ(progress.state().percentage, "2%");
    progress.Active(5, 200);  // 2.5
    EXPECT_EQ(progress.state().percentage, "2%");
    progress.Active(200, 200);
    EXPECT_EQ(progress.state().percentage, "100%");
}

TEST(Progress, AMaximumOfZeroLeavesThePercentageAndFailsNothing) {
    Progress progress;
    progress.Init(0, 0, "Nothing to do");
    progress.Active(0, 0);
    EXPECT_EQ(progress.state().percentage, "0%");
    progress.Active(7, 0);
    EXPECT_EQ(progress.state().percentage, "0%");
    EXPECT_EQ(progress.state().value, 0);
}

TEST(Progress, AShareBeyond16BitsLeavesThePercentage) {
    Progress progress;
    progress.Init(100, 0, "");
    progress.Active(327.67, 1);
    EXPECT_EQ(progress.state().percentage, "32767%");
    progress.Active(328, 1);  // 32800
    EXPECT_EQ(progress.state().percentage, "32767%");
}

TEST(Progress, TheBarStaysInsideItsBounds) {
    Progress progress;
    progress.Init(100, 0, "");
    progress.Active(120, 100);
    EXPECT_EQ(progress.state().value, 100);
    EXPECT_EQ(progress.state().percentage, "120%");
    progress.Active(-5, 100);
    EXPECT_EQ(progress.state().value, 0);
    progress.Active(std::numeric_limits<double>::quiet_NaN(), 100);
    EXPECT_EQ(progress.state().value, 0);
}

TEST(Progress, BoundsTheWrongWayRoundGiveAnEmptyBar) {
    Progress progress;
    progress.Init(1, 10, "");
    progress.Active(5, 10);
    EXPECT_EQ(progress.state().value, 10);
}

TEST(Progress, ClearEmptiesThePercentageAndKeepsTheFrame) {
    Progress progress;
    progress.Init(100, 20, "Sending");
    progress.Active(80, 100);
    progress.Clear();
    EXPECT_TRUE(progress.state().visible);
    EXPECT_EQ(progress.state().value, 20);
    EXPECT_EQ(progress.state().percentage, "");
}

TEST(Progress, RemoveClearsAndHidesTheFrame) {
    Progress progress;
    progress.Init(100, 0, "Sending");
    progress.Active(80, 100);
    progress.Remove();
    EXPECT_FALSE(progress.state().visible);
    EXPECT_EQ(progress.state().value, 0);
    EXPECT_EQ(progress.state().percentage, "");
}

TEST(Progress, EveryChangeMovesTheCounter) {
    Progress progress;
    const auto before = progress.changes();
    progress.Init(100, 0, "");
    const auto shown = progress.changes();
    EXPECT_GT(shown, before);
    progress.Active(1, 100);
    EXPECT_GT(progress.changes(), shown);
}

}  // namespace
}  // namespace zentaq
