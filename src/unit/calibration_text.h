// What the notes of a calibration begin with: their first character shares its cell with the last fuel trim.
#pragma once

#include <algorithm>

namespace zentaq {

/// Percent. The codes of line breaks and tabs are percentages that a trim may have.
inline constexpr int highestTrim = 15;

/// No notes begin with what could be a trim. A cell that is left free in front stays so. `codeOf` tells the
/// code of an element.
template <typename Characters, typename CodeOf>
void dropLeadingControls(Characters& characters, CodeOf codeOf) {
    const auto first =
        std::ranges::find_if(characters, [&](const auto& c) { return codeOf(c) > highestTrim; });
    const auto kept =
        std::remove_if(characters.begin(), first, [&](const auto& c) { return codeOf(c) != 0; });
    characters.erase(kept, first);
}

}  // namespace zentaq
