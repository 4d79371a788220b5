// When two sensor lines are the same sensor, though one of them went through a calibration.
#pragma once

namespace zentaq::refdata {

/// Calibrations keep slope and offset as 32-bit floats and show them rounded to 4 decimals, so a sensor's
/// numbers come back up to half a step of the 4th decimal away from its row; the rest allows for the 32-bit
/// form.
inline constexpr double sensorTolerance = 0.00005 + 0.000001;

/// Distance of two lines (slope in volts per unit, offset in volts), or a negative number if they are
/// different sensors: either of the numbers is more than `sensorTolerance` apart.
inline double sensorDistance(double scaleA, double offsetA, double scaleB, double offsetB) {
    const double scale = scaleA < scaleB ? scaleB - scaleA : scaleA - scaleB;
    const double offset = offsetA < offsetB ? offsetB - offsetA : offsetA - offsetB;
    if (!(scale <= sensorTolerance) || !(offset <= sensorTolerance)) return -1;
    return scale + offset;
}

}  // namespace zentaq::refdata
