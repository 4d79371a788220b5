// Where the calibration files of the older generation (".BIN") keep their values, as data.
// docs/legacy-files.md shows the same as one table and gives the reasons.
#pragma once

#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "unit/parameter.h"
#include "unit/unit_kind.h"

namespace zentaq::old {

inline constexpr int cellCount = 2501;  ///< what an old file may hold: cells 0 to 2500
inline constexpr int tableCells = 256;
inline constexpr int tableRows = 16;
inline constexpr int tableColumns = 16;  ///< of today's tables

// ---- Single cells that the steps of the import name
inline constexpr int columnsCell = 27;   ///< columns in a row of the old tables
inline constexpr int ratingCell = 292;   ///< rating of the pressure sensor, 1 to 4
inline constexpr int coolantCell = 102;  ///< the default of cell 405
inline constexpr int secondSizeCell = 146;
inline constexpr int voltsFirst = 179;   ///< ten voltages of the oxygen sensor's curve
inline constexpr int ratiosFirst = 189;  ///< ten ratios of it
inline constexpr int curvePoints = 10;
inline constexpr int ratioTableFirst = 1152;

/// A member and the old cells of its elements: first, first + stride, ...
struct Place {
    const Parameter* row = nullptr;  ///< of the kind
    int first = 0;
    int stride = 1;

    constexpr int cell(int element) const { return first + element * stride; }
};

/// All members of a kind that the old format holds, the tables aside, in the order of the old cells.
std::vector<Place> places(const UnitKind& kind);
/// The place of one member; its row is nullptr when the kind or the format lacks it.
Place placeOf(const UnitKind& kind, std::string_view member);

/// Cells that belong to no member.
struct Loose {
    int first = 0;
    int cell = 0;  ///< today's first cell
    int count = 1;
};
std::vector<Loose> looseCells(const UnitKind& kind);

/// A table and today's first cell. In the file its rows have as many cells as `columnsCell` says.
struct Table {
    int first = 0;
    int cell = 0;
};
std::vector<Table> tables(const UnitKind& kind);

// ---- Input/output blocks: seven, of a function code and six parameters
inline constexpr int blockFirst = 369;
inline constexpr int blockCells = 7;
inline constexpr int blockCount = 7;

constexpr int blockCell(int block, int word) {
    return blockFirst + blockCells * block + word;
}

/// A function of the old format, and what became of it.
struct Function {
    int oldCode = 0;
    int newCode = 0;
};
/// Codes that are not in it never were functions.
std::span<const Function> functions();

/// A parameter that the old format kept in other steps.
struct OldTiming {
    int newCode = 0;
    int parameter = 0;  ///< from 0
    double divisor = 1;
};
std::span<const OldTiming> oldTimings();

// ---- What the file never had, and what it holds in other measures
/// A cell that is 0 takes a value.
struct Default {
    int first = 0;
    int count = 1;
    float value = 0;
};
std::span<const Default> defaults();
/// The curve of the oxygen sensor for files without one.
std::span<const float, curvePoints> curveVolts();
std::span<const float, curvePoints> curveRatios();
/// Defaults of cells of input/output blocks, for blocks without a function.
std::span<const Default> blockDefaults();
/// The code that a block without a function gets from `blockDefaults`; no function has it.
inline constexpr float noFunction = 1500;

inline constexpr int percentFirst = 640;  ///< a table kept as shares of 1
inline constexpr int pressureFirst = 61;  ///< the pressure axis, kept for a rating of 1
inline constexpr int pressureCount = 16;

/// Cells that a file may hold rubbish in. What lies outside the limits becomes 0.
struct Cleared {
    int first = 0;
    int count = 0;
    float lowest = std::numeric_limits<float>::infinity();  ///< by default everything is cleared
    float highest = -std::numeric_limits<float>::infinity();
    bool wholeOnly = false;
};
std::span<const Cleared> cleared();

/// Cells that hold "true" for a function in use, and become its number.
inline constexpr int functionFlagsFirst = 534;
inline constexpr int functionFlagsCount = 11;
inline constexpr float flagSet = -1;  ///< "true" as the older programs wrote it

// ---- Option bits
/// A bit of the control byte in old cell `byte` that is an option of its own. The other bits follow from
/// members.
struct OptionBit {
    int byte = 0;
    int bit = 0;
};
std::span<const OptionBit> optionBits();
/// Members whose writers keep a bit of the control bytes in step.
std::span<const std::string_view> membersWithBits();

}  // namespace zentaq::old
