// The input/output pins of each unit kind as the tuner sees them: row, number, wire and direction.
// Behind each row stands the block of nine cells of its pin.
#pragma once

#include <array>
#include <span>
#include <string_view>

#include "unit/gpio_functions.h"

namespace zentaq {

/// One row of the pin list.
struct GpioPin {
    int pin = 0;            ///< block of the calibration, from 0
    int number = 0;         ///< as the row is numbered
    std::string_view what;  ///< "(Output)", or the pin's own name
    std::string_view wire;  ///< of the connector
    GpioSide side = GpioSide::Both;
    int fromRelease = 0;  ///< older firmware does not have the pin
};

struct GpioPins {
    GpioKinds kind = gpio_kinds::noUnit;
    std::span<const GpioPin> rows;
    std::size_t wireColumn = 0;         ///< where "(pin" begins
    std::array<int, 2> speedPins = {};  ///< pins of speed input 1 and 2; -1: none
    bool recordsRelease = false;        ///< choosing a function may tell the firmware

    /// nullptr for a pin without a row.
    const GpioPin* find(int pin) const;
};

extern const GpioPins orbaPins, orbLitePins, pzk2Pins, orbcPins, orbdPins, orbd6Pins;
extern const GpioPins noPins;  ///< of clsNull

}  // namespace zentaq
