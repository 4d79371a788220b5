// Frames and rows of a playback.
#include "logs/log_playback.h"

#include <gtest/gtest.h>

#include <vector>

namespace zentaq {
namespace {

/// On a log whose rows hold these frames.
class PlaybackOf {
 public:
    explicit PlaybackOf(std::vector<std::int32_t> frames) : frames_(std::move(frames)) { play.begin(); }

 private:
    std::vector<std::int32_t> frames_;

 public:
    LogPlayback play{
        {[this] { return frames_.size(); }, [this](std::size_t row) { return frames_.at(row); }}};
};

TEST(LogPlayback, WithoutRowsThereIsNothingToStepThrough) {
    PlaybackOf none({});
    EXPECT_EQ(none.play.FrameUpdate(1), StepStatus::NoRows);
    EXPECT_EQ(none.play.FrameUpdate(0, 0.5F), StepStatus::NoRows);
    EXPECT_EQ(none.play.LastFrame, 0);
}

TEST(LogPlayback, OnALogWithARowAFrameBothGoTogether) {
    PlaybackOf log({1, 2, 3});
    EXPECT_EQ(log.play.LastFrame, 3);
    // From the start the counter is one frame behind the first row: the first step stays on it.
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 0U);
    EXPECT_EQ(log.play.FrameNumber, 1);
    EXPECT_EQ(log.play.CurrentRow, 1);
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 1U);
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 2U);
    EXPECT_EQ(log.play.CurrentRow, 3);
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::AtEnd);
    EXPECT_EQ(log.play.FrameNumber, 3);
}

TEST(LogPlayback, WhereRowsLieTenFramesApartARowStandsForTenSteps) {
    PlaybackOf log({10, 20, 30});
    for (int i = 1; i <= 19; ++i) {
        EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
        EXPECT_EQ(log.play.row(), 0U) << i;
        EXPECT_EQ(log.play.FrameNumber, i);
    }
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 1U);
    for (int i = 0; i < 10; ++i) log.play.FrameUpdate(1);
    EXPECT_EQ(log.play.row(), 2U);
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::AtEnd);
    EXPECT_EQ(log.play.FrameNumber, 30);
}

TEST(LogPlayback, BackwardTheRowChangesBelowItsFrame) {
    PlaybackOf log({10, 20, 30});
    log.play.toLast();
    EXPECT_EQ(log.play.FrameNumber, 30);
    EXPECT_EQ(log.play.CurrentRow, 30);  // counted by its frame
    EXPECT_EQ(log.play.FrameUpdate(-1), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 1U);
    EXPECT_EQ(log.play.FrameNumber, 29);
    EXPECT_EQ(log.play.CurrentRow, 2);
    for (int i = 0; i < 9; ++i) log.play.FrameUpdate(-1);
    EXPECT_EQ(log.play.row(), 1U);
    EXPECT_EQ(log.play.FrameNumber, 20);
    log.play.FrameUpdate(-1);
    EXPECT_EQ(log.play.row(), 0U);
}

TEST(LogPlayback, InFrontOfTheFirstRowIsOnePlaceMore) {
    PlaybackOf log({5, 6});
    log.play.toFirst();
    EXPECT_EQ(log.play.FrameUpdate(-1), StepStatus::Moved);
    EXPECT_EQ(log.play.CurrentRow, 0);
    EXPECT_EQ(log.play.FrameNumber, 4);
    EXPECT_EQ(log.play.row(), 0U);
    EXPECT_EQ(log.play.FrameUpdate(-1), StepStatus::AtBeginning);
    EXPECT_EQ(log.play.FrameNumber, 4);
    EXPECT_EQ(log.play.FrameUpdate(1), StepStatus::Moved);
    EXPECT_EQ(log.play.CurrentRow, 1);
    EXPECT_EQ(log.play.FrameNumber, 5);
}

TEST(LogPlayback, AJumpGoesByTheFramesCountedInRows) {
    PlaybackOf log({10, 20, 30, 40});
    EXPECT_EQ(log.play.FrameUpdate(0, 0), StepStatus::Moved);
    EXPECT_EQ(log.play.row(), 0U);
    EXPECT_EQ(log.play.FrameNumber, 10);
    EXPECT_EQ(log.play.CurrentRow, 1);
    // 0.05 of 40 frames are 2 rows.
    log.play.FrameUpdate(0, 0.05F);
    EXPECT_EQ(log.play.row(), 2U);
    EXPECT_EQ(log.play.FrameNumber, 30);
    log.play.FrameUpdate(0, 0.9F);
    EXPECT_EQ(log.play.row(), 3U);
    log.play.FrameUpdate(0, 7);
    EXPECT_EQ(log.play.row(), 3U);
    log.play.FrameUpdate(0, -7);
    EXPECT_EQ(log.play.row(), 0U);
}

TEST(LogPlayback, ALogWithMoreRowsThanFramesEndsWhereTheCountOfRowsMeetsTheLastFrame) {
    PlaybackOf log({1, 1, 2, 2, 3, 3});
    int steps = 0;
    while (log.play.FrameUpdate(1) == StepStatus::Moved) ++steps;
    EXPECT_EQ(log.play.CurrentRow, 3);
    EXPECT_EQ(log.play.row(), 2U);
    EXPECT_EQ(steps, 2);
}

TEST(LogPlayback, ARewindForgetsAllCounters) {
    PlaybackOf log({10, 20});
    log.play.toLast();
    log.play.rewind();
    EXPECT_EQ(log.play.FrameNumber, 0);
    EXPECT_EQ(log.play.CurrentRow, 0);
    EXPECT_EQ(log.play.row(), 0U);
}

}  // namespace
}  // namespace zentaq
