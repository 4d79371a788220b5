// What the engine does now beside the setting that is about it: the speed beside a rev limit, the throttle's
// volts beside those of its sensor.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/session.h"
#include "live/dashboard_readings.h"

namespace zentaq {

/// The name of the reading for a member; empty for none.
std::string_view readingBeside(std::string_view member);

/// The readings of now; none while no unit of the kind in hand tells them.
std::vector<DashboardReading> readingsOfNow(Session& session);

/// "now 2350 rpm"; empty where there is nothing to tell.
std::string liveBeside(const std::vector<DashboardReading>& readings, std::string_view member);

}  // namespace zentaq
