#include "logs/plot_window.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

class PlotWindowTest : public testing::Test {
 protected:
    PlotWindowTest() { window.reset(0, 100); }
    void expectShown(double from, double to) {
        EXPECT_NEAR(window.from(), from, 1e-9);
        EXPECT_NEAR(window.to(), to, 1e-9);
    }
    PlotWindow window;
};

TEST_F(PlotWindowTest, ZoomsAboutTheTimeUnderThePointer) {
    window.zoom(0.5, 20);
    expectShown(10, 60);
    window.zoom(0.5, 60);
    expectShown(35, 60);
}

TEST_F(PlotWindowTest, NeverLeavesTheLog) {
    window.zoom(2, 50);
    expectShown(0, 100);
    window.show(80, 100);
    window.move(5);
    expectShown(80, 100);
    window.move(-50);
    expectShown(0, 20);
    window.zoom(2, 0);
    expectShown(0, 40);
}

TEST_F(PlotWindowTest, ComesNoNearerThanFiveRows) {
    window.zoom(1e-6, 50);
    expectShown(49.95, 50.05);
    window.show(10, 10);
    expectShown(9.95, 10.05);
}

TEST_F(PlotWindowTest, MovesByAPartOfWhatItShows) {
    window.show(20, 40);
    window.move(0.25);
    expectShown(25, 45);
}

TEST_F(PlotWindowTest, GoesBackStepByStepToAll) {
    window.show(20, 40);
    window.showBox(30, 35, 1, {0.5, 1});
    EXPECT_EQ(window.share(1), (PlotWindow::Share{0.5, 1}));
    EXPECT_TRUE(window.back());
    expectShown(20, 40);
    EXPECT_EQ(window.share(1), PlotWindow::Share{});
    EXPECT_TRUE(window.back());
    EXPECT_TRUE(window.showsAll());
    EXPECT_FALSE(window.back());
}

TEST_F(PlotWindowTest, TakesManyStepsOfAWheelForOneChange) {
    window.show(20, 60);
    for (int i = 0; i < 5; ++i) window.zoom(0.8, 40);
    for (int i = 0; i < 5; ++i) window.move(0.1);
    window.back();
    EXPECT_NEAR(window.length(), 40 * 0.32768, 1e-9) << "0.8 five times";
    window.back();
    expectShown(20, 60);
}

TEST_F(PlotWindowTest, ABoxInABoxIsAPartOfAPart) {
    window.showBox(0, 50, 0, {0.5, 1});
    window.showBox(0, 25, 0, {0, 0.5});
    EXPECT_EQ(window.share(0), (PlotWindow::Share{0.5, 0.75}));
    EXPECT_EQ(window.share(7), PlotWindow::Share{}) << "another pane shows all";
}

TEST_F(PlotWindowTest, AllIsAChangeThatOneGoesBackFrom) {
    window.show(20, 40);
    window.all();
    EXPECT_TRUE(window.showsAll());
    window.all();
    window.back();
    expectShown(20, 40);
}

TEST_F(PlotWindowTest, FollowsTheCursorOnlyWhereItWouldLeave) {
    window.show(20, 40);
    window.bring(39);
    expectShown(20, 40);
    window.bring(41);
    expectShown(39, 59);
    window.bring(38);
    expectShown(20, 40);
    window.back();
    EXPECT_TRUE(window.showsAll()) << "playing is no change to go back from";
}

TEST_F(PlotWindowTest, GrowsWithALogThatItShowsWhole) {
    window.limits(0, 130);
    expectShown(0, 130);
}

TEST_F(PlotWindowTest, StaysAtTheEndOfALogThatGrowsAndElsewhereWhereItIs) {
    window.show(80, 100);
    window.limits(0, 105);
    expectShown(85, 105);
    window.show(20, 40);
    window.limits(0, 110);
    expectShown(20, 40);
}

TEST_F(PlotWindowTest, IsAWindowAlsoForALogOfOneRow) {
    window.reset(5, 5);
    EXPECT_GT(window.length(), 0);
    window.zoom(0.5, 5);
    EXPECT_GT(window.length(), 0);
}

}  // namespace
}  // namespace zentaq
