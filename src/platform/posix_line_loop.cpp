#include "platform/posix_line_loop.h"

#include <poll.h>

#include <algorithm>
#include <ctime>

namespace zentaq {

namespace {

/// One tick at a time is asked for, so that the port is looked at between two of them.
constexpr TickPacer::Limits oneByOne{.perFiring = 1};
/// The reply is handled in one tick and the next command leaves in the one behind it.
constexpr int ticksBehindReply = 2;

constexpr std::int64_t usPerSecond = 1'000'000;

timespec spanOf(std::int64_t us) {
    us = std::max<std::int64_t>(us, 0);
    return {.tv_sec = us / usPerSecond, .tv_nsec = us % usPerSecond * 1000};
}

}  // namespace

PosixLineLoop::PosixLineLoop(PosixSerialPort& port, const Clock& clock, int wakeDescriptor)
    : port_(port), clock_(clock), wakeDescriptor_(wakeDescriptor), pacer_(oneByOne) {}

void PosixLineLoop::start() {
    pacer_.start(clock_.monotonicUs());
    running_ = true;
}

void PosixLineLoop::yield() {
    if (!running_ || inside_) return;
    inside_ = true;
    try {
        waitForLine();
        run();
    } catch (...) {
        inside_ = false;
        throw;
    }
    inside_ = false;
}

std::int64_t PosixLineLoop::nextDueUs() const {
    const auto reply = port_.nextDueUs();
    return reply ? std::min(*reply, pacer_.nextDueUs()) : pacer_.nextDueUs();
}

void PosixLineLoop::waitForLine() const {
    const short wanted = port_.wantsToWrite() ? POLLIN | POLLOUT : POLLIN;
    pollfd watched[] = {{port_.descriptor(), wanted, 0}, {wakeDescriptor_, POLLIN, 0}};
    const timespec span = spanOf(nextDueUs() - clock_.monotonicUs());
    // An interrupted or a failed wait is a short one: what is due is told by the clock.
    ::ppoll(watched, std::size(watched), &span, nullptr);
}

// The patience of a command begins when it is written: what is owed from a pause before that would give up a
// healthy unit within a few milliseconds.
void PosixLineLoop::runTick() {
    const std::uint64_t before = port_.writes();
    tick();
    if (port_.writes() != before) pacer_.forgive(clock_.monotonicUs());
}

void PosixLineLoop::run() {
    bool delivered = port_.service();
    for (int count = 0; count < ticksPerStep && running_; ++count) {
        // A reply that is about to be delivered must not be overtaken by ticks owed from a pause.
        if (port_.nextDueUs()) break;
        if (pacer_.due(clock_.monotonicUs()) == 0) break;
        runTick();
        delivered = port_.service() || delivered;
    }
    if (!delivered) return;
    for (int count = 0; count < ticksBehindReply && running_; ++count) {
        if (!pacer_.tryEarly(clock_.monotonicUs())) return;
        runTick();
    }
}

}  // namespace zentaq
