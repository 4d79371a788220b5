// What an option or a check box of a page stores. Some stand for one member, some for a bit that no member
// has, some for members that only make sense together.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "config/field_pages.h"
#include "unit/entry_outcome.h"

namespace zentaq {

/// A value for a member that is switched on while it holds none, in the unit of its entries.
using StartValue = std::function<std::optional<double>(std::string_view member)>;

/// Stores what the control of this row means when it is set or cleared. Of a group of options the one that is
/// set clears the others, and clearing one does nothing. Answers what was refused.
std::vector<Refusal> setSwitch(Unit& unit, const FieldRow& row, bool on, const StartValue& start);

/// Options that exclude each other; empty for a control that is switched alone.
std::string_view groupOf(std::string_view control);

}  // namespace zentaq
