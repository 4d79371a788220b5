// Each value is worked out by hand; a byte takes 10 bits / 38400 = 260.4 us, so 24 bytes take 6250 us.
#include "link/frame_timing.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/serial_port.h"

namespace zentaq {
namespace {

constexpr double tenthOfUs = 0.0001;

class FrameTimingTest : public testing::Test {
 protected:
    FrameTiming timing;

    void arrive(std::size_t count, std::int64_t nowUs) {
        timing.arrived(std::vector<std::uint8_t>(count), nowUs);
    }
    /// The last bytes of a reply, behind which the line goes quiet.
    void arriveLast(std::size_t count, std::int64_t nowUs, std::size_t all) {
        arrive(count, nowUs);
        timing.delivered(all, nowUs + 520);
    }
    /// A reply of 23 bytes that comes as one lump 8000 us behind the request.
    void oneFrame(std::int64_t startUs) {
        timing.written("F", startUs);
        arriveLast(23, startUs + 8000, 23);
    }
    /// What is told when the next frame is asked for.
    FrameShares sharesAtNext(std::int64_t nowUs, std::string_view request = "F") {
        timing.written(request, nowUs);
        return timing.shares(nowUs).value();
    }
};

TEST_F(FrameTimingTest, TellsNothingBeforeTheNextRequestMakesTheFirstFrameWhole) {
    EXPECT_FALSE(timing.shares(0));
    oneFrame(0);
    EXPECT_FALSE(timing.shares(9000));
    timing.written("F", 10'000);
    EXPECT_TRUE(timing.shares(10'000));
}

TEST_F(FrameTimingTest, AFrameThatIsNeverAnsweredDoesNotTakeTheAnswerOfAnotherCommandForItsOwn) {
    timing.written("F", 0);
    timing.written("E", 100'000);
    arriveLast(8, 104'000, 8);
    oneFrame(110'000);
    const FrameShares shares = sharesAtNext(120'000);
    // One frame in 10 ms, not two in 120.
    EXPECT_NEAR(shares.framesPerSecond, 100, tenthOfUs);
}

TEST_F(FrameTimingTest, OneLumpIsTheUnitsTimeSinceNothingProvesThatTheAdapterHeldItBack) {
    oneFrame(0);
    // Request and reply: 24 bytes, 6250 us. The reply began at 8000 - 23 * 260.417 = 2010.4, the request had
    // ended at 260.4: the unit thought 1750 us. What is left of 10000: 2000 us.
    const FrameShares shares = sharesAtNext(10'000);
    EXPECT_NEAR(shares.wireMs, 6.25, tenthOfUs);
    EXPECT_NEAR(shares.unitMs, 1.75, tenthOfUs);
    EXPECT_NEAR(shares.adapterMs, 0, tenthOfUs);
    EXPECT_NEAR(shares.programMs, 2, tenthOfUs);
    EXPECT_NEAR(shares.framesPerSecond, 100, tenthOfUs);
}

TEST_F(FrameTimingTest, ASecondLumpThatCameLaterThanTheWireNeedsIsTheAdapters) {
    timing.written("W", 1'000'000);
    // 12 bytes (3125 us) at 4000: the reply began at 875 at the latest and had to end at 875 + 24 * 260.417 =
    // 7125. The last lump came at 20000: 12875 us were the adapter's.
    arrive(12, 1'004'000);
    arriveLast(12, 1'020'000, 24);
    const FrameShares shares = sharesAtNext(1'021'000, "W");
    EXPECT_NEAR(shares.adapterMs, 12.875, tenthOfUs);
    EXPECT_NEAR(shares.unitMs, 0.875 - 0.2604167, tenthOfUs);
    EXPECT_NEAR(shares.wireMs, 25 * 0.2604167, tenthOfUs);
    EXPECT_NEAR(shares.programMs, 1, tenthOfUs);
}

TEST_F(FrameTimingTest, ALateFirstLumpIsCorrectedByASecondThatCameSooner) {
    timing.written("F", 0);
    // One byte at 6000 lets the reply begin at 5739.6; 24 bytes at 7000 prove that it began by 750.
    arrive(1, 6000);
    arriveLast(23, 7000, 24);
    const FrameShares shares = sharesAtNext(8000);
    EXPECT_NEAR(shares.unitMs, 0.75 - 0.2604167, tenthOfUs);
    EXPECT_NEAR(shares.adapterMs, 0, tenthOfUs);
}

TEST_F(FrameTimingTest, AnAnswerFasterThanAWireLeavesNoShareBelowNothing) {
    timing.written("F", 0);
    arriveLast(24, 100, 24);
    const FrameShares shares = sharesAtNext(1000);
    EXPECT_EQ(shares.unitMs, 0);
    EXPECT_EQ(shares.programMs, 0);
    EXPECT_NEAR(shares.framesPerSecond, 1000, tenthOfUs);
}

TEST_F(FrameTimingTest, AveragesOverTheLastFiftyFrames) {
    oneFrame(0);
    std::int64_t now = 30'000;  // one slow frame, which fifty others drive out
    for (int i = 0; i < 49; ++i, now += 10'000) oneFrame(now);
    timing.written("F", now);
    // 49 frames of 10 ms and one of 30: 520 ms for 50 frames.
    EXPECT_NEAR(timing.shares(now)->framesPerSecond, 50 / 0.52, 0.01);
    oneFrame(now);
    timing.written("F", now + 10'000);
    EXPECT_NEAR(timing.shares(now)->framesPerSecond, 100, 0.01);
}

TEST_F(FrameTimingTest, OtherCommandsBetweenTwoFramesCountForTheRateOnly) {
    oneFrame(0);
    timing.written("F", 10'000);
    arriveLast(23, 18'000, 23);
    timing.written("T", 20'000);
    arriveLast(16, 26'000, 16);
    const FrameShares shares = sharesAtNext(30'000);
    EXPECT_NEAR(shares.programMs, 2, tenthOfUs);
    EXPECT_NEAR(shares.framesPerSecond, 2 / 0.03, 0.01);
}

TEST_F(FrameTimingTest, AFrameWithoutAReplyIsNone) {
    timing.written("F", 0);
    timing.written("F", 84'000);
    EXPECT_FALSE(timing.shares(84'000));
}

TEST_F(FrameTimingTest, TellsNothingWhenNoFrameWasAskedForASecond) {
    oneFrame(0);
    timing.written("F", 10'000);
    EXPECT_TRUE(timing.shares(1'010'000));
    EXPECT_FALSE(timing.shares(1'010'001));
}

TEST_F(FrameTimingTest, ForgetsAllWhenThePortIsClosedOrItsAdapterGone) {
    for (const bool closed : {true, false}) {
        timing = {};
        oneFrame(0);
        timing.written("F", 10'000);
        if (closed) {
            timing.closed(11'000);
        } else {
            timing.lost(PortInfo{}, 11'000);
        }
        EXPECT_FALSE(timing.shares(11'000));
    }
}

TEST(FrameTimesText, IsOneShortLine) {
    EXPECT_EQ(
        frameTimesText(FrameShares{
            .unitMs = 0.44, .wireMs = 17.1875, .adapterMs = 0, .programMs = 1.25, .framesPerSecond = 52.6}),
        "53 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms");
    EXPECT_EQ(frameTimesText(std::nullopt), "");
}

}  // namespace
}  // namespace zentaq
