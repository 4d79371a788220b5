#include "config/field_pages.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "base/rounding.h"
#include "base/text.h"

namespace zentaq {

namespace {

using enum FieldKind;

// ---- States of options

template <int bit>
bool controlBit(Unit& unit) {
    return unit.Get_Control(bit);
}

bool massFlow(Unit& unit) {
    return unit.Get_Control2(massFlowBit);
}

/// The engine runs by the throttle alone when it has the whole share at every speed.
bool throttleAlone(Unit& unit) {
    const Parameter* row = unit.find("LOWBLD");
    for (int i = 0; row != nullptr && i < row->count; ++i) {
        if (unit.read(*row, i) != 100) return false;
    }
    return row != nullptr;
}

/// A threshold at its highest is a trigger switched off: its byte is 255, and nothing lies above.
bool throttleTrigger(Unit& unit) {
    return unit.get("ACE0") < unit.limits("ACE0").maximum;
}

bool pressureTrigger(Unit& unit) {
    return unit.get("ACE1") < roundTo(unit.limits("ACE1").maximum, unit.MAPPrecision() + 1);
}

// Ignition at the limit. Two options share one bit: with it set the thresholds tell which of them is meant,
// as only the three stages use them. Neither bit means the three stages as well.
bool fullCut(Unit& unit) {
    return unit.get("opt_FullCut") != 0;
}
bool zeroAdvance(Unit& unit) {
    return !fullCut(unit) && unit.get("opt_ZeroAdv") != 0 && unit.get("OVR1THR") == 0 &&
           unit.get("OVR2THR") == 0;
}
bool threeStages(Unit& unit) {
    return !fullCut(unit) && !zeroAdvance(unit);
}

// Fuel at the limit.
bool noFuelCut(Unit& unit) {
    return unit.get("opt_FuelCut") == 0;
}
bool progressiveCut(Unit& unit) {
    return unit.get("opt_FuelCut") != 0 && unit.Get_Control2(progressiveCutBit);
}
bool wholeFuelCut(Unit& unit) {
    return unit.get("opt_FuelCut") != 0 && !unit.Get_Control2(progressiveCutBit);
}

bool twoAmps(Unit& unit) {
    return unit.get("AMP42") == 0;
}
bool fourAmps(Unit& unit) {
    return unit.get("AMP42") != 0;
}

bool hasPic18(Unit& unit) {
    return unit.hasPIC18();
}

bool hasEngine(Unit& unit) {
    return unit.get("CYL_Number") != 0;
}

// ---- The pages. A control that the system does not name bears its member's name behind "txt" or "lbl".
// A member whose box stands on another page is a fact where it is needed as well.
// A box whose own value switches its option (0 is off) stays enabled: typing a value is what switches it on.

constexpr auto cylinders = ElementBound::Cylinders;
constexpr auto columns = ElementBound::Columns;

constexpr FieldRow row(FieldKind kind, int page, std::string_view control, std::string_view member,
                       const FieldTraits& traits) {
    FieldRow made;
    static_cast<FieldTraits&>(made) = traits;
    made.page = page;
    made.control = control;
    made.member = member;
    made.kind = kind;
    return made;
}
using Name = std::string_view;
constexpr FieldRow box(int page, Name control, Name member, const FieldTraits& traits = {}) {
    return row(Number, page, control, member, traits);
}
constexpr FieldRow fact(int page, Name control, Name member, const FieldTraits& traits = {}) {
    return row(Fact, page, control, member, traits);
}
constexpr FieldRow option(int page, Name control, Name member, const FieldTraits& traits = {}) {
    return row(Option, page, control, member, traits);
}
constexpr FieldRow check(int page, Name control, Name member, const FieldTraits& traits = {}) {
    return row(Check, page, control, member, traits);
}
constexpr FieldRow choice(int page, Name control, Name member, const FieldTraits& traits = {}) {
    return row(Choice, page, control, member, traits);
}
constexpr FieldRow notes(int page, Name control, const FieldTraits& traits = {}) {
    return row(Notes, page, control, {}, traits);
}

constexpr std::array fieldTable{
    // TPS/MAP Blend
    check(1, "chk_Alpha_N", "LOWBLD", {.caption = "Alpha-N: throttle alone", .isOn = throttleAlone}),
    box(1, "BND_RPMT", "BLDTBL", {.axis = FieldAxis::Number}),
    box(1, "BND_TPST", "LOWBLD", {.axis = FieldAxis::BlendSpeed}),
    // TPS/MAP Acceleration
    option(2, "optACE0", "ACE0", {.caption = "Throttle triggers acceleration", .isOn = throttleTrigger}),
    box(2, "txtTPS_SENS", "ACE0"),
    option(2, "optACE1", "ACE1", {.caption = "Pressure triggers acceleration", .isOn = pressureTrigger}),
    box(2, "txtMAP_SENS", "ACE1", {.unitTail = "/s", .moreDecimals = 1}),
    box(2, "txtTEMP_1S", "ACE2"),
    box(2, "txtCON_1S", "ACE3"),
    box(2, "txtTIME_VAR", "ACE4"),
    box(2, "txtDEC_VAR", "ACE5"),
    box(2, "txtMAP_VAR", "ACE6"),
    box(2, "txtCON_VAR", "ACE7"),
    box(2, "txtFIXED_PW", "ACCL_PW"),
    box(2, "txtFIXED_PW_TIME", "ACCL_TM"),
    box(2, "txtBOV", "TBSOFF"),
    // Deceleration Fuel Cut-Off
    option(3, "optDCCL_CutActive", "DCCL_CutActive"),
    box(3, "txtDCCL_0", "DCCL_0", {.switchedBy = "optDCCL_CutActive"}),
    box(3, "txtDCCL_1", "DCCL_1", {.switchedBy = "optDCCL_CutActive"}),
    option(3, "optMAP_Active", "MAP_Active", {.switchedBy = "optDCCL_CutActive"}),
    box(3, "txtDCCL_3", "DCCL_3", {.switchedBy = "optMAP_Active"}),
    box(3, "txtDCCL_4", "DCCL_4", {.switchedBy = "optDCCL_CutActive"}),
    box(3, "txtDCCL_TPS", "TPS_FCV", {.switchedBy = "optDCCL_CutActive"}),
    // Starting Enrichments
    box(5, "txtPW0", "SEPW"),
    box(5, "txtCLT0", "SECLT"),
    box(5, "txtSE0", "SE0"),
    box(5, "txtSE1", "SE1"),
    box(5, "txtASE0_TEMP", "ASE0"),
    box(5, "txtASE1_TEMP", "ASE1"),
    // Warm-Up Enrichments, MAT Fuel Enrichment
    box(6, "WE", "CHKTBL", {.axis = FieldAxis::Temperature}),
    box(7, "MAT_FUEL", "MATENH", {.axis = FieldAxis::AirTemperature}),
    // OverBoost Fuel Cut-Off
    option(8, "optOverBoost", "MAP_Max", {.caption = "OverBoost Fuel Cut-Off"}),
    box(8, "txtBOOST_MaxMap", "MAP_Max"),
    box(8, "txtBOOST_Cutoff", "BSTCTTM"),
    fact(8, "lblMAX_Boost", "MAX_Boost"),
    // Rev Limiter
    option(9, "optREV_Active", "",
           {.caption = "Rev Limiter", .isOn = controlBit<revLimiterBit>, .needs = "REV_Limiter"}),
    box(9, "txtREV_Primary", "REV_Limiter", {.help = "helprevl"}),
    box(9, "txtREV_Auxiliary", "REV_AuxLimiter"),
    box(9, "txtREV_Hysteresis", "REV_Hysteresis"),
    option(9, "opt3Stage", "opt_3Stage", {.caption = "3-Stage Softrev on Rev Limit", .isOn = threeStages}),
    option(9, "optFullCut", "opt_FullCut", {.caption = "Full Coil Cut", .isOn = fullCut}),
    option(9, "optZeroAdv", "opt_ZeroAdv", {.caption = "Zero Advance on Rev Limit", .isOn = zeroAdvance}),
    box(9, "txtREV_Wait1", "OVR1THR", {.switchedBy = "opt3Stage"}),
    box(9, "txtREV_Wait2", "OVR2THR", {.switchedBy = "opt3Stage"}),
    option(9, "optNoFuelCut", "opt_NoFuelCut",
           {.caption = "No Fuel Cut", .isOn = noFuelCut, .needs = "CYL_OvrThr"}),
    option(9, "optFuelCut", "opt_FuelCut",
           {.caption = "Full Fuel Cut on Revlimit", .isOn = wholeFuelCut, .needs = "CYL_OvrThr"}),
    option(9, "optProgCut", "opt_ProgCut",
           {.caption = "Progressive Fuel Cut on Revlimit", .isOn = progressiveCut, .needs = "CYL_OvrThr"}),
    box(9, "txtREV_Wait3", "CYL_CutDly", {.switchedBy = "optProgCut"}),
    box(9, "txtREV_Update", "CYL_OvrThr", {.switchedBy = "optProgCut"}),
    // Idle Speed
    option(10, "optIdle_Active", "",
           {.caption = "Idle Speed Control", .isOn = controlBit<idleControlBit>, .needs = "ISRPM"}),
    option(10, "optIdle_Speed", "opt_IdleSpeed", {.needs = "ISRPM"}),
    box(10, "txtIDLE_Coolant", "ISTMP", {.axis = FieldAxis::Number, .writerTakesShown = true}),
    box(10, "txtIDLE_Speed", "ISRPM", {.axis = FieldAxis::IdleTemperature}),
    box(10, "txtIDLE_ErrorPlus", "POSPGAIN"),
    box(10, "txtIDLE_ErrorMinus", "NEGPGAIN"),
    box(10, "txtIDLE_RatePlus", "POSDGAIN"),
    box(10, "txtIDLE_RateMinus", "NEGDGAIN"),
    box(10, "txtIDLE_Position", "Reset_Duty"),
    box(10, "txtIDLE_Choke", "IAC_Start"),
    box(10, "txtIDLE_RstRPM", "IAC_RPM_HI"),
    box(10, "txtIDLE_RstHys", "IAC_RPM_LO"),
    check(10, "chkIdleMotorDeactive", "opt_IdleMotorDeactive", {.needs = "ISRPM"}),
    // Advance
    box(11, "txtInitAdv", "Initial_Advance"),
    fact(11, "lblMOFFSET", "MOFFSET"),
    box(12, "CLT_DAT", "CLTTBL", {.axis = FieldAxis::Temperature}),
    box(13, "DualPLG", "SPLITBL", {.elements = columns, .axis = FieldAxis::Speed}),
    box(14, "MAT_DAT", "MATADV",
        {.caption = "MAT ADV", .ignitionCaption = "Advance", .axis = FieldAxis::AirTemperature}),
    // Notes
    notes(15, "txtNotesSection", {.caption = "Notes"}),
    // EGO Parameters
    option(16, "optEGO_Param1", "",
           {.caption = "EGO Feedback Control", .isOn = controlBit<egoFeedbackBit>, .needs = "EGO_LMT"}),
    box(16, "txtEGO_Param1", "CONDIV"),
    box(16, "txtEGO_Param2", "AVRDIV"),
    box(16, "txtEGO_Param3", "Register_Number"),
    box(16, "txtEGO_Param4", "EGO_LMT"),
    box(16, "txtEGO_Param5", "EGO_RPM"),
    box(16, "txtEGO_Param6", "EGO_MAP"),
    box(16, "txtEGO_Param7", "EGO_TMP"),
    // Advanced Parameters
    box(17, "txtRPM_TBL", "RPMTBL", {.axis = FieldAxis::Number}),
    box(17, "txtMAP_TBL", "MAPTBL", {.axis = FieldAxis::Number}),
    option(17, "optInjFix_Active", "INJFIX_RPM", {.caption = "Fixed pulse at low speed"}),
    box(17, "txtINJFIX_RPM", "INJFIX_RPM"),
    box(17, "txtINJFIX_PW", "INJFIX_PW"),
    box(17, "txtMIT", "MT", {.help = "helpmtot"}),
    box(17, "txtFPT", "FPT", {.help = "helpstart"}),
    fact(17, "lblAMP42", "AMP42"),
    fact(17, "lblINJ_Mode", "INJ_Mode"),
    fact(17, "lblINJ_Reset", "INJ_Reset"),
    box(17, "txtPOT", "INJ_On", {.help = "helptiot"}),
    fact(17, "lblopt_TDCParam1", "opt_TDCParam1"),
    // Battery Voltage Compensation. kept: no unit answers to "BAT_Com", so its box stays hidden.
    box(19, "txtBatComp", "BATCom", {.axis = FieldAxis::BatteryVolts}),
    box(19, "txtBTO", "BAT_Com"),
    // General Parameters
    choice(20, "cmbEngine", "Option_Type", {.help = "helpengine"}),
    fact(20, "lblCYL_Number", "CYL_Number"),
    fact(20, "lblIGN_REV", "IGN_REV"),
    fact(20, "lblINJ_Events", "INJ_Events"),
    fact(20, "lblINJ_Mode", "INJ_Mode"),
    fact(20, "lblINJ_Reset", "INJ_Reset"),
    fact(20, "lblPHDSEQ", "PHDSEQ", {.needs = "INJ_Mode"}),
    fact(20, "lblEngine_Type", "Engine_Type"),
    fact(20, "lblAFR", "AFR"),
    box(20, "txtUAP", "scale1", {.help = "helptog"}),
    box(20, "txtTOG", "RPM_Size", {.needs = "scale1", .help = "helptog"}),
    box(20, "txtPOT", "INJ_On", {.help = "helptiot"}),
    box(20, "txtINJ", "INJ_Number", {.caption = "Number of Injectors (1 to 24) ", .help = "helpinjnum"}),
    box(20, "txtLBHR", "INJ_FlowRate", {.caption = "lb/hr", .help = "helpinjsize"}),
    option(20, "optInjAmp2", "AMP42", {.caption = "2 Amp Inj Peak", .isOn = twoAmps, .help = "help42inj"}),
    option(20, "optInjAmp4", "AMP42", {.caption = "4 Amp Inj Peak", .isOn = fourAmps, .help = "help42inj"}),
    choice(20, "cmbCams", "CAMSTL",
           {.caption = "Camshaft Style ",
            .help = "helpCamtype",
            .choices = {"Street / Stock", "Race / High Perf"}}),
    box(20, "txtBHP", "BHP", {.help = "helpBrakeHP"}),
    check(20, "chkAlcohol", "Alcohol",
          {.caption = "Check Box if Engine Alcohol Fueled", .help = "helpfueltype"}),
    box(20, "txtMaxBoost", "MAX_Boost", {.help = "helpMboost"}),
    box(20, "txtTDC_Param1", "TACHTYP"),
    box(20, "txtTDC_Param2", "TOFFSET1"),
    box(20, "txtTDC_Param3", "TOFFSET2"),
    fact(20, "lblP1EGTP", "P1EGTP"),
    fact(20, "lblP2EGTP", "P2EGTP"),
    fact(20, "lblINJTBL", "INJTBL"),
    fact(20, "lblCOFFSET", "COFFSET"),
    fact(20, "lblSOFFSET", "SOFFSET"),
    fact(20, "lblSCALE2", "SCALE2"),
    fact(20, "lblTOOTHMIN", "TOOTHMIN", {.shownWhen = hasPic18}),
    fact(20, "lblTOOTHMAX", "TOOTHMAX", {.shownWhen = hasPic18}),
    box(20, "txtTDC_Param4", "MOFFSET"),
    option(20, "optTDC_Param1", "opt_TDCParam1", {.help = "helpoption"}),
    option(20, "optTDC_Param2", "opt_TDCParam2", {.help = "helpoption"}),
    option(20, "optTDC_Param3", "opt_TDCParam3", {.help = "helpoption"}),
    option(20, "optTDC_Param4", "opt_TachInv", {.help = "helpoption"}),
    // Rev Limit Approach Retard
    option(21, "optRevApproach", "REV_Limit_Approach", {.caption = "Rev Limit Approach Retard"}),
    box(21, "txtRevApproach", "REV_Limit_Approach"),
    // Barometer
    box(22, "BAR_ADV_DAT", "BARO_ADV", {.axis = FieldAxis::Number}),
    box(23, "BAR_TRIM_DAT", "BARO_TRIM", {.axis = FieldAxis::Number}),
    // MAP sensor of older firmware: a rating in bar
    box(25, "txtSENSOR_MAP1", "MAP_BAR", {.help = "helpmaprange"}),
    fact(25, "lblMAP_DISP_MULT", "MAP_DISP_MULT"),
    box(25, "txtSENSOR_MAP2", "MAP_FailHigh"),
    box(25, "txtSENSOR_MAP3", "MAP_FailLow"),
    box(25, "txtSENSOR_MAP4", "MAP_Default"),
    box(25, "txtSENSOR_MAP5", "MAP_FIL"),
    // MAF
    option(26, "optMAPMAF", "",
           {.caption = "MAF Enabled (Replaces MAP)", .isOn = massFlow, .needs = "MAFMax"}),
    box(26, "txtMAFMAX", "MAFMax"),
    box(26, "txtMAF_FailHigh", "MAP_FailHigh"),
    box(26, "txtMAF_FailLow", "MAP_FailLow"),
    box(26, "txtMAF_Default", "MAP_Default"),
    // Coolant
    box(27, "txtSENSOR_CLT1", "CLT_FailHigh"),
    box(27, "txtSENSOR_CLT2", "CLT_FailLow"),
    box(27, "txtCLT_SENSOR3", "CLT_Default", {.caption = "CLT Failure Default Value"}),
    // MAP sensor of today's firmware: a line of the user's
    choice(28, "cmbMAPSensors", "MAP_ID", {.caption = "MAP Sensor Installed", .help = "helpmapsel"}),
    fact(28, "lblMAP_Scaler", "MAP_Scaler"),
    fact(28, "lblMAP_Offset", "MAP_Offset"),
    fact(28, "lblMAPMin", "MAPMin"),
    fact(28, "lblMAPMax", "MAPMax"),
    fact(28, "lblMAP_BAR", "MAP_BAR"),
    fact(28, "lblMAPRange", "MAPRange"),
    fact(28, "lblMAPPrecision", "MAPPrecision"),
    fact(28, "lblMAP_DISP_MULT", "MAP_DISP_MULT"),
    box(28, "txtSENSOR_MAP2", "MAP_FailHigh"),
    box(28, "txtSENSOR_MAP3", "MAP_FailLow"),
    box(28, "txtSENSOR_MAP4", "MAP_Default"),
    box(28, "txtSENSOR_MAP5", "MAP_FIL"),
    // TPS
    box(29, "txtSENSOR_TPS1", "TPS_FCV", {.help = "helpdace3"}),
    box(29, "txtSENSOR_TPS2", "TPS_WOV"),
    box(29, "txtSENSOR_TPS3", "TPS_FailHigh"),
    box(29, "txtSENSOR_TPS4", "TPS_FailLow"),
    box(29, "txtSENSOR_TPS5", "TPS_Default"),
    check(29, "chkTPS", "TPS_MARGIN_TOGGLE"),
    box(29, "txtTPSvalue", "TPS_MARGIN_VALUE", {.switchedBy = "chkTPS"}),
    // EGO
    box(30, "txtEGO_Param8", "EGO_RPML"),
    box(30, "txtSENSOR_EGO1", "EGO_FailTime"),
    box(30, "txtSENSOR_EGO2", "EGO_SUD"),
    box(30, "txtEGO_LowVoltage", "EGO_LowVoltage"),
    box(30, "txtEGO_HighVoltage", "EGO_HighVoltage"),
    // MAT
    option(31, "optMATSEN_OnOff", "",
           {.caption = "MAT sensor", .isOn = controlBit<airSensorBit>, .needs = "MATENH"}),
    box(31, "txtSENSOR_MAT1", "MAT_FailHigh"),
    box(31, "txtSENSOR_MAT2", "MAT_FailLow"),
    box(31, "txtSENSOR_MAT3", "MAT_Default", {.caption = "MAT Failure Default Value"}),
    // Knock
    box(32, "txtSENSOR_Knock", "KNK_Timer"),
    option(33, "optKnock_Active", "opt_KnockActive"),
    box(33, "txtKNOCK_CTL1", "KNK_MIN", {.switchedBy = "optKnock_Active", .help = "helpknock"}),
    box(33, "txtKNOCK_CTL2", "KNK_ATK", {.switchedBy = "optKnock_Active", .help = "helpknock"}),
    box(33, "txtKNOCK_CTL3", "KNK_MAX", {.switchedBy = "optKnock_Active", .help = "helpknock"}),
    box(33, "txtKNOCK_CTL4", "KNK_DCY", {.switchedBy = "optKnock_Active", .help = "helpknock"}),
    box(33, "txtKNOCK_CTL5", "KNK_RPM", {.switchedBy = "optKnock_Active", .help = "helpknock"}),
    // Cylinder Trims
    fact(34, "lblCYL_Number", "CYL_Number", {.shownWhen = hasEngine}),
    box(34, "txtCYL_FIRE", "CYLORDER", {.elements = cylinders, .axis = FieldAxis::Number}),
    box(34, "txtCYL_FT", "FuelTrim", {.elements = cylinders, .axis = FieldAxis::Cylinder}),
    box(34, "txtCYL_IT", "INJTRIM", {.elements = cylinders, .axis = FieldAxis::Cylinder}),
    // Idle
    box(35, "txtIDLE_MIN", "MinDuty"),
    box(35, "txtIDLE_MAX", "MaxDuty"),
    box(36, "txtIDLE_ADVLO", "IS_ADV"),
    box(36, "txtIDLE_ADVHI", "IS_RTD"),
    // EGO Calibration
    choice(38, "EGO_Type", "EGO_Type"),
    choice(38, "optFuelAFR", "AFR", {.needs = "Y", .help = "helpfuelratio"}),
    box(38, "EGO_Volts", "X", {.axis = FieldAxis::Number}),
    box(38, "EGO_AFRatio", "Y", {.axis = FieldAxis::SensorVolts}),
};

}  // namespace

std::span<const FieldRow> fieldRows() {
    return fieldTable;
}

std::span<const FieldRow> fieldsOfPage(int page) {
    return {std::ranges::lower_bound(fieldTable, page, {}, &FieldRow::page),
            std::ranges::upper_bound(fieldTable, page, {}, &FieldRow::page)};
}

const FieldRow* fieldOf(std::string_view control) {
    const std::string wanted = upper(control);
    const auto found =
        std::ranges::find_if(fieldTable, [&](const FieldRow& row) { return upper(row.control) == wanted; });
    return found == fieldTable.end() ? nullptr : &*found;
}

std::vector<int> fieldPageNumbers() {
    std::vector<int> numbers;
    for (const FieldRow& row : fieldTable) {
        if (numbers.empty() || numbers.back() != row.page) numbers.push_back(row.page);
    }
    return numbers;
}

const Parameter* parameterOf(const Unit& unit, const FieldRow& row) {
    return row.member.empty() ? nullptr : unit.find(row.member);
}

bool fieldExists(Unit& unit, const FieldRow& row) {
    if (!unit.kind().hasCalibration) return false;
    if (!row.member.empty() && !unit.has(row.member)) return false;
    if (!row.needs.empty() && !unit.has(row.needs)) return false;
    return row.shownWhen == nullptr || row.shownWhen(unit);
}

int shownElements(Unit& unit, const FieldRow& row) {
    const Parameter* parameter = parameterOf(unit, row);
    const bool indexed = row.kind == Number && parameter != nullptr;
    if (!indexed) return 1;
    switch (row.elements) {
        case ElementBound::Cylinders:
            return std::min(static_cast<int>(unit.get("CYL_Number")), parameter->count);
        case ElementBound::Columns:
            return std::clamp(unit.GET_TBL_DIMENSIONS("ADV", "COLS"), 0, parameter->count);
        case ElementBound::Count:
            break;
    }
    return parameter->count;
}

std::vector<int> elementOrder(Unit& unit, const FieldRow& row) {
    std::vector<int> order(static_cast<std::size_t>(std::max(shownElements(unit, row), 0)));
    std::iota(order.begin(), order.end(), 0);
    const Parameter* firing = unit.find("CYLORDER");
    if (row.axis != FieldAxis::Cylinder || firing == nullptr ||
        static_cast<int>(order.size()) > firing->count)
        return order;
    std::vector<int> fired;
    for (const int place : order) fired.push_back(static_cast<int>(unit.read(*firing, place)) - 1);
    return std::ranges::is_permutation(fired, order) ? fired : order;
}

bool fieldIsOn(Unit& unit, const FieldRow& row) {
    if (row.isOn != nullptr) return row.isOn(unit);
    return !row.member.empty() && unit.get(row.member) != 0;
}

bool sentOnTheFly(const Unit& unit, const FieldRow& row) {
    const Parameter* parameter = parameterOf(unit, row);
    if (parameter == nullptr || row.kind == Fact || row.kind == Choice) return false;
    return parameter->sentOnTheFly();
}

}  // namespace zentaq
