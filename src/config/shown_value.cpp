#include "config/shown_value.h"

#include <algorithm>
#include <array>
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

constexpr std::string_view degrees = "degrees";  ///< of the user's scale

struct AxisRow {
    FieldAxis axis;
    std::string_view unit{};
    std::string_view member{};  ///< whose cells the stops are
};
constexpr std::array axisRows = {AxisRow{FieldAxis::None},
                                 AxisRow{FieldAxis::Number},
                                 AxisRow{FieldAxis::Cylinder},
                                 AxisRow{FieldAxis::Temperature, degrees},
                                 AxisRow{FieldAxis::AirTemperature, degrees},
                                 AxisRow{FieldAxis::BatteryVolts, "V"},
                                 AxisRow{FieldAxis::Speed, "RPM", "RPMTBL"},
                                 AxisRow{FieldAxis::BlendSpeed, "RPM", "BLDTBL"},
                                 AxisRow{FieldAxis::IdleTemperature, degrees, "ISTMP"},
                                 AxisRow{FieldAxis::SensorVolts, "V", "X"}};

const AxisRow& rowOf(FieldAxis axis) {
    return *std::ranges::find(axisRows, axis, &AxisRow::axis);
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
    const UnitKind& kind = unit.kind();
    const AxisRow& row = rowOf(axis);
    if (!row.member.empty()) return shownValue(unit, *unit.find(row.member), {}, element);
    if (axis == FieldAxis::Number) return numberText(element + 1);
    if (axis == FieldAxis::Cylinder) return "Cyl. " + numberText(element + 1);
    if (axis == FieldAxis::BatteryVolts) {
        return formatNumber(batteryinput::stop(kind.batteryVoltsPerCount, element, count), "#0.0");
    }
    if (axis == FieldAxis::AirTemperature && kind.retardInputVolts != 0) {
        return formatNumber(spread(0, kind.retardInputVolts, element, count), "0.00");
    }
    return row.unit == degrees ? temperatureAt(unit, element, count) : std::string();
}

std::string shownStopUnit(const Unit& unit, FieldAxis axis) {
    if (axis == FieldAxis::AirTemperature && unit.kind().retardInputVolts != 0) return "V";
    const std::string_view word = rowOf(axis).unit;
    if (word == degrees) return unit.host().fahrenheit() ? "\u00B0F" : "\u00B0C";
    return std::string(word);
}

}  // namespace zentaq
