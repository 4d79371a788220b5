// The six tables and their axes: names, members, spans of axis kinds, reading and writing of headers.
// Everything that edits or shows a table finds its cells and headers through here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

/// One table. `member` is empty for the two output tables, which have a number instead.
struct TableKind {
    std::string_view name;    ///< "ADV"
    std::string_view member;  ///< "Get_AFR": the Unit object's indexed member, as "AFR" alone is the scalar
    int gpoNumber = 0;        ///< 1 or 2 for "GPO1" and "GPO2"
    double nudge = 1;         ///< step of the "." and "," keys
    double colourMidpoint = 0;
    double colourScale = 50;

    bool isGpo() const { return gpoNumber != 0; }
    /// Whether cells stand for an injector on time, so that pulse width and duty can be shown.
    bool isFuel() const { return name == "VE" || name == "SPW"; }
};

/// nullptr for a name that is no table.
const TableKind* findTable(std::string_view name);

/// A table always has 16 columns in store, whatever is shown.
constexpr int storedColumns = 16;
constexpr int storedCells = 256;
constexpr int storedHeaders = 16;
/// The most rows or columns that a calibration can ask for.
constexpr int mostLines = 24;

/// Rows or columns as shown: what GET_TBL_DIMENSIONS answers, held to 0 to 24 as a file may hold anything.
int shownRows(Unit& unit, std::string_view table);
int shownColumns(Unit& unit, std::string_view table);

// ---- Values by table index, 0 to 255. BoundsError outside; 0 for a name that is no table.
/// AFR is rounded to 2 decimals, an output table to whole percent; `absoluteVe` adds 100 to VE.
float get_binValueByIndex(Unit& unit, std::string_view table, int index, bool absoluteVe);
/// The mirror of the getter; an output table takes a 16-bit whole number.
EntryOutcome set_binValueByIndex(Unit& unit, std::string_view table, float value, int index, bool absoluteVe);

/// What every cell of a table takes, by whatever way it comes; Limits::none() for a name that is no table.
Limits cellLimits(Unit& unit, std::string_view table, bool absoluteVe);

// ---- Headers. Axis: "X-Axis" for columns, "Y-Axis" for rows.
float tableHeader(Unit& unit, std::string_view table, std::string_view axis, int index);
EntryOutcome setTableHeader(Unit& unit, std::string_view table, std::string_view axis, int index,
                            const Entry& value);

/// The span over which a new axis is spread evenly; both 0 for a name that is no axis kind.
struct AxisSpan {
    float low = 0;
    float high = 0;
};
AxisSpan axisSpan(Unit& unit, std::string_view axisKind);

/// Rebuilds the stops of an axis of an output table: evenly over the span of a kind, rounded to 1 decimal.
/// `axis` "ROW-AXIS" or "COL-AXIS". Answers what was refused, likewise the reset below.
std::vector<Refusal> spreadAxis(Unit& unit, std::string_view table, std::string_view axis,
                                std::string_view axisKind);

/// Whether all row stops or all column stops of an output table are 0.
bool hasEmptyAxis(Unit& unit, std::string_view table);
/// Gives both output tables the RPM and MAP lists as axes and 16 by 16 cells.
std::vector<Refusal> resetGpoAxes(Unit& unit);

}  // namespace zentaq
