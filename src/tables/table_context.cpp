#include "tables/table_context.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"
#include "tables/table_badges.h"

namespace zentaq {

namespace {

std::string withUnit(const std::string& number, const std::string& unit) {
    return unit.empty() || unit == "-" ? number : number + " " + unit;
}

std::string placeOf(const TableSheet& sheet, int row, int column) {
    return withUnit(sheet.grid().text(row, 0), axisUnitOf(sheet, false)) + ", " +
           withUnit(sheet.grid().text(0, column), axisUnitOf(sheet, true));
}

std::string unitOfCells(TableModel& model) {
    switch (model.estimates().view()) {
        case TableView::PulseWidth:
            return "ms";
        case TableView::DutyCycle:
            return "%";
        default:
            break;
    }
    const TableSheet& sheet = model.sheet();
    if (sheet.kind().isGpo()) return "%";
    const Parameter* row = sheet.unit().find(sheet.kind().member);
    return row == nullptr ? std::string() : std::string(row->unit);
}

std::string besideOther(TableModel& model, int row, int column) {
    if (!model.comparison().on() || !model.sheet().isStored({row, column})) return {};
    const auto other = model.comparison().other(model.sheet().tableIndex(row, column));
    return other ? ", " + model.comparison().name() + ": " + numberText(*other) : std::string();
}

std::string blockLine(TableModel& model, const Selection& block) {
    const TableSheet& sheet = model.sheet();
    const float first = sheet.shownNumber(block.top, block.left);
    float lowest = first;
    float highest = first;
    double sum = 0;
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column) {
            const float value = sheet.shownNumber(row, column);
            lowest = std::min(lowest, value);
            highest = std::max(highest, value);
            sum += static_cast<double>(value);
        }
    }
    const int count = (block.bottom - block.top + 1) * (block.right - block.left + 1);
    const auto mean = static_cast<float>(sum / count);
    return numberText(count) + " cells: " + numberText(lowest) + " to " + numberText(highest) + ", mean " +
           numberText(roundTo(mean, 2));
}

bool isWhole(const TableSheet& sheet, const Selection& block) {
    return sheet.grid().hasCell(block.top, block.left) && sheet.grid().hasCell(block.bottom, block.right);
}

}  // namespace

std::string contextLine(TableModel& model) {
    const TableSheet& sheet = model.sheet();
    const Selection& block = model.cursor().selection();
    const auto [row, column] = model.cursor().cell();
    if (!sheet.grid().hasCell(row, column)) return {};
    const std::string limits =
        model.estimates().showsValues() ? " " + sheet.typingLimits().text : std::string();
    if (block.severalCells() && isWhole(sheet, block)) return blockLine(model, block) + limits;
    return placeOf(sheet, row, column) + ": " + withUnit(sheet.grid().text(row, column), unitOfCells(model)) +
           limits + besideOther(model, row, column);
}

std::string contextInWords(TableModel& model) {
    const TableSheet& sheet = model.sheet();
    const auto [row, column] = model.cursor().cell();
    std::string words = sheet.title() + ", cell in hand: row " + numberText(row) + " of " +
                        numberText(sheet.rows()) + ", column " + numberText(column) + " of " +
                        numberText(sheet.columns()) + ".";
    if (!model.estimates().showsValues())
        words += " The cells show " + std::string(badgesOf(model).view) + ".";
    if (model.cursor().editing()) words += " A value is being typed.";
    words += model.cursor().followsEngine() ? " The cursor follows the engine."
                                            : " The cursor stays where you put it.";
    return words + " Press to go to the table.";
}

std::string cellInWords(TableModel& model, int row, int column) {
    const TableSheet& sheet = model.sheet();
    if (!sheet.grid().hasCell(row, column)) return {};
    std::string words = withUnit(sheet.grid().text(row, column), unitOfCells(model)) + ", row " +
                        withUnit(sheet.grid().text(row, 0), axisUnitOf(sheet, false)) + ", column " +
                        withUnit(sheet.grid().text(0, column), axisUnitOf(sheet, true));
    if (!model.estimates().showsValues()) words += ", " + std::string(badgesOf(model).view);
    words += besideOther(model, row, column);
    const LiveMarker& marker = model.overlay().marker();
    const bool here =
        marker.visible && roundHalfEven(marker.row) == row && roundHalfEven(marker.column) == column;
    return here ? words + ", the engine is here" : words;
}

}  // namespace zentaq
