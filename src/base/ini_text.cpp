#include "base/ini_text.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "base/utf8.h"

namespace zentaq {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
/// The name that stands for the section without one. A section that has this name is written with a '%'.
constexpr std::string_view unnamed = "General";
constexpr char namedSo = '%';
/// What a value begins with that is no plain text; a text that begins so gets one more.
constexpr char markOfKind = '@';
constexpr std::string_view noValue = "@Invalid()";
constexpr std::string_view textBegin = "@String(";
constexpr char textEnd = ')';

constexpr std::string_view letterEscapes = "abfnrtv\"?'\\";
constexpr std::string_view escapedLetters = "\a\b\f\n\r\t\v\"?'\\";
constexpr std::string_view digitsOfHex = "0123456789ABCDEF";

bool isBlank(char letter) {
    return letter == ' ' || letter == '\t';
}

bool isLineEnd(char letter) {
    return letter == '\n' || letter == '\r';
}

/// 16 for no digit.
unsigned hexValue(char letter) {
    if (letter >= '0' && letter <= '9') return static_cast<unsigned>(letter - '0');
    if (letter >= 'a' && letter <= 'f') return static_cast<unsigned>(letter - 'a') + 10U;
    if (letter >= 'A' && letter <= 'F') return static_cast<unsigned>(letter - 'A') + 10U;
    return 16;
}

bool isHexDigit(char letter) {
    return hexValue(letter) < 16;
}

std::string_view withoutBlanks(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

/// A line end of two bytes is one.
std::size_t lengthOfLineEnd(std::string_view text) {
    return text.size() > 1 && isLineEnd(text[1]) && text[1] != text[0] ? 2 : 1;
}

/// Characters by number are halves of one where it is beyond the first 65536.
class Unescaped {
 public:
    void add(std::string_view text) {
        endHalf();
        text_ += text;
    }
    void addUnit(unsigned unit) {
        constexpr unsigned firstHalf = 0xD800;
        constexpr unsigned secondHalf = 0xDC00;
        constexpr unsigned behindHalves = 0xE000;
        if (half_ != 0 && unit >= secondHalf && unit < behindHalves) {
            const unsigned high = std::exchange(half_, 0U) - firstHalf;
            appendUtf8(text_, static_cast<char32_t>(0x10000U + (high << 10U) + (unit - secondHalf)));
            return;
        }
        endHalf();
        if (unit >= firstHalf && unit < secondHalf) {
            half_ = unit;
        } else {
            appendUtf8(text_, unit >= secondHalf && unit < behindHalves ? lost : char32_t{unit});
        }
    }
    void chopBlanks(std::size_t kept) {
        endHalf();
        while (text_.size() > kept && isBlank(text_.back())) text_.pop_back();
    }
    std::size_t size() const { return text_.size() + (half_ != 0 ? 1 : 0); }
    std::string take() {
        endHalf();
        return std::exchange(text_, {});
    }

 private:
    static constexpr char32_t lost = 0xFFFD;

    void endHalf() {
        if (std::exchange(half_, 0U) != 0) appendUtf8(text_, lost);
    }

    std::string text_;
    unsigned half_ = 0;
};

/// What stands behind a '='.
class ValueReader {
 public:
    explicit ValueReader(std::string_view text) : text_(text) {}

    std::vector<std::string> parts() {
        skipBlanks();
        while (!text_.empty()) readOn();
        endPart();
        return std::move(parts_);
    }

 private:
    void skipBlanks() {
        while (!text_.empty() && isBlank(text_.front())) text_.remove_prefix(1);
    }
    void readOn() {
        const char letter = text_.front();
        if (letter == '\\') {
            text_.remove_prefix(1);
            readEscape();
            kept_ = part_.size();
        } else if (letter == '"') {
            text_.remove_prefix(1);
            wasQuoted_ = true;
            quoted_ = !quoted_;
            if (!quoted_) skipBlanks();
        } else if (letter == ',' && !quoted_) {
            text_.remove_prefix(1);
            endPart();
            skipBlanks();
        } else {
            const std::size_t length = std::min(text_.find_first_of("\\\",", 1), text_.size());
            part_.add(text_.substr(0, length));
            text_.remove_prefix(length);
        }
    }
    void endPart() {
        if (!wasQuoted_) part_.chopBlanks(kept_);
        parts_.push_back(part_.take());
        wasQuoted_ = false;
        kept_ = 0;
    }
    void readEscape() {
        if (text_.empty()) return;
        const char letter = text_.front();
        if (const std::size_t place = letterEscapes.find(letter); place != std::string_view::npos) {
            part_.add(escapedLetters.substr(place, 1));
            text_.remove_prefix(1);
        } else if (letter == 'x') {
            text_.remove_prefix(1);
            if (!text_.empty() && isHexDigit(text_.front())) readNumber(16);
        } else if (letter >= '0' && letter <= '7') {
            readNumber(8);
        } else if (isLineEnd(letter)) {
            text_.remove_prefix(lengthOfLineEnd(text_));
        } else {
            text_.remove_prefix(1);
        }
    }
    void readNumber(unsigned base) {
        constexpr unsigned unitBits = 0xFFFF;
        unsigned unit = 0;
        while (!text_.empty() && hexValue(text_.front()) < base) {
            unit = (unit * base + hexValue(text_.front())) & unitBits;
            text_.remove_prefix(1);
        }
        part_.addUnit(unit);
    }

    std::string_view text_;
    std::vector<std::string> parts_;
    Unescaped part_;
    std::size_t kept_ = 0;  ///< blanks in front of an escape are meant
    bool quoted_ = false;
    bool wasQuoted_ = false;
};

/// The unit that `digits` tell; nothing when they are not all there.
std::optional<unsigned> unitOf(std::string_view digits, std::size_t count) {
    if (digits.size() < count || !std::ranges::all_of(digits.substr(0, count), isHexDigit))
        return std::nullopt;
    unsigned unit = 0;
    for (const char digit : digits.substr(0, count)) unit = unit * 16 + hexValue(digit);
    return unit;
}

/// Of a key or a section's name.
std::string nameFrom(std::string_view text) {
    Unescaped name;
    while (!text.empty()) {
        const bool numbered = text.front() == '%';
        const bool wide = numbered && text.size() > 1 && text[1] == 'U';
        const std::size_t begin = wide ? 2 : 1;
        const std::size_t count = wide ? 4 : 2;
        const auto unit = numbered ? unitOf(text.substr(begin), count) : std::nullopt;
        if (unit) {
            name.addUnit(*unit);
            text.remove_prefix(begin + count);
        } else {
            name.add(text.front() == '\\' ? "/" : text.substr(0, 1));
            text.remove_prefix(1);
        }
    }
    return name.take();
}

// ---- Writing

void appendHex(std::string& out, unsigned unit, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += digitsOfHex[(unit >> shift) & 0xFU];
}

void appendByNumber(std::string& out, char32_t code) {
    constexpr char32_t firstOfTwo = 0x10000;
    if (code <= 0xFF) {
        out += '%';
        appendHex(out, code, 2);
    } else if (code < firstOfTwo) {
        out += "%U";
        appendHex(out, code, 4);
    } else {
        appendByNumber(out, 0xD800U + ((code - firstOfTwo) >> 10U));
        appendByNumber(out, 0xDC00U + ((code - firstOfTwo) & 0x3FFU));
    }
}

bool isPlainInName(char letter) {
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') ||
           (letter >= '0' && letter <= '9') || letter == '_' || letter == '-' || letter == '.';
}

std::string nameAsWritten(std::string_view name) {
    std::string out;
    while (!name.empty()) {
        const Character character = firstCharacter(name);
        if (name.front() == '/' && name.size() > 1) {
            out += '\\';  // in front of the '=' it would hide it
        } else if (isPlainInName(name.front()) || character.code == noCharacter) {
            out += name.front();
        } else {
            appendByNumber(out, character.code);
        }
        name.remove_prefix(character.length);
    }
    return out;
}

std::string partAsWritten(std::string_view part) {
    constexpr char firstPlain = ' ';
    std::string out;
    bool digitEscaped = false;  // a digit behind a number would belong to it
    for (const char letter : part) {
        const std::size_t place = escapedLetters.find(letter);
        const bool needsNumber = static_cast<unsigned char>(letter) < firstPlain;
        if (digitEscaped && isHexDigit(letter)) {
            out += "\\x";
            appendHex(out, static_cast<unsigned char>(letter), 2);
        } else if (place != std::string_view::npos && letter != '?' && letter != '\'') {
            out += '\\';
            out += letterEscapes[place];
            digitEscaped = false;
        } else if (needsNumber) {
            out += "\\x";
            appendHex(out, static_cast<unsigned char>(letter), 2);
            digitEscaped = true;
        } else {
            out += letter;
            digitEscaped = false;
        }
    }
    const bool separates = part.find_first_of(";,=") != std::string_view::npos;
    const bool blankAtEnd = !part.empty() && (isBlank(part.front()) || isBlank(part.back()));
    return separates || blankAtEnd ? '"' + out + '"' : out;
}

std::string partsAsWritten(const std::vector<std::string>& parts) {
    std::string out;
    for (const std::string& part : parts) {
        if (&part != &parts.front()) out += ", ";
        out += partAsWritten(part);
    }
    return out;
}

bool isUnnamed(std::string_view name) {
    constexpr char caseBit = 0x20;
    return std::ranges::equal(
        name, unnamed, [](char letter, char wanted) { return (letter | caseBit) == (wanted | caseBit); });
}

std::string headOf(const std::string& section) {
    if (section.empty()) return '[' + std::string(unnamed) + "]\n";
    return '[' + (isUnnamed(section) ? namedSo + section : nameAsWritten(section)) + "]\n";
}

}  // namespace

// ---- Lines

/// Goes through a text line by line. A value in quotation marks may go over line ends, and a backslash in
/// front of one joins two lines.
class IniReader {
 public:
    IniReader(std::string_view text, IniText& into) : rest_(text), into_(into) {}

    void read() {
        if (rest_.starts_with(byteOrderMark)) rest_.remove_prefix(byteOrderMark.size());
        while (skipToLine()) {
            if (rest_.front() == ';') {
                rest_.remove_prefix(std::min(rest_.find_first_of("\r\n"), rest_.size()));
            } else {
                take(cutLine());
            }
        }
    }

 private:
    static constexpr std::size_t nowhere = std::string_view::npos;
    struct Line {
        std::string_view text;
        std::size_t equals = nowhere;
    };

    bool skipToLine() {
        while (!rest_.empty() && (isBlank(rest_.front()) || isLineEnd(rest_.front()))) rest_.remove_prefix(1);
        return !rest_.empty();
    }
    Line cutLine() {
        auto line = lineByMarks();
        if (!line) {
            // A mark without its second one would take all that follows with it.
            into_.damaged_ = true;
            const std::size_t length = std::min(rest_.find_first_of("\r\n"), rest_.size());
            line = Line{rest_.substr(0, length), rest_.substr(0, length).find('=')};
        }
        rest_.remove_prefix(line->text.size());
        return *line;
    }
    /// Nothing when a quotation mark stays open.
    std::optional<Line> lineByMarks() const {
        std::size_t equals = nowhere;
        bool quoted = false;
        std::size_t place = 0;
        for (; place < rest_.size(); ++place) {
            const char letter = rest_[place];
            if (letter == '\\') {
                if (place + 1 < rest_.size() && isLineEnd(rest_[place + 1]))
                    place += lengthOfLineEnd(rest_.substr(place + 1));
                else
                    ++place;
            } else if (letter == '"') {
                quoted = !quoted;
            } else if (!quoted && letter == '=') {
                equals = std::min(equals, place);
            } else if (!quoted && (isLineEnd(letter) || letter == ';')) {
                break;
            }
        }
        if (quoted) return std::nullopt;
        return Line{rest_.substr(0, place), equals};
    }
    void take(const Line& line) {
        if (line.text.front() == '[') {
            begin(line.text.substr(1));
        } else if (line.equals == nowhere) {
            into_.damaged_ = true;
        } else {
            const std::string key = nameFrom(withoutBlanks(line.text.substr(0, line.equals)));
            into_.partsOf(section_, key) = ValueReader(line.text.substr(line.equals + 1)).parts();
        }
    }
    void begin(std::string_view name) {
        const std::size_t end = name.find(']');
        if (end == nowhere) into_.damaged_ = true;
        name = withoutBlanks(name.substr(0, end));
        if (name.starts_with(namedSo) && isUnnamed(name.substr(1))) {
            section_ = name.substr(1);
        } else {
            section_ = isUnnamed(name) ? std::string() : nameFrom(name);
        }
    }

    std::string_view rest_;
    IniText& into_;
    std::string section_;
};

IniText::IniText(std::string_view text) {
    IniReader(text, *this).read();
}

IniText::Name IniText::nameOf(const std::string& section, const std::string& key) {
    std::string path = section + '/' + key;
    path.erase(0, path.find_first_not_of('/'));
    const std::size_t slash = path.find('/');
    if (slash == std::string::npos) return {{}, path};
    return {path.substr(0, slash), path.substr(slash + 1)};
}

IniText::Parts& IniText::partsOf(const std::string& section, const std::string& key) {
    const Name name = nameOf(section, key);
    return sections_[name.section][name.key];
}

std::optional<std::string> IniText::value(const std::string& section, const std::string& key) const {
    const Name name = nameOf(section, key);
    const auto found = sections_.find(name.section);
    if (found == sections_.end()) return std::nullopt;
    const auto parts = found->second.find(name.key);
    if (parts == found->second.end()) return std::nullopt;
    std::string joined;
    for (const std::string& part : parts->second) {
        if (&part != &parts->second.front()) joined += ',';
        joined += part.starts_with("@@") ? part.substr(1) : part;
    }
    if (parts->second.size() > 1) return joined;
    const std::string& only = parts->second.front();
    if (only == noValue) return std::nullopt;
    if (only.starts_with(textBegin) && only.ends_with(textEnd))
        return only.substr(textBegin.size(), only.size() - textBegin.size() - 1);
    return joined;
}

void IniText::set(const std::string& section, const std::string& key, const std::string& value) {
    const bool marked = value.starts_with(markOfKind);
    partsOf(section, key) = {marked ? markOfKind + value : value};
}

std::string IniText::text() const {
    std::string out;
    for (const auto& [name, keys] : sections_) {
        if (!out.empty()) out += '\n';
        out += headOf(name);
        for (const auto& [key, parts] : keys) out += nameAsWritten(key) + '=' + partsAsWritten(parts) + '\n';
    }
    return out;
}

}  // namespace zentaq
