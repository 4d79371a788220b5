// A short text about the machine, for the banner of the console.
#pragma once

#include <string>

namespace zentaq {

/// For example "Linux 6.1.0 (x86_64)". Never empty.
std::string systemText();

}  // namespace zentaq
