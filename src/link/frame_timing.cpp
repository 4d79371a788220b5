#include "link/frame_timing.h"

#include <algorithm>
#include <utility>

#include "base/number_text.h"

namespace zentaq {

namespace {

/// Ten bits at 38400 baud.
constexpr double byteUs = 10 * 1e6 / 38400;
constexpr double usPerMs = 1000;
constexpr double usPerSecond = 1e6;

bool isFrameRequest(std::string_view bytes) {
    return bytes == "F" || bytes == "W";
}

double wireUs(std::size_t bytes) {
    return static_cast<double>(bytes) * byteUs;
}

std::string tenths(double ms) {
    return formatNumber(ms, "0.0");
}

}  // namespace

void FrameTiming::written(std::string_view bytes, std::int64_t nowUs) {
    if (!isFrameRequest(bytes)) {
        // What the program does meanwhile for others is no share of this frame; one that was never answered
        // must not take the answer of another command for its own.
        if (frame_ && !frame_->delivered) frame_.reset();
        if (frame_) frame_->alone = false;
        return;
    }
    finish(nowUs);
    frame_ = Frame{.writtenUs = nowUs, .requestBytes = bytes.size()};
    lastRequestUs_ = nowUs;
}

void FrameTiming::arrived(std::span<const std::uint8_t> bytes, std::int64_t nowUs) {
    if (!frame_ || frame_->delivered || bytes.empty()) return;
    const bool first = frame_->replyBytes == 0;
    frame_->replyBytes += bytes.size();
    // All bytes that are here have passed the wire one behind the other, so the first of them left no later.
    const double began = static_cast<double>(nowUs) - wireUs(frame_->replyBytes);
    frame_->replyBeganUs = first ? began : std::min(frame_->replyBeganUs, began);
    frame_->lastLumpUs = nowUs;
}

void FrameTiming::delivered(std::size_t, std::int64_t) {
    if (frame_ && frame_->replyBytes > 0) frame_->delivered = true;
}

FrameTiming::Measured FrameTiming::measured(const Frame& frame, std::int64_t nextRequestUs) {
    const double asked = static_cast<double>(frame.writtenUs) + wireUs(frame.requestBytes);
    const double ended = frame.replyBeganUs + wireUs(frame.replyBytes);
    return {.totalUs = static_cast<double>(nextRequestUs - frame.writtenUs),
            .alone = frame.alone,
            .unitUs = std::max(0.0, frame.replyBeganUs - asked),
            .wireUs = wireUs(frame.requestBytes + frame.replyBytes),
            .adapterUs = static_cast<double>(frame.lastLumpUs) - ended};
}

void FrameTiming::finish(std::int64_t nowUs) {
    const auto frame = std::exchange(frame_, std::nullopt);
    if (!frame || !frame->delivered) return;
    // Frames from before a pause say nothing about now.
    if (nowUs - frame->writtenUs > tooOldUs) return measured_.clear();
    measured_.push_back(measured(*frame, nowUs));
    if (measured_.size() > lastFrames) measured_.pop_front();
}

void FrameTiming::forget() {
    frame_.reset();
    measured_.clear();
}

std::optional<FrameShares> FrameTiming::shares(std::int64_t nowUs) const {
    if (nowUs - lastRequestUs_ > tooOldUs) return std::nullopt;
    double allUs = 0;
    Measured sum;
    double counted = 0;
    for (const Measured& frame : measured_) {
        allUs += frame.totalUs;
        if (!frame.alone) continue;
        ++counted;
        sum.totalUs += frame.totalUs;
        sum.unitUs += frame.unitUs;
        sum.wireUs += frame.wireUs;
        sum.adapterUs += frame.adapterUs;
    }
    if (counted == 0 || allUs <= 0) return std::nullopt;
    const double perFrame = counted * usPerMs;
    const double rest = sum.totalUs - sum.unitUs - sum.wireUs - sum.adapterUs;
    return FrameShares{.unitMs = sum.unitUs / perFrame,
                       .wireMs = sum.wireUs / perFrame,
                       .adapterMs = sum.adapterUs / perFrame,
                       // A simulated wire may be faster than a real one.
                       .programMs = std::max(0.0, rest) / perFrame,
                       .framesPerSecond = static_cast<double>(measured_.size()) * usPerSecond / allUs};
}

std::string frameTimesText(const std::optional<FrameShares>& shares) {
    if (!shares) return {};
    return formatNumber(shares->framesPerSecond, "0") + " frames/s: unit " + tenths(shares->unitMs) +
           ", wire " + tenths(shares->wireMs) + ", adapter " + tenths(shares->adapterMs) + ", program " +
           tenths(shares->programMs) + " ms";
}

}  // namespace zentaq
