// Names that a user may have meant.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zentaq::ctl {

/// Single characters to change, insert or leave out on the way from one word to the other.
int editsBetween(std::string_view from, std::string_view to);

/// The place of a name in a list, compared without case and without the blanks around it; -1 for none.
int placeOf(std::span<const std::string> names, std::string_view wanted);

/// "; did you mean "A", "B" or "C"?": the names that hold every word of the wanted one, else those nearest to
/// it; empty where none is near.
std::string suggestion(std::span<const std::string> names, std::string_view wanted);

}  // namespace zentaq::ctl
