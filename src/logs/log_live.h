// A row of a log as live values, so that whatever shows what an engine does shows what it did.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "base/channels.h"
#include "logs/log_columns.h"

namespace zentaq {

class LogLive {
 public:
    explicit LogLive(const LogColumns& log);

    /// What the log has not is no number. Counts a frame.
    void show(std::size_t row, LiveValues& live) const;
    /// The states of the pins, as the unit told them; 0 for those that the log has not.
    std::array<int, 16> pins(std::size_t row) const;

 private:
    const LogColumns& log_;
    std::vector<int> columns_;  ///< by channel; -1: the log has it not
    std::array<int, 16> pins_{};
};

}  // namespace zentaq
