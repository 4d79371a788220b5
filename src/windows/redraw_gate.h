// Lets a window draw at most so many times a second, however often it is told that something is new.
// The last news is never lost: it is drawn as soon as a frame's time has passed.
#pragma once

#include "platform/clock.h"

#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <optional>

namespace zentaq {

class RedrawGate : public QObject {
    Q_OBJECT

 public:
    static constexpr std::int64_t needleUs = 16'667;     ///< 60 a second, for what moves smoothly
    static constexpr std::int64_t digitsUs = 250'000;    ///< four a second, for digits that are read
    static constexpr std::int64_t spokenUs = 1'000'000;  ///< while a screen reader says them
    static constexpr std::int64_t markUs = 33'333;       ///< 30 a second, for what jumps from place to place

    RedrawGate(const Clock& clock, std::function<void()> draw, QObject* parent,
               std::int64_t frameUs = needleUs);

    /// Draws now when a frame's time has passed since the last drawing, else once, later.
    void request();
    bool pending() const { return timer_.isActive(); }
    /// Forgets what is due.
    void cancel() { timer_.stop(); }

 private:
    void draw();

    const Clock& clock_;
    std::function<void()> draw_;
    std::int64_t frameUs_;
    QTimer timer_;
    std::optional<std::int64_t> lastUs_;
};

}  // namespace zentaq
