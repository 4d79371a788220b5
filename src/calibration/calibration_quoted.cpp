#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/utf8.h"
#include "calibration/calibration_cells.h"
#include "unit/calibration_text.h"

namespace zentaq {

namespace {

constexpr char32_t lastCharacter = 0x10FFFF;

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

std::optional<char32_t> characterOf(CellBits bits) {
    const float value = floatOf(bits);
    if (!(value >= 0 && value <= static_cast<float>(lastCharacter))) return {};
    const auto character = static_cast<char32_t>(value);
    if (isSurrogate(character) || bitsOf(static_cast<float>(character)) != bits) return {};
    return character;
}

struct Escape {
    char letter;
    char32_t character;
};
constexpr Escape escapes[] = {{'\\', U'\\'}, {'"', U'"'}, {'n', U'\n'}, {'r', U'\r'}, {'t', U'\t'}, {'0', 0}};

void appendQuoted(std::string& text, char32_t c) {
    for (const Escape& escape : escapes) {
        if (escape.character != c) continue;
        text += '\\';
        text += escape.letter;
        return;
    }
    if (isShownAsItIs(c)) {
        appendUtf8(text, c);
    } else {
        text += "\\{" + std::to_string(static_cast<std::uint32_t>(c)) + "}";
    }
}

/// Takes characters off the front of a text in quotes.
class QuotedReader {
 public:
    explicit QuotedReader(std::string_view text) : text_(text) {}

    bool atEnd() const { return text_.empty(); }
    char32_t next() {
        const auto lead = static_cast<std::uint8_t>(text_.front());
        text_.remove_prefix(1);
        if (lead == '\\') return escaped();
        return lead < 0x80 ? lead : utf8(lead);
    }

 private:
    char32_t escaped() {
        if (text_.empty()) throw Failure("the text ends behind a backslash");
        const char letter = text_.front();
        text_.remove_prefix(1);
        if (letter == '{') return numbered();
        for (const Escape& escape : escapes) {
            if (escape.letter == letter) return escape.character;
        }
        throw Failure(std::string("\\") + letter + " stands for no character");
    }

    char32_t numbered() {
        const auto end = text_.find('}');
        const auto number = end == std::string_view::npos ? std::nullopt : parseNumber(text_.substr(0, end));
        if (!number || !(*number >= 0 && *number <= lastCharacter)) throw Failure("\\{ needs a number and }");
        const auto character = static_cast<char32_t>(*number);
        if (static_cast<double>(character) != *number || isSurrogate(character)) {
            throw Failure("\\{" + std::string(text_.substr(0, end)) + "} stands for no character");
        }
        text_.remove_prefix(end + 1);
        return character;
    }

    char32_t utf8(std::uint8_t lead) {
        const std::size_t tail = lead >= 0xF0 && lead < 0xF5 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
        bool good = tail > 0 && lead < 0xF5 && text_.size() >= tail;
        auto character = static_cast<char32_t>(lead & (0x3F >> tail));
        for (std::size_t i = 0; good && i < tail; ++i) {
            const auto next = static_cast<std::uint8_t>(text_[i]);
            good = (next & 0xC0) == 0x80;
            character = (character << 6U) | (next & 0x3FU);
        }
        constexpr char32_t shortest[] = {0, 0x80, 0x800, 0x10000};
        if (!good || character < shortest[tail] || character > lastCharacter || isSurrogate(character)) {
            throw Failure("the text is not UTF-8");
        }
        text_.remove_prefix(tail);
        return character;
    }

    std::string_view text_;
};

}  // namespace

bool holdsNoteCharacter(CellBits bits) {
    return characterOf(bits).has_value() && floatOf(bits) > highestTrim;
}

std::optional<std::vector<std::string>> quotedLines(std::span<const CellBits> cells) {
    while (!cells.empty() && cells.back() == 0) cells = cells.first(cells.size() - 1);
    std::vector<std::string> lines(1, "\"");
    bool lineEnded = false;
    for (const CellBits bits : cells) {
        const auto character = characterOf(bits);
        if (!character) return {};
        if (lineEnded) {
            lines.back() += '"';
            lines.emplace_back("\"");
        }
        appendQuoted(lines.back(), *character);
        lineEnded = *character == U'\n';
    }
    lines.back() += '"';
    return lines;
}

std::optional<std::string> quotedText(std::span<const CellBits> cells) {
    const auto lines = quotedLines(cells);
    if (!lines) return {};
    std::string text = "\"";
    for (const std::string& line : *lines) text += line.substr(1, line.size() - 2);
    return text + "\"";
}

std::vector<CellBits> charactersOfQuoted(std::string_view quoted) {
    if (quoted.size() < 2 || quoted.front() != '"' || quoted.back() != '"') {
        throw Failure("the text does not stand in quotes");
    }
    QuotedReader reader(quoted.substr(1, quoted.size() - 2));
    std::vector<CellBits> cells;
    while (!reader.atEnd()) cells.push_back(bitsOf(static_cast<float>(reader.next())));
    return cells;
}

}  // namespace zentaq
