// The engine behind a simulated unit: driven by a cycle, fuelled and timed by the unit's running memory, and
// answering with the needs of a hidden engine of its own. Gives the live values that the unit reports.
#pragma once

#include <array>
#include <cstdint>

#include "sim/drive_cycle.h"
#include "sim/engine_calibration.h"
#include "sim/engine_parts.h"
#include "sim/hidden_engine.h"

namespace zentaq::sim {

/// What the unit's sensors and outputs show at one moment, in the units a tuner thinks in.
struct LiveValues {
    double rpm = 0;
    double mapKpa = 0;
    double mapSensorVolts = 0;
    double wideLoad = 0;  ///< raw, as wide frames tell the load
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
    double idleDuty = 0;       ///< raw: the same position between the duty limits of the memory
    double idleDirection = 0;  ///< 1 while the motor opens, else 0
    double injectionGapMs = 0;
    double veCorrection = 0;
    double airCorrection = 0;
    double coolantCorrection = 0;
    double baroCorrection = 0;
    double startEnrichment = 0;
    double afterStart0 = 0;
    double afterStart1 = 0;
    double mapAcceleration = 0;     ///< kPa in a hundredth of a second
    double mapAccelerationRaw = 0;  ///< the same in the unit's counts, which go by the sensor's volts
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

struct EngineSetup {
    std::uint32_t serial = 0;  ///< which hidden engine it is
    Drive drive;               ///< none: the road
};

/// Deterministic in time: it runs in steps of `engineStep`, so two models that were advanced by the same
/// total show the same values, whatever the pieces were.
class EngineModel {
 public:
    /// A killed engine turns again after this time.
    static constexpr double restartAfterSeconds = 5.0;

    explicit EngineModel(const EngineSetup& setup = {});

    /// Lets `seconds` pass. Zero and negative times change nothing.
    void advance(double seconds);
    /// What the engine runs by from now on; at first it is the plain calibration. Change by change: what is
    /// bolted to the engine stays.
    void setCalibration(const EngineCalibration& calibration);
    /// A whole calibration came in. It brings its injectors along if the engine had none from a memory, or if
    /// they are of another size (15 %): without that every other calibration would be hopelessly lean or
    /// rich.
    void program(const EngineCalibration& calibration);
    /// Cuts the engine: it runs down to 0 rpm and restarts `restartAfterSeconds` after the last call. The
    /// cycle begins anew.
    void kill();
    /// The unit's power comes back: everything begins anew with the plain calibration, but on the same
    /// injectors.
    void cyclePower();
    /// Holds ignition timing at zero, or restores it.
    void setTimingZero(bool zero);

    const LiveValues& values() const { return live_; }

 private:
    struct TablePlace {
        double column = 0;
        double row = 0;
    };

    void step(double dt);
    void turnStarter(double dt);
    void moveAir(const DrivePoint& point, double dt);
    void warm(const DrivePoint& point, double dt);
    void charge(const DrivePoint& point, double dt);
    void meterFuel(double dt);
    void burn(double dt);
    void fire(double dt);
    void steerIdle();
    void setPins();
    void fit(const EngineCalibration& calibration);

    bool runs() const { return spin_ >= 1; }
    bool cut() const { return stopLeft_ > 0 || limiter_.cuts() || overrun_.cuts(); }
    double wantedRpm(const DrivePoint& point) const;
    double idleTarget() const;
    double manifoldKpa(const DrivePoint& point) const;
    TablePlace tablePlace() const;
    bool cranks() const { return stopLeft_ <= 0 && crankLeft_ > 0; }
    double startPercent(const EngineCalibration& by) const;
    /// The factor on the pulse that temperatures, the start and the time since ask for by a calibration.
    double conditionFactor(const EngineCalibration& by) const;
    double afterStartShare() const;

    EngineSetup setup_;
    HiddenEngine engine_;
    EngineCalibration calibration_ = plainCalibration();

    // The injectors that are fitted, whatever the memory says of them.
    struct Injectors {
        double fullPulseMs = plainCalibration().fullPulseMs;
        double offsetMs = plainCalibration().injectorOffsetMs;
        bool fromMemory = false;
    };
    Injectors injectors_;

    double owed_ = 0;        // time that is not yet a whole step
    double age_ = 0;         // since power on
    double cycleTime_ = 0;   // since the engine last started
    double stopLeft_ = 0;    // until a killed engine is cranked
    double crankLeft_ = 0;   // until it fires
    double spin_ = 1;        // 0 standing, 1 running on its own
    double runSeconds_ = 0;  // since it last ran on its own
    bool timingZero_ = false;

    RevLimiter limiter_;
    OverrunCut overrun_;
    ClosedLoop closedLoop_;
    Acceleration acceleration_;
    KnockControl knock_;
    double coolantC_ = 20;
    Lag airC_{40, 24};
    Lag batteryVolts_{0.15, 14};
    Lag tpsBefore_{0.05, 0.5};
    Lag kpaBefore_{0.05, 34};
    Lag filmKpa_{0.3, 34};  // what the fuel on the walls has got used to
    Transport exhaust_{1};
    Lag sensor_{0.15, 1};
    double mixture_ = 1;  // by the unit's reading of the sensor
    TablePlace place_;
    LiveValues live_;
};

}  // namespace zentaq::sim
