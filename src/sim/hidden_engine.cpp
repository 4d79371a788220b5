#include "sim/hidden_engine.h"

#include <algorithm>
#include <random>

#include "sim/engine_curve.h"
#include "sim/plain_engine.h"

namespace zentaq::sim {

namespace {

constexpr double speedSpan = 8000;  ///< rpm
constexpr double pressureSpan = 100;

}  // namespace

HiddenEngine::HiddenEngine(std::uint32_t serial) {
    // Its numbers are fixed by the language, so an engine is the same on every machine.
    std::mt19937 numbers(serial);
    for (double& phase : phases_) phase = static_cast<double>(numbers()) / 4294967296.0;
}

double HiddenEngine::fuelFactor(double rpm, double kpa) const {
    const double speed = rpm / speedSpan;
    const double load = kpa / pressureSpan;
    // Three long waves, together never beyond the largest difference: a map that a table of 16 by 16 can
    // follow.
    const double difference = 0.5 * wave(1.1 * speed + 0.4 * load + phases_[0], 1) +
                              0.3 * wave(1.1 * load - 0.6 * speed + phases_[1], 1) +
                              0.2 * wave(1.9 * speed + phases_[2], 1);
    return plainFuelFactor(rpm, kpa) * (1 + largestDifference * difference);
}

double HiddenEngine::knockLimit(double rpm, double kpa, double airC) const {
    const double speed = rpm / speedSpan;
    // Mostly a little above the plain advance, in places below it: those are for the tuner to find.
    const double margin = 2 + 3 * wave(speed + phases_[3], 1) + wave(2 * speed + phases_[4], 1);
    const double reserve = 0.5 * std::max(0.0, 75 - kpa);
    return plainAdvance(rpm, kpa) + margin + reserve - 0.1 * (airC - 30);
}

}  // namespace zentaq::sim
