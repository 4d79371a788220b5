// A table window's core on a calibration of its own: main tables of 16 by 16 cells on plain axes.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "live/calibration_fixture.h"
#include "tables/table_model.h"

namespace zentaq {

using Refusals = std::vector<std::string>;
using test::told;

inline constexpr int advanceBase = 656;
inline constexpr int veBase = 912;
inline constexpr int stagedBase = 1168;
inline constexpr int afrBase = 1424;
inline constexpr int gpo1Base = 1680;

/// Columns 500, 1000, ... 8000 rpm; rows 15, 20, ... 90 kPa from the bottom up.
class TableWindow : public ::testing::Test {
 protected:
    TableWindow()
        : calibration(3), unit(calibration.unit), host(calibration.host), model(unit, ecu, live, paints) {
        unit.AssignDirectIndex(14.64F, test::afrCell);
        unit.AssignDirectIndex(10, test::moffsetCell);
        unit.AssignDirectIndex(10, 148);    // scale1
        unit.AssignDirectIndex(0.5F, 150);  // INJ_On
        for (int i = 0; i < 16; ++i) {
            unit.set("RPMTBL", 500.0 * (i + 1), i);
            unit.set("MAPTBL", 15.0 + 5 * i, i);
        }
    }
    void size(int rows, int columns) {
        unit.SET_TBL_DIMENSIONS("VE", "ROWS", rows);
        unit.SET_TBL_DIMENSIONS("VE", "COLS", columns);
    }
    /// Values that advance and ratio take: an empty calibration has 0, which is none.
    void fillAdvanceAndRatio() {
        for (int i = 0; i < storedCells; ++i) {
            unit.set("ADV", 30, i);
            unit.set("Get_AFR", 14, i);
        }
    }
    void open(std::string_view table) { model.Setup_Grid(table, "A table", false); }
    EntryOutcome press(char key) {
        return model.keyOnGrid(key) == KeyResult::Nudge ? editor.nudge(key == '.') : EntryOutcome();
    }
    const std::string& text(int row, int column) { return sheet.grid().text(row, column); }

    test::Calibration calibration;
    Unit& unit;
    RecordingHost& host;
    Ecu ecu;
    LiveValues live;
    PaintMemory paints;
    TableModel model;
    TableSheet& sheet = model.sheet();
    TableCursor& cursor = model.cursor();
    TableEstimates& estimates = model.estimates();
    LiveOverlay& overlay = model.overlay();
    TableEditor& editor = model.editor();
};

}  // namespace zentaq
