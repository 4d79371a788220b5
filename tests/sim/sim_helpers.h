// What the tests of the simulated unit share: bytes from text, S-records, a folder that goes away.
#pragma once

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>

#include "scoped_variable.h"
#include "sim/simulated_unit.h"
#include "temporary_folder.h"

namespace zentaq::sim::test {

using zentaq::TemporaryFolder;

inline Bytes bytesOf(std::string_view text) {
    return {text.begin(), text.end()};
}
inline std::string textOf(const Bytes& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// The checksum rule of headed replies, written out again.
inline bool isSealed(const Bytes& reply) {
    unsigned sum = 0;
    for (std::size_t i = 2; i + 1 < reply.size(); ++i) sum += reply[i];
    return reply.size() > 3 && reply[0] == 0xFA && reply[1] == 0xA5 && sum % 256 == reply.back();
}

/// One data record, checksum as the complement of the sum of count, address and data.
inline std::string dataRecord(unsigned address, const Bytes& data) {
    std::vector<unsigned> bytes{static_cast<unsigned>(data.size()) + 3, address / 256, address % 256};
    bytes.insert(bytes.end(), data.begin(), data.end());
    bytes.push_back(255 - std::accumulate(bytes.begin(), bytes.end(), 0u) % 256);
    std::string text = "S1";
    for (const unsigned byte : bytes) {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", byte & 0xFFu);
        text += digits;
    }
    return text;
}

/// Row r of an image in which the byte at index i is (i + seed) modulo 251.
inline std::string imageRow(int row, unsigned seed) {
    Bytes data;
    for (unsigned i = 0; i < 16; ++i) {
        data.push_back(static_cast<std::uint8_t>((static_cast<unsigned>(row) * 16 + i + seed) % 251));
    }
    return dataRecord(0x1100 + 16 * static_cast<unsigned>(row), data);
}

inline constexpr const char* endRecord = "S9030000FC";

/// A unit as delivered, or with another firmware.
inline SimulatedUnit unitOf(std::string_view model, std::string_view firmware = {}) {
    const UnitProfile& profile = *findProfile(model);
    UnitIdentity identity = defaultIdentity(profile);
    if (!firmware.empty()) identity.firmware = firmware;
    return {profile, identity};
}
inline SimulatedUnit orbA() {
    return unitOf("A");
}

inline Bytes ask(SimulatedUnit& unit, std::string_view command) {
    return unit.feed(bytesOf(command));
}
inline std::string askText(SimulatedUnit& unit, std::string_view command) {
    return textOf(ask(unit, command));
}

inline unsigned word(const Bytes& reply, std::size_t at) {
    return reply.at(at) * 256u + reply.at(at + 1);
}

/// The letters and digits of a model's name, which is all that the name of a test may have.
inline std::string plainName(std::string_view model) {
    std::string name;
    for (const char c : model) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) name += c;
    }
    return name;
}

}  // namespace zentaq::sim::test
