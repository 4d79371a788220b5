#include "tables/table_model.h"

#include "tables/line_commands.h"

namespace zentaq {

namespace {

void append(std::vector<Refusal>& refused, const std::vector<Refusal>& further) {
    refused.insert(refused.end(), further.begin(), further.end());
}

}  // namespace

std::vector<Refusal> TableModel::Setup_Grid(std::string_view table, std::string_view title, bool inverted) {
    const bool another = !table.empty() && table != sheet_.table();
    auto refused = sheet_.read(table, title, inverted);
    // A view of the former table would bar typing on one that has no such view and no key to leave it.
    if (another) estimates_.view(TableView::Values);
    // A table that the other calibration lacks, or whose axes stand for something else there.
    if (!skipFailing([&] { comparison_.follow(); })) compareNoMore();
    noteDifferences();
    estimates_.refresh();
    overlay_.rebuild();
    cursor_.stayInGrid();
    return refused;
}

KeyResult TableModel::keyOnGrid(char key) {
    cursor_.leaveHeaders();
    const bool fuel = estimates_.offered();
    if (key == 'X') return KeyResult::Unload;
    if ((key == 'A' && sheet_.kind().absolute) || (fuel && (key == 'D' || key == 'P')) || key == 'O') {
        // No view of an output table is among them, so no build has stops to be refused.
        if (key == 'A') toggleAbsolute();
        if (key == 'D') toggleDutyCycle();
        if (key == 'P') togglePulsewidth();
        if (key == 'O') cursor_.toggleOverlay();
        return KeyResult::Done;
    }
    cursor_.takeToSelection();
    if (key == '.' || key == ',') return KeyResult::Nudge;
    cursor_.hold();
    const bool printable = key >= ' ' && key <= '~';
    return printable && estimates_.showsValues() ? KeyResult::StartEdit : KeyResult::Ignored;
}

// ---- Views

std::vector<Refusal> TableModel::showView(TableView view) {
    estimates_.view(view);
    overlay_.erasePaint();
    if (view == TableView::Values) return rebuild();
    estimates_.showAll();
    return {};
}

std::vector<Refusal> TableModel::toggleView(TableView view) {
    if (!estimates_.offered()) return {};
    return showView(estimates_.view() == view ? TableView::Values : view);
}

// ---- Beside another calibration

void TableModel::compare(const Calibration& other, const UnitKind& kind, std::string name) {
    comparison_.with(other, kind, std::move(name));
    noteDifferences();
    if (estimates_.view() == TableView::Difference) estimates_.showAll();
}

void TableModel::compareNoMore() {
    comparison_.off();
    noteDifferences();
    if (estimates_.view() == TableView::Difference) reset();
}

void TableModel::noteDifferences() {
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column) {
            const int index = sheet_.isStored({row, column}) ? sheet_.tableIndex(row, column) : -1;
            sheet_.grid().note(row, column, index < 0 ? std::string() : comparison_.differenceText(index));
        }
    }
}

std::vector<Refusal> TableModel::toggleDifference() {
    if (!comparison_.on()) return {};
    return showView(estimates_.view() == TableView::Difference ? TableView::Values : TableView::Difference);
}

std::vector<Refusal> TableModel::toggleAbsolute() {
    if (!sheet_.kind().absolute) return {};
    sheet_.absoluteVe(!sheet_.absoluteVe());
    return reset();
}

std::vector<Refusal> TableModel::invert() {
    if (sheet_.kind().isGpo()) return {};
    estimates_.view(TableView::Values);
    return Setup_Grid({}, {}, !sheet_.inverted());
}

std::vector<Refusal> TableModel::home() {
    estimates_.view(TableView::Values);
    return Setup_Grid({}, {}, false);
}

std::vector<Refusal> TableModel::reset() {
    estimates_.view(TableView::Values);
    return rebuild();
}

EntryOutcome TableModel::enterTime(std::string_view member, std::string_view typed) {
    auto entered = estimates_.enterTime(member, typed);
    if (entered && !estimates_.showsValues()) showView(estimates_.view());
    return entered;
}

// ---- The whole grid

std::vector<Refusal> TableModel::save() {
    if (estimates_.showsValues()) return sheet_.saveEntireTable();
    auto refused = reset();
    append(refused, sheet_.saveEntireTable());
    return refused;
}

std::vector<Refusal> TableModel::restore() {
    const auto cells = sheet_.restore();
    cursor_.letGo();
    auto refused = rebuild();
    append(refused, cells);
    return refused;
}

std::vector<Refusal> TableModel::pickAxis(std::string_view key) {
    if (!sheet_.kind().isGpo() || key.size() < 2) return {};
    const std::string_view axis = key.front() == 'X' ? "COL-AXIS" : "ROW-AXIS";
    const std::string_view axisKind = key.substr(2);
    Unit& unit = sheet_.unit();
    unit.SET_TBL_AXIS_TYPE(sheet_.table(), axis, axisKind);
    auto refused = spreadAxis(unit, sheet_.table(), axis, axisKind);
    append(refused, rebuild());
    return refused;
}

// ---- What the window offers

PopupItems TableModel::popupItems() const {
    const Unit& unit = sheet_.unit();
    const bool block = cursor_.selection().present;
    PopupItems items;
    items.interpolateAndSmooth = block;
    items.rowsAndColumns = takesOtherSizes(unit) && !block;
    items.newColumn = sheet_.columns() < 16;
    items.newRow = sheet_.rows() < 16;
    items.removeColumn = sheet_.columns() >= 9;
    items.removeRow = sheet_.rows() >= 9;
    return items;
}

ToolbarItems TableModel::toolbarItems() const {
    const Unit& unit = sheet_.unit();
    const TableKind& kind = sheet_.kind();
    ToolbarItems items;
    items.onFlyItems = unit.ONFLY_MODE();
    items.fuelViews = kind.fuel != FuelCells::None;
    items.axisButtons = kind.isGpo();
    items.columnAxis = "X: " + unit.GET_TBL_AXIS_TYPE(kind.name, "COL-AXIS");
    items.rowAxis = "Y: " + unit.GET_TBL_AXIS_TYPE(kind.name, "ROW-AXIS");
    if (!kind.liveWithFuelOnly || unit.kind().fuelSide) items.displayCaption = kind.liveCaption;
    items.overlayItem = cursor_.overlaySuppressed() ? "Turn Overlay ON" : "Turn Overlay OFF";
    return items;
}

}  // namespace zentaq
