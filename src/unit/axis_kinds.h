// What an axis of a table can carry: one row a kind, by the code that calibrations keep in a nibble.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "base/channels.h"
#include "unit/parameter.h"

namespace zentaq {

/// The span over which a new axis is spread evenly.
struct AxisSpan {
    float low = 0;
    float high = 0;
};

struct AxisKind {
    int code = 0;             ///< 1 to 15
    std::string_view name;    ///< "BLEND MAP"
    std::string_view unit;    ///< of the stops in their cells; empty for pressures: that of the sensor
    Limits (*limits)(Unit&);  ///< of a stop that a user enters
    AxisSpan (*span)(Unit&);
    double (*image)(Unit&, double cell);  ///< the number that the unit's memory takes
    float LiveValues::*live;              ///< what a point on it follows; none where that is a pin's state
    int pin = -1;                         ///< of an input or output, from 0
    bool temperature = false;             ///< a user of Fahrenheit enters and sees it in his scale
};

std::span<const AxisKind> axisKinds();
/// nullptr for a code or a name that is none.
const AxisKind* axisKindOf(int code);
const AxisKind* axisKindOf(std::string_view name);
/// The name of a code, empty for none.
std::string_view axisKindName(int code);
/// The unit of stops as their cells hold them; empty for no kind.
std::string axisUnit(const Unit& unit, const AxisKind* kind);

}  // namespace zentaq
