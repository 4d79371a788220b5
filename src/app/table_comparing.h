// Which calibration a table is compared with: one that the user chooses, or the one in hand as it was opened.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/session.h"

namespace zentaq {

struct ComparedCalibration {
    std::shared_ptr<const Calibration> calibration;
    const UnitKind* kind = nullptr;
    std::string name;  ///< "Turbo.ZQ4OA", "as opened"
};

/// Asks for a calibration file and reads it. Nothing where the user gives it up, or where it cannot be read:
/// then he has been told why.
std::optional<ComparedCalibration> chooseCompared(Session& session);

/// Nothing while no calibration is in hand.
std::optional<ComparedCalibration> comparedAsOpened(Session& session);

}  // namespace zentaq
