// AutoVE on an open table: its samples change the cells of the grid. They reach the calibration when they are
// kept.
#pragma once

#include <vector>

#include "tables/auto_ve.h"
#include "tables/table_sheet.h"

namespace zentaq {

class AutoVeRun {
 public:
    explicit AutoVeRun(TableSheet& sheet) : sheet_(sheet) {}

    AutoVe& rule() { return rule_; }
    /// A sample; it does nothing to any table but "VE". The grid's cells that have changed.
    std::vector<GridCell> Auto_VE(float rpm, float map, float correction);
    std::vector<GridCell> Auto_VE_V2(float rpm, float map, float correction);
    /// Kept: a member of the table, though nothing calls it.
    std::vector<GridCell> Auto_VE_V1(float rpm, float map, float correction);

 private:
    AutoVeTable table() const;
    std::vector<GridCell> show(const std::vector<AutoVeChange>& changes);

    TableSheet& sheet_;
    AutoVe rule_;
};

}  // namespace zentaq
