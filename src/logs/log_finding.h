// What a condition finds in a log: stretches of rows that follow one another, each a hit.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "logs/log_columns.h"
#include "logs/log_expression.h"

namespace zentaq {

/// Rows `first` to `last`, both in it.
struct LogHit {
    std::size_t first = 0;
    std::size_t last = 0;

    bool operator==(const LogHit&) const = default;
};

/// Makes hits of rows that come one by one.
class HitCollector {
 public:
    /// The hit that ended before this row, if one did.
    std::optional<LogHit> row(std::size_t row, bool holds);
    /// The hit that lasts to the end.
    std::optional<LogHit> end();

 private:
    std::optional<LogHit> open_;
};

std::vector<LogHit> findHits(const LogColumns& log, const LogExpression& condition);

}  // namespace zentaq
