// The ranges that are made of other members at run time.
#include <cmath>
#include <string>
#include <string_view>

#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/parameter_rules.h"
#include "unit/unit.h"

namespace zentaq::rules {

namespace {

std::string bounds(float minimum, float maximum, std::string_view tail) {
    return "(" + numberText(minimum) + " to " + numberText(maximum) + std::string(tail) + ")";
}

Limits limitsOf(double minimum, double maximum, std::string_view tail) {
    const float low = static_cast<float>(minimum);
    const float high = static_cast<float>(maximum);
    return {low, high, bounds(low, high, tail)};
}

Limits ratioLimits(double ratio, std::string_view tail) {
    return limitsOf(0.667 * ratio, 2 * ratio, tail);
}

}  // namespace

Limits toothOffset1(Unit& unit, int, float) {
    if (!unit.hasPIC18()) return {1, 58, "(1 to 58 Tooth OffSet)"};
    const Parameter none;
    const float first = readToothMin(unit, none, 0);
    const float last = readToothMax(unit, none, 0);
    // The reference data lacks the engine: every tooth of the wheel may be meant.
    if (first == 0 && last == 0) return {1, 58, "(1 to 58 Tooth OffSet)"};
    return limitsOf(first, last, " Tooth OffSet");
}

Limits toothOffset2(Unit& unit, int, float) {
    constexpr int toothOffset1Cell = 5;
    return limitsOf(unit.DirectIndex(toothOffset1Cell), 58, " Tooth OffSet");
}

Limits initialAdvance(Unit& unit, int, float) {
    const double offset = unit.DirectIndex(moffsetCell);
    return limitsOf(offset, offset + 30, " Degrees");
}

Limits tableAdvance(Unit& unit, int, float) {
    const double offset = unit.DirectIndex(moffsetCell);
    return limitsOf(offset, offset + 60, " Degrees");
}

Limits tableRatio(Unit& unit, int, float) {
    return ratioLimits(stoichiometricRatio(unit), " AFR");
}

Limits lambdaValue(Unit&, int, float value) {
    // A ratio of 0 has no reciprocal, and below this one the image has no 16 bits for it.
    constexpr double lowest = 0.12;
    Limits limits = limitsOf(lowest, 2 * petrolRatio, " AFR");
    if (!std::isnan(value)) limits.text = "Value: " + numberText(value) + " " + limits.text;
    return limits;
}

Limits ratioStop(Unit& unit) {
    const double ratio = stoichiometricRatio(unit);
    return ratioLimits(ratio, ratio == 1 ? " lambda" : " AFR");
}

Limits pressure(Unit& unit, int, float) {
    const float low = unit.MAPMin();
    const float high = unit.MAPMax();
    const int places = unit.MAPPrecision();
    return {low, high, bounds(roundTo(low, places), roundTo(high, places), " " + unit.MAPUnits())};
}

Limits pressureWhileActive(Unit& unit, int element, float value) {
    if (unit.DirectIndex(unit.kind().cells.mapActive) == 0) return Limits::none();
    return pressure(unit, element, value);
}

Limits pressureOrZero(Unit& unit, int element, float value) {
    if (value == 0) return Limits::none();
    return pressure(unit, element, value);
}

Limits accelerationThreshold(Unit& unit, int, float) {
    const double range = unit.MAPRange();
    return limitsOf(range * 0.05825 / 100, range * 0.0388, "");
}

Limits upToMaxDuty(Unit& unit, int, float) {
    return limitsOf(0, unit.DirectIndex(unit.kind().cells.maxDuty), "");
}

Limits fromMinDuty(Unit& unit, int, float) {
    return limitsOf(unit.DirectIndex(unit.kind().cells.minDuty), 255, "");
}

Limits idleTemperature(Unit& unit, int, float) {
    if (unit.host().fahrenheit()) return {-22, 176, "(-22 to 176 Degrees Fahrenheit)"};
    return {-30, 80, "(-30 to 80 Degrees Celsius)"};
}

}  // namespace zentaq::rules
