// How well one colour is seen on another, by the usual measure of 1 to 21. Colours are 0xRRGGBB.
#pragma once

#include <cstdint>

namespace zentaq {

using Rgb = std::uint32_t;

/// 1 for equal colours, 21 for black and white.
double contrastOf(Rgb one, Rgb other);

/// Black or white, whichever reads better on a ground: 4.58 to 1 at the least, on whatever ground.
Rgb inkOn(Rgb ground);

/// `share` 0 gives `from`, 1 gives `to`.
Rgb mixed(Rgb from, Rgb to, double share);

}  // namespace zentaq
