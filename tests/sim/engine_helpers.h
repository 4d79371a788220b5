// A whole calibration as the bytes of a memory, written out by the places of the image and not by the
// program.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "sim/engine_model.h"

namespace zentaq::sim::test {

inline constexpr std::size_t fuelPlace = 912;
inline constexpr std::size_t advancePlace = 656;
inline constexpr std::size_t ratioPlace = 1424;

class MemoryImage {
 public:
    std::vector<std::uint8_t> bytes = std::vector<std::uint8_t>(147 * 16);

    void put(std::size_t at, double value) { bytes.at(at) = static_cast<std::uint8_t>(std::lround(value)); }
    void putWord(std::size_t at, double value) {
        const long word = std::lround(value);
        put(at, static_cast<double>(word / 256));
        put(at + 1, static_cast<double>(word % 256));
    }
    template <typename Values>
    void putAll(std::size_t at, const Values& values, double factor, double shift) {
        for (const double value : values) put(at++, value * factor + shift);
    }
    void fill(std::size_t at, std::size_t count, double value) {
        for (std::size_t i = 0; i < count; ++i) put(at + i, value);
    }
};

/// Speeds 500 to 8000, pressures 14 to 104 kPa by the standard sensor, fuel 0 %, advance 20, mixture exact;
/// the corrections by temperature and battery that engines need, no enrichments, no cuts; a closed loop of 25
/// % everywhere.
inline MemoryImage flatImage() {
    MemoryImage image;
    for (std::size_t i = 0; i < 16; ++i) {
        const double step = static_cast<double>(i);
        image.putWord(592 + 2 * i, 500 * (step + 1));
        image.putWord(624 + 2 * i, (0.05295 * (14 + 6 * step) - 0.54738) * 204.6);
    }
    image.putWord(262, 4437);  // 0.05295 V/kPa * 20.46 * 4096
    image.put(263 + 2, 144);   // -112, its sign lost as in every image
    image.fill(advancePlace, 256, 85);
    image.fill(fuelPlace, 256, 50);
    image.fill(ratioPlace, 256, 127.5);
    image.putWord(58, 7000);
    image.put(44, 25.5);
    image.put(67, 42.5);
    image.putWord(148, 8000);  // 8 ms
    image.put(150, 8);         // 1 ms
    image.put(151, 60);        // 1.2 ms
    const std::array battery = {1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 1000, 880,
                                650,  450,  300,  180,  80,   0,    0,    -60,  -110, -150};
    image.putAll(237, battery, 0.125, 125);
    const std::array warmUp = {110, 95, 80, 67, 55, 45, 36, 28, 20, 13, 7, 2, 0, 0, 0, 0, 0, 0, 3, 6};
    image.putAll(158, warmUp, 1, 0);
    const std::array air = {26,  21,  16,  11,  7,   4,   0,   -3,  -6,  -9,
                            -12, -15, -17, -19, -21, -23, -25, -27, -29, -31};
    image.putAll(178, air, 1, 50);
    image.fill(104, 20, 127.5);  // no advance by air temperature
    image.fill(198, 2, 255);     // acceleration thresholds out of reach
    image.put(275, 8);
    image.put(278, 25);
    image.fill(279, 2, 255);
    image.put(281, 53.7);  // from 0 Celsius on
    const std::array volts = {0.0, 0.45, 0.65, 1.6, 2.5, 4.0, 4.2, 4.62, 4.8, 5.0};
    image.putAll(293, volts, 51, 0);
    const std::array ratios = {22.4, 15.89, 14.9, 14.72, 14.64, 14.3, 13.8, 12.6, 11.2, 10.0};
    for (std::size_t i = 0; i < ratios.size(); ++i) image.put(283 + i, (14.64 / ratios[i] - 0.5) * 255);
    return image;
}

inline EngineCalibration calibrationOf(const MemoryImage& image) {
    return readEngineCalibration("ZQA", image.bytes);
}

}  // namespace zentaq::sim::test
