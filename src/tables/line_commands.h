// Adding and removing a row or a column of a table. The four main tables share their axes and their size, so
// all of them change; an output table changes alone.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tables/table_sheet.h"

namespace zentaq {

enum class LineCommand { AddColumn, AddRow, RemoveColumn, RemoveRow };

constexpr bool addsLine(LineCommand command) {
    return command == LineCommand::AddColumn || command == LineCommand::AddRow;
}
constexpr bool isOfColumns(LineCommand command) {
    return command == LineCommand::AddColumn || command == LineCommand::RemoveColumn;
}

/// Whether the unit can work with tables of another size: by its kind, from a release on.
bool takesOtherSizes(const Unit& unit);
/// Why the command cannot be done on this table now, with what can be done about it; empty where it can.
std::string whyNot(const TableSheet& sheet, LineCommand command);

/// Puts a new line in front of grid line `line`, from 1, or takes that one away, and reads the sheet again.
/// Does nothing where whyNot() has a reason, and for a line that is not there. A refused value leaves its
/// cell as it was, and the rest goes on.
std::vector<Refusal> changeLines(TableSheet& sheet, LineCommand command, int line);

/// A header of this table as a user enters it: a temperature in his scale.
float enteredHeader(const TableSheet& sheet, bool columns, int line);
/// The tables that share the axes of this one, itself among them, as far as the unit has them: ADV, AFR, SPW
/// and VE in this order, in which their cells go to a running unit.
std::vector<std::string_view> tablesOnAxesOf(const TableSheet& sheet);

}  // namespace zentaq
