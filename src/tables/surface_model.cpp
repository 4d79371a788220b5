#include "tables/surface_model.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "tables/table_badges.h"

namespace zentaq {

namespace {

/// Told limits of the "+" key: a table's own range may end before.
double topOf(const TableKind& kind) {
    constexpr double percent = 100;
    constexpr double degrees = 60;
    if (kind.name == "ADV") return degrees;
    return kind.name == "AFR" ? std::numeric_limits<double>::infinity() : percent;
}

}  // namespace

SurfaceModel::SurfaceModel(Unit& unit, const LiveValues& live, const PaintMemory& paint,
                           std::string_view table, std::string_view title, TableView view)
    : unit_(unit), paint_(paint), model_(unit, ecu_, live, paint_), view_(view) {
    model_.Setup_Grid(table, title, false);
    showView();
    read();
}

// The colors of the grid in this view: what is too short or too long is red there.
void SurfaceModel::showView() {
    if (editable()) return;
    model_.estimates().view(view_);
    model_.estimates().showAll();
}

void SurfaceModel::heatScale(bool on) {
    if (model_.overlay().heatScale() == on) return;
    model_.overlay().heatScale(on);
    model_.overlay().paintAnew();
}

// ---- Values

void SurfaceModel::read() {
    const TableSheet& sheet = model_.sheet();
    rows_ = std::min(sheet.rows(), storedHeaders);
    columns_ = std::min(sheet.columns(), storedColumns);
    values_.assign(static_cast<std::size_t>(std::max(rows_ * columns_, 1)), 0);
    for (int row = 1; row <= rows_; ++row) {
        for (int column = 1; column <= columns_; ++column) {
            double& value = values_[static_cast<std::size_t>((row - 1) * columns_ + column - 1)];
            skipFailing([&] {
                const int at = index(row, column);
                if (view_ == TableView::Values) {
                    value = static_cast<double>(sheet.value(at));
                    return;
                }
                const bool staged = sheet.kind().fuel == FuelCells::Staged;
                ecu_.Injector_Pulsewidth(unit_, at, sheet.headers(false)[static_cast<std::size_t>(row - 1)],
                                         staged);
                value = static_cast<double>(ecu_.pulseWidthMs(at));
                if (view_ != TableView::DutyCycle) return;
                ecu_.Injector_DutyCycle(unit_, sheet.headers(true)[static_cast<std::size_t>(column - 1)], at);
                value = static_cast<double>(ecu_.dutyPercent(at));
            });
        }
    }
    const auto [least, most] = std::ranges::minmax(values_);
    lowest_ = least;
    highest_ = most;
    seen_ = snapshot();
    moveTo(row_, column_);
}

double SurfaceModel::value(int row, int column) const {
    return values_.at(static_cast<std::size_t>((row - 1) * columns_ + column - 1));
}

double SurfaceModel::height(int row, int column) const {
    const double span = highest_ - lowest_;
    return span > 0 ? (value(row, column) - lowest_) / span : 0;
}

std::int32_t SurfaceModel::colour(int row, int column) const {
    return model_.sheet().grid().colour(gridRow(row), column);
}

int SurfaceModel::trail(int row, int column) const {
    return model_.sheet().grid().trail(gridRow(row), column);
}

// ---- Cursor

void SurfaceModel::moveTo(int row, int column) {
    row_ = std::clamp(row, 1, std::max(rows_, 1));
    column_ = std::clamp(column, 1, std::max(columns_, 1));
}

void SurfaceModel::move(int rows, int columns) {
    const auto around = [](int place, int count) { return (place - 1 + count) % count + 1; };
    row_ = around(row_ + rows, std::max(rows_, 1));
    column_ = around(column_ + columns, std::max(columns_, 1));
}

std::string SurfaceModel::rowText() const {
    return model_.sheet().grid().text(gridRow(row_), 0);
}

std::string SurfaceModel::columnText() const {
    return model_.sheet().grid().text(0, column_);
}

std::string SurfaceModel::valueText() const {
    return formatNumber(value(row_, column_), "##0.00");
}

std::string SurfaceModel::inWords() const {
    return valueText() + " at row " + rowText() + " " + axisUnitOf(model_.sheet(), false) + ", column " +
           columnText() + " " + axisUnitOf(model_.sheet(), true);
}

EntryOutcome SurfaceModel::step(bool up) {
    if (!editable()) return EntryOutcome::ignored();
    const TableSheet& sheet = model_.sheet();
    const int at = index(row_, column_);
    const float wanted = sheet.value(at) + (up ? 1.0F : -1.0F);
    if (up && static_cast<double>(wanted) > topOf(sheet.kind())) return EntryOutcome::ignored();
    EntryOutcome stored;
    // Kept: the graph takes no part in changes of the running engine.
    unit_.SILENT_MODE(true);
    endOnFailure([&] { stored = set_binValueByIndex(unit_, sheet.table(), wanted, at, false); },
                 [&](const std::string&) { stored = EntryOutcome::ignored(); });
    unit_.SILENT_MODE(false);
    follow();
    return stored;
}

// ---- What happens elsewhere

// As bits: what is no number is equal to itself.
std::vector<std::uint32_t> SurfaceModel::snapshot() const {
    const std::string& table = model_.sheet().table();
    std::vector<std::uint32_t> all;
    const auto add = [&](float value) { all.push_back(std::bit_cast<std::uint32_t>(value)); };
    const int rows = shownRows(unit_, table);
    const int columns = shownColumns(unit_, table);
    add(static_cast<float>(rows));
    add(static_cast<float>(columns));
    for (int i = 0; i < storedHeaders; ++i) {
        skipFailing([&] { add(tableHeader(unit_, table, "X-Axis", i)); });
        skipFailing([&] { add(tableHeader(unit_, table, "Y-Axis", i)); });
    }
    for (int i = 0; i < storedCells; ++i)
        skipFailing([&] { add(get_binValueByIndex(unit_, table, i, false)); });
    if (editable()) return all;
    for (const char* member : {"scale1", "INJ_On", "MT", "PHDSEQ", "Engine_Type"}) add(unit_.get(member));
    for (const float header : model_.sheet().headers(false))
        skipFailing([&] { add(unit_.pressureToRatio(header)); });
    for (int i = 0; i < storedCells; ++i) add(unit_.get("VE", i));
    return all;
}

bool SurfaceModel::follow() {
    if (snapshot() == seen_) return false;
    model_.rebuild();
    showView();
    read();
    return true;
}

void SurfaceModel::frame(TableColour colours) {
    model_.overlay().colourMode(colours);
    model_.overlay().Show_Current_Activity(0, 0);
}

LiveMarker SurfaceModel::livePoint() {
    LiveMarker marker = model_.overlay().marker();
    marker.row = model_.sheet().rows() + 1 - marker.row;
    return marker;
}

}  // namespace zentaq
