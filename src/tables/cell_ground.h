// What a table's cell looks like on the screen: its ground from the core's colour, by day and by night, and
// the ink of its text. Grounds and inks are 0xRRGGBB, the core's colours red + 256 * green + 65536 * blue.
#pragma once

#include <cstdint>

#include "base/contrast.h"

namespace zentaq {

/// `trail` as TableGrid has it; `surface` is the ground of an empty cell. By night white turns into the dark
/// of the surface and a shade into the same share of its hue, so that a sleeping table doesn't light up the
/// cabin, and the trail is dimmed as a whole; so is the heat scale, whose gray means a value. By day the
/// newest cell of the trail has the colour that its paint has. Of a negative number the low 24 bits count.
Rgb cellGround(std::int32_t colour, int trail, bool night, Rgb surface);

/// What text on a cell has: `wanted` where that reads at 4.5 to 1, else black or white.
Rgb cellInk(Rgb ground, Rgb wanted);

}  // namespace zentaq
