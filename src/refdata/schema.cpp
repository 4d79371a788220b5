#include "refdata/schema.h"

#include <array>

#include "base/channels.h"
#include "base/errors.h"
#include "refdata/database.h"

namespace zentaq::refdata {

namespace {

// The pressure limits are the ends of the standard 1 bar sensor, 0 and 5 volts on volts = 0.05295 * kPa -
// 0.54738.
constexpr double minimumKpa = 10.338;
constexpr double maximumKpa = 104.766;

constexpr auto sets = std::to_array<DefaultsSet>({
    // The five tables of a calibration and their axes.
    {"ADV", 256, 0, 60},
    {"VE", 256, -50, 50},
    {"SPW", 256, 0, 100},
    {"AFR", 256, 9.8, 29.28},
    {"RPMTBL", 16, 0, 20000, true},
    {"MAPTBL", 16, minimumKpa, maximumKpa, true},
    {"ADV_PZK2", 256, 0, 60},
    // What boost does to them, over kPa above the atmosphere.
    {"BOOST", 8, 0, 900, true},
    {"BOOST_RTD", 8, 0, 60},
    {"BOOST_AFR", 8, 9.8, 14.7},
    {"BOOST_VE", 8, 0, 50},
    {"BOOST_ADV", 1, 0, 60},
    // What is taken off the advance of a rotary engine.
    {"ROTARY_RTD", 1, 0, 60},
    // Curves.
    {"BLDTBL", 8, 0, 12000, true},
    {"LOWBLD_STREET", 8, 0, 100},
    {"LOWBLD_RACE", 8, 0, 100},
    {"BATVOLTS", 20, 0, 20, true},
    {"BATCOM", 20, -1000, 1000},
    {"CHKTBL", 20, 0, 250},
    {"MATENH", 20, -50, 50},
    {"CLTTBL", 20, 0, 60},
    {"MATADV", 20, -30, 30},
    {"MATADV_PZK2", 20, -30, 30},
    {"SPLITBL", 16, 0, 30},
    {"BARO_ADV", 8, -50, 50},
    {"BARO_TRIM", 8, -50, 50},
    {"X", 10, 0, 5, true},
    {"Y", 10, 0.12, 29.28},
    // Ten volts and ten ratios.
    {"EGO1 Narrow band, 0 to 5 V", 20, 0, 29.28},
    {"EGO1 Narrow band, 0 to 1 V", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 10.0 to 20.0", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 9.0 to 16.0", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 9.0 to 19.0", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 8.0 to 18.0", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 7.5 to 22.5", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 7.35 to 22.39", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 8.5 to 18.0", 20, 0, 29.28},
    {"EGO2 0 to 5 V = 10.0 to 15.0", 20, 0, 29.28},
    {"EGO2 0 to 1 V = 10.0 to 20.0", 20, 0, 29.28},
    {"EGO2 0 to 1 V = 9.0 to 19.0", 20, 0, 29.28},
    {"EGO2 0 to 1 V = 8.0 to 18.0", 20, 0, 29.28},
    {"ISTMP", 3, -30, 80, true},
    {"ISRPM", 3, 500, 2000},
    {"ISRPM_ORBL", 3, 500, 2000},
    {"ISRPM_ORBC", 3, 500, 2000},
    {"ISRPM_ORBD", 3, 500, 2000},
    {"FuelTrim", 8, -15, 15},
    {"INJTRIM", 8, -15, 15},
    {"Set_Control", 8, 0, 1},
    // One function a pin, so each kind has its own number of them.
    {"GPIO_Func", 8, 0, 29},
    {"GPIO_Func_ORBL", 9, 0, 29},
    {"GPIO_Func_PZK2", 4, 0, 29},
    {"GPIO_Func_ORBC", 13, 0, 29},
    {"GPIO_Func_ORBD", 7, 0, 29},
    // What the General Configuration page offers before the tuner types anything.
    {"REV_Limiter", 1, 1000, 20000},
    {"REV_Limiter_ORBL", 1, 1000, 20000},
    {"REV_Limiter_PZK2", 1, 1000, 20000},
    {"REV_Limiter_ORBC", 1, 1000, 20000},
    {"REV_Limiter_ORBD", 1, 1000, 20000},
    {"scale1", 1, 3, 30},
    {"SCALE2", 1, 3, 30},
    {"INJ_On", 1, -15, 15},
    {"INJ_Number", 1, 1, 24},
    {"INJ_Number_ORBC", 1, 1, 24},
    {"MT", 1, 0, 5},
    {"AFR_Stoich", 1, 1, 14.7},
    // Ignition.
    {"Initial_Advance", 1, 0, 30},
    {"Initial_Advance_PZK2", 1, 0, 30},
    {"Initial_Advance_ORBC", 1, 0, 30},
    {"KNK_MIN", 1, 2, 100},
    {"KNK_ATK", 1, 0.25, 10},
    {"KNK_DCY", 1, 0.25, 5},
    {"KNK_MAX", 1, 1, 30},
    {"KNK_RPM", 1, 0, 8000},
    {"KNK_Timer", 1, 1, 255},
    // Fuel enrichments.
    {"TBSOFF", 1, 0, 1.5},
    {"ACE0", 1, 0.85, 51.75},
    {"ACE1", 1, 0.055, 3.66},
    {"ACE2", 1, 0, 250},
    {"ACE3", 1, 0, 150},
    {"ACE4", 1, 0.25, 2},
    {"ACE5", 1, 0, 250},
    {"ACE6", 1, 0, 250},
    {"ACE7", 1, 0, 150},
    {"ACCL_PW", 1, 0, 15},
    {"ACCL_TM", 1, 0, 15},
    {"SE0", 1, 0, 250},
    {"SE1", 1, 0, 150},
    {"SEPW", 1, 0, 15},
    {"SECLT", 1, -30, 80},
    {"ASE0", 1, 0, 250},
    {"ASE1", 1, 0, 150},
    {"FPT", 1, 1, 15},
    {"DCCL_CutActive", 1, 0, 1},
    {"MAP_Active", 1, 0, 1},
    {"DCCL_0", 1, 0, 3900},
    {"DCCL_0_ORBD", 1, 0, 3900},
    {"DCCL_1", 1, 0, 3900},
    {"DCCL_1_ORBD", 1, 0, 3900},
    {"DCCL_3", 1, minimumKpa, maximumKpa},
    {"DCCL_4", 1, 0, 150},
    {"MAP_Max", 1, 0, maximumKpa},
    {"BSTCTTM", 1, 0.25, 10},
    // Closed loop.
    {"CONDIV", 1, 2, 64},
    {"AVRDIV", 1, 2, 64},
    {"Register_Number", 1, 2, 12},
    {"EGO_LMT", 1, 0, 50},
    {"EGO_RPM", 1, 1000, 11000},
    {"EGO_MAP", 1, minimumKpa, maximumKpa},
    {"EGO_TMP", 1, 0, 80},
    {"EGO_RPML", 1, 0, 11000},
    {"EGO_RPML_ORBD", 1, 0, 11000},
    {"EGO_HighVoltage", 1, 0, 5},
    {"EGO_LowVoltage", 1, 0, 5},
    {"EGO_Type", 1, 1, 2},
    {"EGO_FailTime", 1, 1, 255},
    {"EGO_SUD", 1, 0, 20},
    // Rev limit.
    {"opt_3Stage", 1, 0, 1},
    {"opt_NoFuelCut", 1, 0, 1},
    {"OVR1THR", 1, 0, 250},
    {"OVR2THR", 1, 0, 250},
    {"REV_Hysteresis", 1, 0, 250},
    {"REV_AuxLimiter", 1, 1000, 20000},
    {"REV_AuxLimiter_ORBL", 1, 1000, 20000},
    {"REV_AuxLimiter_PZK2", 1, 1000, 20000},
    {"REV_AuxLimiter_ORBC", 1, 1000, 20000},
    {"REV_Limit_Approach", 1, 0, 1000},
    {"CYL_OvrThr", 1, 0, 1000},
    {"CYL_CutDly", 1, 0, 250},
    // Idle.
    {"opt_IdleSpeed", 1, 0, 1},
    {"opt_IdleSpeed_ORBC", 1, 0, 1},
    {"NEGPGAIN", 1, 1, 255},
    {"POSPGAIN", 1, 1, 255},
    {"NEGDGAIN", 1, 1, 255},
    {"POSDGAIN", 1, 1, 255},
    {"Reset_Duty", 1, 1, 100},
    {"IAC_RPM_HI", 1, 0, 3900},
    {"IAC_RPM_LO", 1, 0, 3900},
    {"IAC_Start", 1, 1, 100},
    {"MinDuty", 1, 0, 255},
    {"MaxDuty", 1, 0, 255},
    {"IS_RTD", 1, 0, 10},
    {"IS_ADV", 1, 0, 10},
    // Sensors.
    {"CLT_FailHigh", 1, 0, 5},
    {"CLT_FailLow", 1, 0, 5},
    {"CLT_Default", 1, -40, 150},
    {"MAP_FailHigh", 1, 0, 5},
    {"MAP_FailLow", 1, 0, 5},
    {"MAP_Default", 1, minimumKpa, maximumKpa},
    {"MAP_FIL", 1, 1, 64},
    {"TPS_FCV", 1, 0, 5},
    {"TPS_WOV", 1, 0, 5},
    {"TPS_FailHigh", 1, 0, 5},
    {"TPS_FailLow", 1, 0, 5},
    {"TPS_Default", 1, 0, 5},
    {"MAT_FailHigh", 1, 0, 5},
    {"MAT_FailLow", 1, 0, 5},
    {"MAT_Default", 1, -30, 80},
    {"MAFMax", 1, 2000, 20000},
});

Column text(std::string name) {
    return {std::move(name), ColumnType::Text};
}
Column nameText(std::string name) {
    return {std::move(name), ColumnType::NameText};
}
Column integer(std::string name) {
    return {std::move(name), ColumnType::Integer};
}
Column key(std::string name) {
    return {std::move(name), ColumnType::Integer, true};
}

void addPinColumns(Table& table, std::size_t first, std::size_t last) {
    for (std::size_t pin = first; pin <= last; ++pin) {
        table.columns.push_back({std::string(pinNames[pin - 1]), ColumnType::Number});
    }
}

void addColumns(Table& table, std::initializer_list<const char*> columns) {
    for (const char* column : columns) table.columns.push_back({column, ColumnType::Number});
}

Table engines() {
    Table made{"Engines",
               {integer("OrbUnit"), integer("OrbSubType"), integer("OptType"), nameText("DisplayValue")}};
    for (const EngineNumber& each : engineNumbers) addColumns(made, {each.column});
    for (int entry = 1; entry <= 8; ++entry) {
        made.columns.push_back({"InjTBL_" + std::to_string(entry), ColumnType::Number});
    }
    addColumns(made, {"Stroke"});
    made.columns.push_back({"EditDFUB", ColumnType::Boolean});
    addColumns(made, {"DefaultSplit"});
    return made;
}

Table defaults() {
    Table made{"Defaults", {}};
    for (const DefaultsSet& set : sets) made.columns.push_back({std::string(set.name), ColumnType::Number});
    return made;
}

// One row of an imported log of the oldest format.
Table datalog() {
    Table made{"Datalog", {}, true};
    addColumns(made, {"Seconds", "RPM", "MAP",  "TPS",  "CLT",  "MAT",  "VOLT", "KNK", "EGOV",
                      "CHKE",    "ADV", "SADV", "KNKR", "TFPW", "PIP",  "PID",  "PPW", "PIO",
                      "SID",     "SPW", "SIO",  "POPD", "EGOC", "DAFR", "AAFR", "IAC", "SD"});
    addPinColumns(made, 1, 9);
    return made;
}

// One row of an imported log of the newer formats: the channels, and the pins where they came to be.
Table datalog2() {
    Table made{"Datalog2", {{"Frame"}}, true};
    for (const Channel& channel : channels) {
        made.columns.push_back({std::string(channel.name)});
        if (channel.name == "IACD") addPinColumns(made, 1, 16);
        if (channel.name == "ISRPM") addPinColumns(made, 17, 20);
    }
    return made;
}

std::vector<Table> makeTables() {
    return {
        engines(),
        {"MAPCals", {key("ID"), nameText("Description"), {"Scale"}, {"Offset"}, integer("Units")}},
        {"Configs", {text("BinFile"), integer("OrbUnit"), text("OrbName")}},
        defaults(),
        {"FastHelp", {key("ID"), text("TOPIC"), text("HELP"), nameText("HELP_KEY")}},
        {"Tips", {text("HELP")}},
        datalog(),
        datalog2(),
    };
}

}  // namespace

std::span<const DefaultsSet> defaultsSets() {
    return sets;
}

const std::vector<Table>& tables() {
    static const std::vector<Table> all = makeTables();
    return all;
}

const Table& table(std::string_view name) {
    for (const Table& candidate : tables()) {
        if (candidate.name == name) return candidate;
    }
    throw NoSuchMember("no table " + std::string(name));
}

}  // namespace zentaq::refdata
