// What can be done to the cells in hand, one row a command: menus, keys and the list of keys are made of
// these.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tables/table_model.h"

namespace zentaq {

struct EditCommand {
    std::string_view name;  ///< "mnuInterpolate"
    std::string_view caption;
    std::string_view shortcut = {};
    std::string_view meaning;  ///< of the list of keys: "Fill the selection from its four corners"
    std::string_view parent = {};
    bool ofLines = false;  ///< it changes the size of the table
    bool group = false;    ///< the first of those that belong together
    /// Why it cannot be done now, as a sentence for the user; empty where it can.
    std::string (*whyNot)(TableModel& model);
    std::vector<Refusal> (*run)(TableModel& model);
};

std::span<const EditCommand> editCommands();
/// nullptr for a name that is none.
const EditCommand* editCommandOf(std::string_view name);

/// What a formula makes of the cells in hand: all of them, or none. Throws Failure for what is no formula,
/// and where the cells show no values.
std::vector<Refusal> applyFormula(TableModel& model, std::string_view formula);

/// A running unit takes each cell at once and the size of its tables only when it is programmed: what the
/// user is asked before he changes axes meanwhile. Empty where nothing goes to a unit.
std::string axesQuestion(const Unit& unit);

}  // namespace zentaq
