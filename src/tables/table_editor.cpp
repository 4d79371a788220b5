#include "tables/table_editor.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "unit/axis_order.h"

namespace zentaq {

namespace {

/// One '\n' for each line end, none behind the last row.
std::string withPlainLineEnds(std::string_view text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') continue;
        plain += text[i] == '\r' ? '\n' : text[i];
    }
    if (plain.ends_with('\n')) plain.pop_back();
    return plain;
}

}  // namespace

// ---- Typing

std::optional<EditStart> TableEditor::startEdit(char key) {
    constexpr int selectedOnOpen = 10;
    const auto checked = checkFirstKey(key);
    if (!checked) {
        if (checked.refusal().warning != 0) cursor_.letGo();
        return {};
    }
    cursor_.beginEdit();
    if (key == ' ') return EditStart{sheet_.grid().text(cursor_.row(), cursor_.column()), selectedOnOpen};
    return EditStart{std::string(1, key), 0};
}

EntryOutcome TableEditor::checkFirstKey(char key) {
    if (std::string_view(" .-").find(key) != std::string_view::npos) return {};
    if (std::string_view("!#$@OUX").find(key) != std::string_view::npos) return EntryOutcome::ignored();
    return checkNumeric({&key, 1});
}

bool TableEditor::mayBeTyped(std::string_view text) {
    const std::string_view body = trimmed(text);
    for (const std::string_view beginning : {"", ",", "-,", "-.", "-", "."}) {
        if (body == beginning) return true;
    }
    return isNumeric(body);
}

EntryOutcome TableEditor::enterValue(std::string_view typed) {
    if (auto checked = checkTyped(typed, sheet_.typingLimits()); !checked) return checked;
    // The limits of typing are a hair wider than those of the cell for some fuels.
    if (auto checked = checkTyped(typed, sheet_.limits()); !checked) return checked;
    const double value = numberOf(typed);
    const Selection block = cursor_.selection();
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column) {
            if (sheet_.grid().hasCell(row, column)) enterCell(row, column, value);
        }
    }
    cursor_.letGo();
    return {};
}

void TableEditor::enterCell(int row, int column, double value) {
    EntryOutcome written = EntryOutcome::ignored();
    skipFailing([&] {
        written = sheet_.writeCell(static_cast<float>(value), sheet_.tableIndex(row, column), false);
    });
    // As typed, with more digits than the cell may show, but an output table holds whole percent.
    if (written && !sheet_.kind().isGpo()) {
        sheet_.grid().text(row, column, numberText(value));
    } else {
        sheet_.showStored(row, column);
    }
    estimates_.update(row, column);
}

void TableEditor::leaveEdit(std::string_view typed) {
    sheet_.grid().text(cursor_.row(), cursor_.column(), std::string(typed));
    cursor_.letGo();
}

EntryOutcome TableEditor::nudge(bool up) {
    const double step = up ? sheet_.kind().nudge : -sheet_.kind().nudge;
    const Selection block = cursor_.selection();
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column) {
            if (auto nudged = nudgeCell(row, column, step); !nudged) return nudged;
        }
    }
    return {};
}

EntryOutcome TableEditor::nudgeCell(int row, int column, double step) {
    if (!sheet_.grid().hasCell(row, column)) return EntryOutcome::ignored();
    // Kept: takes 16 for the row count whatever ROWS is, unlike every other path.
    const int index = sheet_.sixteenRowIndex(row, column);
    if (index < 0 || index >= storedCells) return EntryOutcome::ignored();
    const bool inView = !estimates_.showsValues();
    const float before = inView ? sheet_.value(index) : sheet_.shownNumber(row, column);
    const auto value = static_cast<float>(static_cast<double>(before) + step);
    if (auto checked = checkLimits(value, sheet_.typingLimits()); !checked) return checked;
    if (auto checked = checkLimits(value, sheet_.limits()); !checked) return checked;
    EntryOutcome written;
    skipFailing([&] { written = sheet_.writeCell(value, index, false); });
    if (!written) return written;
    if (!inView) sheet_.grid().text(row, column, numberText(value));
    estimates_.update(row, column);
    if (inView) estimates_.show(index);
    return {};
}

EntryOutcome TableEditor::silentWrite(float value, int index, bool silent) {
    EntryOutcome written;
    skipFailing([&] { written = sheet_.writeCell(value, index, silent); });
    cursor_.letGo();
    return written;
}

// ---- Headers

std::optional<std::string> TableEditor::headerPrompt(int row, int column) const {
    const bool isColumn = row == 0 && column > 0;
    const bool isRow = column == 0 && row > 0;
    if (!estimates_.showsValues() || (!isColumn && !isRow)) return {};
    std::string name = isColumn ? "RPM" : "MAP";
    if (sheet_.kind().isGpo())
        name = sheet_.unit().GET_TBL_AXIS_TYPE(sheet_.table(), isColumn ? "COL-AXIS" : "ROW-AXIS");
    return "Enter a New " + name + " Header Value...";
}

EntryOutcome TableEditor::enterHeader(int row, int column, std::string_view typed) {
    if (!headerPrompt(row, column)) return EntryOutcome::ignored();
    const bool isColumn = row == 0;
    const int line = isColumn ? column : row;
    const bool output = sheet_.kind().isGpo();
    auto entered = output ? enterStop(isColumn, line, typed) : enterMainHeader(isColumn, line, typed);
    // kept: the zones follow a new speed only.
    overlay_.headersChanged(entered && isColumn && !output, static_cast<bool>(entered));
    return entered;
}

std::optional<AxisEntry> TableEditor::axisEntry(int row, int column, std::string_view typed) const {
    if (!headerPrompt(row, column)) return {};
    const auto value = parseNumber(typed);
    if (!value || (*value == 0 && !sheet_.kind().isGpo())) return {};
    const bool isColumn = row == 0;
    const TableGrid& grid = sheet_.grid();
    AxisEntry entry;
    for (int i = 0; i < (isColumn ? sheet_.columns() : sheet_.rows()); ++i)
        entry.fields.push_back(isColumn ? grid.text(0, i + 1) : grid.text(sheet_.gridRow(i), 0));
    entry.index = isColumn ? column - 1 : sheet_.storedRow(row);
    entry.fields.at(static_cast<std::size_t>(entry.index)) = std::string(trimmed(typed));
    return entry;
}

EntryOutcome TableEditor::checkHeader(int row, int column, std::string_view typed) const {
    const auto entry = axisEntry(row, column, typed);
    if (!entry || entry->index == 0) return {};
    const auto at = static_cast<std::size_t>(entry->index);
    return checkAscending(entry->fields[at - 1], entry->fields[at]);
}

std::string TableEditor::axisWarning(int row, int column) const {
    if (!sheet_.grid().hasCell(std::max(row, 1), std::max(column, 1))) return {};
    const auto entry = axisEntry(row, column, sheet_.grid().text(row, column));
    if (!entry || entry->index + 1 >= std::ssize(entry->fields)) return {};
    const auto number = [&](int index) {
        return static_cast<float>(parseNumber(entry->fields[static_cast<std::size_t>(index)]).value_or(0));
    };
    return stopNotBelowNext(number(entry->index), number(entry->index + 1));
}

EntryOutcome TableEditor::enterMainHeader(bool isColumn, int line, std::string_view typed) {
    // An entry of 0, and one that is no number, is ignored.
    const auto value = static_cast<float>(parseNumber(typed).value_or(0));
    if (value == 0) return EntryOutcome::ignored();
    Unit& unit = sheet_.unit();
    const std::string_view axis = isColumn ? "X-Axis" : "Y-Axis";
    const int index = isColumn ? line - 1 : sheet_.storedRow(line);
    auto set = setTableHeader(unit, sheet_.table(), axis, index, static_cast<double>(value));
    if (!set) return set;
    const float stored = tableHeader(unit, sheet_.table(), axis, index);
    if (isColumn) {
        if (stored != value) return EntryOutcome::ignored();
        sheet_.grid().text(0, line, numberText(stored));
        // Kept: the array entry written is one place past the header changed.
        sheet_.headers(true).at(static_cast<std::size_t>(line)) = stored;
        return {};
    }
    if (stored != roundTo(value, std::max(unit.MAPPrecision(), 0))) return EntryOutcome::ignored();
    sheet_.grid().text(line, 0, numberText(stored));
    sheet_.headers(false).at(static_cast<std::size_t>(index)) = stored;
    return {};
}

EntryOutcome TableEditor::enterStop(bool isColumn, int line, std::string_view typed) {
    if (trimmed(typed).empty()) return EntryOutcome::ignored();
    const std::string_view axis = isColumn ? "X-Axis" : "Y-Axis";
    const int index = isColumn ? line - 1 : sheet_.storedRow(line);
    auto set = setTableHeader(sheet_.unit(), sheet_.table(), axis, index, Entry(typed));
    if (set) sheet_.grid().text(isColumn ? 0 : line, isColumn ? line : 0, numberText(numberOf(typed)));
    return set;
}

// ---- Clipboard

std::string TableEditor::clip(Decimals decimals) const {
    const Selection& block = cursor_.selection();
    std::string cells;
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column) {
            if (column > block.left) cells += '\t';
            if (sheet_.grid().hasCell(row, column)) cells += sheet_.grid().text(row, column);
        }
        if (row < block.bottom) cells += '\r';
    }
    if (decimals == Decimals::CommaToo) std::ranges::replace(cells, '.', ',');
    return cells;
}

std::vector<TableEditor::PastedCell> TableEditor::pastedCells(std::string_view clipboard) const {
    const Selection& block = cursor_.selection();
    const int lastRow = block.present ? block.bottom : sheet_.rows();
    const int lastColumn = block.present ? block.right : sheet_.columns();
    std::vector<PastedCell> cells;
    int row = block.top;
    for (const std::string& line : split(withPlainLineEnds(clipboard), '\n')) {
        int column = block.left;
        for (const std::string& text : split(line, '\t')) {
            if (row <= lastRow && column <= lastColumn && sheet_.isStored({row, column}))
                cells.push_back({{row, column}, std::string(trimmed(text))});
            ++column;
        }
        ++row;
    }
    return cells;
}

std::vector<Refusal> TableEditor::paste(std::string_view clipboard, Decimals decimals) {
    if (clipboard.empty() || !estimates_.showsValues()) return {};
    const Limits limits = sheet_.limits();
    std::vector<Refusal> refused;
    std::vector<GridCell> filled;
    for (const auto& [cell, text] : pastedCells(clipboard)) {
        const bool comma = decimals == Decimals::Point && text.find(',') != std::string::npos;
        const auto checked = comma ? checkNumeric({}) : checkTyped(text, limits);
        noteRefusal(refused, checked, cellName(cell.row, cell.column));
        if (!checked) continue;
        sheet_.grid().text(cell.row, cell.column, text);
        filled.push_back(cell);
    }
    for (Refusal& further : sheet_.saveEntireTable()) refused.push_back(std::move(further));
    for (const GridCell& cell : filled) sheet_.showStored(cell.row, cell.column);
    estimates_.refresh();
    return refused;
}

}  // namespace zentaq
