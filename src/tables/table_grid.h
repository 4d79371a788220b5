// The cells of a table window as texts and colours: row 0 and column 0 hold headers, cells begin at 1, 1.
// What a grid control shows is a copy of this.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/errors.h"

namespace zentaq {

class TableGrid {
 public:
    static constexpr std::int32_t white = 0xFFFFFF;
    static constexpr int noTrail = -1;

    /// Cleared, with `rows` by `columns` cells beside the headers.
    void resize(int rows, int columns) {
        rows_ = rows;
        columns_ = columns;
        const std::size_t count = lines(rows) * lines(columns);
        texts_.assign(count, {});
        colours_.assign(count, white);
        trail_.assign(count, noTrail);
        notes_.assign(count, {});
    }

    int rows() const { return rows_; }        ///< without the header row
    int columns() const { return columns_; }  ///< without the header column
    bool hasCell(int row, int column) const {
        return row >= 1 && row <= rows_ && column >= 1 && column <= columns_;
    }

    // BoundsError outside 0 to rows, 0 to columns.
    const std::string& text(int row, int column) const { return texts_[at(row, column)]; }
    void text(int row, int column, std::string value) { texts_[at(row, column)] = std::move(value); }
    std::int32_t colour(int row, int column) const { return colours_[at(row, column)]; }
    /// Nothing of a trail is left in a cell that gets a colour.
    void colour(int row, int column, std::int32_t value) {
        colours_[at(row, column)] = value;
        trail_[at(row, column)] = noTrail;
    }
    /// How far the live point's trail has faded in a cell whose colour is its paint, by trailStep().
    int trail(int row, int column) const { return trail_[at(row, column)]; }
    void trail(int row, int column, int step) { trail_[at(row, column)] = step; }
    /// What stands in the corner of a cell: how far it is from another calibration, "+2.5"; empty for
    /// nothing.
    const std::string& note(int row, int column) const { return notes_[at(row, column)]; }
    void note(int row, int column, std::string value) { notes_[at(row, column)] = std::move(value); }

 private:
    /// With the header line.
    static std::size_t lines(int cells) { return static_cast<std::size_t>(cells) + 1; }
    std::size_t at(int row, int column) const {
        if (row < 0 || row > rows_ || column < 0 || column > columns_) throw BoundsError();
        return static_cast<std::size_t>(row) * lines(columns_) + static_cast<std::size_t>(column);
    }

    int rows_ = 0;
    int columns_ = 0;
    std::vector<std::string> texts_{std::string{}};
    std::vector<std::int32_t> colours_{white};
    std::vector<int> trail_{noTrail};
    std::vector<std::string> notes_{std::string{}};
};

}  // namespace zentaq
