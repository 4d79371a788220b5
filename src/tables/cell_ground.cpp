#include "tables/cell_ground.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "tables/heat_scale.h"

namespace zentaq {

namespace {

constexpr double leastText = 4.5;
constexpr double full = 255;

/// Shares of the paint that are left, by trailStep().
constexpr std::array<double, 4> leftByDay{1, 0.7, 0.5, 0.35};
constexpr std::array<double, 4> leftByNight{0.65, 0.45, 0.33, 0.24};
/// Share of the heat scale that is left by night.
constexpr double heatByNight = 0.55;

struct Parts {
    int red;
    int green;
    int blue;
};

Parts partsOf(std::int32_t colour) {
    return {colour & 0xFF, colour >> 8 & 0xFF, colour >> 16 & 0xFF};
}

Rgb joined(Parts parts) {
    return static_cast<Rgb>(parts.red) << 16 | static_cast<Rgb>(parts.green) << 8 |
           static_cast<Rgb>(parts.blue);
}

Rgb byNight(std::int32_t colour, Rgb surface) {
    const Parts own = partsOf(colour);
    if (isHeatColour(colour)) return mixed(surface, joined(own), heatByNight);
    const int least = std::min({own.red, own.green, own.blue});
    if (least == 255) return surface;
    const auto hue = [&](int part) {
        return static_cast<int>(std::lround((part - least) * full / (255 - least)));
    };
    return mixed(joined({hue(own.red), hue(own.green), hue(own.blue)}), surface, least / full);
}

}  // namespace

Rgb cellGround(std::int32_t colour, int trail, bool night, Rgb surface) {
    const Rgb ground = night ? byNight(colour, surface) : joined(partsOf(colour));
    if (trail < 0) return ground;
    const auto step = std::min<std::size_t>(static_cast<std::size_t>(trail), leftByDay.size() - 1);
    return mixed(surface, ground, (night ? leftByNight : leftByDay).at(step));
}

Rgb cellInk(Rgb ground, Rgb wanted) {
    return contrastOf(wanted, ground) >= leastText ? wanted : inkOn(ground);
}

}  // namespace zentaq
