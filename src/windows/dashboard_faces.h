// The faces of the dials: which ticks, numbers and coloured stretches stand on each. Needle and ticks follow
// the same angles.
#pragma once

#include "windows/gauge_widget.h"

namespace zentaq {

/// The angle that a value gives on a dial, in degrees.
using DialAngle = double (*)(double value);

/// How each dial turns a value into an angle, so that ticks and needle agree. `tachometer` is for the rev
/// scale in force, `revScale` is 9000 or 18000.
struct DialAngles {
    DialAngle tachometer = nullptr;
    DialAngle throttle = nullptr;
    DialAngle volt = nullptr;
    DialAngle idle = nullptr;
    DialAngle coolant = nullptr;
    DialAngle manifoldAir = nullptr;
    DialAngle mixture = nullptr;
    int revScale = 9000;
};

/// Those of the core, for a rev scale of 9000 or 18000.
DialAngles dialAngles(int revScale);

GaugeFace tachometerFace(const DialAngles& angles);
GaugeFace throttleFace(const DialAngles& angles);
GaugeFace voltFace(const DialAngles& angles);
GaugeFace idleFace(const DialAngles& angles);
/// The needle goes by degrees Celsius whatever the face says.
GaugeFace temperatureFace(const QString& name, DialAngle angle, bool fahrenheit);
GaugeFace mixtureFace(const DialAngles& angles);

}  // namespace zentaq
