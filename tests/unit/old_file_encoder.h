// Writes files of the older generation from the cells of a calibration, apart from the code that reads them:
// its tables of cells are written down a second time, by number.
#pragma once

#include <array>
#include <cmath>
#include <span>
#include <string>
#include <vector>

#include "unit/file_floats.h"
#include "unit/unit.h"

namespace zentaq::testing {

/// Cells that stand one behind the other in both formats.
struct LegacyRun {
    int oldFirst;
    int newFirst;
    int count = 1;
    int oldStride = 1;
    int newStride = 1;
};

struct LegacyTable {
    int oldFirst;
    int newFirst;
    double share = 1;  ///< the old file holds the cell divided by it
};

struct LegacyMap {
    int floats;
    std::vector<LegacyRun> runs;
    LegacyRun pressures;  ///< the old file holds the cell divided by the rating
    std::vector<LegacyTable> tables;
    int pins;
    int blockBase;
};

/// The ORB A; an ORB L file is longer and holds the same.
inline LegacyMap legacyOrba(int floats = 2176) {
    return {floats,
            {{3, 3, 16},     {31, 31},       {33, 33},       {34, 34, 5},
             {42, 42, 17},   {60, 60},       {104, 104, 20}, {125, 125},
             {130, 130, 16}, {148, 148, 30}, {199, 199, 13}, {212, 212, 8, 2, 2},
             {228, 228, 33}, {266, 266, 2},  {275, 275, 2},  {278, 278, 3},
             {282, 282},     {303, 303, 20}, {77, 41},       {78, 40},
             {79, 68, 16},   {100, 2221, 2}, {102, 281},     {146, 2195},
             {147, 2196},    {179, 293, 10}, {189, 283, 10}, {284, 2197},
             {291, 2198},    {323, 178, 20}, {343, 198},     {344, 62, 6},
             {350, 2199},    {352, 2200, 4}, {357, 2204, 3}, {520, 2207, 13},
             {533, 2220},    {534, 2223, 3}, {549, 84, 20},  {592, 592, 16, 1, 2},
             {622, 277},     {624, 2312, 8}, {632, 2320, 8}},
            {61, 624, 16, 1, 2},
            {{640, 912, 100}, {896, 1168}, {1152, 1424}, {1408, 1680}, {1664, 1936}, {1920, 656}},
            7,
            336};
}

inline LegacyMap legacyPzk2() {
    return {1201,
            {{3, 3, 4},     {8, 8},       {18, 18},        {33, 33},       {34, 34, 5},
             {42, 42, 10},  {54, 54, 5},  {60, 60},        {77, 41},       {78, 40},
             {79, 68, 16},  {101, 1054},  {104, 130, 20},  {125, 85},      {146, 1027},
             {284, 1029},   {344, 62, 3}, {349, 67},       {352, 1032},    {354, 1034},
             {355, 1035},   {358, 1037},  {520, 1039, 13}, {534, 1055, 3}, {592, 192, 16, 1, 2},
             {624, 1185, 8}},
            {61, 224, 16, 1, 2},
            {{640, 512, 100}, {896, 256}},
            4,
            94};
}

/// An old file under construction: its cells, 0 at first.
struct LegacyFile {
    std::vector<float> cells;

    explicit LegacyFile(int floats = 2176) : cells(static_cast<std::size_t>(floats), 0.0F) {}
    float& operator[](int cell) { return cells.at(static_cast<std::size_t>(cell)); }
    void fill(int first, int count, float value) {
        for (int cell = first; cell < first + count; ++cell) (*this)[cell] = value;
    }
    std::string bytes() const {
        std::string text;
        for (const float cell : cells) appendFloat(text, cell);
        return text;
    }
};

/// The old code of a function of today.
inline int legacyFunction(int code) {
    if (code == 22) return 20;
    if (code == 21) return 19;
    return code >= 12 ? code - 1 : code;
}

/// What the old file holds in the place of a parameter of today.
inline float legacyParameter(int code, int parameter, float value) {
    if (code == 7 && parameter <= 1) return static_cast<float>(value * 2.54);
    if (code == 14 && parameter == 0) return static_cast<float>(value * 2.54);
    if (code == 15 && parameter == 1) return static_cast<float>(value * 4.23333);
    return value;
}

/// The old file of a calibration. `rating` 1 to 4, `columns` 1 to 16.
inline LegacyFile encodeLegacy(const LegacyMap& map, const Unit& unit, float rating, int columns = 16) {
    LegacyFile file(map.floats);
    for (const LegacyRun& run : map.runs) {
        for (int i = 0; i < run.count; ++i) {
            file[run.oldFirst + i * run.oldStride] = unit.DirectIndex(run.newFirst + i * run.newStride);
        }
    }
    for (int i = 0; i < map.pressures.count; ++i) {
        file[map.pressures.oldFirst + i] =
            unit.DirectIndex(map.pressures.newFirst + i * map.pressures.newStride) / rating;
    }
    for (const LegacyTable& table : map.tables) {
        for (int row = 0; row < 16; ++row) {
            for (int column = 0; column < columns; ++column) {
                const double cell = unit.DirectIndex(table.newFirst + row * 16 + column);
                file[table.oldFirst + row * columns + column] = static_cast<float>(cell / table.share);
            }
        }
    }
    for (int pin = 0; pin < map.pins; ++pin) {
        const int code = static_cast<int>(unit.DirectIndex(map.blockBase + 9 * pin));
        file[369 + 7 * pin] = static_cast<float>(legacyFunction(code));
        for (int parameter = 0; parameter < 6; ++parameter) {
            const float value = unit.DirectIndex(map.blockBase + 9 * pin + 1 + parameter);
            file[369 + 7 * pin + 1 + parameter] = legacyParameter(code, parameter, value);
        }
    }
    for (int byte = 0; byte < 3; ++byte) file[byte] = static_cast<float>(unit.controlByte(byte));
    file[27] = static_cast<float>(columns);
    file[292] = rating;
    return file;
}

}  // namespace zentaq::testing
