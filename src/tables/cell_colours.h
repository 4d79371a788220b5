// Colours of table cells: the palette that live tracking paints with, what it remembers, and the shading by
// value. Colours are red + 256 * green + 65536 * blue.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <utility>

namespace zentaq {

enum class Paint : std::int16_t { White, Yellow, Green, Red, Blue, Cyan, LightGreen, LightRed };

std::int32_t paintColour(Paint paint);

/// The last colour of each cell, by grid row and column 1 to 16. One for the whole program: it outlives a
/// table window, and all tables on the same axes share it. Where one engine has been tells nothing of
/// another, nor of cells that stand for other speeds and pressures: then it begins anew.
class PaintMemory {
 public:
    static constexpr int lines = 17;

    /// White outside the memory.
    Paint at(int row, int column) const;
    /// Ignored outside the memory.
    void remember(int row, int column, Paint paint);
    void erase();
    /// How many other cells have been painted since this one; the newest has 0.
    int age(int row, int column) const;
    /// Goes up with each cell that the live point enters.
    int visits() const { return visits_; }
    /// The axes of the grid that is shown, as a text.
    void ofAxes(const std::string& axes);
    /// The unit whose frames come.
    void ofUnit(int kind, std::int32_t serialNumber);
    /// Goes up with each erasing: whoever shows the paint has to draw it anew.
    std::uint64_t erasures() const { return erasures_; }

 private:
    std::array<std::array<Paint, lines>, lines> cells_{};
    std::array<std::array<int, lines>, lines> visited_{};
    std::pair<int, int> newest_{};
    int visits_ = 0;
    std::string axes_;
    std::pair<int, std::int32_t> unit_{};
    std::uint64_t erasures_ = 0;
};

/// How far the trail has faded in a cell of this age: 0 for the newest, 3 for what stays.
int trailStep(int age);

/// White at the midpoint, towards green above it, towards red below it. The parts are taken modulo 256 with
/// the sign of the left side, so a value beyond the scale gives a negative number, which is handed on as it
/// is.
std::int32_t shadeOf(float value, double midpoint, double scale);

}  // namespace zentaq
