// Pressures between kPa and the unit of a calibration's sensor.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

#include "unit/unit.h"

namespace zentaq {

/// One atmosphere in a pressure unit, and where the unit's zero lies: the values of the unit's sensor words.
struct PressureUnit {
    std::string_view name;
    double atmosphere;
    double zero;
};

inline constexpr double atmosphereKpa = 101.325;

inline constexpr std::array<PressureUnit, 5> pressureUnits = {{{"kPa", atmosphereKpa, 0},
                                                               {"PSIA", 14.696, 0},
                                                               {"PSIG", 14.696, 14.696},
                                                               {"mmHg", 760, 0},
                                                               {"inHg", 29.921, 0}}};

/// kPa for a unit without a name of its own.
inline PressureUnit pressureUnitOf(const Unit& unit) {
    const std::string name = unit.MAPUnits();
    const auto found = std::ranges::find(pressureUnits, name, &PressureUnit::name);
    return found == pressureUnits.end() ? pressureUnits.front() : *found;
}

inline double fromKpa(const Unit& unit, double kpa) {
    const PressureUnit in = pressureUnitOf(unit);
    return kpa * in.atmosphere / atmosphereKpa - in.zero;
}

/// A difference or a rate: the zero does not count.
inline double spanFromKpa(const Unit& unit, double kpa) {
    return kpa * pressureUnitOf(unit).atmosphere / atmosphereKpa;
}

inline double toKpa(const Unit& unit, double pressure) {
    const PressureUnit in = pressureUnitOf(unit);
    return (pressure + in.zero) * atmosphereKpa / in.atmosphere;
}

}  // namespace zentaq
