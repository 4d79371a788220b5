#include "headless/headless_monitor.h"

#include <cmath>
#include <ostream>
#include <utility>

#include "live/datalog_writer.h"

namespace zentaq {

namespace {

constexpr std::int64_t usPerSecond = 1'000'000;

/// A value that no frame has told is 0 in a datalog.
LiveValues asRecorded(LiveValues live) {
    for (const Channel& channel : channels) {
        float* number = channel.numberIn(live);
        if (number != nullptr && std::isnan(*number)) *number = 0;
    }
    return live;
}

}  // namespace

HeadlessMonitor::HeadlessMonitor(HeadlessSession& session, Wishes wishes)
    : session_(session),
      wishes_(std::move(wishes)),
      poller_(session.link(), session.linkDisplay, [this] { session_.link().Send_ORB_Command("T"); }, {}),
      pollUs_(std::int64_t{1000} * defaultPollIntervalMs) {
    session_.onFrame([this] { countFrame(); });
}

HeadlessMonitor::~HeadlessMonitor() {
    session_.onFrame(nullptr);
}

void HeadlessMonitor::countFrame() {
    ++frames_;
    lastFrameUs_ = session_.clock().monotonicUs();
    if (wishes_.onFrame) wishes_.onFrame(lastFrameUs_ - startUs_);
}

Ending HeadlessMonitor::run() {
    startUs_ = nextPollUs_ = lastFrameUs_ = session_.clock().monotonicUs();
    if (wishes_.log != nullptr) writeDatalogHeader(*wishes_.log, session_.linkedUnit());
    while (true) {
        const std::int64_t nowUs = session_.clock().monotonicUs();
        poll(nowUs);
        session_.pass();
        followLink();
        record(nowUs);
        tellSeconds(nowUs);
        if (wishes_.log != nullptr && !*wishes_.log) return Ending::NotWritten;
        if (session_.stopWanted()) return Ending::Stopped;
        if (timeIsOver(nowUs)) return endAfterTime();
        if (givenUp(nowUs)) return endWithoutFrames();
    }
}

void HeadlessMonitor::poll(std::int64_t nowUs) {
    if (nowUs < nextPollUs_) return;
    nextPollUs_ = nowUs + pollUs_;
    poller_.fire({});
}

void HeadlessMonitor::followLink() {
    const bool there = session_.link().linked().UnitIdentified;
    if (there == there_) return;
    there_ = there;
    if (wishes_.onLink) wishes_.onLink(there);
}

// The frame number is the time: while the unit is away no line is written, and the count goes on.
void HeadlessMonitor::record(std::int64_t nowUs) {
    if (wishes_.log == nullptr) return;
    const std::int64_t due = (nowUs - startUs_) / recordUs;
    if (due == recordNumber_) return;
    // A pause of the machine leaves a gap; the values of its time are not known.
    recordNumber_ = due;
    if (frames_ == 0 || !there_) return;
    DataRecord(*wishes_.log, session_.linkedUnit(), asRecorded(session_.live()), false,
               static_cast<int>(recordNumber_));
    ++records_;
}

void HeadlessMonitor::tellSeconds(std::int64_t nowUs) {
    const std::int64_t seconds = (nowUs - startUs_) / usPerSecond;
    if (seconds == toldSeconds_) return;
    toldSeconds_ = seconds;
    if (wishes_.log != nullptr) wishes_.log->flush();
    if (frames_ == framesTold_) return;
    framesTold_ = frames_;
    if (wishes_.onSecond) wishes_.onSecond(static_cast<int>(seconds));
}

bool HeadlessMonitor::timeIsOver(std::int64_t nowUs) const {
    return wishes_.durationUs && nowUs - startUs_ >= *wishes_.durationUs;
}

Ending HeadlessMonitor::endAfterTime() const {
    return there_ && frames_ > 0 ? Ending::Done : endWithoutFrames();
}

Ending HeadlessMonitor::endWithoutFrames() const {
    return there_ ? Ending::Unclear : Ending::Silent;
}

}  // namespace zentaq
