// What a value of an input/output function may be, by the unit word behind it.
// The manager's list shows the word; the check of an entry goes by it.
#pragma once

#include <string_view>

#include "unit/parameter.h"

namespace zentaq {

/// The limits of a unit word. A word without limits of its own: none().
/// Pressure words have the sensor's range, so reading may repair cells.
Limits gpioLimitsOf(Unit& unit, std::string_view word);

}  // namespace zentaq
