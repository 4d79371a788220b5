// Unit kinds as a user names them on the command line.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "unit/unit_kind.h"

namespace zentaq::ctl {

/// By model ("ORB A", also "A"), class ("clsORBA"), extension ("ZQ4OA", ".ZQ4OA") or slot number (3 to 8), in
/// any case; "D6" is slot 8. nullptr for any other text.
const UnitKind* unitKindOf(std::string_view text);

/// The kinds with a calibration, by slot.
std::vector<const UnitKind*> allUnitKinds();

/// "ORB A"; the two kinds of one class are told apart: "ORB D", "ORB D6".
std::string modelOf(const UnitKind& kind);

}  // namespace zentaq::ctl
