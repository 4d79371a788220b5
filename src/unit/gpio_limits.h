// What a value of an input/output function may be, by the unit word behind it.
// The manager's list shows the word; the check of an entry goes by it.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zentaq {

class Unit;

/// Limits in the shown unit, inclusive. With listed values nothing else is accepted.
struct GpioLimits {
    float minimum = 0;
    float maximum = 0;
    std::string text;               ///< told to the user on refusal
    std::span<const float> listed;  ///< in the order that the text names them
    double step = 0;                ///< entries are multiples of it; 0: any number
    std::string stepText;           ///< told when only the step is missed; empty: `text`

    bool unlimited() const;
    static GpioLimits none();
};

/// The limits of a unit word. A word without limits of its own: none().
/// Pressure words have the sensor's range, so reading may repair cells.
GpioLimits gpioLimitsOf(Unit& unit, std::string_view word);

/// Tells whether a number in the shown unit is accepted. A refusal goes through the host: warning 1001 with
/// the range text.
bool gpioAccepts(Unit& unit, const GpioLimits& limits, float value);

}  // namespace zentaq
