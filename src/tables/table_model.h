// frmTABLE without its window: the grid of one table, the editing of its cells and headers, the live marker.
// Rows and columns are those of the grid, 1 at the top and the left; a table index is row * 16 + column in
// store.
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "live/ecu.h"
#include "tables/cell_colours.h"
#include "tables/live_zones.h"
#include "tables/table_grid.h"
#include "tables/table_kind.h"
#include "unit/unit.h"

namespace zentaq {

/// The selected block of cells.
struct Selection {
    int top = 1;
    int bottom = 1;
    int left = 1;
    int right = 1;
    bool present = false;  ///< more than one cell
};

/// Setting TableColor: how live tracking paints.
enum class TableColour { Normal = 0, Afr = 1 };

/// What the cells show.
enum class TableView { Values = 0, PulseWidth = 1, DutyCycle = 2 };

/// The cross-hair, in cells of the grid: column 1.5 stands between the first two column headers.
struct LiveMarker {
    bool visible = false;
    double row = 1;
    double column = 1;
};

/// What a key pressed on the grid asks of the window; everything else has been done.
enum class KeyResult {
    Done,       ///< the model changed: draw it anew
    Unload,     ///< "X": close the window
    StartEdit,  ///< move the edit box over the current cell and open it with this key
    Nudge,      ///< "." or ",": call `nudge`
    Ignored
};

/// How the edit box opens.
struct EditStart {
    std::string text;
    int selectedCharacters = 0;  ///< from the left
};

/// An axis as it would stand after an entry, from its lowest stop on, and the place of the entry.
struct AxisEntry {
    std::vector<std::string> fields;
    int index = 0;
};

/// What the pop-up menu of the grid offers.
struct PopupItems {
    bool rowsAndColumns = false;  ///< mnuNewCol, mnuNewRow, mnuRmvCol, mnuRmvRow are visible
    bool newColumn = false;       ///< enabled, likewise the next three
    bool newRow = false;
    bool removeColumn = false;
    bool removeRow = false;
    bool interpolateAndSmooth = false;  ///< visible
};

/// What the toolbar and the fields beside the grid show.
struct ToolbarItems {
    bool onFlyItems = false;  ///< the items below the first menu are enabled
    bool fuelViews = false;   ///< "Pulsewidth", "DutyCycle", txtTOG, txtIOT are visible
    bool axisButtons = false;
    std::string columnAxis;      ///< "X: RPM"
    std::string rowAxis;         ///< "Y: BLEND MAP"
    std::string displayCaption;  ///< lblDspTable; empty: not shown
    std::string overlayItem;     ///< first item of the overlay menu
};

class TableModel {
 public:
    TableModel(Unit& unit, Ecu& ecu, const LiveValues& live, PaintMemory& paintMemory);

    // ---- Building
    /// Fills the grid from the Unit object. An empty name or title keeps the current one. Shows values; a
    /// view flag stays only while the table does: another table begins with its values. Throws NoSuchMember
    /// for a name that is no table, and whatever keeps a damaged calibration from being shown; nothing has
    /// changed then. Answers the stops that were refused where an output table got new axes.
    std::vector<Refusal> Setup_Grid(std::string_view table, std::string_view title, bool inverted);
    void rebuild() { Setup_Grid({}, {}, inverted_); }

    const TableGrid& grid() const { return grid_; }
    TableGrid& grid() { return grid_; }
    const std::string& table() const { return table_; }
    const std::string& title() const { return title_; }
    int rows() const { return grid_.rows(); }
    int columns() const { return grid_.columns(); }
    bool inverted() const { return inverted_; }
    bool absoluteVe() const { return absoluteVe_; }
    /// Headers as shown, entry 0 the first of the list: the lowest row, the leftmost column.
    const std::vector<float>& rowHeaders() const { return rowHeaders_; }
    const std::vector<float>& columnHeaders() const { return columnHeaders_; }
    const LiveZones& zones() const { return zones_; }
    Unit& unit() { return unit_; }

    // ---- Where a cell is stored
    /// (ROWS - row) * 16 + column - 1, or counted from the top when inverted.
    int tableIndex(int row, int column) const;
    /// (16 - row) * 16 + column - 1 whatever ROWS is: the rule of the nudge keys and of the fuel estimates.
    int sixteenRowIndex(int row, int column) const;

    // ---- Values. `column` counts from 0 here.
    float get_binValueByIndex(std::string_view table, int index) const;
    EntryOutcome set_BinValueByIndex(std::string_view table, float value, int index);
    /// 0 for an index of 256 or above.
    float get_BinValue(std::string_view table, int row, int column) const;
    /// Only indexes 0 to 255 reach the table.
    void set_BinValue(std::string_view table, int row, int column, float value);

    // ---- Cursor and selection
    int currentRow() const { return cursor_.row; }
    int currentColumn() const { return cursor_.column; }
    /// False, and nothing moved, when the grid has no such cell.
    bool moveTo(int row, int column);
    /// Corners in any order.
    void select(int row, int column, int rowSel, int colSel);
    const Selection& selection() const { return selection_; }

    // ---- Keys and typing
    KeyResult keyOnGrid(char key);
    /// The text that the edit box opens with, or nothing when this key does not start editing. Until the
    /// edit ends (`enterValue`, `leaveEdit`, `letCursorGo`) live tracking leaves the cursor alone.
    std::optional<EditStart> startEdit(char key);
    /// Why a key begins no number.
    static EntryOutcome checkFirstKey(char key);
    /// Whether the box may hold a text while a user types.
    static bool mayBeTyped(std::string_view text);
    /// Enter in the edit box: checks in order, then writes to every cell of the selection.
    EntryOutcome enterValue(std::string_view typed);
    /// Leaving the box without Enter: the text goes to the cell with no check and nothing is written.
    void leaveEdit(std::string_view typed);
    /// The limits of a typed value, with the text of the range check.
    Limits typingLimits() const;
    /// "." and ",": adds a step to every selected cell, stopping at the first that would leave its range.
    EntryOutcome nudge(bool up);
    /// Writes one value; `silent` keeps it off the wire. Ends with the overlay as it was before editing.
    void silentWrite(float value, int index, bool silent);

    // ---- Headers
    /// "Enter a New RPM Header Value..." for a header cell; nothing for other cells or in an active view.
    std::optional<std::string> headerPrompt(int row, int column) const;
    /// The header's axis with that answer in its place; nothing for an answer that enterHeader() passes over.
    std::optional<AxisEntry> axisEntry(int row, int column, std::string_view typed) const;
    /// What the tuner is told of a header that is not below the next one of its axis; empty where it is.
    std::string axisWarning(int row, int column) const;
    /// The answer to that prompt; taken when the header changed.
    EntryOutcome enterHeader(int row, int column, std::string_view typed);
    /// A new axis kind from the toolbar. Key "X_RPM" or "Y_CLT".
    std::vector<Refusal> pickAxis(std::string_view key);

    // ---- Clipboard: cells separated by tabs, rows by line ends
    std::string clip() const;  ///< the selected cells
    /// Fills cells from the top left of the selection on, within a selection of more than one cell or else to
    /// the edge of the grid, and writes the grid back as saveEntireTable() does.
    /// Does nothing in a view: its cells are estimates, which written back would be taken for values.
    std::vector<Refusal> paste(std::string_view clipboard);

    // ---- The whole grid
    /// Writes back every cell whose text is not what the calibration holds; a refused cell keeps its stored
    /// value and shows it again, and the rest goes on.
    std::vector<Refusal> saveEntireTable();
    /// Toolbar "Save": from an active view, goes back to values first.
    std::vector<Refusal> save();
    /// Brings back the values of the last build.
    /// Kept: they were noted by a running count of shown cells and come back by table index, so in a table of
    /// fewer than 16 columns they land elsewhere.
    std::vector<Refusal> restore();
    /// Cells stored since the window was made, whoever stored them: it moves when the calibration was
    /// changed.
    int cellsWritten() const { return cellsWritten_; }
    float undoCopy(int index) const { return undo_.at(static_cast<std::size_t>(index)); }
    float baseCopy(int index) const { return base_.at(static_cast<std::size_t>(index)); }

    // ---- Views
    TableView view() const { return view_; }
    void showView(TableView view);
    void togglePulsewidth();
    void toggleDutyCycle();
    void toggleAbsolute();
    void invert();
    void home();   ///< values, not inverted
    void reset();  ///< values
    void refreshEstimates();

    /// txtTOG and txtIOT, for "VE" and "SPW".
    std::string timeOfGap() const;
    std::string injectorOn() const;
    /// Enter in txtTOG (`scale1`) or txtIOT (`INJ_On`).
    EntryOutcome enterTime(std::string_view member, std::string_view typed);

    // ---- Colours and live tracking
    TableColour colourMode() const { return colourMode_; }
    void colourMode(TableColour mode) { colourMode_ = mode; }
    /// Shades by value; does nothing unless the table is "VE" or all go white.
    void colorizeGraph(bool white);
    /// Paints all cells from the paint memory.
    void repaint();
    void whiteOut();
    /// The paint memory was erased by someone else: shades by value, and what it holds by now.
    void paintAnew();
    /// Moves marker and cursor to the live point and paints its cell. Both 0: take the live values.
    void Show_Current_Activity(float x, float y);
    const LiveMarker& marker() const { return marker_; }
    /// Overlay suppressed: live tracking does not move the cursor while the user types. The state before is
    /// kept as the one that an edit ends with.
    void Set_KeyDownFlag(bool suppressed);
    bool overlaySuppressed() const { return overlaySuppressed_; }
    /// The user's hand is on the grid: suppresses the overlay until `letCursorGo`. Held once more it still
    /// goes back to the state before the first.
    void holdCursor();
    /// Keeps the live point from the cursor for a while, whatever has held it before.
    class CursorHold {
     public:
        explicit CursorHold(TableModel& model)
            : model_(model), suppressed_(model.overlaySuppressed_), previous_(model.previousOverlay_) {
            model.holdCursor();
        }
        ~CursorHold() {
            model_.overlaySuppressed_ = suppressed_;
            model_.previousOverlay_ = previous_;
        }
        CursorHold(const CursorHold&) = delete;
        CursorHold& operator=(const CursorHold&) = delete;

     private:
        TableModel& model_;
        bool suppressed_;
        bool previous_;
    };
    /// The edit is over, or the user lets go: the overlay as it was before the cursor was held. Does nothing
    /// to an overlay that the user has switched off.
    void letCursorGo();
    /// Switches the overlay on or off for good; what was held is forgotten.
    void toggleOverlay();
    bool autoVeActive() const { return autoVeActive_; }
    void autoVeActive(bool active) { autoVeActive_ = active; }

    // ---- What the window offers
    PopupItems popupItems() const;
    ToolbarItems toolbarItems() const;

 private:
    const TableKind& kind() const;
    bool showsFahrenheit(std::string_view axis) const;
    int storedRow(int gridRow) const;
    int gridRow(int storedRow) const;
    void fillRowHeaders();
    void fillColumnHeaders();
    void fillCells();
    std::optional<EditStart> openedBy(char key);
    void shadeCell(int row, int column, double midpoint);
    void shadeWritten(std::string_view table, int index);
    double shadeMidpoint() const;
    void buildZones();
    std::string axesText() const;
    void repaintRemembered();
    float cellNumber(int row, int column) const;
    void takeCursorToSelection();
    Limits limits() const { return cellLimits(unit_, table_, absoluteVe_); }
    EntryOutcome nudgeCell(int row, int column, double step);
    EntryOutcome writeCell(float value, int index, bool silent);
    bool holdsAlready(float value, int index) const;
    EntryOutcome saveCell(int row, int column, const Limits& limits);
    void showStored(int row, int column);
    void updateEstimate(int row, int column);
    void showEstimate(int index);
    bool hasEstimates() const;
    bool toggleView(TableView view);
    void leaveViews();
    float liveValueOf(std::string_view axis) const;
    void placeMarker(float x, float y);
    void paintCurrent(Paint paint);
    void paintByAfr();
    EntryOutcome enterMainHeader(bool isColumn, int line, std::string_view typed);
    EntryOutcome enterStop(bool isColumn, int line, std::string_view typed);

    Unit& unit_;
    Ecu& ecu_;
    const LiveValues& live_;
    PaintMemory& paintMemory_;

    std::string table_ = "VE";
    std::string title_;
    TableGrid grid_;
    GridCell cursor_;
    Selection selection_;
    bool inverted_ = false;
    bool absoluteVe_ = false;
    TableView view_ = TableView::Values;
    TableColour colourMode_ = TableColour::Normal;
    bool overlaySuppressed_ = false;
    bool previousOverlay_ = false;
    bool editing_ = false;  ///< the edit box is open: what is typed belongs to the cell where it began
    bool autoVeActive_ = false;
    int cellsWritten_ = 0;
    // One entry beyond the most lines: a header edit writes one place past its own.
    std::vector<float> rowHeaders_ = std::vector<float>(mostLines + 1);
    std::vector<float> columnHeaders_ = std::vector<float>(mostLines + 1);
    std::array<float, storedCells> undo_{};
    std::array<bool, storedCells> undoFilled_{};
    std::array<float, storedCells + 1> base_{};
    LiveZones zones_;
    LiveMarker marker_;
};

}  // namespace zentaq
