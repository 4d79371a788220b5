// Where the calibration files of the older generation (".BIN") keep their values, as data.
// docs/legacy-files.md shows the same as one table and gives the reasons.
#pragma once

#include <array>
#include <limits>
#include <string_view>
#include <vector>

#include "unit/parameter_rules.h"
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
/// Codes that are not in it never were functions. The list grew in its middle: 11 (idle output) and 20 (timed
/// advance) came later.
inline constexpr std::array<Function, 21> functions = {
    {{0, 0},   {1, 1},   {2, 2},   {3, 3},   {4, 4},   {5, 5},   {6, 6},
     {7, 7},   {8, 8},   {9, 9},   {10, 10}, {11, 12}, {12, 13}, {13, 14},
     {14, 15}, {15, 16}, {16, 17}, {17, 18}, {18, 19}, {19, 21}, {20, 22}}};

/// A parameter that the old format kept in other steps.
struct OldTiming {
    int newCode = 0;
    int parameter = 0;  ///< from 0
    double divisor = 1;
};
inline constexpr double oldSpeed = 2.54;
inline constexpr double oldTime = 4.23333;
inline constexpr std::array<OldTiming, 4> oldTimings = {{{7, 0, oldSpeed},    // converter locks above
                                                         {7, 1, oldSpeed},    // converter opens below
                                                         {14, 0, oldSpeed},   // valet speed limit
                                                         {15, 1, oldTime}}};  // log samples

// ---- What the file never had, and what it holds in other measures
/// A cell that is 0 takes a value.
struct Default {
    int first = 0;
    int count = 1;
    float value = 0;
};
inline constexpr std::array<Default, 6> defaults = {{{77, 1, 0},
                                                     {78, 1, 5.0F},
                                                     {147, 1, 1.0F},
                                                     {ratioTableFirst, tableCells, rules::petrolCell},
                                                     {622, 1, 12.0F},
                                                     {coolantCell, 1, 80}}};
/// The curve of the oxygen sensor for files without one.
inline constexpr std::array<float, curvePoints> curveVolts = {0, 0.45F, 0.65F, 1.6F, 2.5F,
                                                              4, 4.2F,  4.62F, 4.8F, 5.0F};
inline constexpr std::array<float, curvePoints> curveRatios = {22.4F, 15.89F, 14.9F, 14.72F, 14.64F,
                                                               14.3F, 13.8F,  12.6F, 11.2F,  10.0F};
/// The code that a block without a function gets from `blockDefaults`; no function has it.
inline constexpr float noFunction = 1500;
/// Defaults of cells of input/output blocks, for blocks without a function.
inline constexpr std::array<Default, 4> blockDefaults = {
    {{410, 1, 3500}, {411, 1, noFunction}, {415, 1, 0}, {416, 1, 0}}};

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
inline constexpr float largestTrim = 15;
inline constexpr float mostCylinders = 16;
inline constexpr std::array<Cleared, 5> cleared = {{{.first = 417, .count = 13},
                                                    {.first = 430, .count = 90},
                                                    {624, 8, -largestTrim, largestTrim, false},
                                                    {632, 8, -largestTrim, largestTrim, false},
                                                    {520, 13, 0, mostCylinders, true}}};

/// Cells that hold "true" for a function in use, and become its number.
inline constexpr int functionFlagsFirst = 534;
inline constexpr int functionFlagsCount = 11;
inline constexpr float flagSet = -1;  ///< "true" as the older programs wrote it

// ---- Option bits
/// Bits of the three control bytes, which stand in old cells 0 to 2, that are options of their own. The other
/// bits follow from members.
inline constexpr std::array<int, 3> optionBits = {0b1111'1101, 0b0111'1110, 0b0000'0111};
/// Members whose writers keep a bit of the control bytes in step.
inline constexpr std::array<std::string_view, 5> membersWithBits = {"DCCL_CutActive", "EGO_Type", "AMP42",
                                                                    "Engine_Type", "PHDSEQ"};

}  // namespace zentaq::old
