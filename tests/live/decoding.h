// Frames made by hand, and a unit of any kind that reads them.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "live/calibration_fixture.h"
#include "live/frame_decoder.h"

namespace zentaq::test {

using Bytes = std::vector<std::uint8_t>;

/// A frame of zeros with some bytes set.
inline Bytes frame(std::size_t length, const std::map<int, int>& bytes) {
    Bytes reply(length);
    for (const auto& [at, value] : bytes)
        reply.at(static_cast<std::size_t>(at)) = static_cast<std::uint8_t>(value);
    return reply;
}

struct Decoding {
    explicit Decoding(int slot) : calibration(slot), unit(calibration.unit), decoder(live) {
        unit.AssignDirectIndex(10, moffsetCell);
        unit.AssignDirectIndex(55, minDutyCell);
        unit.AssignDirectIndex(255, maxDutyCell);
        unit.AssignDirectIndex(14.7F, afrCell);
    }

    Calibration calibration;
    Unit& unit;
    LiveValues live;
    FrameDecoder decoder;
};

/// A wide frame up to its sixth pin; each value differs from what a neighbour would give.
inline std::map<int, int> wideBytes() {
    return {{3, 0x0C}, {4, 0x1C},  {5, 102},   {6, 0x02},  {7, 0x58},  {8, 160},   {9, 90},    {10, 51},
            {11, 85},  {12, 34},   {13, 17},   {14, 0},    {15, 103},  {16, 255},  {17, 127},  {18, 123},
            {19, 51},  {20, 0x13}, {21, 0x88}, {22, 0x09}, {23, 0xC4}, {24, 51},   {25, 102},  {26, 128},
            {27, 1},   {28, 205},  {29, 1},    {30, 0x23}, {31, 0x28}, {32, 0x03}, {33, 0xFF}, {34, 60},
            {35, 40},  {36, 120},  {37, 50},   {38, 1},    {39, 2},    {40, 3},    {41, 100},  {42, 25},
            {43, 4},   {44, 5},    {45, 6},    {46, 135},  {47, 0xEE}, {48, 70},   {49, 30},   {50, 85},
            {51, 17},  {52, 128},  {53, 111},  {54, 145},  {55, 60},   {56, 21},   {57, 22},   {58, 23},
            {59, 24},  {60, 25},   {61, 26}};
}

inline Bytes wideFrameOfOrba() {
    auto bytes = wideBytes();
    bytes[62] = 27;
    bytes[63] = 28;
    bytes[64] = 0xCC;  // checksum
    return frame(65, bytes);
}

}  // namespace zentaq::test
