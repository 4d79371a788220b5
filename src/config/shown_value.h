// How a member reads to the user, wherever it stands: in the user's scale of temperature, with the decimals
// that suit the pressure sensor, and a cell of a curve with what it is for. Forms and pages show members by
// this and by nothing else.
#pragma once

#include <string>

#include "config/field_pages.h"
#include "unit/unit.h"

namespace zentaq {

/// "80", or "176" to a user of Fahrenheit.
std::string shownValue(Unit& unit, const Parameter& parameter, const FieldTraits& traits, int element);

/// "RPM", "kPa/s", "Celsius" or "Fahrenheit"; empty for none.
std::string shownUnit(const Unit& unit, const Parameter& parameter, const FieldTraits& traits);

/// The limits as the range check words them; empty for none.
std::string shownRange(Unit& unit, const Parameter& parameter, int element);

/// What a cell of a curve with `count` cells stands at, without its unit: "-40", "13.6", "1500".
std::string shownStop(Unit& unit, FieldAxis axis, int element, int count);

/// "°C", "°F", "V", "RPM"; empty for an axis that counts.
std::string shownStopUnit(const Unit& unit, FieldAxis axis);

}  // namespace zentaq
