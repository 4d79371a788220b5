#include "config/basic_figures.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

/// One bar in a pressure unit, as `MAX_Boost` is read, and what the form calls the unit.
struct BarIn {
    std::string_view unit;
    double perBar;
    std::string_view shown;
};
constexpr std::array<BarIn, 5> bars = {{{"kPa", 100, "kPa"},
                                        {"PSIA", 14.504, "PSI"},
                                        {"PSIG", 14.504, "PSI"},
                                        {"mmHg", 750.1, "mmHg"},
                                        {"inHg", 29.53, "inHg"}}};

constexpr std::string_view percentFlow = "%Flow";

BarIn barIn(const Unit& unit) {
    const auto found = std::ranges::find(bars, unit.MAPUnits(), &BarIn::unit);
    return found == bars.end() ? bars.front() : *found;
}

Limits boostLimits(Unit& unit) {
    if (!boostUsed(unit)) return Limits::none();
    const float highest = sensorRange(unit);
    return {0, highest, "(0 to " + numberText(highest) + " " + std::string(barIn(unit).shown) + ")"};
}

/// A figure whose limits follow from no other one.
struct Figure {
    std::string_view member;
    float minimum = 0;
    float maximum = 1;
    std::string_view text = "(0 to 1)";
    bool whole = true;
};
constexpr std::array figuresWithLimits{
    Figure{"INJ_Number", 1, 24, "(1 to 24)"},
    Figure{"BHP", 0, 5000, "(0 to 5000 HP)", false},
    Figure{"AFR", 1, 40, "(1 to 40 AFR)", false},
    // The writers put these into four bits, or beside other bits, of a byte: a larger number would change
    // those.
    Figure{"CYL_Number", 0, 15, "(0 to 15)"},
    Figure{"INJ_Events", 0, 15, "(0 to 15)"},
    Figure{"PHDSEQ", 0, 3, "(0 to 3)"},
    Figure{"Engine_Type"},
    Figure{"EGO_Type", 1, 2, "(1 to 2)"},
    Figure{"CAMSTL"},
    Figure{"Alcohol"},
    Figure{"AMP42"},
    Figure{"DCCL_CutActive"},
    Figure{"MAP_Active"},
    Figure{"TPS_MARGIN_TOGGLE"},
};

const Figure* figureOf(std::string_view member) {
    const auto found = std::ranges::find(figuresWithLimits, member, &Figure::member);
    return found == figuresWithLimits.end() ? nullptr : &*found;
}

/// The computed flow is the least that the injectors may have; without one any flow up to the highest goes.
Limits flowLimits(Unit& unit) {
    constexpr float highest = 500;
    const auto sizing = Calculate_FLOW(sizingInput(unit));
    const std::string least = sizing ? formatNumber(sizing->InjectorFlow, "###.##") : "0";
    const auto lowest = static_cast<float>(parseNumber(least).value_or(0));
    return {lowest, highest, "(" + least + " to 500 Lbs/hr)"};
}

}  // namespace

bool boostUsed(const Unit& unit) {
    return unit.MAPUnits() != percentFlow;
}

float sensorRange(Unit& unit) {
    return roundTo(static_cast<float>(unit.get("MAP_BAR") * barIn(unit).perBar), unit.MAPPrecision());
}

std::string maxBoostCaption(Unit& unit) {
    if (!boostUsed(unit)) return "Max Boost Pressure (Not Used)";
    return "Max Boost Pressure " + boostLimits(unit).text;
}

float enteredBoost(const Unit& unit) {
    const Parameter* row = unit.find("MAX_Boost");
    return row == nullptr ? 0 : unit.DirectIndex(row->index);
}

SizingInput sizingInput(Unit& unit) {
    return {.raceCam = unit.get("CAMSTL") != 0,
            .cylinders = unit.get("CYL_Number"),
            .mapBar = unit.get("MAP_BAR"),
            .horsePower = unit.get("BHP"),
            .injectors = unit.get("INJ_Number"),
            .alcohol = unit.get("Alcohol") != 0,
            .phdSeq = unit.get("PHDSEQ") == 0 ? 0 : 1,
            .revLimit = unit.get("REV_Limiter"),
            .maxBoost = boostUsed(unit) ? unit.get("MAX_Boost") : 0};
}

EngineFigures figuresOf(Unit& unit) {
    EngineFigures figures;
    for (const auto& [member, number, flag] : engineFigures) {
        if (number != nullptr) {
            figures.*number = member == "MAX_Boost" ? enteredBoost(unit) : unit.get(member);
        } else {
            figures.*flag = unit.get(member) != 0;
        }
    }
    return figures;
}

Limits figureLimits(Unit& unit, std::string_view member) {
    if (figureOf(member) != nullptr) return fixedFigureLimits(member);
    if (member == "MAX_Boost") return boostLimits(unit);
    if (member == "INJ_FlowRate") return flowLimits(unit);
    return unit.limits(member);
}

std::string_view figureRange(std::string_view member) {
    if (const Figure* figure = figureOf(member)) return figure->text;
    return member == "MAX_Boost" || member == "INJ_FlowRate" ? "depends on the calibration" : "";
}

Limits fixedFigureLimits(std::string_view member) {
    const Figure* figure = figureOf(member);
    if (figure == nullptr) return Limits::none();
    return {figure->minimum, figure->maximum, std::string(figure->text)};
}

EntryOutcome checkFigure(Unit& unit, std::string_view member, double number) {
    auto within = checkLimits(static_cast<float>(number), figureLimits(unit, member));
    const Figure* figure = figureOf(member);
    if (!within || figure == nullptr || !figure->whole) return within;
    return checkWhole(number);
}

std::string flowText(double flow) {
    return formatNumber(flow, "###.00");
}

float usualPulse(Unit& unit, float plain) {
    if (!unit.has("scale1") || !boostUsed(unit)) return plain;
    const double reserve = unit.get("MAP_BAR") / (1 + unit.get("MAX_Boost"));
    const Limits limits = unit.limits("scale1");
    const auto pulse = static_cast<float>(roundTo(plain * std::max(reserve, 1.0), 1));
    return std::clamp(pulse, limits.minimum, limits.maximum);
}

int usualInjectors(const EngineRow& engine) {
    if (engine.engType == 0) return static_cast<int>(engine.cylinders);
    unsigned outputs = 0;
    for (const float event : engine.injTbl)
        outputs |= static_cast<unsigned>(toInt16(static_cast<double>(event)));
    return std::popcount(outputs);
}

}  // namespace zentaq
