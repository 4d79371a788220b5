// Where the milliseconds of a live frame go: the unit, the wire, the adapter and this program.
// Reads along on the port; knows no protocol beyond what a frame's command looks like.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/line_watch.h"

namespace zentaq {

/// Shares of one frame, averaged over the last ones, in milliseconds.
struct FrameShares {
    double unitMs = 0;     ///< the unit thinks
    double wireMs = 0;     ///< request and reply at 38400 baud
    double adapterMs = 0;  ///< bytes that had passed the wire and were held back
    double programMs = 0;  ///< from the last byte to the next request, this program's own
    double framesPerSecond = 0;
};

class FrameTiming : public LineWatch {
 public:
    /// Frames that enter the averages.
    static constexpr std::size_t lastFrames = 50;
    /// Shares older than this are not told any more, in microseconds.
    static constexpr std::int64_t tooOldUs = 1'000'000;

    void written(std::string_view bytes, std::int64_t nowUs) override;
    void arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) override;
    void delivered(std::size_t bytes, std::int64_t nowUs) override;
    void closed(std::int64_t) override { forget(); }
    void lost(const PortInfo&, std::int64_t) override { forget(); }

    /// Nothing before the first whole frame and when none came for a second.
    std::optional<FrameShares> shares(std::int64_t nowUs) const;

 private:
    /// A frame under way. It is whole when the next request is written.
    struct Frame {
        std::int64_t writtenUs = 0;
        std::size_t requestBytes = 0;
        std::size_t replyBytes = 0;
        double replyBeganUs = 0;  ///< the latest moment at which its first byte can have entered the wire
        std::int64_t lastLumpUs = 0;
        bool delivered = false;
        bool alone = true;  ///< no other command came before the next request
    };
    struct Measured {
        double totalUs = 0;
        bool alone = true;
        double unitUs = 0;
        double wireUs = 0;
        double adapterUs = 0;
    };

    static Measured measured(const Frame& frame, std::int64_t nextRequestUs);
    void finish(std::int64_t nowUs);
    void forget();

    std::optional<Frame> frame_;
    std::deque<Measured> measured_;
    std::int64_t lastRequestUs_ = 0;
};

/// "58 frames/s: unit 0.4, wire 17.2, adapter 0.0, program 1.3 ms"; "" for nothing.
std::string frameTimesText(const std::optional<FrameShares>& shares);

}  // namespace zentaq
