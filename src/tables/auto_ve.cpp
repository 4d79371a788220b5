#include "tables/auto_ve.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "tables/cell_colours.h"

namespace zentaq {

namespace {

constexpr double reachInCells = 1.25;
constexpr double oldAndNew = 100;  ///< one new part among so many

/// The statements of the rule end without effect where they fail; a division by zero is such a failure.
std::optional<double> quotient(double left, double right) {
    if (right == 0) return {};
    return left / right;
}

/// The last header below a value, counted from 1; the first one where none is. Kept: headers that do not rise
/// are walked to their end.
int lineBehind(const std::vector<float>& headers, float value) {
    int line = 0;
    for (std::size_t i = 0; i < headers.size(); ++i) {
        if (headers[i] < value) line = static_cast<int>(i);
    }
    return line + 1;
}

/// The lines around a place, held to those that there are.
struct Window {
    int low = 0;
    int high = 0;
};
Window windowAround(int place, int count) {
    return {std::max(toInt32(place - reachInCells), 0), std::min(toInt32(place + reachInCells), count - 1)};
}

/// Kept: the divisor is the number of lines, not that of the steps between them.
double cellSize(const std::vector<float>& headers) {
    return (static_cast<double>(headers.back()) - static_cast<double>(headers.front())) /
           static_cast<double>(headers.size());
}

/// Nothing where the limit is 0: the cell keeps its colour.
std::optional<std::int32_t> correctionColour(float value, float limit) {
    if (limit == 0) return {};
    return shadeOf(value, 0, static_cast<double>(limit));
}

float baseOf(const AutoVeTable& table, int x, int y) {
    return table.base[static_cast<std::size_t>(x + storedColumns * y)];
}

/// A damaged file may ask for more lines than are stored.
bool isStored(int x, int y) {
    return x < storedColumns && y < storedHeaders;
}

/// Narrow bands around each header, by the step to the next one: what falls between them does not count.
/// The line of a value in the order of the headers; -1 for none, the last one where several hold it.
int bandOf(const std::vector<float>& headers, float value, double share) {
    int found = -1;
    if (headers.size() < 2) return found;
    for (std::size_t i = 0; i < headers.size(); ++i) {
        const std::size_t from = std::min(i, headers.size() - 2);
        const double half =
            std::fabs(static_cast<double>(headers[from + 1]) - static_cast<double>(headers[from])) * share;
        const double away = static_cast<double>(value) - static_cast<double>(headers[i]);
        if (std::fabs(away) <= half) found = static_cast<int>(i);
    }
    return found;
}

}  // namespace

void AutoVe::prepare() {
    for (int y = 0; y < lines; ++y) {
        for (int x = 1; x < lines; ++x) sums_[at(x, y)] = counts_[at(x, y)] = 0;
    }
}

std::vector<AutoVeChange> AutoVe::add(const AutoVeTable& table, const AutoVeSample& sample) {
    std::vector<AutoVeChange> changes;
    const auto& columns = table.columnHeaders;
    const auto& rows = table.rowHeaders;
    if (columns.empty() || rows.empty()) return changes;
    const double width = cellSize(columns);
    const double height = cellSize(rows);
    const Window across = windowAround(lineBehind(columns, sample.rpm), static_cast<int>(columns.size()));
    const Window up = windowAround(lineBehind(rows, sample.map), static_cast<int>(rows.size()));
    // What a statement leaves stays for the next cell where that one's fails.
    double distance = 0;
    float moved = 0;
    for (int x = across.low; x <= across.high; ++x) {
        for (int y = up.low; y <= up.high; ++y) {
            if (!isStored(x, y)) continue;
            const auto aside = quotient(
                static_cast<double>(columns[static_cast<std::size_t>(x)]) - static_cast<double>(sample.rpm),
                width);
            const auto above = quotient(
                static_cast<double>(rows[static_cast<std::size_t>(y)]) - static_cast<double>(sample.map),
                height);
            if (aside && above) distance = std::sqrt(*aside * *aside + *above * *above);
            if (!(distance < reachInCells)) continue;
            float& sum = sums_[at(x, y)];
            // Kept: exactly on both headers there is no weight, and the cell takes what the cell before got.
            if (const auto weight = quotient(reachInCells, distance)) {
                moved = static_cast<float>(((oldAndNew - 1) * static_cast<double>(sum) +
                                            *weight * static_cast<double>(sample.correction)) /
                                           oldAndNew);
            }
            if (moved > table.limit) moved = table.limit;
            if (moved < -table.limit) moved = -table.limit;
            sum = moved;
            const double value =
                roundHalfEven(static_cast<double>(moved) + static_cast<double>(baseOf(table, x, y)));
            changes.push_back({x, y, toInt32(value), correctionColour(moved, table.limit)});
        }
    }
    return changes;
}

std::optional<AutoVeChange> AutoVe::addByCount(const AutoVeTable& table, const AutoVeSample& sample) {
    const int x = bandOf(table.columnHeaders, sample.rpm, 1.0 / 8);
    const std::vector<float> fromTop(table.rowHeaders.rbegin(), table.rowHeaders.rend());
    const int row = bandOf(fromTop, sample.map, 1.0 / 4);
    if (x < 0 || row < 0) return {};
    const int y = static_cast<int>(fromTop.size()) - 1 - row;
    if (!isStored(x, y)) return {};
    sums_[at(x, y)] += sample.correction;
    counts_[at(x, y)] += 1;
    if (counts_[at(x, y)] <= static_cast<float>(constant_)) return {};
    constexpr int most = 50;
    const int moved = std::clamp(
        int{toInt16(static_cast<double>(sums_[at(x, y)]) / static_cast<double>(counts_[at(x, y)]))}, -most,
        most);
    const Paint paint = moved > 0 ? Paint::LightGreen : moved < 0 ? Paint::LightRed : Paint::White;
    return AutoVeChange{x, y, toInt32(static_cast<double>(baseOf(table, x, y)) + moved), paintColour(paint)};
}

}  // namespace zentaq
