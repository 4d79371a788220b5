#include "unit/old_file_layout.h"

#include <algorithm>
#include <array>

#include "unit/member_index.h"

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

constexpr std::array<std::string_view, 4> tableMembers = {"ADV", "VE", "SPW", "Get_AFR"};

bool isIn(std::span<const std::string_view> names, std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

bool hasPlace(const Parameter& row) {
    // Rows of option bits carry the number of their control byte in the place of a cell.
    return row.hasCell() && row.index > lastControlByte && !isIn(withoutPlace, row.name) &&
           !isIn(tableMembers, row.name);
}

struct NamedTable {
    std::string_view name;
    int first;
};
constexpr std::array<NamedTable, 6> wholeTables = {
    {{"VE", 640}, {"SPW", 896}, {"Get_AFR", ratioTableFirst}, {"GPO1", 1408}, {"GPO2", 1664}, {"ADV", 1920}}};
/// A unit without a fuel side has a shorter file.
constexpr std::array<NamedTable, 2> ignitionTables = {{{"GPO1", percentFirst}, {"ADV", 896}}};

/// Today's first cell of a table, CellMap::none when the kind lacks it.
int cellOfTable(const UnitKind& kind, std::string_view name) {
    if (name == "GPO1") return kind.cells.outputTable[0];
    if (name == "GPO2") return kind.cells.outputTable[1];
    const Parameter* row = kind.members->find(name);
    return row == nullptr ? CellMap::none : row->index;
}

// The list of functions grew in its middle: 11 (idle output) and 20 (timed advance) came later.
constexpr std::array<Function, 21> functionTable = {
    {{0, 0},   {1, 1},   {2, 2},   {3, 3},   {4, 4},   {5, 5},   {6, 6},
     {7, 7},   {8, 8},   {9, 9},   {10, 10}, {11, 12}, {12, 13}, {13, 14},
     {14, 15}, {15, 16}, {16, 17}, {17, 18}, {18, 19}, {19, 21}, {20, 22}}};

constexpr double oldSpeed = 2.54;
constexpr double oldTime = 4.23333;
constexpr std::array<OldTiming, 4> timingTable = {{{7, 0, oldSpeed},    // converter locks above
                                                   {7, 1, oldSpeed},    // converter opens below
                                                   {14, 0, oldSpeed},   // valet speed limit
                                                   {15, 1, oldTime}}};  // log samples

constexpr std::array<Default, 6> defaultTable = {{{77, 1, 0},
                                                  {78, 1, 5.0F},
                                                  {147, 1, 1.0F},
                                                  {ratioTableFirst, tableCells, 14.64F},
                                                  {622, 1, 12.0F},
                                                  {coolantCell, 1, 80}}};
constexpr std::array<Default, 4> blockDefaultTable = {
    {{410, 1, 3500}, {411, 1, noFunction}, {415, 1, 0}, {416, 1, 0}}};
constexpr std::array<float, curvePoints> defaultVolts = {0, 0.45F, 0.65F, 1.6F, 2.5F,
                                                         4, 4.2F,  4.62F, 4.8F, 5.0F};
constexpr std::array<float, curvePoints> defaultRatios = {22.4F, 15.89F, 14.9F, 14.72F, 14.64F,
                                                          14.3F, 13.8F,  12.6F, 11.2F,  10.0F};

constexpr float largestTrim = 15;
constexpr float mostCylinders = 16;
constexpr std::array<Cleared, 5> clearedTable = {{{.first = 417, .count = 13},
                                                  {.first = 430, .count = 90},
                                                  {624, 8, -largestTrim, largestTrim, false},
                                                  {632, 8, -largestTrim, largestTrim, false},
                                                  {520, 13, 0, mostCylinders, true}}};

constexpr std::array<OptionBit, 16> optionTable = {{{0, 0},
                                                    {0, 2},
                                                    {0, 3},
                                                    {0, 4},
                                                    {0, 5},
                                                    {0, 6},
                                                    {0, 7},
                                                    {1, 1},
                                                    {1, 2},
                                                    {1, 3},
                                                    {1, 4},
                                                    {1, 5},
                                                    {1, 6},
                                                    {2, 0},
                                                    {2, 1},
                                                    {2, 2}}};
constexpr std::array<std::string_view, 5> bitMembers = {"DCCL_CutActive", "EGO_Type", "AMP42", "Engine_Type",
                                                        "PHDSEQ"};

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
        const int cell = cellOfTable(kind, name);
        if (cell != CellMap::none) all.push_back({first, cell});
    }
    return all;
}

std::span<const Function> functions() {
    return functionTable;
}
std::span<const OldTiming> oldTimings() {
    return timingTable;
}
std::span<const Default> defaults() {
    return defaultTable;
}
std::span<const Default> blockDefaults() {
    return blockDefaultTable;
}
std::span<const float, curvePoints> curveVolts() {
    return defaultVolts;
}
std::span<const float, curvePoints> curveRatios() {
    return defaultRatios;
}
std::span<const Cleared> cleared() {
    return clearedTable;
}
std::span<const OptionBit> optionBits() {
    return optionTable;
}
std::span<const std::string_view> membersWithBits() {
    return bitMembers;
}

}  // namespace zentaq::old
