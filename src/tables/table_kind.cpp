#include "tables/table_kind.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/parameter_rules.h"

namespace zentaq {

namespace {

constexpr std::array tables{
    TableKind{"ADV", "Get_ADV", 0, 1, 30, 30}, TableKind{"AFR", "Get_AFR", 0, 0.1, 0, 50},
    TableKind{"SPW", "Get_SPW", 0, 1, 50, 50}, TableKind{"VE", "Get_VE", 0, 1, 0, 50},
    TableKind{"GPO1", "", 1, 1, 0, 50},        TableKind{"GPO2", "", 2, 1, 0, 50},
};

bool isGpo(std::string_view table) {
    const TableKind* kind = findTable(table);
    return kind != nullptr && kind->isGpo();
}

std::string_view mainHeaderMember(std::string_view axis) {
    return axis == "X-Axis" ? "RPMTBL" : "MAPTBL";
}

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

const TableKind* findTable(std::string_view name) {
    const auto found =
        std::find_if(tables.begin(), tables.end(), [&](const TableKind& kind) { return kind.name == name; });
    return found == tables.end() ? nullptr : &*found;
}

int shownRows(Unit& unit, std::string_view table) {
    return std::clamp(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 0, mostLines);
}

int shownColumns(Unit& unit, std::string_view table) {
    return std::clamp(unit.GET_TBL_DIMENSIONS(table, "COLS"), 0, mostLines);
}

float get_binValueByIndex(Unit& unit, std::string_view table, int index, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return 0;
    if (kind->isGpo()) return roundTo(unit.Get_GPIO_Table(kind->gpoNumber, index), 0);
    const float value = unit.get(kind->member, index);
    if (table == "AFR") return roundTo(value, 2);
    return absoluteVe && table == "VE" ? value + 100 : value;
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
    const float stored = absoluteVe && table == "VE" ? value - 100 : value;
    return unit.set(kind->member, static_cast<double>(stored), index);
}

Limits cellLimits(Unit& unit, std::string_view table, bool absoluteVe) {
    const TableKind* kind = findTable(table);
    if (kind == nullptr) return Limits::none();
    if (kind->isGpo()) return Unit::outputTableLimits();
    if (absoluteVe && table == "VE") return {50, 150, "(50 to 150%)"};
    return unit.limits(kind->member);
}

float tableHeader(Unit& unit, std::string_view table, std::string_view axis, int index) {
    if (isGpo(table)) return unit.Get_GPO_Stop(index, axis, table);
    return unit.get(mainHeaderMember(axis), index);
}

EntryOutcome setTableHeader(Unit& unit, std::string_view table, std::string_view axis, int index,
                            const Entry& value) {
    if (isGpo(table)) return unit.Set_GPO_Stop(value, index, axis, table);
    return unit.set(mainHeaderMember(axis), value, index);
}

AxisSpan axisSpan(Unit& unit, std::string_view axisKind) {
    if (axisKind == "CLT" || axisKind == "MAT") return {-40, unit.host().fahrenheit() ? 302.0F : 150.0F};
    if (axisKind == "RAW MAP" || axisKind == "BLEND MAP") return {unit.MAPMin(), unit.MAPMax()};
    if (axisKind == "TPS") return {0, 5};
    if (axisKind == "ACTUAL AFR") {
        // The limits that each stop is checked by: worked out twice they differ by a hair, and the lowest
        // stop of its own axis is refused.
        const Limits limits = rules::ratioStop(unit);
        return {limits.minimum, limits.maximum};
    }
    if (axisKind == "RPM") return {750, unit.get("REV_Limiter")};
    for (char pin = '1'; pin <= '8'; ++pin) {
        if (axisKind == std::string("GPIO") + pin) return {0, 100};
    }
    return {};
}

std::vector<Refusal> spreadAxis(Unit& unit, std::string_view table, std::string_view axis,
                                std::string_view axisKind) {
    std::vector<Refusal> refused;
    const bool rows = axis == "ROW-AXIS";
    const int count = rows ? shownRows(unit, table) : shownColumns(unit, table);
    if (count < 2) return refused;
    const AxisSpan span = axisSpan(unit, axisKind);
    const float step = (span.high - span.low) / static_cast<float>(count - 1);
    for (int i = 0; i < std::min(count, storedHeaders); ++i) {
        const float even = roundTo(static_cast<float>(i) * step + span.low, 1);
        const float stop = even < span.low ? span.low : std::min(even, span.high);
        const std::string_view stops = rows ? "Y-Axis" : "X-Axis";
        noteRefusal(refused, unit.Set_GPO_Stop(static_cast<double>(stop), i, stops, table));
    }
    return refused;
}

bool hasEmptyAxis(Unit& unit, std::string_view table) {
    return allZero(unit, table, "Y-Axis", shownRows(unit, table)) ||
           allZero(unit, table, "X-Axis", shownColumns(unit, table));
}

std::vector<Refusal> resetGpoAxes(Unit& unit) {
    std::vector<Refusal> refused;
    // Read first: what a damaged calibration refuses leaves both tables as they were.
    std::array<double, storedHeaders> speeds{};
    std::array<double, storedHeaders> pressures{};
    for (int i = 0; i < storedHeaders; ++i) {
        const auto at = static_cast<std::size_t>(i);
        speeds[at] = unit.get("RPMTBL", i);
        pressures[at] = withinPressure(unit, unit.get("MAPTBL", i));
    }
    for (const std::string_view table : {"GPO1", "GPO2"}) unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS");
    for (const std::string_view table : {"GPO1", "GPO2"}) {
        unit.SET_TBL_AXIS_TYPE(table, "ROW-AXIS", "BLEND MAP");
        unit.SET_TBL_AXIS_TYPE(table, "COL-AXIS", "RPM");
        unit.SET_TBL_DIMENSIONS(table, "ROWS", storedHeaders);
        unit.SET_TBL_DIMENSIONS(table, "COLS", storedHeaders);
        for (int i = 0; i < storedHeaders; ++i) {
            const auto at = static_cast<std::size_t>(i);
            noteRefusal(refused, unit.Set_GPO_Stop(speeds[at], i, "X-Axis", table));
            noteRefusal(refused, unit.Set_GPO_Stop(pressures[at], i, "Y-Axis", table));
        }
    }
    return refused;
}

}  // namespace zentaq
