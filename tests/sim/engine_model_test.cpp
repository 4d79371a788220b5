#include "sim/engine_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zentaq::sim {
namespace {

LiveValues after(double seconds) {
    EngineModel engine;
    engine.advance(seconds);
    return engine.values();
}

TEST(EngineModel, IdlesAtPowerOnWithAColdEngine) {
    const LiveValues live = after(0);
    EXPECT_NEAR(live.rpm, 850, 30);
    EXPECT_NEAR(live.tpsVolts, 0.5, 0.001);
    EXPECT_NEAR(live.mapKpa, 34, 1);
    EXPECT_NEAR(live.coolantC, 20, 0.1);
}

TEST(EngineModel, BlipsPullsAndCruisesInEachRound) {
    EXPECT_NEAR(after(9.2).rpm, 3400, 30);
    EXPECT_NEAR(after(13).rpm, 850, 30);
    EXPECT_NEAR(after(26).rpm, 6500, 30);
    EXPECT_NEAR(after(22).tpsVolts, 4.5, 0.001);
    EXPECT_NEAR(after(35).rpm, 2600, 30);
    EXPECT_NEAR(after(35).mapKpa, 48, 1);
    EXPECT_NEAR(after(26 + EngineModel::cycleSeconds).rpm, 6500, 30);
}

TEST(EngineModel, WarmsUpTo88Degrees) {
    EXPECT_GT(after(60).coolantC, 35);
    EXPECT_NEAR(after(1800).coolantC, 88, 0.1);
}

TEST(EngineModel, DependsOnTheTimeAndNotOnItsSteps) {
    EngineModel engine;
    for (int i = 0; i < 2000; ++i) engine.advance(0.01);
    EXPECT_NEAR(engine.values().rpm, after(20).rpm, 0.001);
    EXPECT_NEAR(engine.values().egoVolts, after(20).egoVolts, 0.00001);
}

TEST(EngineModel, StaysInPlausibleRangesForTwoRounds) {
    EngineModel engine;
    for (int i = 0; i < 9600; ++i) {
        engine.advance(0.01);
        const LiveValues live = engine.values();
        ASSERT_TRUE(live.rpm > 800 && live.rpm < 6600) << live.rpm;
        ASSERT_TRUE(live.mapKpa > 15 && live.mapKpa < 104) << live.mapKpa;
        ASSERT_TRUE(live.tpsVolts >= 0.5 && live.tpsVolts <= 4.5) << live.tpsVolts;
        ASSERT_TRUE(live.airC > 20 && live.airC < 40) << live.airC;
        ASSERT_TRUE(live.batteryVolts > 13.5 && live.batteryVolts < 14.2) << live.batteryVolts;
        ASSERT_TRUE(live.knockPercent >= 0 && live.knockPercent < 60) << live.knockPercent;
        ASSERT_TRUE(live.knockRetard >= 0 && live.knockRetard < 8) << live.knockRetard;
        ASSERT_TRUE(live.egoVolts > 0 && live.egoVolts < 1) << live.egoVolts;
        ASSERT_TRUE(live.actualAfr > 12 && live.actualAfr < 15.5) << live.actualAfr;
        ASSERT_TRUE(live.primaryAdvance > 5 && live.primaryAdvance < 45) << live.primaryAdvance;
        ASSERT_LE(live.secondaryAdvance, live.primaryAdvance);
        ASSERT_TRUE(live.primaryPulseMs > 1 && live.primaryPulseMs < 20) << live.primaryPulseMs;
        ASSERT_TRUE(live.primaryDutyPercent > 0 && live.primaryDutyPercent < 95) << live.primaryDutyPercent;
        ASSERT_TRUE(live.idlePositionPercent > 20 && live.idlePositionPercent < 70)
            << live.idlePositionPercent;
    }
}

TEST(EngineModel, MovesSmoothlyEvenThroughAStopAndARestart) {
    EngineModel engine;
    LiveValues last = engine.values();
    for (int i = 0; i < 12000; ++i) {
        if (i == 2200) engine.kill();  // in the middle of the pull
        engine.advance(0.01);
        const LiveValues live = engine.values();
        ASSERT_LT(std::abs(live.rpm - last.rpm), 150) << i;
        ASSERT_LT(std::abs(live.mapKpa - last.mapKpa), 4) << i;
        ASSERT_LT(std::abs(live.tpsVolts - last.tpsVolts), 0.2) << i;
        ASSERT_LT(std::abs(live.coolantC - last.coolantC), 0.01) << i;
        ASSERT_LT(std::abs(live.primaryPulseMs - last.primaryPulseMs), 1) << i;
        last = live;
    }
}

TEST(EngineModel, KilledEngineStandsStillAndRestartsAfterFiveSeconds) {
    EngineModel engine;
    engine.advance(20);
    engine.kill();
    engine.advance(1);
    EXPECT_EQ(engine.values().rpm, 0);
    EXPECT_EQ(engine.values().primaryPulseMs, 0);
    EXPECT_EQ(engine.values().primaryAdvance, 0);
    EXPECT_NEAR(engine.values().mapKpa, 100, 0.001);
    engine.advance(3.9);
    EXPECT_EQ(engine.values().rpm, 0);
    engine.advance(1.1);
    EXPECT_NEAR(engine.values().rpm, 850, 40);
}

TEST(EngineModel, SecondKillWhileStandingStartsTheWaitAgain) {
    EngineModel engine;
    engine.kill();
    engine.advance(4);
    engine.kill();
    engine.advance(4.9);
    EXPECT_EQ(engine.values().rpm, 0);
    engine.advance(1.2);
    EXPECT_GT(engine.values().rpm, 700);
}

TEST(EngineModel, PinsStayWithinAByteAndMoveOnTheirOwn) {
    EngineModel engine;
    for (int i = 0; i < 1000; ++i) {
        engine.advance(0.1);
        for (const double raw : engine.values().gpio) ASSERT_TRUE(raw >= 0 && raw <= 255) << raw;
    }
    // after 5 s a sine of 0.05 Hz is at its top, one of 0.1 Hz back in its middle
    EXPECT_NEAR(after(5).gpio[5], 228, 0.001);
    EXPECT_NEAR(after(5).gpio[10], 128, 0.001);
}

TEST(EngineModel, TimingIsHeldAtZeroUntilRestored) {
    EngineModel engine;
    engine.setTimingZero(true);
    engine.advance(20);
    EXPECT_EQ(engine.values().primaryAdvance, 0);
    EXPECT_EQ(engine.values().secondaryAdvance, 0);
    engine.setTimingZero(false);
    EXPECT_GT(engine.values().primaryAdvance, 10);
}

}  // namespace
}  // namespace zentaq::sim
