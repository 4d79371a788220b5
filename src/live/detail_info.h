// The grid of the detail monitor: every live value as caption and number, and the raw states of the pins.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "unit/unit.h"

namespace zentaq {

struct DetailCell {
    std::string caption;
    std::string value;  ///< empty before the first frame; "-" where the unit does not tell it
    std::string unit;   ///< for who does not see the caption
    bool told = true;   ///< false: no frame carries it
};

/// In the order of the grid; the pins of the kind stand behind the live values. `fahrenheit`: the user's
/// scale, which only the values follow.
std::vector<DetailCell> detailInfo(const LiveValues& live, const Unit& unit, bool fahrenheit);

}  // namespace zentaq
