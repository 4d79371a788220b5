// What an axis of a table can carry, by the code that calibrations keep in a nibble.
#pragma once

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace zentaq {

inline constexpr std::array<std::string_view, 16> axisKindNames = {
    "",      "CLT",   "RAW MAP", "BLEND MAP", "TPS",   "ACTUAL AFR", "MAT",   "RPM",
    "GPIO1", "GPIO2", "GPIO3",   "GPIO4",     "GPIO5", "GPIO6",      "GPIO7", "GPIO8"};

/// The name of a code from 0 to 15, empty for none.
constexpr std::string_view axisKindName(int code) {
    if (code < 0 || code >= static_cast<int>(axisKindNames.size())) return {};
    return axisKindNames[static_cast<std::size_t>(code)];
}

/// The code of a name, nothing for a text that is none.
constexpr std::optional<int> axisKindCode(std::string_view name) {
    const auto found = std::ranges::find(axisKindNames, name);
    if (found == axisKindNames.end()) return {};
    return static_cast<int>(found - axisKindNames.begin());
}

}  // namespace zentaq
