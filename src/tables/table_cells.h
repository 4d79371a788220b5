// Reading and writing of table cells by name, and the axes of the output tables. Everything that edits or
// shows a table finds its cells through here.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/table_kinds.h"

namespace zentaq {

/// Rows or columns as shown: what GET_TBL_DIMENSIONS answers, held to 0 to 24 as a file may hold anything.
int shownRows(Unit& unit, std::string_view table);
int shownColumns(Unit& unit, std::string_view table);

/// "cell 3,12": row and column as the grid shows them, from the top left.
std::string cellName(int row, int column);

// ---- Values by table index, 0 to 255. BoundsError outside; 0 for a name that is no table.
/// AFR is rounded to 2 decimals, an output table to whole percent; `absoluteVe` adds 100 to VE.
float get_binValueByIndex(Unit& unit, std::string_view table, int index, bool absoluteVe);
/// The mirror of the getter; an output table takes a 16-bit whole number.
EntryOutcome set_binValueByIndex(Unit& unit, std::string_view table, float value, int index, bool absoluteVe);
/// The table shows this value already, in the digits that a cell shows: fewer than the calibration may hold.
bool showsAlready(Unit& unit, std::string_view table, float value, int index, bool absoluteVe);

/// What every cell of a table takes, by whatever way it comes; Limits::none() for a name that is no table.
Limits cellLimits(Unit& unit, std::string_view table, bool absoluteVe);
/// What a user may type: the same but for ratios, whose text and ends are a hair wider.
Limits typingLimits(Unit& unit, std::string_view table, bool absoluteVe);

/// Rebuilds the stops of an axis of an output table: evenly over the span of a kind, rounded to 1 decimal.
/// `axis` "ROW-AXIS" or "COL-AXIS". Answers what was refused, likewise the reset below.
std::vector<Refusal> spreadAxis(Unit& unit, std::string_view table, std::string_view axis,
                                std::string_view axisKind);

/// Whether all row stops or all column stops of an output table are 0.
bool hasEmptyAxis(Unit& unit, std::string_view table);
/// Gives both output tables the RPM and MAP lists as axes and 16 by 16 cells.
std::vector<Refusal> resetGpoAxes(Unit& unit);

}  // namespace zentaq
