#include "unit/old_file_layout.h"

#include <algorithm>
#include <array>
#include <span>

#include "unit/member_index.h"
#include "unit/table_kinds.h"

namespace zentaq::old {

namespace {

struct MemberPlace {
    std::string_view member;
    int first;
};

/// Members that did not stand where they stand on an ORB A today.
// clang-format off
constexpr std::array<MemberPlace, 39> moved = {{
    {"RPM_Size", columnsCell}, {"MAPTBL", pressureFirst}, {"MAP_FailLow", 77}, {"MAP_FailHigh", 78},
    {"SPLITBL", 79}, {"DCCL_CutActive", 100}, {"MAP_Active", 101}, {"EGO_TMP", coolantCell},
    {"EGO_Type", 147}, {"X", voltsFirst}, {"Y", ratiosFirst}, {"IGN_REV", 284}, {"INJ_Number", 291},
    {"MATENH", 323}, {"ACE0", 343}, {"OVR1THR", 344}, {"OVR2THR", 345}, {"REV_Hysteresis", 346},
    {"CYL_OvrThr", 347}, {"CYL_CutDly", 348}, {"Initial_Advance", 349}, {"CAMSTL", 350}, {"MAX_Boost", 352},
    {"BHP", 353}, {"Engine_Type", 354}, {"Option_Type", 355}, {"AMP42", 357}, {"PHDSEQ", 358},
    {"INJ_FlowRate", 359}, {"CYLORDER", 520}, {"Alcohol", 533}, {"TPS_MARGIN_TOGGLE", 534},
    {"TPS_MARGIN_VALUE", 535}, {"AFR", 536}, {"CLTTBL", 549}, {"RPMTBL", 592}, {"Register_Number", 622},
    {"INJTRIM", 624}, {"FuelTrim", 632}}};
// clang-format on

/// Members that share a cell with another one, follow from the rating, or came with later firmware.
constexpr std::array<std::string_view, 7> withoutPlace = {
    "TACHTYP", "INJ_Events", "MAP_BAR", "MAP_DISP_MULT", "MAP_Scaler", "MAP_Offset", "MAP_ID"};

constexpr int lastControlByte = 2;
constexpr int endOfScalars = 592;  ///< today's first axis; tables follow

/// The stride in the old file: the axes were packed, the other members stood as today.
constexpr int strideOf(const Parameter& row) {
    return row.index >= endOfScalars ? 1 : row.stride;
}

bool hasPlace(const Parameter& row) {
    // Rows of option bits carry the number of their control byte in the place of a cell.
    return row.hasCell() && row.index > lastControlByte &&
           std::ranges::find(withoutPlace, row.name) == withoutPlace.end() && row.count != tableCells;
}

struct NamedTable {
    std::string_view name;
    int first;
};
constexpr std::array<NamedTable, 6> wholeTables = {
    {{"VE", 640}, {"SPW", 896}, {"AFR", ratioTableFirst}, {"GPO1", 1408}, {"GPO2", 1664}, {"ADV", 1920}}};
/// A unit without a fuel side has a shorter file.
constexpr std::array<NamedTable, 2> ignitionTables = {{{"GPO1", percentFirst}, {"ADV", 896}}};

}  // namespace

Place placeOf(const UnitKind& kind, std::string_view member) {
    const Parameter* row = kind.members->find(member);
    if (row == nullptr || !hasPlace(*row)) return {};
    const auto found = std::ranges::find(moved, row->name, &MemberPlace::member);
    const Parameter& model = *orbaKind().members->find(row->name);
    return {row, found == moved.end() ? model.index : found->first, strideOf(model)};
}

std::vector<Place> places(const UnitKind& kind) {
    std::vector<Place> all;
    for (const Parameter& row : kind.parameters) {
        if (const Place place = placeOf(kind, row.name); place.row != nullptr) all.push_back(place);
    }
    std::ranges::sort(all, {}, &Place::first);
    return all;
}

std::vector<Loose> looseCells(const UnitKind& kind) {
    std::vector<Loose> cells = {{secondSizeCell, kind.members->find("RPM_Size")->index + 1, 1}};
    if (!kind.cells.hasAxisWords) return cells;
    // Today these are stop points, which are seeded anew behind the move.
    cells.push_back({537, 2226, 12});
    cells.push_back({365, 2238, 1});
    return cells;
}

std::vector<Table> tables(const UnitKind& kind) {
    const std::span<const NamedTable> named = kind.fuelSide ? std::span<const NamedTable>(wholeTables)
                                                            : std::span<const NamedTable>(ignitionTables);
    std::vector<Table> all;
    for (const auto& [name, first] : named) {
        const TableKind& table = *findTable(name);
        if (!hasTable(kind, table)) continue;
        all.push_back(
            {first, table.isGpo() ? table.firstCell(kind) : kind.members->find(table.member)->index});
    }
    return all;
}

}  // namespace zentaq::old
