// The cell in hand in words: for the status bar, and for a screen reader.
#pragma once

#include <string>

#include "tables/table_model.h"

namespace zentaq {

/// "33.1 kPa, 875 RPM: -21 % (-50 to 50%)", with what a comparison tells; of several cells their number,
/// lowest, highest and mean.
std::string contextLine(TableModel& model);
/// What it says in whole sentences.
std::string contextInWords(TableModel& model);

/// "-21 %, 33.1 kPa, 875 RPM", with its state: changed from another calibration, shown in a view.
std::string cellInWords(TableModel& model, int row, int column);

}  // namespace zentaq
