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
    std::string_view help;  ///< entry of table FastHelp that tells what the node's page or table is for
    std::string_view text;  ///< empty: the title of its table
    std::string_view parent;
    int page;
    std::string_view table;
    unsigned trees;
    Condition condition = nullptr;
    std::string_view ignitionText{};  ///< another text in the ignition-only tree
};

constexpr std::array rows{
    Row{"root000", "helpcalib", "", "", 0, "", Any},
    Row{"root001", "helpengine", "General Parameters", "", 20, "", Any},
    Row{"root999", "helpadvpar", "Advanced Parameters", "", 17, "", Any},
    Row{"root00", "helpadv", "", "", tablePage, "ADV", Any, nullptr, "Ignition Advance"},
    Row{"child85", "helpinitadv", "Initial Advance", "root00", 11, "", Any},
    Row{"child82", "helpcltadv", "Coolant Advance", "root00", 12, "", All},
    Row{"child83", "helpsplit", "Dual Plug Timing Split", "root00", 13, "", Full | Ignition},
    Row{"child84", "helpmatadv", "MAT Density Advance/Retard", "root00", 14, "", Any, nullptr,
        "External Retard"},
    Row{"child86", "helpbaro", "Baro Advance/Retard", "root00", 22, "", All, baroInUse},
    Row{"root01", "helpafr", "", "", tablePage, "AFR", All},
    Row{"child90", "helpego", "EGO Parameters", "root01", 16, "", All},
    Row{"child91", "helpegocal", "EGO Calibration", "root01", 38, "", All},
    Row{"root02", "helpve", "", "", tablePage, "VE", All},
    Row{"root03", "helpspw", "", "", tablePage, "SPW", Full},
    Row{"root04", "helpfuel", "Fuel Enrichment", "", 0, "", All},
    Row{"child00", "helpblend", "TPS/MAP Blend", "root04", 1, "", All},
    Row{"child01", "helpaccel", "TPS/MAP Acceleration", "root04", 2, "", All},
    Row{"child02", "helpdecel", "Deceleration Fuel Cut-Off", "root04", 3, "", All},
    Row{"child03", "helpbattery", "Battery Voltage Compensation", "root04", 19, "", All},
    Row{"child04", "helpstart", "Starting Enrichments", "root04", 5, "", All},
    Row{"child05", "helpwarmup", "Warm-Up Enrichments", "root04", 6, "", All},
    Row{"child06", "helpmatfuel", "MAT Fuel Enrichment", "root04", 7, "", All},
    Row{"child07", "helpboost", "OverBoost Fuel Cut-Off", "root04", 8, "", All},
    Row{"child08", "helpbaro", "Barometric Trim", "root04", 23, "", All, baroInUse},
    Row{"root05", "helprevl", "Rev Limiter", "", 9, "", Any},
    Row{"child50", "helprevapp", "Rev Limit Approach Retard", "root05", 21, "", Any, approachKnown},
    Row{"root06", "helpidle", "Idle Speed", "", 10, "", All},
    Row{"child80", "helpidle", "Idle Min/Max Duty Cycle", "root06", 35, "", All},
    Row{"child81", "helpidle", "Idle Advance", "root06", 36, "", All},
    Row{"root07", "helpgpio", "General Purpose Input/Output", "", managerPage, "", Any},
    Row{"root09", "helpsensors", "Sensor Parameters", "", 0, "", Any},
    Row{"child74", "helpCLTsen", "Coolant", "root09", 27, "", All},
    Row{"child75", "helpMAPsen", "MAP", "root09", 28, "", Any},
    Row{"child87", "helpmaf", "MAF", "root09", 26, "", All},
    Row{"child76", "helpTPSsen", "TPS", "root09", 29, "", All},
    Row{"child77", "helpEGOsen", "EGO", "root09", 30, "", All},
    Row{"child78", "helpMATsen", "MAT", "root09", 31, "", All},
    Row{"child79", "helpknksen", "Knock", "root09", 32, "", Any},
    Row{"root10", "helpknock", "Knock Control", "", 33, "", Any},
    Row{"root11", "helptrims", "Cylinder Trims", "", 34, "", Any},
    Row{"root12", "helpnotes", "Notes Section", "", 15, "", Any},
};

/// Page of the bar-rating sensor, for firmware from before the linear sensors.
constexpr int oldSensorPage = 25;

std::string textOf(const Row& row, unsigned tree, const Unit& unit) {
    if (row.key == "root000") return std::string(unit.kind().model);
    if (row.key == "root12" && tree == Full) return "Notes";
    if (tree == Ignition && !row.ignitionText.empty()) return std::string(row.ignitionText);
    return row.text.empty() ? tableTitle(row.table) : std::string(row.text);
}

}  // namespace

std::string tableHelp(std::string_view table) {
    for (const Row& row : rows) {
        if (!row.table.empty() && row.table == table) return std::string(row.help);
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
                         std::string(row.help)});
    }
    return nodes;
}

}  // namespace zentaq
