// The parts of the engine model that remember something: lags, delays, the limiter and the controls that
// react. Each is stepped by the model's fixed step; a step of 0 changes nothing.
#pragma once

#include <array>
#include <cstddef>

#include "sim/engine_calibration.h"

namespace zentaq::sim {

/// Length of the model's step in seconds.
inline constexpr double engineStep = 0.005;

/// Follows a value with a time constant.
class Lag {
 public:
    explicit Lag(double seconds, double value = 0) : seconds_(seconds), value_(value) {}
    double follow(double target, double dt) {
        value_ += (target - value_) * dt / (seconds_ + dt);
        return value_;
    }
    double value() const { return value_; }
    void set(double value) { value_ = value; }

 private:
    double seconds_;
    double value_;
};

/// What went in 0.1 s ago: the way of the gas from the cylinder to the sensor.
class Transport {
 public:
    explicit Transport(double value) { way_.fill(value); }
    double pass(double value, double dt);

 private:
    std::array<double, 20> way_{};
    std::size_t next_ = 0;
};

/// Cuts the fuel above the limit of the memory until the engine has fallen by the hysteresis.
class RevLimiter {
 public:
    /// The speed that comes of a wanted one.
    double follow(double wantedRpm, const EngineCalibration& calibration, double dt);
    bool cuts() const { return cuts_; }

 private:
    double rpm_ = 0;
    bool cuts_ = false;
    bool holds_ = false;  // until the wanted speed is below the limiter's again
};

/// Cuts the fuel on the overrun by the figures of the memory.
class OverrunCut {
 public:
    void step(double rpm, double tpsVolts, double mapVolts, const EngineCalibration& calibration);
    bool cuts() const { return cuts_; }

 private:
    bool cuts_ = false;
};

/// The correction by the oxygen sensor: an answer in proportion and an integrator, within the limit of the
/// memory.
class ClosedLoop {
 public:
    struct Inputs {
        bool runs = false;    ///< the engine runs on its own
        bool burns = false;   ///< fuel is not cut
        bool steady = false;  ///< no enrichment for acceleration at work: the correction waits for it
        double runSeconds = 0;
        double rpm = 0;
        double mapVolts = 0;
        double coolantC = 0;
        double target = 1;    ///< mixture
        double measured = 1;  ///< by the sensor
    };
    void step(const Inputs& inputs, const EngineCalibration& calibration, double dt);
    /// Percent of fuel; positive while the engine is lean of the target.
    double percent() const { return percent_; }

 private:
    double percent_ = 0;
    double learned_ = 0;      // the integrator's part
    double burnSeconds_ = 0;  // since the last cut
};

/// Extra fuel for a moment after the throttle opened or the pressure rose, the more the faster it did.
class Acceleration {
 public:
    /// Rates as the frame tells them: volts a second, and counts of pressure rise.
    void step(double throttleRate, double pressureRate, double coolantC, const EngineCalibration& calibration,
              double dt);
    double byThrottle() const { return byThrottle_; }  ///< percent
    double byPressure() const { return byPressure_; }
    double byCold() const { return byCold_; }

 private:
    double byThrottle_ = 0;
    double byPressure_ = 0;
    double byCold_ = 0;
};

/// Takes advance away while the knock signal is above the threshold of the memory, and gives it back slowly.
class KnockControl {
 public:
    void step(double level, double rpm, const EngineCalibration& calibration, double dt);
    double retard() const { return retard_; }  ///< degrees

 private:
    double retard_ = 0;
    double sinceEvent_ = 0;
};

/// Volts of the sensor in the exhaust, the same for all engines.
double oxygenVolts(double mixture);
/// What a unit makes of them by the curve in its memory.
double mixtureOf(double volts, const EngineCalibration& calibration);

}  // namespace zentaq::sim
