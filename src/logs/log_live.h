// A row of a log as live values, so that whatever shows what an engine does shows what it did.
#pragma once

#include <cstddef>
#include <vector>

#include "base/channels.h"
#include "logs/log_columns.h"

namespace zentaq {

class LogLive {
 public:
    explicit LogLive(const LogColumns& log);

    /// What the log has not is no number. Counts a frame.
    void show(std::size_t row, LiveValues& live) const;

 private:
    const LogColumns& log_;
    std::vector<int> columns_;  ///< by channel; -1: the log has it not
};

}  // namespace zentaq
