#include "sim/serial_reply.h"

#include <array>
#include <string>

#include "base/errors.h"

namespace zentaq::sim {

namespace {

constexpr std::size_t headLength = 3;
constexpr std::size_t serialLength = 4;
constexpr std::uint8_t octalMark = 0x54;

/// The number whose octal digits are the decimal digits of `serial`.
std::uint32_t octalNumber(std::uint32_t serial) {
    std::uint64_t number = 0;
    for (const char digit : std::to_string(serial)) {
        if (digit > '7') throw BoundsError("A serial number of octal digits has no 8 and no 9");
        number = number * 8 + static_cast<unsigned>(digit - '0');
    }
    return static_cast<std::uint32_t>(number);  // ten digits need 30 bits
}

std::array<std::uint8_t, serialLength> bigEndian(std::uint32_t number) {
    std::array<std::uint8_t, serialLength> bytes{};
    for (std::size_t i = 0; i < serialLength; ++i)
        bytes[i] = static_cast<std::uint8_t>(number >> (24 - 8 * i));
    return bytes;
}

Bytes headed(std::uint32_t number) {
    Bytes reply = headedReply(static_cast<int>(headLength + serialLength + 1));
    for (std::size_t i = 0; const std::uint8_t byte : bigEndian(number)) reply[headLength + i++] = byte;
    return reply;
}

}  // namespace

Bytes serialReplyOf(SerialFormat format, std::uint32_t serial) {
    if (format == SerialFormat::Old) {
        const auto number = bigEndian(octalNumber(serial));
        Bytes reply(number.begin(), number.end());
        reply.insert(reply.end(), {'A', 'X'});
        return reply;
    }
    const bool octal = format == SerialFormat::Octal;
    Bytes reply = headed(octal ? octalNumber(serial) : serial);
    if (octal) reply[headLength - 1] = octalMark;
    seal(reply);
    return reply;
}

}  // namespace zentaq::sim
