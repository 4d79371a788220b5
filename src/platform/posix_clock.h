// The system's clock for programs without Qt.
#pragma once

#include "platform/clock.h"

namespace zentaq {

class PosixClock : public Clock {
 public:
    std::int64_t monotonicUs() const override;
    std::string timeText() const override;
    /// As the user's locale writes a date.
    std::string dateText() const override;
    std::string stampText() const override;
};

}  // namespace zentaq
