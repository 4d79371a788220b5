// Watches a running unit without windows: polls it as the dashboard does, finds it again when it was away for
// a moment, and writes a datalog as the flight recorder does.
#pragma once

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>

#include "headless/headless_session.h"
#include "link/poller.h"

namespace zentaq {

class HeadlessMonitor {
 public:
    struct Wishes {
        /// How long; nothing: until the user wants to end.
        std::optional<std::int64_t> durationUs{};
        /// Gets format 4.10: the header, then a line each 1/50 s while frames come. Nullptr for none.
        std::ostream* log = nullptr;
        /// For each frame, with the microseconds since the start. It must not throw.
        std::function<void(std::int64_t elapsedUs)> onFrame{};
        /// Once a second while frames come, with the seconds since the start.
        std::function<void(int seconds)> onSecond{};
        /// The unit has gone silent (false) or is back (true).
        std::function<void(bool there)> onLink{};
    };

    /// How long a silent unit is waited for before the monitor gives up.
    static constexpr std::int64_t absenceUs = 5'000'000;
    /// One line of a datalog.
    static constexpr std::int64_t recordUs = 20'000;

    /// The session has found its unit.
    HeadlessMonitor(HeadlessSession& session, Wishes wishes);
    ~HeadlessMonitor();
    HeadlessMonitor(const HeadlessMonitor&) = delete;
    HeadlessMonitor& operator=(const HeadlessMonitor&) = delete;

    /// Done: the time is over. Stopped: the user wanted to end. Silent: the unit is away. Unclear: it
    /// answers, but no frame could be read. NotWritten: the log cannot be written.
    Ending run();

    int frames() const { return frames_; }
    int records() const { return records_; }

 private:
    void countFrame();
    void poll(std::int64_t nowUs);
    void followLink();
    void record(std::int64_t nowUs);
    void tellSeconds(std::int64_t nowUs);
    bool givenUp(std::int64_t nowUs) const { return nowUs - lastFrameUs_ > absenceUs; }
    bool timeIsOver(std::int64_t nowUs) const;
    Ending endAfterTime() const;
    Ending endWithoutFrames() const;

    HeadlessSession& session_;
    Wishes wishes_;
    Poller poller_;
    std::int64_t pollUs_;
    std::int64_t startUs_ = 0;
    std::int64_t nextPollUs_ = 0;
    std::int64_t lastFrameUs_ = 0;
    std::int64_t recordNumber_ = 0;
    std::int64_t toldSeconds_ = 0;
    int frames_ = 0;
    int framesTold_ = 0;
    int records_ = 0;
    bool there_ = true;
};

}  // namespace zentaq
