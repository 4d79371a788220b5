// Filling and smoothing a block of cells. Both work on the numbers that the grid shows and leave the
// calibration alone: writing the grid back is the command's own step.
#pragma once

#include "tables/table_cursor.h"

namespace zentaq {

/// The gentlest and the strongest smoothing.
constexpr int gentlestSmoothing = 1;
constexpr int strongestSmoothing = 5;

/// Fills a block of the grid from its four corners, everything rounded to 1 decimal, the corners as well. A
/// block of one row has the corners of that row; of one column each row takes the right end, which is the
/// same cell.
void interpolateBlock(TableGrid& grid, const Selection& block);

/// Each cell becomes the mean of the 5 by 5 cells around it, as far as they are in the block, in which it
/// counts `strongestSmoothing - strength` times more than its neighbors; rounded to 1 decimal.
void smoothBlock(TableGrid& grid, const Selection& block, int strength);

}  // namespace zentaq
