// Colours of table cells: the palette that live tracking paints with, what it remembers, and the shading by
// value. Colours are red + 256 * green + 65536 * blue.
#pragma once

#include <array>
#include <cstdint>

namespace zentaq {

enum class Paint : std::int16_t { White, Yellow, Green, Red, Blue, Cyan, LightGreen, LightRed };

std::int32_t paintColour(Paint paint);

/// The last colour of each cell, by grid row and column 1 to 16. One for the whole program: it outlives a
/// table window.
class PaintMemory {
 public:
    static constexpr int lines = 17;

    /// White outside the memory.
    Paint at(int row, int column) const;
    /// Ignored outside the memory.
    void remember(int row, int column, Paint paint);
    void erase() { cells_ = {}; }

 private:
    std::array<std::array<Paint, lines>, lines> cells_{};
};

/// White at the midpoint, towards green above it, towards red below it. The parts are taken modulo 256 with
/// the sign of the left side, so a value beyond the scale gives a negative number, which is handed on as it
/// is.
std::int32_t shadeOf(float value, double midpoint, double scale);

}  // namespace zentaq
