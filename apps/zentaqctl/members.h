// Everything in a calibration that has a name: the members of the parameter table, and the texts, control
// bytes, inputs and outputs, tables and their shape beside them. All are read and written in one way.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "config/quiet_calibration.h"

namespace zentaq::ctl {

/// A value as a user sees it: a number, or a text.
using Value = std::variant<float, std::string>;
std::string textOf(const Value& value);

/// How a change gets into a unit.
enum class Reach {
    OnTheFly,     ///< at once on a connected unit, and with the next programming
    Programming,  ///< with the next programming of the whole calibration
    NotSent       ///< never: only the program reads it
};
std::string_view textOf(Reach reach);

struct Member {
    std::string name;
    int cell = Parameter::noCell;  ///< of element 0
    int count = 1;
    int stride = 1;     ///< cells from one element to the next
    int columns = 1;    ///< elements that are shown on one line
    std::string range;  ///< empty where anything is taken
    std::string unit;   ///< "RPM"; pressures say "MAP"
    Reach reach = Reach::NotSent;
    std::string meaning;
    const Parameter* row = nullptr;  ///< of the parameter table; none for the others
    std::function<Value(Unit& unit, int element)> read;
    /// Empty where the value follows from others. Throws Refused with the numbered warning.
    std::function<void(QuietCalibration& calibration, const std::string& value, int element)> write;
};

/// Throws NoSuchMember, with a member of nearly that name where there is one.
Member memberOf(const UnitKind& kind, const std::string& name);

/// All members of a kind: those of the parameter table in its order, then the others.
std::vector<Member> membersOf(const UnitKind& kind);

/// Whether its elements are stops of a table's axis, which must rise.
bool isAxis(const Member& member);

/// Throws BoundsError where a member has no such element.
void checkElement(const Member& member, int element);

/// Reads an element. A cell out of all range is told with the member and the element.
Value readMember(Unit& unit, const Member& member, int element);

/// Checks and writes. Throws Refused, NoSuchMember where the member cannot be set, BoundsError, and Failure
/// for a decimal comma.
void writeMember(QuietCalibration& calibration, const Member& member, const std::string& value, int element);

/// Gives a pin another function as the input/output manager does: only one that it offers, with all
/// parameters 0. Throws Refused, `what` in front of the reason.
void choosePinFunction(Unit& unit, const std::string& what, int pin, int code);

/// Throws Failure for a text with a comma: programs disagree on what it means.
void refuseComma(const std::string& what, const std::string& value);

}  // namespace zentaq::ctl
