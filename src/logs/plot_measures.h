// What stands in the table of two measuring cursors: the values of a channel at both, their difference, and
// the least, the greatest and the mean value between them, as text.
#pragma once

#include <string>
#include <vector>

#include "logs/log_columns.h"

namespace zentaq {

struct MeasureRow {
    std::string caption;  ///< with the unit: "Manifold Pressure (kPa)"
    std::string atA;
    std::string atB;
    std::string difference;  ///< from A to B
    std::string least;
    std::string most;
    std::string mean;
};

/// A row for each of the channels that the log has. `a` and `b` are seconds in any order; both rows belong to
/// the stretch.
std::vector<MeasureRow> measureRows(const LogColumns& log, const std::vector<std::string>& shown, double a,
                                    double b);

}  // namespace zentaq
