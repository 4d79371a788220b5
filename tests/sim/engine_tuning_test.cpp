// Tuning the fuel table of the simulated engine as a tuner or AutoVE does: by the correction of the closed
// loop.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "engine_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

constexpr double holdSeconds = 4;
constexpr int holds = 66;  // of the dyno, before its pulls

/// Where a reading belongs: weights of the four cells around it.
class CellSums {
 public:
    void add(const EngineCalibration& by, const LiveValues& live, double percent) {
        const double x = by.speedAxis.position(live.rpm);
        const double y = by.loadAxis.position(live.mapSensorVolts * 204.6);
        for (const std::size_t column : {floorOf(x), floorOf(x) + 1}) {
            for (const std::size_t row : {floorOf(y), floorOf(y) + 1}) {
                const double weight = std::max(0.0, 1 - std::abs(x - static_cast<double>(column))) *
                                      std::max(0.0, 1 - std::abs(y - static_cast<double>(row)));
                if (column > 15 || row > 15 || weight == 0) continue;
                sums_[row * 16 + column] += weight * percent;
                weights_[row * 16 + column] += weight;
            }
        }
    }
    double weight(std::size_t cell) const { return weights_[cell]; }
    double mean(std::size_t cell) const { return sums_[cell] / weights_[cell]; }

 private:
    static std::size_t floorOf(double value) { return static_cast<std::size_t>(value); }
    std::array<double, 256> sums_{};
    std::array<double, 256> weights_{};
};

class EngineOnTheDyno : public testing::Test {
 protected:
    EngineOnTheDyno() {
        engine.setCalibration(calibrationOf(image));
        for (int round = 0; round < 2; ++round) runRound([](const LiveValues&) {});  // warm
    }

    /// One round; `look` sees every reading of the last 1.2 s of each hold, when the correction has settled.
    template <typename Look>
    void runRound(Look look) {
        for (int hold = 0; hold < holds; ++hold) {
            engine.advance(2.8);
            for (int i = 0; i < 12; ++i) {
                engine.advance(0.1);
                look(engine.values());
            }
        }
        engine.advance(dynoDrive()->length() - holds * holdSeconds);
    }

    /// The largest difference of the measured mixture from the target, in percent, averaged over each hold.
    double largestError() {
        double largest = 0;
        double sum = 0;
        int readings = 0;
        runRound([&](const LiveValues& live) {
            sum += 100 * (live.actualAfr / live.desiredAfr - 1);
            if (++readings % 12 != 0) return;
            largest = std::max(largest, std::abs(sum / 12));
            sum = 0;
        });
        return largest;
    }

    /// A round of closed loop, then every cell that was visited is multiplied by its mean correction.
    void tuneARound() {
        CellSums corrections;
        const EngineCalibration by = calibrationOf(image);
        runRound([&](const LiveValues& live) { corrections.add(by, live, live.egoCorrectionPercent); });
        for (std::size_t cell = 0; cell < 256; ++cell) {
            if (corrections.weight(cell) < 1) continue;
            const double factor = (50 + image.bytes[fuelPlace + cell]) / 100.0;
            const double tuned = factor * (1 + corrections.mean(cell) / 100);
            image.put(fuelPlace + cell, std::clamp(100 * tuned - 50, 0.0, 100.0));
        }
        engine.setCalibration(calibrationOf(image));
    }

    void closedLoop(bool on) {
        image.put(278, on ? 25 : 0);
        engine.setCalibration(calibrationOf(image));
    }

    /// The target is what the plain engine burns, so that only the fuel table is wrong.
    static MemoryImage sensibleImage() {
        MemoryImage made = flatImage();
        const EngineCalibration& plain = plainCalibration();
        for (std::size_t i = 0; i < 256; ++i) {
            made.put(fuelPlace + i, 50 + plain.fuel.cells[i]);
            made.put(ratioPlace + i, (plain.mixture.cells[i] - 0.5) * 255);
        }
        return made;
    }

    MemoryImage image = sensibleImage();
    EngineModel engine{{.serial = 200001, .drive = dynoDrive()}};
};

TEST_F(EngineOnTheDyno, ClosedLoopCancelsTheErrorOfTheTable) {
    closedLoop(false);
    const double open = largestError();
    EXPECT_GT(open, 7);
    EXPECT_LT(open, 16);
    closedLoop(true);
    EXPECT_LT(largestError(), 1);
}

TEST_F(EngineOnTheDyno, MultiplyingByTheCorrectionBringsEveryVisitedCellWithinTwoPercent) {
    closedLoop(false);
    ASSERT_GT(largestError(), 7);
    closedLoop(true);
    for (int round = 0; round < 4; ++round) tuneARound();
    closedLoop(false);
    EXPECT_LT(largestError(), 2);
}

TEST_F(EngineOnTheDyno, ATableThatStartsFarOffConvergesAsWell) {
    image.fill(fuelPlace, 256, 42);  // -8 % everywhere
    closedLoop(true);
    for (int round = 0; round < 5; ++round) tuneARound();
    closedLoop(false);
    EXPECT_LT(largestError(), 2);
}

TEST_F(EngineOnTheDyno, TuningTheTableDoesNotMoveTheEngine) {
    closedLoop(true);
    for (int round = 0; round < 3; ++round) tuneARound();
    MemoryImage tuned = image;
    // A whole calibration comes in and goes again: the tuned table still fits.
    engine.program(calibrationOf(flatImage()));
    engine.advance(dynoDrive()->length());
    image = tuned;
    engine.program(calibrationOf(image));
    closedLoop(false);
    EXPECT_LT(largestError(), 2);
}

}  // namespace
}  // namespace zentaq::sim
