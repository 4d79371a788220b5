// What the driver makes of an engine: idling, a varied road, the steps of a brake, or a recorded drive.
// A cycle is a function of time alone, so that every round is the same.
#pragma once

#include <memory>
#include <optional>

namespace zentaq::sim {

/// What a driver, the road and the weather ask for at one moment.
struct DrivePoint {
    double rpm = 0;
    double kpa = 0;       ///< in the manifold
    double throttle = 0;  ///< 0 closed to 1 open
    /// Speed and pressure are as measured: nothing is added, no boost and no idle control.
    bool measured = false;
    std::optional<double> coolantC;  ///< nothing: the engine warms up by itself
    std::optional<double> airC;
    std::optional<double> batteryVolts;
    std::optional<double> tpsVolts;
};

class DriveCycle {
 public:
    virtual ~DriveCycle() = default;
    /// `seconds` from the start of the round, 0 to `length`.
    virtual DrivePoint at(double seconds) const = 0;
    virtual double length() const = 0;  ///< of a round, in seconds
};

using Drive = std::shared_ptr<const DriveCycle>;

/// The engine idles for ever.
Drive idleDrive();
/// Idle, a blip, a full pull, a cruise; then acceleration, hills, cruise and overrun in all gears.
Drive roadDrive();
/// Holds pairs of speed and load, 1000 to 6000 rpm and 30 to 95 kPa, four seconds each; then two full pulls.
Drive dynoDrive();

}  // namespace zentaq::sim
