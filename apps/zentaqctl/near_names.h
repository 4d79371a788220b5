// Names that a user may have meant.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zentaq::ctl {

/// The one name that a word of a command line may mean, capitals aside; empty for none.
std::string nearWord(std::span<const std::string> names, const std::string& wanted);

/// The place of a name in a list, compared without case and without the blanks around it; -1 for none.
int placeOf(std::span<const std::string> names, std::string_view wanted);

/// "; did you mean "A", "B" or "C"?": the names that hold every word of the wanted one, else those nearest to
/// it; empty where none is near.
std::string suggestion(std::span<const std::string> names, std::string_view wanted);

/// "A, B or C".
std::string joinedByOr(std::span<const std::string> names);

}  // namespace zentaq::ctl
