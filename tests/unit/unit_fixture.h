// A calibration in hand with its recording host, and records put together apart from the code under test.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "temporary_folder.h"
#include "unit/file_floats.h"
#include "unit/recording_host.h"
#include "unit/unit.h"

namespace zentaq::testing {

struct OrbaCalibration {
    RecordingHost host;
    Unit unit{orbaKind(), host};

    explicit OrbaCalibration(int release = 5, int build = 99) {
        unit.FW_Release(release);
        unit.FW_Build(build);
        // Ratios of 0 have no byte.
        for (int i = 283; i < 293; ++i) unit.AssignDirectIndex(14.64F, i);
        for (int i = 1424; i < 1680; ++i) unit.AssignDirectIndex(14.7F, i);
    }
    double image(int index) const { return unit.ImageData().at(static_cast<std::size_t>(index)); }
    double word(int index) const { return image(index) * 256 + image(index + 1); }
    std::vector<int> imageBytes(int first, int count) const {
        std::vector<int> bytes;
        for (int i = 0; i < count; ++i) bytes.push_back(static_cast<int>(image(first + i)));
        return bytes;
    }
};

/// The record of one or two bytes in 0 to 255 at a cell's address.
inline std::string recordOf(int index, const std::vector<int>& bytes) {
    char piece[16];
    const int length = 3 + static_cast<int>(bytes.size());
    const int address = 0x1100 + index;
    int sum = length + address % 256 + address / 256;
    std::snprintf(piece, sizeof piece, "S1%02X%04X", length, address);
    std::string record = piece;
    for (const int byte : bytes) {
        std::snprintf(piece, sizeof piece, "%02X", byte);
        record += piece;
        sum += byte;
    }
    std::snprintf(piece, sizeof piece, "%02X", 255 - sum % 256);
    return record + piece;
}

inline std::string bytesOf(const std::vector<float>& floats) {
    std::string bytes;
    for (const float value : floats) appendFloat(bytes, value);
    return bytes;
}

/// A file of kind 3 with these cells; all others are 0.
struct FileOfFloats {
    std::vector<float> floats = std::vector<float>(3 + 2828);

    FileOfFloats(float version, float code, const std::vector<std::pair<int, float>>& cells = {}) {
        floats[0] = 3;
        floats[1] = version;
        floats[2] = code;
        for (const auto& [index, value] : cells) cell(index) = value;
    }
    float& cell(int index) { return floats[static_cast<std::size_t>(index + 3)]; }
    std::string bytes() const { return bytesOf(floats); }
};

inline std::string contentOf(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void writeContent(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

}  // namespace zentaq::testing
