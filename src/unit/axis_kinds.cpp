#include "unit/axis_kinds.h"

#include <algorithm>
#include <array>

#include "unit/parameter_rules.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

// ---- What a stop takes

Limits temperatures(Unit& unit) {
    if (unit.host().fahrenheit()) return {-40, 302, "(-40 to 302 F)"};
    return {-40, 150, "(-40 to 150 C)"};
}

Limits pressures(Unit& unit) {
    return rules::pressure(unit, 0, 0);
}

Limits throttle(Unit&) {
    return {0, 5, "(0 to 5 Volts)"};
}

Limits speeds(Unit&) {
    return {0, 20000, "(0 to 20000 RPM)"};
}

Limits percents(Unit&) {
    return {0, 100, "(0 to 100%)"};
}

// ---- What a new axis is spread over

/// From one limit to the other, and by the same numbers: worked out twice they may differ by a hair, and the
/// lowest stop of its own axis is refused.
template <Limits (*limits)(Unit&)>
AxisSpan allOf(Unit& unit) {
    const Limits all = limits(unit);
    return {all.minimum, all.maximum};
}

/// Narrower on purpose than what a stop takes.
AxisSpan engineSpeeds(Unit& unit) {
    return {750, unit.get("REV_Limiter")};
}

// ---- Images

double temperatureCounts(Unit&, double cell) {
    return (cell + 40) * (255.0 / 190.0);
}

double throttleCounts(Unit&, double cell) {
    return cell * 51;
}

double ratioCounts(Unit& unit, double cell) {
    return ((rules::stoichiometricRatio(unit) / cell) - 0.5) * 255;
}

double asItStands(Unit&, double cell) {
    return cell;
}

double percentCounts(Unit&, double cell) {
    return cell * 2.55;
}

constexpr AxisKind pinKind(int code, std::string_view name) {
    constexpr int firstPin = 8;
    return {code, name, "%", percents, allOf<percents>, percentCounts, nullptr, code - firstPin};
}

constexpr AxisKind temperatureKind(int code, std::string_view name, float LiveValues::*live) {
    return {code, name, "C", temperatures, allOf<temperatures>, temperatureCounts, live, -1, true};
}

constexpr AxisKind pressureKind(int code, std::string_view name, float LiveValues::*live) {
    return {code, name, "", pressures, allOf<pressures>, rules::pressureWord, live};
}

constexpr std::array<AxisKind, 15> kinds = {
    {temperatureKind(1, "CLT", &LiveValues::CLT),
     pressureKind(2, "RAW MAP", &LiveValues::CLT),  // kept: a raw pressure axis follows the coolant
     pressureKind(3, "BLEND MAP", &LiveValues::MAP),
     {4, "TPS", "Volts", throttle, allOf<throttle>, throttleCounts, &LiveValues::TPS},
     {5, "ACTUAL AFR", "AFR", rules::ratioStop, allOf<rules::ratioStop>, ratioCounts, &LiveValues::AAFR},
     temperatureKind(6, "MAT", &LiveValues::MAT),
     {7, "RPM", "RPM", speeds, engineSpeeds, asItStands, &LiveValues::RPM},
     pinKind(8, "GPIO1"),
     pinKind(9, "GPIO2"),
     pinKind(10, "GPIO3"),
     pinKind(11, "GPIO4"),
     pinKind(12, "GPIO5"),
     pinKind(13, "GPIO6"),
     pinKind(14, "GPIO7"),
     pinKind(15, "GPIO8")}};

}  // namespace

std::span<const AxisKind> axisKinds() {
    return kinds;
}

const AxisKind* axisKindOf(int code) {
    return code < 1 || code > std::ssize(kinds) ? nullptr : &kinds[static_cast<std::size_t>(code - 1)];
}

const AxisKind* axisKindOf(std::string_view name) {
    const auto found = std::ranges::find(kinds, name, &AxisKind::name);
    return found == kinds.end() ? nullptr : &*found;
}

std::string_view axisKindName(int code) {
    const AxisKind* kind = axisKindOf(code);
    return kind == nullptr ? std::string_view() : kind->name;
}

std::string axisUnit(const Unit& unit, const AxisKind* kind) {
    if (kind == nullptr) return {};
    return kind->unit.empty() ? unit.MAPUnits() : std::string(kind->unit);
}

}  // namespace zentaq
