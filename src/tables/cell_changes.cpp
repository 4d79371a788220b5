#include "tables/cell_changes.h"

#include "base/errors.h"

namespace zentaq {

std::vector<Refusal> refusedOf(const TableSheet& sheet, std::span<const CellChange> changes) {
    const Limits limits = sheet.limits();
    std::vector<Refusal> refused;
    for (const auto& [cell, value] : changes) {
        // What is not written is not refused: it may be what no entry gives.
        if (sheet.holdsAlready(value, sheet.tableIndex(cell.row, cell.column))) continue;
        noteRefusal(refused, checkLimits(value, limits), cellName(cell.row, cell.column));
    }
    return refused;
}

std::vector<Refusal> storeAll(TableSheet& sheet, std::span<const CellChange> changes) {
    auto refused = refusedOf(sheet, changes);
    if (!refused.empty()) return refused;
    for (const CellChange& change : changes) {
        const GridCell cell = change.cell;
        const int index = sheet.tableIndex(cell.row, cell.column);
        skipFailing([&] {
            if (sheet.holdsAlready(change.value, index)) return;
            noteRefusal(refused, sheet.writeCell(change.value, index, false),
                        cellName(cell.row, cell.column));
        });
        sheet.showStored(cell.row, cell.column);
    }
    return refused;
}

std::vector<CellChange> changesOf(const TableSheet& sheet, const Selection& block,
                                  const std::function<float(GridCell cell, float value)>& change) {
    std::vector<CellChange> changes;
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column) {
            const GridCell cell{row, column};
            if (!sheet.isStored(cell)) continue;
            skipFailing([&] {
                changes.push_back({cell, change(cell, sheet.value(sheet.tableIndex(row, column)))});
            });
        }
    }
    return changes;
}

}  // namespace zentaq
