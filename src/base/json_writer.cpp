#include "base/json_writer.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "base/number_text.h"

namespace zentaq {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// Bytes of the UTF-8 character that a text begins with; 0 where it begins with none.
std::size_t characterLength(std::string_view text) {
    const auto at = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    const std::uint8_t lead = at(0);
    if (lead < 0x80) return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) return 0;
    }
    // Longer than needed, a surrogate, or beyond the last character.
    const std::uint8_t second = at(1);
    if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F)) return 0;
    if ((lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) return 0;
    return length;
}

}  // namespace

void JsonWriter::separate() {
    if (!first_) out_ << ',';
    first_ = false;
}

JsonWriter& JsonWriter::open(char bracket) {
    separate();
    out_ << bracket;
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
    out_ << bracket;
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::key(std::string_view name) {
    separate();
    quoted(name);
    out_ << ':';
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::value(std::string_view text) {
    separate();
    quoted(text);
    return *this;
}

JsonWriter& JsonWriter::value(float number) {
    if (!std::isfinite(number)) return value(std::string_view(numberText(number)));
    separate();
    out_ << numberText(number);
    return *this;
}

JsonWriter& JsonWriter::value(double number) {
    if (!std::isfinite(number)) return value(std::string_view(numberText(number)));
    separate();
    out_ << numberText(number);
    return *this;
}

JsonWriter& JsonWriter::value(int number) {
    separate();
    out_ << numberText(number);
    return *this;
}

JsonWriter& JsonWriter::value(bool truth) {
    separate();
    out_ << (truth ? "true" : "false");
    return *this;
}

JsonWriter& JsonWriter::null() {
    separate();
    out_ << "null";
    return *this;
}

void JsonWriter::quoted(std::string_view text) {
    constexpr std::string_view digits = "0123456789abcdef";
    out_ << '"';
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const auto byte = static_cast<std::uint8_t>(text.front());
        if (length == 0) {
            out_ << replacement;
        } else if (byte == '"' || byte == '\\') {
            out_ << '\\' << text.front();
        } else if (byte == '\n') {
            out_ << "\\n";
        } else if (byte == '\t') {
            out_ << "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            out_ << "\\u00" << digits[byte >> 4U] << digits[byte & 0xFU];
        } else {
            out_ << text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    out_ << '"';
}

}  // namespace zentaq
