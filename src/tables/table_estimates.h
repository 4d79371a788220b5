// What a table's cells show in place of their values: pulse width and duty cycle of the fuel tables, worked
// out for each cell, and what they have more than another calibration.
#pragma once

#include <string>
#include <string_view>

#include "live/ecu.h"
#include "tables/table_comparison.h"
#include "tables/table_sheet.h"

namespace zentaq {

/// What the cells show.
enum class TableView { Values = 0, PulseWidth = 1, DutyCycle = 2, Difference = 3 };

class TableEstimates {
 public:
    TableEstimates(TableSheet& sheet, Ecu& ecu, const TableComparison& comparison)
        : sheet_(sheet), ecu_(ecu), comparison_(comparison) {}

    /// The table has them.
    bool offered() const { return sheet_.kind().fuel != FuelCells::None; }
    TableView view() const { return view_; }
    bool showsValues() const { return view_ == TableView::Values; }
    void view(TableView view) { view_ = view; }

    /// Works one cell out anew; does nothing for a table without estimates.
    void update(int row, int column);
    void refresh();
    /// Puts the active view's text and colour into the cell of an index.
    void show(int index);
    void showAll();

    // ---- txtTOG and txtIOT
    std::string timeOfGap() const;
    std::string injectorOn() const;
    /// Enter in txtTOG (`scale1`) or txtIOT (`INJ_On`).
    EntryOutcome enterTime(std::string_view member, std::string_view typed);

 private:
    void showDifference(int row, int column, int index);
    void showDifferences();

    TableSheet& sheet_;
    Ecu& ecu_;
    const TableComparison& comparison_;
    TableView view_ = TableView::Values;
};

}  // namespace zentaq
