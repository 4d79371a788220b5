#include "base/contrast.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

constexpr Rgb black = 0x000000;
constexpr Rgb white = 0xFFFFFF;
constexpr int redShift = 16;
constexpr int greenShift = 8;

int partOf(Rgb colour, int shift) {
    return static_cast<int>(colour >> shift & 0xFFU);
}

/// Share of light of one part of a colour, 0 to 1, as screens show it.
double lightOf(int part) {
    const double share = part / 255.0;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}

double luminance(Rgb colour) {
    return 0.2126 * lightOf(partOf(colour, redShift)) + 0.7152 * lightOf(partOf(colour, greenShift)) +
           0.0722 * lightOf(partOf(colour, 0));
}

}  // namespace

double contrastOf(Rgb one, Rgb other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

Rgb inkOn(Rgb ground) {
    return contrastOf(black, ground) >= contrastOf(white, ground) ? black : white;
}

Rgb mixed(Rgb from, Rgb to, double share) {
    Rgb colour = 0;
    for (const int shift : {redShift, greenShift, 0}) {
        const int first = partOf(from, shift);
        const auto part = static_cast<Rgb>(std::lround(first + (partOf(to, shift) - first) * share));
        colour |= std::min<Rgb>(part, 0xFF) << shift;
    }
    return colour;
}

}  // namespace zentaq
