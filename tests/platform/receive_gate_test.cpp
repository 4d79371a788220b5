#include "platform/receive_gate.h"

#include <gtest/gtest.h>

#include <array>

namespace zentaq {
namespace {

class Gate : public testing::Test {
 protected:
    void receiveOne(std::uint8_t byte, std::int64_t nowUs) { gate.received(std::span(&byte, 1), nowUs); }
    /// Bytes first, first + 1, ... at 0.26 ms, as on a line of 38400 baud. Answers the last arrival's time.
    std::int64_t receiveLine(int count, std::int64_t startUs = 0, std::uint8_t first = 1) {
        for (int i = 0; i < count; ++i) receiveOne(static_cast<std::uint8_t>(first + i), startUs + i * 260);
        return startUs + (count - 1) * 260;
    }

    ReceiveGate gate;
};

TEST_F(Gate, TellsHowManyBytesAreMissing) {
    EXPECT_EQ(gate.missing(), 0U);
    gate.threshold(8);
    EXPECT_EQ(gate.missing(), 8U);
    const std::array<std::uint8_t, 6> six{};
    gate.received(six, 0);
    EXPECT_EQ(gate.missing(), 2U);
    gate.received(six, 0);
    EXPECT_EQ(gate.missing(), 0U);
}

TEST_F(Gate, ThresholdZeroNeverDelivers) {
    receiveLine(8);
    EXPECT_FALSE(gate.due(1'000'000));
    EXPECT_FALSE(gate.nextDueUs());
    EXPECT_EQ(gate.size(), 8u);
}

TEST_F(Gate, WhatNobodyAsksForIsKeptUpTo4096BytesOfWhichTheLastStay) {
    for (int i = 0; i < 5000; ++i) {
        const auto byte = static_cast<std::uint8_t>(i & 0xFF);
        gate.received(std::span(&byte, 1), i);
    }
    const std::vector<std::uint8_t> held = gate.take();
    ASSERT_EQ(held.size(), 4096u);
    EXPECT_EQ(held.front(), (5000 - 4096) & 0xFF);
    EXPECT_EQ(held.back(), 4999 & 0xFF);
}

TEST_F(Gate, NegativeThresholdNeverDelivers) {
    gate.threshold(-1);
    receiveLine(8);
    EXPECT_FALSE(gate.due(1'000'000));
}

TEST_F(Gate, TooFewBytesWaitForever) {
    gate.threshold(3);
    receiveLine(2);
    EXPECT_FALSE(gate.due(1'000'000));
    EXPECT_FALSE(gate.nextDueUs());
}

TEST_F(Gate, DeliversTwoCharacterTimesAfterTheLastByte) {
    gate.threshold(2);
    receiveLine(2);  // at 0 and 260
    EXPECT_EQ(gate.nextDueUs(), 780);
    EXPECT_FALSE(gate.due(779));
    EXPECT_TRUE(gate.due(780));
}

TEST_F(Gate, FirstIdentifyAsksForSixBytesAndGetsAllEight) {
    gate.threshold(6);
    for (int i = 0; i < 8; ++i) {
        const std::int64_t now = i * 260;
        receiveOne(static_cast<std::uint8_t>(i), now);
        EXPECT_FALSE(gate.due(now + 259)) << "while byte " << i + 1 << " is on its way";
    }
    EXPECT_TRUE(gate.due(7 * 260 + 520));
    EXPECT_EQ(gate.take(), (std::vector<std::uint8_t>{0, 1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(Gate, ABatchIsDeliveredOnceEvenIfNobodyTakesIt) {
    gate.threshold(2);
    const auto last = receiveLine(2);
    ASSERT_TRUE(gate.due(last + 520));
    gate.delivered();
    EXPECT_FALSE(gate.due(last + 10'000));
    EXPECT_FALSE(gate.nextDueUs());
}

TEST_F(Gate, BytesBehindADeliveredBatchMakeANewOne) {
    gate.threshold(2);
    receiveLine(2);
    gate.delivered();
    receiveOne(9, 5000);
    EXPECT_EQ(gate.nextDueUs(), 5520);
    EXPECT_EQ(gate.take(), (std::vector<std::uint8_t>{1, 2, 9}));
}

TEST_F(Gate, TakeEmptiesAndTheNextBatchCountsFromZero) {
    gate.threshold(2);
    receiveLine(2);
    gate.delivered();
    EXPECT_EQ(gate.take().size(), 2u);
    EXPECT_TRUE(gate.take().empty());
    receiveOne(7, 3000);
    EXPECT_FALSE(gate.nextDueUs());
    receiveOne(8, 3260);
    EXPECT_EQ(gate.nextDueUs(), 3780);
}

TEST_F(Gate, TakeReturnsWhatIsThereBeforeItIsDue) {
    gate.threshold(10);
    receiveLine(3);
    EXPECT_EQ(gate.take(), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(Gate, ThresholdSetAfterTheBytesCameCountsThem) {
    const auto last = receiveLine(4);
    gate.threshold(4);
    EXPECT_TRUE(gate.due(last + 520));
    gate.threshold(5);
    EXPECT_FALSE(gate.due(last + 520));
}

TEST_F(Gate, LowerThresholdDeliversABatchThatWasToldUnderAHigherOne) {
    gate.threshold(4);
    const auto last = receiveLine(4);
    gate.delivered();
    gate.threshold(2);
    EXPECT_TRUE(gate.due(last + 520));
}

TEST_F(Gate, FloodingLineIsDeliveredOnceItHolds256BytesMoreThanAsked) {
    gate.threshold(2);
    std::int64_t now = 0;
    for (int i = 0; i < 257; ++i, now += 260) {
        receiveOne(0xFF, now);
        ASSERT_FALSE(gate.due(now)) << i;
    }
    receiveOne(0xFF, now);
    EXPECT_TRUE(gate.due(now));
    EXPECT_EQ(gate.take().size(), 258u);
}

TEST_F(Gate, NoBytesAtAllDoNotMoveTheQuietTime) {
    gate.threshold(1);
    receiveOne(1, 100);
    gate.received({}, 600);
    EXPECT_EQ(gate.nextDueUs(), 620);
}

TEST_F(Gate, QuietTimeFollowsTheOwnersChoice) {
    gate = ReceiveGate(2000);
    gate.threshold(1);
    receiveOne(1, 0);
    EXPECT_EQ(gate.nextDueUs(), 2000);
}

}  // namespace
}  // namespace zentaq
