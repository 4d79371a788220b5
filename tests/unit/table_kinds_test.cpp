// The rows of the tables and of the kinds of their axes: each is whole, and says what its table or axis
// needs.
#include "unit/table_kinds.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "unit/axis_kinds.h"
#include "unit/member_index.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;

TEST(TableRows, HaveATitleAndEitherAMemberOrANumber) {
    std::vector<std::string_view> names;
    std::set<std::string> titles;
    for (const TableKind& table : tableKinds()) {
        SCOPED_TRACE(table.name);
        names.push_back(table.name);
        EXPECT_TRUE(titles.insert(tableTitle(table.name)).second);
        EXPECT_NE(table.member.empty(), table.gpoNumber == 0);
        EXPECT_EQ(findTable(table.name), &table);
        EXPECT_TRUE(hasTable(orbaKind(), table));
        EXPECT_FALSE(hasTable(nullKind(), table));
        if (table.isGpo()) continue;
        EXPECT_EQ(orbaKind().members->find(table.member)->count, storedCells);
    }
    EXPECT_THAT(names, ElementsAre("ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"));
    EXPECT_EQ(findTable("none"), nullptr);
}

TEST(TableRows, TellTheTitlesOfTheirWindows) {
    EXPECT_EQ(tableTitle("ADV"), "Ignition Advance Table");
    EXPECT_EQ(tableTitle("VE"), "Volumetric Efficiency Table");
    EXPECT_EQ(tableTitle("SPW"), "Staged Pulsewidth");
    EXPECT_EQ(tableTitle("AFR"), "EGO Wideband / AFR Table");
    EXPECT_EQ(tableTitle("GPO1"), "Full Table - Table#1");
    EXPECT_EQ(tableTitle("GPO2"), "Full Table - Table#2");
    EXPECT_EQ(tableTitle("none"), "");
}

/// Stops, axis words and sizes lie behind each other from cell 2226 to 2297, each once.
TEST(TableRows, ShareNoCellButThoseOfTheMainTables) {
    std::set<int> cells;
    for (const TableKind& table : outputTables()) {
        for (int i = 0; i < storedHeaders; ++i) {
            EXPECT_TRUE(cells.insert(table.rowStops + i).second);
            EXPECT_TRUE(cells.insert(table.columnStops + i).second);
        }
        EXPECT_TRUE(cells.insert(table.axisWord).second);
        EXPECT_TRUE(cells.insert(table.rowsCell).second);
        EXPECT_TRUE(cells.insert(table.rowsCell + 1).second);
    }
    for (const int mainSize : {0, 1})
        EXPECT_TRUE(cells.insert(tableKinds().front().rowsCell + mainSize).second);
    EXPECT_EQ(*cells.begin(), 2226);
    EXPECT_EQ(*cells.rbegin(), 2297);
    EXPECT_EQ(cells.size(), 72U);
}

TEST(AxisRows, AreWholeAndStandAtTheirCodes) {
    OrbaCalibration cal;
    cal.unit.set("REV_Limiter", 8000);
    std::vector<std::string_view> names;
    int code = 0;
    for (const AxisKind& kind : axisKinds()) {
        SCOPED_TRACE(kind.name);
        names.push_back(kind.name);
        EXPECT_EQ(kind.code, ++code);
        EXPECT_EQ(axisKindOf(kind.code), &kind);
        EXPECT_EQ(axisKindOf(kind.name), &kind);
        EXPECT_NE(kind.live == nullptr, kind.pin < 0) << "a point follows a live value or a pin";
        EXPECT_FALSE(axisUnit(cal.unit, &kind).empty());
        const Limits limits = kind.limits(cal.unit);
        EXPECT_LT(limits.minimum, limits.maximum);
        EXPECT_FALSE(limits.text.empty());
        const AxisSpan span = kind.span(cal.unit);
        EXPECT_LT(span.low, span.high);
        EXPECT_TRUE(checkLimits(span.low, limits));
        EXPECT_TRUE(checkLimits(span.high, limits));
        EXPECT_TRUE(std::isfinite(kind.image(cal.unit, static_cast<double>(span.high))));
    }
    EXPECT_THAT(names, ElementsAre("CLT", "RAW MAP", "BLEND MAP", "TPS", "ACTUAL AFR", "MAT", "RPM", "GPIO1",
                                   "GPIO2", "GPIO3", "GPIO4", "GPIO5", "GPIO6", "GPIO7", "GPIO8"));
    for (const int none : {-1, 0, 16}) EXPECT_EQ(axisKindOf(none), nullptr);
    EXPECT_EQ(axisKindOf("AFR"), nullptr);
}

TEST(AxisRows, FollowTheirLiveValues) {
    EXPECT_EQ(axisKindOf("CLT")->live, &LiveValues::CLT);
    EXPECT_EQ(axisKindOf("RAW MAP")->live, &LiveValues::CLT) << "kept: the coolant";
    EXPECT_EQ(axisKindOf("BLEND MAP")->live, &LiveValues::MAP);
    EXPECT_EQ(axisKindOf("TPS")->live, &LiveValues::TPS);
    EXPECT_EQ(axisKindOf("ACTUAL AFR")->live, &LiveValues::AAFR);
    EXPECT_EQ(axisKindOf("MAT")->live, &LiveValues::MAT);
    EXPECT_EQ(axisKindOf("RPM")->live, &LiveValues::RPM);
    EXPECT_EQ(axisKindOf("GPIO1")->pin, 0);
    EXPECT_EQ(axisKindOf("GPIO8")->pin, 7);
}

}  // namespace
}  // namespace zentaq::testing
