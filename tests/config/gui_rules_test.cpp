#include "config/gui_rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "config/field_pages.h"
#include "config/tree.h"
#include "unit/recording_host.h"
#include "unit/table_kinds.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int lowBlendCell = 228;

std::vector<int> visiblePages(const GuiRules& rules) {
    std::vector<int> pages;
    for (const PageRule& page : rules.pages) {
        if (page.visible) pages.push_back(page.number);
    }
    return pages;
}

std::vector<std::string_view> tablesOf(const UnitKind& kind) {
    std::vector<std::string_view> names;
    for (const TableKind& table : tableKinds()) {
        if (hasTable(kind, table)) names.push_back(table.name);
    }
    return names;
}

/// A calibration with a throttle-only blend, so that the barometer pages are in use.
struct Calibration {
    RecordingHost host;
    Unit unit;

    explicit Calibration(const UnitKind& kind, int release = 5, bool baro = true) : unit(kind, host) {
        unit.FW_Release(release);
        unit.FW_Build(9);
        if (baro && unit.has("LOWBLD")) unit.AssignDirectIndex(100, lowBlendCell);
    }
    GuiRules rules() { return guiRules(unit); }
    bool visible(const char* control) { return rules().control(control)->visible; }
    bool enabled(const char* control) { return rules().control(control)->enabled; }
};

TEST(GuiRules, TheFullKindsShowEveryPageButTheOldSensor) {
    for (const UnitKind* kind : {&orbaKind(), &orbLiteKind(), &orbcKind()}) {
        Calibration calibration(*kind);
        EXPECT_THAT(visiblePages(calibration.rules()),
                    ElementsAre(0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 19, 20, 21, 22, 23,
                                26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 38))
            << kind->model;
    }
}

TEST(GuiRules, TheOrbDHasNoDualPlugPageAndNoStagedPulsewidth) {
    for (const UnitKind* kind : {&orbdKind(), &orbd6Kind()}) {
        Calibration calibration(*kind);
        const GuiRules rules = calibration.rules();
        EXPECT_THAT(visiblePages(rules),
                    ElementsAre(0, 1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 14, 15, 16, 17, 19, 20, 21, 22, 23, 26,
                                27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 38));
        EXPECT_THAT(tablesOf(*kind), ElementsAre("ADV", "AFR", "VE", "GPO1", "GPO2"));
        EXPECT_THAT(rules.lacking, ElementsAre("SPW", "opt_TachInv"));
        EXPECT_FALSE(rules.control("DualPLG")->visible);
        EXPECT_FALSE(rules.control("optTDC_Param4")->visible);
        EXPECT_TRUE(rules.control("optTDC_Param3")->visible);
    }
}

TEST(GuiRules, ThePzk2ShowsItsIgnitionPagesOnly) {
    Calibration calibration(pzk2Kind());
    const GuiRules rules = calibration.rules();
    EXPECT_THAT(visiblePages(rules), ElementsAre(0, 9, 11, 13, 14, 15, 17, 20, 21, 28, 32, 33, 34));
    EXPECT_THAT(tablesOf(pzk2Kind()), ElementsAre("ADV", "GPO1", "GPO2"));
    EXPECT_FALSE(hasTable(pzk2Kind(), "AFR"));  // though it has a scalar of this name
    EXPECT_THAT(rules.lacking, Contains("VE"));
    EXPECT_THAT(rules.lacking, Contains("Get_AFR"));
    EXPECT_THAT(rules.lacking, Not(Contains("AFR")));
    EXPECT_THAT(rules.lacking, Not(Contains("ADV")));
    EXPECT_EQ(rules.page(14)->title, "External Retard");
    EXPECT_EQ(rules.control("MAT_DAT")->caption, "Advance");
}

TEST(GuiRules, ThePzk2HidesTheFuelSideOfSharedPages) {
    Calibration calibration(pzk2Kind());
    for (const char* control : {"optNoFuelCut", "optFuelCut", "optProgCut", "txtREV_Wait3", "txtREV_Update",
                                "txtCYL_FT", "txtUAP", "txtPOT", "optInjAmp2", "txtINJFIX_RPM"}) {
        EXPECT_FALSE(calibration.visible(control)) << control;
    }
    for (const char* control : {"opt3Stage", "optFullCut", "optZeroAdv", "txtREV_Primary", "txtCYL_IT",
                                "txtCYL_FIRE", "txtTDC_Param1", "cmbEngine", "txtRPM_TBL"}) {
        EXPECT_TRUE(calibration.visible(control)) << control;
    }
}

TEST(GuiRules, TheOrbAHasEveryTableAndMember) {
    Calibration calibration(orbaKind());
    const GuiRules rules = calibration.rules();
    EXPECT_THAT(tablesOf(orbaKind()), ElementsAre("ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"));
    EXPECT_THAT(rules.lacking, IsEmpty());
    EXPECT_EQ(rules.page(14)->title, "MAT Density Advance/Retard");
    EXPECT_EQ(rules.control("MAT_DAT")->caption, "MAT ADV");
    EXPECT_EQ(rules.page(33)->help, "helpknock");
    EXPECT_EQ(rules.firmware, "5.09");
}

TEST(GuiRules, WithoutACalibrationOnlyTheOverviewIsLeft) {
    RecordingHost host;
    Unit none{nullKind(), host};
    const GuiRules rules = guiRules(none);
    EXPECT_THAT(visiblePages(rules), ElementsAre(0));
    EXPECT_THAT(tablesOf(nullKind()), IsEmpty());
    EXPECT_EQ(rules.firmware, "");
    for (const ControlRule& control : rules.controls) EXPECT_FALSE(control.visible) << control.control;
}

TEST(GuiRules, EveryPageAndTableOfEveryTreeIsOpenAndNoHiddenOneIsReachable) {
    for (const UnitKind& kind : unitKinds()) {
        for (const int release : {1, 2, 3, 5}) {
            for (const bool baro : {false, true}) {
                Calibration calibration(kind, release, baro);
                const GuiRules rules = calibration.rules();
                std::set<int> reachable;
                for (const TreeNode& node : treeNodes(calibration.unit)) {
                    if (!node.table.empty()) {
                        EXPECT_TRUE(hasTable(kind, node.table)) << kind.className << " " << node.text;
                        EXPECT_GT(calibration.unit.find("Get_" + node.table)->count, 1) << node.text;
                    }
                    if (node.page < 0) continue;
                    reachable.insert(node.page);
                    ASSERT_NE(rules.page(node.page), nullptr) << kind.className << " " << node.text;
                    EXPECT_TRUE(rules.pageVisible(node.page)) << kind.className << " " << node.text;
                }
                EXPECT_THAT(visiblePages(rules), ElementsAreArray(reachable)) << kind.className;
            }
        }
    }
}

TEST(GuiRules, AVisibleControlHasItsMemberAndStandsOnAVisiblePage) {
    for (const UnitKind& kind : unitKinds()) {
        Calibration calibration(kind);
        const GuiRules rules = calibration.rules();
        int visible = 0;
        for (const ControlRule& control : rules.controls) {
            if (!control.visible) continue;
            ++visible;
            EXPECT_TRUE(rules.pageVisible(control.page)) << control.control;
            EXPECT_FALSE(control.caption.empty()) << control.control;
            const std::string_view member = fieldOf(control.control)->member;
            EXPECT_TRUE(member.empty() || calibration.unit.has(member)) << control.control;
        }
        EXPECT_GT(visible, 30) << kind.className;
    }
}

TEST(GuiRules, OldFirmwareHasTheBarRatingPageAndNoApproach) {
    for (const UnitKind& kind : unitKinds()) {
        Calibration calibration(kind, 2);
        EXPECT_TRUE(calibration.rules().pageVisible(25)) << kind.className;
        EXPECT_FALSE(calibration.rules().pageVisible(28)) << kind.className;
        EXPECT_FALSE(calibration.rules().pageVisible(21)) << kind.className;
        EXPECT_TRUE(calibration.visible("txtSENSOR_MAP1"));
        EXPECT_FALSE(calibration.visible("cmbMAPSensors"));
        EXPECT_EQ(calibration.rules().control("txtSENSOR_MAP2")->page, 25);
        calibration.unit.FW_Release(3);
        EXPECT_FALSE(calibration.visible("txtSENSOR_MAP1"));
        EXPECT_TRUE(calibration.visible("cmbMAPSensors"));
        EXPECT_TRUE(calibration.visible("txtRevApproach"));
        EXPECT_EQ(calibration.rules().control("txtSENSOR_MAP2")->page, 28);
    }
}

TEST(GuiRules, BarometerPagesShowOnlyWhileTheFirstLowBlendCellIs100) {
    Calibration calibration(orbaKind(), 5, false);
    EXPECT_FALSE(calibration.visible("BAR_ADV_DAT"));
    EXPECT_FALSE(calibration.visible("BAR_TRIM_DAT"));
    calibration.unit.AssignDirectIndex(100, lowBlendCell);
    EXPECT_TRUE(calibration.visible("BAR_ADV_DAT"));
    EXPECT_TRUE(calibration.visible("BAR_TRIM_DAT"));
}

TEST(GuiRules, ToothLimitsShowWhereTheUnitHasThem) {
    Calibration lite(orbLiteKind());
    EXPECT_FALSE(lite.visible("lblTOOTHMIN"));
    lite.unit.hasPIC18(true);
    EXPECT_TRUE(lite.visible("lblTOOTHMIN"));
    EXPECT_TRUE(lite.visible("lblTOOTHMAX"));
    EXPECT_FALSE(lite.enabled("lblTOOTHMAX"));
    EXPECT_FALSE(Calibration(orbaKind()).visible("lblTOOTHMIN"));
    EXPECT_TRUE(Calibration(orbcKind()).visible("lblTOOTHMIN"));
}

TEST(GuiRules, KnockBoxesAreEnabledWhileKnockControlIsOn) {
    for (const UnitKind& kind : unitKinds()) {
        Calibration calibration(kind);
        EXPECT_TRUE(calibration.enabled("optKnock_Active"));
        EXPECT_FALSE(calibration.enabled("txtKNOCK_CTL1")) << kind.className;
        EXPECT_FALSE(calibration.enabled("txtKNOCK_CTL5")) << kind.className;
        calibration.unit.set("opt_KnockActive", 1);
        EXPECT_TRUE(calibration.enabled("txtKNOCK_CTL1")) << kind.className;
        EXPECT_TRUE(calibration.enabled("txtKNOCK_CTL5")) << kind.className;
        EXPECT_TRUE(calibration.enabled("txtSENSOR_Knock")) << kind.className;
    }
}

TEST(GuiRules, RevLimitBoxesFollowTheirOptions) {
    Calibration calibration(orbaKind());
    EXPECT_TRUE(calibration.enabled("txtREV_Wait1"));  // three stages
    EXPECT_FALSE(calibration.enabled("txtREV_Update"));
    calibration.unit.set("opt_FullCut", 1);
    EXPECT_FALSE(calibration.enabled("txtREV_Wait1"));
    EXPECT_FALSE(calibration.enabled("txtREV_Wait2"));
    calibration.unit.Set_Control(4, true);
    calibration.unit.Set_Control2(5, true);
    EXPECT_TRUE(calibration.enabled("txtREV_Update"));
    EXPECT_TRUE(calibration.enabled("txtREV_Wait3"));
}

TEST(GuiRules, ASwitchThatIsItselfOffKeepsItsBoxOff) {
    Calibration calibration(orbaKind());
    calibration.unit.set("MAP_Active", 1);
    EXPECT_FALSE(calibration.enabled("optMAP_Active"));
    EXPECT_FALSE(calibration.enabled("txtDCCL_3"));
    calibration.unit.set("DCCL_CutActive", 1);
    EXPECT_TRUE(calibration.enabled("optMAP_Active"));
    EXPECT_TRUE(calibration.enabled("txtDCCL_3"));
    calibration.unit.set("MAP_Active", 0);
    EXPECT_FALSE(calibration.enabled("txtDCCL_3"));
    EXPECT_TRUE(calibration.enabled("txtDCCL_0"));
}

TEST(GuiRules, TemperatureCaptionsFollowTheScale) {
    Calibration calibration(orbaKind());
    EXPECT_EQ(calibration.rules().control("txtCLT_SENSOR3")->caption,
              "CLT Failure Default Value (-40 to 150  \u00B0C)");
    calibration.host.isFahrenheit = true;
    EXPECT_EQ(calibration.rules().control("txtCLT_SENSOR3")->caption,
              "CLT Failure Default Value (-40 to 302  \u00B0F)");
    EXPECT_EQ(calibration.rules().control("txtSENSOR_MAT3")->caption,
              "MAT Failure Default Value (-22 to 176  \u00B0F)");
}

TEST(GuiRules, ActTheSameOnEveryCallAndChangeNoCell) {
    for (const UnitKind& kind : unitKinds()) {
        Calibration calibration(kind);
        Unit& unit = calibration.unit;
        for (int cell = 3; cell < kind.orbFileLength; ++cell) {
            unit.AssignDirectIndex(static_cast<float>(1 + cell % 3), cell);
        }
        const GuiRules before = guiRules(unit);
        const GuiRules after = guiRules(unit);
        for (int cell = 3; cell < kind.orbFileLength; ++cell) {
            ASSERT_EQ(unit.DirectIndex(cell), static_cast<float>(1 + cell % 3)) << cell;
        }
        ASSERT_EQ(before.controls.size(), after.controls.size());
        for (std::size_t i = 0; i < before.controls.size(); ++i) {
            EXPECT_EQ(before.controls[i].visible, after.controls[i].visible) << before.controls[i].control;
            EXPECT_EQ(before.controls[i].enabled, after.controls[i].enabled) << before.controls[i].control;
            EXPECT_EQ(before.controls[i].caption, after.controls[i].caption) << before.controls[i].control;
        }
        EXPECT_EQ(visiblePages(before), visiblePages(after));
        EXPECT_THAT(calibration.host.sent, IsEmpty());
    }
}

TEST(GuiRules, AnUnknownControlHasNoRule) {
    Calibration calibration(orbaKind());
    const GuiRules rules = calibration.rules();
    EXPECT_EQ(rules.control("txtNothing"), nullptr);
    EXPECT_EQ(rules.page(4), nullptr);
    EXPECT_FALSE(rules.pageVisible(4));
    ASSERT_NE(rules.control(28, "TXTSENSOR_MAP4"), nullptr);
    EXPECT_EQ(rules.control(29, "txtSENSOR_MAP4"), nullptr);
}

}  // namespace
}  // namespace zentaq
