// The six tables: one row each with its name, member, title, cells and what the editor needs to know of it.
// The four main tables share their sizes and their axes, the lists RPMTBL and MAPTBL.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "base/channels.h"
#include "unit/unit.h"

namespace zentaq {

/// A second view of the cells, counted from another number.
struct AbsoluteView {
    float base = 0;  ///< shown where the cell is 0
    FixedRange range;
    std::string_view rangeText;
};

/// What the injectors make of the cells: a share of their on time, so that pulse width and duty can be shown.
enum class FuelCells : std::uint8_t { None, Main, Staged };

struct TableKind {
    std::string_view name;     ///< "ADV"
    std::string_view member;   ///< "Get_AFR", as "AFR" alone is the scalar; empty for the two output tables
    std::string_view title{};  ///< of its window; empty: what the member means
    int gpoNumber = 0;         ///< 1 or 2 for "GPO1" and "GPO2"
    int rowsCell = 0;          ///< of "ROWS"; "COLS" stands in the next cell
    int axisWord = 0;          ///< both axis kinds in one byte; an output table has its own
    int rowStops = 0;          ///< first cell of its own stops
    int columnStops = 0;
    double nudge = 1;              ///< step of the "." and "," keys
    int decimals = -1;             ///< to which a cell is rounded as it is read; -1: as stored
    Limits (*typing)(Unit&) = {};  ///< of what a user types, where they are not those of the cell
    std::optional<AbsoluteView> absolute{};
    FuelCells fuel = FuelCells::None;
    bool shaded = false;  ///< cells bear a shade by their value
    double colourMidpoint = 0;
    double colourScale = 50;
    std::string_view liveCaption{};  ///< of its live value beside the grid; empty: not shown
    float LiveValues::*live = &LiveValues::INJ_VE;
    std::string_view liveFormat = "##0";
    bool liveWithFuelOnly = false;  ///< not shown for kinds without a fuel side

    bool isGpo() const { return gpoNumber != 0; }
    /// To which a command rounds what it works out of several cells.
    int commandDecimals() const { return decimals >= 0 ? decimals : 1; }
    /// The first cell of an output table.
    int firstCell(const UnitKind& kind) const {
        return kind.cells.outputTable.at(static_cast<std::size_t>(gpoNumber - 1));
    }
    /// The absolute view where it is on and the table has one, or nullptr.
    const AbsoluteView* absoluteIf(bool on) const { return on && absolute ? &*absolute : nullptr; }
};

/// A table always has 16 columns in store, whatever is shown.
constexpr int storedColumns = 16;
constexpr int storedCells = 256;
constexpr int storedHeaders = 16;
/// The most rows or columns that a calibration can ask for.
constexpr int mostLines = 24;

/// The main tables, then the output tables.
std::span<const TableKind> tableKinds();
std::span<const TableKind> outputTables();
/// 1 or 2.
inline const TableKind& outputTable(int number) {
    return outputTables()[static_cast<std::size_t>(number - 1)];
}
/// nullptr for a name that is no table.
const TableKind* findTable(std::string_view name);
/// "Ignition Advance Table"; empty for a name that is no table.
std::string tableTitle(std::string_view name);
bool hasTable(const UnitKind& kind, const TableKind& table);
bool hasTable(const UnitKind& kind, std::string_view table);

/// The list that is an axis of the main tables: "X-Axis" for columns, "Y-Axis" for rows.
constexpr std::string_view mainAxisMember(std::string_view axis) {
    return axis == "X-Axis" ? "RPMTBL" : "MAPTBL";
}
/// A header as its list or its stop holds it.
float tableHeader(Unit& unit, std::string_view table, std::string_view axis, int index);
EntryOutcome setTableHeader(Unit& unit, std::string_view table, std::string_view axis, int index,
                            const Entry& value);

}  // namespace zentaq
