#include "tables/table_sheet.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "tables/rollback.h"
#include "unit/axis_kinds.h"
#include "unit/temperature.h"

namespace zentaq {

const TableKind& TableSheet::kind() const {
    const TableKind* found = findTable(table());
    if (found == nullptr) throw NoSuchMember("No table \"" + table() + "\"");
    return *found;
}

// ---- Reading

std::vector<Refusal> TableSheet::read(std::string_view table, std::string_view title, bool inverted) {
    // All or nothing: a table that cannot be shown leaves the one on the screen whole, and its name with it.
    Rollback rollback(content_);
    if (!table.empty()) content_.table = table;
    if (!title.empty()) content_.title = title;
    content_.inverted = inverted;
    std::vector<Refusal> refused;
    if (kind().isGpo() && hasEmptyAxis(unit_, content_.table)) refused = resetGpoAxes(unit_);
    grid().resize(shownRows(unit_, content_.table), shownColumns(unit_, content_.table));
    readHeaders(false);
    readHeaders(true);
    readCells();
    axesText();
    rollback.keep();
    return refused;
}

const AxisKind* TableSheet::axisKind(bool columns) const {
    return axisKindOf(unit_.GET_TBL_AXIS_TYPE(table(), columns ? "COL-AXIS" : "ROW-AXIS"));
}

bool TableSheet::showsFahrenheit(bool columns) const {
    if (!kind().isGpo() || !unit_.host().fahrenheit()) return false;
    const AxisKind* kind = axisKind(columns);
    return kind != nullptr && kind->temperature;
}

void TableSheet::readHeaders(bool columns) {
    const bool fahrenheit = showsFahrenheit(columns);
    std::vector<float>& shown = headers(columns);
    for (int i = 0; i < (columns ? this->columns() : rows()); ++i) {
        const int row = columns ? 0 : gridRow(i);
        const int column = columns ? i + 1 : 0;
        skipFailing([&] {
            float header = tableHeader(unit_, table(), columns ? "X-Axis" : "Y-Axis", i);
            if (fahrenheit) header = roundTo(toFahrenheit(header), 1);
            grid().text(row, column, numberText(header));
        });
        shown[static_cast<std::size_t>(i)] = shownNumber(row, column);
    }
}

void TableSheet::readCells() {
    // Kept: the copies are filled by a running count of shown cells, not by table index.
    std::size_t shown = 0;
    for (int r = 0; r < rows(); ++r) {
        for (int c = 0; c < columns(); ++c, ++shown) {
            skipFailing([&] {
                const float read = value(r * storedColumns + c);
                grid().text(gridRow(r), c + 1, numberText(read));
                if (shown >= storedCells) return;
                content_.undo[shown] = read;
                content_.undoFilled[shown] = true;
                content_.base[shown] = read;
            });
        }
    }
}

std::string TableSheet::axesText() const {
    std::string axes = unit_.GET_TBL_AXIS_TYPE(table(), "COL-AXIS");
    for (int column = 1; column <= columns(); ++column) axes += ' ' + grid().text(0, column);
    axes += '\n' + unit_.GET_TBL_AXIS_TYPE(table(), "ROW-AXIS");
    for (int row = 1; row <= rows(); ++row) axes += ' ' + grid().text(row, 0);
    return axes;
}

// ---- Values

int TableSheet::sixteenRowIndex(int row, int column) const {
    const int stored = inverted() ? row - 1 : storedHeaders - row;
    return stored * storedColumns + column - 1;
}

float TableSheet::get_binValueByIndex(std::string_view table, int index) const {
    return zentaq::get_binValueByIndex(unit_, table, index, absoluteVe_);
}

EntryOutcome TableSheet::set_BinValueByIndex(std::string_view table, float value, int index) {
    return counted(table, index, set_binValueByIndex(unit_, table, value, index, absoluteVe_));
}

EntryOutcome TableSheet::storeValue(std::string_view table, float value, int index) {
    return counted(table, index, zentaq::set_binValueByIndex(unit_, table, value, index, false));
}

EntryOutcome TableSheet::counted(std::string_view table, int index, EntryOutcome stored) {
    if (!stored) return stored;
    ++cellsWritten_;
    if (written_) written_(table, index);
    return stored;
}

float TableSheet::get_BinValue(std::string_view table, int row, int column) const {
    const int index = (shownRows(unit_, table) - row) * storedColumns + column;
    if (index < 0 || index >= storedCells) return 0;
    return get_binValueByIndex(table, index);
}

EntryOutcome TableSheet::set_BinValue(std::string_view table, int row, int column, float value) {
    const int index = (shownRows(unit_, table) - row) * storedColumns + column;
    if (index < 0 || index >= storedCells) return EntryOutcome::ignored();
    return set_BinValueByIndex(table, value, index);
}

EntryOutcome TableSheet::writeCell(float value, int index, bool silent) {
    unit_.SILENT_MODE(silent);
    return set_BinValueByIndex(table(), value, index);
}

float TableSheet::shownNumber(int row, int column) const {
    return static_cast<float>(parseNumber(grid().text(row, column)).value_or(0));
}

void TableSheet::showStored(int row, int column) {
    skipFailing([&] { grid().text(row, column, numberText(value(tableIndex(row, column)))); });
}

// ---- The whole grid

bool TableSheet::holdsAlready(float value, int index) const {
    return showsAlready(unit_, table(), value, index, absoluteVe_);
}

EntryOutcome TableSheet::saveCell(int row, int column, const Limits& limits) {
    // A damaged file may ask for more lines than are stored: the index of one beyond is that of another cell.
    if (!isStored({row, column})) return EntryOutcome::ignored();
    const int index = tableIndex(row, column);
    // What shows the stored value is no entry: it may hold more digits, or what no entry gives.
    const std::string text = grid().text(row, column);
    if (text == numberText(value(index))) return {};
    // Only what differs is written: on the fly every write is a record of about 10 ms on the wire, and 256 of
    // them would hold up the frames of a running engine for nothing. A cell left alone also keeps the digits
    // that its text does not show.
    auto checked = checkTyped(text, limits);
    const float typed = checked ? static_cast<float>(numberOf(text)) : 0;
    if (checked && !holdsAlready(typed, index)) checked = set_BinValueByIndex(table(), typed, index);
    showStored(row, column);
    return checked;
}

Selection TableSheet::storedPart(Selection block) const {
    block.right = std::min(block.right, storedColumns);
    const int beyond = rows() - storedHeaders;
    if (beyond > 0 && inverted()) block.bottom = std::min(block.bottom, storedHeaders);
    if (beyond > 0 && !inverted()) block.top = std::max(block.top, beyond + 1);
    return block;
}

std::vector<Refusal> TableSheet::saveEntireTable() {
    std::vector<Refusal> refused;
    const Limits allowed = limits();
    for (int row = 1; row <= rows(); ++row) {
        for (int column = 1; column <= columns(); ++column)
            skipFailing([&] { noteRefusal(refused, saveCell(row, column, allowed), cellName(row, column)); });
    }
    unit_.SET_TBL_DIMENSIONS(table(), "ROWS", rows());
    unit_.SET_TBL_DIMENSIONS(table(), "COLS", columns());
    return refused;
}

std::vector<Refusal> TableSheet::restore() {
    std::vector<Refusal> refused;
    const Limits typing = typingLimits();
    const Limits allowed = limits();
    for (int i = 0; i < storedCells; ++i) {
        const auto at = static_cast<std::size_t>(i);
        const float before = content_.undo[at];
        // What no read has filled holds 0; where 0 is no value of the table it is left out without a word.
        if (!content_.undoFilled[at] && !checkLimits(before, typing)) continue;
        skipFailing([&] {
            if (holdsAlready(before, i)) return;
            auto restored = checkLimits(before, allowed);
            if (restored) restored = writeCell(before, i, true);
            noteRefusal(refused, restored);
        });
    }
    // What is saved or pasted after this is meant for the unit again.
    unit_.SILENT_MODE(false);
    unit_.host().sysLog("TBL: Data Restore Completed Successfully.");
    return refused;
}

}  // namespace zentaq
