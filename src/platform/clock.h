// Time of day for texts, and a monotonic time for waiting.
#pragma once

#include <cstdint>
#include <string>

namespace zentaq {

class Clock {
 public:
    virtual ~Clock() = default;
    virtual std::int64_t monotonicUs() const = 0;
    /// "hh:mm:ss", local.
    virtual std::string timeText() const = 0;
    /// The local date as a user reads it.
    virtual std::string dateText() const = 0;
    /// "yyyyMMdd_hhnnss", local: for names of files.
    virtual std::string stampText() const = 0;
};

}  // namespace zentaq
