// What stands on the picture of a surface: its title, its axes and what its keys do.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tables/table_estimates.h"

namespace zentaq {

struct SurfaceTitles {
    std::vector<std::string> lines;  ///< "Volumetric", "Efficiency", "(% FPW)"
    std::string shortName;           ///< of its window
    std::string columnAxis;          ///< "Engine Speed (RPM)"
    std::string rowAxis;             ///< "MAP (kPa)"
    std::string hint;
};

inline constexpr std::string_view editableHint =
    "Use + or - Keys to Adjust Graph Values. This Graph does not use ONFLY";
inline constexpr std::string_view derivedHint =
    "Values in this graph are not Editable. This Graph does not use ONFLY";

/// Of a table that the sheet shows, in a view.
SurfaceTitles surfaceTitles(const TableSheet& sheet, TableView view);

}  // namespace zentaq
