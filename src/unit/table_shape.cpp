#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/axis_kinds.h"
#include "unit/parameter_rules.h"
#include "unit/temperature.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr float lastVersionWithoutShape = 9.44F;  ///< files up to this version carry no table sizes
constexpr int oldSize = 16;
constexpr int fixedSize = 16;  ///< of kinds that keep no sizes
constexpr int smallestSize = 8;
constexpr int largestSize = 24;
constexpr int stopCount = 16;

struct TableShape {
    std::string_view name;
    int rowsCell;  ///< columns stand in the next cell
    int axisWord;
    bool hasOwnAxes;
    int rowStops;
    int columnStops;
};

constexpr std::array<TableShape, 6> shapes = {{{"ADV", 2292, 2290, false, 0, 0},
                                               {"AFR", 2292, 2290, false, 0, 0},
                                               {"SPW", 2292, 2290, false, 0, 0},
                                               {"VE", 2292, 2290, false, 0, 0},
                                               {"GPO1", 2294, 2290, true, 2226, 2242},
                                               {"GPO2", 2296, 2291, true, 2258, 2274}}};

const TableShape* shapeOf(std::string_view table) {
    const auto shape = std::ranges::find(shapes, table, &TableShape::name);
    return shape == shapes.end() ? nullptr : &*shape;
}

/// The cell of "ROWS" or "COLS", or nothing.
std::optional<int> sizeCell(std::string_view table, std::string_view what) {
    const TableShape* shape = shapeOf(table);
    if (shape == nullptr) return {};
    if (what == "ROWS") return shape->rowsCell;
    if (what == "COLS") return shape->rowsCell + 1;
    return {};
}

/// The cell of a stop point, or nothing for a table without stops.
std::optional<int> stopCell(int i, std::string_view axis, std::string_view table) {
    const TableShape* shape = shapeOf(table);
    if (shape == nullptr || !shape->hasOwnAxes) return {};
    if (i < 0 || i >= stopCount) throw BoundsError();
    if (axis == "Y-Axis") return shape->rowStops + i;
    if (axis == "X-Axis") return shape->columnStops + i;
    return {};
}

std::string_view axisMember(std::string_view axis) {
    return axis == "X-Axis" ? "RPMTBL" : "MAPTBL";
}

/// What a stop point on an axis of this kind accepts.
Limits stopLimits(Unit& unit, std::string_view kind) {
    if (kind == "CLT" || kind == "MAT") {
        if (unit.host().fahrenheit()) return {-40, 302, "(-40 to 302 F)"};
        return {-40, 150, "(-40 to 150 C)"};
    }
    if (kind == "RAW MAP" || kind == "BLEND MAP") return rules::pressure(unit, 0, 0);
    if (kind == "TPS") return {0, 5, "(0 to 5 Volts)"};
    if (kind == "ACTUAL AFR") return rules::ratioStop(unit);
    // Wider on purpose than the span that a new axis is spread over.
    if (kind == "RPM") return {0, 20000, "(0 to 20000 RPM)"};
    if (kind.starts_with("GPIO")) return {0, 100, "(0 to 100%)"};
    return Limits::none();
}

}  // namespace

int Unit::GET_TBL_DIMENSIONS(std::string_view table, std::string_view what) {
    const auto cell = sizeCell(table, what);
    if (!cell || !kind_->hasCalibration) return 0;
    if (!kind_->cells.hasAxisWords) return fixedSize;
    const int rows = shapeOf(table)->rowsCell;
    const bool shaped = cellAt(rows) != 0 || cellAt(rows + 1) != 0;
    if (!shaped && !(host_.header().programVersion > lastVersionWithoutShape)) {
        put(rows, oldSize);
        put(rows + 1, oldSize);
    }
    return toInt16(static_cast<double>(cellAt(*cell)));
}

void Unit::SET_TBL_DIMENSIONS(std::string_view table, std::string_view what, int count) {
    const auto cell = sizeCell(table, what);
    if (!cell || !kind_->cells.hasAxisWords || count < smallestSize || count > largestSize) return;
    put(*cell, count);
}

std::string Unit::GET_TBL_AXIS_TYPE(std::string_view table, std::string_view axis) const {
    const TableShape* shape = shapeOf(table);
    const bool rows = axis == "ROW-AXIS";
    if (!kind_->hasCalibration || shape == nullptr || (!rows && axis != "COL-AXIS")) return {};
    if (!shape->hasOwnAxes || !kind_->cells.hasAxisWords) return rows ? "BLEND MAP" : "RPM";
    const int word = toInt16(static_cast<double>(cellAt(shape->axisWord)));
    const int code = rows ? static_cast<int>(truncate(word / 16.0)) : word & 15;
    return std::string(axisKindName(code));
}

void Unit::SET_TBL_AXIS_TYPE(std::string_view table, std::string_view axis, std::string_view name) {
    const TableShape* shape = shapeOf(table);
    if (shape == nullptr || !shape->hasOwnAxes || !kind_->cells.hasAxisWords || name.empty()) return;
    const auto code = axisKindCode(name);
    if (!code) return;
    const int word = toInt16(static_cast<double>(cellAt(shape->axisWord)));
    if (axis == "ROW-AXIS") put(shape->axisWord, (word & 15) | *code * 16);
    if (axis == "COL-AXIS") put(shape->axisWord, (word & 240) | *code);
}

float Unit::Get_GPO_Stop(int i, std::string_view axis, std::string_view table) {
    if (!kind_->hasCalibration) return 0;
    const auto cell = stopCell(i, axis, table);
    if (!cell) return 0;
    // A kind without stop points of its own: the axes of the main tables are the stops.
    if (!kind_->cells.hasAxisWords) return get(axisMember(axis), i);
    return cellAt(*cell);
}

EntryOutcome Unit::Set_GPO_Stop(const Entry& value, int i, std::string_view axis, std::string_view table) {
    if (!kind_->hasCalibration) return EntryOutcome::ignored();
    const auto cell = stopCell(i, axis, table);
    if (!cell) return EntryOutcome::ignored();
    if (!kind_->cells.hasAxisWords) return set(axisMember(axis), value, i);
    if (value.isBlank()) return checkFilled({});
    const float number = value.number();
    const std::string kind = GET_TBL_AXIS_TYPE(table, axis == "Y-Axis" ? "ROW-AXIS" : "COL-AXIS");
    if (auto checked = checkLimits(number, stopLimits(*this, kind)); !checked) return checked;
    if (!std::isfinite(number)) throw Overflow();  // an axis without a kind has no range
    // A user of Fahrenheit enters what the grid shows; the cell and the unit's image hold Celsius.
    const bool fahrenheit = (kind == "CLT" || kind == "MAT") && host_.fahrenheit();
    put(*cell, fahrenheit ? toCelsius(number) : number);
    return {};
}

double Unit::convertStopPointsToUnit(int cellIndex) {
    // The blocks follow each other: rows and columns of the first table, then of the second.
    const std::string_view table = cellIndex >= 2258 ? "GPO2" : "GPO1";
    const bool columns = cellIndex >= 2274 || (cellIndex >= 2242 && cellIndex < 2258);
    if (cellIndex < 2226 || !kind_->cells.hasAxisWords) return 0;
    const float cell = cellAt(cellIndex);
    const double v = cell;
    const std::string kind = GET_TBL_AXIS_TYPE(table, columns ? "COL-AXIS" : "ROW-AXIS");
    if (kind == "CLT" || kind == "MAT") return (v + 40) * (255.0 / 190.0);
    if (kind == "RAW MAP" || kind == "BLEND MAP") return KpaToCounts(cell, false);
    if (kind == "TPS") return v * 51;
    if (kind == "ACTUAL AFR") return ((rules::stoichiometricRatio(*this) / v) - 0.5) * 255;
    if (kind == "RPM") return v;
    return kind.empty() ? 0 : v * 2.55;
}

}  // namespace zentaq
