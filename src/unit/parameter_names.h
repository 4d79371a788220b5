// What a parameter is called wherever a user reads of it: pages, windows, shell, help and guide. The name
// stands in the parameter's row; a text that can't take it from there is held to it by the tests.
#pragma once

#include <string_view>

namespace zentaq {

/// "Maximum Controllable PulseWidth" for "scale1". Throws NoSuchMember.
std::string_view nameOfParameter(std::string_view member);

}  // namespace zentaq
