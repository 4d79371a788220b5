// Finds the hits of a condition in a log, a slice at a time, and goes on where the log has grown.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "logs/log_finding.h"
#include "logs/log_sweep.h"

namespace zentaq {

class LogSearch {
 public:
    /// As LogSweep; the hits of the search before are gone.
    void begin(const LogColumns& log, std::string_view condition);
    /// Without hits, and without a log.
    void stop();
    bool valid() const { return sweep_.valid(); }
    double share() const { return sweep_.share(); }
    /// True while there are rows left.
    bool step(std::size_t rows);

    const std::vector<LogHit>& hits() const { return hits_; }
    /// The hit that is next in a direction, 1 or -1, from a time on; behind the last one comes the first.
    std::optional<std::size_t> from(double seconds, int direction) const;
    /// From the first row of a hit to its last one.
    double secondsOf(const LogHit& hit) const { return log_->seconds(hit.last) - log_->seconds(hit.first); }
    const LogColumns* log() const { return log_; }
    /// "3 hits, 12.4 s of 600 s"; "No row of the log holds".
    std::string text() const;

 private:
    const LogColumns* log_ = nullptr;
    LogSweep sweep_;
    std::vector<LogHit> hits_;
};

}  // namespace zentaq
