#include "sim/engine_model.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

#include "sim/map_sensor.h"

namespace zentaq::sim {

namespace {

struct Knot {
    double seconds;
    double value;
};

// One round of driving. Each track holds its value at both ends of the round, so rounds join smoothly.
constexpr Knot rpmTrack[] = {{0, 850},   {8, 850},   {9.2, 3400}, {11.5, 850}, {16, 850}, {17.5, 1800},
                             {26, 6500}, {29, 2600}, {41, 2600},  {45, 850},   {48, 850}};
constexpr Knot throttleTrack[] = {{0, 0},       {8, 0},     {8.4, 0.6}, {9, 0.6},  {9.3, 0},
                                  {16, 0},      {16.8, 1},  {26, 1},    {26.4, 0}, {28.5, 0},
                                  {29.2, 0.18}, {41, 0.18}, {41.4, 0},  {48, 0}};
constexpr Knot mapTrack[] = {{0, 34},  {8, 34},    {8.5, 82}, {9.1, 70},  {9.6, 22},  {11.8, 34},
                             {16, 34}, {16.9, 98}, {26, 97},  {26.6, 20}, {28.6, 22}, {29.4, 48},
                             {41, 48}, {41.6, 22}, {45, 34},  {48, 34}};

constexpr double standingMapKpa = 100;
constexpr double idleRpm = 850;
constexpr double spinSeconds = 0.8;
constexpr double longestGapMs = 65.5;

double smooth(double share) {
    const double x = std::clamp(share, 0.0, 1.0);
    return x * x * (3 - 2 * x);
}

double between(double from, double to, double share) {
    return from + (to - from) * share;
}

double track(std::span<const Knot> knots, double seconds) {
    for (std::size_t i = 1; i < knots.size(); ++i) {
        const Knot& left = knots[i - 1];
        const Knot& right = knots[i];
        if (seconds > right.seconds) continue;
        return between(left.value, right.value,
                       smooth((seconds - left.seconds) / (right.seconds - left.seconds)));
    }
    return knots.back().value;
}

double wave(double seconds, double hertz) {
    return std::sin(2 * std::numbers::pi * hertz * seconds);
}

void addAir(LiveValues& live, double cycleTime, double age, double spin) {
    // The driver lifts when the engine dies, so the round that follows starts without a jump.
    const double throttle = track(throttleTrack, cycleTime) * spin;
    const double ripple = 12 * wave(age, 0.9) + 5 * wave(age, 2.3);
    live.rpm = (track(rpmTrack, cycleTime) + ripple) * spin;
    live.mapKpa = between(standingMapKpa, track(mapTrack, cycleTime) + 0.4 * wave(age, 1.7), spin);
    live.mapSensorVolts = mapSensorVolts(live.mapKpa);
    live.tpsVolts = 0.5 + 4.0 * throttle;
    live.airC = 28 + 4 * wave(age, 1.0 / 60);
    live.coolantC = 88 - 68 * std::exp(-age / 150);
    live.batteryVolts = 12.4 + 1.4 * spin + 0.05 * wave(age, 0.3) * spin;
}

void addFuel(LiveValues& live, double age, double spin) {
    const double load = smooth((live.mapKpa - 60) / 35) * spin;
    live.desiredAfr = between(14.7, 12.8, load);
    const double error = 0.02 * wave(age, 0.7) * spin;
    live.actualAfr = live.desiredAfr * (1 + error);
    live.egoVolts = 0.45 - 0.35 * std::tanh(2 * (live.actualAfr - 14.7));
    live.egoCorrectionPercent = 200 * error;  // the unit adds fuel while the engine runs lean
    live.coolantCorrection = std::max(0.0, (80 - live.coolantC) * 0.6);
    live.gammaPercent = 100 + live.egoCorrectionPercent + live.coolantCorrection;
    live.primaryPulseMs = (1.0 + 0.11 * live.mapKpa * 14.7 / live.desiredAfr) * spin;
    live.stagePercent = 30 * smooth((live.mapKpa - 80) / 15) * smooth((live.rpm - 4000) / 1000);
    live.secondaryPulseMs = live.primaryPulseMs * live.stagePercent / 100;
    // one injection in two revolutions
    live.primaryDutyPercent = std::min(100.0, live.primaryPulseMs * live.rpm / 1200);
    live.secondaryDutyPercent = std::min(100.0, live.secondaryPulseMs * live.rpm / 1200);
    live.injectionGapMs =
        std::clamp(60000 / std::max(live.rpm, 1.0) - live.primaryPulseMs, 0.0, longestGapMs);
    live.veCorrection = 8 * smooth((live.rpm - 1000) / 4000) - 4;
    live.airCorrection = (25 - live.airC) * 0.3;
    live.voltageCompensationMs = (14 - live.batteryVolts) * 0.1;
    live.afterStart0 = 20 * std::exp(-age / 20);
    live.afterStart1 = 10 * std::exp(-age / 40);
}

void addIgnition(LiveValues& live, double age, double spin, bool timingZero) {
    const double rpmShare = std::clamp((live.rpm - idleRpm) / 5650, 0.0, 1.0);
    live.knockPercent = (6 + 20 * rpmShare * live.mapKpa / 100 + 2 * wave(age, 0.5)) * spin;
    live.knockRetard = std::max(0.0, live.knockPercent - 20) * 0.3;
    live.tableAdvance = (12 + 16 * rpmShare + 0.12 * (100 - live.mapKpa)) * spin;
    live.coolantAdvance = std::max(0.0, (60 - live.coolantC) * 0.1) * spin;
    live.airAdvance = (25 - live.airC) * 0.05 * spin;
    const double advance = live.tableAdvance + live.coolantAdvance + live.airAdvance - live.knockRetard;
    live.primaryAdvance = timingZero ? 0 : std::max(0.0, advance);
    live.secondaryAdvance = timingZero ? 0 : std::max(0.0, advance - 3);
}

void addIdleAndOutputs(LiveValues& live, double age, double spin) {
    live.idleTargetRpm = idleRpm;
    const double position = 35 + 4 * wave(age, 0.2) + 0.3 * std::max(0.0, 80 - live.coolantC);
    live.idlePositionPercent = between(60, position, spin);
    live.idleDirection = std::cos(2 * std::numbers::pi * 0.2 * age) > 0 ? 1 : 0;
    live.gpio[0] = 255 * spin;                    // fuel pump
    live.gpio[1] = live.coolantC > 86 ? 255 : 0;  // fan
    live.gpio[2] = live.rpm > 5500 ? 255 : 0;     // shift light
    live.gpio[3] = 51 * live.tpsVolts;            // throttle as an analog input
    live.gpio[4] = 128 + 40 * wave(age, 0.05);    // a slow analog input
    // What the larger kinds have besides: analog inputs, each with a pace of its own.
    for (std::size_t pin = 5; pin < 13; ++pin) {
        live.gpio[pin] = 128 + 100 * wave(age, 0.01 * static_cast<double>(pin));
    }
}

}  // namespace

void EngineModel::advance(double seconds) {
    // A running engine has no state that needs small steps; stopping and starting has.
    constexpr double longestStep = 0.01;
    while (seconds > longestStep && (stopLeft_ > 0 || spin_ < 1)) {
        step(longestStep);
        seconds -= longestStep;
    }
    if (seconds > 0) step(seconds);
}

void EngineModel::step(double seconds) {
    age_ += seconds;
    if (stopLeft_ > 0) {
        stopLeft_ -= seconds;
        spin_ = std::max(0.0, spin_ - seconds / spinSeconds);
        // It stands still by now, so starting over at idle makes no jump.
        if (stopLeft_ <= 0) cycleTime_ = 0;
        return;
    }
    spin_ = std::min(1.0, spin_ + seconds / spinSeconds);
    cycleTime_ = std::fmod(cycleTime_ + seconds, cycleSeconds);
}

void EngineModel::kill() {
    stopLeft_ = restartAfterSeconds;
}

LiveValues EngineModel::values() const {
    LiveValues live;
    const double spin = smooth(spin_);
    addAir(live, cycleTime_, age_, spin);
    addFuel(live, age_, spin);
    addIgnition(live, age_, spin, timingZero_);
    addIdleAndOutputs(live, age_, spin);
    return live;
}

}  // namespace zentaq::sim
