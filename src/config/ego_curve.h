// The curve of the EGO sensor: volts (`X`) and the ratio at each of them (`Y`), and the presets that fill
// both.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

inline constexpr int egoPoints = 10;

/// The ratio of a point lies between those of its neighbors; the ends are bounded by the member's own range.
Limits egoRatioLimits(Unit& unit, int element);

/// The volts of a point lie above those to the left and below those to the right.
EntryOutcome checkEgoVolts(Unit& unit, int element, float volts);

/// Kinds of sensors, as `EGO_Type` has them.
enum EgoType : int { narrowBand = 1, wideBand = 2 };

/// A curve of the reference data.
struct EgoPreset {
    std::string name;  ///< "0 to 5 V = 10.0 to 20.0"
    int type = narrowBand;
    std::array<float, egoPoints> volts{};
    std::array<float, egoPoints> ratios{};
};

/// Those of table Defaults whose set is named "EGO1 " or "EGO2 " and a name, in the order of their names. A
/// set that is not whole is left out.
std::vector<EgoPreset> egoPresets(const Database& database);

/// The preset that the calibration has, by its numbers as they are shown; empty for a curve of its own.
std::string egoPresetOf(Unit& unit, const std::vector<EgoPreset>& presets);

/// Puts a preset into the calibration. Kept: the fuel trims of the cylinders begin anew with it, at 0.
/// Answers what was refused.
std::vector<Refusal> putEgoPreset(Unit& unit, const EgoPreset& preset);

/// A cylinder has a fuel trim, which a preset would take away.
bool hasFuelTrims(Unit& unit);

/// A fuel and the ratio at which it burns whole.
struct FuelChoice {
    std::string_view name;  ///< "Gasoline, 14.64"
    float ratio = 0;
};
const std::array<FuelChoice, 8>& fuelChoices();

}  // namespace zentaq
