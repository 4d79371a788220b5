#include "tables/cell_colours.h"

#include <algorithm>

#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr std::int32_t white = 0xFFFFFF;

constexpr std::array<std::int32_t, 8> palette{white,    0x00FFFF, 0x00FF00, 0x0000FF,
                                              0xFF0000, 0xFFFF00, 0x80FF80, 0x8080FF};

bool inMemory(int row, int column) {
    return row >= 0 && row < PaintMemory::lines && column >= 0 && column < PaintMemory::lines;
}

std::int32_t faded(double share) {
    return toInt32(256 - 256 * share) % 256;
}

std::int32_t colourOf(std::int32_t red, std::int32_t green, std::int32_t blue) {
    return red + 256 * green + 65536 * blue;
}

}  // namespace

std::int32_t paintColour(Paint paint) {
    return palette.at(static_cast<std::size_t>(paint));
}

Paint PaintMemory::at(int row, int column) const {
    if (!inMemory(row, column)) return Paint::White;
    return cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

void PaintMemory::remember(int row, int column, Paint paint) {
    if (!inMemory(row, column)) return;
    cells_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = paint;
    if (std::exchange(newest_, {row, column}) != std::pair(row, column)) ++visits_;
    visited_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = visits_;
}

int PaintMemory::age(int row, int column) const {
    if (!inMemory(row, column)) return visits_;
    return visits_ - visited_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
}

int trailStep(int age) {
    constexpr std::array<int, 3> begins{1, 4, 12};
    return static_cast<int>(std::ranges::count_if(begins, [&](int from) { return age >= from; }));
}

void PaintMemory::erase() {
    cells_ = {};
    newest_ = {};
    ++erasures_;
}

void PaintMemory::ofAxes(const std::string& axes) {
    if (std::exchange(axes_, axes) != axes) erase();
}

void PaintMemory::ofUnit(int kind, std::int32_t serialNumber) {
    const std::pair unit(kind, serialNumber);
    if (std::exchange(unit_, unit) != unit) erase();
}

std::int32_t shadeOf(float value, double midpoint, double scale) {
    const double v = value;
    if (v == midpoint) return white;
    if (v > midpoint) {
        const std::int32_t rest = faded(v / scale);
        return colourOf(rest, 255, rest);
    }
    const std::int32_t rest = faded(-1 * v / scale);
    return colourOf(255, rest, rest);
}

}  // namespace zentaq
