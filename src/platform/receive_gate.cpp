#include "platform/receive_gate.h"

#include <utility>

namespace zentaq {

void ReceiveGate::threshold(int bytes) {
    if (bytes != threshold_) told_ = false;
    threshold_ = bytes;
}

void ReceiveGate::received(std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    if (bytes.empty()) return;
    held_.insert(held_.end(), bytes.begin(), bytes.end());
    if (held_.size() > mostHeld) held_.erase(held_.begin(), held_.end() - mostHeld);
    lastArrivalUs_ = nowUs;
    told_ = false;
}

bool ReceiveGate::due(std::int64_t nowUs) const {
    const auto at = nextDueUs();
    return at && nowUs >= *at;
}

std::optional<std::int64_t> ReceiveGate::nextDueUs() const {
    if (told_ || !enough()) return std::nullopt;
    return flooded() ? lastArrivalUs_ : lastArrivalUs_ + quietUs_;
}

std::vector<std::uint8_t> ReceiveGate::take() {
    told_ = false;
    return std::exchange(held_, {});
}

std::size_t ReceiveGate::missing() const {
    if (threshold_ <= 0 || enough()) return 0;
    return static_cast<std::size_t>(threshold_) - held_.size();
}

bool ReceiveGate::enough() const {
    return threshold_ > 0 && held_.size() >= static_cast<std::size_t>(threshold_);
}

bool ReceiveGate::flooded() const {
    return held_.size() >= static_cast<std::size_t>(threshold_) + floodBytes;
}

}  // namespace zentaq
