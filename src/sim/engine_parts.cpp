#include "sim/engine_parts.h"

#include <algorithm>

#include "sim/engine_curve.h"

namespace zentaq::sim {

namespace {

constexpr double countsPerVolt8 = 51;

/// The value at x of a curve through points of rising x.
template <std::size_t count>
double along(const std::array<double, count>& xs, const std::array<double, count>& ys, double x) {
    std::array<Knot, count> knots{};
    for (std::size_t i = 0; i < count; ++i) knots[i] = {xs[i], ys[i]};
    return interpolate(knots, x);
}

/// Share of the full enrichment: nothing up to the threshold, then as the rate is to a fast one.
double strengthOf(double rate, double threshold, double fastRate) {
    return rate > threshold ? std::min(1.0, rate / fastRate) : 0;
}

}  // namespace

double Transport::pass(double value, double dt) {
    if (dt <= 0) return way_[next_];
    const double out = way_[next_];
    way_[next_] = value;
    next_ = (next_ + 1) % way_.size();
    return out;
}

double RevLimiter::follow(double wantedRpm, const EngineCalibration& calibration, double dt) {
    constexpr double fallPerSecond = 3000;
    constexpr double risePerSecond = 2500;
    constexpr double leastHysteresis = 30;
    if (!holds_ && wantedRpm <= calibration.revLimit) return rpm_ = wantedRpm;
    if (!holds_) rpm_ = std::min(rpm_, calibration.revLimit);
    holds_ = true;
    rpm_ += (cuts_ ? -fallPerSecond : risePerSecond) * dt;
    if (rpm_ > calibration.revLimit) cuts_ = true;
    if (rpm_ < calibration.revLimit - std::max(leastHysteresis, calibration.revHysteresis)) cuts_ = false;
    if (rpm_ < wantedRpm) return rpm_;
    cuts_ = holds_ = false;
    return rpm_ = wantedRpm;
}

void OverrunCut::step(double rpm, double tpsVolts, double mapVolts, const EngineCalibration& calibration) {
    constexpr double throttlePlay = 0.06;  // volts
    const bool closed = tpsVolts <= calibration.throttleClosedVolts + throttlePlay;
    const double threshold = calibration.overrunCutCounts;
    // 0 and 255 are what a memory holds when the pressure plays no part.
    const bool low = threshold <= 0 || threshold >= 255 || mapVolts * countsPerVolt8 <= threshold;
    if (!calibration.overrunCut || !closed || !low || rpm <= calibration.overrunReturnRpm) {
        cuts_ = false;
        return;
    }
    if (rpm > calibration.overrunCutRpm) cuts_ = true;
}

void ClosedLoop::step(const Inputs& inputs, const EngineCalibration& calibration, double dt) {
    constexpr double fadeSeconds = 0.5;
    // With the usual divider; 60 degrees of phase are left at the crossover of 4 per second.
    constexpr double gainPerSecond = 4;
    constexpr double proportion = 0.5;
    constexpr double usualDivider = 8;
    constexpr double sensorCatchesUpSeconds = 0.8;
    burnSeconds_ = inputs.burns ? burnSeconds_ + dt : 0;
    const bool closed = inputs.runs && inputs.burns && inputs.runSeconds >= calibration.egoDelaySeconds &&
                        inputs.rpm <= calibration.egoHighestRpm &&
                        inputs.mapVolts * countsPerVolt8 <= calibration.egoHighestCounts &&
                        inputs.coolantC >= calibration.egoColdestC;
    if (!closed) {
        learned_ -= learned_ * dt / (fadeSeconds + dt);
        percent_ = learned_;
        return;
    }
    // What the sensor tells right behind a cut is the air of the cut.
    if (burnSeconds_ < sensorCatchesUpSeconds || !inputs.steady) return;
    const double missing = 100 * (inputs.target / inputs.measured - 1);
    const double speed = std::clamp(usualDivider / calibration.egoSlowness, 0.125, 1.0);
    const double limit = calibration.egoLimitPercent;
    learned_ = std::clamp(learned_ + missing * gainPerSecond * speed * dt, -limit, limit);
    percent_ = std::clamp(learned_ + proportion * speed * missing, -limit, limit);
}

void Acceleration::step(double throttleRate, double pressureRate, double coolantC,
                        const EngineCalibration& calibration, double dt) {
    constexpr double rawPerVoltPerSecond = 5;
    constexpr double rawThrottleFrom = 0.75;
    constexpr double fastThrottle = 25;  // 5.75 V/s
    constexpr double fastPressure = 50;  // 130 kPa/s of a sensor for one bar
    const double throttle = strengthOf((throttleRate - rawThrottleFrom) * rawPerVoltPerSecond,
                                       calibration.throttleThreshold, fastThrottle);
    const double pressure = strengthOf(pressureRate, calibration.pressureThreshold, fastPressure);
    const double cold = std::clamp((80 - coolantC) / 80, 0.0, 1.0);
    const double keep = 1 - dt / (std::max(0.05, calibration.enrichmentSeconds) + dt);
    byThrottle_ = std::max(calibration.throttleEnrichment * throttle, byThrottle_ * keep);
    byPressure_ = std::max(calibration.pressureEnrichment * pressure, byPressure_ * keep);
    byCold_ = std::max(calibration.coldEnrichment * cold * std::max(throttle, pressure), byCold_ * keep);
}

void KnockControl::step(double level, double rpm, const EngineCalibration& calibration, double dt) {
    // Slow enough to be seen: a real engine counts every firing.
    constexpr double eventSeconds = 0.1;
    sinceEvent_ += dt;
    if (sinceEvent_ < eventSeconds) return;
    sinceEvent_ -= eventSeconds;
    const bool hears = calibration.knockControl && rpm <= calibration.knockHighestRpm;
    const bool knocks = hears && level > calibration.knockThreshold;
    retard_ += knocks ? calibration.knockAttack : -calibration.knockDecay;
    retard_ = std::clamp(retard_, 0.0, hears ? calibration.knockMost : 0.0);
}

double oxygenVolts(double mixture) {
    const EngineCalibration& plain = plainCalibration();
    return along(plain.egoMixture, plain.egoVolts, mixture);
}

double mixtureOf(double volts, const EngineCalibration& calibration) {
    return along(calibration.egoVolts, calibration.egoMixture, volts);
}

}  // namespace zentaq::sim
