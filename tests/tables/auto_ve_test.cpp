// The rule of AutoVE on numbers worked out by hand, and what it does to an open table.
#include <gmock/gmock.h>

#include "tables/auto_ve_run.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using testing::IsEmpty;

/// Eight by eight: speeds 1000 to 8000, a cell of 875 rpm; pressures 20 to 90, a cell of 8.75 kPa.
class AutoVeRule : public testing::Test {
 protected:
    AutoVeRule() {
        for (int i = 0; i < 8; ++i) {
            table.columnHeaders.push_back(1000.0F * static_cast<float>(i + 1));
            table.rowHeaders.push_back(20.0F + 10.0F * static_cast<float>(i));
        }
        base.fill(10);
        table.base = base;
        table.limit = 15;
    }
    std::array<float, 257> base{};
    AutoVeTable table;
    AutoVe rule;
};

TEST_F(AutoVeRule, HalfACellAwayACorrectionOf8MovesACellBy0175) {
    // 500 / 875 = 0.5714; 1.25 / 0.5714 * 8 / 100 = 0.175.
    const auto changes = rule.add(table, {2500, 30, 8});
    EXPECT_EQ(changes.size(), 2U);
    EXPECT_FLOAT_EQ(rule.sum(1, 1), 0.175F);
    EXPECT_FLOAT_EQ(rule.sum(2, 1), 0.175F);
    EXPECT_EQ(changes.front().value, 10);
}

TEST_F(AutoVeRule, ExactlyOnBothHeadersTheCellTakesWhatTheOneBeforeTook) {
    rule.add(table, {2000, 30, 8});
    EXPECT_FLOAT_EQ(rule.sum(0, 1), 0.0875F);
    EXPECT_FLOAT_EQ(rule.sum(1, 1), 0.0875F);
}

TEST_F(AutoVeRule, OnTheVeryFirstCellOfTheCallItTakesNothing) {
    // Below the first headers the window begins with cell 0, 0, which is the point itself.
    rule.add(table, {1000, 20, 8});
    EXPECT_EQ(rule.sum(0, 0), 0);
    EXPECT_FLOAT_EQ(rule.sum(0, 1), 0.0875F);
}

TEST_F(AutoVeRule, BelowTheFirstHeaderThreeColumnsAreLookedAtAndTheDistanceRules) {
    const auto changes = rule.add(table, {200, 20, 8});
    // 800 / 875 = 0.914 for column 0; column 1 is 1800 / 875 away.
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_EQ(changes.front().x, 0);
}

TEST_F(AutoVeRule, AboveTheLastHeaderOnlyTheLastColumnIsLookedAt) {
    const auto changes = rule.add(table, {8400, 40, 8});
    for (const AutoVeChange& change : changes) EXPECT_EQ(change.x, 7);
    EXPECT_FALSE(changes.empty());
    EXPECT_THAT(rule.add(table, {9200, 40, 8}), IsEmpty());
}

TEST_F(AutoVeRule, NeitherACorrectionNorManyLeaveTheLimit) {
    for (int i = 0; i < 5000; ++i) rule.add(table, {2500, 30, 60});
    EXPECT_EQ(rule.sum(1, 1), 15);
    EXPECT_EQ(rule.add(table, {2500, 30, 60}).front().value, 25);
    for (int i = 0; i < 9000; ++i) rule.add(table, {2500, 30, -60});
    EXPECT_EQ(rule.add(table, {2500, 30, -60}).front().value, -5);
}

TEST_F(AutoVeRule, GreenIsMoreFuelAndRedIsLess) {
    for (int i = 0; i < 5000; ++i) rule.add(table, {2500, 30, 60});
    // At the limit: 256 - 256 * 1 = 0, so pure green.
    EXPECT_EQ(rule.add(table, {2500, 30, 60}).front().colour, 0x00FF00);
    for (int i = 0; i < 9000; ++i) rule.add(table, {2500, 30, -60});
    EXPECT_EQ(rule.add(table, {2500, 30, -60}).front().colour, 0x0000FF);
    AutoVe fresh;
    EXPECT_EQ(fresh.add(table, {2500, 30, 0}).front().colour, 0xFFFFFF);
}

TEST_F(AutoVeRule, WithALimitOf0ACellKeepsItsColourAndItsValue) {
    table.limit = 0;
    const auto changes = rule.add(table, {2500, 30, 8});
    ASSERT_FALSE(changes.empty());
    EXPECT_EQ(changes.front().colour, std::nullopt);
    EXPECT_EQ(changes.front().value, 10);
}

TEST_F(AutoVeRule, TheFirstWriteRoundsWhatHadADecimal) {
    base.fill(12.4F);
    EXPECT_EQ(rule.add(table, {2500, 30, 8}).front().value, 13);  // 12.4 + 0.175 = 12.575
    EXPECT_EQ(AutoVe().add(table, {2500, 30, 0}).front().value, 12);
}

TEST_F(AutoVeRule, TheBaseIsTakenAtColumnAnd16TimesRow) {
    base[1 + 16 * 1] = 33;
    EXPECT_EQ(rule.add(table, {2500, 30, 0}).front().value, 33);
}

TEST_F(AutoVeRule, ANewStartForgetsAllButTheFirstColumn) {
    rule.add(table, {1500, 30, 8});
    ASSERT_GT(rule.sum(0, 1), 0);
    ASSERT_GT(rule.sum(1, 1), 0);
    rule.prepare();
    EXPECT_GT(rule.sum(0, 1), 0);
    EXPECT_EQ(rule.sum(1, 1), 0);
}

TEST_F(AutoVeRule, TheOlderRuleMovesACellWhenItHasSeenMoreSamplesThanTheConstant) {
    rule.constant(5);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(rule.addByCount(table, {2100, 31, 4}), std::nullopt);
    const auto change = rule.addByCount(table, {2100, 31, 4});
    ASSERT_TRUE(change);
    EXPECT_EQ(*change, (AutoVeChange{1, 1, 14, 0x80FF80}));
    // An eighth of the step to the next header: 2125 is in, 2126 is not. A quarter for the rows.
    rule.constant(-1);
    EXPECT_TRUE(rule.addByCount(table, {2125, 32.5F, 4}));
    EXPECT_FALSE(rule.addByCount(table, {2126, 32.5F, 4}));
    EXPECT_FALSE(rule.addByCount(table, {2125, 32.6F, 4}));
}

class AutoVeOnATable : public TableWindow {
 protected:
    AutoVeOnATable() { (void)unit.set("EGO_LMT", 15); }
    AutoVeRun run{sheet};
};

TEST_F(AutoVeOnATable, WritesWholeNumbersIntoTheGridAndNothingIntoTheCalibration) {
    (void)unit.set("VE", 12.4, 16 + 1);
    open("VE");
    // 1000 rpm, 20 kPa is stored row 1, column 1; a cell is 7500 / 16 rpm by 75 / 16 kPa.
    const auto cells = run.Auto_VE(1100, 21, 10);
    EXPECT_THAT(cells, testing::Contains(GridCell{15, 2}));
    EXPECT_EQ(text(15, 2), "13");
    EXPECT_FLOAT_EQ(unit.get("VE", 17), 12.4F);
}

TEST_F(AutoVeOnATable, NoOtherTableIsMoved) {
    open("ADV");
    EXPECT_THAT(run.Auto_VE(1000, 20, 10), IsEmpty());
}

}  // namespace
}  // namespace zentaq
