// New axes with the values between the old ones, worked out by hand.
#include "tables/rebin.h"

#include <gmock/gmock.h>

#include "base/errors.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Columns 500 to 4000, rows 15 to 50: 8 by 8.
class Rebin : public TableWindow {
 protected:
    Rebin() {
        fillAdvanceAndRatio();
        size(8, 8);
        open("VE");
    }
    std::string whyRefused(const TableAxes& axes) {
        try {
            static_cast<void>(rebinned(sheet, axes));
        } catch (const Failure& failure) {
            return failure.what();
        }
        return {};
    }
    const RebinnedTable& of(const Rebinning& plan, std::string_view name) {
        return *std::ranges::find(plan.tables, name, &RebinnedTable::name);
    }
    const std::vector<float> halfway{750, 1000, 1250, 2000, 2500, 3000, 3500, 4000};
};

TEST_F(Rebin, ListsAreReadWithCommasSemicolonsOrBlanks) {
    EXPECT_THAT(headersOf("500, 1000,1500.5"), ElementsAre(500, 1000, 1500.5F));
    EXPECT_THAT(headersOf("500;1000;1500,5"), ElementsAre(500, 1000, 1500.5F));
    EXPECT_THAT(headersOf(" 500\t1000 1500 "), ElementsAre(500, 1000, 1500));
    EXPECT_TRUE(headersOf("").empty());
    EXPECT_THROW(headersOf("500,abc"), Failure);
}

TEST_F(Rebin, BetweenOldHeadersAValueIsAShareOfItsNeighbors) {
    unit.set("VE", 10, 0);  // 500 rpm
    unit.set("VE", 20, 1);  // 1000
    unit.set("VE", 33, 2);  // 1500
    const auto plan = rebinned(sheet, {halfway, {}});
    EXPECT_EQ(of(plan, "VE").value(0, 0, 8), 15);
    EXPECT_EQ(of(plan, "VE").value(0, 1, 8), 20);
    EXPECT_EQ(of(plan, "VE").value(0, 2, 8), 26.5F);
}

TEST_F(Rebin, BetweenFourCellsItGoesByBothAxes) {
    unit.set("VE", 10, 0);
    unit.set("VE", 20, 1);
    unit.set("VE", 30, 16);
    unit.set("VE", 48, 17);
    // 750 rpm: 15 below and 39 above; 16 kPa is a fifth of the way from 15 to 20: 15 + 24 / 5 = 19.8.
    const auto plan = rebinned(sheet, {halfway, {16, 20, 25, 30, 35, 40, 45, 50}});
    EXPECT_EQ(of(plan, "VE").value(0, 0, 8), 19.8F);
}

TEST_F(Rebin, OnOldHeadersAValueStaysAsItIs) {
    unit.set("VE", 20.26, 1);
    unit.set("VE", 20.34, 3);
    const auto plan = rebinned(sheet, {halfway, {}});
    EXPECT_EQ(of(plan, "VE").value(0, 1, 8), 20.26F);
    EXPECT_EQ(of(plan, "VE").value(0, 3, 8), 20.34F);
}

TEST_F(Rebin, BeyondTheOldAxisTheValueOfItsEndHolds) {
    unit.set("VE", 12, 0);
    unit.set("VE", 34, 7);
    const auto plan = rebinned(sheet, {{100, 1000, 1500, 2000, 2500, 3000, 3500, 9000}, {}});
    EXPECT_EQ(of(plan, "VE").value(0, 0, 8), 12);
    EXPECT_EQ(of(plan, "VE").value(0, 7, 8), 34);
}

TEST_F(Rebin, RoundsAsTheTablesDo) {
    unit.set("VE", 10, 0);
    unit.set("VE", 10.3, 1);
    for (int i = 0; i < 2; ++i) unit.set("Get_AFR", i == 0 ? 13 : 13.07, i);
    const auto plan = rebinned(sheet, {halfway, {}});
    EXPECT_EQ(of(plan, "VE").value(0, 0, 8), 10.1F) << "10.15 as a 32-bit float lies below the tie";
    EXPECT_EQ(of(plan, "AFR").value(0, 0, 8), 13.03F);
}

TEST_F(Rebin, StoresAllTablesOnTheAxesAndTheHeaders) {
    unit.set("VE", 10, 0);
    unit.set("VE", 20, 1);
    unit.set("SPW", 40, 0);
    unit.set("SPW", 50, 1);
    EXPECT_TRUE(store(sheet, rebinned(sheet, {halfway, {}})).empty());
    EXPECT_EQ(unit.get("VE", 0), 15);
    EXPECT_EQ(unit.get("SPW", 0), 45);
    EXPECT_EQ(unit.get("RPMTBL", 0), 750);
    EXPECT_EQ(text(0, 1), "750");
    EXPECT_EQ(text(8, 1), "15");
}

TEST_F(Rebin, ToMoreColumnsMakesTheTableLarger) {
    unit.set("VE", 10, 16);
    unit.set("VE", 20, 17);
    const std::vector<float> nine{500, 750, 1000, 1500, 2000, 2500, 3000, 3500, 4000};
    EXPECT_TRUE(store(sheet, rebinned(sheet, {nine, {}})).empty());
    EXPECT_EQ(sheet.columns(), 9);
    EXPECT_EQ(unit.get("VE", 16), 10);
    EXPECT_EQ(unit.get("VE", 17), 15);
    EXPECT_EQ(unit.get("VE", 18), 20);
}

TEST_F(Rebin, OneValueOutOfRangeLeavesAllAsItWas) {
    unit.AssignDirectIndex(300, stagedBase);  // as a damaged file may have it
    unit.set("VE", 10, 0);
    const auto refused = store(sheet, rebinned(sheet, {halfway, {}}));
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].where, "SPW cell 8,1");
    EXPECT_EQ(refused[0].entry, "150");
    EXPECT_EQ(unit.get("RPMTBL", 0), 500);
    EXPECT_EQ(unit.get("VE", 0), 10);
}

TEST_F(Rebin, ACellThatStaysMayHoldWhatIsShownOutOfRange) {
    unit.set("Get_AFR", 9.76488, 5);  // reads as 9.76, a hair below the limit
    unit.set("VE", 10, 0);
    EXPECT_TRUE(store(sheet, rebinned(sheet, {halfway, {}})).empty());
    EXPECT_EQ(unit.get("RPMTBL", 0), 750);
    EXPECT_NEAR(unit.get("Get_AFR", 5), 9.76488, 1e-4);
}

TEST_F(Rebin, AHeaderOutOfRangeLeavesAllAsItWas) {
    std::vector<float> high = halfway;
    high.back() = 20001;
    const auto refused = store(sheet, rebinned(sheet, {high, {}}));
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].where, "column header 8");
    EXPECT_EQ(refused[0].text, "(0 to 20000 RPM)");
    EXPECT_EQ(unit.get("RPMTBL", 0), 500);
}

TEST_F(Rebin, AxesThatDoNotRiseAreRefused) {
    EXPECT_EQ(whyRefused({{500, 1000, 900, 2000, 2500, 3000, 3500, 4000}, {}}),
              "Column headers must rise: 1000 is followed by 900");
    EXPECT_EQ(whyRefused({{}, {15, 15, 25, 30, 35, 40, 45, 50}}),
              "Row headers must rise: 15 is followed by 15");
    unit.set("RPMTBL", 400, 1);
    EXPECT_THAT(whyRefused({halfway, {}}), HasSubstr("present column headers are out of order"));
}

TEST_F(Rebin, NeedsEightToSixteenHeaders) {
    EXPECT_EQ(whyRefused({{500, 1000}, {}}), "2 columns: a table has 8 to 16");
    std::vector<float> many;
    for (int i = 0; i < 17; ++i) many.push_back(static_cast<float>(i));
    EXPECT_EQ(whyRefused({{}, many}), "17 rows: a table has 8 to 16");
}

TEST_F(Rebin, AnotherNumberNeedsFirmwareThatTakesIt) {
    unit.FW_Release(4);
    EXPECT_EQ(whyRefused({halfway, {}}), "");
    EXPECT_THAT(whyRefused({{1, 2, 3, 4, 5, 6, 7, 8, 9}, {}}), HasSubstr("need firmware release 5 or later"));
}

TEST_F(Rebin, AnOutputTableIsWholePercentsOnAxesOfItsOwn) {
    open("GPO1");
    unit.Set_GPIO_Table(1, 0, 10);
    unit.Set_GPIO_Table(1, 1, 13);
    TableAxes axes = axesOf(sheet);
    axes.columns[0] = 750;  // between 500 and 1000
    EXPECT_TRUE(store(sheet, rebinned(sheet, axes)).empty());
    EXPECT_EQ(unit.Get_GPIO_Table(1, 0), 12) << "11.5, ties to even";
    EXPECT_EQ(unit.Get_GPO_Stop(0, "X-Axis", "GPO1"), 750);
    EXPECT_EQ(unit.get("RPMTBL", 0), 500);
}

}  // namespace
}  // namespace zentaq
