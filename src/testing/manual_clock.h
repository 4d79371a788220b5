// A clock driven by hand, for tests and replayed sessions.
// Monotonic time moves only when told to.
#pragma once

#include "platform/clock.h"

namespace zentaq {

class ManualClock : public Clock {
 public:
    std::int64_t monotonicUs() const override { return nowUs_; }
    std::string timeText() const override { return "12:34:56"; }
    std::string dateText() const override { return "1/2/2003"; }
    std::string stampText() const override { return "20030102_123456"; }

    void advanceUs(std::int64_t us) { nowUs_ += us; }
    void setUs(std::int64_t us) { nowUs_ = us; }

 private:
    std::int64_t nowUs_ = 0;
};

}  // namespace zentaq
