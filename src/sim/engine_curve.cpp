#include "sim/engine_curve.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zentaq::sim {

namespace {

template <typename Shape>
double through(std::span<const Knot> knots, double x, Shape shape) {
    if (x <= knots.front().x) return knots.front().y;
    for (std::size_t i = 1; i < knots.size(); ++i) {
        const Knot& left = knots[i - 1];
        const Knot& right = knots[i];
        if (x <= right.x) return between(left.y, right.y, shape((x - left.x) / (right.x - left.x)));
    }
    return knots.back().y;
}

}  // namespace

double interpolate(std::span<const Knot> knots, double x) {
    return through(knots, x, [](double share) { return share; });
}

double glide(std::span<const Knot> knots, double x) {
    return through(knots, x, smooth);
}

double smooth(double share) {
    const double x = std::clamp(share, 0.0, 1.0);
    return x * x * (3 - 2 * x);
}

double wave(double seconds, double hertz) {
    return std::sin(2 * std::numbers::pi * hertz * seconds);
}

}  // namespace zentaq::sim
