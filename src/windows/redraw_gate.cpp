#include "windows/redraw_gate.h"

namespace zentaq {

RedrawGate::RedrawGate(const Clock& clock, std::function<void()> draw, QObject* parent, std::int64_t frameUs)
    : QObject(parent), clock_(clock), draw_(std::move(draw)), frameUs_(frameUs) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &RedrawGate::draw);
}

void RedrawGate::request() {
    const std::int64_t passed = lastUs_ ? clock_.monotonicUs() - *lastUs_ : frameUs_;
    if (passed >= frameUs_) {
        // Also when one is due: a busy event loop may fire its timer late.
        timer_.stop();
        draw();
        return;
    }
    if (!pending()) timer_.start(static_cast<int>((frameUs_ - passed + 999) / 1000));
}

void RedrawGate::draw() {
    lastUs_ = clock_.monotonicUs();
    draw_();
}

}  // namespace zentaq
