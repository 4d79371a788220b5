// A calibration as a listing: every section in its order, line by line, for the printer, a file or a
// terminal.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

/// What the listing tells beside the calibration. Empty where it is not known: the line stands without it.
struct PrintFacts {
    std::string file;
    std::string date;
    std::string time;
    std::string engine;  ///< name in the engine list
    std::string sensor;  ///< name in the sensor list
    std::string version;
};

/// The lines of the listing.
/// Temperatures are in Celsius, pressures in the sensor's unit. A value that cannot be read is left empty.
std::vector<std::string> printOut(Unit& unit, const PrintFacts& facts);

/// The same as text: lines end with '\n', pages of `linesAPage` lines with '\f', each with the file's name,
/// the date, the time and its number on top. Lines of more than `columns` characters go on below, indented.
std::string printedPages(const std::vector<std::string>& lines, const PrintFacts& facts, int columns,
                         int linesAPage);

}  // namespace zentaq
