#include "sim/engine_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "engine_helpers.h"
#include "sim/map_sensor.h"

namespace zentaq::sim {
namespace {

using namespace test;

LiveValues after(double seconds) {
    EngineModel engine;
    engine.advance(seconds);
    return engine.values();
}

EngineModel drivenBy(const MemoryImage& image, double seconds = 0, Drive drive = roadDrive()) {
    EngineModel engine({.serial = 200001, .drive = std::move(drive)});
    engine.setCalibration(calibrationOf(image));
    engine.advance(seconds);
    return engine;
}

/// The flat image without its closed loop.
MemoryImage openLoopImage() {
    MemoryImage image = flatImage();
    image.put(278, 0);
    return image;
}

struct Extremes {
    double least = std::numeric_limits<double>::infinity();
    double most = -least;
};

/// Of a value while the engine runs on in steps of a hundredth of a second.
Extremes extremesOf(double LiveValues::*value, EngineModel& engine, int steps) {
    Extremes found;
    for (int i = 0; i < steps; ++i) {
        engine.advance(0.01);
        found.least = std::min(found.least, engine.values().*value);
        found.most = std::max(found.most, engine.values().*value);
    }
    return found;
}

/// Holds one speed and load, warm, for tests that need both.
class Held : public DriveCycle {
 public:
    Held(double rpm, double kpa) : point_{.rpm = rpm, .kpa = kpa, .throttle = 0.3} {}
    DrivePoint at(double /*seconds*/) const override { return point_; }
    double length() const override { return 60; }

 private:
    DrivePoint point_;
};

EngineModel heldAt(double rpm, double kpa, const MemoryImage& image, double seconds = 400) {
    return drivenBy(image, seconds, std::make_shared<Held>(rpm, kpa));
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
    EXPECT_NEAR(after(26 + roadDrive()->length()).rpm, 6500, 30);
}

TEST(EngineModel, WarmsUpTo88DegreesInSomeMinutes) {
    EXPECT_GT(after(60).coolantC, 35);
    EXPECT_GT(after(240).coolantC, 85);
    EXPECT_NEAR(after(1800).coolantC, 88, 2);
}

TEST(EngineModel, DependsOnTheTimeAndNotOnItsSteps) {
    EngineModel engine;
    for (int i = 0; i < 3000; ++i) engine.advance(0.01);
    EngineModel odd;
    for (int i = 0; i < 10000; ++i) odd.advance(0.003);
    const LiveValues whole = after(30);
    for (const EngineModel* other : {&engine, &odd}) {
        EXPECT_EQ(other->values().rpm, whole.rpm);
        EXPECT_EQ(other->values().egoVolts, whole.egoVolts);
        EXPECT_EQ(other->values().coolantC, whole.coolantC);
        EXPECT_EQ(other->values().egoCorrectionPercent, whole.egoCorrectionPercent);
        EXPECT_EQ(other->values().knockRetard, whole.knockRetard);
    }
}

TEST(EngineModel, NegativeAndSenselessTimesChangeNothing) {
    EngineModel engine;
    engine.advance(10);
    const double rpm = engine.values().rpm;
    engine.advance(-5);
    engine.advance(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(engine.values().rpm, rpm);
}

void expectPlausible(const LiveValues& live) {
    ASSERT_TRUE(live.rpm > 800 && live.rpm < 6600) << live.rpm;
    ASSERT_TRUE(live.mapKpa > 15 && live.mapKpa < 104) << live.mapKpa;
    ASSERT_TRUE(live.tpsVolts >= 0.5 && live.tpsVolts <= 4.5) << live.tpsVolts;
    ASSERT_TRUE(live.airC > 20 && live.airC < 40) << live.airC;
    ASSERT_TRUE(live.batteryVolts > 13.5 && live.batteryVolts < 14.2) << live.batteryVolts;
    ASSERT_TRUE(live.knockPercent >= 0 && live.knockPercent < 60) << live.knockPercent;
    ASSERT_TRUE(live.knockRetard >= 0 && live.knockRetard <= 8) << live.knockRetard;
    ASSERT_TRUE(live.egoVolts >= 0 && live.egoVolts <= 5) << live.egoVolts;
    // 22.5 is where the sensor's curve ends: the air of a cut.
    ASSERT_TRUE(live.actualAfr > 10 && live.actualAfr < 22.6) << live.actualAfr;
    ASSERT_TRUE(live.desiredAfr > 12 && live.desiredAfr < 15) << live.desiredAfr;
    ASSERT_TRUE(live.primaryAdvance > 5 && live.primaryAdvance < 47) << live.primaryAdvance;
    ASSERT_LE(live.secondaryAdvance, live.primaryAdvance);
    ASSERT_TRUE(live.primaryPulseMs == 0 || live.primaryPulseMs > 1) << live.primaryPulseMs;
    ASSERT_LT(live.primaryPulseMs, 20);
    ASSERT_TRUE(live.primaryDutyPercent >= 0 && live.primaryDutyPercent < 95) << live.primaryDutyPercent;
    ASSERT_TRUE(live.gammaPercent > 70 && live.gammaPercent < 300) << live.gammaPercent;
    ASSERT_LE(std::abs(live.egoCorrectionPercent), 15) << live.egoCorrectionPercent;
    ASSERT_TRUE(live.idlePositionPercent > 20 && live.idlePositionPercent < 70) << live.idlePositionPercent;
}

TEST(EngineModel, StaysInPlausibleRangesOnEveryDrive) {
    for (const Drive& drive : {roadDrive(), dynoDrive(), idleDrive()}) {
        EngineModel engine({.serial = 200001, .drive = drive});
        for (double seconds = 0; seconds < 2 * drive->length(); seconds += 0.02) {
            engine.advance(0.02);
            expectPlausible(engine.values());
            if (HasFatalFailure()) return;
        }
    }
}

TEST(EngineModel, MovesSmoothlyEvenThroughAStopAndARestart) {
    EngineModel engine;
    LiveValues last = engine.values();
    for (int i = 0; i < 25000; ++i) {
        if (i == 2200) engine.kill();  // in the middle of the pull
        engine.advance(0.01);
        const LiveValues live = engine.values();
        ASSERT_LT(std::abs(live.rpm - last.rpm), 150) << i;
        ASSERT_LT(std::abs(live.mapKpa - last.mapKpa), 4) << i;
        ASSERT_LT(std::abs(live.tpsVolts - last.tpsVolts), 0.2) << i;
        ASSERT_LT(std::abs(live.coolantC - last.coolantC), 0.01) << i;
        ASSERT_LT(std::abs(live.actualAfr - last.actualAfr), 2) << i;
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
    EXPECT_NEAR(engine.values().batteryVolts, 12.4, 0.01);
    EXPECT_NEAR(engine.values().actualAfr, 22.5, 0.1) << "air";
    engine.advance(0.4);
    EXPECT_NEAR(engine.values().rpm, 220, 1) << "the starter";
    EXPECT_LT(engine.values().batteryVolts, 11) << "which pulls the battery down";
    EXPECT_GT(engine.values().startEnrichment, 60);
    engine.advance(0.8);
    EXPECT_NEAR(engine.values().rpm, 850, 40);
    EXPECT_EQ(engine.values().startEnrichment, 0);
    EXPECT_GT(engine.values().afterStart0, 20);
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

// 850 rpm lie 0.7 of the way from 500 to 1000, 34 kPa a third of the way from 32 to 38: about one cell.
TEST(EngineModel, TablesAreReadWhereTheEngineRuns) {
    MemoryImage image = flatImage();
    image.fill(fuelPlace + 3 * 16, 32, 60);
    image.fill(advancePlace + 3 * 16, 32, 51);
    const LiveValues live = drivenBy(image, 400, idleDrive()).values();
    EXPECT_NEAR(live.veCorrection, 10, 0.001);
    EXPECT_NEAR(live.tableAdvance, 12, 0.001);
    const LiveValues cruise = heldAt(2500, 62, image).values();
    EXPECT_NEAR(cruise.veCorrection, 0, 0.001);
    EXPECT_NEAR(cruise.tableAdvance, 20, 0.001);
}

// 1 ms dead time, 8 ms at 5 volts, 62 kPa are 2.7355 V: 1 + 8 * 0.5471 * gamma, and the battery's part.
TEST(EngineModel, PulseAndDutyFollowTheFormulaOfTheFuelTable) {
    MemoryImage image = openLoopImage();
    image.putAll(237 + 15, std::array{-80, -80}, 0.125, 125);  // the cells of 13.6 and 14.5 volts
    const LiveValues live = heldAt(2500, 62, image).values();
    const double expected =
        1 + live.voltageCompensationMs + 8 * (0.05295 * live.mapKpa - 0.54738) / 5 * live.gammaPercent / 100;
    EXPECT_NEAR(live.primaryPulseMs, expected, 0.002);
    EXPECT_NEAR(live.primaryDutyPercent, live.primaryPulseMs * live.rpm / 1200, 0.0001);
    EXPECT_NEAR(live.voltageCompensationMs, -0.08, 0.0001);
}

// The heart of it: leaner table, leaner engine, by the same share.
TEST(EngineModel, TheMixtureFollowsTheFuelTableWithinHalfASecond) {
    MemoryImage image = openLoopImage();
    EngineModel engine = heldAt(2500, 50, image);
    const double before = engine.values().actualAfr;
    image.fill(fuelPlace, 256, 60);
    engine.setCalibration(calibrationOf(image));
    engine.advance(0.05);
    EXPECT_NEAR(engine.values().actualAfr, before, 0.1) << "the gas is still on its way";
    engine.advance(1.5);
    EXPECT_NEAR(before / engine.values().actualAfr, 1.10, 0.02);
}

TEST(EngineModel, MoreGamaTimeOnTheRunIsMoreFuelOnTheSameInjectors) {
    MemoryImage image = openLoopImage();
    EngineModel engine = heldAt(2500, 50, image);
    const double before = engine.values().actualAfr;
    image.putWord(148, 8800);
    engine.setCalibration(calibrationOf(image));
    engine.advance(2);
    EXPECT_NEAR(before / engine.values().actualAfr, 1.10, 0.02);
    engine.cyclePower();
    engine.program(calibrationOf(image));
    engine.advance(400);
    EXPECT_NEAR(before / engine.values().actualAfr, 1.10, 0.03) << "the injectors stay over a power cycle";
}

TEST(EngineModel, ACalibrationForOtherInjectorsBringsThemAlong) {
    MemoryImage image = openLoopImage();
    EngineModel engine = heldAt(2500, 50, image);
    const double before = engine.values().actualAfr;
    image.putWord(148, 4000);
    engine.program(calibrationOf(image));
    engine.advance(3);
    EXPECT_NEAR(engine.values().actualAfr, before, 0.1);
}

TEST(EngineModel, ClosedLoopWaitsForWarmthAndKeepsItsLimits) {
    MemoryImage image = flatImage();
    image.fill(fuelPlace, 256, 30);  // a fifth of the fuel is missing
    image.put(278, 10);
    image.put(281, 120 * 255.0 / 190);  // from 80 Celsius on
    EngineModel engine = heldAt(2500, 50, image, 30);
    EXPECT_LT(engine.values().coolantC, 80);
    EXPECT_EQ(engine.values().egoCorrectionPercent, 0);
    engine.advance(400);
    EXPECT_NEAR(engine.values().egoCorrectionPercent, 10, 0.001);
    image.put(279, 30);  // up to 1920 rpm
    engine.setCalibration(calibrationOf(image));
    engine.advance(5);
    EXPECT_NEAR(engine.values().egoCorrectionPercent, 0, 0.01);
}

/// From 45 to 62 kPa, where the plain mixture is the same, within a tenth of a second, and back after 5
/// seconds.
class Steps : public DriveCycle {
 public:
    DrivePoint at(double seconds) const override {
        const double up = std::clamp((seconds - 5) / 0.1, 0.0, 1.0);
        const double down = std::clamp((seconds - 10) / 0.1, 0.0, 1.0);
        return {.rpm = 2500, .kpa = 45 + 17 * (up - down), .throttle = 0.2 + 0.2 * (up - down)};
    }
    double length() const override { return 15; }
};

TEST(EngineModel, RisingPressureLeansTheMixtureForAMomentAndFallingPressureEnrichesIt) {
    EngineModel engine = drivenBy(openLoopImage(), 30 * 15 + 5, std::make_shared<Steps>());
    const double low = engine.values().actualAfr;
    const double leanest = extremesOf(&LiveValues::actualAfr, engine, 100).most;
    engine.advance(3.9);
    const double high = engine.values().actualAfr;
    const double richest = extremesOf(&LiveValues::actualAfr, engine, 120).least;
    EXPECT_GT(leanest, std::max(low, high) + 0.2);
    EXPECT_LT(richest, std::min(low, high) - 0.2);
}

TEST(EngineModel, AccelerationEnrichmentHelpsWhenTheThrottleOpens) {
    MemoryImage image = openLoopImage();
    const auto leanest = [](const MemoryImage& by) {
        EngineModel engine = drivenBy(by, roadDrive()->length() * 2 + 16.2);
        return extremesOf(&LiveValues::actualAfr, engine, 100).most;
    };
    const double without = leanest(image);
    image.put(198, 4);  // from 1.55 V/s on
    image.put(200, 25);
    image.put(202, 8);  // half a second
    EXPECT_GT(without, leanest(image) + 0.5);
}

TEST(EngineModel, AThrottleThatOpensSlowlyIsEnrichedLessThanOneThatIsStabbed) {
    EngineCalibration calibration = plainCalibration();
    constexpr double warm = 80;
    const auto enriched = [&](double voltsPerSecond) {
        Acceleration acceleration;
        acceleration.step(voltsPerSecond, 0, warm, calibration, engineStep);
        return acceleration.byThrottle();
    };
    EXPECT_EQ(enriched(1.5), 0);            // the threshold: (1.5 - 0.75) * 5 = 3.75, under 4
    EXPECT_NEAR(enriched(2), 10, 0.01);     // 6.25 of 25, a quarter of 40 %
    EXPECT_NEAR(enriched(5.75), 40, 0.01);  // 25 of 25
    EXPECT_NEAR(enriched(10), 40, 0.01);
}

TEST(EngineModel, PressureThatRisesInADyingEngineIsNotEnriched) {
    EngineModel engine({.serial = 200001, .drive = idleDrive()});
    engine.advance(10);
    engine.kill();
    EXPECT_EQ(extremesOf(&LiveValues::acceleration5, engine, 200).most, 0);
    EXPECT_GT(engine.values().mapKpa, 95);
}

TEST(EngineModel, TipInOfAColdPlainEngineStaysWithinWhatASensorCanTell) {
    EngineModel engine({.serial = 200001});
    engine.advance(15.2);  // before the full pull
    const Extremes mixture = extremesOf(&LiveValues::actualAfr, engine, 200);
    EXPECT_GT(mixture.least, 10.5);
    EXPECT_LT(mixture.most, 16.5);
}

TEST(EngineModel, AFlowSensorIsToldInTenthsOfTheNarrowByte) {
    MemoryImage image = flatImage();
    EngineModel engine = drivenBy(image);
    const double volts = engine.values().mapSensorVolts;
    EXPECT_NEAR(engine.values().wideLoad, volts * 204, 1e-9);
    image.put(1, 1);
    engine.setCalibration(calibrationOf(image));
    EXPECT_NEAR(engine.values().wideLoad, volts * 510, 1e-9);  // 5 V: 2550, 100 %
}

TEST(EngineModel, PressureRiseIsCountedByTheVoltsOfTheSensor) {
    MemoryImage image = flatImage();
    const auto countsPerKpa = [&](double gainWord) {
        image.putWord(262, gainWord);
        EngineModel engine = drivenBy(image, 16.4);  // the throttle opens
        EXPECT_GT(engine.values().mapAcceleration, 0.3);
        return engine.values().mapAccelerationRaw / engine.values().mapAcceleration;
    };
    EXPECT_NEAR(countsPerKpa(4437), 137 / (94.43 * 0.0388), 0.05);  // 5 V over 94.43 kPa
    EXPECT_NEAR(countsPerKpa(2103), 137 / (199.2 * 0.0388), 0.05);  // 0.0251 V/kPa
}

TEST(EngineModel, IdleMotorMovesBetweenTheDutiesOfTheMemory) {
    MemoryImage image = flatImage();
    EngineModel engine({.serial = 200001});
    const auto shareOfDuty = [&](double least, double most) {
        image.put(316, least);
        image.put(317, most);
        engine.setCalibration(calibrationOf(image));
        return (engine.values().idleDuty - 20) / (220 - 20) * 100;
    };
    EXPECT_NEAR(shareOfDuty(20, 220), engine.values().idlePositionPercent, 1e-9);
    shareOfDuty(90, 90);  // no range: the usual one, 1 to 255
    EXPECT_NEAR(engine.values().idleDuty, 1 + 2.54 * engine.values().idlePositionPercent, 1e-9);
}

TEST(EngineModel, FuelIsCutOnTheOverrunAboveTheSpeedOfTheMemory) {
    MemoryImage image = flatImage();
    image.put(0, 2);
    image.put(208, 2208 / 16);
    image.put(209, 1600 / 16);
    image.put(210, (0.05295 * 30 - 0.54738) * 51);
    EngineModel engine = drivenBy(image, 27.6);  // the overrun behind the pull
    EXPECT_EQ(engine.values().primaryPulseMs, 0);
    engine.advance(0.7);
    EXPECT_GT(engine.values().actualAfr, 20);
    image.put(0, 0);
    EngineModel uncut = drivenBy(image, 27.6);
    EXPECT_GT(uncut.values().primaryPulseMs, 1);
}

TEST(EngineModel, TheRevLimiterOfTheMemoryHoldsTheEngineByCuttingFuel) {
    MemoryImage image = flatImage();
    image.putWord(58, 5000);
    image.put(64, 100);
    EngineModel engine = drivenBy(image, 24);
    double highest = 0;
    double lowest = 10000;
    int cuts = 0;
    for (int i = 0; i < 200; ++i) {
        engine.advance(0.01);
        highest = std::max(highest, engine.values().rpm);
        lowest = std::min(lowest, engine.values().rpm);
        if (engine.values().primaryPulseMs == 0) ++cuts;
    }
    EXPECT_NEAR(highest, 5000, 30);
    EXPECT_NEAR(lowest, 4900, 30);
    EXPECT_TRUE(cuts > 50 && cuts < 150) << cuts;
    engine.advance(9);
    EXPECT_NEAR(engine.values().rpm, 2600, 30) << "the cruise is below it";
}

TEST(EngineModel, KnockRisesWithAdvanceAndIsTakenBackByTheMemorysControl) {
    MemoryImage image = flatImage();
    const double quiet = heldAt(3000, 95, image).values().knockPercent;
    image.fill(advancePlace, 256, 40 * 4.25);
    const double loud = heldAt(3000, 95, image).values().knockPercent;
    EXPECT_LT(quiet, 20);
    EXPECT_GT(loud, 70);
    EXPECT_LT(heldAt(3000, 40, image).values().knockPercent, 20) << "not at light load";

    image.put(0, 4);           // control on
    image.put(34, 40 * 2.55);  // threshold
    image.put(35, 2 * 8.5);    // attack
    image.put(36, 0.5 * 8.5);  // decay
    image.put(37, 6 * 8.5);    // most
    image.put(38, 6000 / 51.0);
    const EngineModel guarded = heldAt(3000, 95, image);
    EXPECT_GT(guarded.values().knockRetard, 3);
    EXPECT_LE(guarded.values().knockRetard, 6);
    EXPECT_NEAR(guarded.values().primaryAdvance, 40 - guarded.values().knockRetard, 2.1);
}

TEST(EngineModel, IdleControlHoldsTheSpeedOfTheMemory) {
    MemoryImage image = flatImage();
    image.put(1, 2);
    for (std::size_t i = 0; i < 3; ++i) {
        image.put(310 + i, (40.0 + std::array{0, 40, 75}[i]) * 255 / 190);
        image.put(313 + i, std::array{1504, 1200, 960}[i] / 16);
    }
    EngineModel engine = drivenBy(image, 0.1, idleDrive());
    EXPECT_NEAR(engine.values().rpm, 1352, 30) << "20 Celsius is half way from 1504 to 1200";
    EXPECT_NEAR(engine.values().idleTargetRpm, 1352, 8);
    engine.advance(600);
    EXPECT_NEAR(engine.values().rpm, 960, 30);
}

TEST(EngineModel, ALoadAxisBeyondTheAtmosphereBringsBoost) {
    MemoryImage image = flatImage();
    image.putWord(262, 0.02 * 20.46 * 4096);
    image.putWord(264, 256 - 41);  // -0.2 V
    for (std::size_t i = 0; i < 16; ++i) {
        image.putWord(624 + 2 * i, (0.02 * (20 + 12 * static_cast<double>(i)) - 0.2) * 204.6);
    }
    EngineModel engine = drivenBy(image, 22);
    EXPECT_NEAR(engine.values().mapKpa, 190, 3) << "95 % of 200";
    EXPECT_NEAR(engine.values().mapSensorVolts, 0.02 * engine.values().mapKpa - 0.2, 0.005);
    EXPECT_NEAR(heldAt(2600, 48, image).values().mapKpa, 48, 1) << "none at part load";
}

TEST(EngineModel, NoMemoryMakesTheEngineSenseless) {
    std::vector<std::vector<std::uint8_t>> memories = {std::vector<std::uint8_t>(147 * 16),
                                                       std::vector<std::uint8_t>(147 * 16, 0xFF)};
    for (const int filler : {0, 0xFF, 0x5A}) {
        // Axes that rise, and nothing else that makes sense.
        MemoryImage image = flatImage();
        std::vector<std::uint8_t> bytes(147 * 16, static_cast<std::uint8_t>(filler));
        std::copy_n(image.bytes.begin() + 590, 66, bytes.begin() + 590);
        memories.push_back(bytes);
    }
    for (const auto& memory : memories) {
        EngineModel engine;
        engine.program(readEngineCalibration("ZQA", memory));
        for (int i = 0; i < 600; ++i) {
            engine.advance(0.5);
            const LiveValues& live = engine.values();
            for (const double value :
                 {live.rpm, live.mapSensorVolts, live.egoVolts, live.primaryPulseMs, live.primaryAdvance,
                  live.gammaPercent, live.actualAfr, live.desiredAfr, live.egoCorrectionPercent,
                  live.knockPercent, live.idleTargetRpm, live.blend, live.secondaryPulseMs,
                  live.voltageCompensationMs}) {
                ASSERT_TRUE(std::isfinite(value)) << i;
            }
        }
    }
}

}  // namespace
}  // namespace zentaq::sim
