// What stands in the header of a table's window: the view in force, who moves the cursor, the units of the
// axes.
#pragma once

#include <array>
#include <string>
#include <string_view>

#include "tables/table_model.h"

namespace zentaq {

/// All texts of the badge of the view, "VALUES" first.
inline constexpr std::array<std::string_view, 5> viewBadges{"VALUES", "ABSOLUTE", "PULSE WIDTH ms", "DUTY %",
                                                            "DIFFERENCE"};
inline constexpr std::string_view followBadge = "FOLLOW";
inline constexpr std::string_view holdBadge = "HOLD";

struct TableBadges {
    std::string_view view;
    bool asStored = true;  ///< the cells show what the calibration holds
    std::string_view cursor;
    bool follows = true;  ///< the live point moves the cursor

    bool operator==(const TableBadges&) const = default;
};

TableBadges badgesOf(TableModel& model);

/// What the columns stand for: "RPM", or the axis kind of a table that has several.
std::string acrossOf(const TableSheet& sheet);
/// What the headers of an axis count, "kPa"; "-" where that has no unit.
std::string axisUnitOf(const TableSheet& sheet, bool columns);
/// Row unit and column unit, as "kPa \ RPM" stands in the corner of the grid.
std::string cornerOf(const TableSheet& sheet);
/// The same in words: "Rows BLEND MAP in kPa, columns RPM in RPM".
std::string axesInWords(const TableSheet& sheet);

}  // namespace zentaq
