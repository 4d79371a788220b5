#include "config/page_rows.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "config/pin_rows.h"
#include "config/shown_value.h"
#include "config/tree.h"
#include "unit/table_kinds.h"

namespace zentaq {

namespace {

constexpr int notesPage = 15;

using Rows = std::vector<PageRow>;

void addPlain(Rows& rows, std::string caption, std::string text) {
    PageRow& row = rows.emplace_back();
    row.caption = std::move(caption);
    row.text = std::move(text);
}

bool isSwitch(const Field& field) {
    return field.kind == FieldKind::Option || field.kind == FieldKind::Check;
}

/// What a cell of a curve stands at, "-40 °C"; else which one it is.
std::string stopText(const Unit& unit, const Field& field) {
    if (field.axis.empty()) return numberText(field.element + 1);
    const std::string in = shownStopUnit(unit, fieldOf(field.control)->axis);
    return in.empty() ? field.axis : field.axis + " " + in;
}

void addElement(Rows& rows, const Unit& unit, Field field, const Parameter& parameter) {
    field.limits = withoutParentheses(field.limits);
    if (field.element == 0) {
        rows.push_back({field, {}});
        rows.back().caption = parameter.meaning.empty() ? parameter.name : parameter.meaning;
    }
    PageRow& row = rows.back();
    if (parameter.count == 1) return;
    field.caption = stopText(unit, field);
    row.elements.push_back(std::move(field));
    row.text = numberText(static_cast<int>(row.elements.size())) + " values";
    row.limits.clear();
    row.onTheFly = false;
}

/// A switch of a value that stands on the page is told by the value; one of a bare bit has no member to be
/// told by.
Rows memberRows(Unit& unit, int page) {
    const Display shown = displayOfPage(unit, page);
    Rows rows;
    for (const PageNotice& notice : shown.notices) addPlain(rows, "", notice.text);
    for (const Field& field : shown.fields) {
        const Parameter* parameter = unit.find(field.member);
        const auto sameMember = [&](const Field& other) {
            return other.member == field.member && other.control != field.control;
        };
        const bool toldByBox = isSwitch(field) && std::ranges::any_of(shown.fields, [&](const Field& other) {
                                   return sameMember(other) && !isSwitch(other);
                               });
        const bool told = std::ranges::any_of(rows, sameMember);
        if (parameter == nullptr || toldByBox || told) continue;
        addElement(rows, unit, field, *parameter);
    }
    return rows;
}

Rows overviewRows(Unit& unit, const std::string& file) {
    Rows rows;
    addPlain(rows, "Unit", std::string(unit.kind().model));
    addPlain(rows, "Calibration", std::string(trimmed(unit.BiName())));
    addPlain(rows, "File", file);
    addPlain(rows, "Firmware release", numberText(unit.FW_Release()));
    addPlain(rows, "Firmware build", numberText(unit.FW_Build()));
    addPlain(rows, "Serial number of the unit", unit.Serial());
    for (const char* table : {"VE", "ADV", "AFR", "SPW"}) {
        if (!hasTable(unit.kind(), table)) continue;
        skipFailing([&] {
            const int across = unit.GET_TBL_DIMENSIONS(table, "COLS");
            const int down = unit.GET_TBL_DIMENSIONS(table, "ROWS");
            addPlain(rows, tableTitle(table), numberText(across) + " columns, " + numberText(down) + " rows");
        });
    }
    return rows;
}

Rows notesRows(Unit& unit) {
    Rows rows;
    for (const std::string& line : split(unit.NOTES_TEXT(), '\n')) {
        addPlain(rows, rows.empty() ? "Notes" : "", std::string(trimmed(line)));
    }
    return rows;
}

}  // namespace

std::string withoutParentheses(std::string limits) {
    if (limits.starts_with('(')) limits.erase(0, 1);
    if (limits.ends_with(')')) limits.pop_back();
    return limits;
}

std::vector<PageRow> pageRows(Unit& unit, int page, const std::string& file) {
    if (!unit.kind().hasCalibration) return {};
    if (page == overviewPage) return overviewRows(unit, file);
    if (page == notesPage) return notesRows(unit);
    if (page == managerPage) return pinRows(unit);
    return memberRows(unit, page);
}

}  // namespace zentaq
