#include "logs/scatter.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

/// -1: outside.
int placeIn(const ScatterRange& range, double value, int places) {
    if (!(value >= range.low && value <= range.high)) return -1;
    const double span = range.high - range.low;
    const double share = span > 0 ? (value - range.low) / span : 0;
    return std::min(static_cast<int>(share * places), places - 1);
}

}  // namespace

LogScatter::LogScatter(const ScatterRange& x, const ScatterRange& y, int across, int up)
    : x_(x), y_(y), across_(std::max(across, 1)), up_(std::max(up, 1)) {
    places_.resize(static_cast<std::size_t>(across_) * static_cast<std::size_t>(up_));
}

void LogScatter::add(std::size_t row, double x, double y, double third) {
    const int column = placeIn(x_, x, across_);
    const int line = placeIn(y_, y, up_);
    if (column < 0 || line < 0 || !std::isfinite(third)) return;
    ScatterPlace& place = places_[static_cast<std::size_t>(line) * static_cast<std::size_t>(across_) +
                                  static_cast<std::size_t>(column)];
    if (place.count++ == 0) place.firstRow = row;
    place.sum += third;
    ++count_;
}

std::optional<ScatterPlace> LogScatter::nearest(int across, int up, int reach) const {
    std::optional<ScatterPlace> found;
    int least = 0;
    for (int line = std::max(up - reach, 0); line <= std::min(up + reach, up_ - 1); ++line) {
        for (int column = std::max(across - reach, 0); column <= std::min(across + reach, across_ - 1);
             ++column) {
            const int far = (line - up) * (line - up) + (column - across) * (column - across);
            if (at(column, line).count == 0 || (found && far >= least)) continue;
            found = at(column, line);
            least = far;
        }
    }
    return found;
}

ScatterRange zoomed(const ScatterRange& range, double factor, double around) {
    return {around - (around - range.low) * factor, around + (range.high - around) * factor};
}

}  // namespace zentaq
