#include "logs/plot_lines.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "base/nice_step.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "logs/log_channel.h"

namespace zentaq {

namespace {

/// Where a column holds many rows, its ends are moved to whole blocks of the log, which answer at once what
/// they reach; that is an eighth of a pixel at most.
constexpr std::size_t blockRows = 64;
constexpr std::size_t rowsWorthBlocks = 4 * blockRows;
constexpr double scaleSteps = 8;

/// The first row at or behind a time. It ends for times that go back, too.
std::size_t rowFrom(const LogColumns& log, double seconds, std::size_t first) {
    std::size_t last = log.rows();
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        if (log.seconds(middle) < seconds) {
            first = middle + 1;
        } else {
            last = middle;
        }
    }
    return first;
}

std::size_t toBlock(std::size_t row) {
    return (row + blockRows / 2) / blockRows * blockRows;
}

/// Of few rows. Four at a time, since each comparison waits for the one before it.
ValueReach reachOf(std::span<const float> values) {
    constexpr std::size_t lanes = 4;
    std::array<float, lanes> least;
    std::array<float, lanes> most;
    least.fill(values.front());
    most.fill(values.front());
    std::size_t i = 0;
    for (; i + lanes <= values.size(); i += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const float value = values[i + lane];
            least[lane] = value < least[lane] ? value : least[lane];
            most[lane] = value > most[lane] ? value : most[lane];
        }
    }
    for (; i < values.size(); ++i) {
        least[0] = std::min(least[0], values[i]);
        most[0] = std::max(most[0], values[i]);
    }
    return {std::ranges::min(least), std::ranges::max(most)};
}

std::string pattern(int decimals) {
    return decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0');
}

}  // namespace

PlotBuckets plotBuckets(const LogColumns& log, double from, double to, int pixels) {
    PlotBuckets buckets;
    if (log.empty() || pixels < 1 || !(to > from)) return buckets;
    std::size_t first = rowFrom(log, from, 0);
    std::size_t last = rowFrom(log, to, first);
    buckets.dense = last - first > static_cast<std::size_t>(pixels);
    if (!buckets.dense) {
        // A line comes in from the row before the stretch and goes out to the one behind it.
        buckets.edges = {first > 0 ? first - 1 : 0, std::min(last + 2, log.rows())};
        return buckets;
    }
    buckets.step = (to - from) / pixels;
    const double before = std::floor(from / buckets.step) - 1;
    buckets.start = before * buckets.step;
    const auto columns = static_cast<std::size_t>(pixels) + 3;
    const bool byBlocks = (last - first) / static_cast<std::size_t>(pixels) >= rowsWorthBlocks;
    buckets.edges.reserve(columns + 1);
    std::size_t row = 0;
    for (std::size_t i = 0; i <= columns; ++i) {
        row = rowFrom(log, (before + static_cast<double>(i)) * buckets.step, row);
        const bool atEnd = row == log.rows();
        buckets.edges.push_back(byBlocks && !atEnd ? std::min(toBlock(row), log.rows()) : row);
    }
    return buckets;
}

void plotLine(const LogColumns& log, int column, const PlotBuckets& buckets, std::vector<PlotPoint>& points) {
    points.clear();
    if (buckets.edges.empty() || column < 0) return;
    if (!buckets.dense) {
        for (std::size_t row = buckets.edges.front(); row < buckets.edges.back(); ++row)
            points.push_back({log.seconds(row), log.value(column, row)});
        return;
    }
    points.reserve(2 * buckets.edges.size());
    const std::span<const float> values = log.values(column);
    float before = 0;
    for (std::size_t i = 0; i + 1 < buckets.edges.size(); ++i) {
        if (buckets.edges[i] >= buckets.edges[i + 1]) continue;
        const std::size_t first = buckets.edges[i];
        const std::size_t count = buckets.edges[i + 1] - first;
        const ValueReach reach = count < rowsWorthBlocks ? reachOf(values.subspan(first, count))
                                                         : log.reach(column, first, first + count);
        const double at = buckets.start + (static_cast<double>(i) + 0.5) * buckets.step;
        const bool leastFirst = std::abs(reach.least - before) <= std::abs(reach.most - before);
        points.push_back({at, leastFirst ? reach.least : reach.most});
        points.push_back({at, leastFirst ? reach.most : reach.least});
        before = points.back().value;
    }
}

// ---- Scales

bool hasRangeOfItsOwn(std::string_view channel) {
    return newerChannelName(channel) == "EGOC";
}

PlotScale plotScale(const LogColumns& log, int column) {
    if (column < 0 || log.empty()) return {};
    const std::string& name = log.names().at(static_cast<std::size_t>(column));
    if (hasRangeOfItsOwn(name)) {
        const Channel::Span span = channelNamed(name)->span;
        return {static_cast<double>(span.low), static_cast<double>(span.high)};
    }
    const ValueReach reach = log.reach(column, 0, log.rows());
    const auto least = static_cast<double>(reach.least);
    const auto most = static_cast<double>(reach.most);
    if (!std::isfinite(least) || !std::isfinite(most)) return {};
    if (least == most) return {least - 1, most + 1};
    const double step = niceStep(most - least, scaleSteps);
    return {std::floor(least / step) * step, std::ceil(most / step) * step};
}

PlotScale joined(const PlotScale& one, const PlotScale& other) {
    return {std::min(one.low, other.low), std::max(one.high, other.high)};
}

// ---- Texts

std::string plotTimeText(double seconds, int decimals) {
    const double all = roundTo(std::abs(seconds), decimals);
    const double minutes = truncate(all / 60);
    // What was rounded away may come back by the subtraction.
    const double rest = roundTo(all - minutes * 60, decimals);
    const std::string digits = decimals == 0 ? "00" : "0" + pattern(decimals);
    return (seconds < 0 && all > 0 ? "-" : "") + formatNumber(minutes, "00") + ":" +
           formatNumber(rest, digits);
}

std::string plotValueText(std::string_view channel, double value, std::string_view mapUnits) {
    const int decimals = channelDecimals(channel);
    const std::string digits = formatNumber(roundTo(value, decimals), pattern(decimals));
    const std::string unit = channelUnit(channel, mapUnits);
    if (unit.empty()) return digits;
    return digits + (unit.front() == ':' || unit.front() == '%' ? "" : " ") + unit;
}

}  // namespace zentaq
