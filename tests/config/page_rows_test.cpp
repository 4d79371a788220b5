#include "config/page_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/shown_value.h"
#include "config/tree.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::Contains;
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
};

TEST(PageRows, TheFirstPageTellsTheFileAndTheTablesThatTheKindHas) {
    EXPECT_THAT(Pages().captions(0), Contains("Volumetric Efficiency Table"));
    EXPECT_THAT(Pages().captions(0), Contains("Staged Pulsewidth"));
    EXPECT_THAT(Pages(orbdKind()).captions(0), Not(Contains("Staged Pulsewidth")));
    EXPECT_THAT(Pages(pzk2Kind()).captions(0), Contains("Ignition Advance Table"));
    EXPECT_THAT(Pages(pzk2Kind()).captions(0), Not(Contains("Volumetric Efficiency Table")));
    EXPECT_EQ(Pages().of(0).at(2).text, "tune.ZQ4OA");
}

TEST(PageRows, TheRangeOfAFieldStandsWithoutItsParentheses) {
    EXPECT_EQ(withoutParentheses("(1000 to 20000 RPM)"), "1000 to 20000 RPM");
    EXPECT_EQ(withoutParentheses("0 - 1000"), "0 - 1000");
}

TEST(PageRows, NoPageOfFieldsTellsAValueInTheScaleThatTheSettingDoesNotName) {
    Pages pages;
    const auto tells = [&](const char* scale) {
        std::vector<std::string> found;
        for (const int page : fieldPageNumbers()) {
            for (const Field& field : displayOfPage(pages.unit, page).fields) {
                const FieldRow& row = *fieldOf(field.control);
                const std::string all =
                    field.caption + field.unit + field.limits + shownStopUnit(pages.unit, row.axis);
                if (all.find(scale) != std::string::npos) found.push_back(field.member);
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
            if (node.page == tablePage || node.page == managerPage) continue;
            const bool fields = !displayOfPage(pages.unit, node.page).fields.empty();
            EXPECT_NE(fields, !pages.of(node.page).empty()) << kind.model << " " << node.text;
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
