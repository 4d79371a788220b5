#include "sim/wire_pacing.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"

namespace zentaq::sim {

WirePacing::WirePacing(int baud) : baud_(baud) {
    if (baud < 0) throw BoundsError("A line speed cannot be negative");
}

// Rounded up from the start of the reply, so that neither a byte nor the whole comes early
// and no error adds up.
std::chrono::nanoseconds WirePacing::timeOf(std::size_t bytes) const {
    if (baud_ == 0) return {};
    constexpr std::int64_t bitNanoseconds = 10 * 1'000'000'000LL;
    const auto total = static_cast<std::int64_t>(bytes) * bitNanoseconds;
    return std::chrono::nanoseconds((total + baud_ - 1) / baud_);
}

void WirePacing::receive(Moment now, Bytes burst) {
    inboundFree_ = std::max(now, inboundFree_) + timeOf(burst.size());
    arriving_.push_back({inboundFree_, std::move(burst)});
}

std::optional<WirePacing::Arrival> WirePacing::takeArrival(Moment now) {
    if (arriving_.empty() || arriving_.front().complete > now) return std::nullopt;
    Arrival arrival = std::move(arriving_.front());
    arriving_.pop_front();
    return arrival;
}

void WirePacing::send(Moment begin, const Bytes& reply) {
    if (reply.empty()) return;
    const Moment start = std::max(begin, outboundFree_);
    outboundFree_ = start + timeOf(reply.size());
    sending_.push_back({start, reply});
}

WirePacing::Bytes WirePacing::takeSent(Moment now) {
    Bytes sent;
    while (!sending_.empty()) {
        Sending& front = sending_.front();
        while (front.gone < front.bytes.size() && front.begin + timeOf(front.gone + 1) <= now) {
            sent.push_back(front.bytes[front.gone++]);
        }
        if (front.gone < front.bytes.size()) break;
        sending_.pop_front();
    }
    return sent;
}

std::optional<Moment> WirePacing::nextDue() const {
    std::optional<Moment> due;
    if (!arriving_.empty()) due = arriving_.front().complete;
    if (!sending_.empty()) {
        const Moment byte = sending_.front().begin + timeOf(sending_.front().gone + 1);
        due = due ? std::min(*due, byte) : byte;
    }
    return due;
}

}  // namespace zentaq::sim
