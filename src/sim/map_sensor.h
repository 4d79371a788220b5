// The manifold pressure sensor that simulated units carry: the one a fresh calibration describes,
// so that a program with a new calibration shows the pressures the engine model makes.
#pragma once

namespace zentaq::sim {

inline constexpr double mapScaler = 0.05295;   ///< volts per kPa
inline constexpr double mapOffset = -0.54738;  ///< volts at 0 kPa

/// The sensor's voltage at a pressure, before the converter clips it to 0 to 5 volts.
constexpr double mapSensorVolts(double kpa) {
    return mapScaler * kpa + mapOffset;
}

}  // namespace zentaq::sim
