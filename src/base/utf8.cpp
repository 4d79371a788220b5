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

std::size_t characterLength(std::string_view text, std::size_t at) {
    const bool ascii = static_cast<unsigned char>(text[at]) < topBit;  // nearly all there is
    return ascii ? 1 : firstCharacter(text.substr(at)).length;
}

std::size_t bytesOfFirst(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    for (; count > 0 && at < text.size(); --count) at += characterLength(text, at);
    return at;
}

}  // namespace

Character firstCharacter(std::string_view text) {
    constexpr Character none{noCharacter, 1};
    constexpr char32_t shortest[] = {0, 0, 0x80, 0x800, 0x10000};
    constexpr unsigned leadBits[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t length = announced(lead);
    if (length > text.size() || (length == 1 && lead >= topBit)) return none;
    char32_t code = lead & leadBits[length];
    for (std::size_t i = 1; i < length; ++i) {
        if (!continues(text[i])) return none;
        code = (code << 6U) | (static_cast<unsigned char>(text[i]) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (code < shortest[length] || surrogate || code > 0x10FFFF) return none;
    return {code, length};
}

void appendUtf8(std::string& text, char32_t code) {
    const auto add = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto tail = [code](unsigned shift) { return 0x80 | ((code >> shift) & 0x3FU); };
    if (code < 0x80) {
        add(code);
    } else if (code < 0x800) {
        add(0xC0 | (code >> 6U));
        add(tail(0));
    } else if (code < 0x10000) {
        add(0xE0 | (code >> 12U));
        add(tail(6));
        add(tail(0));
    } else {
        add(0xF0 | (code >> 18U));
        add(tail(12));
        add(tail(6));
        add(tail(0));
    }
}

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
