// Unit kinds as a user names them on the command line.
#pragma once

#include <string>
#include <string_view>

#include "unit/unit_kind.h"

namespace zentaq::ctl {

/// By model ("ORB A", also "A"), class ("clsORBA"), extension ("ZQ4OA", ".ZQ4OA") or slot number (3 to 8), in
/// any case; "D6" is slot 8. nullptr for any other text.
const UnitKind* unitKindOf(std::string_view text);

/// What is wrong with a name of a kind, for the parser of a command line; empty for nothing.
std::string validKind(const std::string& text);

}  // namespace zentaq::ctl
