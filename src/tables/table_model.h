// frmTABLE without its window: the sheet of one table, its cursor, its estimates, the live point over it, and
// what the user does to it. What touches several of them is here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tables/table_editor.h"

namespace zentaq {

/// What a key pressed on the grid asks of the window; everything else has been done.
enum class KeyResult {
    Done,       ///< the model changed: draw it anew
    Unload,     ///< "X": close the window
    StartEdit,  ///< move the edit box over the current cell and open it with this key
    Nudge,      ///< "." or ",": call `nudge`
    Ignored
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
    TableModel(Unit& unit, Ecu& ecu, const LiveValues& live, PaintMemory& paintMemory)
        : sheet_(unit),
          comparison_(sheet_),
          cursor_(sheet_.grid()),
          estimates_(sheet_, ecu, comparison_),
          overlay_(sheet_, estimates_, cursor_, live, paintMemory),
          editor_(sheet_, cursor_, estimates_, overlay_) {}
    TableModel(const TableModel&) = delete;
    TableModel& operator=(const TableModel&) = delete;

    TableSheet& sheet() { return sheet_; }
    const TableSheet& sheet() const { return sheet_; }
    const TableComparison& comparison() const { return comparison_; }
    TableCursor& cursor() { return cursor_; }
    TableEstimates& estimates() { return estimates_; }
    LiveOverlay& overlay() { return overlay_; }
    TableEditor& editor() { return editor_; }

    /// Shows a table, with its values: a view stays only while the table does. As TableSheet::read().
    std::vector<Refusal> Setup_Grid(std::string_view table, std::string_view title, bool inverted);
    std::vector<Refusal> rebuild() { return Setup_Grid({}, {}, sheet_.inverted()); }
    KeyResult keyOnGrid(char key);

    // ---- Views. As Setup_Grid(), which brings the values back.
    std::vector<Refusal> showView(TableView view);
    std::vector<Refusal> togglePulsewidth() { return toggleView(TableView::PulseWidth); }
    std::vector<Refusal> toggleDutyCycle() { return toggleView(TableView::DutyCycle); }
    std::vector<Refusal> toggleAbsolute();
    std::vector<Refusal> invert();
    std::vector<Refusal> home();   ///< values, not inverted
    std::vector<Refusal> reset();  ///< values
    /// Enter in txtTOG or txtIOT; an active view follows.
    EntryOutcome enterTime(std::string_view member, std::string_view typed);

    // ---- Beside another calibration
    /// As TableComparison::with(): the cells bear notes of what is different from now on.
    void compare(const Calibration& other, const UnitKind& kind, std::string name);
    void compareNoMore();
    /// The notes follow the cells.
    void noteDifferences();
    /// Nothing while there is nothing to compare with.
    std::vector<Refusal> toggleDifference();

    // ---- The whole grid
    /// Toolbar "Save": from an active view, goes back to values first.
    std::vector<Refusal> save();
    /// "Discard": the values of the last build.
    std::vector<Refusal> restore();
    /// A new axis kind from the toolbar. Key "X_RPM" or "Y_CLT".
    std::vector<Refusal> pickAxis(std::string_view key);

    // ---- What the window offers
    PopupItems popupItems() const;
    ToolbarItems toolbarItems() const;

 private:
    std::vector<Refusal> toggleView(TableView view);

    TableSheet sheet_;
    TableComparison comparison_;
    TableCursor cursor_;
    TableEstimates estimates_;
    LiveOverlay overlay_;
    TableEditor editor_;
};

}  // namespace zentaq
