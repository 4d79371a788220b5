// A unit at the other end of a terminal that takes a firmware and measures, at its own end, how long it was
// left alone behind each of its answers before the next line came.
#pragma once

#include <poll.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "platform/pty_pair.h"

namespace zentaq {

class TimedUnit {
 public:
    /// Takes so many lines and refuses the one behind them.
    explicit TimedUnit(int lines) : mostLines_(lines), thread_([this] { serve(); }) {}
    ~TimedUnit() {
        stop_ = true;
        thread_.join();
    }
    TimedUnit(const TimedUnit&) = delete;
    TimedUnit& operator=(const TimedUnit&) = delete;

    const std::string& path() const { return line_.path(); }
    bool done() const { return done_; }
    /// Microseconds from an answer to the first byte of the next line.
    std::vector<std::int64_t> gaps() const {
        const std::scoped_lock lock(mutex_);
        return gaps_;
    }

 private:
    static std::int64_t nowUs() {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        return std::chrono::duration_cast<std::chrono::microseconds>(now).count();
    }

    void serve() {
        while (!stop_) {
            if (!line_.waitForBytes(20)) continue;
            const std::int64_t arrivedUs = nowUs();
            const std::string bytes = line_.received();
            if (text_.empty()) beganUs_ = arrivedUs;
            text_ += bytes;
            if (text_ == "P3") {
                answer("AX");
            } else if (text_.ends_with("\r\n")) {
                takeLine();
            } else if (!text_.starts_with('S') && !text_.starts_with('P')) {
                text_.clear();  // a question that this unit does not answer
            }
        }
    }
    void takeLine() {
        {
            const std::scoped_lock lock(mutex_);
            gaps_.push_back(beganUs_ - answeredUs_);
        }
        writeMemory();
        answer(++lines_ > mostLines_ ? "AR" : "AX");
        done_ = lines_ > mostLines_;
    }
    /// For 0 to 24 ms: an answer that always came at once would find the program still running, and pauses
    /// would only fall into the gap behind it.
    void writeMemory() const { ::poll(nullptr, 0, lines_ * 7 % 25); }
    void answer(const std::string& reply) {
        text_.clear();
        // The program can see it from here on.
        answeredUs_ = nowUs();
        line_.send(reply);
    }

    PtyPair line_;
    const int mostLines_;
    int lines_ = 0;
    std::string text_;
    std::int64_t answeredUs_ = 0;
    std::int64_t beganUs_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::int64_t> gaps_;
    std::atomic<bool> stop_ = false;
    std::atomic<bool> done_ = false;
    std::thread thread_;
};

/// What a unit is promised, less what two clocks of one machine may differ in.
inline constexpr std::int64_t shortestGapUs = 9500;

inline std::int64_t shortestOf(const std::vector<std::int64_t>& gaps) {
    return gaps.empty() ? 0 : *std::ranges::min_element(gaps);
}

}  // namespace zentaq
