// Turns the bytes of a port that arrive one by one into whole replies: enough bytes, then a quiet line.
// Knows no port and no timer; its owner tells it bytes and times and asks when a batch is due.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace zentaq {

class ReceiveGate {
 public:
    /// Two character times at 38400 baud, ten bits a character.
    static constexpr std::int64_t defaultQuietUs = 520;
    /// A line that never goes quiet is delivered once it holds this many bytes more than asked for.
    static constexpr std::size_t floodBytes = 256;

    /// What nobody asks for is kept up to here; then the oldest bytes go.
    static constexpr std::size_t mostHeld = 4096;

    explicit ReceiveGate(std::int64_t quietUs = defaultQuietUs) : quietUs_(quietUs) {}

    /// How many bytes make a batch; 0 (or less) never delivers. Counts bytes that came before, too.
    void threshold(int bytes);
    int threshold() const { return threshold_; }

    /// Bytes that came at a monotonic time in microseconds. Times do not go backwards.
    void received(std::span<const std::uint8_t> bytes, std::int64_t nowUs);

    /// Whether a batch waits to be delivered. False after `delivered` until more bytes come.
    bool due(std::int64_t nowUs) const;

    /// The earliest time at which a batch is due if no further byte comes; nothing while bytes are missing.
    std::optional<std::int64_t> nextDueUs() const;

    /// The owner has been told of this batch, once.
    void delivered() { told_ = true; }

    /// Returns and empties all that is held, due or not.
    std::vector<std::uint8_t> take();

    std::size_t size() const { return held_.size(); }
    /// Bytes that are still to come before a batch is whole.
    std::size_t missing() const;

 private:
    bool enough() const;
    bool flooded() const;

    std::int64_t quietUs_;
    int threshold_ = 0;
    std::int64_t lastArrivalUs_ = 0;
    bool told_ = false;
    std::vector<std::uint8_t> held_;
};

}  // namespace zentaq
