// The rows of a log that hold a condition, a slice at a time, so that a window goes on meanwhile. The log may
// grow between two slices; when it has become another one, there is nothing left.
#pragma once

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/text.h"
#include "logs/log_columns.h"
#include "logs/log_expression.h"

namespace zentaq {

class LogSweep {
 public:
    /// From the first row on; an empty condition always holds. The log is not owned. Throws ExpressionError,
    /// and goes on as before then.
    void begin(const LogColumns& log, std::string_view condition) {
        std::optional<LogExpression> read;
        if (!trimmed(condition).empty()) read.emplace(condition, log.names());
        condition_ = std::move(read);
        log_ = &log;
        generation_ = log.generation();
        next_ = 0;
    }
    void stop() { log_ = nullptr; }

    /// The log is still the one that it began with.
    bool valid() const { return log_ != nullptr && log_->generation() == generation_; }
    bool left() const { return valid() && next_ < log_->rows(); }
    /// How much of the log is behind it, from 0 to 1.
    double share() const {
        if (!left()) return 1;
        return static_cast<double>(next_) / static_cast<double>(log_->rows());
    }
    /// Calls `take(row)` for those among the next `rows` rows that hold.
    template <typename Take>
    void step(std::size_t rows, const Take& take) {
        if (!left()) return;
        for (const std::size_t end = std::min(next_ + rows, log_->rows()); next_ < end; ++next_) {
            const auto at = [&](int column) { return log_->value(column, next_); };
            if (!condition_ || condition_->holds(at)) take(next_);
        }
    }

 private:
    const LogColumns* log_ = nullptr;
    int generation_ = 0;
    std::optional<LogExpression> condition_;
    std::size_t next_ = 0;
};

}  // namespace zentaq
