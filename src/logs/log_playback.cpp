#include "logs/log_playback.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

std::int32_t LogPlayback::Count_Frames() {
    LastFrame = hasRows() ? rows_.frame(static_cast<std::size_t>(last())) : 0;
    return LastFrame;
}

void LogPlayback::begin() {
    position_ = 0;
    FrameNumber = 0;
    CurrentRow = 0;
    Count_Frames();
}

void LogPlayback::rewind() {
    position_ = 0;
    FrameNumber = 0;
    CurrentRow = 0;
}

void LogPlayback::toFirst() {
    if (!hasRows()) return;
    position_ = 0;
    FrameNumber = CurrentRow = frameHere();
}

void LogPlayback::toLast() {
    if (!hasRows()) return;
    position_ = last();
    FrameNumber = CurrentRow = frameHere();
}

StepStatus LogPlayback::FrameUpdate(int step, float fraction) {
    if (!hasRows()) return StepStatus::NoRows;
    position_ = std::min(position_, last());
    if (step < 0) return back();
    if (step > 0) return forward();
    return jump(fraction);
}

StepStatus LogPlayback::back() {
    if (CurrentRow == 0) return StepStatus::AtBeginning;
    --FrameNumber;
    // Kept: in front of the first row there is one place more, where the count of rows is 0.
    if (position_ >= 0 && FrameNumber < frameHere()) --position_;
    countRow();
    return StepStatus::Moved;
}

StepStatus LogPlayback::forward() {
    // Kept: the count of rows is held against the last frame. The last row ends a log that has fewer rows
    // than frames, where the two never meet.
    if (CurrentRow == LastFrame || position_ == last()) return StepStatus::AtEnd;
    ++position_;
    ++FrameNumber;
    if (FrameNumber < frameHere()) --position_;
    countRow();
    return StepStatus::Moved;
}

StepStatus LogPlayback::jump(float fraction) {
    position_ = 0;
    if (fraction >= 1) {
        position_ = last();
    } else if (fraction > 0) {
        // Kept: a share of the frames, counted in rows.
        const auto rows = static_cast<std::int64_t>(
            std::floor(static_cast<double>(fraction) * static_cast<double>(LastFrame)));
        position_ = std::clamp<std::int64_t>(rows, 0, last());
    }
    FrameNumber = frameHere();
    countRow();
    return StepStatus::Moved;
}

}  // namespace zentaq
