#include "base/json_writer.h"

#include <cmath>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/utf8.h"

namespace zentaq {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";  // U+FFFD

/// "\u202e"; beyond the first plane as a pair.
void writeNumbered(std::ostream& out, char32_t code) {
    constexpr std::string_view digits = "0123456789abcdef";
    if (code > 0xFFFF) {
        writeNumbered(out, 0xD800 + ((code - 0x10000) >> 10U));
        writeNumbered(out, 0xDC00 + (code & 0x3FFU));
        return;
    }
    out << "\\u";
    for (int shift = 12; shift >= 0; shift -= 4) out << digits[(code >> shift) & 0xFU];
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
    out_ << '"';
    while (!text.empty()) {
        const auto [code, length] = firstCharacter(text);
        if (code == noCharacter) {
            out_ << replacement;
        } else if (code == '"' || code == '\\') {
            out_ << '\\' << text.front();
        } else if (code == '\n') {
            out_ << "\\n";
        } else if (code == '\t') {
            out_ << "\\t";
        } else if (!isShownAsItIs(code)) {
            writeNumbered(out_, code);
        } else {
            out_ << text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    out_ << '"';
}

}  // namespace zentaq
