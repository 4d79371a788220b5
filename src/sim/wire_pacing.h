// The speed of a real serial line, reckoned on a clock that the caller drives: when a received burst
// has fully come in, and when each byte of a reply has fully gone out.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>
#include <vector>

namespace zentaq::sim {

using Moment = std::chrono::time_point<std::chrono::steady_clock, std::chrono::nanoseconds>;

class WirePacing {
 public:
    using Bytes = std::vector<std::uint8_t>;

    /// `baud` 0 lets everything pass at once. Ten bits make a byte. Throws BoundsError for a negative rate.
    explicit WirePacing(int baud);

    /// A burst that a program wrote at `now`. It is complete after the time its bytes need on the line,
    /// behind the bursts that are still coming in.
    void receive(Moment now, Bytes burst);
    /// The next complete burst, with the moment it was complete. Nothing if none is complete at `now`.
    struct Arrival {
        Moment complete;
        Bytes burst;
    };
    std::optional<Arrival> takeArrival(Moment now);

    /// A reply that the unit begins at `begin`; it follows a reply that is still going out.
    void send(Moment begin, const Bytes& reply);
    /// The bytes that have fully gone out at `now`, never one too early.
    Bytes takeSent(Moment now);

    /// When the next burst or byte is due; nothing if the line is at rest.
    std::optional<Moment> nextDue() const;

 private:
    std::chrono::nanoseconds timeOf(std::size_t bytes) const;

    struct Sending {
        Moment begin;
        Bytes bytes;
        std::size_t gone = 0;
    };

    int baud_;
    std::deque<Arrival> arriving_;
    std::deque<Sending> sending_;
    Moment inboundFree_{};
    Moment outboundFree_{};
};

}  // namespace zentaq::sim
