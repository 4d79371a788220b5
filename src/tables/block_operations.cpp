#include "tables/block_operations.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr int shownDecimals = 1;

// All in 32-bit floats, as the cells are.
float shownAt(const TableGrid& grid, int row, int column) {
    return static_cast<float>(parseNumber(grid.text(row, column)).value_or(0));
}

void showRounded(TableGrid& grid, int row, int column, float value) {
    grid.text(row, column, numberText(roundTo(value, shownDecimals)));
}

float shareOf(int part, int whole) {
    return static_cast<float>(part) / static_cast<float>(std::max(whole, 1));
}

float between(float from, float to, float share) {
    const float way = share * (to - from);
    return way + from;
}

float meanAround(const TableGrid& grid, const Selection& block, int row, int column, int extraWeight) {
    constexpr int reach = 2;
    float sum = 0;
    float count = 0;
    for (int i = std::max(row - reach, block.top); i <= std::min(row + reach, block.bottom); ++i) {
        for (int j = std::max(column - reach, block.left); j <= std::min(column + reach, block.right); ++j) {
            sum += shownAt(grid, i, j);
            count += 1;
        }
    }
    const auto weight = static_cast<float>(extraWeight);
    sum += weight * shownAt(grid, row, column);
    return sum / (count + weight);
}

}  // namespace

void interpolateBlock(TableGrid& grid, const Selection& block) {
    const float topLeft = shownAt(grid, block.top, block.left);
    const float topRight = shownAt(grid, block.top, block.right);
    const float bottomLeft = shownAt(grid, block.bottom, block.left);
    const float bottomRight = shownAt(grid, block.bottom, block.right);
    for (int row = block.top; row <= block.bottom; ++row) {
        const float down = shareOf(row - block.top, block.bottom - block.top);
        const float left = roundTo(between(topLeft, bottomLeft, down), shownDecimals);
        const float right = roundTo(between(topRight, bottomRight, down), shownDecimals);
        showRounded(grid, row, block.left, left);
        showRounded(grid, row, block.right, right);
        for (int column = block.left + 1; column < block.right; ++column) {
            const float across = shareOf(column - block.left, block.right - block.left);
            showRounded(grid, row, column, between(left, right, across));
        }
    }
}

void smoothBlock(TableGrid& grid, const Selection& block, int strength) {
    // Kept: in place and in reading order, so that a cell sees the new values of those above and to the left.
    for (int row = block.top; row <= block.bottom; ++row) {
        for (int column = block.left; column <= block.right; ++column)
            showRounded(grid, row, column,
                        meanAround(grid, block, row, column, strongestSmoothing - strength));
    }
}

}  // namespace zentaq
