// One table as texts beside its calibration: headers and cells of the grid, where each is stored, reading and
// writing. Rows and columns are those of the grid, 1 at the top and the left; a table index is row * 16 +
// column in store.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tables/live_zones.h"
#include "tables/table_cells.h"
#include "tables/table_grid.h"

namespace zentaq {

struct AxisKind;

class TableSheet {
 public:
    explicit TableSheet(Unit& unit) : unit_(unit) {}

    /// Reads the table. An empty name or title keeps the current one. Throws NoSuchMember for a name that is
    /// no table, and whatever keeps a damaged calibration from being shown; nothing has changed then. Answers
    /// the stops that were refused where an output table got new axes.
    std::vector<Refusal> read(std::string_view table, std::string_view title, bool inverted);

    Unit& unit() const { return unit_; }
    const TableKind& kind() const;
    const std::string& table() const { return content_.table; }
    const std::string& title() const { return content_.title; }
    const TableGrid& grid() const { return content_.grid; }
    TableGrid& grid() { return content_.grid; }
    int rows() const { return grid().rows(); }
    int columns() const { return grid().columns(); }
    bool inverted() const { return content_.inverted; }
    /// VE as 100 and the stored value.
    bool absoluteVe() const { return absoluteVe_; }
    void absoluteVe(bool on) { absoluteVe_ = on; }

    // ---- Where a cell is stored
    /// (ROWS - row) * 16 + column - 1, or counted from the top when inverted.
    int tableIndex(int row, int column) const { return storedRow(row) * storedColumns + column - 1; }
    /// (16 - row) * 16 + column - 1 whatever ROWS is: the rule of the nudge keys and of the fuel estimates.
    int sixteenRowIndex(int row, int column) const;
    int storedRow(int gridRow) const { return inverted() ? gridRow - 1 : rows() - gridRow; }
    int gridRow(int storedRow) const { return inverted() ? storedRow + 1 : rows() - storedRow; }

    /// A table may ask for more rows and columns than are stored.
    bool isStored(GridCell cell) const {
        return grid().hasCell(cell.row, cell.column) && cell.column <= storedColumns &&
               storedRow(cell.row) < storedHeaders;
    }

    /// What of a block is stored; it may be none.
    Selection storedPart(Selection block) const;

    // ---- Values of any table. `column` counts from 0 here.
    float get_binValueByIndex(std::string_view table, int index) const;
    EntryOutcome set_BinValueByIndex(std::string_view table, float value, int index);
    /// 0 for an index of 256 or above. Kept: by row and column for the commands of a later release, as below.
    float get_BinValue(std::string_view table, int row, int column) const;
    /// Only indexes 0 to 255 reach the table.
    EntryOutcome set_BinValue(std::string_view table, int row, int column, float value);
    /// A stored value of any table: VE counted from 0, whatever the view shows.
    EntryOutcome storeValue(std::string_view table, float value, int index);
    /// Told of each cell that was stored.
    void onWritten(std::function<void(std::string_view table, int index)> told) {
        written_ = std::move(told);
    }
    /// Cells stored so far, whoever stored them: it moves when the calibration was changed.
    int cellsWritten() const { return cellsWritten_; }

    // ---- Cells of this table
    float value(int index) const { return get_binValueByIndex(table(), index); }
    /// Writes one value; `silent` keeps it off the wire.
    EntryOutcome writeCell(float value, int index, bool silent);
    Limits limits() const { return cellLimits(unit_, table(), absoluteVe_); }
    /// The limits of a typed value, with the text of the range check.
    Limits typingLimits() const { return zentaq::typingLimits(unit_, table(), absoluteVe_); }
    /// The number that the grid shows; 0 for a text that is none.
    float shownNumber(int row, int column) const;
    void showStored(int row, int column);
    /// The calibration shows this value already, in the digits that a cell shows.
    bool holdsAlready(float value, int index) const;

    // ---- The whole grid
    /// Writes back every cell whose text is not what the calibration holds; a refused cell keeps its stored
    /// value and shows it again, and the rest goes on.
    std::vector<Refusal> saveEntireTable();
    /// Brings back the values that were read last.
    /// Kept: they were noted by a running count of shown cells and come back by table index, so in a table of
    /// fewer than 16 columns they land elsewhere.
    std::vector<Refusal> restore();
    float undoCopy(int index) const { return content_.undo.at(static_cast<std::size_t>(index)); }
    /// What a table that tunes itself counts its changes from.
    std::span<const float> baseCopies() const { return content_.base; }

    // ---- Axes
    /// Headers as shown, entry 0 the first of the list: the lowest row, the leftmost column.
    const std::vector<float>& headers(bool columns) const {
        return columns ? content_.columnHeaders : content_.rowHeaders;
    }
    std::vector<float>& headers(bool columns) {
        return columns ? content_.columnHeaders : content_.rowHeaders;
    }
    /// nullptr for an axis word that names none.
    const AxisKind* axisKind(bool columns) const;
    /// Whether the stops of this axis are shown in Fahrenheit.
    bool showsFahrenheit(bool columns) const;
    /// Kinds and headers of both axes.
    std::string axesText() const;

 private:
    /// What a read puts together, all or nothing.
    struct Content {
        std::string table = "VE";
        std::string title;
        bool inverted = false;
        TableGrid grid;
        // One entry beyond the most lines: a header edit writes one place past its own.
        std::vector<float> rowHeaders = std::vector<float>(mostLines + 1);
        std::vector<float> columnHeaders = std::vector<float>(mostLines + 1);
        std::array<float, storedCells> undo{};
        std::array<bool, storedCells> undoFilled{};
        std::array<float, storedCells + 1> base{};
    };

    EntryOutcome counted(std::string_view table, int index, EntryOutcome stored);
    void readHeaders(bool columns);
    void readCells();
    EntryOutcome saveCell(int row, int column, const Limits& limits);

    Unit& unit_;
    Content content_;
    bool absoluteVe_ = false;
    int cellsWritten_ = 0;
    std::function<void(std::string_view table, int index)> written_;
};

}  // namespace zentaq
