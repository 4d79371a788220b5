#include "base/utf8.h"

namespace zentaq {

namespace {

constexpr unsigned char topBit = 0x80;
constexpr unsigned char continuationMask = 0xC0;

bool continues(char byte) {
    return (static_cast<unsigned char>(byte) & continuationMask) == topBit;
}

/// How many bytes the lead byte of a character announces; 1 for a byte that leads none.
std::size_t announced(unsigned char lead) {
    if (lead >= 0xC2 && lead <= 0xDF) return 2;
    if (lead >= 0xE0 && lead <= 0xEF) return 3;
    if (lead >= 0xF0 && lead <= 0xF4) return 4;
    return 1;
}

/// Bytes of the character at `at`; 1 when the bytes there are none.
std::size_t characterLength(std::string_view text, std::size_t at) {
    const std::size_t length = announced(static_cast<unsigned char>(text[at]));
    if (at + length > text.size()) return 1;
    for (std::size_t i = 1; i < length; ++i) {
        if (!continues(text[at + i])) return 1;
    }
    return length;
}

std::size_t bytesOfFirst(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count) at += characterLength(text, at);
    return at;
}

}  // namespace

std::size_t characterCount(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); at += characterLength(text, at)) ++count;
    return count;
}

std::string_view firstCharacters(std::string_view text, std::size_t count) {
    return text.substr(0, bytesOfFirst(text, count));
}

std::string_view lastCharacters(std::string_view text, std::size_t count) {
    const std::size_t all = characterCount(text);
    return count >= all ? text : text.substr(bytesOfFirst(text, all - count));
}

std::string fixedCharacters(std::string_view text, std::size_t width) {
    std::string field(firstCharacters(text, width));
    field.append(width - characterCount(field), ' ');
    return field;
}

}  // namespace zentaq
