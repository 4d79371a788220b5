#include "tables/auto_ve_run.h"

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

AutoVeTable AutoVeRun::table() const {
    const auto shown = [&](bool columns) {
        const auto& headers = sheet_.headers(columns);
        const int count = columns ? sheet_.columns() : sheet_.rows();
        return std::vector<float>(headers.begin(), headers.begin() + count);
    };
    AutoVeTable made{shown(true), shown(false), sheet_.baseCopies(), 0};
    skipFailing([&] { made.limit = sheet_.unit().get("EGO_LMT"); });
    return made;
}

std::vector<GridCell> AutoVeRun::Auto_VE(float rpm, float map, float correction) {
    return Auto_VE_V2(rpm, map, correction);
}

std::vector<GridCell> AutoVeRun::Auto_VE_V2(float rpm, float map, float correction) {
    if (sheet_.table() != "VE") return {};
    return show(rule_.add(table(), {rpm, map, correction}));
}

std::vector<GridCell> AutoVeRun::Auto_VE_V1(float rpm, float map, float correction) {
    const auto change = rule_.addByCount(table(), {rpm, map, correction});
    if (!change) return {};
    return show({*change});
}

std::vector<GridCell> AutoVeRun::show(const std::vector<AutoVeChange>& changes) {
    std::vector<GridCell> cells;
    for (const AutoVeChange& change : changes) {
        // Kept: counted from the bottom also where the table stands upside down.
        const GridCell cell{sheet_.rows() - change.y, change.x + 1};
        if (!sheet_.grid().hasCell(cell.row, cell.column)) continue;
        sheet_.grid().text(cell.row, cell.column, numberText(change.value));
        if (change.colour) sheet_.grid().colour(cell.row, cell.column, *change.colour);
        cells.push_back(cell);
    }
    return cells;
}

}  // namespace zentaq
