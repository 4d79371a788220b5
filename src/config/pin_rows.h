// The input/output pins as a page of the workspace: each pin with its function and its parameters, and the
// way to the output table of a pin that has one.
#pragma once

#include <vector>

#include "config/page_rows.h"
#include "unit/table_kinds.h"

namespace zentaq {

/// The output table that a pin's function goes by. nullptr for another function, and for a number that is no
/// table.
const TableKind* tableOfPin(const Unit& unit, int pin);

/// A row for each pin, the parameters of its function as elements. The element that leads to a table is of
/// kind Action, its number that of the pin; it is not enabled where no table has the pin's number.
std::vector<PageRow> pinRows(Unit& unit);

}  // namespace zentaq
