#include "sim/hidden_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "sim/plain_engine.h"

namespace zentaq::sim {
namespace {

double difference(const HiddenEngine& engine, double rpm, double kpa) {
    return engine.fuelFactor(rpm, kpa) / plainFuelFactor(rpm, kpa) - 1;
}

TEST(HiddenEngine, IsNearThePlainEngineForEverySerialNumber) {
    for (std::uint32_t serial = 10; serial < 400000; serial += 7919) {
        const HiddenEngine engine(serial);
        double largest = 0;
        for (double rpm = 500; rpm <= 8000; rpm += 250) {
            for (double kpa = 14; kpa <= 250; kpa += 6) {
                largest = std::max(largest, std::abs(difference(engine, rpm, kpa)));
            }
        }
        EXPECT_LE(largest, HiddenEngine::largestDifference) << serial;
        EXPECT_GT(largest, 0.05) << serial << ": there is something to tune";
    }
}

TEST(HiddenEngine, IsTheSameForTheSameNumberAndAnotherForTheNext) {
    const HiddenEngine engine(200001);
    EXPECT_EQ(engine.fuelFactor(3000, 60), HiddenEngine(200001).fuelFactor(3000, 60));
    EXPECT_EQ(engine.knockLimit(3000, 95, 30), HiddenEngine(200001).knockLimit(3000, 95, 30));
    double apart = 0;
    for (double rpm = 500; rpm <= 8000; rpm += 500) {
        apart = std::max(apart,
                         std::abs(difference(engine, rpm, 60) - difference(HiddenEngine(200002), rpm, 60)));
    }
    EXPECT_GT(apart, 0.02);
}

// A table of 500 rpm by 6 kPa must be able to follow it: half way between two stops the straight line between
// them is within half a percent.
TEST(HiddenEngine, IsSmoothEnoughForATable) {
    for (std::uint32_t serial = 200001; serial < 200040; ++serial) {
        const HiddenEngine engine(serial);
        for (double rpm = 500; rpm < 8000; rpm += 500) {
            for (double kpa = 14; kpa < 104; kpa += 6) {
                const double middle = difference(engine, rpm + 250, kpa + 3);
                const double line =
                    (difference(engine, rpm, kpa) + difference(engine, rpm + 500, kpa + 6)) / 2;
                ASSERT_NEAR(middle, line, 0.005) << serial;
            }
        }
    }
}

TEST(HiddenEngine, KnocksFarLaterAtLightLoadAndEarlierInHotAir) {
    const HiddenEngine engine(200001);
    const double reserveAtCruise = engine.knockLimit(2500, 45, 30) - plainAdvance(2500, 45);
    const double reserveAtFullLoad = engine.knockLimit(2500, 98, 30) - plainAdvance(2500, 98);
    EXPECT_NEAR(reserveAtCruise - reserveAtFullLoad, 15, 0.001);  // half a degree a kPa below 75
    EXPECT_NEAR(engine.knockLimit(2500, 98, 50), engine.knockLimit(2500, 98, 30) - 2, 0.001);
}

}  // namespace
}  // namespace zentaq::sim
