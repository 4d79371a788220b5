#include "qt/qt_ticker.h"

#include <QScopedValueRollback>

namespace zentaq {

namespace {

/// One tick at a time is asked for, so that the port is looked at between two of them.
constexpr TickPacer::Limits oneByOne{.perFiring = 1};

/// The reply is handled in one tick and the next command leaves in the one behind it.
constexpr int ticksBehindReply = 2;

}  // namespace

QtTicker::QtTicker(QtSerialPort& port, const Clock& clock) : port_(port), clock_(clock), pacer_(oneByOne) {
    timer_.setObjectName(QStringLiteral("tmrSerial"));
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(1);
    connect(&timer_, &QTimer::timeout, this, &QtTicker::wake);
}

void QtTicker::start() {
    pacer_.start(clock_.monotonicUs());
    timer_.start();
}

void QtTicker::stop() {
    timer_.stop();
}

// A tick may show a box, and a box runs the event loop: no tick starts inside another one.
void QtTicker::wake() {
    if (inside_) return;
    const QScopedValueRollback guard(inside_, true);
    run();
}

// The patience of a command begins when it is written: what is owed from a pause before that would give up a
// healthy unit within a few milliseconds.
void QtTicker::runTick() {
    const std::uint64_t before = port_.writes();
    tick();
    if (port_.writes() != before) pacer_.forgive(clock_.monotonicUs());
}

void QtTicker::run() {
    bool delivered = port_.service();
    for (int count = 0; count < ticksPerWake && running(); ++count) {
        // A reply that is about to be delivered must not be overtaken by ticks owed from a pause.
        if (port_.settling()) break;
        if (pacer_.due(clock_.monotonicUs()) == 0) break;
        runTick();
        delivered = port_.service() || delivered;
    }
    if (!delivered) return;
    for (int count = 0; count < ticksBehindReply && running(); ++count) {
        if (!pacer_.tryEarly(clock_.monotonicUs())) return;
        runTick();
    }
}

}  // namespace zentaq
