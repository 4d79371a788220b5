// The labels of the dashboard as rows of text: every live value, formatted for reading at arm's length.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "live/gauges.h"
#include "live/live_values.h"
#include "unit/unit.h"

namespace zentaq {

/// One label.
struct DashboardReading {
    std::string name;     ///< "lblTach"; a value without a label of its own bears its datalog name, "INJ_TOG"
    std::string caption;  ///< "Engine Speed"
    std::string text;     ///< "3100"; empty when there is nothing to show
    std::string unit;     ///< "rpm"
};

/// All labels of a unit, in the order of the panel; kind 5 has no fuel side.
std::vector<DashboardReading> dashboardReadings(const LiveValues& live, Unit& unit,
                                                const DashboardSettings& settings);

/// The row of a name, nullptr if the list has none.
const DashboardReading* findReading(const std::vector<DashboardReading>& readings, std::string_view name);

}  // namespace zentaq
