// Tells how many ticks of the link are due, so that 1000 ticks are one second however late its timer fires.
// Knows no timer; its owner asks it with a monotonic time.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zentaq {

class TickPacer {
 public:
    static constexpr std::int64_t tickUs = 1000;
    /// Ticks that may run ahead of their time.
    static constexpr std::int64_t earlyTicks = 2;

    struct Limits {
        int perFiring = 20;  ///< ticks that one firing runs at most, so that a window stays alive
        int debt = 5000;     ///< ticks owed at most; what is beyond is dropped, as after a suspended laptop
    };

    TickPacer() = default;
    explicit TickPacer(const Limits& limits) : limits_(limits) {}

    /// Begins anew: nothing is owed at this time.
    void start(std::int64_t nowUs);

    /// How many ticks the owner runs now; they count as run.
    int due(std::int64_t nowUs);

    /// Whether one tick may run at once, for a reply that has just come. It is taken from later ones,
    /// so the average stays 1000 a second. True: the tick counts as run.
    bool tryEarly(std::int64_t nowUs);

    /// How many ticks are due; none of them counts as run.
    std::int64_t owed(std::int64_t nowUs) const {
        return std::max<std::int64_t>(0, elapsedTicks(nowUs) - run_);
    }

    /// Drops the ticks that are owed: something has begun now whose time must not count from before.
    /// Ticks that ran ahead stay counted.
    void forgive(std::int64_t nowUs);

    /// When the next tick is due, in microseconds; in the past while ticks are owed.
    std::int64_t nextDueUs() const { return startUs_ + (run_ + 1) * tickUs; }

 private:
    std::int64_t elapsedTicks(std::int64_t nowUs) const { return (nowUs - startUs_) / tickUs; }

    Limits limits_{};
    std::int64_t startUs_ = 0;
    std::int64_t run_ = 0;  ///< ticks run or dropped since start
};

}  // namespace zentaq
