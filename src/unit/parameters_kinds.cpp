// The members of the other kinds: the rows of the ORB A, less those that a kind lacks, some at other cells.
#include <algorithm>
#include <span>
#include <string_view>
#include <vector>

#include "unit/parameter_tables.h"

namespace zentaq {

namespace {

/// A member and its first cell.
struct Moved {
    std::string_view name;
    int index;
};

using Table = std::vector<Parameter>;

Table without(std::span<const Parameter> rows, std::span<const std::string_view> names) {
    Table kept;
    kept.reserve(rows.size());
    std::ranges::copy_if(rows, std::back_inserter(kept), [&](const Parameter& row) {
        return std::ranges::find(names, row.name) == names.end();
    });
    return kept;
}

/// The bytes of a moved member move with it, except where they stand apart from its cells: those stay.
Table moved(Table table, std::span<const Moved> moves) {
    for (const auto& [name, index] : moves) {
        const auto row = std::ranges::find(table, name, &Parameter::name);
        const int distance = index - row->index;
        if (row->image.indexOffset != 0) row->image.indexOffset -= distance;
        if (row->onTheFly.indexOffset != 0) row->onTheFly.indexOffset -= distance;
        row->index = index;
    }
    return table;
}

Table renamed(Table table, std::string_view name, std::string_view meaning) {
    std::ranges::find(table, name, &Parameter::name)->meaning = meaning;
    return table;
}

constexpr Moved trimsOfOrbc[] = {{"INJTRIM", 2311}, {"FuelTrim", 2319}};

constexpr std::string_view notOnOrbd[] = {"SPW", "opt_TachInv"};
constexpr Moved movedOnOrbd[] = {{"Get_AFR", 1168}, {"INJTRIM", 2310}, {"FuelTrim", 2318}};

/// The fuel side, and what else an ignition-only unit has no use for.
// clang-format off
constexpr std::string_view notOnPzk2[] = {
    "INJ_Mode", "INJ_Events", "INJTBL", "INJ_Reset", "COFFSET", "EGO_FailTime", "EGO_SUD", "CYL_OvrThr",
    "CYL_CutDly", "CLTTBL", "BARO_ADV", "BARO_TRIM", "scale1", "SCALE2", "INJ_On", "MT", "SE0", "SE1", "SEPW",
    "SECLT", "ASE0", "ASE1", "CHKTBL", "MATENH", "ACE0", "ACE1", "ACE2", "ACE3", "ACE4", "ACE5", "ACE6",
    "ACE7", "ACCL_PW", "ACCL_TM", "DCCL_0", "DCCL_1", "DCCL_3", "DCCL_4", "BLDTBL", "LOWBLD", "TBSOFF",
    "BATCom", "MAP_Max", "BSTCTTM", "FPT", "MAFMax", "INJFIX_RPM", "INJFIX_PW", "CONDIV", "AVRDIV",
    "Register_Number", "EGO_LMT", "EGO_RPM", "EGO_MAP", "EGO_TMP", "EGO_RPML", "Y", "X", "EGO_LowVoltage",
    "EGO_HighVoltage", "NEGPGAIN", "POSPGAIN", "NEGDGAIN", "POSDGAIN", "Reset_Duty", "ISTMP", "ISRPM",
    "MinDuty", "MaxDuty", "IS_RTD", "IS_ADV", "IAC_RPM_HI", "IAC_RPM_LO", "IAC_Start", "VE", "SPW", "Get_AFR",
    "EGO_Type", "INJ_Number", "CAMSTL", "BHP", "AMP42", "INJ_FlowRate", "Alcohol", "DCCL_CutActive",
    "FuelTrim"};
// clang-format on
constexpr Moved movedOnPzk2[] = {{"MAP_DISP_MULT", 84},
                                 {"REV_Limit_Approach", 85},
                                 {"MAP_Scaler", 86},
                                 {"MAP_Offset", 87},
                                 {"MAP_ID", 88},
                                 {"MATADV", 130},
                                 {"RPMTBL", 192},
                                 {"MAPTBL", 224},
                                 {"ADV", 256},
                                 {"RPM_Size", 1026},
                                 {"IGN_REV", 1029},
                                 {"MAX_Boost", 1032},
                                 {"Engine_Type", 1034},
                                 {"Option_Type", 1035},
                                 {"PHDSEQ", 1037},
                                 {"CYLORDER", 1039},
                                 {"MAP_Active", 1054},
                                 {"TPS_MARGIN_TOGGLE", 1055},
                                 {"TPS_MARGIN_VALUE", 1056},
                                 {"AFR", 1057},
                                 {"INJTRIM", 1185}};

}  // namespace

std::span<const Parameter> orbLiteParameters() {
    return orbaParameters();
}

std::span<const Parameter> orbcParameters() {
    static const Table table = moved(without(orbaParameters(), {}), trimsOfOrbc);
    return table;
}

std::span<const Parameter> orbdParameters() {
    static const Table table = moved(without(orbaParameters(), notOnOrbd), movedOnOrbd);
    return table;
}

std::span<const Parameter> pzk2Parameters() {
    static const Table table = renamed(moved(without(orbaParameters(), notOnPzk2), movedOnPzk2), "MATADV",
                                       "External Retard");  // it goes by the volts of an input
    return table;
}

}  // namespace zentaq
