// The state of the link in one line, for where there is no room for its panel.
#pragma once

#include <string>

#include "link/link_status.h"

namespace zentaq {

/// Title, and what counts most behind it: progress, trouble, what the second line says, or the unit.
std::string linkSummary(const LinkStatus& status);

}  // namespace zentaq
