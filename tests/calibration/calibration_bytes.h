// Calibration files put together float by float, apart from the code under test.
#pragma once

#include <bit>
#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "unit/unit_kind.h"

namespace zentaq::testing {

inline std::string fourBytes(std::uint32_t bits) {
    std::string bytes;
    for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((bits >> shift) & 255U);
    return bytes;
}
inline std::string fourBytes(float value) {
    return fourBytes(std::bit_cast<std::uint32_t>(value));
}

using Cells = std::vector<std::pair<int, float>>;

/// A file with a header of program 10.2 and firmware 5.99, and zeros.
struct FileOf {
    std::string bytes;

    explicit FileOf(float kind, int floats = 2828)
        : bytes(fourBytes(kind) + fourBytes(10.2F) + fourBytes(5099.0F) +
                std::string(static_cast<std::size_t>(floats) * 4, '\0')) {}
    FileOf& set(int cell, float value) { return bits(cell, std::bit_cast<std::uint32_t>(value)); }
    FileOf& set(const Cells& cells) {
        for (const auto& [cell, value] : cells) set(cell, value);
        return *this;
    }
    FileOf& bits(int cell, std::uint32_t value) {
        bytes.replace(static_cast<std::size_t>(12 + 4 * cell), 4, fourBytes(value));
        return *this;
    }
    FileOf& header(int place, float value) {
        bytes.replace(static_cast<std::size_t>(4 * place), 4, fourBytes(value));
        return *this;
    }
    FileOf& text(int cell, std::string_view characters) {
        for (const char c : characters) set(cell++, static_cast<float>(static_cast<unsigned char>(c)));
        return *this;
    }
    float at(int cell) const {
        std::uint32_t value = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const auto byte =
                static_cast<std::uint8_t>(bytes.at(static_cast<std::size_t>(12 + 4 * cell) + i));
            value |= std::uint32_t{byte} << (8 * i);
        }
        return std::bit_cast<float>(value);
    }
};

inline FileOf fileOf(const std::string& bytes) {
    FileOf file(3, 0);
    file.bytes = bytes;
    return file;
}

/// A sensor of 0.05 volts a kPa from 0 volts on: 0 to 100 kPa, shown with one decimal.
inline FileOf withSensor() {
    FileOf file(3);
    file.set(39, 1).set(124, 1).set(126, 0.05F).set(127, 0).set(128, 4).set(129, 1).set(2225, 14.7F);
    return file;
}

/// First float and floats of a saved file, by kind.
struct KindOfFile {
    float number;
    int floats;
};
inline constexpr KindOfFile allKinds[] = {{3, 2828}, {4, 2828}, {5, 1701}, {6, 2827}, {7, 2826}, {8, 2826}};

/// A file with a plausible calibration: a sensor, axes, some of everything.
inline FileOf plausible(float kind, int floats) {
    FileOf file(kind, floats);
    for (int i = 0; i < floats; ++i) file.set(i, static_cast<float>(i % 97) / 4);
    for (int i = 0; i < 3; ++i) file.set(i, 0x51);
    file.set(8, 132).set(4, 227).set(39, 1);
    return file;
}

}  // namespace zentaq::testing
