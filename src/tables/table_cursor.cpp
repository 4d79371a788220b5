#include "tables/table_cursor.h"

#include <algorithm>

namespace zentaq {

bool TableCursor::moveTo(int row, int column) {
    if (!grid_.hasCell(row, column)) return false;
    cell_ = {row, column};
    if (!selection_.present) selection_ = {row, row, column, column, false};
    return true;
}

void TableCursor::select(int row, int column, int rowSel, int colSel) {
    if (grid_.hasCell(row, column)) cell_ = {row, column};
    selection_.top = std::min(row, rowSel);
    selection_.bottom = std::max(row, rowSel);
    selection_.left = std::min(column, colSel);
    selection_.right = std::max(column, colSel);
    selection_.present = row != rowSel || column != colSel;
}

void TableCursor::selectAround(GridCell cell, const Selection& block) {
    select(block.top, block.left, block.bottom, block.right);
    if (grid_.hasCell(cell.row, cell.column)) cell_ = cell;
}

void TableCursor::leaveHeaders() {
    if (selection_.top == 0 || selection_.left == 0) selectCell();
}

void TableCursor::takeToSelection() {
    if (!selection_.holds(cell_) && grid_.hasCell(selection_.top, selection_.left))
        cell_ = {selection_.top, selection_.left};
}

void TableCursor::stayInGrid() {
    if (!grid_.hasCell(cell_.row, cell_.column)) cell_ = {};
    if (!grid_.hasCell(selection_.bottom, selection_.right)) selectCell();
}

void TableCursor::Set_KeyDownFlag(bool suppressed) {
    previous_ = suppressed_;
    suppressed_ = suppressed;
}

void TableCursor::hold() {
    if (!suppressed_) Set_KeyDownFlag(true);
}

void TableCursor::letGo() {
    editing_ = false;
    suppressed_ = previous_;
}

void TableCursor::toggleOverlay() {
    Set_KeyDownFlag(!suppressed_);
    previous_ = suppressed_;
}

}  // namespace zentaq
