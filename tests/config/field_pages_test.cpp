#include "config/field_pages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <utility>

#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Each control and the member that it edits.
constexpr std::pair<const char*, const char*> controls[] = {
    {"BAR_ADV_DAT", "BARO_ADV"},
    {"BAR_TRIM_DAT", "BARO_TRIM"},
    {"chk_Alpha_N", "LOWBLD"},
    {"chkIdleMotorDeactive", "opt_IdleMotorDeactive"},
    {"chkTPS", "TPS_MARGIN_TOGGLE"},
    {"EGO_AFRatio", "Y"},
    {"BND_RPMT", "BLDTBL"},
    {"BND_TPST", "LOWBLD"},
    {"CLT_DAT", "CLTTBL"},
    {"DualPLG", "SPLITBL"},
    {"MAT_DAT", "MATADV"},
    {"MAT_FUEL", "MATENH"},
    {"opt3Stage", "opt_3Stage"},
    {"optACE0", "ACE0"},
    {"optACE1", "ACE1"},
    {"optDCCL_CutActive", "DCCL_CutActive"},
    {"optFuelCut", "opt_FuelCut"},
    {"optFullCut", "opt_FullCut"},
    {"optIdle_Speed", "opt_IdleSpeed"},
    {"optInjAmp2", "AMP42"},
    {"optInjAmp4", "AMP42"},
    {"optInjFix_Active", "INJFIX_RPM"},
    {"optKnock_Active", "opt_KnockActive"},
    {"optMAP_Active", "MAP_Active"},
    {"optNoFuelCut", "opt_NoFuelCut"},
    {"optOverBoost", "MAP_Max"},
    {"optProgCut", "opt_ProgCut"},
    {"optRevApproach", "REV_Limit_Approach"},
    {"optTDC_Param1", "opt_TDCParam1"},
    {"optTDC_Param2", "opt_TDCParam2"},
    {"optTDC_Param3", "opt_TDCParam3"},
    {"optTDC_Param4", "opt_TachInv"},
    {"optZeroAdv", "opt_ZeroAdv"},
    {"txtASE0_TEMP", "ASE0"},
    {"txtASE1_TEMP", "ASE1"},
    {"txtBatComp", "BATCom"},
    {"txtBOOST_Cutoff", "BSTCTTM"},
    {"txtBOOST_MaxMap", "MAP_Max"},
    {"txtBOV", "TBSOFF"},
    {"txtCLT_SENSOR3", "CLT_Default"},
    {"txtCLT0", "SECLT"},
    {"txtCON_1S", "ACE3"},
    {"txtCON_VAR", "ACE7"},
    {"txtCYL_FIRE", "CYLORDER"},
    {"txtCYL_FT", "FuelTrim"},
    {"txtCYL_IT", "INJTRIM"},
    {"txtDCCL_0", "DCCL_0"},
    {"txtDCCL_1", "DCCL_1"},
    {"txtDCCL_3", "DCCL_3"},
    {"txtDCCL_4", "DCCL_4"},
    {"txtDCCL_TPS", "TPS_FCV"},
    {"txtDEC_VAR", "ACE5"},
    {"txtEGO_HighVoltage", "EGO_HighVoltage"},
    {"txtEGO_LowVoltage", "EGO_LowVoltage"},
    {"txtEGO_Param1", "CONDIV"},
    {"txtEGO_Param2", "AVRDIV"},
    {"txtEGO_Param3", "Register_Number"},
    {"txtEGO_Param4", "EGO_LMT"},
    {"txtEGO_Param5", "EGO_RPM"},
    {"txtEGO_Param6", "EGO_MAP"},
    {"txtEGO_Param7", "EGO_TMP"},
    {"txtEGO_Param8", "EGO_RPML"},
    {"txtFIXED_PW", "ACCL_PW"},
    {"txtFIXED_PW_TIME", "ACCL_TM"},
    {"txtIDLE_ADVHI", "IS_RTD"},
    {"txtIDLE_ADVLO", "IS_ADV"},
    {"txtIDLE_Coolant", "ISTMP"},
    {"txtIDLE_ErrorMinus", "NEGPGAIN"},
    {"txtIDLE_ErrorPlus", "POSPGAIN"},
    {"txtIDLE_MAX", "MaxDuty"},
    {"txtIDLE_MIN", "MinDuty"},
    {"txtIDLE_Position", "Reset_Duty"},
    {"txtIDLE_Choke", "IAC_Start"},
    {"txtIDLE_RstRPM", "IAC_RPM_HI"},
    {"txtIDLE_RstHys", "IAC_RPM_LO"},
    {"txtIDLE_RateMinus", "NEGDGAIN"},
    {"txtIDLE_RatePlus", "POSDGAIN"},
    {"txtIDLE_Speed", "ISRPM"},
    {"txtInitAdv", "Initial_Advance"},
    {"txtINJFIX_PW", "INJFIX_PW"},
    {"txtINJFIX_RPM", "INJFIX_RPM"},
    {"txtKNOCK_CTL1", "KNK_MIN"},
    {"txtKNOCK_CTL2", "KNK_ATK"},
    {"txtKNOCK_CTL3", "KNK_MAX"},
    {"txtKNOCK_CTL4", "KNK_DCY"},
    {"txtKNOCK_CTL5", "KNK_RPM"},
    {"txtMAF_FailHigh", "MAP_FailHigh"},
    {"txtMAF_FailLow", "MAP_FailLow"},
    {"txtMAF_Default", "MAP_Default"},
    {"txtMAFMAX", "MAFMax"},
    {"txtMAP_SENS", "ACE1"},
    {"txtMAP_TBL", "MAPTBL"},
    {"txtMAP_VAR", "ACE6"},
    {"txtPOT", "INJ_On"},
    {"txtPW0", "SEPW"},
    {"txtREV_Auxiliary", "REV_AuxLimiter"},
    {"txtREV_Hysteresis", "REV_Hysteresis"},
    {"txtREV_Primary", "REV_Limiter"},
    {"txtREV_Update", "CYL_OvrThr"},
    {"txtREV_Wait1", "OVR1THR"},
    {"txtREV_Wait2", "OVR2THR"},
    {"txtREV_Wait3", "CYL_CutDly"},
    {"txtRevApproach", "REV_Limit_Approach"},
    {"txtRPM_TBL", "RPMTBL"},
    {"txtSENSOR_CLT1", "CLT_FailHigh"},
    {"txtSENSOR_CLT2", "CLT_FailLow"},
    {"txtSENSOR_EGO1", "EGO_FailTime"},
    {"txtSENSOR_EGO2", "EGO_SUD"},
    {"txtSENSOR_Knock", "KNK_Timer"},
    {"txtSENSOR_MAP1", "MAP_BAR"},
    {"txtSENSOR_MAP2", "MAP_FailHigh"},
    {"txtSENSOR_MAP3", "MAP_FailLow"},
    {"txtSENSOR_MAP4", "MAP_Default"},
    {"txtSENSOR_MAP5", "MAP_FIL"},
    {"txtSENSOR_MAT1", "MAT_FailHigh"},
    {"txtSENSOR_MAT2", "MAT_FailLow"},
    {"txtSENSOR_MAT3", "MAT_Default"},
    {"txtSENSOR_TPS1", "TPS_FCV"},
    {"txtSENSOR_TPS2", "TPS_WOV"},
    {"txtSENSOR_TPS3", "TPS_FailHigh"},
    {"txtSENSOR_TPS4", "TPS_FailLow"},
    {"txtSENSOR_TPS5", "TPS_Default"},
    {"txtTDC_Param1", "TACHTYP"},
    {"txtTDC_Param2", "TOFFSET1"},
    {"txtTDC_Param3", "TOFFSET2"},
    {"txtTDC_Param4", "MOFFSET"},
    {"txtTEMP_1S", "ACE2"},
    {"txtTIME_VAR", "ACE4"},
    {"txtTPS_SENS", "ACE0"},
    {"EGO_Volts", "X"},
    {"txtTPSvalue", "TPS_MARGIN_VALUE"},
    {"txtUAP", "scale1"},
    {"WE", "CHKTBL"},
};

TEST(FieldPages, EveryControlEditsItsMember) {
    for (const auto& [control, member] : controls) {
        const FieldRow* row = fieldOf(control);
        ASSERT_NE(row, nullptr) << control;
        EXPECT_EQ(row->member, member) << control;
    }
}

TEST(FieldPages, ControlsOfBareBitsHaveNoMemberButAState) {
    for (const char* control :
         {"optEGO_Param1", "optIdle_Active", "optMAPMAF", "optMATSEN_OnOff", "optREV_Active"}) {
        const FieldRow* row = fieldOf(control);
        ASSERT_NE(row, nullptr) << control;
        EXPECT_EQ(row->member, "") << control;
        EXPECT_NE(row->isOn, nullptr) << control;
        EXPECT_EQ(row->kind, FieldKind::Option) << control;
    }
}

TEST(FieldPages, AControlIsFoundWhateverItsCase) {
    ASSERT_NE(fieldOf("TXTBOV"), nullptr);
    EXPECT_EQ(fieldOf("TXTBOV")->member, "TBSOFF");
    EXPECT_EQ(fieldOf("txtNothing"), nullptr);
}

TEST(FieldPages, OnlyOneNameStandsForNoMemberOfAnyUnit) {
    RecordingHost host;
    const Unit unit{orbaKind(), host};
    std::vector<std::string> strangers;
    for (const FieldRow& row : fieldRows()) {
        if (!row.member.empty() && !unit.has(row.member)) strangers.emplace_back(row.control);
        if (!row.needs.empty()) {
            EXPECT_TRUE(unit.has(row.needs)) << row.control;
        }
    }
    EXPECT_THAT(strangers, ElementsAre("txtBTO"));
}

TEST(FieldPages, AControlStandsOnceOnAPageAndHasOneMemberEverywhere) {
    std::set<std::pair<int, std::string_view>> seen;
    std::map<std::string_view, std::string_view> members;
    for (const FieldRow& row : fieldRows()) {
        EXPECT_TRUE(seen.insert({row.page, row.control}).second) << row.control;
        const auto [known, fresh] = members.insert({row.control, row.member});
        EXPECT_EQ(known->second, row.member) << row.control;
    }
}

TEST(FieldPages, ASwitchIsAnOptionOfTheSamePage) {
    int switched = 0;
    for (const FieldRow& row : fieldRows()) {
        if (row.switchedBy.empty()) continue;
        ++switched;
        const FieldRow* option = fieldOf(row.switchedBy);
        ASSERT_NE(option, nullptr) << row.control;
        EXPECT_EQ(option->page, row.page) << row.control;
        EXPECT_TRUE(option->kind == FieldKind::Option || option->kind == FieldKind::Check) << row.control;
    }
    EXPECT_GT(switched, 10);
}

TEST(FieldPages, RowsOfAPageFollowEachOther) {
    std::size_t total = 0;
    for (const int page : fieldPageNumbers()) {
        EXPECT_THAT(fieldsOfPage(page), ::testing::Not(IsEmpty())) << page;
        for (const FieldRow& row : fieldsOfPage(page)) EXPECT_EQ(row.page, page) << row.control;
        total += fieldsOfPage(page).size();
    }
    EXPECT_EQ(total, fieldRows().size());
    EXPECT_THAT(fieldsOfPage(99), IsEmpty());
    EXPECT_THAT(fieldPageNumbers(),
                ElementsAre(1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 19, 20, 21, 22, 23, 25,
                            26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 38));
}

class OrbAFields : public ::testing::Test {
 protected:
    RecordingHost host;
    Unit unit{orbaKind(), host};

    OrbAFields() {
        unit.FW_Release(5);
        unit.FW_Build(99);
    }
    bool on(const char* control) { return fieldIsOn(unit, *fieldOf(control)); }
    int elements(const char* control) { return shownElements(unit, *fieldOf(control)); }
};

TEST_F(OrbAFields, CylindersBoundTheTrimTables) {
    unit.set("CYL_Number", 6);
    EXPECT_EQ(elements("txtCYL_FIRE"), 6);
    EXPECT_EQ(elements("txtCYL_FT"), 6);
    EXPECT_EQ(elements("txtCYL_IT"), 6);
    unit.set("CYL_Number", 12);
    EXPECT_EQ(elements("txtCYL_FIRE"), 12);
    EXPECT_EQ(elements("txtCYL_FT"), 8);  // eight trims, whatever the engine
    unit.set("CYL_Number", 0);
    EXPECT_EQ(elements("txtCYL_IT"), 0);
}

TEST_F(OrbAFields, TheSplitCurveHasAsManyCellsAsTheAdvanceTableHasColumns) {
    unit.SET_TBL_DIMENSIONS("ADV", "COLS", 12);
    EXPECT_EQ(elements("DualPLG"), 12);
    unit.SET_TBL_DIMENSIONS("ADV", "COLS", 24);
    EXPECT_EQ(elements("DualPLG"), 16);
    EXPECT_EQ(elements("CLT_DAT"), 20);
    EXPECT_EQ(elements("chk_Alpha_N"), 1);
}

TEST_F(OrbAFields, ExactlyOneIgnitionOptionIsSetAtTheLimit) {
    unit.set("opt_3Stage", 1);
    unit.set("OVR1THR", 100);
    EXPECT_TRUE(on("opt3Stage"));
    EXPECT_FALSE(on("optZeroAdv"));

    unit.set("OVR1THR", 0);
    EXPECT_TRUE(on("optZeroAdv"));
    EXPECT_FALSE(on("opt3Stage"));

    unit.set("OVR2THR", 50);
    EXPECT_TRUE(on("opt3Stage"));

    unit.set("opt_FullCut", 1);
    EXPECT_TRUE(on("optFullCut"));
    EXPECT_FALSE(on("opt3Stage"));
    EXPECT_FALSE(on("optZeroAdv"));

    unit.set("opt_FullCut", 0);
    EXPECT_TRUE(on("opt3Stage"));
}

TEST_F(OrbAFields, ExactlyOneFuelOptionIsSetAtTheLimit) {
    EXPECT_TRUE(on("optNoFuelCut"));
    EXPECT_FALSE(on("optFuelCut"));
    unit.Set_Control(4, true);
    EXPECT_FALSE(on("optNoFuelCut"));
    EXPECT_TRUE(on("optFuelCut"));
    EXPECT_FALSE(on("optProgCut"));
    unit.Set_Control2(5, true);
    EXPECT_FALSE(on("optFuelCut"));
    EXPECT_TRUE(on("optProgCut"));
    unit.Set_Control(4, false);
    EXPECT_TRUE(on("optNoFuelCut"));
    EXPECT_FALSE(on("optProgCut"));
}

TEST_F(OrbAFields, ATriggerAtItsHighestIsOff) {
    unit.set("ACE0", 1.5);
    EXPECT_TRUE(on("optACE0"));
    unit.set("ACE0", 51.75);
    EXPECT_FALSE(on("optACE0"));
    unit.set("ACE1", 0.8);
    EXPECT_TRUE(on("optACE1"));
    unit.set("ACE1", unit.limits("ACE1").maximum);
    EXPECT_FALSE(on("optACE1"));
}

TEST_F(OrbAFields, ThrottleAloneNeedsTheWholeShareAtEverySpeed) {
    for (int i = 0; i < 8; ++i) unit.set("LOWBLD", 100, i);
    EXPECT_TRUE(on("chk_Alpha_N"));
    unit.set("LOWBLD", 99, 7);
    EXPECT_FALSE(on("chk_Alpha_N"));
}

TEST_F(OrbAFields, TheInjectorCurrentIsOneOfTwo) {
    unit.set("AMP42", 0);
    EXPECT_TRUE(on("optInjAmp2"));
    EXPECT_FALSE(on("optInjAmp4"));
    unit.set("AMP42", 1);
    EXPECT_FALSE(on("optInjAmp2"));
    EXPECT_TRUE(on("optInjAmp4"));
}

TEST_F(OrbAFields, MassFlowIsTheFirstBitOfTheSecondControlByte) {
    EXPECT_FALSE(on("optMAPMAF"));
    unit.Set_Control2(0, true);
    EXPECT_TRUE(on("optMAPMAF"));
}

/// A value that a member takes.
double someValue(Unit& unit, const Parameter& row) {
    if (row.name == "Y") return 14;
    const Limits limits = unit.limits(row.name);
    if (std::holds_alternative<ListedValues>(row.range)) return limits.maximum;
    if (limits.unlimited()) return 1;
    return static_cast<double>(limits.minimum) + (static_cast<double>(limits.maximum) - limits.minimum) / 2;
}

class FieldsOfKind : public ::testing::TestWithParam<const UnitKind*> {};

TEST_P(FieldsOfKind, AreMarkedWhenAChangeIsIndeedSent) {
    RecordingHost host;
    Unit unit{*GetParam(), host};
    unit.FW_Release(5);
    unit.FW_Build(99);
    unit.set("MAP_Active", 1);
    unit.store("MaxDuty", 255);
    unit.set("CYL_Number", 4);
    unit.set("TOOTHMAX", 58);
    unit.set("TOOTHMIN", 1);
    int sent = 0;
    for (const FieldRow& row : fieldRows()) {
        const Parameter* parameter = parameterOf(unit, row);
        if (row.kind != FieldKind::Number || parameter == nullptr) continue;
        const double value = someValue(unit, *parameter);
        host.forget();
        unit.ONFLY_MODE(true);
        EXPECT_TRUE(unit.set(row.member, value)) << row.control;
        unit.ONFLY_MODE(false);
        EXPECT_EQ(sentOnTheFly(unit, row), !host.sent.empty()) << row.control;
        sent += host.sent.empty() ? 0 : 1;
    }
    EXPECT_GT(sent, 20);
}

INSTANTIATE_TEST_SUITE_P(Kinds, FieldsOfKind,
                         ::testing::Values(&orbaKind(), &orbLiteKind(), &pzk2Kind(), &orbcKind(), &orbdKind(),
                                           &orbd6Kind()));

}  // namespace
}  // namespace zentaq
