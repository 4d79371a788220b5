#include "config/page_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/tree.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

struct Pages {
    RecordingHost host;
    Unit unit;

    explicit Pages(const UnitKind& kind = orbaKind()) : unit(kind, host) {
        unit.FW_Release(5);
        unit.set("CYL_Number", 4);
    }
    std::vector<PageRow> of(int page) { return pageRows(unit, page, "tune.ZQ4OA"); }
    std::vector<std::string> captions(int page) {
        std::vector<std::string> texts;
        for (const PageRow& row : of(page)) texts.push_back(row.caption);
        return texts;
    }
    /// "REV_Limiter" as it is told on a page, or one of its elements.
    Field told(int page, std::string_view member, std::size_t element = 0) {
        for (const PageRow& row : of(page)) {
            if (row.member == member) return row.elements.empty() ? row : row.elements.at(element);
        }
        return {};
    }
};

TEST(PageRows, TheFirstPageTellsTheFileAndTheTablesThatTheKindHas) {
    EXPECT_THAT(Pages().captions(0), Contains("Volumetric Efficiency Table"));
    EXPECT_THAT(Pages().captions(0), Contains("Staged Pulsewidth"));
    EXPECT_THAT(Pages(orbdKind()).captions(0), Not(Contains("Staged Pulsewidth")));
    EXPECT_THAT(Pages(pzk2Kind()).captions(0), Contains("Ignition Advance Table"));
    EXPECT_THAT(Pages(pzk2Kind()).captions(0), Not(Contains("Volumetric Efficiency Table")));
    EXPECT_EQ(Pages().of(0).at(2).text, "tune.ZQ4OA");
}

TEST(PageRows, AMemberStandsOnceByItsNameWhateverControlsItHas) {
    Pages pages;
    pages.unit.AssignDirectIndex(1.5F, 198);  // ACE0
    std::vector<std::string> members;
    for (const PageRow& row : pages.of(2)) members.push_back(row.member);
    EXPECT_THAT(members, ElementsAre("ACE0", "ACE1", "ACE2", "ACE3", "ACE4", "ACE5", "ACE6", "ACE7",
                                     "ACCL_PW", "ACCL_TM", "TBSOFF"));
    EXPECT_EQ(pages.told(20, "AMP42").text, "0");
    pages.unit.set("AMP42", 1);
    EXPECT_EQ(pages.told(20, "AMP42").text, "1");
}

TEST(PageRows, TellTheRangeWithoutItsParentheses) {
    EXPECT_EQ(Pages().told(9, "REV_Limiter").limits, "1000 to 20000 RPM");
}

TEST(PageRows, TrimsAreToldForTheCylindersOfTheEngineAndWithoutOneThePageSaysSo) {
    Pages pages;
    EXPECT_EQ(pages.of(34).at(1).text, "4 values");
    EXPECT_EQ(pages.of(34).at(1).elements.size(), 4u);
    pages.unit.set("CYL_Number", 0);
    ASSERT_EQ(pages.of(34).size(), 1u);
    EXPECT_EQ(pages.of(34)[0].text, "NO ENGINE CONFIGURATION CURRENTLY SELECTED");
}

TEST(PageRows, CurvesTellTheirTemperatureVoltsOrSpeedBesideEachCell) {
    Pages pages;
    pages.unit.AssignDirectIndex(100, 228);       // low blend: the barometric pages are open
    pages.unit.AssignDirectIndex(1500, 212 + 2);  // second speed of the blend
    pages.unit.AssignDirectIndex(40, 310 + 1);    // second temperature of the idle
    pages.unit.AssignDirectIndex(0.65F, 293 + 2);
    pages.unit.AssignDirectIndex(2500, 592 + 2 * 4);
    struct Row {
        int page;
        const char* member;
        std::size_t cell;
        const char* stop;
    };
    // Twenty cells from -40 to 150 degrees, and from 0 to 255 * 0.067432 volts.
    const Row rows[] = {{6, "CHKTBL", 0, "-40 \u00B0C"},
                        {6, "CHKTBL", 6, "20 \u00B0C"},
                        {7, "MATENH", 19, "150 \u00B0C"},
                        {12, "CLTTBL", 12, "80 \u00B0C"},
                        {14, "MATADV", 7, "30 \u00B0C"},
                        {19, "BATCom", 0, "0.0 V"},
                        {19, "BATCom", 15, "13.6 V"},
                        {19, "BATCom", 19, "17.2 V"},
                        {1, "LOWBLD", 1, "1500 RPM"},
                        {10, "ISRPM", 1, "40 \u00B0C"},
                        {13, "SPLITBL", 4, "2500 RPM"},
                        {38, "Y", 2, "0.65 V"},
                        {1, "BLDTBL", 1, "2"},
                        {22, "BARO_ADV", 7, "8"}};
    for (const Row& row : rows) EXPECT_EQ(pages.told(row.page, row.member, row.cell).caption, row.stop);
    pages.host.isFahrenheit = true;
    EXPECT_EQ(pages.told(6, "CHKTBL", 19).caption, "302 \u00B0F");
    EXPECT_EQ(pages.told(10, "ISRPM", 1).caption, "104 \u00B0F");
}

TEST(PageRows, NoPageTellsAValueInTheScaleThatTheSettingDoesNotName) {
    Pages pages;
    const auto tells = [&](const char* scale) {
        std::vector<std::string> found;
        for (const int page : fieldPageNumbers()) {
            for (const PageRow& row : pages.of(page)) {
                std::string all = row.caption + row.unit + row.limits;
                for (const Field& cell : row.elements) all += cell.caption + cell.unit + cell.limits;
                if (all.find(scale) != std::string::npos) found.push_back(row.member);
            }
        }
        return found;
    };
    pages.host.isFahrenheit = true;
    EXPECT_THAT(tells("Celsius"), IsEmpty());
    EXPECT_THAT(tells("\u00B0C"), IsEmpty());
    EXPECT_THAT(tells("Fahrenheit"), Not(IsEmpty()));
    pages.host.isFahrenheit = false;
    EXPECT_THAT(tells("Fahrenheit"), IsEmpty());
    EXPECT_THAT(tells("\u00B0F"), IsEmpty());
}

TEST(PageRows, EveryPageOfEveryTreeTellsSomething) {
    for (const UnitKind& kind : unitKinds()) {
        Pages pages(kind);
        for (const TreeNode& node : treeNodes(pages.unit)) {
            if (node.page == tablePage) continue;
            EXPECT_THAT(pages.of(node.page), Not(IsEmpty())) << kind.model << " " << node.text;
        }
    }
}

TEST(PageRows, WithoutACalibrationThereAreNone) {
    RecordingHost host;
    Unit none{nullKind(), host};
    EXPECT_THAT(pageRows(none, 0, ""), IsEmpty());
    EXPECT_THAT(pageRows(none, 9, ""), IsEmpty());
}

}  // namespace
}  // namespace zentaq
