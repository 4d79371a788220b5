// How a unit measures the battery: one byte, whose scale differs between the kinds. The curve of injector
// times by battery voltage spreads its cells over the same volts, so live values, pages, defaults, help and
// simulator all take them from here.
#pragma once

namespace zentaq::batteryinput {

/// Volts of one count, by the divider in front of the input.
inline constexpr double voltsPerCountOrbA = 0.067432;
inline constexpr double voltsPerCount = 0.078431;  ///< all kinds but the ORB A

/// Volts of a full byte, 17.2 or 20: where the curve ends. It begins at 0.
constexpr double top(double voltsOfOneCount) {
    return 255 * voltsOfOneCount;
}

/// Volts at a cell of the curve, counted from 0.
constexpr double stop(double voltsOfOneCount, int cell, int cells) {
    return top(voltsOfOneCount) * cell / (cells - 1);
}

}  // namespace zentaq::batteryinput
