#include "config/shown_value.h"

#include <cmath>

#include "base/battery_input.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

bool isPressure(const Parameter& parameter) {
    return parameter.unit == "MAP";
}

bool inFahrenheit(const Unit& unit, const Parameter& parameter) {
    return parameter.unit == "Celsius" && unit.host().fahrenheit();
}

/// Evenly spread, both ends included.
double spread(double low, double high, int element, int count) {
    return low + (high - low) * element / (count - 1);
}

std::string temperatureAt(const Unit& unit, int element, int count) {
    const auto celsius = static_cast<float>(spread(-40, 150, element, count));
    return numberText(unit.host().fahrenheit() ? toFahrenheit(celsius) : celsius);
}

/// A cell of the curve's axis that is a member of its own.
std::string memberAt(Unit& unit, std::string_view member, int element) {
    return shownValue(unit, *unit.find(member), {}, element);
}

}  // namespace

std::string shownValue(Unit& unit, const Parameter& parameter, const FieldTraits& traits, int element) {
    float value = unit.read(parameter, element);
    if (isPressure(parameter)) value = roundTo(value, unit.MAPPrecision() + traits.moreDecimals);
    return numberText(inFahrenheit(unit, parameter) ? toFahrenheit(value) : value);
}

std::string shownUnit(const Unit& unit, const Parameter& parameter, const FieldTraits& traits) {
    if (isPressure(parameter)) return unit.MAPUnits() + std::string(traits.unitTail);
    return inFahrenheit(unit, parameter) ? "Fahrenheit" : std::string(parameter.unit);
}

std::string shownRange(Unit& unit, const Parameter& parameter, int element) {
    const Limits limits = unit.limits(parameter.name, element);
    if (!std::isfinite(limits.minimum) || !std::isfinite(limits.maximum)) return {};
    // A range that is worked out asks for the scale itself.
    const bool converts = inFahrenheit(unit, parameter) && !std::holds_alternative<RangeOf>(parameter.range);
    if (!converts) return limits.text;
    return "(" + numberText(toFahrenheit(limits.minimum)) + " to " +
           numberText(toFahrenheit(limits.maximum)) + " Degrees Fahrenheit)";
}

std::string shownStop(Unit& unit, FieldAxis axis, int element, int count) {
    switch (axis) {
        case FieldAxis::None:
            return {};
        case FieldAxis::Number:
            return numberText(element + 1);
        case FieldAxis::Temperature:
            return temperatureAt(unit, element, count);
        case FieldAxis::AirTemperature:
            if (unit.kind().retardInputVolts == 0) return temperatureAt(unit, element, count);
            return formatNumber(spread(0, unit.kind().retardInputVolts, element, count), "0.00");
        case FieldAxis::BatteryVolts:
            return formatNumber(batteryinput::stop(unit.kind().batteryVoltsPerCount, element, count), "#0.0");
        case FieldAxis::Speed:
            return memberAt(unit, "RPMTBL", element);
        case FieldAxis::BlendSpeed:
            return memberAt(unit, "BLDTBL", element);
        case FieldAxis::IdleTemperature:
            return memberAt(unit, "ISTMP", element);
        case FieldAxis::SensorVolts:
            return memberAt(unit, "X", element);
    }
    return {};
}

std::string shownStopUnit(const Unit& unit, FieldAxis axis) {
    const std::string degrees = unit.host().fahrenheit() ? "\u00B0F" : "\u00B0C";
    switch (axis) {
        case FieldAxis::None:
        case FieldAxis::Number:
            return {};
        case FieldAxis::AirTemperature:
            return unit.kind().retardInputVolts != 0 ? "V" : degrees;
        case FieldAxis::Temperature:
        case FieldAxis::IdleTemperature:
            return degrees;
        case FieldAxis::BatteryVolts:
        case FieldAxis::SensorVolts:
            return "V";
        case FieldAxis::Speed:
        case FieldAxis::BlendSpeed:
            return "RPM";
    }
    return {};
}

}  // namespace zentaq
