#include "config/tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::IsEmpty;

class Tree : public ::testing::Test {
 protected:
    RecordingHost host;
    Unit unit{orbaKind(), host};

    std::map<std::string, TreeNode> nodes() {
        std::map<std::string, TreeNode> result;
        for (const TreeNode& node : treeNodes(unit)) result[node.key] = node;
        return result;
    }
};

TEST_F(Tree, OrbAHasEveryNodeOfTheFullTree) {
    unit.FW_Release(5);
    unit.AssignDirectIndex(100, 228);  // first low blend cell: barometric pages in use
    struct Row {
        const char *key, *text, *parent;
        int page;
    };
    const Row rows[] = {
        {"root000", "ORB A", "", 0},
        {"root001", "General Parameters", "", 20},
        {"root999", "Advanced Parameters", "", 17},
        {"root00", "Ignition Advance Table", "", -1},
        {"child85", "Initial Advance", "root00", 11},
        {"child82", "Coolant Advance", "root00", 12},
        {"child83", "Dual Plug Timing Split", "root00", 13},
        {"child84", "MAT Density Advance/Retard", "root00", 14},
        {"child86", "Baro Advance/Retard", "root00", 22},
        {"root01", "EGO Wideband / AFR Table", "", -1},
        {"child90", "EGO Parameters", "root01", 16},
        {"child91", "EGO Calibration", "root01", 38},
        {"root02", "Volumetric Efficiency Table", "", -1},
        {"root03", "Staged Pulsewidth", "", -1},
        {"root04", "Fuel Enrichment", "", 0},
        {"child00", "TPS/MAP Blend", "root04", 1},
        {"child01", "TPS/MAP Acceleration", "root04", 2},
        {"child02", "Deceleration Fuel Cut-Off", "root04", 3},
        {"child03", "Battery Voltage Compensation", "root04", 19},
        {"child04", "Starting Enrichments", "root04", 5},
        {"child05", "Warm-Up Enrichments", "root04", 6},
        {"child06", "MAT Fuel Enrichment", "root04", 7},
        {"child07", "OverBoost Fuel Cut-Off", "root04", 8},
        {"child08", "Barometric Trim", "root04", 23},
        {"root05", "Rev Limiter", "", 9},
        {"child50", "Rev Limit Approach Retard", "root05", 21},
        {"root06", "Idle Speed", "", 10},
        {"child80", "Idle Min/Max Duty Cycle", "root06", 35},
        {"child81", "Idle Advance", "root06", 36},
        {"root07", "General Purpose Input/Output", "", -2},
        {"root09", "Sensor Parameters", "", 0},
        {"child74", "Coolant", "root09", 27},
        {"child75", "MAP", "root09", 28},
        {"child87", "MAF", "root09", 26},
        {"child76", "TPS", "root09", 29},
        {"child77", "EGO", "root09", 30},
        {"child78", "MAT", "root09", 31},
        {"child79", "Knock", "root09", 32},
        {"root10", "Knock Control", "", 33},
        {"root11", "Cylinder Trims", "", 34},
        {"root12", "Notes", "", 15},
    };
    const auto found = nodes();
    EXPECT_EQ(found.size(), std::size(rows));
    for (const Row& row : rows) {
        ASSERT_TRUE(found.count(row.key)) << row.key;
        EXPECT_EQ(found.at(row.key).text, row.text);
        EXPECT_EQ(found.at(row.key).parent, row.parent) << row.key;
        EXPECT_EQ(found.at(row.key).page, row.page) << row.key;
    }
    EXPECT_EQ(found.at("root02").table, "VE");
    EXPECT_EQ(found.at("root03").table, "SPW");
    EXPECT_EQ(found.at("root00").table, "ADV");
    EXPECT_EQ(found.at("root01").table, "AFR");
}

TEST_F(Tree, BarometricNodesShowOnlyWhileTheFirstLowBlendCellIs100) {
    unit.AssignDirectIndex(99, 228);
    EXPECT_EQ(nodes().count("child86"), 0u);
    EXPECT_EQ(nodes().count("child08"), 0u);
}

TEST_F(Tree, ParentsComeBeforeTheirChildren) {
    std::set<std::string> seen;
    for (const TreeNode& node : treeNodes(unit)) {
        if (!node.parent.empty()) {
            EXPECT_TRUE(seen.count(node.parent)) << node.key;
        }
        seen.insert(node.key);
    }
}

TEST_F(Tree, KindZeroHasAnEmptyTree) {
    Unit none{nullKind(), host};
    EXPECT_THAT(treeNodes(none), IsEmpty());
}

TEST(TableTitles, HaveTheirHelp) {
    EXPECT_EQ(tableHelp("VE"), "helpve");
    EXPECT_EQ(tableHelp("AFR"), "helpafr");
    EXPECT_EQ(tableHelp("GPO1"), "");
}

}  // namespace
}  // namespace zentaq
