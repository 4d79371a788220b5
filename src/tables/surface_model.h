// A surface graph without its window: the values of a table, or what they mean for the injectors, a cursor on
// one of its points and the keys that change it. Rows and columns count from 1, the lowest headers first.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tables/surface_titles.h"
#include "tables/table_model.h"

namespace zentaq {

class SurfaceModel {
 public:
    /// `paint` is where the engine has been so far; the surface goes on from there by itself.
    SurfaceModel(Unit& unit, const LiveValues& live, const PaintMemory& paint, std::string_view table,
                 std::string_view title, TableView view);
    SurfaceModel(const SurfaceModel&) = delete;
    SurfaceModel& operator=(const SurfaceModel&) = delete;

    const TableSheet& sheet() const { return model_.sheet(); }
    TableView view() const { return view_; }
    bool editable() const { return view_ == TableView::Values; }
    SurfaceTitles titles() const { return surfaceTitles(model_.sheet(), view_); }
    int rows() const { return rows_; }
    int columns() const { return columns_; }

    double value(int row, int column) const;
    /// Its place in the span from the lowest to the highest value, 0 to 1; 0 where all are the same.
    double height(int row, int column) const;
    double lowest() const { return lowest_; }
    double highest() const { return highest_; }
    /// The core's colour number of a cell and the trail in it, as the grid has them.
    std::int32_t colour(int row, int column) const;
    int trail(int row, int column) const;

    // ---- The cursor
    int row() const { return row_; }
    int column() const { return column_; }
    void moveTo(int row, int column);
    /// At an end it goes on at the other one.
    void move(int rows, int columns);
    std::string rowText() const;     ///< MAP_Text
    std::string columnText() const;  ///< RPM_Text
    std::string valueText() const;   ///< "##0.00"
    /// The same in words.
    std::string inWords() const;

    /// "+" and "-": adds 1 to the value at the cursor, or takes it away, and keeps that off the wire. Ignored
    /// at the told limits and in a view that is worked out.
    EntryOutcome step(bool up);

    // ---- What happens elsewhere
    /// Reads the table again where it has changed. True: it had.
    bool follow();
    /// The cells have the colors of the heat scale, as the options say.
    void heatScale(bool on);
    /// A frame of the engine: its point, and the trail that it leaves.
    void frame(TableColour colours);
    /// In rows and columns as above; not visible before the first frame.
    LiveMarker livePoint();

 private:
    void read();
    void showView();
    std::vector<std::uint32_t> snapshot() const;
    int gridRow(int row) const { return model_.sheet().gridRow(row - 1); }
    static int index(int row, int column) { return (row - 1) * storedColumns + column - 1; }

    Unit& unit_;
    Ecu ecu_;
    PaintMemory paint_;
    TableModel model_;
    TableView view_;
    int rows_ = 0;
    int columns_ = 0;
    int row_ = 1;
    int column_ = 1;
    double lowest_ = 0;
    double highest_ = 0;
    std::vector<double> values_;
    std::vector<std::uint32_t> seen_;  ///< what was read
};

}  // namespace zentaq
