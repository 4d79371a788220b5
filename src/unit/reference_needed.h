// A step of a calibration that takes numbers from the reference database, which cannot be asked. Going on
// without them would leave a calibration that looks whole and makes the wrong bytes.
#pragma once

#include "base/errors.h"

namespace zentaq {

/// The text says what is needed, why it cannot be had, and what to do.
class ReferenceNeeded : public Failure {
 public:
    using Failure::Failure;
};

}  // namespace zentaq
