#include "qt/qt_ticker.h"

#include <sys/timerfd.h>

#include <QScopedValueRollback>

namespace zentaq {

namespace {

/// One tick at a time is asked for, so that the port is looked at between two of them.
constexpr TickPacer::Limits oneByOne{.perFiring = 1};

/// The reply is handled in one tick and the next command leaves in the one behind it.
constexpr int ticksBehindReply = 2;

/// A window that is not busy owes no more than this.
constexpr int ticksOwedAsARule = 5;

/// The reply is asked for a little later than it is due.
constexpr std::int64_t marginUs = 10;

/// What comes in a millisecond, the time from one tick to the next.
constexpr std::size_t bytesInATick = 4;

}  // namespace

QtTicker::QtTicker(PosixSerialPort& port, const Clock& clock)
    : port_(port),
      clock_(clock),
      pacer_(oneByOne),
      quietTimer_(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
    port_.watch(*this);
    if (quietTimer_.valid()) {
        quiet_ = std::make_unique<QSocketNotifier>(quietTimer_.get(), QSocketNotifier::Read);
        connect(quiet_.get(), &QSocketNotifier::activated, this, &QtTicker::lineIsQuiet);
    }
    timer_.setObjectName(QStringLiteral("tmrSerial"));
    timer_.setTimerType(Qt::PreciseTimer);
    timer_.setInterval(1);
    connect(&timer_, &QTimer::timeout, this, &QtTicker::wake);
}

QtTicker::~QtTicker() {
    port_.unwatch(*this);
}

// Qt's timers know whole milliseconds, and the quiet behind a reply lasts half of one. Waiting for the next
// whole one would cost a narrow frame a twentieth of the wire's pace.
void QtTicker::arrived(std::span<const std::uint8_t>, std::int64_t nowUs) {
    const auto dueUs = port_.nextDueUs();
    if (!quiet_ || !running() || !dueUs) return;
    itimerspec setting{};
    setting.it_value.tv_nsec = (*dueUs - nowUs + marginUs) * 1000;
    ::timerfd_settime(quietTimer_.get(), 0, &setting, nullptr);
}

void QtTicker::watchLine() {
    leaveLine();
    bytes_ = std::make_unique<QSocketNotifier>(port_.descriptor(), QSocketNotifier::Read, this);
    connect(bytes_.get(), &QSocketNotifier::activated, this, &QtTicker::bytesCame);
    listen();
}

// The news may come from inside the notifier's own signal.
void QtTicker::leaveLine() {
    if (!bytes_) return;
    bytes_->setEnabled(false);
    bytes_.release()->deleteLater();
}

// A port that gives its bytes one by one would wake the program for each of them, thousands of times a
// second. The ticks take them once a millisecond; only the end of a reply is waited for by the byte.
void QtTicker::listen() {
    if (!bytes_) return;
    const std::size_t missing = port_.missing();
    bytes_->setEnabled(running() && missing > 0 && missing <= bytesInATick);
}

// Where a tick is waited in, it takes the bytes: the notices would not end until then.
void QtTicker::bytesCame() {
    bytes_->setEnabled(false);
    wake();
}

void QtTicker::lineIsQuiet() {
    std::uint64_t firings = 0;
    if (::read(quietTimer_.get(), &firings, sizeof firings) > 0 && running()) wake();
}

void QtTicker::start() {
    pacer_.start(clock_.monotonicUs());
    timer_.start();
}

void QtTicker::stop() {
    timer_.stop();
    listen();
}

// A tick may show a box, and a box runs the event loop: no tick starts inside another one.
void QtTicker::wake() {
    if (inside_) return;
    const QScopedValueRollback guard(inside_, true);
    run();
    listen();
}

// The patience of a command begins when it is written: what is owed from a pause before that would give up a
// healthy unit within a few milliseconds.
void QtTicker::runTick() {
    const std::uint64_t before = port_.writes();
    tick();
    if (port_.writes() != before) pacer_.forgive(clock_.monotonicUs());
}

void QtTicker::run() {
    bool delivered = takeReply();
    for (int count = 0; count < ticksPerWake && running(); ++count) {
        // A reply that is about to be delivered must not be overtaken by ticks owed from a pause.
        if (port_.nextDueUs()) break;
        if (pacer_.due(clock_.monotonicUs()) == 0) break;
        runTick();
        delivered = takeReply() || delivered;
    }
    if (!delivered) return;
    for (int count = 0; count < ticksBehindReply && running(); ++count) {
        if (!pacer_.tryEarly(clock_.monotonicUs())) return;
        runTick();
    }
}

// What was owed before a reply was seen does not count behind it: the gap between two lines of a program is
// real time for the unit.
bool QtTicker::takeReply() {
    if (!port_.service()) return false;
    const std::int64_t nowUs = clock_.monotonicUs();
    if (pacer_.owed(nowUs) > ticksOwedAsARule) pacer_.forgive(nowUs);
    return true;
}

}  // namespace zentaq
