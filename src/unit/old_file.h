// A calibration file of the older generation (".BIN"): a run of floats without a header, repaired step by
// step until its values are those of today. Unit::OldFileOpen moves them to their places.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include "unit/old_file_layout.h"

namespace zentaq {

class OldFile {
 public:
    /// Takes what the bytes hold; a shorter file leaves the other cells at 0, bytes behind the last whole
    /// float are not looked at. A cell that is no number, or too large for any value of a calibration, is 0.
    /// Throws BoundsError when there are more floats than cells.
    OldFile(std::string_view bytes, const std::string& path);

    /// Throws BoundsError outside 0 to 2500.
    float at(int cell) const;
    void put(int cell, float value);
    /// Cells that held no usable number.
    int refused() const { return refused_; }

    /// The rating of the pressure sensor, 1 to 4; 0 for any other value.
    float rating() const;
    /// Columns in a row of the old tables: 1 to 16. What is no such number stands for 16.
    int columns() const;
    /// A whole number from 0 to `highest`; 0 for anything else.
    float code(int cell, float highest) const;

    // ---- The repairs, in the order in which they are due
    void fillDefaults();
    void scaleShares();                 ///< a table of shares becomes one of percents
    void scalePressures(float rating);  ///< the pressure axis
    void clearRubbish();
    void numberFunctions();

 private:
    void fillCurve();
    void fillBlocks();
    void scale(int first, int count, double factor);

    std::array<float, old::cellCount> cells_{};
    int refused_ = 0;
};

}  // namespace zentaq
