// The configuration tree as data: nodes, their parents and what a click does, by unit kind.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

// Pages that are none of fields.
constexpr int overviewPage = 0;
constexpr int tablePage = -1;    ///< a table in a window of its own
constexpr int managerPage = -2;  ///< the input/output pins

struct TreeNode {
    std::string key;
    std::string text;
    std::string parent;  ///< empty for a root
    int page = 0;        ///< tab of sstMenu, or one of the above
    std::string table;   ///< "ADV", "AFR", "VE", "SPW" for a table
    std::string title;   ///< title of the table window
    std::string help;    ///< key in table FastHelp; empty for none
};

/// The tree for the unit in hand, parents before children. Kind 0 has an empty tree.
std::vector<TreeNode> treeNodes(Unit& unit);

/// The key in table FastHelp for a table; empty for none.
std::string tableHelp(std::string_view table);

}  // namespace zentaq
