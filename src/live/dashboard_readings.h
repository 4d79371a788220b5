// The labels of the dashboard as rows of text: every live value, formatted for reading at arm's length.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "live/gauges.h"
#include "unit/unit.h"

namespace zentaq {

/// One label.
struct DashboardReading {
    std::string name;     ///< "lblTach"; a value without a label of its own bears its datalog name, "INJ_TOG"
    std::string caption;  ///< "Engine Speed"
    std::string text;     ///< "3100"; empty when there is nothing to show
    std::string unit;     ///< "rpm"
    bool inUse = true;    ///< false: a pin without a function
};

/// The channels of a unit, what the panel shows besides, and the pins; one for ignition only has no fuel
/// side.
std::vector<DashboardReading> dashboardReadings(const LiveValues& live, Unit& unit,
                                                const DashboardSettings& settings);

/// The read-outs that a panel shows of these, the most important one first: "Air Mass" and the unit of the
/// temperatures only with a value, and the pressure not beside an air mass.
std::vector<std::string_view> shownReadouts(const std::vector<DashboardReading>& readings);

/// The row of a name, nullptr if the list has none.
const DashboardReading* findReading(const std::vector<DashboardReading>& readings, std::string_view name);

}  // namespace zentaq
