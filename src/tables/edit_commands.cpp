#include "tables/edit_commands.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "tables/block_operations.h"
#include "tables/cell_changes.h"
#include "tables/cell_formula.h"
#include "tables/line_commands.h"
#include "tables/neighbor_commands.h"

namespace zentaq {

namespace {

std::string showsNoValues(TableModel& model) {
    if (model.estimates().showsValues()) return {};
    return "The cells show no values of the table now: go back to the values first.";
}

std::string needsBlock(TableModel& model) {
    std::string why = showsNoValues(model);
    if (!why.empty() || model.cursor().selection().severalCells()) return why;
    return "Select more than one cell first: hold Shift with an arrow key, or drag.";
}

template <LineCommand command>
std::string lineRefused(TableModel& model) {
    std::string why = showsNoValues(model);
    if (why.empty()) why = whyNot(model.sheet(), command);
    if (why.empty() || why.ends_with('.')) return why;
    why.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(why.front())));
    return why + ".";
}

template <Outward way>
std::string noneOutward(TableModel& model) {
    std::string why = showsNoValues(model);
    if (!why.empty()) return why;
    const bool none = copiedOutward(model.sheet(), model.cursor().selection(), way).empty();
    return none ? "The selection reaches the edge of the table already." : std::string();
}

std::vector<Refusal> writtenBack(TableModel& model) {
    model.cursor().forgetBlock();
    auto refused = model.sheet().saveEntireTable();
    model.estimates().refresh();
    return refused;
}

std::vector<Refusal> stored(TableModel& model, const std::vector<CellChange>& changes) {
    auto refused = storeAll(model.sheet(), changes);
    model.estimates().refresh();
    return refused;
}

std::vector<Refusal> interpolate(TableModel& model) {
    interpolateBlock(model.sheet().grid(), model.sheet().storedPart(model.cursor().selection()));
    return writtenBack(model);
}

template <int strength>
std::vector<Refusal> smooth(TableModel& model) {
    smoothBlock(model.sheet().grid(), model.sheet().storedPart(model.cursor().selection()), strength);
    return writtenBack(model);
}

template <LineCommand command>
std::vector<Refusal> changeLine(TableModel& model) {
    TableCursor& cursor = model.cursor();
    auto refused = changeLines(model.sheet(), command, isOfColumns(command) ? cursor.column() : cursor.row());
    const int row = std::min(cursor.row(), model.sheet().rows());
    const int column = std::min(cursor.column(), model.sheet().columns());
    cursor.select(row, column, row, column);
    model.rebuild();
    return refused;
}

std::vector<Refusal> blend(TableModel& model) {
    return stored(model, blended(model.sheet(), model.cursor().selection()));
}

template <Outward way>
std::vector<Refusal> copyOutward(TableModel& model) {
    return stored(model, copiedOutward(model.sheet(), model.cursor().selection(), way));
}

constexpr EditCommand smoothing(std::string_view name, std::string_view caption, std::string_view shortcut,
                                std::string_view meaning, std::vector<Refusal> (*run)(TableModel&)) {
    return {name, caption, shortcut, meaning, "mnuSmooth", false, false, needsBlock, run};
}

template <LineCommand command>
constexpr EditCommand line(std::string_view name, std::string_view caption, std::string_view shortcut,
                           std::string_view meaning, bool group = false) {
    return {name, caption, shortcut, meaning, {}, true, group, lineRefused<command>, changeLine<command>};
}

template <Outward way>
constexpr EditCommand outward(std::string_view name, std::string_view caption, std::string_view shortcut,
                              std::string_view meaning) {
    return {name, caption, shortcut, meaning, "mnuCopyOut", false, false, noneOutward<way>, copyOutward<way>};
}

constexpr std::array commands{
    EditCommand{"mnuInterpolate",
                "&Interpolate",
                "Ctrl+I",
                "Fill the selection from its four corners",
                {},
                false,
                false,
                needsBlock,
                interpolate},
    smoothing("mnuSmooth_1", "Smooth &1 (gentlest)", "Ctrl+Shift+1",
              "Smooth the selection, gentlest (1 of 5)", smooth<1>),
    smoothing("mnuSmooth_2", "Smooth &2", "Ctrl+Shift+2", "Smooth the selection, strength 2 of 5", smooth<2>),
    smoothing("mnuSmooth_3", "Smooth &3", "Ctrl+Shift+3", "Smooth the selection, strength 3 of 5", smooth<3>),
    smoothing("mnuSmooth_4", "Smooth &4", "Ctrl+Shift+4", "Smooth the selection, strength 4 of 5", smooth<4>),
    smoothing("mnuSmooth_5", "Smooth &5 (strongest)", "Ctrl+Shift+5",
              "Smooth the selection, strongest (5 of 5)", smooth<5>),
    EditCommand{"mnuBlend",
                "&Blend with Neighbors",
                "Ctrl+B",
                "Draw the selection half of the way to its neighbors",
                {},
                false,
                false,
                showsNoValues,
                blend},
    outward<Outward::Up>("mnuCopyOut_Up", "&Up", "Alt+Shift+Up",
                         "Copy the upper row of the selection to the upper edge"),
    outward<Outward::Down>("mnuCopyOut_Down", "&Down", "Alt+Shift+Down",
                           "Copy its lower row to the lower edge"),
    outward<Outward::Left>("mnuCopyOut_Left", "&Left", "Alt+Shift+Left",
                           "Copy its left column to the left edge"),
    outward<Outward::Right>("mnuCopyOut_Right", "&Right", "Alt+Shift+Right",
                            "Copy its right column to the right edge"),
    line<LineCommand::AddColumn>("mnuNewCol", "Add &Column", "Alt+Insert",
                                 "Put a column in front of this one", true),
    line<LineCommand::AddRow>("mnuNewRow", "Add &Row", "Alt+Shift+Insert", "Put a row below this one"),
    line<LineCommand::RemoveColumn>("mnuRmvCol", "Re&move Column", "Alt+Delete", "Take this column away"),
    line<LineCommand::RemoveRow>("mnuRmvRow", "Remo&ve Row", "Alt+Shift+Delete", "Take this row away"),
};

}  // namespace

std::span<const EditCommand> editCommands() {
    return commands;
}

const EditCommand* editCommandOf(std::string_view name) {
    const auto found = std::ranges::find(commands, name, &EditCommand::name);
    return found == commands.end() ? nullptr : &*found;
}

std::vector<Refusal> applyFormula(TableModel& model, std::string_view formula) {
    const CellFormula wanted = CellFormula::of(formula);
    if (const std::string why = showsNoValues(model); !why.empty()) throw Failure(why);
    const auto changes = changesOf(model.sheet(), model.cursor().selection(),
                                   [&](GridCell, float value) { return wanted.applied(value); });
    return stored(model, changes);
}

std::string axesQuestion(const Unit& unit) {
    if (!unit.ONFLY_MODE()) return {};
    return "The unit takes each changed cell at once, and the size of its tables only when it is programmed: "
           "until "
           "then the running engine would find values in other places than you see.\n"
           "Turn the engine off before you go on, and program the unit before it runs again.\n"
           "Change the axes of the table now?";
}

}  // namespace zentaq
