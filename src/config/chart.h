// A chart without its picture: two scales with their marks. A window draws them (windows/chart_painter).
#pragma once

#include <cmath>
#include <string>
#include <vector>

namespace zentaq {

/// A place of a chart, in the units of its scales.
struct ChartPoint {
    double x = 0;
    double y = 0;

    bool operator==(const ChartPoint&) const = default;
};

/// Nothing is drawn of a number that is none.
inline bool isPlace(const ChartPoint& at) {
    return std::isfinite(at.x) && std::isfinite(at.y);
}

struct ChartTick {
    double at = 0;
    std::string text;
};

struct ChartScale {
    double low = 0;
    double high = 1;
    std::vector<ChartTick> ticks;
    std::string title;
};

/// A scale from `low` to `high`. `rounded`: its ends are moved outwards to whole steps, and a range of
/// nothing becomes one step to both sides. About `marks` ticks with texts as "1500.0"; zero has a text of its
/// own.
ChartScale chartScale(double low, double high, bool rounded, double marks, const std::string& zero);

}  // namespace zentaq
