// Texts counted in characters as a user counts them, not in bytes: no cut falls inside a character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zentaq {

/// Characters (code points) of a UTF-8 text. A byte that belongs to no valid character counts as one.
std::size_t characterCount(std::string_view text);

/// The first and the last `count` characters; the whole text when it has no more.
std::string_view firstCharacters(std::string_view text, std::size_t count);
std::string_view lastCharacters(std::string_view text, std::size_t count);

/// Left-justified, blank-padded or cut to exactly `width` characters.
std::string fixedCharacters(std::string_view text, std::size_t width);

}  // namespace zentaq
