// Calibration files that a test makes number by number: a header of three, then the cells.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <vector>

#include "temporary_folder.h"

namespace zentaq {

/// A whole file of an ORB A or L whose cells are all this value.
inline std::vector<float> wholeFloats(float kind = 3, float firmware = 5099, float cells = 0) {
    std::vector<float> floats{kind, 9.44F, firmware};
    floats.resize(3 + 2828, cells);
    return floats;
}

/// Axes that rise, for calibrations that are programmed into a unit. `floats` is a whole file.
inline void giveRisingAxes(std::vector<float>& floats) {
    constexpr std::size_t header = 3;
    for (std::size_t i = 0; i < 16; ++i) {
        const auto step = static_cast<float>(i);
        floats[header + 592 + 2 * i] = 500 + 500 * step;  // speeds
        floats[header + 624 + 2 * i] = 20 + 5 * step;     // pressures
        for (const std::size_t stops : {2226U, 2242U, 2258U, 2274U})
            floats[header + stops + i] = 20 + 5 * step;
    }
}

/// Answers the path.
inline std::string writeFloats(const std::string& path, const std::vector<float>& floats,
                               std::size_t extraBytes = 0) {
    std::ofstream file(path, std::ios::binary);
    for (const float value : floats) {
        const auto word = std::bit_cast<std::uint32_t>(value);
        file.write(reinterpret_cast<const char*>(&word), sizeof word);
    }
    file << std::string(extraBytes, '\0');
    return path;
}

inline float cellIn(const std::string& path, int cell) {
    float value = 0;
    const auto place = static_cast<std::size_t>(3 + cell) * sizeof value;
    std::memcpy(&value, TemporaryFolder::read(path).substr(place, sizeof value).data(), sizeof value);
    return value;
}

/// The rev limit in a file.
inline float limitIn(const std::string& path) {
    return cellIn(path, 58);
}

}  // namespace zentaq
