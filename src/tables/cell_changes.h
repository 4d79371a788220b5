// Changing many cells of a table at once: all of them, or none where one is refused.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "tables/table_cursor.h"
#include "tables/table_sheet.h"

namespace zentaq {

struct CellChange {
    GridCell cell;
    float value = 0;
};

/// What would be refused, each with its cell; empty where all can be stored.
std::vector<Refusal> refusedOf(const TableSheet& sheet, std::span<const CellChange> changes);

/// Stores them and shows them, unless one is refused: then nothing has changed. What the calibration shows
/// already keeps its digits. On the fly each changed cell goes to the unit.
std::vector<Refusal> storeAll(TableSheet& sheet, std::span<const CellChange> changes);

/// What a function makes of each cell of a block; cells that are not stored are left out.
std::vector<CellChange> changesOf(const TableSheet& sheet, const Selection& block,
                                  const std::function<float(GridCell cell, float value)>& change);

}  // namespace zentaq
