#include "tables/rebin.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "tables/line_commands.h"
#include "unit/axis_kinds.h"

namespace zentaq {

namespace {

constexpr int fewest = 8;

/// Two old headers and how far between them a place is; the same one twice on a header and beyond the ends.
struct Bracket {
    int below = 0;
    int above = 0;
    double share = 0;
    bool onHeader = false;
};

Bracket bracketOf(const std::vector<float>& headers, float place) {
    const auto next = std::ranges::lower_bound(headers, place);
    const int above = static_cast<int>(next - headers.begin());
    if (next == headers.end()) return {above - 1, above - 1, 0, false};
    if (*next == place || above == 0) return {above, above, 0, *next == place};
    const double low = headers[static_cast<std::size_t>(above - 1)];
    const double high = *next;
    return {above - 1, above, (static_cast<double>(place) - low) / (high - low), false};
}

std::vector<float> axisOf(const TableSheet& sheet, bool columns) {
    std::vector<float> headers;
    const int count = std::min(columns ? sheet.columns() : sheet.rows(), storedHeaders);
    for (int line = 0; line < count; ++line) headers.push_back(enteredHeader(sheet, columns, line));
    return headers;
}

void checkRising(const std::vector<float>& headers, const std::string& whose) {
    // Not "falls": what is no number rises to nothing.
    const auto first =
        std::ranges::adjacent_find(headers, [](float one, float next) { return !(one < next); });
    if (first == headers.end()) return;
    throw Failure(whose + " must rise: " + numberText(*first) + " is followed by " +
                  numberText(*(first + 1)));
}

void checkCount(const TableSheet& sheet, bool columns, std::size_t count) {
    const std::string lines = columns ? "columns" : "rows";
    const auto present = static_cast<std::size_t>(columns ? sheet.columns() : sheet.rows());
    if (count == present) return;
    const std::string asked = numberText(static_cast<int>(count)) + " " + lines;
    if (count < fewest || count > storedHeaders) throw Failure(asked + ": a table has 8 to 16");
    if (takesOtherSizes(sheet.unit())) return;
    throw Failure(asked + ": " + whyNot(sheet, columns ? LineCommand::AddColumn : LineCommand::AddRow) +
                  "; give " + numberText(static_cast<int>(present)) + " headers");
}

Limits headerLimits(const TableSheet& sheet, bool columns) {
    Unit& unit = sheet.unit();
    if (!sheet.kind().isGpo() || !unit.kind().cells.hasAxisWords)
        return unit.limits(mainAxisMember(columns ? "X-Axis" : "Y-Axis"));
    const AxisKind* kind = sheet.axisKind(columns);
    return kind == nullptr ? Limits::none() : kind->limits(unit);
}

std::string headerName(bool columns, int line, int count) {
    return columns ? "column header " + numberText(line + 1) : "row header " + numberText(count - line);
}

void checkHeaders(const TableSheet& sheet, bool columns, const std::vector<float>& headers,
                  std::vector<Refusal>& refused) {
    const Limits limits = headerLimits(sheet, columns);
    const int count = static_cast<int>(headers.size());
    for (int line = 0; line < count; ++line) {
        noteRefusal(refused, checkLimits(headers[static_cast<std::size_t>(line)], limits),
                    headerName(columns, line, count));
    }
}

void storeHeaders(TableSheet& sheet, bool columns, const std::vector<float>& headers,
                  std::vector<Refusal>& refused) {
    const std::string_view axis = columns ? "X-Axis" : "Y-Axis";
    const int count = static_cast<int>(headers.size());
    const int before = columns ? sheet.columns() : sheet.rows();
    for (int line = 0; line < count; ++line) {
        const float header = headers[static_cast<std::size_t>(line)];
        // What is not changed keeps the digits that the user's unit does not show.
        if (line < before && header == enteredHeader(sheet, columns, line)) continue;
        noteRefusal(refused,
                    setTableHeader(sheet.unit(), sheet.table(), axis, line, static_cast<double>(header)),
                    headerName(columns, line, count));
    }
}

RebinnedTable rebinnedTable(const TableSheet& sheet, std::string_view name, const TableAxes& axes) {
    const TableSurface surface(sheet, name);
    RebinnedTable table{name, {}};
    for (const float row : axes.rows) {
        for (const float column : axes.columns) {
            const auto point = surface.at(column, row);
            const auto value = static_cast<float>(point.value);
            table.values.push_back(point.onHeaders ? value
                                                   : roundTo(value, findTable(name)->commandDecimals()));
        }
    }
    return table;
}

template <typename Each>
void forEachCell(const Rebinning& plan, Each&& each) {
    const int rows = static_cast<int>(plan.axes.rows.size());
    const int columns = static_cast<int>(plan.axes.columns.size());
    for (const RebinnedTable& table : plan.tables) {
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column)
                each(table.name, row * storedColumns + column, table.value(row, column, columns),
                     std::string(table.name) + " " + cellName(rows - row, column + 1));
        }
    }
}

}  // namespace

std::vector<float> headersOf(std::string_view text) {
    std::string list(text);
    const bool semicolons = list.find(';') != std::string::npos;
    for (char& each : list) {
        if (each == ';' || each == '\t' || each == '\n' || each == '\r' || (each == ',' && !semicolons))
            each = ' ';
    }
    std::vector<float> headers;
    for (const std::string& word : split(list, ' ')) {
        if (word.empty()) continue;
        const auto number = parseNumber(word);
        if (!number) throw Failure(shownBriefly(word) + " is no number: headers are listed as 500,1000,1500");
        headers.push_back(static_cast<float>(*number));
    }
    return headers;
}

TableAxes axesOf(const TableSheet& sheet) {
    return {axisOf(sheet, true), axisOf(sheet, false)};
}

TableSurface::TableSurface(const TableSheet& sheet, std::string_view table)
    : sheet_(sheet), table_(table), axes_(axesOf(sheet)) {}

TableSurface::Point TableSurface::at(float column, float row) const {
    const Bracket across = bracketOf(axes_.columns, column);
    const Bracket up = bracketOf(axes_.rows, row);
    const auto cell = [&](int storedRow, int storedColumn) -> double {
        return get_binValueByIndex(sheet_.unit(), table_, storedRow * storedColumns + storedColumn, false);
    };
    const auto between = [](double from, double to, double share) { return from + share * (to - from); };
    const auto inRow = [&](int storedRow) {
        return between(cell(storedRow, across.below), cell(storedRow, across.above), across.share);
    };
    return {between(inRow(up.below), inRow(up.above), up.share), across.onHeader && up.onHeader};
}

Rebinning rebinned(const TableSheet& sheet, TableAxes wanted) {
    const TableAxes present = axesOf(sheet);
    if (wanted.columns.empty()) wanted.columns = present.columns;
    if (wanted.rows.empty()) wanted.rows = present.rows;
    checkRising(present.columns, "The present column headers are out of order, and they");
    checkRising(present.rows, "The present row headers are out of order, and they");
    checkCount(sheet, true, wanted.columns.size());
    checkCount(sheet, false, wanted.rows.size());
    checkRising(wanted.columns, "Column headers");
    checkRising(wanted.rows, "Row headers");
    Rebinning plan{std::move(wanted), {}};
    for (const std::string_view table : tablesOnAxesOf(sheet))
        plan.tables.push_back(rebinnedTable(sheet, table, plan.axes));
    return plan;
}

std::vector<Refusal> refusedOf(const TableSheet& sheet, const Rebinning& plan) {
    std::vector<Refusal> refused;
    checkHeaders(sheet, true, plan.axes.columns, refused);
    checkHeaders(sheet, false, plan.axes.rows, refused);
    forEachCell(plan, [&](std::string_view table, int index, float value, const std::string& where) {
        // What stays as it is shown is not written: it may hold more digits than are shown, or what no entry
        // gives.
        if (showsAlready(sheet.unit(), table, value, index, false)) return;
        noteRefusal(refused, checkLimits(value, cellLimits(sheet.unit(), table, false)), where);
    });
    return refused;
}

std::vector<Refusal> store(TableSheet& sheet, const Rebinning& plan) {
    auto refused = refusedOf(sheet, plan);
    if (!refused.empty()) return refused;
    storeHeaders(sheet, true, plan.axes.columns, refused);
    storeHeaders(sheet, false, plan.axes.rows, refused);
    Unit& unit = sheet.unit();
    unit.SILENT_MODE(false);
    forEachCell(plan, [&](std::string_view table, int index, float value, const std::string& where) {
        if (showsAlready(unit, table, value, index, false)) return;
        noteRefusal(refused, sheet.storeValue(table, value, index), where);
    });
    unit.SET_TBL_DIMENSIONS(sheet.table(), "ROWS", static_cast<int>(plan.axes.rows.size()));
    unit.SET_TBL_DIMENSIONS(sheet.table(), "COLS", static_cast<int>(plan.axes.columns.size()));
    sheet.read({}, {}, sheet.inverted());
    return refused;
}

}  // namespace zentaq
