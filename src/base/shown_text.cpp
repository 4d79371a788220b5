#include "base/shown_text.h"

#include <algorithm>
#include <iterator>

#include "base/utf8.h"

namespace zentaq {

namespace {

struct CodeRange {
    char32_t first;
    char32_t last;
};

/// In ascending order.
constexpr CodeRange unseen[] = {
    {0x0, 0x1F},
    {0x7F, 0x9F},    // control characters
    {0xAD, 0xAD},    // soft hyphen
    {0x34F, 0x34F},  // joins without width
    {0x61C, 0x61C},  // direction mark
    {0x115F, 0x1160},
    {0x17B4, 0x17B5},  // fillers
    {0x180B, 0x180F},  // selectors and a separator without width
    {0x200B, 0x200F},  // without width, direction marks
    {0x2028, 0x202E},  // line ends, turned directions
    {0x2060, 0x206F},  // joiners, isolated directions
    {0x3164, 0x3164},  // filler
    {0xD800, 0xDFFF},  // halves of characters
    {0xFE00, 0xFE0F},  // selectors
    {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0},  // without width
    {0xFFF0, 0xFFFB},  // marks of annotations
    {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A},  // formats of shorthand and music
    {0xE0000, 0xE0FFF},  // tags and selectors
    {0x110000, 0xFFFFFFFF},
};

constexpr std::string_view hexDigits = "0123456789ABCDEF";

void appendByte(std::string& out, unsigned byte) {
    out += "\\x";
    out += hexDigits[byte >> 4U];
    out += hexDigits[byte & 0xFU];
}

void appendNumbered(std::string& out, char32_t code) {
    out += "\\u{";
    int shift = 20;
    while (shift > 12 && (code >> shift) == 0) shift -= 4;
    for (; shift >= 0; shift -= 4) out += hexDigits[(code >> shift) & 0xFU];
    out += '}';
}

void appendEscaped(std::string& out, char32_t code) {
    if (code == '\n') {
        out += "\\n";
    } else if (code == '\r') {
        out += "\\r";
    } else if (code == '\t') {
        out += "\\t";
    } else if (code <= 0x9F) {
        appendByte(out, code);
    } else {
        appendNumbered(out, code);
    }
}

void appendFirst(std::string& out, std::string_view text, const Character& character, bool lines) {
    if (character.code == noCharacter) {
        appendByte(out, static_cast<unsigned char>(text.front()));
    } else if (isShownAsItIs(character.code) || (lines && (text.front() == '\n' || text.front() == '\t'))) {
        out += text.substr(0, character.length);
    } else {
        appendEscaped(out, character.code);
    }
}

bool isPlainLines(std::string_view text) {
    return std::ranges::all_of(
        text, [](char byte) { return (byte >= ' ' && byte <= '~') || byte == '\n' || byte == '\t'; });
}

std::string shown(std::string_view text, bool lines) {
    if (lines ? isPlainLines(text) : isPlain(text)) return std::string(text);
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        appendFirst(out, text, character, lines);
        text.remove_prefix(character.length);
    }
    return out;
}

/// Keeps both ends.
std::string cutInMiddle(const std::string& text, std::size_t most) {
    constexpr std::string_view gap = " ... ";
    // Bytes are never fewer than characters.
    if (text.size() <= most || characterCount(text) <= most) return text;
    const std::size_t kept = most - gap.size();
    return std::string(firstCharacters(text, kept - kept / 2)) + std::string(gap) +
           std::string(lastCharacters(text, kept / 2));
}

/// So much of a text as can matter where `most` characters are shown of it: a text of gigabytes is not
/// walked through for its two ends.
std::string ends(std::string_view text, std::size_t most) {
    constexpr std::size_t longestCharacter = 4;
    const std::size_t side = most * longestCharacter;
    if (text.size() <= 2 * side) return std::string(text);
    std::string_view tail = text.substr(text.size() - side);
    while (!tail.empty() && (static_cast<unsigned char>(tail.front()) & 0xC0U) == 0x80U)
        tail.remove_prefix(1);
    return std::string(firstCharacters(text.substr(0, side), most)) + std::string(tail);
}

/// Whether the text is the beginning of a character and no more.
bool isBegun(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text.front());
    const std::size_t whole = lead >= 0xF0 && lead <= 0xF4 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC2 ? 2 : 1;
    if (lead > 0xF4 || text.size() >= whole) return false;
    return std::ranges::all_of(text.substr(1),
                               [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U; });
}

}  // namespace

bool isShownAsItIs(char32_t code) {
    if (code >= ' ' && code <= '~') return true;  // nearly all there is
    const auto* range = std::ranges::lower_bound(unseen, code, {}, &CodeRange::last);
    return range == std::end(unseen) || code < range->first;
}

bool isPlain(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return byte >= ' ' && byte <= '~'; });
}

std::string shownLine(std::string_view text) {
    return shown(text, false);
}

std::string shownLines(std::string_view text) {
    return shown(text, true);
}

std::string shownBriefly(std::string_view text, std::size_t most) {
    return cutInMiddle(shownLine(ends(text, most)), most);
}

std::string shownError(std::string_view text) {
    constexpr std::size_t most = 600;
    std::string line = ends(text, most);
    std::ranges::replace(line, '\n', ' ');
    return cutInMiddle(shownLine(line), most);
}

std::string shownInBox(std::string_view text) {
    constexpr std::size_t most = 3000;
    std::string lines = ends(text, most);
    std::ranges::replace(lines, '\r', '\n');
    return cutInMiddle(shownLines(lines), most);
}

// ---- Streams

ShownBuffer::~ShownBuffer() {
    pass({}, true);
}

ShownBuffer::int_type ShownBuffer::overflow(int_type character) {
    if (traits_type::eq_int_type(character, traits_type::eof())) return traits_type::not_eof(character);
    const char byte = traits_type::to_char_type(character);
    return pass({&byte, 1}, false) ? character : traits_type::eof();
}

std::streamsize ShownBuffer::xsputn(const char* text, std::streamsize count) {
    return pass({text, static_cast<std::size_t>(count)}, false) ? count : 0;
}

// A character that has begun stays for the rest of it.
int ShownBuffer::sync() {
    return next_.pubsync();
}

bool ShownBuffer::pass(std::string_view text, bool whole) {
    const auto put = [this](std::string_view bytes) {
        return next_.sputn(bytes.data(), std::ssize(bytes)) == std::ssize(bytes);
    };
    if (begun_.empty() && isPlainLines(text)) return put(text);
    std::string joined;
    if (!begun_.empty()) {
        joined = begun_ + std::string(text);
        begun_.clear();
        text = joined;
    }
    std::string out;
    while (!text.empty()) {
        if (!whole && isBegun(text)) {
            begun_ = text;
            break;
        }
        const Character character = firstCharacter(text);
        appendFirst(out, text, character, true);
        text.remove_prefix(character.length);
    }
    return put(out);
}

}  // namespace zentaq
