#include "tables/table_cells.h"

#include <algorithm>
#include <array>

#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/axis_kinds.h"

namespace zentaq {

namespace {

bool allZero(Unit& unit, std::string_view table, std::string_view axis, int count) {
    for (int i = 0; i < std::min(count, storedHeaders); ++i) {
        if (unit.Get_GPO_Stop(i, axis, table) != 0) return false;
    }
    return true;
}

float withinPressure(Unit& unit, float pressure) {
    return std::max(std::min(pressure, unit.MAPMax()), unit.MAPMin());
}

}  // namespace

int shownRows(Unit& unit, std::string_view table) {
    return std::clamp(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 0, mostLines);
}

int shownColumns(Unit& unit, std::string_view table) {
    return std::clamp(unit.GET_TBL_DIMENSIONS(table, "COLS"), 0, mostLines);
}

std::string cellName(int row, int column) {
    return "cell " + numberText(row) + "," + numberText(column);
}

float get_binValueByIndex(Unit& unit, std::string_view table, int index, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return 0;
    const float value =
        kind->isGpo() ? unit.Get_GPIO_Table(kind->gpoNumber, index) : unit.get(kind->member, index);
    if (kind->decimals >= 0) return roundTo(value, kind->decimals);
    const AbsoluteView* absolute = kind->absoluteIf(absoluteVe);
    return absolute != nullptr ? value + absolute->base : value;
}

bool showsAlready(Unit& unit, std::string_view table, float value, int index, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return false;
    const float kept = kind->isGpo() ? roundTo(value, 0) : value;
    return numberText(get_binValueByIndex(unit, table, index, absoluteVe)) == numberText(kept);
}

EntryOutcome set_binValueByIndex(Unit& unit, std::string_view table, float value, int index,
                                 bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return EntryOutcome::ignored();
    if (kind->isGpo()) {
        // Checked as entered: what is out of range may fit no whole number, or round into the range.
        if (auto checked = checkLimits(value, Unit::outputTableLimits()); !checked) return checked;
        return unit.Set_GPIO_Table(kind->gpoNumber, index, toInt16(static_cast<double>(value)));
    }
    const AbsoluteView* absolute = kind->absoluteIf(absoluteVe);
    const float stored = absolute != nullptr ? value - absolute->base : value;
    return unit.set(kind->member, static_cast<double>(stored), index);
}

Limits cellLimits(Unit& unit, std::string_view table, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return Limits::none();
    if (kind->isGpo()) return Unit::outputTableLimits();
    if (const AbsoluteView* absolute = kind->absoluteIf(absoluteVe))
        return {absolute->range.minimum, absolute->range.maximum, std::string(absolute->rangeText)};
    return unit.limits(kind->member);
}

Limits typingLimits(Unit& unit, std::string_view table, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind != nullptr && kind->typing != nullptr) return kind->typing(unit);
    return cellLimits(unit, table, absoluteVe);
}

std::vector<Refusal> spreadAxis(Unit& unit, std::string_view table, std::string_view axis,
                                std::string_view axisKind) {
    std::vector<Refusal> refused;
    const bool rows = axis == "ROW-AXIS";
    const int count = rows ? shownRows(unit, table) : shownColumns(unit, table);
    if (count < 2) return refused;
    const AxisKind* kind = axisKindOf(axisKind);
    const AxisSpan span = kind == nullptr ? AxisSpan() : kind->span(unit);
    const float step = (span.high - span.low) / static_cast<float>(count - 1);
    for (int i = 0; i < std::min(count, storedHeaders); ++i) {
        const float even = roundTo(static_cast<float>(i) * step + span.low, 1);
        const double stop = even < span.low ? span.low : std::min(even, span.high);
        noteRefusal(refused, unit.Set_GPO_Stop(stop, i, rows ? "Y-Axis" : "X-Axis", table));
    }
    return refused;
}

bool hasEmptyAxis(Unit& unit, std::string_view table) {
    return allZero(unit, table, "Y-Axis", shownRows(unit, table)) ||
           allZero(unit, table, "X-Axis", shownColumns(unit, table));
}

std::vector<Refusal> resetGpoAxes(Unit& unit) {
    // Read first: what a damaged calibration refuses leaves both tables as they were.
    std::array<double, storedHeaders> speeds{};
    std::array<double, storedHeaders> pressures{};
    for (int i = 0; i < storedHeaders; ++i) {
        const auto at = static_cast<std::size_t>(i);
        speeds[at] = unit.get("RPMTBL", i);
        pressures[at] = withinPressure(unit, unit.get("MAPTBL", i));
    }
    for (const TableKind& table : outputTables()) unit.GET_TBL_AXIS_TYPE(table.name, "ROW-AXIS");
    std::vector<Refusal> refused;
    for (const TableKind& table : outputTables()) {
        unit.SET_TBL_AXIS_TYPE(table.name, "ROW-AXIS", "BLEND MAP");
        unit.SET_TBL_AXIS_TYPE(table.name, "COL-AXIS", "RPM");
        unit.SET_TBL_DIMENSIONS(table.name, "ROWS", storedHeaders);
        unit.SET_TBL_DIMENSIONS(table.name, "COLS", storedHeaders);
        for (int i = 0; i < storedHeaders; ++i) {
            const auto at = static_cast<std::size_t>(i);
            noteRefusal(refused, unit.Set_GPO_Stop(speeds[at], i, "X-Axis", table.name));
            noteRefusal(refused, unit.Set_GPO_Stop(pressures[at], i, "Y-Axis", table.name));
        }
    }
    return refused;
}

}  // namespace zentaq
