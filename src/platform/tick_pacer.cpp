#include "platform/tick_pacer.h"

#include <algorithm>

namespace zentaq {

void TickPacer::start(std::int64_t nowUs) {
    startUs_ = nowUs;
    run_ = 0;
}

int TickPacer::due(std::int64_t nowUs) {
    const std::int64_t elapsed = elapsedTicks(nowUs);
    run_ = std::max(run_, elapsed - limits_.debt);
    const std::int64_t ticks = std::clamp<std::int64_t>(elapsed - run_, 0, limits_.perFiring);
    run_ += ticks;
    return static_cast<int>(ticks);
}

void TickPacer::forgive(std::int64_t nowUs) {
    run_ = std::max(run_, elapsedTicks(nowUs));
}

bool TickPacer::tryEarly(std::int64_t nowUs) {
    if (run_ >= elapsedTicks(nowUs) + earlyTicks) return false;
    ++run_;
    return true;
}

}  // namespace zentaq
