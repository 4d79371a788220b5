// What kind and firmware allow the windows to show: visible pages and controls, enabled controls, and
// captions. Asks only: nothing changes but the cells that every reading repairs.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

struct PageRule {
    int number = 0;
    std::string title;  ///< text of the tree node that opens it; the model's name for page 0
    std::string help;   ///< key in table FastHelp
    bool visible = false;
};

struct ControlRule {
    int page = 0;
    std::string control;
    std::string caption;
    bool visible = false;  ///< the kind has it, and its page is visible
    bool enabled = false;  ///< visible, and the option that switches it is set
};

struct GuiRules {
    std::vector<PageRule> pages;        ///< every page that some kind has, ascending
    std::vector<ControlRule> controls;  ///< every control, in the order of the pages
    std::vector<std::string> lacking;   ///< members that other kinds have and this one lacks
    std::string firmware;               ///< "5.99": release and build; empty without a calibration

    const PageRule* page(int number) const;
    bool pageVisible(int number) const;
    /// A control on its first page that is visible, else on its first page; nullptr for an unknown name.
    /// Compared without case.
    const ControlRule* control(std::string_view name) const;
    const ControlRule* control(int page, std::string_view name) const;
};

/// The answer depends on the kind, `FW_Release`, `FW_Build`, the option cells, `hasPIC18` and the temperature
/// setting only, and is the same on every call.
GuiRules guiRules(Unit& unit);

}  // namespace zentaq
