// Unit kinds as a user names them on the command line.
#pragma once

#include <string>
#include <string_view>

#include "unit/unit_kind.h"

namespace zentaq::ctl {

/// By name ("ORB A"), label ("A", "D6"), class ("clsORBA"), extension ("ZQ4OA", ".ZQ4OA") or slot number, in
/// any case. nullptr for any other text.
const UnitKind* unitKindOf(std::string_view text);

/// What is wrong with a name of a kind, for the parser of a command line; empty for nothing.
std::string validKind(const std::string& text);

}  // namespace zentaq::ctl
