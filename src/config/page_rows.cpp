#include "config/page_rows.h"

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "config/tree.h"
#include "unit/table_kinds.h"

namespace zentaq {

namespace {

using Rows = std::vector<PageRow>;

void addPlain(Rows& rows, std::string caption, std::string text) {
    PageRow& row = rows.emplace_back();
    row.caption = std::move(caption);
    row.text = std::move(text);
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

}  // namespace

std::string withoutParentheses(std::string limits) {
    if (limits.starts_with('(')) limits.erase(0, 1);
    if (limits.ends_with(')')) limits.pop_back();
    return limits;
}

std::vector<PageRow> pageRows(Unit& unit, int page, const std::string& file) {
    if (!unit.kind().hasCalibration) return {};
    return page == overviewPage ? overviewRows(unit, file) : std::vector<PageRow>();
}

}  // namespace zentaq
