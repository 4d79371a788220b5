#include "platform/tick_pacer.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr std::int64_t ms = 1000;

/// Started at time 0.
class Pacer : public testing::Test {
 protected:
    Pacer() { begin({}); }
    void begin(const TickPacer::Limits& limits) {
        pacer = TickPacer(limits);
        pacer.start(0);
    }
    TickPacer pacer;
};

TEST_F(Pacer, OneTickAMillisecond) {
    EXPECT_EQ(pacer.due(999), 0);
    EXPECT_EQ(pacer.due(1000), 1);
    EXPECT_EQ(pacer.due(1999), 0);
    EXPECT_EQ(pacer.due(3000), 2);
}

TEST_F(Pacer, CountsFromTheTimeOfItsStart) {
    pacer.start(123'456'789);
    EXPECT_EQ(pacer.due(123'456'789), 0);
    EXPECT_EQ(pacer.due(123'457'789), 1);
    EXPECT_EQ(pacer.nextDueUs(), 123'458'789);
}

TEST_F(Pacer, AThousandTicksAreOneSecondThoughTheTimerFiresEvery1300Microseconds) {
    int ticks = 0;
    for (std::int64_t now = 0; now <= 1000 * ms; now += 1300) ticks += pacer.due(now);
    // The last firing stands at 769 * 1300 us = 999.7 ms.
    EXPECT_EQ(ticks, 999);
    EXPECT_EQ(ticks + pacer.due(1000 * ms), 1000);
}

TEST_F(Pacer, CatchesUpInStepsOf20) {
    EXPECT_EQ(pacer.due(50 * ms), 20);
    EXPECT_EQ(pacer.due(50 * ms), 20);
    EXPECT_EQ(pacer.due(50 * ms), 10);
    EXPECT_EQ(pacer.due(50 * ms), 0);
}

TEST_F(Pacer, TellsWhatIsOwedAndLeavesItOwed) {
    EXPECT_EQ(pacer.owed(7 * ms), 7);
    EXPECT_EQ(pacer.owed(7 * ms), 7);
    EXPECT_TRUE(pacer.tryEarly(0));
    EXPECT_EQ(pacer.owed(0), 0);
    EXPECT_EQ(pacer.owed(7 * ms), 6);
}

TEST_F(Pacer, StepSizeIsTheOwnersChoice) {
    begin({.perFiring = 7, .debt = 5000});
    EXPECT_EQ(pacer.due(10 * ms), 7);
    EXPECT_EQ(pacer.due(10 * ms), 3);
}

TEST_F(Pacer, DebtOf5000TicksIsKept) {
    begin({.perFiring = 100'000, .debt = 5000});
    EXPECT_EQ(pacer.due(5000 * ms), 5000);
}

TEST_F(Pacer, DebtBeyond5000TicksIsDropped) {
    begin({.perFiring = 100'000, .debt = 5000});
    EXPECT_EQ(pacer.due(5001 * ms), 5000);
    EXPECT_EQ(pacer.due(5001 * ms), 0);
    EXPECT_EQ(pacer.due(5002 * ms), 1);
}

TEST_F(Pacer, AfterALongSleepItPaysTheKeptDebtInSteps) {
    const std::int64_t hour = 3'600'000 * ms;
    int ticks = 0;
    int firings = 0;
    for (int due = pacer.due(hour); due > 0; due = pacer.due(hour), ++firings) ticks += due;
    EXPECT_EQ(ticks, 5000);
    EXPECT_EQ(firings, 250);
}

TEST_F(Pacer, TwoTicksMayRunAheadAndAThirdMayNot) {
    EXPECT_TRUE(pacer.tryEarly(100));
    EXPECT_TRUE(pacer.tryEarly(100));
    EXPECT_FALSE(pacer.tryEarly(100));
}

TEST_F(Pacer, EarlyTicksAreTakenFromLaterOnes) {
    ASSERT_TRUE(pacer.tryEarly(100));
    ASSERT_TRUE(pacer.tryEarly(100));
    EXPECT_EQ(pacer.due(1 * ms), 0);
    EXPECT_EQ(pacer.due(2 * ms), 0);
    EXPECT_EQ(pacer.due(3 * ms), 1);
}

TEST_F(Pacer, TheAverageStays1000ASecondWithAnEarlyTickInEveryFiring) {
    int ticks = 0;
    for (std::int64_t now = 0; now <= 1000 * ms; now += 700) {
        ticks += pacer.tryEarly(now) ? 1 : 0;
        ticks += pacer.due(now);
    }
    EXPECT_GE(ticks, 999);
    EXPECT_LE(ticks, 1002);
}

TEST_F(Pacer, AnEarlyTickWhileTicksAreOwedPaysOneOfThem) {
    ASSERT_TRUE(pacer.tryEarly(5 * ms));
    EXPECT_EQ(pacer.due(5 * ms), 4);
}

TEST_F(Pacer, ForgivingDropsWhatIsOwed) {
    begin({.perFiring = 1});
    EXPECT_EQ(pacer.due(300'000), 1);
    pacer.forgive(300'000);
    EXPECT_EQ(pacer.due(300'999), 0);
    EXPECT_EQ(pacer.due(301'000), 1);
    EXPECT_EQ(pacer.due(301'000), 0);
}

TEST_F(Pacer, ForgivingKeepsTicksThatRanAhead) {
    EXPECT_TRUE(pacer.tryEarly(0));
    EXPECT_TRUE(pacer.tryEarly(0));
    pacer.forgive(0);
    EXPECT_EQ(pacer.due(2'999), 0);
    EXPECT_EQ(pacer.due(3'000), 1);
}

TEST_F(Pacer, StartForgetsTheDebt) {
    pacer.start(100 * ms);
    EXPECT_EQ(pacer.due(100 * ms), 0);
    EXPECT_EQ(pacer.due(101 * ms), 1);
}

TEST_F(Pacer, NextDueStandsInThePastWhileTicksAreOwed) {
    EXPECT_EQ(pacer.due(30 * ms), 20);
    EXPECT_EQ(pacer.nextDueUs(), 21 * ms);
}

}  // namespace
}  // namespace zentaq
