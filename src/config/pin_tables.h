// Which output table a pin goes by.
#pragma once

#include "unit/table_kinds.h"
#include "unit/unit.h"

namespace zentaq {

/// The output table that a pin's function goes by. nullptr for another function, and for a number that is no
/// table.
const TableKind* tableOfPin(const Unit& unit, int pin);

}  // namespace zentaq
