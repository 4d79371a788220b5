// Which controls each page has for each kind of unit, written by hand: a control that comes or goes with a
// change elsewhere is seen here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>
#include <sstream>

#include "config/display.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using Names = std::set<std::string>;

/// Slots: 3 ORB A, 4 ORB L, 5 PZK-2, 6 ORB C, 7 and 8 ORB D.
struct PageTold {
    int page;
    const char* slots;
    const char* controls;
};

constexpr auto fullKinds = "34678";
constexpr auto allKinds = "345678";

// Firmware of today, with the throttle's share of the first blend point below 100.
const std::vector<PageTold> told{
    // TPS/MAP Blend, TPS/MAP Acceleration, Deceleration Fuel Cut-Off
    {1, fullKinds, "chk_Alpha_N BND_RPMT BND_TPST"},
    {2, fullKinds,
     "optACE0 txtTPS_SENS optACE1 txtMAP_SENS txtTEMP_1S txtCON_1S txtTIME_VAR txtDEC_VAR txtMAP_VAR "
     "txtCON_VAR txtFIXED_PW txtFIXED_PW_TIME txtBOV"},
    {3, fullKinds, "optDCCL_CutActive txtDCCL_0 txtDCCL_1 optMAP_Active txtDCCL_3 txtDCCL_4 txtDCCL_TPS"},
    // Starting, warm-up and air temperature enrichment, over-boost
    {5, fullKinds, "txtPW0 txtCLT0 txtSE0 txtSE1 txtASE0_TEMP txtASE1_TEMP"},
    {6, fullKinds, "WE"},
    {7, fullKinds, "MAT_FUEL"},
    {8, fullKinds, "optOverBoost txtBOOST_MaxMap txtBOOST_Cutoff lblMAX_Boost"},
    // Rev limiter
    {9, allKinds,
     "optREV_Active txtREV_Primary txtREV_Auxiliary txtREV_Hysteresis opt3Stage optFullCut optZeroAdv "
     "txtREV_Wait1 txtREV_Wait2"},
    {9, fullKinds, "optNoFuelCut optFuelCut optProgCut txtREV_Wait3 txtREV_Update"},
    // Idle
    {10, fullKinds,
     "optIdle_Active optIdle_Speed txtIDLE_Coolant txtIDLE_Speed txtIDLE_ErrorPlus txtIDLE_ErrorMinus "
     "txtIDLE_RatePlus txtIDLE_RateMinus txtIDLE_Position txtIDLE_Choke txtIDLE_RstRPM txtIDLE_RstHys "
     "chkIdleMotorDeactive"},
    // Advance
    {11, allKinds, "txtInitAdv lblMOFFSET"},
    {12, fullKinds, "CLT_DAT"},
    {13, "3456", "DualPLG"},
    {14, allKinds, "MAT_DAT"},
    {15, allKinds, "txtNotesSection"},
    // EGO parameters
    {16, fullKinds,
     "optEGO_Param1 txtEGO_Param1 txtEGO_Param2 txtEGO_Param3 txtEGO_Param4 txtEGO_Param5 txtEGO_Param6 "
     "txtEGO_Param7"},
    // Advanced parameters
    {17, allKinds, "txtRPM_TBL txtMAP_TBL lblopt_TDCParam1"},
    {17, fullKinds,
     "optInjFix_Active txtINJFIX_RPM txtINJFIX_PW txtMIT txtFPT lblAMP42 lblINJ_Mode lblINJ_Reset txtPOT"},
    // Battery; no unit answers to the member of txtBTO
    {19, fullKinds, "txtBatComp"},
    // General parameters
    {20, allKinds,
     "cmbEngine lblCYL_Number lblIGN_REV lblEngine_Type lblAFR txtMaxBoost txtTDC_Param1 txtTDC_Param2 "
     "txtTDC_Param3 txtTDC_Param4 optTDC_Param1 optTDC_Param2 optTDC_Param3 lblP1EGTP lblP2EGTP lblSOFFSET"},
    {20, fullKinds,
     "lblINJ_Events lblINJ_Mode lblINJ_Reset lblPHDSEQ txtUAP txtTOG txtPOT txtINJ txtLBHR optInjAmp2 "
     "optInjAmp4 cmbCams txtBHP chkAlcohol lblINJTBL lblCOFFSET lblSCALE2"},
    {20, "3456", "optTDC_Param4"},
    // units with the newer processor; an ORB L and a PZK-2 have it when they say so
    {20, "678", "lblTOOTHMIN lblTOOTHMAX"},
    {21, allKinds, "optRevApproach txtRevApproach"},
    // Sensors
    {26, fullKinds, "optMAPMAF txtMAFMAX txtMAF_FailHigh txtMAF_FailLow txtMAF_Default"},
    {27, fullKinds, "txtSENSOR_CLT1 txtSENSOR_CLT2 txtCLT_SENSOR3"},
    {28, allKinds,
     "cmbMAPSensors lblMAP_Scaler lblMAP_Offset lblMAPMin lblMAPMax lblMAP_BAR lblMAPRange lblMAPPrecision "
     "lblMAP_DISP_MULT txtSENSOR_MAP2 txtSENSOR_MAP3 txtSENSOR_MAP4 txtSENSOR_MAP5"},
    {29, fullKinds,
     "txtSENSOR_TPS1 txtSENSOR_TPS2 txtSENSOR_TPS3 txtSENSOR_TPS4 txtSENSOR_TPS5 chkTPS txtTPSvalue"},
    {30, fullKinds, "txtEGO_Param8 txtSENSOR_EGO1 txtSENSOR_EGO2 txtEGO_LowVoltage txtEGO_HighVoltage"},
    {31, fullKinds, "optMATSEN_OnOff txtSENSOR_MAT1 txtSENSOR_MAT2 txtSENSOR_MAT3"},
    {32, allKinds, "txtSENSOR_Knock"},
    {33, allKinds, "optKnock_Active txtKNOCK_CTL1 txtKNOCK_CTL2 txtKNOCK_CTL3 txtKNOCK_CTL4 txtKNOCK_CTL5"},
    // Trims, with an engine
    {34, allKinds, "lblCYL_Number txtCYL_FIRE txtCYL_IT"},
    {34, fullKinds, "txtCYL_FT"},
    {35, fullKinds, "txtIDLE_MIN txtIDLE_MAX"},
    {36, fullKinds, "txtIDLE_ADVLO txtIDLE_ADVHI"},
    {38, fullKinds, "EGO_Type optFuelAFR EGO_Volts EGO_AFRatio"},
};

std::map<int, Names> toldFor(int slot) {
    std::map<int, Names> pages;
    for (const PageTold& page : told) {
        if (std::string_view(page.slots).find(static_cast<char>('0' + slot)) == std::string_view::npos)
            continue;
        std::istringstream names(page.controls);
        for (std::string name; names >> name;) pages[page.page].insert(name);
    }
    return pages;
}

std::map<int, Names> shownOf(Unit& unit) {
    std::map<int, Names> pages;
    for (const Field& field : display(unit, {}).fields) pages[field.page].insert(field.control);
    return pages;
}

struct Kind {
    RecordingHost host;
    Unit unit;

    explicit Kind(int slot) : unit(*unitKindOfSlot(slot), host) {
        unit.FW_Release(5);
        unit.set("CYL_Number", 4);
        unit.SET_TBL_DIMENSIONS("ADV", "COLS", 16);
    }
};

class PageControls : public testing::TestWithParam<int> {};

TEST_P(PageControls, AreThoseOfTheKind) {
    Kind kind(GetParam());
    EXPECT_EQ(shownOf(kind.unit), toldFor(GetParam()));
}

TEST_P(PageControls, WithAFirstBlendPointOf100TheBarometersPagesComeToFullUnits) {
    Kind kind(GetParam());
    auto pages = toldFor(GetParam());
    if (GetParam() != 5) {
        kind.unit.set("LOWBLD", 100, 0);
        pages[22] = {"BAR_ADV_DAT"};
        pages[23] = {"BAR_TRIM_DAT"};
    }
    EXPECT_EQ(shownOf(kind.unit), pages);
}

TEST_P(PageControls, OldFirmwareHasTheSensorByItsRatingAndNoApproachRetard) {
    Kind kind(GetParam());
    kind.unit.FW_Release(2);
    auto pages = toldFor(GetParam());
    pages.erase(21);
    pages.erase(28);
    pages[25] = {"txtSENSOR_MAP1", "lblMAP_DISP_MULT", "txtSENSOR_MAP2",
                 "txtSENSOR_MAP3", "txtSENSOR_MAP4",   "txtSENSOR_MAP5"};
    EXPECT_EQ(shownOf(kind.unit), pages);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, PageControls, testing::Values(3, 4, 5, 6, 7, 8));

// ---- Order

TEST(TrimsPage, ShowsTheCylindersInFiringOrder) {
    Kind kind(3);
    for (int i = 0; i < 4; ++i) {
        const int order[] = {1, 3, 4, 2};
        kind.unit.set("CYLORDER", order[i], i);
        kind.unit.set("FuelTrim", i + 1, i);
    }
    std::vector<std::string> stops;
    std::vector<std::string> values;
    for (const Field& field : displayOfPage(kind.unit, 34).fields) {
        if (field.control != "txtCYL_FT") continue;
        stops.push_back(field.axis);
        values.push_back(field.text);
    }
    EXPECT_THAT(stops, testing::ElementsAre("Cyl. 1", "Cyl. 3", "Cyl. 4", "Cyl. 2"));
    EXPECT_THAT(values, testing::ElementsAre("1", "3", "4", "2"));
}

TEST(TrimsPage, AnOrderThatNamesACylinderTwiceIsShownByNumber) {
    Kind kind(3);
    for (int i = 0; i < 4; ++i) kind.unit.set("CYLORDER", i == 3 ? 1 : i + 1, i);
    std::vector<std::string> stops;
    for (const Field& field : displayOfPage(kind.unit, 34).fields) {
        if (field.control == "txtCYL_IT") stops.push_back(field.axis);
    }
    EXPECT_THAT(stops, testing::ElementsAre("Cyl. 1", "Cyl. 2", "Cyl. 3", "Cyl. 4"));
}

TEST(SplitPage, IsClosedWhereTheEngineSaysSo) {
    Kind kind(3);
    EngineFacts engine;
    engine.editDfub = false;
    kind.host.engines[{3, 0}] = engine;
    EXPECT_FALSE(displayOfPage(kind.unit, 13).fields.front().enabled);
}

}  // namespace
}  // namespace zentaq
