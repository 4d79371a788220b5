// Datalog text of format 4.10: three header lines and one line a frame, tab-separated, CR LF.
#pragma once

#include <ostream>
#include <string>

#include "base/channels.h"
#include "unit/unit.h"

namespace zentaq {

/// The three header lines for a unit.
void writeDatalogHeader(std::ostream& out, Unit& unit);

/// One data line. `scaled`: the frame number counts records of the unit's own log at its log rate and is
/// brought to the 50 Hz time base; otherwise it is a count of 50 Hz ticks.
void DataRecord(std::ostream& out, Unit& unit, const LiveValues& live, bool scaled, int frame);

}  // namespace zentaq
