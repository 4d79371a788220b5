// The current cell of a table's grid, the selected block, and who holds the cursor: while the user types, the
// live point may not carry it away.
#pragma once

#include "tables/live_zones.h"
#include "tables/table_grid.h"

namespace zentaq {

class TableCursor {
 public:
    explicit TableCursor(const TableGrid& grid) : grid_(grid) {}

    int row() const { return cell_.row; }
    int column() const { return cell_.column; }
    GridCell cell() const { return cell_; }
    const Selection& selection() const { return selection_; }

    /// False, and nothing moved, when the grid has no such cell.
    bool moveTo(int row, int column);
    /// Corners in any order.
    void select(int row, int column, int rowSel, int colSel);
    /// A block with the cursor anywhere in it, as a whole line has it.
    void selectAround(GridCell cell, const Selection& block);
    /// A command on the block has ended: the block stays, and what asks for a selection finds none.
    void forgetBlock() { selection_.present = false; }
    /// A block that reaches into the headers is none.
    void leaveHeaders();
    /// The live point may have carried the cursor away from a block that the user has selected; what is typed
    /// is meant for the block.
    void takeToSelection();
    /// Another grid may lack the cell and the block.
    void stayInGrid();

    // ---- Who holds it
    /// Overlay suppressed: live tracking does not move the cursor while the user types. The state before is
    /// kept as the one that an edit ends with.
    void Set_KeyDownFlag(bool suppressed);
    bool overlaySuppressed() const { return suppressed_; }
    /// The user's hand is on the grid: suppresses the overlay until `letGo`. Held once more it still goes
    /// back to the state before the first.
    void hold();
    /// The edit is over, or the user lets go: the overlay as it was before the cursor was held. Does nothing
    /// to an overlay that the user has switched off.
    void letGo();
    /// Switches the overlay on or off for good; what was held is forgotten.
    void toggleOverlay();
    /// An open edit box holds its cell even if the overlay is switched on from the menu meanwhile.
    void beginEdit() { editing_ = true; }
    bool editing() const { return editing_; }
    bool followsEngine() const { return !suppressed_ && !editing_; }

    /// Held for as long as this lives, whatever has held it before.
    class Hold {
     public:
        explicit Hold(TableCursor& cursor)
            : cursor_(cursor), suppressed_(cursor.suppressed_), previous_(cursor.previous_) {
            cursor.hold();
        }
        ~Hold() {
            cursor_.suppressed_ = suppressed_;
            cursor_.previous_ = previous_;
        }
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

     private:
        TableCursor& cursor_;
        bool suppressed_;
        bool previous_;
    };

 private:
    void selectCell() { select(row(), column(), row(), column()); }

    const TableGrid& grid_;
    GridCell cell_;
    Selection selection_;
    bool suppressed_ = false;
    bool previous_ = false;
    bool editing_ = false;  ///< what is typed belongs to the cell where it began
};

}  // namespace zentaq
