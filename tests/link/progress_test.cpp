#include "link/progress.h"

#include <gtest/gtest.h>

#include <limits>

namespace zentaq {
namespace {

class ProgressTest : public ::testing::Test {
 protected:
    Progress progress;
    const Progress::State& state = progress.state();
};

TEST_F(ProgressTest, IsHiddenBeforeAnyWork) {
    EXPECT_FALSE(state.visible);
    EXPECT_EQ(state.percentage, "");
}

TEST_F(ProgressTest, InitShowsTheFrameWithItsBoundsItsMessageAndZeroPercent) {
    progress.Init(250, 10, "Reading");
    EXPECT_TRUE(state.visible);
    EXPECT_EQ(state.minimum, 10);
    EXPECT_EQ(state.maximum, 250);
    EXPECT_EQ(state.value, 10);
    EXPECT_EQ(state.percentage, "0%");
    EXPECT_EQ(state.message, "Reading");
}

TEST_F(ProgressTest, ThePercentageIsAWholeNumberWithHalvesToEven) {
    progress.Init(200, 0, "");
    progress.Active(50, 200);
    EXPECT_EQ(state.value, 50);
    EXPECT_EQ(state.percentage, "25%");
    for (const auto& [done, shown] : {std::pair(1, "0%"), {3, "2%"}, {5, "2%"}}) {  // 0.5, 1.5, 2.5
        progress.Active(done, 200);
        EXPECT_EQ(state.percentage, shown);
    }
    progress.Active(200, 200);
    EXPECT_EQ(state.percentage, "100%");
}

TEST_F(ProgressTest, AMaximumOfZeroLeavesThePercentageAndFailsNothing) {
    progress.Init(0, 0, "Nothing to do");
    progress.Active(0, 0);
    EXPECT_EQ(state.percentage, "0%");
    progress.Active(7, 0);
    EXPECT_EQ(state.percentage, "0%");
    EXPECT_EQ(state.value, 0);
}

TEST_F(ProgressTest, AShareBeyond16BitsLeavesThePercentage) {
    progress.Init(100, 0, "");
    progress.Active(327.67, 1);
    EXPECT_EQ(state.percentage, "32767%");
    progress.Active(328, 1);  // 32800
    EXPECT_EQ(state.percentage, "32767%");
}

TEST_F(ProgressTest, TheBarStaysInsideItsBounds) {
    progress.Init(100, 0, "");
    progress.Active(120, 100);
    EXPECT_EQ(state.value, 100);
    EXPECT_EQ(state.percentage, "120%");
    progress.Active(-5, 100);
    EXPECT_EQ(state.value, 0);
    progress.Active(std::numeric_limits<double>::quiet_NaN(), 100);
    EXPECT_EQ(state.value, 0);
}

TEST_F(ProgressTest, BoundsTheWrongWayRoundGiveAnEmptyBar) {
    progress.Init(1, 10, "");
    progress.Active(5, 10);
    EXPECT_EQ(state.value, 10);
}

TEST_F(ProgressTest, ClearEmptiesThePercentageAndKeepsTheFrameWhichRemoveHides) {
    progress.Init(100, 20, "Sending");
    for (const bool removed : {false, true}) {
        progress.Active(80, 100);
        removed ? progress.Remove() : progress.Clear();
        EXPECT_EQ(state.visible, !removed);
        EXPECT_EQ(state.value, 20);
        EXPECT_EQ(state.percentage, "");
    }
}

TEST_F(ProgressTest, EveryChangeMovesTheCounter) {
    const auto before = progress.changes();
    progress.Init(100, 0, "");
    const auto shown = progress.changes();
    EXPECT_GT(shown, before);
    progress.Active(1, 100);
    EXPECT_GT(progress.changes(), shown);
}

}  // namespace
}  // namespace zentaq
