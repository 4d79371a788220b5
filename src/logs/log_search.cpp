#include "logs/log_search.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"

namespace zentaq {

void LogSearch::begin(const LogColumns& log, std::string_view condition) {
    sweep_.begin(log, condition);
    log_ = &log;
    hits_.clear();
}

void LogSearch::stop() {
    sweep_.stop();
    log_ = nullptr;
    hits_.clear();
}

bool LogSearch::step(std::size_t rows) {
    sweep_.step(rows, [&](std::size_t row) {
        const bool goesOn = !hits_.empty() && hits_.back().last + 1 == row;
        goesOn ? void(hits_.back().last = row) : hits_.push_back({row, row});
    });
    return sweep_.left();
}

std::optional<std::size_t> LogSearch::from(double seconds, int direction) const {
    if (hits_.empty() || !valid()) return {};
    const auto begins = [&](const LogHit& hit) { return log_->seconds(hit.first); };
    const auto found = direction > 0 ? std::ranges::upper_bound(hits_, seconds, {}, begins)
                                     : std::ranges::lower_bound(hits_, seconds, {}, begins);
    const auto place = static_cast<std::size_t>(found - hits_.begin());
    if (direction > 0) return place % hits_.size();
    return (place + hits_.size() - 1) % hits_.size();
}

std::string LogSearch::text() const {
    if (!valid() || hits_.empty()) return "No row of the log holds";
    double seconds = 0;
    for (const LogHit& hit : hits_) seconds += secondsOf(hit);
    const auto told = [](double time) { return numberText(roundTo(time, 1)); };
    return many(static_cast<std::int64_t>(hits_.size()), "hit", "hits") + ", " + told(seconds) + " s of " +
           told(log_->lastSeconds() - log_->seconds(0)) + " s";
}

}  // namespace zentaq
