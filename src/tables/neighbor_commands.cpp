#include "tables/neighbor_commands.h"

#include "base/rounding.h"

namespace zentaq {

namespace {

float meanOfNeighbors(const TableSheet& sheet, GridCell cell) {
    double sum = 0;
    int count = 0;
    for (int row = cell.row - 1; row <= cell.row + 1; ++row) {
        for (int column = cell.column - 1; column <= cell.column + 1; ++column) {
            if (GridCell{row, column} == cell || !sheet.isStored({row, column})) continue;
            sum += static_cast<double>(sheet.value(sheet.tableIndex(row, column)));
            ++count;
        }
    }
    return static_cast<float>(sum / count);
}

}  // namespace

std::vector<CellChange> blended(const TableSheet& sheet, const Selection& block) {
    return changesOf(sheet, block, [&](GridCell cell, float value) {
        return roundTo((value + meanOfNeighbors(sheet, cell)) / 2, sheet.kind().commandDecimals());
    });
}

std::vector<CellChange> copiedOutward(const TableSheet& sheet, const Selection& block, Outward way) {
    Selection rest = block;
    if (way == Outward::Up) rest.top = 1, rest.bottom = block.top - 1;
    if (way == Outward::Down) rest.top = block.bottom + 1, rest.bottom = sheet.rows();
    if (way == Outward::Left) rest.left = 1, rest.right = block.left - 1;
    if (way == Outward::Right) rest.left = block.right + 1, rest.right = sheet.columns();
    return changesOf(sheet, rest, [&](GridCell cell, float /*value*/) {
        if (way == Outward::Up) cell.row = block.top;
        if (way == Outward::Down) cell.row = block.bottom;
        if (way == Outward::Left) cell.column = block.left;
        if (way == Outward::Right) cell.column = block.right;
        return sheet.value(sheet.tableIndex(cell.row, cell.column));
    });
}

}  // namespace zentaq
