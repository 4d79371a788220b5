#include "windows/frm_config_pages.h"

#include <array>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "config/gui_rules.h"
#include "config/shown_value.h"
#include "config/tree.h"

namespace zentaq {

namespace {

using Names = std::span<const std::string_view>;

constexpr std::array<std::string_view, 2> blend{"LOWBLD", "BLDTBL"};
constexpr std::array<std::string_view, 11> acceleration{"ACE0", "ACE1", "ACE2",    "ACE3",    "ACE4",  "ACE5",
                                                        "ACE6", "ACE7", "ACCL_PW", "ACCL_TM", "TBSOFF"};
constexpr std::array<std::string_view, 7> deceleration{"DCCL_CutActive", "MAP_Active", "DCCL_0", "DCCL_1",
                                                       "DCCL_3",         "DCCL_4",     "TPS_FCV"};
constexpr std::array<std::string_view, 6> starting{"SEPW", "SECLT", "SE0", "SE1", "ASE0", "ASE1"};
constexpr std::array<std::string_view, 1> warmUp{"CHKTBL"};
constexpr std::array<std::string_view, 1> manifoldFuel{"MATENH"};
constexpr std::array<std::string_view, 3> overBoost{"MAP_Max", "BSTCTTM", "MAX_Boost"};
constexpr std::array<std::string_view, 13> revLimit{
    "REV_Limiter", "REV_AuxLimiter", "REV_Hysteresis", "OVR1THR",     "OVR2THR",
    "CYL_OvrThr",  "CYL_CutDly",     "opt_3Stage",     "opt_FullCut", "opt_ZeroAdv",
    "opt_FuelCut", "opt_ProgCut",    "opt_NoFuelCut"};
constexpr std::array<std::string_view, 12> idle{
    "opt_IdleSpeed", "ISRPM",      "ISTMP",     "POSPGAIN",   "NEGPGAIN",   "POSDGAIN",
    "NEGDGAIN",      "Reset_Duty", "IAC_Start", "IAC_RPM_HI", "IAC_RPM_LO", "opt_IdleMotorDeactive"};
constexpr std::array<std::string_view, 2> initialAdvance{"Initial_Advance", "MOFFSET"};
constexpr std::array<std::string_view, 1> coolantAdvance{"CLTTBL"};
constexpr std::array<std::string_view, 2> timingSplit{"RPMTBL", "SPLITBL"};
constexpr std::array<std::string_view, 1> manifoldAdvance{"MATADV"};
constexpr std::array<std::string_view, 7> feedback{"CONDIV",  "AVRDIV",  "Register_Number", "EGO_LMT",
                                                   "EGO_RPM", "EGO_MAP", "EGO_TMP"};
constexpr std::array<std::string_view, 9> advanced{
    "INJFIX_RPM", "INJFIX_PW", "AMP42", "INJ_Mode", "INJ_Reset", "FPT", "MT", "INJ_On", "opt_TDCParam1"};
constexpr std::array<std::string_view, 1> battery{"BATCom"};
constexpr std::array<std::string_view, 20> general{
    "Option_Type", "Engine_Type",   "CYL_Number",    "INJ_Number",    "INJ_FlowRate", "INJ_Events", "PHDSEQ",
    "TACHTYP",     "TOFFSET1",      "TOFFSET2",      "MOFFSET",       "scale1",       "INJ_On",     "AFR",
    "IGN_REV",     "opt_TDCParam1", "opt_TDCParam2", "opt_TDCParam3", "opt_TachInv",  "BHP"};
constexpr std::array<std::string_view, 1> approach{"REV_Limit_Approach"};
constexpr std::array<std::string_view, 1> baroAdvance{"BARO_ADV"};
constexpr std::array<std::string_view, 1> baroTrim{"BARO_TRIM"};
constexpr std::array<std::string_view, 6> pressure{"MAP_BAR",     "MAP_DISP_MULT", "MAP_FailHigh",
                                                   "MAP_FailLow", "MAP_Default",   "MAP_FIL"};
constexpr std::array<std::string_view, 4> airMass{"MAFMax", "MAP_FailHigh", "MAP_FailLow", "MAP_Default"};
constexpr std::array<std::string_view, 3> coolant{"CLT_FailHigh", "CLT_FailLow", "CLT_Default"};
constexpr std::array<std::string_view, 7> throttle{"TPS_FCV",         "TPS_WOV",     "TPS_FailHigh",
                                                   "TPS_FailLow",     "TPS_Default", "TPS_MARGIN_TOGGLE",
                                                   "TPS_MARGIN_VALUE"};
constexpr std::array<std::string_view, 5> oxygen{"EGO_RPML", "EGO_FailTime", "EGO_SUD", "EGO_LowVoltage",
                                                 "EGO_HighVoltage"};
constexpr std::array<std::string_view, 3> manifoldAir{"MAT_FailHigh", "MAT_FailLow", "MAT_Default"};
constexpr std::array<std::string_view, 1> knockSensor{"KNK_Timer"};
constexpr std::array<std::string_view, 6> knock{"opt_KnockActive", "KNK_MIN", "KNK_ATK",
                                                "KNK_MAX",         "KNK_DCY", "KNK_RPM"};
constexpr std::array<std::string_view, 4> trims{"CYL_Number", "CYLORDER", "INJTRIM", "FuelTrim"};
constexpr std::array<std::string_view, 2> duty{"MinDuty", "MaxDuty"};
constexpr std::array<std::string_view, 2> idleAdvance{"IS_ADV", "IS_RTD"};
constexpr std::array<std::string_view, 3> oxygenCurve{"EGO_Type", "X", "Y"};

struct Page {
    int number;
    Names members;
};

// The numbers are those of the tree's nodes.
constexpr std::array pages{
    Page{1, blend},
    Page{2, acceleration},
    Page{3, deceleration},
    Page{5, starting},
    Page{6, warmUp},
    Page{7, manifoldFuel},
    Page{8, overBoost},
    Page{9, revLimit},
    Page{10, idle},
    Page{11, initialAdvance},
    Page{12, coolantAdvance},
    Page{13, timingSplit},
    Page{14, manifoldAdvance},
    Page{16, feedback},
    Page{17, advanced},
    Page{19, battery},
    Page{20, general},
    Page{21, approach},
    Page{22, baroAdvance},
    Page{23, baroTrim},
    Page{25, pressure},
    Page{26, airMass},
    Page{27, coolant},
    Page{28, pressure},
    Page{29, throttle},
    Page{30, oxygen},
    Page{31, manifoldAir},
    Page{32, knockSensor},
    Page{33, knock},
    Page{34, trims},
    Page{35, duty},
    Page{36, idleAdvance},
    Page{38, oxygenCurve},
};

constexpr int overviewPage = 0;
constexpr int notesPage = 15;

PageRow plainRow(std::string caption, std::string value) {
    PageRow row;
    row.caption = std::move(caption);
    row.value = std::move(value);
    return row;
}

/// The range as the range check words it, without its parentheses.
std::string rangeText(Unit& unit, const Parameter& parameter, int element) {
    std::string text = shownRange(unit, parameter, element);
    if (text.starts_with('(')) text.erase(0, 1);
    if (text.ends_with(')')) text.pop_back();
    return text;
}

PageRow elementRow(Unit& unit, const Parameter& parameter, int element) {
    const FieldTraits& traits = traitsOfMember(parameter.name);
    PageRow row;
    row.member = parameter.name;
    row.helpKey = parameter.help;
    row.unit = shownUnit(unit, parameter, traits);
    row.onTheFly = parameter.sentOnTheFly();
    skipFailing([&] { row.value = shownValue(unit, parameter, traits, element); });
    skipFailing([&] { row.range = rangeText(unit, parameter, element); });
    return row;
}

/// What a cell of a curve stands at, "-40 °C"; else which one it is.
std::string stopText(Unit& unit, const Parameter& parameter, int element) {
    const FieldAxis axis = traitsOfMember(parameter.name).axis;
    const std::string where = shownStop(unit, axis, element, parameter.count);
    const std::string in = shownStopUnit(unit, axis);
    if (where.empty()) return numberText(element + 1);
    return in.empty() ? where : where + " " + in;
}

PageRow memberRow(Unit& unit, const Parameter& parameter) {
    const std::string caption(parameter.meaning.empty() ? parameter.name : parameter.meaning);
    if (parameter.count == 1) {
        PageRow row = elementRow(unit, parameter, 0);
        row.caption = caption;
        return row;
    }
    PageRow row = plainRow(caption, numberText(parameter.count) + " values");
    row.member = parameter.name;
    row.helpKey = parameter.help;
    row.unit = shownUnit(unit, parameter, traitsOfMember(parameter.name));
    for (int element = 0; element < parameter.count; ++element) {
        row.elements.push_back(elementRow(unit, parameter, element));
        skipFailing([&] { row.elements.back().caption = stopText(unit, parameter, element); });
    }
    return row;
}

std::vector<PageRow> overviewRows(Session& session) {
    Unit& unit = session.currentUnitObject();
    std::vector<PageRow> rows;
    rows.push_back(plainRow("Unit", std::string(unit.kind().model)));
    rows.push_back(plainRow("Calibration", std::string(trimmed(unit.BiName()))));
    rows.push_back(plainRow("File", session.CurrentFile));
    rows.push_back(plainRow("Firmware release", numberText(unit.FW_Release())));
    rows.push_back(plainRow("Firmware build", numberText(unit.FW_Build())));
    rows.push_back(plainRow("Serial number", unit.Serial()));
    for (const char* table : {"VE", "ADV", "AFR", "SPW"}) {
        if (!hasTable(unit.kind(), table)) continue;
        skipFailing([&] {
            const int across = unit.GET_TBL_DIMENSIONS(table, "COLS");
            const int down = unit.GET_TBL_DIMENSIONS(table, "ROWS");
            rows.push_back(
                plainRow(tableTitle(table), numberText(across) + " columns, " + numberText(down) + " rows"));
        });
    }
    return rows;
}

std::vector<PageRow> notesRows(Unit& unit) {
    std::vector<PageRow> rows;
    for (const std::string& line : split(unit.NOTES_TEXT(), '\n')) {
        rows.push_back(plainRow(rows.empty() ? "Notes" : "", std::string(trimmed(line))));
    }
    return rows;
}

std::vector<PageRow> managerRows(Unit& unit) {
    std::vector<PageRow> rows;
    for (int pin = 0; pin <= unit.kind().numGpio; ++pin) {
        skipFailing([&] {
            rows.push_back(
                plainRow("Channel " + numberText(pin + 1), unit.GPIO_Function_Name(unit.Get_GPIOFUNC(pin))));
        });
    }
    return rows;
}

}  // namespace

std::span<const std::string_view> pageMembers(int page) {
    for (const Page& entry : pages) {
        if (entry.number == page) return entry.members;
    }
    return {};
}

std::vector<int> pagesWithMembers() {
    std::vector<int> numbers;
    numbers.reserve(std::size(pages));
    for (const Page& entry : pages) numbers.push_back(entry.number);
    return numbers;
}

std::vector<PageRow> pageRows(Session& session, int page) {
    if (session.currentUnit() == 0) return {};
    Unit& unit = session.currentUnitObject();
    if (page == overviewPage) return overviewRows(session);
    if (page == notesPage) return notesRows(unit);
    if (page == managerPage) return managerRows(unit);
    std::vector<PageRow> rows;
    for (const std::string_view member : pageMembers(page)) {
        const Parameter* parameter = unit.find(member);
        if (parameter != nullptr) rows.push_back(memberRow(unit, *parameter));
    }
    return rows;
}

}  // namespace zentaq
