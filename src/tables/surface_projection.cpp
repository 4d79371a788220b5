#include "tables/surface_projection.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

/// 30 degrees, and how much shorter the way back is drawn.
constexpr double angle = 94.2477795 / 180;
constexpr double depth = 2.75 / 5;

double stepsOf(int lines) {
    return std::max(lines - 1, 1);
}

}  // namespace

SurfaceProjection::SurfaceProjection(int rows, int columns)
    : across_(acrossLength / stepsOf(columns)),
      left_(backLength / stepsOf(rows) * depth * std::cos(angle)),
      up_(backLength / stepsOf(rows) * depth * std::sin(angle)),
      rows_(rows) {}

SurfacePoint SurfaceProjection::at(double row, double column, double height) const {
    const double back = row - 1;
    const double farthest = stepsOf(rows_);
    return {(farthest - back) * left_ + (column - 1) * across_,
            heightOfAll() - back * up_ - std::floor(height * upLength)};
}

double SurfaceProjection::width() const {
    return stepsOf(rows_) * left_ + acrossLength;
}

double SurfaceProjection::heightOfAll() const {
    return stepsOf(rows_) * up_ + upLength;
}

}  // namespace zentaq
