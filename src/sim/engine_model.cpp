#include "sim/engine_model.h"

#include <algorithm>
#include <cmath>

#include "sim/engine_curve.h"
#include "sim/plain_engine.h"

namespace zentaq::sim {

namespace {

constexpr double atmosphereKpa = 100;
constexpr double idleRpm = 850;
constexpr double crankingRpm = 220;
constexpr double crankSeconds = 0.4;
constexpr double runUpSeconds = 0.4;
constexpr double runDownSeconds = 0.8;
constexpr double ambientC = 20;
constexpr double fullVolts = 5;  // of a sensor
constexpr double countsPerVolt = 204.6;
// Wide frames tell the byte of the narrow ones in quarters for a pressure sensor, in tenths for a flow
// sensor.
constexpr double widePressurePerVolt = 4 * 51;
constexpr double wideFlowPerVolt = 10 * 51;
// 137 counts of pressure rise are 0.0388 of the sensor's range, whose whole is 5 volts.
constexpr double rawPerAccelerationVolt = 137 / (fullVolts * 0.0388);
constexpr double longestGapMs = 65.5;
// The frame's ratios are those of the fuel that the tables are kept for.
constexpr double ratioOfMixture1 = 14.7;
constexpr double mixtureOfAir = 0.6;  // leaner than the sensor can tell
constexpr double leastBurningRpm = 150;

double coldShare(double coolantC) {
    return std::clamp((80 - coolantC) / 80, 0.0, 1.0);
}

/// The value of three or eight points over x, held at the ends.
template <std::size_t count>
double overPoints(const std::array<double, count>& xs, const std::array<double, count>& ys, double x) {
    if (x <= xs[0]) return ys[0];
    for (std::size_t i = 1; i < count; ++i) {
        if (x <= xs[i] && xs[i] > xs[i - 1])
            return between(ys[i - 1], ys[i], (x - xs[i - 1]) / (xs[i] - xs[i - 1]));
    }
    return ys[count - 1];
}

}  // namespace

EngineModel::EngineModel(const EngineSetup& setup)
    : setup_{setup.serial, setup.drive ? setup.drive : roadDrive()}, engine_(setup.serial) {
    step(0);
}

void EngineModel::advance(double seconds) {
    if (!(seconds > 0)) return;
    // A sum of pieces may lie below the whole by the rounding of its additions.
    constexpr double slack = 1e-9;
    owed_ += seconds;
    while (owed_ > engineStep - slack) {
        owed_ -= engineStep;
        step(engineStep);
    }
}

void EngineModel::setCalibration(const EngineCalibration& calibration) {
    calibration_ = calibration;
    if (calibration.fromMemory && !injectors_.fromMemory) fit(calibration);
    step(0);
}

void EngineModel::program(const EngineCalibration& calibration) {
    constexpr double sameSize = 0.15;
    const double change = calibration.fullPulseMs / injectors_.fullPulseMs - 1;
    if (std::abs(change) > sameSize) fit(calibration);
    setCalibration(calibration);
}

void EngineModel::fit(const EngineCalibration& calibration) {
    injectors_ = {calibration.fullPulseMs, calibration.injectorOffsetMs, calibration.fromMemory};
}

void EngineModel::kill() {
    stopLeft_ = restartAfterSeconds;
}

void EngineModel::cyclePower() {
    const Injectors fitted = injectors_;
    *this = EngineModel(setup_);
    injectors_ = fitted;
}

void EngineModel::setTimingZero(bool zero) {
    timingZero_ = zero;
    step(0);
}

void EngineModel::step(double dt) {
    age_ += dt;
    turnStarter(dt);
    const DrivePoint point = setup_.drive->at(cycleTime_);
    moveAir(point, dt);
    warm(point, dt);
    charge(point, dt);
    meterFuel(dt);
    burn(dt);
    fire(dt);
    steerIdle();
    setPins();
}

void EngineModel::turnStarter(double dt) {
    if (stopLeft_ > 0) {
        stopLeft_ -= dt;
        spin_ = std::max(0.0, spin_ - dt / runDownSeconds);
        runSeconds_ = 0;
        if (stopLeft_ > 0) return;
        // It stands still by now, so starting the cycle over makes no jump.
        cycleTime_ = 0;
        crankLeft_ = crankSeconds;
        return;
    }
    if (crankLeft_ > 0) {
        crankLeft_ -= dt;
        return;
    }
    spin_ = std::min(1.0, spin_ + dt / runUpSeconds);
    runSeconds_ += dt;
    cycleTime_ = std::fmod(cycleTime_ + dt, setup_.drive->length());
}

double EngineModel::idleTarget() const {
    return calibration_.idleControl ? overPoints(calibration_.idleC, calibration_.idleRpm, coolantC_)
                                    : idleRpm;
}

double EngineModel::wantedRpm(const DrivePoint& point) const {
    if (point.measured) return point.rpm;
    const double ripple = 12 * wave(age_, 0.9) + 5 * wave(age_, 2.3);
    const double idling = 1 - smooth((point.rpm - idleRpm) / 500);
    return point.rpm + idling * (idleTarget() - idleRpm) + ripple;
}

// A calibration whose load axis goes far beyond the atmosphere is for an engine with boost.
double EngineModel::manifoldKpa(const DrivePoint& point) const {
    constexpr double boostFrom = 70;
    constexpr double fullLoad = 98;
    constexpr double boostedAxis = 120;
    constexpr double mostKpa = 250;
    if (point.measured) return point.kpa;
    const TableAxis& axis = calibration_.loadAxis;
    const double top = std::min(mostKpa, calibration_.kpaOf(axis.stops[axis.count - 1]));
    const double full = top > boostedAxis ? 0.95 * top : fullLoad;
    const double boost = std::max(0.0, point.kpa - boostFrom) * (full - fullLoad) / (fullLoad - boostFrom);
    return point.kpa + boost + 0.4 * wave(age_, 1.7);
}

void EngineModel::moveAir(const DrivePoint& point, double dt) {
    const double share = smooth(spin_);
    const double turning = limiter_.follow(wantedRpm(point), calibration_, dt);
    const double cranked = stopLeft_ > 0 ? 0 : crankingRpm * smooth((crankSeconds - crankLeft_) / 0.15);
    live_.rpm = between(cranked, turning, share);
    live_.mapKpa = between(atmosphereKpa, manifoldKpa(point), share);
    live_.mapSensorVolts = std::clamp(calibration_.sensorVolts(live_.mapKpa), 0.0, fullVolts);
    live_.wideLoad = live_.mapSensorVolts * (calibration_.flowSensor ? wideFlowPerVolt : widePressurePerVolt);
    // The driver lifts when the engine dies.
    const double tps = point.tpsVolts.value_or(0.5 + 4 * point.throttle);
    live_.tpsVolts = between(std::min(0.5, tps), tps, share);
    constexpr double rateSeconds = 0.05;
    live_.tpsAcceleration =
        std::max(0.0, (live_.tpsVolts - tpsBefore_.follow(live_.tpsVolts, dt)) / rateSeconds);
    live_.mapAcceleration =
        std::max(0.0, (live_.mapKpa - kpaBefore_.follow(live_.mapKpa, dt)) / rateSeconds / 100);
    live_.mapAccelerationRaw = live_.mapAcceleration * calibration_.voltsPerKpa * rawPerAccelerationVolt;
    overrun_.step(live_.rpm, live_.tpsVolts, live_.mapSensorVolts, calibration_);
}

void EngineModel::warm(const DrivePoint& point, double dt) {
    constexpr double opensAtC = 85;
    constexpr double openAtC = 95;
    const double load = live_.rpm / 6000 * live_.mapKpa / 100;
    const double heat = runs() ? 0.3 + 0.3 * load : 0;  // degrees a second
    const double thermostat = smooth((coolantC_ - opensAtC) / (openAtC - opensAtC));
    coolantC_ += dt * (heat - thermostat * 0.02 * (coolantC_ - ambientC) - 0.0002 * (coolantC_ - ambientC));
    if (point.coolantC) coolantC_ = *point.coolantC;
    live_.coolantC = coolantC_;
    // Heat from the engine bay, blown away by the flow.
    const double soak = 0.2 * (coolantC_ - ambientC) * (1 - 0.6 * std::min(1.0, load));
    airC_.follow(ambientC + 2 + soak, dt);
    if (point.airC) airC_.set(*point.airC);
    live_.airC = airC_.value();
}

void EngineModel::charge(const DrivePoint& point, double dt) {
    constexpr double restingVolts = 12.4;
    constexpr double crankingVolts = 10.2;
    const double running = point.batteryVolts.value_or(14 + 0.05 * wave(age_, 0.3));
    const double standing = stopLeft_ <= 0 ? crankingVolts : restingVolts;
    live_.batteryVolts = batteryVolts_.follow(spin_ < 0.5 ? standing : running, dt);
}

EngineModel::TablePlace EngineModel::tablePlace() const {
    const double throttle = std::clamp((live_.tpsVolts - 0.5) / 4, 0.0, 1.0) * fullVolts;
    const double load = between(live_.mapSensorVolts, throttle, std::min(1.0, live_.blend / 100));
    return {calibration_.speedAxis.position(live_.rpm), calibration_.loadAxis.position(load * countsPerVolt)};
}

double EngineModel::afterStartShare() const {
    constexpr double fadeSeconds = 12;
    return std::exp(-runSeconds_ / fadeSeconds);
}

double EngineModel::startPercent(const EngineCalibration& by) const {
    return cranks() ? between(by.startWarmPercent, by.startColdPercent, coldShare(coolantC_)) : 0;
}

double EngineModel::conditionFactor(const EngineCalibration& by) const {
    const double afterStart =
        between(by.afterStartWarmPercent, by.afterStartColdPercent, coldShare(coolantC_));
    const double started = afterStart * afterStartShare() + startPercent(by);
    return (1 + by.warmUpPercent.at(coolantC_) / 100) * (1 + by.airPercent.at(airC_.value()) / 100) *
           (1 + started / 100);
}

void EngineModel::meterFuel(double dt) {
    const EngineCalibration& by = calibration_;
    live_.blend = overPoints(by.blendRpm, by.blendPercent, live_.rpm);
    place_ = tablePlace();
    live_.veCorrection = by.fuel.at(place_.column, place_.row);
    live_.stagePercent = by.staging.at(place_.column, place_.row);
    live_.coolantCorrection = by.warmUpPercent.at(coolantC_);
    live_.airCorrection = by.airPercent.at(airC_.value());
    const double cold = coldShare(coolantC_);
    live_.afterStart0 = by.afterStartColdPercent * cold * afterStartShare();
    live_.afterStart1 = by.afterStartWarmPercent * (1 - cold) * afterStartShare();
    live_.startEnrichment = startPercent(by);
    // The pressure that comes back to the manifold of an engine that dies is no acceleration.
    const double throttleRate = runs() ? live_.tpsAcceleration : 0;
    const double pressureRate = runs() ? live_.mapAccelerationRaw : 0;
    acceleration_.step(throttleRate, pressureRate, coolantC_, by, dt);
    live_.acceleration2 = acceleration_.byThrottle();
    live_.acceleration5 = acceleration_.byPressure();
    live_.acceleration6 = acceleration_.byCold();
    // Throttle and pressure tell of the same thing, so the larger of the two counts.
    const double added = std::max(live_.acceleration2, live_.acceleration5) + live_.acceleration6;
    live_.egoCorrectionPercent = closedLoop_.percent();
    live_.gammaPercent =
        100 * conditionFactor(by) * (1 + added / 100) * (1 + live_.egoCorrectionPercent / 100);

    live_.voltageCompensationMs = by.batteryMs.at(live_.batteryVolts);
    const double fuelMs = (1 + live_.veCorrection / 100) * by.fullPulseMs * live_.mapSensorVolts / fullVolts;
    const double pulse =
        by.injectorOffsetMs + live_.voltageCompensationMs + fuelMs * live_.gammaPercent / 100;
    const bool injects = !cut() && live_.rpm > leastBurningRpm;
    live_.primaryPulseMs = injects ? std::max({pulse, by.shortestPulseMs, 0.0}) : 0;
    live_.secondaryPulseMs = live_.primaryPulseMs * live_.stagePercent / 100;
    // one injection in two revolutions
    live_.primaryDutyPercent = std::min(100.0, live_.primaryPulseMs * live_.rpm / 1200);
    live_.secondaryDutyPercent = std::min(100.0, live_.secondaryPulseMs * live_.rpm / 1200);
    live_.injectionGapMs =
        std::clamp(60000 / std::max(live_.rpm, 1.0) - live_.primaryPulseMs, 0.0, longestGapMs);
}

// What the injectors that are fitted deliver, against what this engine needs at this moment.
void EngineModel::burn(double dt) {
    const EngineCalibration& plain = plainCalibration();
    const double settled = std::max(10.0, filmKpa_.follow(live_.mapKpa, dt));
    // Fuel that wets the walls is missing while the pressure rises, and comes back when it falls. Cold walls
    // hold more of it.
    const double wetting = 0.25 * (1 + 0.6 * coldShare(coolantC_));
    const double walls = std::clamp(wetting * (live_.mapKpa / settled - 1), -0.15, 2 * wetting);
    const double needMs = engine_.fuelFactor(live_.rpm, live_.mapKpa) * injectors_.fullPulseMs *
                          std::max(0.05, live_.mapSensorVolts / fullVolts) * conditionFactor(plain) *
                          (1 + walls);
    const double deadMs = injectors_.offsetMs + plain.batteryMs.at(live_.batteryVolts);
    const double deliveredMs = std::max(0.0, live_.primaryPulseMs - deadMs);
    const bool burns = live_.primaryPulseMs > 0;
    const double mixture =
        burns ? plainMixture(live_.rpm, live_.mapKpa) * deliveredMs / needMs : mixtureOfAir;
    const double atSensor = sensor_.follow(exhaust_.pass(std::clamp(mixture, mixtureOfAir, 2.0), dt), dt);
    live_.egoVolts = oxygenVolts(atSensor);
    mixture_ = mixtureOf(live_.egoVolts, calibration_);
    constexpr double steadyPercent = 3;
    const double target = calibration_.mixture.at(place_.column, place_.row);
    live_.desiredAfr = ratioOfMixture1 / target;
    live_.actualAfr = ratioOfMixture1 / mixture_;
    closedLoop_.step({.runs = runs(),
                      .burns = burns,
                      .steady = std::max(live_.acceleration2, live_.acceleration5) < steadyPercent,
                      .runSeconds = runSeconds_,
                      .rpm = live_.rpm,
                      .mapVolts = live_.mapSensorVolts,
                      .coolantC = coolantC_,
                      .target = target,
                      .measured = mixture_},
                     calibration_, dt);
}

void EngineModel::fire(double dt) {
    const EngineCalibration& by = calibration_;
    live_.tableAdvance = live_.rpm > 0 ? by.advance.at(place_.column, place_.row) : 0;
    live_.coolantAdvance = by.coolantAdvance.at(coolantC_);
    live_.airAdvance = by.airAdvance.at(airC_.value());
    const bool idles = by.idleControl && live_.tpsVolts < 0.6 && live_.rpm < 1.5 * idleTarget();
    live_.idleAdvance =
        idles ? std::clamp((idleTarget() - live_.rpm) / 25, -by.idleRetard, by.idleAdvance) : 0;
    const double wanted = live_.tableAdvance + live_.coolantAdvance + live_.airAdvance + live_.idleAdvance;
    const double share = smooth(spin_);
    const double cranking = live_.rpm > leastBurningRpm && stopLeft_ <= 0 ? by.initialAdvance : 0;
    const double fired = timingZero_ ? 0 : std::max(0.0, wanted - knock_.retard());

    const double excess = fired - engine_.knockLimit(live_.rpm, live_.mapKpa, live_.airC);
    const double noise = 6 + 10 * std::min(1.0, live_.rpm / 6500) * live_.mapKpa / 100 + 2 * wave(age_, 0.5);
    live_.knockPercent = std::min(100.0, noise + 12 * std::max(0.0, excess)) * share;
    knock_.step(live_.knockPercent, live_.rpm, by, dt);
    live_.knockRetard = knock_.retard() * share;
    live_.primaryAdvance = timingZero_ ? 0 : between(cranking, fired, share);
    const double split = by.split[static_cast<std::size_t>(std::lround(place_.column))];
    live_.secondaryAdvance = std::max(0.0, live_.primaryAdvance - split);
}

void EngineModel::steerIdle() {
    const double share = smooth(spin_);
    live_.idleTargetRpm = idleTarget();
    const double position = 35 + 4 * wave(age_, 0.2) + 0.3 * std::max(0.0, 80 - coolantC_);
    live_.idlePositionPercent = between(60, position, share);
    live_.idleDuty =
        between(calibration_.idleLeastDuty, calibration_.idleMostDuty, live_.idlePositionPercent / 100);
    live_.idleDirection = wave(age_ + 1.25, 0.2) > 0 ? 1 : 0;  // while the position rises
}

void EngineModel::setPins() {
    live_.gpio[0] = 255 * smooth(spin_);            // fuel pump
    live_.gpio[1] = live_.coolantC > 86 ? 255 : 0;  // fan
    live_.gpio[2] = live_.rpm > 5500 ? 255 : 0;     // shift light
    live_.gpio[3] = 51 * live_.tpsVolts;            // throttle as an analog input
    live_.gpio[4] = 128 + 40 * wave(age_, 0.05);    // a slow analog input
    // What the larger kinds have besides: analog inputs, each with a pace of its own.
    for (std::size_t pin = 5; pin < 13; ++pin) {
        live_.gpio[pin] = 128 + 100 * wave(age_, 0.01 * static_cast<double>(pin));
    }
}

}  // namespace zentaq::sim
