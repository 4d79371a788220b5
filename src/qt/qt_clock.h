// Clock on Qt: the computer's local time for texts, and a clock that never jumps for waiting.
#pragma once

#include "platform/clock.h"

namespace zentaq {

class QtClock : public Clock {
 public:
    /// Microseconds of the system's steady clock.
    std::int64_t monotonicUs() const override;
    std::string timeText() const override;
    /// The short date form of the user's locale.
    std::string dateText() const override;
};

}  // namespace zentaq
