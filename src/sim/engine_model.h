// A small make-believe engine: cycles through idle, a throttle blip, idle, a full pull and cruise,
// and gives smooth, repeatable live values for a simulated unit to report.
#pragma once

#include <array>

namespace zentaq::sim {

/// What the unit's sensors and outputs show at one moment, in the units a tuner thinks in.
struct LiveValues {
    double rpm = 0;
    double mapKpa = 0;
    double mapSensorVolts = 0;
    double tpsVolts = 0;
    double coolantC = 0;
    double airC = 0;
    double batteryVolts = 0;
    double knockPercent = 0;
    double egoVolts = 0;
    double checkEngine = 0;  ///< 1 while the lamp is lit
    double primaryAdvance = 0;
    double secondaryAdvance = 0;
    double knockRetard = 0;
    double gammaPercent = 0;
    double primaryDutyPercent = 0;
    double secondaryDutyPercent = 0;
    double primaryPulseMs = 0;
    double secondaryPulseMs = 0;
    double egoCorrectionPercent = 0;
    double desiredAfr = 0;
    double actualAfr = 0;
    double idlePositionPercent = 0;
    double idleDirection = 0;  ///< 1 while the motor opens, else 0
    double injectionGapMs = 0;
    double veCorrection = 0;
    double airCorrection = 0;
    double coolantCorrection = 0;
    double baroCorrection = 0;
    double startEnrichment = 0;
    double afterStart0 = 0;
    double afterStart1 = 0;
    double mapAcceleration = 0;
    double tpsAcceleration = 0;
    double acceleration2 = 0;
    double acceleration5 = 0;
    double acceleration6 = 0;
    double voltageCompensationMs = 0;
    double blend = 0;
    double stagePercent = 0;
    double tableAdvance = 0;
    double coolantAdvance = 0;
    double airAdvance = 0;
    double baroAdvance = 0;
    double idleAdvance = 0;
    double idleTargetRpm = 0;
    std::array<double, 16> gpio{};  ///< raw input and output values, 0 to 255
};

/// Deterministic in time: two models that were advanced by the same total show the same values.
class EngineModel {
 public:
    /// A killed engine turns again after this time.
    static constexpr double restartAfterSeconds = 5.0;
    /// Idle, blip, idle, pull, cruise, idle: one round.
    static constexpr double cycleSeconds = 48.0;

    /// Lets `seconds` pass. Zero and negative times change nothing.
    void advance(double seconds);
    /// Cuts the engine: it runs down to 0 rpm and restarts `restartAfterSeconds` after the last call.
    void kill();
    /// Holds ignition timing at zero, or restores it.
    void setTimingZero(bool zero) { timingZero_ = zero; }

    LiveValues values() const;

 private:
    void step(double seconds);

    double age_ = 0;        // since power on
    double cycleTime_ = 0;  // since the engine last started
    double stopLeft_ = 0;   // until a killed engine restarts
    double spin_ = 1;       // 0 standing, 1 running on its own
    bool timingZero_ = false;
};

}  // namespace zentaq::sim
