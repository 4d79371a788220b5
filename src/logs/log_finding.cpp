#include "logs/log_finding.h"

#include <utility>

namespace zentaq {

std::optional<LogHit> HitCollector::row(std::size_t row, bool holds) {
    if (!holds) return std::exchange(open_, std::nullopt);
    if (!open_) {
        open_ = LogHit{row, row};
    } else {
        open_->last = row;
    }
    return {};
}

std::optional<LogHit> HitCollector::end() {
    return std::exchange(open_, std::nullopt);
}

std::vector<LogHit> findHits(const LogColumns& log, const LogExpression& condition) {
    std::vector<LogHit> hits;
    HitCollector collector;
    for (std::size_t row = 0; row < log.rows(); ++row) {
        const bool holds = condition.holds([&](int column) { return log.value(column, row); });
        if (const auto hit = collector.row(row, holds)) hits.push_back(*hit);
    }
    if (const auto hit = collector.end()) hits.push_back(*hit);
    return hits;
}

}  // namespace zentaq
