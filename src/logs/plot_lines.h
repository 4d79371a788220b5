// What a plot draws of a log: two points a column of pixels, the lowest and the highest value of its rows, so
// that a spike of one row is in every picture however long the log is.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "logs/log_columns.h"

namespace zentaq {

struct PlotPoint {
    double seconds = 0;
    float value = 0;

    bool operator==(const PlotPoint&) const = default;
};

/// Which rows fall into which column of pixels. One answer serves all lines of a plot.
struct PlotBuckets {
    bool dense = false;  ///< more rows than columns: only their lowest and highest value are drawn
    double start = 0;    ///< seconds, where the first column begins
    double step = 0;     ///< seconds a column
    std::vector<std::size_t> edges;  ///< column i has the rows edges[i] to before edges[i + 1]
};

/// For the stretch `from` to `to` in seconds, `pixels` wide, with a column more at each end. Columns stand at
/// multiples of their width, so that a picture that moves does not flicker.
PlotBuckets plotBuckets(const LogColumns& log, double from, double to, int pixels);

/// The points of a column of the log, in the order of time; `points` is emptied first.
void plotLine(const LogColumns& log, int column, const PlotBuckets& buckets, std::vector<PlotPoint>& points);

/// What the height of a pane stands for.
struct PlotScale {
    double low = 0;
    double high = 1;

    bool operator==(const PlotScale&) const = default;
};

/// All values of a column between round numbers. kept: "EGOC" is plotted with the range of its own row,
/// -50 to 50, so that a correction is compared at a glance from log to log.
PlotScale plotScale(const LogColumns& log, int column);
/// Whether a channel keeps its range whatever the log holds.
bool hasRangeOfItsOwn(std::string_view channel);
PlotScale joined(const PlotScale& one, const PlotScale& other);

/// "01:02.50": minutes and seconds, rounded to `decimals` (0 to 3); "-" in front of a time before the zero.
std::string plotTimeText(double seconds, int decimals = 2);
/// "101.3 kPa": a value with the digits and the unit of its channel.
std::string plotValueText(std::string_view channel, double value, std::string_view mapUnits);

}  // namespace zentaq
