// Joins the changes that two people made to one calibration. What only one changed, or both in the same way,
// is taken; what both changed differently is a conflict, and then there is no result.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// A value, or a group of values that belong together, that both sides changed differently.
struct MergeConflict {
    std::string member;   ///< "KNK_MIN", "ADV", "MAP sensor", "GPIO", "notes", "firmware"
    std::string element;  ///< "[3]", "[row,column]"; empty for a lone value
    std::string unit;     ///< of all three values; empty for none
    std::string base;     ///< as the user sees it
    std::string first;
    std::string second;
};

struct MergeResult {
    std::string bytes;  ///< the merged file; empty when there are conflicts
    std::vector<MergeConflict> conflicts;
    int fromFirst = 0;   ///< values and groups that only the first side changed
    int fromSecond = 0;  ///< values and groups that only the second side changed
    int sameInBoth = 0;  ///< values and groups that both changed in the same way
    bool clean() const { return conflicts.empty(); }
};

/// Merges two files made from `base`; all three are whole files.
/// Together go: the bits of one option, the two nibbles of a shared cell each, the rating of the pressure
/// sensor, the sensor's line with its units, a pin with its parameters, a table's size, the name, the notes.
/// Throws Failure when a file ends inside its header, is of no known unit kind, or when the kinds differ.
MergeResult merge(std::string_view base, std::string_view first, std::string_view second);

/// One line without its end: "KNK_MIN: 50 in the base, 60 in the first, 70 in the second (units)".
std::string lineOf(const MergeConflict& conflict);

}  // namespace zentaq
