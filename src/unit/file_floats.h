// The numbers of calibration files: a plain run of little-endian 32-bit floats.
// Read and written byte by byte, so that they mean the same on every machine.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zentaq {

inline constexpr std::size_t floatBytes = 4;

/// The float at place `index`, counted in floats; `bytes` must reach so far.
inline float floatAt(std::string_view bytes, std::size_t index) {
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < floatBytes; ++i) {
        bits |= std::uint32_t{static_cast<std::uint8_t>(bytes[index * floatBytes + i])} << (8 * i);
    }
    return std::bit_cast<float>(bits);
}

inline void appendFloat(std::string& bytes, float value) {
    const auto bits = std::bit_cast<std::uint32_t>(value);
    for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((bits >> shift) & 255U);
}

}  // namespace zentaq
