#include "sim/srecord.h"

#include <algorithm>
#include <numeric>

namespace zentaq::sim {

namespace {

// Type and count: "S1" and two digits.
constexpr std::size_t headLength = 4;

bool isOneOf(char type, std::string_view types) {
    return types.find(type) != std::string_view::npos;
}

std::size_t addressLength(char type) {
    if (type == '2' || type == '6' || type == '8') return 3;
    return type == '3' || type == '7' ? 4 : 2;
}

/// The address and the checksum.
int smallestCount(char type) {
    return static_cast<int>(addressLength(type)) + 1;
}

int digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

int byteAt(const std::string& text, std::size_t at) {
    const int high = digit(text.at(at));
    const int low = digit(text.at(at + 1));
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

}  // namespace

std::optional<SRecord> parseSRecord(const std::string& text, std::string_view types) {
    if (text.size() < headLength || text[0] != 'S' || !isOneOf(text[1], types)) return std::nullopt;
    const int count = byteAt(text, 2);
    if (count < smallestCount(text[1]) || text.size() != headLength + 2 * static_cast<std::size_t>(count)) {
        return std::nullopt;
    }
    std::vector<std::uint8_t> bytes;
    int sum = count;
    for (std::size_t at = headLength; at < text.size(); at += 2) {
        const int value = byteAt(text, at);
        if (value < 0) return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(value));
        sum += value;
    }
    // The checksum is the complement of the sum of all before it, so everything together gives 255.
    if ((sum & 0xFF) != 0xFF) return std::nullopt;
    const auto data = bytes.begin() + static_cast<std::ptrdiff_t>(addressLength(text[1]));
    SRecord record{text[1], 0, {data, bytes.end() - 1}};
    std::for_each(bytes.begin(), data, [&](int byte) { record.address = record.address * 256 + byte; });
    return record;
}

std::string sRecordText(const SRecord& record) {
    std::vector<std::uint8_t> bytes;
    const std::size_t width = addressLength(record.type);
    bytes.push_back(static_cast<std::uint8_t>(width + record.data.size() + 1));
    for (std::size_t i = width; i-- > 0;)
        bytes.push_back(static_cast<std::uint8_t>(record.address >> (8 * i)));
    bytes.insert(bytes.end(), record.data.begin(), record.data.end());
    bytes.push_back(static_cast<std::uint8_t>(~std::accumulate(bytes.begin(), bytes.end(), 0u)));
    std::string text{'S', record.type};
    for (const std::uint8_t byte : bytes) {
        constexpr std::string_view digits = "0123456789ABCDEF";
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

SRecordCollector::State SRecordCollector::push(std::uint8_t byte) {
    if (byte == '\r' || byte == '\n') return state_;
    text_.push_back(static_cast<char>(byte));
    return state_ = judge();
}

void SRecordCollector::clear() {
    text_.clear();
    state_ = State::Empty;
}

SRecordCollector::State SRecordCollector::judge() const {
    if (text_[0] != 'S') return State::Broken;
    if (text_.size() > 1 && !isOneOf(text_[1], types_)) return State::Broken;
    if (text_.size() < headLength) return State::Partial;
    const int count = byteAt(text_, 2);
    if (count < smallestCount(text_[1])) return State::Broken;
    const bool whole = text_.size() >= headLength + 2 * static_cast<std::size_t>(count);
    return whole ? State::Complete : State::Partial;
}

}  // namespace zentaq::sim
