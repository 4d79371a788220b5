// What becomes of cells by their neighbors: drawn towards them, or copied outward over them.
#pragma once

#include <vector>

#include "tables/cell_changes.h"

namespace zentaq {

/// Each cell half of the way to the mean of the cells that touch it, all worked out from the values before,
/// rounded as the table's commands round: one decimal, AFR two, an output table whole percent.
std::vector<CellChange> blended(const TableSheet& sheet, const Selection& block);

enum class Outward { Up, Down, Left, Right };

/// The line of the block on that side, copied to every line between it and the edge of the table.
std::vector<CellChange> copiedOutward(const TableSheet& sheet, const Selection& block, Outward way);

}  // namespace zentaq
