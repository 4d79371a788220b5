// Texts counted in characters as a user counts them, not in bytes: no cut falls inside a character.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zentaq {

/// One character of a text.
struct Character {
    char32_t code;       ///< `noCharacter` for a byte that belongs to no valid one
    std::size_t length;  ///< in bytes
};
inline constexpr char32_t noCharacter = 0xFFFFFFFF;

/// The character that a text begins with; the text is not empty. What is longer than needed, a surrogate or
/// beyond the last character is none.
Character firstCharacter(std::string_view text);

/// Appends a character that is one.
void appendUtf8(std::string& text, char32_t code);

/// Characters (code points) of a UTF-8 text. A byte that belongs to no valid character counts as one.
std::size_t characterCount(std::string_view text);

/// The first and the last `count` characters; the whole text when it has no more.
std::string_view firstCharacters(std::string_view text, std::size_t count);
std::string_view lastCharacters(std::string_view text, std::size_t count);

/// Left-justified, blank-padded or cut to exactly `width` characters.
std::string fixedCharacters(std::string_view text, std::size_t width);

}  // namespace zentaq
