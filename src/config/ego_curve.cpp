#include "config/ego_curve.h"

#include <algorithm>
#include <cmath>

#include "base/message_codes.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

constexpr std::string_view narrowSets = "EGO1 ";
constexpr std::string_view wideSets = "EGO2 ";

float at(Unit& unit, std::string_view member, int element) {
    return unit.get(member, element);
}

int lastOf(Unit& unit, std::string_view member) {
    const Parameter* row = unit.find(member);
    return row == nullptr ? 0 : row->count - 1;
}

bool alike(float one, float other) {
    constexpr double half = 0.006;  // of the last decimal that is shown
    return std::fabs(static_cast<double>(one) - static_cast<double>(other)) < half;
}

bool holds(Unit& unit, const EgoPreset& preset) {
    for (int i = 0; i < egoPoints; ++i) {
        const auto place = static_cast<std::size_t>(i);
        if (!alike(at(unit, "X", i), preset.volts[place])) return false;
        if (!alike(at(unit, "Y", i), preset.ratios[place])) return false;
    }
    return static_cast<int>(unit.get("EGO_Type")) == preset.type;
}

/// The last one shares its cell with the first letter of the notes, which is none.
bool isTrim(Unit& unit, int element) {
    const Limits limits = unit.limits("FuelTrim", element);
    const float trim = at(unit, "FuelTrim", element);
    return trim != 0 && trim >= limits.minimum && trim <= limits.maximum;
}

EntryOutcome notBetween(const char* text) {
    return Refusal{.warning = codes::OwnWarning, .text = text};
}

}  // namespace

Limits egoRatioLimits(Unit& unit, int element) {
    const Limits own = unit.limits("Y", element);
    const int last = lastOf(unit, "Y");
    const bool rising = at(unit, "Y", 0) < at(unit, "Y", last);
    const float left = element == 0 ? (rising ? own.minimum : own.maximum) : at(unit, "Y", element - 1);
    const float right = element == last ? (rising ? own.maximum : own.minimum) : at(unit, "Y", element + 1);
    const auto [low, high] = std::minmax(left, right);
    return {low, high, "(" + numberText(low) + " to " + numberText(high) + " AFR, 2)"};
}

EntryOutcome checkEgoVolts(Unit& unit, int element, float volts) {
    const bool first = element == 0;
    const bool last = element == lastOf(unit, "X");
    const bool aboveLeft = first || volts > at(unit, "X", element - 1);
    const bool belowRight = last || volts < at(unit, "X", element + 1);
    if (aboveLeft && belowRight) return {};
    return last ? notBetween("New Value Must be greater than the value to the left.")
                : notBetween(
                      "New Value Must be greater than the value to the left and less than the value to the "
                      "Right");
}

std::vector<EgoPreset> egoPresets(const Database& database) {
    std::vector<EgoPreset> presets;
    for (const std::string& set : database.defaultsSets()) {
        const bool narrow = set.starts_with(narrowSets);
        if (!narrow && !set.starts_with(wideSets)) continue;
        const std::vector<float> values = database.defaults(set);
        if (values.size() != 2 * egoPoints) continue;
        EgoPreset preset{.name = set.substr(narrowSets.size()), .type = narrow ? narrowBand : wideBand};
        std::copy_n(values.begin(), egoPoints, preset.volts.begin());
        std::copy_n(values.begin() + egoPoints, egoPoints, preset.ratios.begin());
        presets.push_back(std::move(preset));
    }
    std::ranges::stable_sort(presets, {}, &EgoPreset::type);
    return presets;
}

std::string egoPresetOf(Unit& unit, const std::vector<EgoPreset>& presets) {
    const auto found =
        std::ranges::find_if(presets, [&](const EgoPreset& preset) { return holds(unit, preset); });
    return found == presets.end() ? std::string() : found->name;
}

std::vector<Refusal> putEgoPreset(Unit& unit, const EgoPreset& preset) {
    std::vector<Refusal> refused;
    noteRefusal(refused, unit.set("EGO_Type", preset.type));
    for (int i = 0; i < egoPoints; ++i) {
        const auto place = static_cast<std::size_t>(i);
        noteRefusal(refused, unit.set("Y", static_cast<double>(preset.ratios[place]), i));
        noteRefusal(refused, unit.set("X", static_cast<double>(preset.volts[place]), i));
    }
    const Parameter* trims = unit.find("FuelTrim");
    for (int i = 0; trims != nullptr && i < trims->count; ++i) {
        if (isTrim(unit, i)) noteRefusal(refused, unit.set("FuelTrim", 0, i));
    }
    return refused;
}

bool hasFuelTrims(Unit& unit) {
    const Parameter* trims = unit.find("FuelTrim");
    for (int i = 0; trims != nullptr && i < trims->count; ++i) {
        if (isTrim(unit, i)) return true;
    }
    return false;
}

const std::array<FuelChoice, 8>& fuelChoices() {
    static const std::array<FuelChoice, 8> choices{{{"Gasoline, 14.64", 14.64F},
                                                    {"Gasoline, 14.7", 14.7F},
                                                    {"E10, 14.1", 14.1F},
                                                    {"E85, 9.8", 9.8F},
                                                    {"Ethanol, 9", 9},
                                                    {"Methanol, 6.4", 6.4F},
                                                    {"LPG, 15.5", 15.5F},
                                                    {"Lambda, 1", 1}}};
    return choices;
}

}  // namespace zentaq
