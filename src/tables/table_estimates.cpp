#include "tables/table_estimates.h"

#include "base/errors.h"
#include "base/number_text.h"
#include "tables/cell_colours.h"

namespace zentaq {

void TableEstimates::update(int row, int column) {
    if (!offered()) return;
    // Kept: estimates go by 16 rows whatever ROWS is, in the trim they read and in their place in the lists.
    const int index = sheet_.sixteenRowIndex(row, column);
    Unit& unit = sheet_.unit();
    const bool staged = sheet_.kind().fuel == FuelCells::Staged;
    skipFailing([&] { ecu_.Injector_Pulsewidth(unit, index, sheet_.shownNumber(row, 0), staged); });
    skipFailing([&] { ecu_.Injector_DutyCycle(unit, sheet_.shownNumber(0, column), index); });
}

void TableEstimates::refresh() {
    if (!offered()) return;
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column) update(row, column);
    }
}

void TableEstimates::show(int index) {
    constexpr std::int32_t alarmRed = 255;
    const int stored = index / storedColumns;
    const int row = sheet_.inverted() ? stored + 1 : storedHeaders - stored;
    const int column = index % storedColumns + 1;
    TableGrid& grid = sheet_.grid();
    if (!grid.hasCell(row, column)) return;
    if (view_ == TableView::Difference) return showDifferences();
    const bool isWidth = view_ == TableView::PulseWidth;
    const bool tooShort = isWidth && sheet_.kind().fuel != FuelCells::Staged &&
                          ecu_.pulseWidthMs(index) < sheet_.unit().get("MT");
    const bool tooLong = !isWidth && ecu_.dutyPercent(index) >= 100;
    grid.text(row, column, isWidth ? ecu_.Get_PulseWidth(index) : ecu_.Get_DutyCycle(index));
    grid.colour(row, column, tooShort || tooLong ? alarmRed : TableGrid::white);
}

void TableEstimates::showDifference(int row, int column, int index) {
    const std::string text = comparison_.differenceText(index);
    const bool more = !text.starts_with('-');
    TableGrid& grid = sheet_.grid();
    grid.text(row, column, text.empty() ? "0" : text);
    const Paint paint = text.empty() ? Paint::White : more ? Paint::LightGreen : Paint::LightRed;
    grid.colour(row, column, paintColour(paint));
}

void TableEstimates::showDifferences() {
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column)
            skipFailing([&] { showDifference(row, column, sheet_.tableIndex(row, column)); });
    }
}

void TableEstimates::showAll() {
    if (view_ == TableView::Difference) return showDifferences();
    for (int index = 0; index < storedCells; ++index) {
        skipFailing([&] { show(index); });
    }
}

std::string TableEstimates::timeOfGap() const {
    return numberText(sheet_.unit().get("scale1"));
}

std::string TableEstimates::injectorOn() const {
    return numberText(sheet_.unit().get("INJ_On"));
}

EntryOutcome TableEstimates::enterTime(std::string_view member, std::string_view typed) {
    if (auto checked = checkFilled(typed); !checked) return checked;
    if (auto checked = checkNumeric(typed); !checked) return checked;
    if (auto stored = sheet_.unit().set(member, Entry(typed)); !stored) return stored;
    sheet_.unit().host().sysLog("Change Accepted");
    refresh();
    return {};
}

}  // namespace zentaq
