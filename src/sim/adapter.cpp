#include "sim/adapter.h"

#include <iterator>

namespace zentaq::sim {

Adapter::Adapter(const AdapterOptions& options, Moment start) : options_(options), start_(start) {}

std::optional<Adapter::Bytes> Adapter::written(Bytes bytes) const {
    if (options_.vanishWrites && bytes.size() > *options_.vanishWrites) return std::nullopt;
    if (options_.dropWrites && bytes.size() > *options_.dropWrites) bytes.resize(*options_.dropWrites);
    return bytes;
}

void Adapter::receive(Moment now, const Bytes& bytes) {
    if (bytes.empty()) return;
    waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
    if (!due_) due_ = nextFiring(now);
}

Adapter::Bytes Adapter::takeForProgram(Moment now) {
    const bool fired = due_ && *due_ <= now;
    const std::size_t full = waiting_.size() / lumpBytes * lumpBytes;
    const auto end = std::next(waiting_.begin(), static_cast<std::ptrdiff_t>(fired ? waiting_.size() : full));
    Bytes taken(waiting_.begin(), end);
    waiting_.erase(waiting_.begin(), end);
    if (waiting_.empty()) due_.reset();
    return taken;
}

/// The first firing of the timer that is not before `after`.
Moment Adapter::nextFiring(Moment after) const {
    const auto period = std::chrono::nanoseconds(options_.burst);
    if (period.count() == 0) return after;
    const auto passed = after - start_;
    return start_ + (passed + period - std::chrono::nanoseconds(1)) / period * period;
}

}  // namespace zentaq::sim
