#include "tables/table_model.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "unit/axis_order.h"
#include "unit/rollback.h"

namespace zentaq {

namespace {

constexpr int selectedOnOpen = 10;
constexpr std::int32_t alarmRed = 255;
constexpr double afrBand = 0.5;

float numberOrZero(const std::string& text) {
    return static_cast<float>(parseNumber(text).value_or(0));
}

/// The number that a text begins with: "45%" is 45, "ON" is 0.
float leadingNumber(std::string_view text) {
    const auto end = text.find_first_not_of("+-0123456789.");
    return static_cast<float>(parseNumber(text.substr(0, end)).value_or(0));
}

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

std::string limitsText(float low, float high, std::string_view unit) {
    return "(" + numberText(low) + " to " + numberText(high) + std::string(unit);
}

}  // namespace

TableModel::TableModel(Unit& unit, Ecu& ecu, const LiveValues& live, PaintMemory& paintMemory)
    : unit_(unit), ecu_(ecu), live_(live), paintMemory_(paintMemory) {}

const TableKind& TableModel::kind() const {
    const TableKind* found = findTable(table_);
    if (found == nullptr) throw NoSuchMember("No table \"" + table_ + "\"");
    return *found;
}

// ---- Building

std::vector<Refusal> TableModel::Setup_Grid(std::string_view table, std::string_view title, bool inverted) {
    // All or nothing: a table that cannot be shown leaves the one on the screen whole, and its name with it.
    Rollback rollback(table_, title_, inverted_, view_, grid_, cursor_, selection_, rowHeaders_,
                      columnHeaders_, undo_, undoFilled_, base_, zones_);
    // A view of the former table would bar typing on one that has no such view and no key to leave it.
    if (!table.empty() && table != table_) leaveViews();
    if (!table.empty()) table_ = table;
    if (!title.empty()) title_ = title;
    inverted_ = inverted;
    std::vector<Refusal> refused;
    if (kind().isGpo() && hasEmptyAxis(unit_, table_)) refused = resetGpoAxes(unit_);
    grid_.resize(shownRows(unit_, table_), shownColumns(unit_, table_));
    fillRowHeaders();
    fillColumnHeaders();
    fillCells();
    refreshEstimates();
    buildZones();
    colorizeGraph(false);
    paintMemory_.ofAxes(axesText());
    repaintRemembered();
    if (!grid_.hasCell(cursor_.row, cursor_.column)) cursor_ = {};
    if (!grid_.hasCell(selection_.bottom, selection_.right)) {
        select(cursor_.row, cursor_.column, cursor_.row, cursor_.column);
    }
    rollback.keep();
    return refused;
}

bool TableModel::showsFahrenheit(std::string_view axis) const {
    if (!kind().isGpo() || !unit_.host().fahrenheit()) return false;
    const std::string axisKind = unit_.GET_TBL_AXIS_TYPE(table_, axis);
    return axisKind == "CLT" || axisKind == "MAT";
}

int TableModel::storedRow(int row) const {
    return inverted_ ? row - 1 : rows() - row;
}

int TableModel::gridRow(int row) const {
    return inverted_ ? row + 1 : rows() - row;
}

void TableModel::fillRowHeaders() {
    const bool fahrenheit = showsFahrenheit("ROW-AXIS");
    for (int i = 0; i < rows(); ++i) {
        skipFailing([&] {
            float header = tableHeader(unit_, table_, "Y-Axis", i);
            if (fahrenheit) header = roundTo(Ecu::toFahrenheit(header), 1);
            grid_.text(gridRow(i), 0, numberText(header));
        });
        rowHeaders_[static_cast<std::size_t>(i)] = numberOrZero(grid_.text(gridRow(i), 0));
    }
}

void TableModel::fillColumnHeaders() {
    const bool fahrenheit = showsFahrenheit("COL-AXIS");
    for (int i = 0; i < columns(); ++i) {
        skipFailing([&] {
            float header = tableHeader(unit_, table_, "X-Axis", i);
            if (fahrenheit) header = roundTo(Ecu::toFahrenheit(header), 1);
            grid_.text(0, i + 1, numberText(header));
        });
        columnHeaders_[static_cast<std::size_t>(i)] = numberOrZero(grid_.text(0, i + 1));
    }
}

void TableModel::fillCells() {
    // Kept: the copies are filled by a running count of shown cells, not by table index.
    std::size_t shown = 0;
    for (int r = 0; r < rows(); ++r) {
        for (int c = 0; c < columns(); ++c, ++shown) {
            skipFailing([&] {
                const float value = get_binValueByIndex(table_, r * storedColumns + c);
                grid_.text(gridRow(r), c + 1, numberText(value));
                if (shown >= storedCells) return;
                undo_[shown] = value;
                undoFilled_[shown] = true;
                base_[shown] = value;
            });
        }
    }
}

std::string TableModel::axesText() const {
    std::string axes = unit_.GET_TBL_AXIS_TYPE(table_, "COL-AXIS");
    for (int column = 1; column <= columns(); ++column) axes += ' ' + grid_.text(0, column);
    axes += '\n' + unit_.GET_TBL_AXIS_TYPE(table_, "ROW-AXIS");
    for (int row = 1; row <= rows(); ++row) axes += ' ' + grid_.text(row, 0);
    return axes;
}

void TableModel::buildZones() {
    std::vector<float> headers;
    for (int c = 1; c <= columns(); ++c) headers.push_back(numberOrZero(grid_.text(0, c)));
    zones_.buildColumns(headers);
    headers.clear();
    for (int r = 1; r <= rows(); ++r) headers.push_back(numberOrZero(grid_.text(r, 0)));
    zones_.buildRows(headers);
}

// ---- Where a cell is stored

int TableModel::tableIndex(int row, int column) const {
    return storedRow(row) * storedColumns + column - 1;
}

int TableModel::sixteenRowIndex(int row, int column) const {
    const int stored = inverted_ ? row - 1 : storedHeaders - row;
    return stored * storedColumns + column - 1;
}

// ---- Values

float TableModel::get_binValueByIndex(std::string_view table, int index) const {
    return zentaq::get_binValueByIndex(unit_, table, index, absoluteVe_);
}

EntryOutcome TableModel::set_BinValueByIndex(std::string_view table, float value, int index) {
    auto stored = set_binValueByIndex(unit_, table, value, index, absoluteVe_);
    if (stored) {
        ++cellsWritten_;
        shadeWritten(table, index);
    }
    return stored;
}

float TableModel::get_BinValue(std::string_view table, int row, int column) const {
    const int index = (shownRows(unit_, table) - row) * storedColumns + column;
    if (index < 0 || index >= storedCells) return 0;
    return get_binValueByIndex(table, index);
}

void TableModel::set_BinValue(std::string_view table, int row, int column, float value) {
    const int index = (shownRows(unit_, table) - row) * storedColumns + column;
    if (index >= 0 && index < storedCells) set_BinValueByIndex(table, value, index);
}

// ---- Cursor and selection

bool TableModel::moveTo(int row, int column) {
    if (!grid_.hasCell(row, column)) return false;
    cursor_ = {row, column};
    if (!selection_.present) selection_ = {row, row, column, column, false};
    return true;
}

void TableModel::select(int row, int column, int rowSel, int colSel) {
    if (grid_.hasCell(row, column)) cursor_ = {row, column};
    selection_.top = std::min(row, rowSel);
    selection_.bottom = std::max(row, rowSel);
    selection_.left = std::min(column, colSel);
    selection_.right = std::max(column, colSel);
    selection_.present = row != rowSel || column != colSel;
}

// ---- Keys and typing

KeyResult TableModel::keyOnGrid(char key) {
    if (selection_.top == 0 || selection_.left == 0) {
        select(cursor_.row, cursor_.column, cursor_.row, cursor_.column);
    }
    switch (key) {
        case 'A':
            if (table_ != "VE") break;
            toggleAbsolute();
            return KeyResult::Done;
        case 'D':
            if (!hasEstimates()) break;
            toggleDutyCycle();
            return KeyResult::Done;
        case 'P':
            if (!hasEstimates()) break;
            togglePulsewidth();
            return KeyResult::Done;
        case 'O':
            toggleOverlay();
            return KeyResult::Done;
        case 'X':
            return KeyResult::Unload;
        default:
            break;
    }
    takeCursorToSelection();
    if (key == '.' || key == ',') return KeyResult::Nudge;
    holdCursor();
    const bool printable = key >= ' ' && key <= '~';
    return printable && view_ == TableView::Values ? KeyResult::StartEdit : KeyResult::Ignored;
}

/// The live point may have carried the cursor away from a block that the user has selected; what is typed is
/// meant for the block.
void TableModel::takeCursorToSelection() {
    const bool inside = cursor_.row >= selection_.top && cursor_.row <= selection_.bottom &&
                        cursor_.column >= selection_.left && cursor_.column <= selection_.right;
    if (!inside && grid_.hasCell(selection_.top, selection_.left))
        cursor_ = {selection_.top, selection_.left};
}

std::optional<EditStart> TableModel::startEdit(char key) {
    auto start = openedBy(key);
    if (start) editing_ = true;
    return start;
}

std::optional<EditStart> TableModel::openedBy(char key) {
    if (key == ' ') {
        return EditStart{grid_.text(cursor_.row, cursor_.column), selectedOnOpen};
    }
    const auto checked = checkFirstKey(key);
    if (checked) return EditStart{std::string(1, key), 0};
    if (checked.refusal().warning != 0) letCursorGo();
    return {};
}

EntryOutcome TableModel::checkFirstKey(char key) {
    if (std::string_view(" .-").find(key) != std::string_view::npos) return {};
    if (std::string_view("!#$@OUX").find(key) != std::string_view::npos) return EntryOutcome::ignored();
    return checkNumeric({&key, 1});
}

bool TableModel::mayBeTyped(std::string_view text) {
    const std::string_view body = trimmed(text);
    for (const std::string_view beginning : {"", ",", "-,", "-.", "-", "."}) {
        if (body == beginning) return true;
    }
    return isNumeric(body);
}

Limits TableModel::typingLimits() const {
    if (table_ == "VE") {
        return absoluteVe_ ? Limits{50, 150, "(50 to 150%)"} : Limits{-50, 50, "(-50 to 50%)"};
    }
    if (table_ == "AFR") {
        const double share = static_cast<double>(unit_.get("AFR")) / 14.64;
        const auto low = static_cast<float>(share * 9.76);
        const auto high = static_cast<float>(share * 29.28);
        return {low, high, limitsText(low, high, " AFR)")};
    }
    if (table_ == "ADV") {
        const float low = unit_.get("MOFFSET");
        return {low, low + 60, limitsText(low, low + 60, " Degrees)")};
    }
    return {0, 100, "(0 to 100%)"};
}

EntryOutcome TableModel::enterValue(std::string_view typed) {
    if (auto checked = checkTyped(typed, typingLimits()); !checked) return checked;
    // The limits of typing are a hair wider than those of the cell for some fuels.
    if (auto checked = checkTyped(typed, limits()); !checked) return checked;
    const double value = numberOf(typed);
    for (int row = selection_.top; row <= selection_.bottom; ++row) {
        for (int column = selection_.left; column <= selection_.right; ++column) {
            if (!grid_.hasCell(row, column)) continue;
            bool written = false;
            skipFailing([&] {
                const auto stored = writeCell(static_cast<float>(value), tableIndex(row, column), false);
                written = static_cast<bool>(stored);
            });
            // As typed, with more digits than the cell may show, but an output table holds whole percent.
            if (written && !kind().isGpo()) {
                grid_.text(row, column, numberText(value));
            } else {
                showStored(row, column);
            }
            if (hasEstimates()) updateEstimate(row, column);
        }
    }
    letCursorGo();
    return {};
}

void TableModel::leaveEdit(std::string_view typed) {
    grid_.text(cursor_.row, cursor_.column, std::string(typed));
    letCursorGo();
}

EntryOutcome TableModel::nudge(bool up) {
    const double step = up ? kind().nudge : -kind().nudge;
    for (int row = selection_.top; row <= selection_.bottom; ++row) {
        for (int column = selection_.left; column <= selection_.right; ++column) {
            if (auto nudged = nudgeCell(row, column, step); !nudged) return nudged;
        }
    }
    return {};
}

EntryOutcome TableModel::nudgeCell(int row, int column, double step) {
    if (!grid_.hasCell(row, column)) return EntryOutcome::ignored();
    // Kept: takes 16 for the row count whatever ROWS is, unlike every other path.
    const int index = sixteenRowIndex(row, column);
    if (index < 0 || index >= storedCells) return EntryOutcome::ignored();
    const bool inView = view_ != TableView::Values;
    const float before = inView ? get_binValueByIndex(table_, index) : cellNumber(row, column);
    const auto value = static_cast<float>(static_cast<double>(before) + step);
    if (auto checked = checkLimits(value, typingLimits()); !checked) return checked;
    if (auto checked = checkLimits(value, limits()); !checked) return checked;
    skipFailing([&] { writeCell(value, index, false); });
    if (!inView) grid_.text(row, column, numberText(value));
    if (hasEstimates()) updateEstimate(row, column);
    if (inView) showEstimate(index);
    return {};
}

float TableModel::cellNumber(int row, int column) const {
    return numberOrZero(grid_.text(row, column));
}

EntryOutcome TableModel::writeCell(float value, int index, bool silent) {
    unit_.SILENT_MODE(silent);
    return set_BinValueByIndex(table_, value, index);
}

void TableModel::silentWrite(float value, int index, bool silent) {
    skipFailing([&] { writeCell(value, index, silent); });
    letCursorGo();
}

// ---- Headers

std::optional<std::string> TableModel::headerPrompt(int row, int column) const {
    const bool isColumn = row == 0 && column > 0;
    const bool isRow = column == 0 && row > 0;
    if (view_ != TableView::Values || (!isColumn && !isRow)) return {};
    std::string name = isColumn ? "RPM" : "MAP";
    if (kind().isGpo()) name = unit_.GET_TBL_AXIS_TYPE(table_, isColumn ? "COL-AXIS" : "ROW-AXIS");
    return "Enter a New " + name + " Header Value...";
}

EntryOutcome TableModel::enterHeader(int row, int column, std::string_view typed) {
    if (!headerPrompt(row, column)) return EntryOutcome::ignored();
    const bool isColumn = row == 0;
    const int line = isColumn ? column : row;
    auto entered = kind().isGpo() ? enterStop(isColumn, line, typed) : enterMainHeader(isColumn, line, typed);
    paintMemory_.ofAxes(axesText());
    if (entered) paintAnew();
    return entered;
}

std::optional<AxisEntry> TableModel::axisEntry(int row, int column, std::string_view typed) const {
    if (!headerPrompt(row, column)) return {};
    const auto value = parseNumber(typed);
    if (!value || (*value == 0 && !kind().isGpo())) return {};
    const bool isColumn = row == 0;
    AxisEntry entry;
    for (int i = 0; i < (isColumn ? columns() : rows()); ++i)
        entry.fields.push_back(isColumn ? grid_.text(0, i + 1) : grid_.text(gridRow(i), 0));
    entry.index = isColumn ? column - 1 : storedRow(row);
    entry.fields.at(static_cast<std::size_t>(entry.index)) = std::string(trimmed(typed));
    return entry;
}

std::string TableModel::axisWarning(int row, int column) const {
    if (!grid_.hasCell(std::max(row, 1), std::max(column, 1))) return {};
    const auto entry = axisEntry(row, column, grid_.text(row, column));
    if (!entry || entry->index + 1 >= std::ssize(entry->fields)) return {};
    const auto at = static_cast<std::size_t>(entry->index);
    return stopNotBelowNext(numberOrZero(entry->fields[at]), numberOrZero(entry->fields[at + 1]));
}

EntryOutcome TableModel::enterMainHeader(bool isColumn, int line, std::string_view typed) {
    // An entry of 0, and one that is no number, is ignored.
    const auto value = static_cast<float>(parseNumber(typed).value_or(0));
    if (value == 0) return EntryOutcome::ignored();
    const std::string_view axis = isColumn ? "X-Axis" : "Y-Axis";
    const int index = isColumn ? line - 1 : storedRow(line);
    if (auto set = setTableHeader(unit_, table_, axis, index, static_cast<double>(value)); !set) return set;
    const float stored = tableHeader(unit_, table_, axis, index);
    if (isColumn) {
        if (stored != value) return EntryOutcome::ignored();
        grid_.text(0, line, numberText(stored));
        // Kept: the array entry written is one place past the header changed.
        columnHeaders_.at(static_cast<std::size_t>(line)) = stored;
        buildZones();
        return {};
    }
    if (stored != roundTo(value, std::max(unit_.MAPPrecision(), 0))) return EntryOutcome::ignored();
    grid_.text(line, 0, numberText(stored));
    rowHeaders_.at(static_cast<std::size_t>(index)) = stored;
    return {};
}

EntryOutcome TableModel::enterStop(bool isColumn, int line, std::string_view typed) {
    if (trimmed(typed).empty()) return EntryOutcome::ignored();
    const std::string_view axis = isColumn ? "X-Axis" : "Y-Axis";
    const int index = isColumn ? line - 1 : storedRow(line);
    if (auto set = setTableHeader(unit_, table_, axis, index, Entry(typed)); !set) return set;
    const int row = isColumn ? 0 : line;
    const int column = isColumn ? line : 0;
    grid_.text(row, column, numberText(numberOf(typed)));
    return {};
}

std::vector<Refusal> TableModel::pickAxis(std::string_view key) {
    if (!kind().isGpo() || key.size() < 2) return {};
    const std::string_view axis = key.front() == 'X' ? "COL-AXIS" : "ROW-AXIS";
    const std::string_view axisKind = key.substr(2);
    unit_.SET_TBL_AXIS_TYPE(table_, axis, axisKind);
    auto refused = spreadAxis(unit_, table_, axis, axisKind);
    rebuild();
    return refused;
}

// ---- Clipboard

std::string TableModel::clip() const {
    std::string cells;
    for (int row = selection_.top; row <= selection_.bottom; ++row) {
        for (int column = selection_.left; column <= selection_.right; ++column) {
            if (column > selection_.left) cells += '\t';
            if (grid_.hasCell(row, column)) cells += grid_.text(row, column);
        }
        if (row < selection_.bottom) cells += '\r';
    }
    return cells;
}

std::vector<Refusal> TableModel::paste(std::string_view clipboard) {
    if (clipboard.empty() || view_ != TableView::Values) return {};
    const int lastRow = selection_.present ? selection_.bottom : rows();
    const int lastColumn = selection_.present ? selection_.right : columns();
    std::vector<GridCell> pasted;
    int row = selection_.top;
    for (const std::string& line : split(withPlainLineEnds(clipboard), '\n')) {
        int column = selection_.left;
        for (const std::string& cell : split(line, '\t')) {
            if (row <= lastRow && column <= lastColumn && grid_.hasCell(row, column)) {
                grid_.text(row, column, std::string(trimmed(cell)));
                pasted.push_back({row, column});
            }
            ++column;
        }
        ++row;
    }
    auto refused = saveEntireTable();
    for (const GridCell& cell : pasted) showStored(cell.row, cell.column);
    refreshEstimates();
    return refused;
}

void TableModel::showStored(int row, int column) {
    skipFailing(
        [&] { grid_.text(row, column, numberText(get_binValueByIndex(table_, tableIndex(row, column)))); });
}

// ---- The whole grid

bool TableModel::holdsAlready(float value, int index) const {
    // Compared as shown: a cell shows fewer digits than the calibration may hold.
    const float kept = kind().isGpo() ? roundTo(value, 0) : value;
    return numberText(get_binValueByIndex(table_, index)) == numberText(kept);
}

EntryOutcome TableModel::saveCell(int row, int column, const Limits& limits) {
    const int index = tableIndex(row, column);
    if (index >= storedCells) return EntryOutcome::ignored();
    // What shows the stored value is no entry: it may hold more digits, or what no entry gives.
    const std::string text = grid_.text(row, column);
    if (text == numberText(get_binValueByIndex(table_, index))) return {};
    // Only what differs is written: on the fly every write is a record of about 10 ms on the wire, and 256 of
    // them would hold up the frames of a running engine for nothing. A cell left alone also keeps the digits
    // that its text does not show.
    auto checked = checkTyped(text, limits);
    const float value = checked ? static_cast<float>(numberOf(text)) : 0;
    if (checked && !holdsAlready(value, index)) set_BinValueByIndex(table_, value, index);
    showStored(row, column);
    return checked;
}

std::vector<Refusal> TableModel::saveEntireTable() {
    std::vector<Refusal> refused;
    const Limits allowed = limits();
    for (int row = 1; row <= rows(); ++row) {
        for (int column = 1; column <= columns(); ++column)
            skipFailing([&] { noteRefusal(refused, saveCell(row, column, allowed)); });
    }
    unit_.SET_TBL_DIMENSIONS(table_, "ROWS", rows());
    unit_.SET_TBL_DIMENSIONS(table_, "COLS", columns());
    return refused;
}

std::vector<Refusal> TableModel::save() {
    if (view_ != TableView::Values) {
        leaveViews();
        rebuild();
    }
    return saveEntireTable();
}

std::vector<Refusal> TableModel::restore() {
    std::vector<Refusal> refused;
    const Limits typing = typingLimits();
    const Limits allowed = limits();
    for (int i = 0; i < storedCells; ++i) {
        const auto at = static_cast<std::size_t>(i);
        // What no build has filled holds 0; where 0 is no value of the table it is left out without a word.
        if (!undoFilled_[at] && !checkLimits(undo_[at], typing)) continue;
        skipFailing([&] {
            if (holdsAlready(undo_[at], i)) return;
            const auto checked = checkLimits(undo_[at], allowed);
            noteRefusal(refused, checked);
            if (checked) writeCell(undo_[at], i, true);
        });
    }
    // What is saved or pasted after this is meant for the unit again.
    unit_.SILENT_MODE(false);
    letCursorGo();
    unit_.host().sysLog("TBL: Data Restore Completed Successfully.");
    rebuild();
    return refused;
}

// ---- Views

bool TableModel::hasEstimates() const {
    return kind().isFuel();
}

void TableModel::updateEstimate(int row, int column) {
    // Kept: estimates go by 16 rows whatever ROWS is, in the trim they read and in their place in the lists.
    const int index = sixteenRowIndex(row, column);
    skipFailing(
        [&] { ecu_.Injector_Pulsewidth(unit_, index, numberOrZero(grid_.text(row, 0)), table_ == "SPW"); });
    skipFailing([&] { ecu_.Injector_DutyCycle(unit_, numberOrZero(grid_.text(0, column)), index); });
}

void TableModel::refreshEstimates() {
    if (!hasEstimates()) return;
    for (int row = 1; row <= rows(); ++row) {
        for (int column = 1; column <= columns(); ++column) updateEstimate(row, column);
    }
}

void TableModel::showEstimate(int index) {
    const int stored = index / storedColumns;
    const int row = inverted_ ? stored + 1 : storedHeaders - stored;
    const int column = index % storedColumns + 1;
    if (!grid_.hasCell(row, column)) return;
    const bool isWidth = view_ == TableView::PulseWidth;
    const bool tooShort = isWidth && table_ != "SPW" && ecu_.pulseWidthMs(index) < unit_.get("MT");
    const bool tooLong = !isWidth && ecu_.dutyPercent(index) >= 100;
    grid_.text(row, column, isWidth ? ecu_.Get_PulseWidth(index) : ecu_.Get_DutyCycle(index));
    grid_.colour(row, column, tooShort || tooLong ? alarmRed : TableGrid::white);
}

void TableModel::showView(TableView view) {
    view_ = view;
    paintMemory_.erase();
    if (view == TableView::Values) {
        rebuild();
        return;
    }
    for (int index = 0; index < storedCells; ++index) {
        skipFailing([&] { showEstimate(index); });
    }
}

bool TableModel::toggleView(TableView view) {
    if (!hasEstimates()) return false;
    showView(view_ == view ? TableView::Values : view);
    return true;
}

void TableModel::togglePulsewidth() {
    toggleView(TableView::PulseWidth);
}

void TableModel::toggleDutyCycle() {
    toggleView(TableView::DutyCycle);
}

void TableModel::leaveViews() {
    view_ = TableView::Values;
}

void TableModel::toggleAbsolute() {
    if (table_ != "VE") return;
    absoluteVe_ = !absoluteVe_;
    leaveViews();
    rebuild();
}

void TableModel::invert() {
    if (kind().isGpo()) return;
    leaveViews();
    Setup_Grid({}, {}, !inverted_);
}

void TableModel::home() {
    leaveViews();
    Setup_Grid({}, {}, false);
}

void TableModel::reset() {
    leaveViews();
    rebuild();
}

std::string TableModel::timeOfGap() const {
    return numberText(unit_.get("scale1"));
}

std::string TableModel::injectorOn() const {
    return numberText(unit_.get("INJ_On"));
}

EntryOutcome TableModel::enterTime(std::string_view member, std::string_view typed) {
    if (auto filled = checkFilled(typed); !filled) return filled;
    if (auto numeric = checkNumeric(typed); !numeric) return numeric;
    if (auto set = unit_.set(member, Entry(typed)); !set) return set;
    unit_.host().sysLog("Change Accepted");
    refreshEstimates();
    if (view_ != TableView::Values) showView(view_);
    return {};
}

// ---- Colours and live tracking

void TableModel::colorizeGraph(bool white) {
    if (table_ != "VE" && !white) return;
    const double midpoint = shadeMidpoint();
    for (int row = 1; row <= rows(); ++row) {
        for (int column = 1; column <= columns(); ++column) {
            grid_.colour(row, column, TableGrid::white);
            if (!white) shadeCell(row, column, midpoint);
        }
    }
}

double TableModel::shadeMidpoint() const {
    return table_ == "VE" && absoluteVe_ ? 100 : kind().colourMidpoint;
}

void TableModel::shadeCell(int row, int column, double midpoint) {
    skipFailing([&] {
        const float value = get_binValueByIndex(table_, tableIndex(row, column));
        grid_.colour(row, column, shadeOf(value, midpoint, kind().colourScale));
    });
}

/// The shade of a stored cell follows its new value at once; the paint of the live point stays on top.
void TableModel::shadeWritten(std::string_view table, int index) {
    if (table != "VE" || table_ != "VE" || view_ != TableView::Values) return;
    const int row = gridRow(index / storedColumns);
    const int column = index % storedColumns + 1;
    if (!grid_.hasCell(row, column) || paintMemory_.at(row, column) != Paint::White) return;
    shadeCell(row, column, shadeMidpoint());
}

void TableModel::repaint() {
    for (int column = 1; column <= storedColumns; ++column) {
        for (int row = 1; row <= storedHeaders; ++row) {
            if (!grid_.hasCell(row, column)) continue;
            grid_.colour(row, column, paintColour(paintMemory_.at(row, column)));
        }
    }
}

void TableModel::repaintRemembered() {
    // A cell that was never painted keeps the shade of its value.
    for (int column = 1; column <= storedColumns; ++column) {
        for (int row = 1; row <= storedHeaders; ++row) {
            const Paint paint = paintMemory_.at(row, column);
            if (paint == Paint::White || !grid_.hasCell(row, column)) continue;
            grid_.colour(row, column, paintColour(paint));
        }
    }
}

void TableModel::paintAnew() {
    if (view_ != TableView::Values) {
        for (int index = 0; index < storedCells; ++index) skipFailing([&] { showEstimate(index); });
        return;
    }
    colorizeGraph(table_ != "VE");
    repaintRemembered();
}

void TableModel::whiteOut() {
    paintMemory_.erase();
    repaint();
}

float TableModel::liveValueOf(std::string_view axis) const {
    const std::string axisKind = unit_.GET_TBL_AXIS_TYPE(table_, axis);
    const bool fahrenheit = showsFahrenheit(axis);
    if (axisKind == "CLT") return fahrenheit ? Ecu::toFahrenheit(live_.CLT) : live_.CLT;
    if (axisKind == "MAT") return fahrenheit ? Ecu::toFahrenheit(live_.MAT) : live_.MAT;
    // Kept: a raw pressure axis follows the coolant temperature.
    if (axisKind == "RAW MAP") return live_.CLT;
    if (axisKind == "BLEND MAP") return live_.MAP;
    if (axisKind == "TPS") return live_.TPS;
    if (axisKind == "ACTUAL AFR") return live_.AAFR;
    if (axisKind == "RPM") return live_.RPM;
    if (axisKind.size() == 5 && axisKind.starts_with("GPIO")) {
        return leadingNumber(unit_.GPIODisplay().at(static_cast<std::size_t>(axisKind[4] - '1')));
    }
    return 0;
}

void TableModel::placeMarker(float x, float y) {
    const std::span<const float> all(columnHeaders_);
    const std::span<const float> allRows(rowHeaders_);
    const auto column = placeOfColumn(all.first(static_cast<std::size_t>(columns())), x);
    const auto row = placeOfRow(allRows.first(static_cast<std::size_t>(rows())), y);
    if (column) marker_.column = 1 + *column;
    if (row) marker_.row = inverted_ ? 1 + *row : rows() - *row;
    marker_.visible = true;
}

void TableModel::Show_Current_Activity(float x, float y) {
    if (x == 0 && y == 0) {
        x = kind().isGpo() ? liveValueOf("COL-AXIS") : live_.RPM;
        y = kind().isGpo() ? liveValueOf("ROW-AXIS") : live_.MAP;
    }
    placeMarker(x, y);
    // An open edit box holds its cell even if the overlay is switched on from the menu meanwhile.
    if (overlaySuppressed_ || editing_) return;
    const GridCell cell = zones_.cellOf(x, y, cursor_);
    if (!moveTo(cell.row, cell.column) || autoVeActive_) return;
    if (colourMode_ == TableColour::Afr) {
        paintByAfr();
    } else {
        paintCurrent(Paint::Yellow);
        paintMemory_.remember(cursor_.row, cursor_.column, Paint::Yellow);
    }
}

void TableModel::paintCurrent(Paint paint) {
    grid_.colour(cursor_.row, cursor_.column, paintColour(paint));
}

void TableModel::paintByAfr() {
    const double actual = live_.AAFR;
    const double desired = live_.DAFR;
    const auto paint = [&](Paint shown, Paint remembered) {
        paintCurrent(shown);
        paintMemory_.remember(cursor_.row, cursor_.column, remembered);
    };
    // Kept: yellow and green are crossed over between the cell and the memory, so a repaint exchanges them.
    if (desired - afrBand > actual) paint(Paint::Yellow, Paint::Green);
    if (actual >= desired - afrBand && actual <= desired + afrBand) paint(Paint::Green, Paint::Yellow);
    if (desired + afrBand <= actual) paint(Paint::Red, Paint::Red);
    if (actual == desired) paint(Paint::Blue, Paint::Blue);
}

void TableModel::Set_KeyDownFlag(bool suppressed) {
    previousOverlay_ = overlaySuppressed_;
    overlaySuppressed_ = suppressed;
}

void TableModel::holdCursor() {
    if (!overlaySuppressed_) Set_KeyDownFlag(true);
}

void TableModel::letCursorGo() {
    editing_ = false;
    overlaySuppressed_ = previousOverlay_;
}

void TableModel::toggleOverlay() {
    Set_KeyDownFlag(!overlaySuppressed_);
    previousOverlay_ = overlaySuppressed_;
}

// ---- What the window offers

PopupItems TableModel::popupItems() const {
    PopupItems items;
    items.interpolateAndSmooth = selection_.present;
    const int from = unit_.kind().resizesFrom;
    const bool offered = from != 0 && unit_.FW_Release() >= from;
    items.rowsAndColumns = offered && !selection_.present;
    items.newColumn = columns() < 16;
    items.newRow = rows() < 16;
    items.removeColumn = columns() >= 9;
    items.removeRow = rows() >= 9;
    return items;
}

ToolbarItems TableModel::toolbarItems() const {
    ToolbarItems items;
    items.onFlyItems = unit_.ONFLY_MODE();
    items.fuelViews = kind().isFuel();
    items.axisButtons = kind().isGpo();
    items.columnAxis = "X: " + unit_.GET_TBL_AXIS_TYPE(table_, "COL-AXIS");
    items.rowAxis = "Y: " + unit_.GET_TBL_AXIS_TYPE(table_, "ROW-AXIS");
    if (table_ == "VE") items.displayCaption = "VE %";
    if (table_ == "SPW") items.displayCaption = "Staged %";
    if (table_ == "ADV" && unit_.kind().fuelSide) items.displayCaption = "Table Adv";
    items.overlayItem = overlaySuppressed_ ? "Turn Overlay ON" : "Turn Overlay OFF";
    return items;
}

}  // namespace zentaq
