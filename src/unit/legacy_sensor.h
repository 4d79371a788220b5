// The pressure sensors that the first firmware knows by a bar rating alone.
// Pressure cells keep their scale whatever sensor is in use.
#pragma once

#include <string_view>

namespace zentaq {

/// Gain `k` and zero `l` of a sensor, in counts of the unit's converter.
struct LegacySensor {
    double k = 0;
    double l = 0;
};

/// Ratings 1 to 4; 0 is a sensor of nothing. Throws BoundsError outside 0 to 4.
LegacySensor legacySensor(int rating);

/// The pressure units by the code that calibrations keep, 0 to 6; empty for any other code.
std::string_view pressureUnitsOf(int code);

}  // namespace zentaq
