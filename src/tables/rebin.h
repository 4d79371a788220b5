// New axes for a table, with the values that it had between the old ones: what a new axis is worth is worked
// out first, for every table that stands on it, and done whole or not at all.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tables/table_sheet.h"

namespace zentaq {

/// Headers as a user enters them, the lowest first.
struct TableAxes {
    std::vector<float> columns;
    std::vector<float> rows;

    bool operator==(const TableAxes&) const = default;
};

struct RebinnedTable {
    std::string_view name;
    std::vector<float> values;  ///< row by row, the lowest first

    float value(int storedRow, int column, int columns) const {
        return values.at(static_cast<std::size_t>(storedRow * columns + column));
    }
};

/// What new axes would make of the tables that stand on them.
struct Rebinning {
    TableAxes axes;
    std::vector<RebinnedTable> tables;
};

/// "500, 1000, 1500.5": also separated by semicolons, then with a decimal comma, or by blanks and tabs.
/// Throws Failure for what is no list of numbers.
std::vector<float> headersOf(std::string_view text);
TableAxes axesOf(const TableSheet& sheet);

/// Between old headers a value is a share of its four neighbors, rounded as the table's own commands round
/// (AFR to 2 decimals, an output table to whole percent, others to 1); on old headers it stays as it is;
/// beyond the old axis that of its end holds. An empty axis stays. Throws Failure with the reason for axes
/// that do not rise, that have another length than the unit can take, or no 8 to 16 headers.
Rebinning rebinned(const TableSheet& sheet, TableAxes wanted);
/// What would be refused: headers and cells, each with its place.
std::vector<Refusal> refusedOf(const TableSheet& sheet, const Rebinning& plan);
/// Stores it all and reads the sheet again, unless something is refused: then nothing has changed.
std::vector<Refusal> store(TableSheet& sheet, const Rebinning& plan);

/// The value of a table at any place of its axes, as rebinned() takes it, before it is rounded.
class TableSurface {
 public:
    /// The values of another table on the same axes as well.
    TableSurface(const TableSheet& sheet, std::string_view table);
    struct Point {
        double value = 0;
        bool onHeaders = false;  ///< it is a cell's own value
    };
    Point at(float column, float row) const;

 private:
    const TableSheet& sheet_;
    std::string_view table_;
    TableAxes axes_;
};

}  // namespace zentaq
