#include "tables/line_commands.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr int leastLines = 8;

/// The stored values of one table, or the headers of its axis, seen as a list of lines of which some move.
struct Lines {
    TableSheet& sheet;
    std::string_view table;
    bool columns;  ///< that are added or removed
    int rows;      ///< before the command
    std::vector<Refusal>& refused;

    /// Cell `line` of the row, or the column, across.
    int index(int line, int across) const {
        return columns ? across * storedColumns + line : line * storedColumns + across;
    }
    std::string_view axis() const { return columns ? "X-Axis" : "Y-Axis"; }

    /// As a user enters it.
    float header(int line) const { return enteredHeader(sheet, columns, line); }
    void header(int line, float value) {
        noteRefusal(
            refused, setTableHeader(sheet.unit(), table, axis(), line, static_cast<double>(value)),
            (columns ? "column header " : "row header ") + numberText(columns ? line + 1 : rows - line));
    }
    // As stored, whatever the absolute view adds: a sum with 100 would cost the last digits.
    float cell(int line, int across) const {
        return get_binValueByIndex(sheet.unit(), table, index(line, across), false);
    }
    void cell(int line, int across, float value) {
        const int row = columns ? across : line;
        const int column = columns ? line : across;
        noteRefusal(refused, sheet.storeValue(table, value, index(line, across)),
                    std::string(table) + " " + cellName(rows - row, column + 1));
    }
};

float mean(float one, float other) {
    return roundTo((one + other) / 2, 1);
}

void insertHeader(Lines& lines, int at, int count) {
    float old = lines.header(at);
    // Kept: half of the lowest header, and that as it is.
    lines.header(at, at == 0 ? old / 2 : mean(old, lines.header(at - 1)));
    for (int line = at + 1; line <= count; ++line) {
        const float next = lines.header(line);
        // Kept: a column rounds the headers that it moves, a row does not.
        lines.header(line, lines.columns ? roundTo(old, 1) : old);
        old = next;
    }
}

void insertCells(Lines& lines, int at, int count, int across) {
    float old = lines.cell(at, across);
    lines.cell(at, across, at == 0 ? roundTo(old, 1) : mean(old, lines.cell(at - 1, across)));
    for (int line = at + 1; line <= count; ++line) {
        const float next = lines.cell(line, across);
        lines.cell(line, across, lines.columns ? roundTo(old, 1) : old);
        old = next;
    }
}

void removeHeader(Lines& lines, int at, int count) {
    for (int line = at + 1; line < count; ++line) lines.header(line - 1, lines.header(line));
}

void removeCells(Lines& lines, int at, int count, int across) {
    for (int line = at + 1; line < count; ++line) lines.cell(line - 1, across, lines.cell(line, across));
}

void changeTable(Lines lines, bool adds, int at, int count, int acrossCount, bool withHeaders) {
    // A damaged file may ask for more lines than are stored: those beyond have nothing to move.
    count = std::min(count, storedColumns);
    acrossCount = std::min(acrossCount, storedColumns);
    if (at >= count) return;
    if (withHeaders)
        skipFailing([&] { adds ? insertHeader(lines, at, count) : removeHeader(lines, at, count); });
    for (int across = 0; across < acrossCount; ++across) {
        skipFailing(
            [&] { adds ? insertCells(lines, at, count, across) : removeCells(lines, at, count, across); });
    }
}

}  // namespace

bool takesOtherSizes(const Unit& unit) {
    const int from = unit.kind().resizesFrom;
    return from != 0 && unit.FW_Release() >= from;
}

std::string whyNot(const TableSheet& sheet, LineCommand command) {
    const Unit& unit = sheet.unit();
    const std::string model(unit.kind().model);
    if (unit.kind().resizesFrom == 0)
        return "the tables of a " + model + " keep their 16 rows and 16 columns";
    if (!takesOtherSizes(unit)) {
        return "tables of another size need firmware release " + numberText(unit.kind().resizesFrom) +
               " or later; this calibration is for release " + numberText(unit.FW_Release());
    }
    const int count = isOfColumns(command) ? sheet.columns() : sheet.rows();
    const std::string lines = isOfColumns(command) ? " columns" : " rows";
    if (addsLine(command) && count >= storedColumns) return "a table has at most 16" + lines;
    if (!addsLine(command) && count <= leastLines) return "a table has at least 8" + lines;
    return {};
}

float enteredHeader(const TableSheet& sheet, bool columns, int line) {
    const float stored = tableHeader(sheet.unit(), sheet.table(), columns ? "X-Axis" : "Y-Axis", line);
    return sheet.showsFahrenheit(columns) ? toFahrenheit(stored) : stored;
}

std::vector<std::string_view> tablesOnAxesOf(const TableSheet& sheet) {
    const UnitKind& kind = sheet.unit().kind();
    // Without axes of their own the output tables stand on those of the main tables.
    if (sheet.kind().isGpo() && kind.cells.hasAxisWords) return {sheet.kind().name};
    std::vector<std::string_view> tables;
    for (const TableKind& table : tableKinds()) {
        if (hasTable(kind, table) && (!table.isGpo() || !kind.cells.hasAxisWords))
            tables.push_back(table.name);
    }
    return tables;
}

std::vector<Refusal> changeLines(TableSheet& sheet, LineCommand command, int line) {
    const bool columns = isOfColumns(command);
    const int count = columns ? sheet.columns() : sheet.rows();
    if (!whyNot(sheet, command).empty() || line < 1 || line > count) return {};
    const int rows = sheet.rows();
    const int at = columns ? line - 1 : sheet.storedRow(line);
    std::vector<Refusal> refused;
    sheet.unit().SILENT_MODE(false);
    bool headers = true;
    for (const std::string_view table : tablesOnAxesOf(sheet)) {
        changeTable({sheet, table, columns, rows, refused}, addsLine(command), at, count,
                    columns ? rows : sheet.columns(), std::exchange(headers, false));
    }
    sheet.unit().SET_TBL_DIMENSIONS(sheet.table(), columns ? "COLS" : "ROWS",
                                    addsLine(command) ? count + 1 : count - 1);
    sheet.read({}, {}, sheet.inverted());
    return refused;
}

}  // namespace zentaq
