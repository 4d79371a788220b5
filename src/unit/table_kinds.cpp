#include "unit/table_kinds.h"

#include <algorithm>
#include <array>

#include "base/number_text.h"
#include "unit/member_index.h"
#include "unit/parameter_names.h"
#include "unit/parameter_rules.h"

namespace zentaq {

namespace {

constexpr int mainSizes = 2292;
constexpr int mainAxes = 2290;  ///< not looked at: it is that of the first output table
constexpr std::size_t mainCount = 4;

/// kept: two thirds and twice the fuel's ratio by way of petrol's, where a cell takes 0.667 of it. Text and
/// ends are a hair wider; what lies between is refused by the cell behind.
Limits typedRatios(Unit& unit) {
    const double share = static_cast<double>(unit.get("AFR")) / rules::petrolRatio;
    const auto low = static_cast<float>(share * 9.76);
    const auto high = static_cast<float>(share * (2 * rules::petrolRatio));
    return {low, high, "(" + numberText(low) + " to " + numberText(high) + " AFR)"};
}

// clang-format off
constexpr std::array<TableKind, 6> tables = {{
    {.name = "ADV", .member = "Get_ADV", .rowsCell = mainSizes, .axisWord = mainAxes, .colourMidpoint = 30,
     .colourScale = 30, .liveCaption = "Table Adv", .live = &LiveValues::ADV_TBL, .liveFormat = "#0.0",
     .liveWithFuelOnly = true},
    {.name = "AFR", .member = "Get_AFR", .rowsCell = mainSizes, .axisWord = mainAxes, .nudge = 0.1,
     .decimals = 2, .typing = typedRatios},
    {.name = "SPW", .member = "Get_SPW", .rowsCell = mainSizes, .axisWord = mainAxes,
     .fuel = FuelCells::Staged, .colourMidpoint = 50, .liveCaption = "Staged %",
     .live = &LiveValues::INJ_STAGE},
    {.name = "VE", .member = "Get_VE", .rowsCell = mainSizes, .axisWord = mainAxes,
     .absolute = AbsoluteView{100, {50, 150}, "(50 to 150%)"}, .fuel = FuelCells::Main, .shaded = true,
     .liveCaption = "VE %"},
    {.name = "GPO1", .title = "Full Table - Table#1", .gpoNumber = 1, .rowsCell = 2294, .axisWord = 2290,
     .rowStops = 2226, .columnStops = 2242, .decimals = 0},
    {.name = "GPO2", .title = "Full Table - Table#2", .gpoNumber = 2, .rowsCell = 2296, .axisWord = 2291,
     .rowStops = 2258, .columnStops = 2274, .decimals = 0},
}};
// clang-format on

}  // namespace

std::span<const TableKind> tableKinds() {
    return tables;
}

std::span<const TableKind> outputTables() {
    return tableKinds().subspan(mainCount);
}

const TableKind* findTable(std::string_view name) {
    const auto found = std::ranges::find(tables, name, &TableKind::name);
    return found == tables.end() ? nullptr : &*found;
}

std::string tableTitle(std::string_view name) {
    const TableKind* kind = findTable(name);
    if (kind == nullptr) return {};
    return std::string(kind->title.empty() ? nameOfParameter(kind->member) : kind->title);
}

bool hasTable(const UnitKind& kind, const TableKind& table) {
    // Every unit has the two output tables.
    return table.isGpo() ? kind.hasCalibration : kind.members->find(table.member) != nullptr;
}

bool hasTable(const UnitKind& kind, std::string_view table) {
    const TableKind* row = findTable(table);
    return row != nullptr && hasTable(kind, *row);
}

float tableHeader(Unit& unit, std::string_view table, std::string_view axis, int index) {
    const TableKind* kind = findTable(table);
    if (kind != nullptr && kind->isGpo()) return unit.Get_GPO_Stop(index, axis, table);
    return unit.get(mainAxisMember(axis), index);
}

EntryOutcome setTableHeader(Unit& unit, std::string_view table, std::string_view axis, int index,
                            const Entry& value) {
    const TableKind* kind = findTable(table);
    if (kind != nullptr && kind->isGpo()) return unit.Set_GPO_Stop(value, index, axis, table);
    return unit.set(mainAxisMember(axis), value, index);
}

}  // namespace zentaq
