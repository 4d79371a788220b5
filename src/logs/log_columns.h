// A datalog in memory, a column a channel. What a stretch of rows reaches is answered from blocks that hold
// their lowest and highest value, so that a plot of any length costs what its pixels cost and no spike is
// lost.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "live/datalog_reader.h"

namespace zentaq {

inline constexpr double secondsPerFrame = 0.02;

struct ValueReach {
    float least = 0;
    float most = 0;

    bool operator==(const ValueReach&) const = default;
};

/// What a channel does between two rows.
struct StretchFigures {
    double least = 0;
    double most = 0;
    double mean = 0;
    std::size_t rows = 0;  ///< 0: nothing was there
};

class LogColumns {
 public:
    /// Empties it for the rows of a log. `rowsExpected` is a guess.
    void begin(const DatalogHead& head, std::size_t rowsExpected = 0);
    /// Goes up with each begin(): whoever goes through the rows over a longer time tells by it that they are
    /// those of another log.
    int generation() const { return generation_; }
    /// One value for each column.
    void append(std::span<const double> values);

    const DatalogHead& head() const { return head_; }
    const std::vector<std::string>& names() const { return head_.columns; }
    std::size_t rows() const { return frames_.size(); }
    bool empty() const { return frames_.empty(); }
    /// By either of its names; -1 for one that the log has not.
    int column(std::string_view name) const;
    std::span<const float> values(int column) const { return columns_.at(static_cast<std::size_t>(column)); }
    float value(int column, std::size_t row) const { return values(column)[row]; }

    /// As the first column holds it.
    double frame(std::size_t row) const { return frames_.at(row); }
    /// Since the log's own zero.
    double seconds(std::size_t row) const { return frame(row) * secondsPerStep_; }
    double lastSeconds() const { return empty() ? 0 : seconds(rows() - 1); }
    /// The last row at or before a time; the first one where there is none. There is at least one row.
    std::size_t rowAt(double seconds) const;

    /// Of the rows from `first` to before `last`; both 0 where there are none.
    ValueReach reach(int column, std::size_t first, std::size_t last) const;
    StretchFigures figures(int column, std::size_t first, std::size_t last) const;

 private:
    static constexpr std::size_t blockRows = 64;
    static constexpr std::size_t blocksInBlock = 16;

    DatalogHead head_;
    int generation_ = 0;
    double secondsPerStep_ = secondsPerFrame;
    std::vector<double> frames_;
    std::vector<std::vector<float>> columns_;
    std::vector<std::vector<ValueReach>> blocks_;  ///< by column
    std::vector<std::vector<ValueReach>> wide_;    ///< by column: blocks of blocks
    bool rising_ = true;                           ///< times never go back
};

}  // namespace zentaq
