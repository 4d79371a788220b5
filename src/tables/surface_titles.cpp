#include "tables/surface_titles.h"

#include "base/number_text.h"
#include "tables/table_badges.h"
#include "unit/axis_kinds.h"

namespace zentaq {

namespace {

constexpr double petrolRatio = 14.64;

std::string fuelText(double ratio) {
    return ratio == petrolRatio ? "Gasoline" : "Fuel";
}

std::vector<std::string> ratioLines(Unit& unit) {
    const double ratio = plainNumber(unit.get("AFR"));
    return {"Desired Air/Fuel Ratio", fuelText(ratio) + " " + formatNumber(ratio, "#0.00")};
}

void nameTable(SurfaceTitles& titles, const TableSheet& sheet) {
    const std::string& table = sheet.table();
    titles.shortName = sheet.title();
    if (table == "VE") {
        titles.lines = {"Volumetric", "Efficiency", "(% FPW)"};
        titles.shortName = "VE Enhanced";
    } else if (table == "SPW") {
        titles.lines = {"Staged", "Pulsewidth"};
        titles.shortName = "SG Enhanced";
    } else if (table == "ADV") {
        titles.lines = {"Main Ignition", "Advance", "(degrees BTDC)"};
    } else if (table == "AFR") {
        titles.lines = ratioLines(sheet.unit());
    } else {
        titles.lines = {"General Purpose Output"};
    }
}

/// An output table may stand on other axes than speed and pressure.
std::string axisTitle(const TableSheet& sheet, bool columns) {
    const AxisKind* kind = sheet.axisKind(columns);
    const std::string unit = axisUnitOf(sheet, columns);
    if (kind == nullptr) return "-";
    if (kind->name == "RPM") return "Engine Speed (RPM)";
    if (kind->name == "BLEND MAP") return "MAP (" + unit + ")";
    return std::string(kind->name) + " (" + unit + ")";
}

}  // namespace

SurfaceTitles surfaceTitles(const TableSheet& sheet, TableView view) {
    SurfaceTitles titles;
    nameTable(titles, sheet);
    titles.hint = editableHint;
    if (view == TableView::PulseWidth) {
        titles.lines = {"Fundamental", "Pulsewidth (ms)"};
        titles.shortName = "Fundamental PW";
        titles.hint = derivedHint;
    }
    if (view == TableView::DutyCycle) {
        titles.lines = {"Duty Cycle (%)"};
        titles.shortName = "Duty Cycle";
        titles.hint = derivedHint;
    }
    titles.columnAxis = axisTitle(sheet, true);
    titles.rowAxis = axisTitle(sheet, false);
    return titles;
}

}  // namespace zentaq
