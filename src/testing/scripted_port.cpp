#include "testing/scripted_port.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"

namespace zentaq {

void ScriptedPort::always(std::string_view command, ScriptedReply reply) {
    always_[std::string(command)] = std::move(reply);
}

void ScriptedPort::once(std::string_view command, ScriptedReply reply) {
    once_[std::string(command)].push_back(std::move(reply));
}

void ScriptedPort::otherwise(std::function<std::optional<ScriptedReply>(const std::string&)> responder) {
    otherwise_ = std::move(responder);
}

void ScriptedPort::send(const ScriptedReply& reply) {
    schedule(reply);
}

void ScriptedPort::schedule(const ScriptedReply& reply) {
    std::int64_t at = clock_.monotonicUs() + reply.delayUs;
    for (std::size_t i = 0; i < reply.bytes.size(); ++i) {
        if (i > 0) at += reply.byteUs;
        if (reply.splitAt != 0 && i == reply.splitAt) at += reply.pauseUs;
        // One wire: a byte never overtakes those sent before it.
        const std::int64_t earliest = arrivals_.empty() ? at : std::max(at, arrivals_.back().atUs);
        arrivals_.push_back({earliest, static_cast<std::uint8_t>(reply.bytes[i])});
    }
}

void ScriptedPort::advanceUs(std::int64_t us) {
    const std::int64_t end = clock_.monotonicUs() + us;
    while (true) {
        const std::int64_t arrival = arrivals_.empty() ? end + 1 : arrivals_.front().atUs;
        const std::int64_t batch = gate_.nextDueUs().value_or(end + 1);
        if (std::min(arrival, batch) > end) break;
        clock_.setUs(std::max(clock_.monotonicUs(), std::min(arrival, batch)));
        if (arrival <= batch) {
            deliverArrivals();
        } else {
            gate_.delivered();
            tell(&LineWatch::delivered, gate_.size(), clock_.monotonicUs());
            raise(CommEvent::DataReceived);
        }
    }
    clock_.setUs(end);
}

void ScriptedPort::deliverArrivals() {
    const Arrival next = arrivals_.front();
    arrivals_.pop_front();
    if (!isOpen()) return;
    const std::span<const std::uint8_t> lump(&next.byte, 1);
    gate_.received(lump, next.atUs);
    tell(&LineWatch::arrived, lump, next.atUs);
}

std::vector<std::string> ScriptedPort::takeWritten() {
    return std::exchange(written_, {});
}

void ScriptedPort::open(int number) {
    opened_.push_back(number);
    if (refuseAll_ || refused_.contains(number)) throw Failure("Port not available");
    openNumber_ = number;
    PortInfo told = here_;
    told.number = number;
    tell(&LineWatch::opened, told, clock_.monotonicUs());
}

void ScriptedPort::close() {
    ++closes_;
    if (isOpen()) tell(&LineWatch::closed, clock_.monotonicUs());
    openNumber_ = 0;
    gate_.take();
    arrivals_.clear();
}

void ScriptedPort::write(std::string_view bytes) {
    if (failingWrites_ > 0) {
        --failingWrites_;
        throw Failure("Write failed");
    }
    written_.emplace_back(bytes);
    tell(&LineWatch::written, bytes, clock_.monotonicUs());
    if (silent_ || away_ || (unitPort_ != 0 && unitPort_ != openNumber_)) return;
    if (const auto reply = answerTo(written_.back())) schedule(*reply);
}

std::optional<ScriptedReply> ScriptedPort::answerTo(const std::string& command) {
    const auto waiting = once_.find(command);
    if (waiting != once_.end() && !waiting->second.empty()) {
        ScriptedReply reply = std::move(waiting->second.front());
        waiting->second.pop_front();
        return reply;
    }
    const auto standing = always_.find(command);
    if (standing != always_.end()) return standing->second;
    return otherwise_ ? otherwise_(command) : std::nullopt;
}

void ScriptedPort::loseDevice() {
    away_ = true;
    arrivals_.clear();
    gate_.take();
    tell(&LineWatch::lost, here_, clock_.monotonicUs());
}

void ScriptedPort::returnDevice(std::string_view device) {
    away_ = false;
    here_.device = device;
    tell(&LineWatch::returned, here_, clock_.monotonicUs());
}

std::vector<std::uint8_t> ScriptedPort::read() {
    if (failingReads_ > 0) {
        --failingReads_;
        throw Failure("Read failed");
    }
    return gate_.take();
}

std::vector<PortInfo> ScriptedPort::list() const {
    return {here_};
}

}  // namespace zentaq
