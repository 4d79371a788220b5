// What a unit answers to the commands that identify it, with its checksum.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace zentaq {

inline std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) text += static_cast<char>(value);
    return text;
}

/// 0xFA 0xA5, the format byte and four serial bytes with their checksum.
inline std::string identifyReply(std::uint32_t number, int format = 0x55) {
    const int b3 = static_cast<int>(number >> 24), b4 = static_cast<int>(number >> 16 & 0xFF);
    const int b5 = static_cast<int>(number >> 8 & 0xFF), b6 = static_cast<int>(number & 0xFF);
    return bytes({0xFA, 0xA5, format, b3, b4, b5, b6, (format + b3 + b4 + b5 + b6) & 0xFF});
}

/// Head, zeros up to `length`, and the checksum of bytes 2 on at the end.
inline std::string framed(std::size_t length, std::initializer_list<std::pair<std::size_t, int>> values) {
    std::string text = bytes({0xFA, 0xA5, 0x55});
    text.resize(length, '\0');
    for (const auto& [index, value] : values) text.at(index) = static_cast<char>(value);
    unsigned sum = 0;
    for (std::size_t i = 2; i + 1 < length; ++i) sum += static_cast<unsigned char>(text[i]);
    text.back() = static_cast<char>(sum & 0xFF);
    return text;
}

/// A B reply: 24 characters of name, ten of firmware, the subtype where the reply has room for it.
inline std::string firmwareReply(std::string name, std::string firmware, std::size_t length = 39,
                                 int subType = 0) {
    name.resize(24, ' ');
    firmware.resize(10, ' ');
    std::string text = bytes({0xFA, 0xA5, 0x55}) + name + firmware;
    if (length == 39) text += static_cast<char>(subType);
    unsigned sum = 0;
    for (std::size_t i = 2; i < text.size(); ++i) sum += static_cast<unsigned char>(text[i]);
    return text + static_cast<char>(sum & 0xFF);
}

}  // namespace zentaq
