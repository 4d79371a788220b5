// Between the two temperature scales, rounded to hundredths as the windows show them.
// Cells hold degrees Celsius.
#pragma once

#include "base/rounding.h"

namespace zentaq {

inline float toFahrenheit(float celsius) {
    return static_cast<float>(roundTo(static_cast<double>(celsius) * 9 / 5 + 32, 2));
}

inline float toCelsius(float fahrenheit) {
    return static_cast<float>(roundTo((static_cast<double>(fahrenheit) - 32) * 5 / 9, 2));
}

}  // namespace zentaq
