// Whether a serial number and a firmware text can belong to a unit of a kind.
// A program tells the kind from the number and its memory from the firmware, so a wrong one makes another
// unit.
#pragma once

#include "sim/simulated_unit.h"

namespace zentaq::sim {

/// Throws Failure, in words for a user, for a serial number of another kind, a firmware text of another kind
/// or without release and build, a serial format that the kind has never had, or a serial number that the
/// format cannot carry.
void checkIdentity(const UnitProfile& profile, const UnitIdentity& identity);

}  // namespace zentaq::sim
