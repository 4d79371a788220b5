#include "tables/live_overlay.h"

#include <span>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/axis_kinds.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr double afrBand = 0.5;

/// The number that a text begins with: "45%" is 45, "ON" is 0.
float leadingNumber(std::string_view text) {
    const auto end = text.find_first_not_of("+-0123456789.");
    return static_cast<float>(parseNumber(text.substr(0, end)).value_or(0));
}

}  // namespace

LiveOverlay::LiveOverlay(TableSheet& sheet, TableEstimates& estimates, TableCursor& cursor,
                         const LiveValues& live, PaintMemory& paintMemory)
    : sheet_(sheet), estimates_(estimates), cursor_(cursor), live_(live), paintMemory_(paintMemory) {
    sheet.onWritten([this](std::string_view table, int index) { shadeWritten(table, index); });
}

void LiveOverlay::rebuild() {
    buildZones();
    colorizeGraph(false);
    paintMemory_.ofAxes(sheet_.axesText());
    repaintRemembered();
}

void LiveOverlay::headersChanged(bool zonesToo, bool taken) {
    if (zonesToo) buildZones();
    paintMemory_.ofAxes(sheet_.axesText());
    if (taken) paintAnew();
}

void LiveOverlay::buildZones() {
    std::vector<float> headers;
    for (int c = 1; c <= sheet_.columns(); ++c) headers.push_back(sheet_.shownNumber(0, c));
    zones_.buildColumns(headers);
    headers.clear();
    for (int r = 1; r <= sheet_.rows(); ++r) headers.push_back(sheet_.shownNumber(r, 0));
    zones_.buildRows(headers);
}

// ---- Shades and paint

void LiveOverlay::colorizeGraph(bool white) {
    if (!shades() && !white) return;
    if (heatOn_ && !white) measureHeat();
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column) {
            sheet_.grid().colour(row, column, TableGrid::white);
            if (!white) shadeCell(row, column);
        }
    }
}

void LiveOverlay::shadeCell(int row, int column) {
    if (heatOn_) return sheet_.grid().colour(row, column, heat_.colour(row, column));
    skipFailing([&] {
        const TableKind& kind = sheet_.kind();
        const AbsoluteView* absolute = kind.absoluteIf(sheet_.absoluteVe());
        const double midpoint =
            absolute != nullptr ? static_cast<double>(absolute->base) : kind.colourMidpoint;
        const float value = sheet_.value(sheet_.tableIndex(row, column));
        sheet_.grid().colour(row, column, shadeOf(value, midpoint, kind.colourScale));
    });
}

void LiveOverlay::measureHeat() {
    heat_.resize(sheet_.rows(), sheet_.columns());
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column) putHeat(row, column);
    }
    heat_.measure();
}

void LiveOverlay::putHeat(int row, int column) {
    skipFailing([&] { heat_.put(row, column, sheet_.value(sheet_.tableIndex(row, column))); });
}

void LiveOverlay::shadeUnpainted() {
    for (int row = 1; row <= sheet_.rows(); ++row) {
        for (int column = 1; column <= sheet_.columns(); ++column) {
            if (paintMemory_.at(row, column) == Paint::White) shadeCell(row, column);
        }
    }
}

/// The shade of a stored cell follows its new value at once; the paint of the live point stays on top.
void LiveOverlay::shadeWritten(std::string_view table, int index) {
    if (table != sheet_.table() || !shades() || !estimates_.showsValues()) return;
    const int row = sheet_.gridRow(index / storedColumns);
    const int column = index % storedColumns + 1;
    if (!sheet_.grid().hasCell(row, column)) return;
    if (heatOn_) {
        putHeat(row, column);
        // With another lowest or highest value all cells stand elsewhere on the scale.
        if (heat_.measure()) return shadeUnpainted();
    }
    if (paintMemory_.at(row, column) == Paint::White) shadeCell(row, column);
}

void LiveOverlay::repaint() {
    for (int column = 1; column <= storedColumns; ++column) {
        for (int row = 1; row <= storedHeaders; ++row) {
            if (!sheet_.grid().hasCell(row, column)) continue;
            showTrail(row, column);
        }
    }
}

void LiveOverlay::repaintRemembered() {
    // A cell that was never painted keeps the shade of its value.
    for (int column = 1; column <= storedColumns; ++column) {
        for (int row = 1; row <= storedHeaders; ++row) {
            const Paint paint = paintMemory_.at(row, column);
            if (paint == Paint::White || !sheet_.grid().hasCell(row, column)) continue;
            showTrail(row, column);
        }
    }
}

void LiveOverlay::showTrail(int row, int column) {
    const Paint paint = paintMemory_.at(row, column);
    if (paint == Paint::White && heatOn_ && estimates_.showsValues()) return shadeCell(row, column);
    sheet_.grid().colour(row, column, paintColour(paint));
    if (paint != Paint::White) sheet_.grid().trail(row, column, trailStep(paintMemory_.age(row, column)));
}

// Only when the point has entered another cell, and then at most a few cells change.
void LiveOverlay::fadeTrail() {
    if (std::exchange(visitsFaded_, paintMemory_.visits()) == paintMemory_.visits()) return;
    TableGrid& grid = sheet_.grid();
    for (int row = 1; row <= grid.rows(); ++row) {
        for (int column = 1; column <= grid.columns(); ++column) {
            if (grid.trail(row, column) == TableGrid::noTrail) continue;
            const int step = trailStep(paintMemory_.age(row, column));
            if (grid.trail(row, column) == step) continue;
            grid.trail(row, column, step);
            faded_.push_back({row, column});
        }
    }
}

void LiveOverlay::paintAnew() {
    if (!estimates_.showsValues()) return estimates_.showAll();
    colorizeGraph(!shades());
    repaintRemembered();
}

void LiveOverlay::whiteOut() {
    paintMemory_.erase();
    repaint();
}

// ---- The live point

float LiveOverlay::liveValueOf(bool columns) const {
    const AxisKind* kind = sheet_.axisKind(columns);
    if (kind == nullptr) return 0;
    if (kind->pin >= 0) {
        return leadingNumber(sheet_.unit().GPIODisplay().at(static_cast<std::size_t>(kind->pin)));
    }
    const float value = live_.*kind->live;
    return sheet_.showsFahrenheit(columns) ? toFahrenheit(value) : value;
}

void LiveOverlay::placeMarker(float x, float y) {
    const std::span<const float> columns(sheet_.headers(true));
    const std::span<const float> rows(sheet_.headers(false));
    const auto column = placeOfColumn(columns.first(static_cast<std::size_t>(sheet_.columns())), x);
    const auto row = placeOfRow(rows.first(static_cast<std::size_t>(sheet_.rows())), y);
    if (column) marker_.column = 1 + *column;
    if (row) marker_.row = sheet_.inverted() ? 1 + *row : sheet_.rows() - *row;
    marker_.visible = true;
}

void LiveOverlay::Show_Current_Activity(float x, float y) {
    if (x == 0 && y == 0) {
        const bool output = sheet_.kind().isGpo();
        x = output ? liveValueOf(true) : live_.RPM;
        y = output ? liveValueOf(false) : live_.MAP;
    }
    placeMarker(x, y);
    if (!cursor_.followsEngine()) return;
    const GridCell cell = zones_.cellOf(x, y, cursor_.cell());
    if (!cursor_.moveTo(cell.row, cell.column) || autoVeActive_) return;
    if (colourMode_ == TableColour::Afr) {
        paintByAfr();
    } else {
        paintCurrent(Paint::Yellow);
        paintMemory_.remember(cursor_.row(), cursor_.column(), Paint::Yellow);
    }
    fadeTrail();
}

void LiveOverlay::paintCurrent(Paint paint) {
    sheet_.grid().colour(cursor_.row(), cursor_.column(), paintColour(paint));
    sheet_.grid().trail(cursor_.row(), cursor_.column(), 0);
}

void LiveOverlay::paintByAfr() {
    const double actual = live_.AAFR;
    const double desired = live_.DAFR;
    const auto paint = [&](Paint shown, Paint remembered) {
        paintCurrent(shown);
        paintMemory_.remember(cursor_.row(), cursor_.column(), remembered);
    };
    // Kept: yellow and green are crossed over between the cell and the memory, so a repaint exchanges them.
    if (desired - afrBand > actual) paint(Paint::Yellow, Paint::Green);
    if (actual >= desired - afrBand && actual <= desired + afrBand) paint(Paint::Green, Paint::Yellow);
    if (desired + afrBand <= actual) paint(Paint::Red, Paint::Red);
    if (actual == desired) paint(Paint::Blue, Paint::Blue);
}

}  // namespace zentaq
