#include "tables/heat_scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "base/rounding.h"
#include "tables/table_grid.h"

namespace zentaq {

namespace {

struct HeatParts {
    int red;
    int green;
    int blue;
};

// From the lightness 18 to 89 in even steps, so that equal differences of value are seen as equal ones. Who
// is blind to red or to green still tells blue from yellow, and who sees no colors, or a print, goes by the
// lightness alone: it rises from each of the 256 steps to the next. For that red rises by one a step, the
// green was worked out from the lightness, and blue falls only where red has more light than it.
constexpr std::array<HeatParts, 6> points{
    {{0, 37, 112}, {51, 76, 120}, {102, 110, 127}, {153, 146, 120}, {204, 184, 100}, {255, 222, 68}}};
constexpr int lastStep = 255;
constexpr int stepsBetween = lastStep / (static_cast<int>(points.size()) - 1);

/// Above the 24 bits of a color; negative numbers, which shades may have, are none of it.
constexpr std::int32_t heatMark = 0x1000000;

constexpr float noValue = std::numeric_limits<float>::quiet_NaN();

int between(int low, int high, int steps) {
    return toInt32(low + static_cast<double>(high - low) * steps / stepsBetween);
}

}  // namespace

std::int32_t heatColour(double share) {
    if (std::isnan(share)) return TableGrid::white;
    const int step = toInt32(std::clamp(share, 0.0, 1.0) * lastStep);
    const int first = std::min(step / stepsBetween, static_cast<int>(points.size()) - 2);
    const int beyond = step - first * stepsBetween;
    const HeatParts& low = points.at(static_cast<std::size_t>(first));
    const HeatParts& high = points.at(static_cast<std::size_t>(first) + 1);
    return heatMark + between(low.red, high.red, beyond) + 256 * between(low.green, high.green, beyond) +
           65536 * between(low.blue, high.blue, beyond);
}

bool isHeatColour(std::int32_t colour) {
    return colour >= heatMark;
}

void HeatMap::resize(int rows, int columns) {
    rows_ = rows;
    columns_ = columns;
    values_.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), noValue);
}

std::optional<std::size_t> HeatMap::placeOf(int row, int column) const {
    if (row < 1 || row > rows_ || column < 1 || column > columns_) return std::nullopt;
    return static_cast<std::size_t>(row - 1) * static_cast<std::size_t>(columns_) +
           static_cast<std::size_t>(column - 1);
}

void HeatMap::put(int row, int column, float value) {
    // A file may hold what is no number; it would take the span from all others.
    if (const auto place = placeOf(row, column)) values_[*place] = std::isfinite(value) ? value : noValue;
}

bool HeatMap::measure() {
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -lowest;
    for (const float value : values_) {
        if (std::isnan(value)) continue;
        lowest = std::min(lowest, static_cast<double>(value));
        highest = std::max(highest, static_cast<double>(value));
    }
    const bool moved = lowest != lowest_ || highest != highest_;
    lowest_ = lowest;
    highest_ = highest;
    return moved;
}

std::int32_t HeatMap::colour(int row, int column) const {
    constexpr double middle = 0.5;
    const auto place = placeOf(row, column);
    if (!place || std::isnan(values_[*place])) return TableGrid::white;
    if (highest_ == lowest_) return heatColour(middle);
    return heatColour((static_cast<double>(values_[*place]) - lowest_) / (highest_ - lowest_));
}

}  // namespace zentaq
