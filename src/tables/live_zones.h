// Which cell of a table a live point falls in, and where between the headers it stands.
// Works on headers as the grid shows them; pixels are the window's.
#pragma once

#include <array>
#include <optional>
#include <span>

namespace zentaq {

struct Zone {
    float low = 0;
    float high = 0;
};

struct GridCell {
    int row = 1;     ///< 1 at the top
    int column = 1;  ///< 1 at the left

    bool operator==(const GridCell&) const = default;
};

/// The selected block of cells.
struct Selection {
    int top = 1;
    int bottom = 1;
    int left = 1;
    int right = 1;
    /// More than one cell. Kept: a command on the block takes this back and leaves the block.
    bool present = false;

    bool severalCells() const { return top != bottom || left != right; }

    bool holds(GridCell cell) const {
        return cell.row >= top && cell.row <= bottom && cell.column >= left && cell.column <= right;
    }
};

/// Kept from build to build: a table with fewer than 16 lines leaves the pairs past its end as they were.
class LiveZones {
 public:
    static constexpr int lineCount = 16;

    /// Headers from left to right, entry 0 the first column.
    void buildColumns(std::span<const float> headers);
    /// Headers from top to bottom, entry 0 the first row.
    void buildRows(std::span<const float> headers);

    const Zone& column(int i) const { return columns_.at(static_cast<std::size_t>(i)); }
    const Zone& row(int i) const { return rows_.at(static_cast<std::size_t>(i)); }

    /// The cell of a point; `fallback` where no zone holds it. Later matches win.
    GridCell cellOf(float x, float y, GridCell fallback) const;

 private:
    static constexpr std::size_t pairs = 26;  ///< entry 0 stays empty; room for the most lines and one more
    std::array<Zone, pairs> columns_{};
    std::array<Zone, pairs> rows_{};
};

/// A place along an axis in lines: 0 on the first header, count - 1 on the last, held to these.
/// Nothing where it cannot be told, as between equal headers: the marker stays where it was.
std::optional<double> placeOfColumn(std::span<const float> headers, float x);
std::optional<double> placeOfRow(std::span<const float> headers, float y);

}  // namespace zentaq
