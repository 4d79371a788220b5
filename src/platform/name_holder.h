// Who holds a name outside the file system, as the system itself tells it.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

/// For a datagram socket of that name: "zentaq4 (process 4711, user anna)", or that it is a program of
/// somebody else, of which this user sees no more. Empty where nobody has the name any more.
std::string holderOfName(std::string_view name);

}  // namespace zentaq
