// The colours of a table's cells and the live point over them: shades by value, the marker, the paint that
// live tracking leaves behind.
#pragma once

#include <string_view>
#include <utility>
#include <vector>

#include "base/channels.h"
#include "tables/cell_colours.h"
#include "tables/heat_scale.h"
#include "tables/live_zones.h"
#include "tables/table_cursor.h"
#include "tables/table_estimates.h"

namespace zentaq {

/// Setting TableColor: how live tracking paints.
enum class TableColour { Normal = 0, Afr = 1 };
inline TableColour colourModeOf(int setting) {
    return setting == 1 ? TableColour::Afr : TableColour::Normal;
}

/// The cross-hair, in cells of the grid: column 1.5 stands between the first two column headers.
struct LiveMarker {
    bool visible = false;
    double row = 1;
    double column = 1;
};

class LiveOverlay {
 public:
    LiveOverlay(TableSheet& sheet, TableEstimates& estimates, TableCursor& cursor, const LiveValues& live,
                PaintMemory& paintMemory);

    /// The sheet has been read anew.
    void rebuild();
    /// A header has changed; the zones of the columns alone follow it.
    void headersChanged(bool zonesToo, bool taken);

    TableColour colourMode() const { return colourMode_; }
    void colourMode(TableColour mode) { colourMode_ = mode; }
    /// By the heat scale, as the cells are colored the next time; else each table in its own way.
    bool heatScale() const { return heatOn_; }
    void heatScale(bool on) { heatOn_ = on; }
    /// Shades by value; does nothing unless the table is shaded or all go white.
    void colorizeGraph(bool white);
    /// Paints all cells from the paint memory.
    void repaint();
    void whiteOut();
    void erasePaint() { paintMemory_.erase(); }
    /// The paint memory was erased by someone else: shades by value, and what it holds by now.
    void paintAnew();

    /// Moves marker and cursor to the live point and paints its cell. Both 0: take the live values.
    void Show_Current_Activity(float x, float y);
    const LiveMarker& marker() const { return marker_; }
    /// The cells whose trail has faded by a step since this was asked last.
    std::vector<GridCell> takeFaded() { return std::exchange(faded_, {}); }
    const LiveZones& zones() const { return zones_; }
    /// The table tunes itself: the cursor moves and paints nothing. Kept: switched on in a later release.
    void autoVeActive(bool active) { autoVeActive_ = active; }

 private:
    void buildZones();
    bool shades() const { return heatOn_ || sheet_.kind().shaded; }
    void shadeCell(int row, int column);
    void shadeUnpainted();
    void measureHeat();
    void putHeat(int row, int column);
    void shadeWritten(std::string_view table, int index);
    void repaintRemembered();
    float liveValueOf(bool columns) const;
    void placeMarker(float x, float y);
    void paintCurrent(Paint paint);
    void paintByAfr();
    void showTrail(int row, int column);
    void fadeTrail();

    TableSheet& sheet_;
    TableEstimates& estimates_;
    TableCursor& cursor_;
    const LiveValues& live_;
    PaintMemory& paintMemory_;
    TableColour colourMode_ = TableColour::Normal;
    bool heatOn_ = false;
    HeatMap heat_;
    LiveZones zones_;
    LiveMarker marker_;
    std::vector<GridCell> faded_;
    int visitsFaded_ = 0;
    bool autoVeActive_ = false;
};

}  // namespace zentaq
