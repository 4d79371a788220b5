// The link's clock and its port on Qt. Qt's timer fires late while a window paints; this one runs the ticks
// that are owed by the monotonic clock, after it has taken what the port has brought and never against a
// command that was written later than they were due, so that a busy window never looks like a dead unit.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <memory>

#include "platform/clock.h"
#include "platform/line_watch.h"
#include "platform/posix_handle.h"
#include "platform/posix_serial_port.h"
#include "platform/tick_pacer.h"
#include "platform/ticker.h"

namespace zentaq {

/// The port of the window program. A reply is whole when enough bytes are there and none has come for one and
/// a half character times: every frame waits for it, and a byte that comes later than that is dropped before
/// the next command.
inline constexpr PosixSerialPort::Manner windowPort{
    .quietUs = 390, .exclusive = true, .tellsNumber = true, .restores = true};

class QtTicker : public QObject, public Ticker, private LineWatch {
    Q_OBJECT

 public:
    /// Ticks that one wake-up runs at most; the rest follows with the next. They take microseconds each, and
    /// a window that stands still for a quarter of a second is no reason for a time-out to last longer.
    static constexpr int ticksPerWake = 250;

    QtTicker(PosixSerialPort& port, const Clock& clock);
    ~QtTicker() override;

    void start() override;
    void stop() override;
    bool running() const { return timer_.isActive(); }

 private:
    // ---- LineWatch
    void opened(const PortInfo&, std::int64_t) override { watchLine(); }
    void returned(const PortInfo&, std::int64_t) override { watchLine(); }
    void closed(std::int64_t) override { leaveLine(); }
    void lost(const PortInfo&, std::int64_t) override { leaveLine(); }
    void arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) override;

    void watchLine();
    void leaveLine();
    void listen();
    void bytesCame();
    void lineIsQuiet();
    void wake();
    void run();
    void runTick();
    bool takeReply();

    PosixSerialPort& port_;
    const Clock& clock_;
    QTimer timer_;
    TickPacer pacer_;
    PosixHandle quietTimer_;
    std::unique_ptr<QSocketNotifier> quiet_;
    std::unique_ptr<QSocketNotifier> bytes_;  ///< of each byte that the open device brings
    bool inside_ = false;
};

}  // namespace zentaq
