#include "unit/calibration_text.h"

#include <cmath>
#include <cstdint>

#include "base/rounding.h"
#include "base/text.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int nameLength = 24;
constexpr int notesLength = 500;
constexpr std::string_view emptyNotes = "Write any useful information here.     (Limit 500 Characters)";

/// The characters of a UTF-8 text; a broken byte stands for itself.
std::u32string charactersOf(std::string_view text) {
    std::u32string characters;
    for (std::size_t i = 0; i < text.size();) {
        const auto lead = static_cast<std::uint8_t>(text[i]);
        const std::size_t tail = lead >= 0xF0 && lead < 0xF8 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC2 ? 1 : 0;
        char32_t character = lead;
        bool whole = lead < 0xF8 && tail > 0 && i + tail < text.size();
        if (whole) {
            character = static_cast<char32_t>(lead & (0x3F >> tail));
            for (std::size_t k = 1; k <= tail; ++k) {
                const auto next = static_cast<std::uint8_t>(text[i + k]);
                whole = whole && (next & 0xC0) == 0x80;
                character = (character << 6U) | (next & 0x3FU);
            }
        }
        characters += whole ? character : lead;
        i += whole ? tail + 1 : 1;
    }
    return characters;
}

void appendCharacter(std::string& text, char32_t c) {
    const auto add = [&text](char32_t byte) { text += static_cast<char>(static_cast<std::uint8_t>(byte)); };
    if (c < 0x80) {
        add(c);
    } else if (c < 0x800) {
        add(0xC0 | (c >> 6U));
        add(0x80 | (c & 0x3FU));
    } else if (c < 0x10000) {
        add(0xE0 | (c >> 12U));
        add(0x80 | ((c >> 6U) & 0x3FU));
        add(0x80 | (c & 0x3FU));
    } else {
        add(0xF0 | (c >> 18U));
        add(0x80 | ((c >> 12U) & 0x3FU));
        add(0x80 | ((c >> 6U) & 0x3FU));
        add(0x80 | (c & 0x3FU));
    }
}

/// The character that a cell stands for; 0 for none. Cells come from files and may hold anything.
char32_t characterOf(float cell) {
    const double code = roundHalfEven(cell);
    constexpr double last = 0x10FFFF;
    if (!(code >= 1 && code <= last)) return 0;
    const auto character = static_cast<char32_t>(code);
    return character >= 0xD800 && character <= 0xDFFF ? 0 : character;
}

}  // namespace

std::string Unit::BiName() const {
    if (!kind_->hasCalibration) return {};
    std::string name;
    for (int i = 0; i < nameLength; ++i) {
        const char32_t character = characterOf(cellAt(kind_->cells.name + i));
        appendCharacter(name, character == 0 ? U' ' : character);
    }
    return name;
}

void Unit::BiName(std::string_view path) {
    if (!kind_->hasCalibration) return;
    std::string name = fileNameOf(path);
    const std::size_t tail = kind_->extension.size();
    if (name.size() >= tail && upper(name.substr(name.size() - tail)) == kind_->extension) {
        name.resize(name.size() - tail);
    }
    std::u32string characters = charactersOf(name);
    characters.resize(nameLength, U' ');
    for (int i = 0; i < nameLength; ++i) {
        // The unit keeps one byte a character.
        const char32_t character = characters[static_cast<std::size_t>(i)];
        put(kind_->cells.name + i, character > 255 ? U'?' : character);
    }
}

std::string Unit::NOTES_TEXT() const {
    if (!kind_->hasCalibration) return {};
    std::string notes;
    for (int i = 0; i < notesLength; ++i) {
        if (const char32_t character = characterOf(cellAt(kind_->cells.notes + i)); character != 0) {
            appendCharacter(notes, character);
        }
    }
    return notes.empty() ? std::string(emptyNotes) : notes;
}

void Unit::NOTES_TEXT(std::string_view text) {
    if (!kind_->hasCalibration) return;
    std::u32string characters = charactersOf(text);
    dropLeadingControls(characters, [](char32_t c) { return c; });
    characters.resize(notesLength, U'\0');
    for (int i = 0; i < notesLength; ++i) {
        put(kind_->cells.notes + i, characters[static_cast<std::size_t>(i)]);
    }
}

}  // namespace zentaq
