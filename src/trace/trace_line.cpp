#include "trace/trace_line.h"

#include <algorithm>
#include <charconv>

#include "base/shown_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::size_t timeWidth = 13;  // a day and more
constexpr std::size_t countWidth = 5;
constexpr std::size_t meaningWidth = 60;
constexpr std::string_view bytesMark = " | ";

/// Cuts the next word off; blanks in front of it are skipped.
std::string_view takeWord(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
    const std::string_view word = rest.substr(0, rest.find(' '));
    rest.remove_prefix(word.size());
    return word;
}

template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool good = error == std::errc() && end == text.data() + text.size() && number >= 0;
    return good ? std::optional(number) : std::nullopt;
}

std::optional<std::int64_t> parseTime(std::string_view text) {
    constexpr std::size_t decimals = 3;
    constexpr std::int64_t longest = std::int64_t{1} << 50;  // thirty years
    const auto point = text.find('.');
    if (point == std::string_view::npos || text.size() - point - 1 != decimals) return {};
    const auto whole = wholeNumber<std::int64_t>(text.substr(0, point));
    const auto rest = wholeNumber<std::int64_t>(text.substr(point + 1));
    if (!whole || !rest || *whole > longest / 1000) return {};
    return *whole * 1000 + *rest;
}

int digitOf(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    return character >= 'A' && character <= 'F' ? character - 'A' + 10 : -1;
}

std::optional<std::string> parseBytes(std::string_view hex) {
    std::string bytes;
    for (std::string_view word = takeWord(hex); !word.empty(); word = takeWord(hex)) {
        if (word.size() != 2) return {};
        const int high = digitOf(word[0]);
        const int low = digitOf(word[1]);
        if (high < 0 || low < 0) return {};
        bytes += static_cast<char>(high * 16 + low);
    }
    return bytes;
}

std::optional<TraceDirection> parseDirection(std::string_view word) {
    if (word == ">") return TraceDirection::Written;
    if (word == "<") return TraceDirection::Received;
    return word == "*" ? std::optional(TraceDirection::Event) : std::nullopt;
}

/// Only a time-out is an event that belongs to a command.
bool namesCommand(const TraceLine& line) {
    return line.direction != TraceDirection::Event || line.problem == trouble::timeOut;
}

void takeMeaning(TraceLine& line, std::string_view meaning) {
    meaning.remove_prefix(std::min(meaning.find_first_not_of(' '), meaning.size()));
    if (meaning.starts_with('!')) {
        meaning.remove_prefix(1);
        line.problem = takeWord(meaning);
        meaning.remove_prefix(std::min(meaning.find_first_not_of(' '), meaning.size()));
    }
    const auto colon = meaning.find(": ");
    if (namesCommand(line) && colon != std::string_view::npos && meaning.find(' ') > colon) {
        line.command = meaning.substr(0, colon);
        meaning.remove_prefix(colon + 2);
    }
    line.text = meaning.substr(0, meaning.find_last_not_of(' ') + 1);
}

/// Count, meaning and bytes of a line with bytes.
bool takeBytes(TraceLine& line, std::string_view rest) {
    const auto count = wholeNumber<std::size_t>(takeWord(rest));
    const auto mark = rest.rfind(bytesMark);
    if (!count || mark == std::string_view::npos) return false;
    auto bytes = parseBytes(rest.substr(mark + bytesMark.size()));
    if (!bytes || bytes->size() != *count) return false;
    line.bytes = std::move(*bytes);
    takeMeaning(line, rest.substr(0, mark));
    return true;
}

}  // namespace

std::string traceTime(std::int64_t us) {
    const std::string digits = std::to_string(us % 1000);
    return std::to_string(us / 1000) + "." + std::string(3 - digits.size(), '0') + digits;
}

std::string hexBytes(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4U];
        text += digits[byte & 0xFU];
    }
    return text;
}

std::string traceMeaning(const TraceLine& line) {
    std::string text;
    if (!line.problem.empty()) text += "!" + line.problem + " ";
    if (!line.command.empty()) text += line.command + ": ";
    return text + line.text;
}

std::string formatTraceLine(const TraceLine& line) {
    std::string text = rightAligned(traceTime(line.timeUs), timeWidth);
    text += ' ';
    text += static_cast<char>(line.direction);
    const bool event = line.direction == TraceDirection::Event;
    text +=
        event ? std::string(countWidth, ' ') : rightAligned(std::to_string(line.bytes.size()), countWidth);
    text += "  ";
    std::string meaning = shownLine(traceMeaning(line));
    if (event) return text + meaning;
    if (meaning.size() < meaningWidth) meaning.resize(meaningWidth, ' ');
    return text + meaning + std::string(bytesMark) + hexBytes(line.bytes);
}

std::optional<TraceLine> parseTraceLine(std::string_view text) {
    const std::string plain = shownLine(text);
    std::string_view rest = plain;
    const auto time = parseTime(takeWord(rest));
    const auto direction = parseDirection(takeWord(rest));
    if (!time || !direction) return {};
    TraceLine line{.timeUs = *time, .direction = *direction};
    if (*direction == TraceDirection::Event) {
        takeMeaning(line, rest);
        return line;
    }
    if (!takeBytes(line, rest)) return {};
    return line;
}

}  // namespace zentaq
