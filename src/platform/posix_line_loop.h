// The heart of a program without an event loop: lets the line and the link's ticks go on, a millisecond at a
// time. Ticks are counted by the monotonic clock, so that 1000 of them are one second on a busy machine too.
#pragma once

#include "platform/clock.h"
#include "platform/posix_serial_port.h"
#include "platform/tick_pacer.h"
#include "platform/ticker.h"
#include "platform/yield.h"

namespace zentaq {

class PosixLineLoop : public Ticker, public Yield {
 public:
    /// Ticks that one step runs at most.
    static constexpr int ticksPerStep = 20;

    /// `wakeDescriptor`: ends a step early when it is ready to read; -1 for none.
    PosixLineLoop(PosixSerialPort& port, const Clock& clock, int wakeDescriptor = -1);

    void start() override;
    void stop() override { running_ = false; }

    /// Waits for the next tick or for bytes, whatever comes first, and runs what is due: port events and
    /// ticks. Does nothing when called from a tick or while stopped.
    void yield() override;

 private:
    void waitForLine() const;
    std::int64_t nextDueUs() const;
    void run();
    void runTick();

    PosixSerialPort& port_;
    const Clock& clock_;
    int wakeDescriptor_;
    TickPacer pacer_;
    bool running_ = false;
    bool inside_ = false;
};

}  // namespace zentaq
