#include "config/tree.h"

#include <array>

#include "unit/table_kinds.h"

namespace zentaq {

namespace {

/// The shapes of the tree that have a row.
enum TreeSet : unsigned {
    Full = static_cast<unsigned>(TreeShape::Full),
    Small = static_cast<unsigned>(TreeShape::Small),
    Ignition = static_cast<unsigned>(TreeShape::Ignition),
    All = Full | Small,
    Any = All | Ignition
};

/// What must hold for a node beyond its tree.
using Condition = bool (*)(Unit&);

/// The first release whose units know the rev limit approach cells.
constexpr int approachRelease = 3;
/// The first release with a linear pressure sensor of the user's; older ones know a bar rating.
constexpr int linearSensorRelease = 3;

bool baroInUse(Unit& unit) {
    return unit.get("LOWBLD", 0) == 100.0f;
}

bool approachKnown(Unit& unit) {
    return unit.FW_Release() >= approachRelease;
}

struct Row {
    std::string_view key;
    std::string_view text;
    std::string_view parent;
    int page;
    std::string_view table;
    unsigned trees;
    Condition condition = nullptr;
    std::string_view ignitionText{};  ///< another text in the ignition-only tree
};

constexpr std::array rows{
    Row{"root000", "", "", 0, "", Any},
    Row{"root001", "General Parameters", "", 20, "", Any},
    Row{"root999", "Advanced Parameters", "", 17, "", Any},
    Row{"root00", "Ignition Advance Table", "", tablePage, "ADV", Any, nullptr, "Ignition Advance"},
    Row{"child85", "Initial Advance", "root00", 11, "", Any},
    Row{"child82", "Coolant Advance", "root00", 12, "", All},
    Row{"child83", "Dual Plug Timing Split", "root00", 13, "", Full | Ignition},
    Row{"child84", "MAT Density Advance/Retard", "root00", 14, "", Any, nullptr, "External Retard"},
    Row{"child86", "Baro Advance/Retard", "root00", 22, "", All, baroInUse},
    Row{"root01", "EGO Wideband / AFR Table", "", tablePage, "AFR", All},
    Row{"child90", "EGO Parameters", "root01", 16, "", All},
    Row{"child91", "EGO Calibration", "root01", 38, "", All},
    Row{"root02", "Volumetric Efficiency Table", "", tablePage, "VE", All},
    Row{"root03", "Staged Pulsewidth", "", tablePage, "SPW", Full},
    Row{"root04", "Fuel Enrichment", "", 0, "", All},
    Row{"child00", "TPS/MAP Blend", "root04", 1, "", All},
    Row{"child01", "TPS/MAP Acceleration", "root04", 2, "", All},
    Row{"child02", "Deceleration Fuel Cut-Off", "root04", 3, "", All},
    Row{"child03", "Battery Voltage Compensation", "root04", 19, "", All},
    Row{"child04", "Starting Enrichments", "root04", 5, "", All},
    Row{"child05", "Warm-Up Enrichments", "root04", 6, "", All},
    Row{"child06", "MAT Fuel Enrichment", "root04", 7, "", All},
    Row{"child07", "OverBoost Fuel Cut-Off", "root04", 8, "", All},
    Row{"child08", "Barometric Trim", "root04", 23, "", All, baroInUse},
    Row{"root05", "Rev Limiter", "", 9, "", Any},
    Row{"child50", "Rev Limit Approach Retard", "root05", 21, "", Any, approachKnown},
    Row{"root06", "Idle Speed", "", 10, "", All},
    Row{"child80", "Idle Min/Max Duty Cycle", "root06", 35, "", All},
    Row{"child81", "Idle Advance", "root06", 36, "", All},
    Row{"root07", "General Purpose Input/Output", "", managerPage, "", Any},
    Row{"root09", "Sensor Parameters", "", 0, "", Any},
    Row{"child74", "Coolant", "root09", 27, "", All},
    Row{"child75", "MAP", "root09", 28, "", Any},
    Row{"child87", "MAF", "root09", 26, "", All},
    Row{"child76", "TPS", "root09", 29, "", All},
    Row{"child77", "EGO", "root09", 30, "", All},
    Row{"child78", "MAT", "root09", 31, "", All},
    Row{"child79", "Knock", "root09", 32, "", Any},
    Row{"root10", "Knock Control", "", 33, "", Any},
    Row{"root11", "Cylinder Trims", "", 34, "", Any},
    Row{"root12", "Notes Section", "", 15, "", Any},
};

/// Page of the bar-rating sensor, for firmware from before the linear sensors.
constexpr int oldSensorPage = 25;

struct NodeHelp {
    std::string_view node, key;
};

/// The entry of table FastHelp that tells what a node's page or table is for.
constexpr std::array nodeHelps{
    NodeHelp{"child00", "helpblend"},   NodeHelp{"child01", "helpaccel"},  NodeHelp{"child02", "helpdecel"},
    NodeHelp{"child03", "helpbattery"}, NodeHelp{"child04", "helpstart"},  NodeHelp{"child05", "helpwarmup"},
    NodeHelp{"child06", "helpmatfuel"}, NodeHelp{"child07", "helpboost"},  NodeHelp{"child08", "helpbaro"},
    NodeHelp{"child50", "helprevapp"},  NodeHelp{"child74", "helpCLTsen"}, NodeHelp{"child75", "helpMAPsen"},
    NodeHelp{"child76", "helpTPSsen"},  NodeHelp{"child77", "helpEGOsen"}, NodeHelp{"child78", "helpMATsen"},
    NodeHelp{"child79", "helpknksen"},  NodeHelp{"child80", "helpidle"},   NodeHelp{"child81", "helpidle"},
    NodeHelp{"child82", "helpcltadv"},  NodeHelp{"child83", "helpsplit"},  NodeHelp{"child84", "helpmatadv"},
    NodeHelp{"child85", "helpinitadv"}, NodeHelp{"child86", "helpbaro"},   NodeHelp{"child87", "helpmaf"},
    NodeHelp{"child90", "helpego"},     NodeHelp{"child91", "helpegocal"}, NodeHelp{"root00", "helpadv"},
    NodeHelp{"root000", "helpcalib"},   NodeHelp{"root001", "helpengine"}, NodeHelp{"root01", "helpafr"},
    NodeHelp{"root02", "helpve"},       NodeHelp{"root03", "helpspw"},     NodeHelp{"root04", "helpfuel"},
    NodeHelp{"root05", "helprevl"},     NodeHelp{"root06", "helpidle"},    NodeHelp{"root07", "helpgpio"},
    NodeHelp{"root09", "helpsensors"},  NodeHelp{"root10", "helpknock"},   NodeHelp{"root11", "helptrims"},
    NodeHelp{"root12", "helpnotes"},    NodeHelp{"root999", "helpadvpar"},
};

std::string helpOf(std::string_view node) {
    for (const NodeHelp& row : nodeHelps) {
        if (row.node == node) return std::string(row.key);
    }
    return {};
}

std::string textOf(const Row& row, unsigned tree, const Unit& unit) {
    if (row.key == "root000") return std::string(unit.kind().model);
    if (row.key == "root12" && tree == Full) return "Notes";
    if (tree == Ignition && !row.ignitionText.empty()) return std::string(row.ignitionText);
    return std::string(row.text);
}

}  // namespace

std::string tableHelp(std::string_view table) {
    for (const Row& row : rows) {
        if (!row.table.empty() && row.table == table) return helpOf(row.key);
    }
    return {};
}

std::vector<TreeNode> treeNodes(Unit& unit) {
    std::vector<TreeNode> nodes;
    const auto tree = static_cast<unsigned>(unit.kind().tree);
    for (const Row& row : rows) {
        if ((row.trees & tree) == 0) continue;
        if (row.condition != nullptr && !row.condition(unit)) continue;
        const bool oldSensor = row.key == "child75" && unit.FW_Release() < linearSensorRelease;
        nodes.push_back({std::string(row.key), textOf(row, tree, unit), std::string(row.parent),
                         oldSensor ? oldSensorPage : row.page, std::string(row.table), tableTitle(row.table),
                         helpOf(row.key)});
    }
    return nodes;
}

}  // namespace zentaq
