// Values of a calibration file that no entry gives: outside the range of their member or output table. A file
// may hold them, and the unit gets what is left of them in its bytes.
#pragma once

#include <string>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

/// One line each, in the order of a listing: "GPO1[0,5] (cell 1685) holds 500 (0 to 100%)". Values are those
/// that a tuner sees. Of the first `count` cells; a range that cannot be had without the reference database
/// is not looked at. The cells stay as they are.
std::vector<std::string> valuesOutOfRange(Unit& unit, int count);

}  // namespace zentaq
