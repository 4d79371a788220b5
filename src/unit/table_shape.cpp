#include <algorithm>
#include <cmath>
#include <optional>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/axis_kinds.h"
#include "unit/table_kinds.h"
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

/// The cell of "ROWS" or "COLS", or nothing.
std::optional<int> sizeCell(std::string_view table, std::string_view what) {
    const TableKind* shape = findTable(table);
    if (shape == nullptr) return {};
    if (what == "ROWS") return shape->rowsCell;
    if (what == "COLS") return shape->rowsCell + 1;
    return {};
}

/// The cell of a stop point, or nothing for a table without stops.
std::optional<int> stopCell(int i, std::string_view axis, std::string_view table) {
    const TableKind* shape = findTable(table);
    if (shape == nullptr || !shape->isGpo()) return {};
    if (i < 0 || i >= stopCount) throw BoundsError();
    if (axis == "Y-Axis") return shape->rowStops + i;
    if (axis == "X-Axis") return shape->columnStops + i;
    return {};
}

}  // namespace

int Unit::GET_TBL_DIMENSIONS(std::string_view table, std::string_view what) {
    const auto cell = sizeCell(table, what);
    if (!cell || !kind_->hasCalibration) return 0;
    if (!kind_->cells.hasAxisWords) return fixedSize;
    const int rows = findTable(table)->rowsCell;
    const bool shaped = cellAt(rows) != 0 || cellAt(rows + 1) != 0;
    if (!shaped && !(facts().programVersion > lastVersionWithoutShape)) {
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
    const TableKind* shape = findTable(table);
    const bool rows = axis == "ROW-AXIS";
    if (!kind_->hasCalibration || shape == nullptr || (!rows && axis != "COL-AXIS")) return {};
    if (!shape->isGpo() || !kind_->cells.hasAxisWords) return rows ? "BLEND MAP" : "RPM";
    const int word = toInt16(static_cast<double>(cellAt(shape->axisWord)));
    const int code = rows ? static_cast<int>(truncate(word / 16.0)) : word & 15;
    return std::string(axisKindName(code));
}

void Unit::SET_TBL_AXIS_TYPE(std::string_view table, std::string_view axis, std::string_view name) {
    const TableKind* shape = findTable(table);
    if (shape == nullptr || !shape->isGpo() || !kind_->cells.hasAxisWords || name.empty()) return;
    const AxisKind* kind = axisKindOf(name);
    if (kind == nullptr) return;
    const int word = toInt16(static_cast<double>(cellAt(shape->axisWord)));
    if (axis == "ROW-AXIS") put(shape->axisWord, (word & 15) | kind->code * 16);
    if (axis == "COL-AXIS") put(shape->axisWord, (word & 240) | kind->code);
}

float Unit::Get_GPO_Stop(int i, std::string_view axis, std::string_view table) {
    if (!kind_->hasCalibration) return 0;
    const auto cell = stopCell(i, axis, table);
    if (!cell) return 0;
    // A kind without stop points of its own: the axes of the main tables are the stops.
    if (!kind_->cells.hasAxisWords) return get(mainAxisMember(axis), i);
    return cellAt(*cell);
}

EntryOutcome Unit::Set_GPO_Stop(const Entry& value, int i, std::string_view axis, std::string_view table) {
    if (!kind_->hasCalibration) return EntryOutcome::ignored();
    const auto cell = stopCell(i, axis, table);
    if (!cell) return EntryOutcome::ignored();
    if (!kind_->cells.hasAxisWords) return set(mainAxisMember(axis), value, i);
    if (value.isBlank()) return checkFilled({});
    const float number = value.number();
    const AxisKind* kind = axisKindOf(GET_TBL_AXIS_TYPE(table, axis == "Y-Axis" ? "ROW-AXIS" : "COL-AXIS"));
    const Limits limits = kind == nullptr ? Limits::none() : kind->limits(*this);
    if (auto checked = checkLimits(number, limits); !checked) return checked;
    if (!std::isfinite(number)) throw Overflow();  // an axis without a kind has no range
    // A user of Fahrenheit enters what the grid shows; the cell and the unit's image hold Celsius.
    const bool fahrenheit = kind != nullptr && kind->temperature && host_.fahrenheit();
    put(*cell, fahrenheit ? toCelsius(number) : number);
    return {};
}

double Unit::convertStopPointsToUnit(int cellIndex) {
    if (!kind_->cells.hasAxisWords) return 0;
    for (const TableKind& table : outputTables()) {
        const bool columns = cellIndex >= table.columnStops && cellIndex < table.columnStops + stopCount;
        const bool rows = cellIndex >= table.rowStops && cellIndex < table.rowStops + stopCount;
        if (!rows && !columns) continue;
        const AxisKind* kind = axisKindOf(GET_TBL_AXIS_TYPE(table.name, columns ? "COL-AXIS" : "ROW-AXIS"));
        return kind == nullptr ? 0 : kind->image(*this, cellAt(cellIndex));
    }
    return 0;
}

}  // namespace zentaq
