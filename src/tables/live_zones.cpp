#include "tables/live_zones.h"

#include <algorithm>

namespace zentaq {

namespace {

constexpr double overlap = 0.0001;

float between(float from, float to) {
    return from + (to - from) / 2;
}

bool holds(const Zone& zone, float value) {
    return zone.low <= value && value <= zone.high;
}

std::optional<double> placeFrom(std::span<const float> headers, std::size_t line, float value) {
    const double step = static_cast<double>(headers[line + 1]) - static_cast<double>(headers[line]);
    if (step == 0) return {};
    return static_cast<double>(line) +
           (static_cast<double>(value) - static_cast<double>(headers[line])) / step;
}

}  // namespace

void LiveZones::buildColumns(std::span<const float> headers) {
    const std::size_t count = std::min(headers.size(), pairs - 1);
    if (count == 0) return;
    for (std::size_t i = 1; i < count; ++i) {
        columns_[i].high = between(headers[i - 1], headers[i]);
        columns_[i].low = i == 1 ? 0 : columns_[i - 1].high + 1;
    }
    columns_[count].high = headers[count - 1];
    // Kept: always the 15th pair, which is the neighbour only in a table of 16 columns.
    columns_[count].low = columns_[15].high + 1;
}

void LiveZones::buildRows(std::span<const float> headers) {
    const std::size_t count = std::min(headers.size(), pairs - 1);
    if (count == 0) return;
    for (std::size_t r = 2; r <= count; ++r) rows_[r].high = between(headers[r - 1], headers[r - 2]);
    for (std::size_t r = 2; r < count; ++r) {
        const float next = rows_[r + 1].high;
        rows_[r].low = next == 1 ? 2 : static_cast<float>(static_cast<double>(next) - overlap);
    }
    rows_[1].high = headers[0];
    rows_[1].low = static_cast<float>(static_cast<double>(rows_[2].high) + overlap);
    if (count > 1) rows_[count].low = 0;
}

GridCell LiveZones::cellOf(float x, float y, GridCell fallback) const {
    GridCell cell = fallback;
    for (int i = 1; i <= lineCount; ++i) {
        if (holds(column(i), x)) cell.column = i;
        if (holds(row(i), y)) cell.row = i;
    }
    // Kept: the ends are those of 16 lines, whatever is shown.
    if (x > column(lineCount).high) cell.column = lineCount;
    if (y > row(1).high) cell.row = 1;
    if (y < row(lineCount).low) cell.row = lineCount;
    return cell;
}

std::optional<double> placeOfColumn(std::span<const float> headers, float x) {
    if (headers.empty()) return {};
    if (x < headers.front()) return 0;
    if (x > headers.back()) return static_cast<double>(headers.size() - 1);
    if (headers.size() == 1) return 0;
    std::size_t line = 0;
    for (std::size_t i = 1; i + 1 < headers.size(); ++i) {
        if (x > headers[i]) line = i;
    }
    return placeFrom(headers, line, x);
}

std::optional<double> placeOfRow(std::span<const float> headers, float y) {
    if (headers.empty()) return {};
    if (y < headers.front()) return 0;
    if (y > headers.back()) return static_cast<double>(headers.size() - 1);
    if (headers.size() == 1) return 0;
    std::size_t line = 0;
    for (std::size_t i = 0; i + 1 < headers.size(); ++i) {
        if (y >= headers[i]) line = i;
    }
    return placeFrom(headers, line, y);
}

}  // namespace zentaq
