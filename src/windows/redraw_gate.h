// Lets a window draw at most 60 times a second however often it is told that something is new.
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
    static constexpr std::int64_t frameUs = 16'667;

    RedrawGate(const Clock& clock, std::function<void()> draw, QObject* parent);

    /// Draws now when a frame's time has passed since the last drawing, else once, later.
    void request();
    bool pending() const { return timer_.isActive(); }
    /// Forgets what is due.
    void cancel() { timer_.stop(); }

 private:
    void draw();

    const Clock& clock_;
    std::function<void()> draw_;
    QTimer timer_;
    std::optional<std::int64_t> lastUs_;
};

}  // namespace zentaq
