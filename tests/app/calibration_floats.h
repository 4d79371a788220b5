// Axes that rise, for calibrations that a test writes cell by cell and programs into a unit.
#pragma once

#include <vector>

namespace zentaq {

/// `floats` is a whole file of an ORB A or L, its header among them.
inline void giveRisingAxes(std::vector<float>& floats) {
    constexpr std::size_t header = 3;
    for (std::size_t i = 0; i < 16; ++i) {
        const auto step = static_cast<float>(i);
        floats[header + 592 + 2 * i] = 500 + 500 * step;  // speeds
        floats[header + 624 + 2 * i] = 20 + 5 * step;     // pressures
        for (const std::size_t stops : {2226U, 2242U, 2258U, 2274U})
            floats[header + stops + i] = 20 + 5 * step;
    }
}

}  // namespace zentaq
