// The members of the other kinds: the rows of the ORB A, less those that a kind lacks, some at other cells.
#include <algorithm>
#include <array>
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

constexpr std::array trimsOfOrbc = {Moved{"INJTRIM", 2311}, Moved{"FuelTrim", 2319}};

constexpr std::string_view notOnOrbd[] = {"SPW", "opt_TachInv"};
constexpr std::array movedOnOrbd = {Moved{"Get_AFR", 1168}, Moved{"INJTRIM", 2310}, Moved{"FuelTrim", 2318}};

/// The fuel side, and what else an ignition-only unit has no use for.
constexpr std::string_view notOnPzk2[] = {"INJ_Mode",
                                          "INJ_Events",
                                          "INJTBL",
                                          "INJ_Reset",
                                          "COFFSET",
                                          "EGO_FailTime",
                                          "EGO_SUD",
                                          "CYL_OvrThr",
                                          "CYL_CutDly",
                                          "CLTTBL",
                                          "BARO_ADV",
                                          "BARO_TRIM",
                                          "scale1",
                                          "SCALE2",
                                          "INJ_On",
                                          "MT",
                                          "SE0",
                                          "SE1",
                                          "SEPW",
                                          "SECLT",
                                          "ASE0",
                                          "ASE1",
                                          "CHKTBL",
                                          "MATENH",
                                          "ACE0",
                                          "ACE1",
                                          "ACE2",
                                          "ACE3",
                                          "ACE4",
                                          "ACE5",
                                          "ACE6",
                                          "ACE7",
                                          "ACCL_PW",
                                          "ACCL_TM",
                                          "DCCL_0",
                                          "DCCL_1",
                                          "DCCL_3",
                                          "DCCL_4",
                                          "BLDTBL",
                                          "LOWBLD",
                                          "TBSOFF",
                                          "BATCom",
                                          "MAP_Max",
                                          "BSTCTTM",
                                          "FPT",
                                          "MAFMax",
                                          "INJFIX_RPM",
                                          "INJFIX_PW",
                                          "CONDIV",
                                          "AVRDIV",
                                          "Register_Number",
                                          "EGO_LMT",
                                          "EGO_RPM",
                                          "EGO_MAP",
                                          "EGO_TMP",
                                          "EGO_RPML",
                                          "Y",
                                          "X",
                                          "EGO_LowVoltage",
                                          "EGO_HighVoltage",
                                          "NEGPGAIN",
                                          "POSPGAIN",
                                          "NEGDGAIN",
                                          "POSDGAIN",
                                          "Reset_Duty",
                                          "ISTMP",
                                          "ISRPM",
                                          "MinDuty",
                                          "MaxDuty",
                                          "IS_RTD",
                                          "IS_ADV",
                                          "IAC_RPM_HI",
                                          "IAC_RPM_LO",
                                          "IAC_Start",
                                          "VE",
                                          "SPW",
                                          "Get_AFR",
                                          "EGO_Type",
                                          "INJ_Number",
                                          "CAMSTL",
                                          "BHP",
                                          "AMP42",
                                          "INJ_FlowRate",
                                          "Alcohol",
                                          "DCCL_CutActive",
                                          "FuelTrim"};
constexpr std::array movedOnPzk2 = {Moved{"MAP_DISP_MULT", 84},
                                    Moved{"REV_Limit_Approach", 85},
                                    Moved{"MAP_Scaler", 86},
                                    Moved{"MAP_Offset", 87},
                                    Moved{"MAP_ID", 88},
                                    Moved{"MATADV", 130},
                                    Moved{"RPMTBL", 192},
                                    Moved{"MAPTBL", 224},
                                    Moved{"ADV", 256},
                                    Moved{"RPM_Size", 1026},
                                    Moved{"IGN_REV", 1029},
                                    Moved{"MAX_Boost", 1032},
                                    Moved{"Engine_Type", 1034},
                                    Moved{"Option_Type", 1035},
                                    Moved{"PHDSEQ", 1037},
                                    Moved{"CYLORDER", 1039},
                                    Moved{"MAP_Active", 1054},
                                    Moved{"TPS_MARGIN_TOGGLE", 1055},
                                    Moved{"TPS_MARGIN_VALUE", 1056},
                                    Moved{"AFR", 1057},
                                    Moved{"INJTRIM", 1185}};

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
