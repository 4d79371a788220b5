#include "sim/srecord.h"

namespace zentaq::sim {

namespace {

// Type and count: "S1" and two digits.
constexpr std::size_t headLength = 4;
// Two address bytes and the checksum.
constexpr int smallestCount = 3;

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

std::optional<SRecord> parseSRecord(const std::string& text) {
    if (text.size() < headLength || text[0] != 'S' || (text[1] != '1' && text[1] != '9')) return std::nullopt;
    const int count = byteAt(text, 2);
    if (count < smallestCount || text.size() != headLength + 2 * static_cast<std::size_t>(count)) {
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
    return SRecord{text[1], bytes[0] * 256 + bytes[1], {bytes.begin() + 2, bytes.end() - 1}};
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
    if (text_.size() > 1 && text_[1] != '1' && text_[1] != '9') return State::Broken;
    if (text_.size() < headLength) return State::Partial;
    const int count = byteAt(text_, 2);
    if (count < smallestCount) return State::Broken;
    const bool whole = text_.size() >= headLength + 2 * static_cast<std::size_t>(count);
    return whole ? State::Complete : State::Partial;
}

}  // namespace zentaq::sim
