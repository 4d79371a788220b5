// Whether the stops of the tables' axes rise. A unit looks its values up between two neighboring stops, so an
// axis without order gives the engine values that nobody chose.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

/// One line for each axis with stops in use that do not rise: "RPM axis of the tables: 9000 is followed by
/// 3938". The axes of an output table that has never been set up are left out, and so are those that cannot
/// be read.
std::vector<std::string> axesWithoutOrder(Unit& unit);

/// The stop in front of another one, which an entry there must lie above. Axis: "X-Axis" or "Y-Axis". Nothing
/// for the first stop and for one that is not in use.
std::optional<float> stopBefore(Unit& unit, std::string_view table, std::string_view axis, int index);

/// What the tuner hears behind an entry that is not below the next stop: an entry is checked against the one
/// before only, so that an axis can be moved from its lowest stop on. Empty where the two rise.
std::string stopNotBelowNext(float stop, float next);

}  // namespace zentaq
