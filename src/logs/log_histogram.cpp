#include "logs/log_histogram.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "base/channels.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/axis_kinds.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

HistogramAxis axisOf(const TableSheet& sheet, bool columns) {
    HistogramAxis axis;
    const AxisKind* kind = sheet.axisKind(columns);
    // The live point of all tables but the outputs' runs along speed and pressure, whatever their axis is
    // called.
    if (!sheet.kind().isGpo()) {
        axis.channel = columns ? "RPM" : "MAP";
        axis.title = kind == nullptr ? axis.channel : std::string(kind->name);
    } else {
        if (kind == nullptr) throw Failure("The table has an axis that is not known.");
        axis.title = std::string(kind->name);
        if (kind->live == nullptr) {
            throw Failure("The axis " + axis.title +
                          " follows the state of an input, which a log holds as it came from the unit only.");
        }
        axis.channel = std::string(channelOf(kind->live).name);
        axis.fahrenheit = sheet.showsFahrenheit(columns);
    }
    const auto& headers = sheet.headers(columns);
    const int count = columns ? sheet.columns() : sheet.rows();
    axis.headers.assign(headers.begin(), headers.begin() + count);
    return axis;
}

}  // namespace

LogHistogram::LogHistogram(const TableSheet& sheet)
    : LogHistogram(axisOf(sheet, true), axisOf(sheet, false)) {}

LogHistogram::LogHistogram(HistogramAxis columns, HistogramAxis rows)
    : columns_(std::move(columns)), rows_(std::move(rows)) {
    cells_.resize(columns_.headers.size() * rows_.headers.size());
}

std::size_t nearestHeader(std::span<const float> headers, double value) {
    std::size_t nearest = 0;
    for (std::size_t i = 1; i < headers.size(); ++i) {
        const double here = std::fabs(static_cast<double>(headers[i]) - value);
        const double before = std::fabs(static_cast<double>(headers[nearest]) - value);
        if (here < before) nearest = i;
    }
    return nearest;
}

void LogHistogram::add(double column, double row, double value) {
    if (cells_.empty() || std::isnan(value)) return;
    const auto placed = [](const HistogramAxis& axis, double at) {
        return nearestHeader(
            axis.headers, axis.fahrenheit ? static_cast<double>(toFahrenheit(static_cast<float>(at))) : at);
    };
    cells_[placed(rows_, row) * columns_.headers.size() + placed(columns_, column)].add(value);
    ++count_;
}

namespace {

/// Halfway between two headers, as the log has it.
double edgeBetween(const HistogramAxis& axis, std::size_t lower) {
    const double edge =
        (static_cast<double>(axis.headers[lower]) + static_cast<double>(axis.headers[lower + 1])) / 2;
    constexpr double freezing = 32;
    constexpr double degrees = 1.8;
    return axis.fahrenheit ? (edge - freezing) / degrees : edge;
}

void addStretch(std::string& condition, const HistogramAxis& axis, std::size_t place) {
    const auto add = [&](const char* sign, double edge) {
        constexpr int digits = 4;
        condition +=
            (condition.empty() ? "" : " and ") + axis.channel + sign + numberText(roundTo(edge, digits));
    };
    if (place > 0) add(" > ", edgeBetween(axis, place - 1));
    if (place + 1 < axis.headers.size()) add(" <= ", edgeBetween(axis, place));
}

}  // namespace

std::string LogHistogram::conditionOf(std::size_t row, std::size_t column) const {
    std::string condition;
    for (const auto& [axis, place] : {std::pair{&columns_, column}, std::pair{&rows_, row}}) {
        if (std::ranges::adjacent_find(axis->headers, std::greater_equal<>()) != axis->headers.end())
            return {};
        addStretch(condition, *axis, place);
    }
    return condition;
}

std::string_view histogramWord(HistogramShows shows) {
    switch (shows) {
        case HistogramShows::Mean:
            return "mean";
        case HistogramShows::Least:
            return "minimum";
        case HistogramShows::Most:
            return "maximum";
        case HistogramShows::Count:
            break;
    }
    return "count";
}

double shownOf(const RunningFigures& cell, HistogramShows shows) {
    if (shows == HistogramShows::Count) return static_cast<double>(cell.count);
    if (cell.count == 0) return std::numeric_limits<double>::quiet_NaN();
    switch (shows) {
        case HistogramShows::Least:
            return cell.least;
        case HistogramShows::Most:
            return cell.most;
        default:
            return cell.mean();
    }
}

}  // namespace zentaq
