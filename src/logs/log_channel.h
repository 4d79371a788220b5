// A channel of a datalog whatever its format calls it: the column of the older format and that of the newer
// one mean the same, and caption, unit and digits stand in one row of base/channels.h.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"

namespace zentaq {

/// The name of the newer format; a name that both have, or that neither has, stays as it is.
std::string_view newerChannelName(std::string_view name);

/// Where a channel stands among the columns, under either of its names and in any case; -1 for nowhere.
int columnOfChannel(const std::vector<std::string>& columns, std::string_view name);

/// nullptr for the frame, the pins and what is no channel.
const Channel* channelNamed(std::string_view name);

/// "Manifold Pressure"; the name itself where there is no better one.
std::string channelCaption(std::string_view name);

/// "kPa": `mapUnits` for pressures, "C" for temperatures, which logs hold in Celsius; empty where there is
/// none.
std::string channelUnit(std::string_view name, std::string_view mapUnits);

/// How many digits behind the point a log has of it; 2 where no log tells.
int channelDecimals(std::string_view name);

/// The column that holds the time of a row, and what one of it is in seconds.
bool isTimeColumn(std::string_view name);

}  // namespace zentaq
