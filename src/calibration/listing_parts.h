// What the writer and the reader of the text form share: its keys, and the parts of a cell that have keys of
// their own.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "calibration/calibration_cells.h"

namespace zentaq::listing {

inline constexpr std::string_view titleHead = "Zentaq4 calibration text, format ";
inline constexpr int format = 1;
inline constexpr std::array<std::string_view, CalibrationBytes::headerFloats> headerKeys = {"unit", "program",
                                                                                            "firmware"};
inline constexpr std::string_view lengthKey = "length";
inline constexpr std::string_view surplusKey = "surplus";

/// One value of a cell that is listed in parts, and the parts that it stands for.
struct Part {
    std::string key;
    int mask = 0;
};

/// The parts of a cell whose bits have meanings of their own; none for another cell.
std::vector<Part> keyedPartsOf(const CalibrationCells& cells, int cell, const UnitKind* kind);

inline int lowestBit(int mask) {
    return mask & -mask;
}

}  // namespace zentaq::listing
