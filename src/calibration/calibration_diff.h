// What differs between two calibration files, by member, with the values as a tuner sees them.
// The files are compared as they are; nothing that opening a file repairs hides or adds a difference.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

/// What a difference is about.
enum class DifferenceIn : std::uint8_t {
    Kind,     ///< the files are for different units
    Header,   ///< firmware code, program version, length of the file
    Text,     ///< calibration name, notes
    Option,   ///< a bit of the control bytes
    Value,    ///< a member with one value
    Curve,    ///< an element of a curve or an axis
    Table,    ///< a cell of a table
    Pin,      ///< function or parameter of an input or output
    Cell,     ///< a cell without a member
    Surplus,  ///< bytes behind the calibration
};

struct Difference {
    DifferenceIn in = DifferenceIn::Value;
    std::string member;   ///< "KNK_MIN", "ADV", "GPO1", "GPIO", "firmware", "notes", "cell"
    std::string element;  ///< "[3]" or "[row,column]", both counted from 0; empty for a lone value
    std::string place;    ///< where that is for a tuner: "60.2 kPa, 2000 RPM"; empty for none
    std::string unit;     ///< of both values: "RPM", "kPa"; empty for none
    std::string first;    ///< as the user sees it, with as many digits as tell the two apart
    std::string second;
    /// Of no effect on an engine: the version of the program that wrote the file, its length.
    bool information = false;
};

/// Compares two calibration files, given by their whole content. Empty only for files of equal bytes.
/// Header first, then texts, options, members in the order of the parameter table, inputs and outputs,
/// tables, cells without a member. A file that is shorter counts as 0 behind its end. Of two unit kinds the
/// members that both have are compared, behind the difference "kind". Throws Failure when a file ends inside
/// its header or is of no known unit kind.
std::vector<Difference> differences(std::string_view firstBytes, std::string_view secondBytes);

/// One line without its end: "ADV[3,5] (60.2 kPa, 2000 RPM): 22.5 -> 24 Degrees".
std::string lineOf(const Difference& difference);

}  // namespace zentaq
