// Curves through knots, and the few shapes that the engine model is made of.
#pragma once

#include <span>

namespace zentaq::sim {

struct Knot {
    double x;
    double y;
};

/// Straight lines through knots of rising x; the ends are held. `knots` is not empty.
double interpolate(std::span<const Knot> knots, double x);
/// As interpolate, but level at each knot, so that what follows it moves without a jolt.
double glide(std::span<const Knot> knots, double x);
/// 0 below 0, 1 above 1, an S between.
double smooth(double share);
/// A sine of 1 and `hertz`.
double wave(double seconds, double hertz);

constexpr double between(double from, double to, double share) {
    return from + (to - from) * share;
}

}  // namespace zentaq::sim
