#include "tables/table_badges.h"

#include "unit/axis_kinds.h"

namespace zentaq {

namespace {

std::string_view viewOf(TableModel& model) {
    switch (model.estimates().view()) {
        case TableView::PulseWidth:
            return viewBadges[2];
        case TableView::DutyCycle:
            return viewBadges[3];
        case TableView::Difference:
            return viewBadges[4];
        case TableView::Values:
            break;
    }
    const bool absolute = model.sheet().kind().absoluteIf(model.sheet().absoluteVe()) != nullptr;
    return viewBadges[absolute ? 1 : 0];
}

std::string axisInWords(const TableSheet& sheet, bool columns) {
    const AxisKind* kind = sheet.axisKind(columns);
    return (kind == nullptr ? "unknown" : std::string(kind->name)) + " in " + axisUnitOf(sheet, columns);
}

}  // namespace

std::string axisUnitOf(const TableSheet& sheet, bool columns) {
    if (sheet.showsFahrenheit(columns)) return "F";
    const std::string unit = axisUnit(sheet.unit(), sheet.axisKind(columns));
    return unit.empty() ? "-" : unit;
}

TableBadges badgesOf(TableModel& model) {
    const std::string_view view = viewOf(model);
    const bool follows = model.cursor().followsEngine();
    return {view, view == viewBadges.front(), follows ? followBadge : holdBadge, follows};
}

std::string acrossOf(const TableSheet& sheet) {
    const AxisKind* kind = sheet.axisKind(true);
    return kind == nullptr ? "-" : std::string(kind->name);
}

std::string cornerOf(const TableSheet& sheet) {
    return axisUnitOf(sheet, false) + " \\ " + axisUnitOf(sheet, true);
}

std::string axesInWords(const TableSheet& sheet) {
    return "Rows " + axisInWords(sheet, false) + ", columns " + axisInWords(sheet, true);
}

}  // namespace zentaq
