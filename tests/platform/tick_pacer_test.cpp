#include "platform/tick_pacer.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr std::int64_t ms = 1000;

TickPacer started(const TickPacer::Limits& limits = {}) {
    TickPacer pacer(limits);
    pacer.start(0);
    return pacer;
}

TEST(TickPacer, OneTickAMillisecond) {
    TickPacer pacer = started();
    EXPECT_EQ(pacer.due(999), 0);
    EXPECT_EQ(pacer.due(1000), 1);
    EXPECT_EQ(pacer.due(1999), 0);
    EXPECT_EQ(pacer.due(3000), 2);
}

TEST(TickPacer, CountsFromTheTimeOfItsStart) {
    TickPacer pacer;
    pacer.start(123'456'789);
    EXPECT_EQ(pacer.due(123'456'789), 0);
    EXPECT_EQ(pacer.due(123'457'789), 1);
    EXPECT_EQ(pacer.nextDueUs(), 123'458'789);
}

TEST(TickPacer, AThousandTicksAreOneSecondThoughTheTimerFiresEvery1300Microseconds) {
    TickPacer pacer = started();
    int ticks = 0;
    for (std::int64_t now = 0; now <= 1000 * ms; now += 1300) ticks += pacer.due(now);
    // The last firing stands at 769 * 1300 us = 999.7 ms.
    EXPECT_EQ(ticks, 999);
    EXPECT_EQ(ticks + pacer.due(1000 * ms), 1000);
}

TEST(TickPacer, CatchesUpInStepsOf20) {
    TickPacer pacer = started();
    EXPECT_EQ(pacer.due(50 * ms), 20);
    EXPECT_EQ(pacer.due(50 * ms), 20);
    EXPECT_EQ(pacer.due(50 * ms), 10);
    EXPECT_EQ(pacer.due(50 * ms), 0);
}

TEST(TickPacer, TellsWhatIsOwedAndLeavesItOwed) {
    TickPacer pacer = started();
    EXPECT_EQ(pacer.owed(7 * ms), 7);
    EXPECT_EQ(pacer.owed(7 * ms), 7);
    EXPECT_TRUE(pacer.tryEarly(0));
    EXPECT_EQ(pacer.owed(0), 0);
    EXPECT_EQ(pacer.owed(7 * ms), 6);
}

TEST(TickPacer, StepSizeIsTheOwnersChoice) {
    TickPacer pacer = started({.perFiring = 7, .debt = 5000});
    EXPECT_EQ(pacer.due(10 * ms), 7);
    EXPECT_EQ(pacer.due(10 * ms), 3);
}

TEST(TickPacer, DebtOf5000TicksIsKept) {
    TickPacer pacer = started({.perFiring = 100'000, .debt = 5000});
    EXPECT_EQ(pacer.due(5000 * ms), 5000);
}

TEST(TickPacer, DebtBeyond5000TicksIsDropped) {
    TickPacer pacer = started({.perFiring = 100'000, .debt = 5000});
    EXPECT_EQ(pacer.due(5001 * ms), 5000);
    EXPECT_EQ(pacer.due(5001 * ms), 0);
    EXPECT_EQ(pacer.due(5002 * ms), 1);
}

TEST(TickPacer, AfterALongSleepItPaysTheKeptDebtInSteps) {
    TickPacer pacer = started();
    const std::int64_t hour = 3'600'000 * ms;
    int ticks = 0;
    int firings = 0;
    for (int due = pacer.due(hour); due > 0; due = pacer.due(hour), ++firings) ticks += due;
    EXPECT_EQ(ticks, 5000);
    EXPECT_EQ(firings, 250);
}

TEST(TickPacer, TwoTicksMayRunAheadAndAThirdMayNot) {
    TickPacer pacer = started();
    EXPECT_TRUE(pacer.tryEarly(100));
    EXPECT_TRUE(pacer.tryEarly(100));
    EXPECT_FALSE(pacer.tryEarly(100));
}

TEST(TickPacer, EarlyTicksAreTakenFromLaterOnes) {
    TickPacer pacer = started();
    ASSERT_TRUE(pacer.tryEarly(100));
    ASSERT_TRUE(pacer.tryEarly(100));
    EXPECT_EQ(pacer.due(1 * ms), 0);
    EXPECT_EQ(pacer.due(2 * ms), 0);
    EXPECT_EQ(pacer.due(3 * ms), 1);
}

TEST(TickPacer, TheAverageStays1000ASecondWithAnEarlyTickInEveryFiring) {
    TickPacer pacer = started();
    int ticks = 0;
    for (std::int64_t now = 0; now <= 1000 * ms; now += 700) {
        ticks += pacer.tryEarly(now) ? 1 : 0;
        ticks += pacer.due(now);
    }
    EXPECT_GE(ticks, 999);
    EXPECT_LE(ticks, 1002);
}

TEST(TickPacer, AnEarlyTickWhileTicksAreOwedPaysOneOfThem) {
    TickPacer pacer = started();
    ASSERT_TRUE(pacer.tryEarly(5 * ms));
    EXPECT_EQ(pacer.due(5 * ms), 4);
}

TEST(TickPacer, ForgivingDropsWhatIsOwed) {
    TickPacer pacer = started({.perFiring = 1});
    EXPECT_EQ(pacer.due(300'000), 1);
    pacer.forgive(300'000);
    EXPECT_EQ(pacer.due(300'999), 0);
    EXPECT_EQ(pacer.due(301'000), 1);
    EXPECT_EQ(pacer.due(301'000), 0);
}

TEST(TickPacer, ForgivingKeepsTicksThatRanAhead) {
    TickPacer pacer = started();
    EXPECT_TRUE(pacer.tryEarly(0));
    EXPECT_TRUE(pacer.tryEarly(0));
    pacer.forgive(0);
    EXPECT_EQ(pacer.due(2'999), 0);
    EXPECT_EQ(pacer.due(3'000), 1);
}

TEST(TickPacer, StartForgetsTheDebt) {
    TickPacer pacer = started();
    pacer.start(100 * ms);
    EXPECT_EQ(pacer.due(100 * ms), 0);
    EXPECT_EQ(pacer.due(101 * ms), 1);
}

TEST(TickPacer, NextDueStandsInThePastWhileTicksAreOwed) {
    TickPacer pacer = started();
    EXPECT_EQ(pacer.due(30 * ms), 20);
    EXPECT_EQ(pacer.nextDueUs(), 21 * ms);
}

}  // namespace
}  // namespace zentaq
