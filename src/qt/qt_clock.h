// The system's clock with dates as Qt writes them.
#pragma once

#include "platform/posix_clock.h"

namespace zentaq {

class QtClock : public PosixClock {
 public:
    /// The short date form of the user's locale.
    std::string dateText() const override;
};

}  // namespace zentaq
