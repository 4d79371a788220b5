// What the calibration in hand is, what has been changed since it was opened, and what a careful colleague
// would ask about: the page of the nodes that only show.
#pragma once

#include <vector>

#include "app/session.h"
#include "config/page_rows.h"
#include "tables/calibration_check.h"

namespace zentaq {

/// What is in doubt in the calibration in hand; nothing of it is changed.
std::vector<Doubt> doubtsInHand(Session& session);

/// The rows of the page; none while no calibration is in hand.
std::vector<PageRow> overview(Session& session);

}  // namespace zentaq
