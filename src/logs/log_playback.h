// The arithmetic of playback: a counter of frames at 50 a second and a row, which move apart where the rows
// of a log lie further from one another than a frame.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace zentaq {

/// How a step ended.
enum class StepStatus : std::int16_t { NoRows = -1, Moved = 0, AtEnd = 1, AtBeginning = 2 };

class LogPlayback {
 public:
    /// Rows of a log: how many there are by now, and the frame that each holds.
    struct Rows {
        std::function<std::size_t()> count;
        std::function<std::int32_t(std::size_t row)> frame;
    };
    explicit LogPlayback(Rows rows) : rows_(std::move(rows)) {}

    std::int32_t FrameNumber = 0;  ///< on show, in frames of 0.02 s
    std::int32_t LastFrame = 0;    ///< that of the last row
    std::int32_t CurrentRow = 0;   ///< the place of the row, counted from 1; or the frame of a jump to an end

    bool hasRows() const { return rows_.count() > 0; }
    /// The row on show; in front of the first one that one is shown. There is at least one.
    std::size_t row() const { return position_ < 0 ? 0 : static_cast<std::size_t>(position_); }

    /// A log is there, or more of it: what its last row holds.
    std::int32_t Count_Frames();
    /// The first row, and nothing counted yet.
    void begin();

    /// -1 back, 1 forward, 0 to a share of the log from 0 to 1.
    StepStatus FrameUpdate(int step, float fraction = 0);

    /// To the first row, or to the last one. Kept: the row is counted by its frame here.
    void toFirst();
    void toLast();
    /// Back to the start, all counters 0.
    void rewind();

 private:
    std::int32_t frameHere() const { return rows_.frame(row()); }
    std::int64_t last() const { return static_cast<std::int64_t>(rows_.count()) - 1; }
    StepStatus back();
    StepStatus forward();
    StepStatus jump(float fraction);
    void countRow() { CurrentRow = static_cast<std::int32_t>(position_ + 1); }

    Rows rows_;
    std::int64_t position_ = 0;  ///< from 0; -1 in front of the first row
};

}  // namespace zentaq
