#include "logs/log_columns.h"

#include <algorithm>

#include "logs/log_channel.h"

namespace zentaq {

namespace {

void widen(ValueReach& reach, float value) {
    reach.least = std::min(reach.least, value);
    reach.most = std::max(reach.most, value);
}

}  // namespace

void LogColumns::begin(const DatalogHead& head, std::size_t rowsExpected) {
    head_ = head;
    ++generation_;
    secondsPerStep_ = head.format == DatalogFormat::Oldest ? 1 : secondsPerFrame;
    frames_.clear();
    frames_.reserve(rowsExpected);
    columns_.assign(head.columns.size(), {});
    blocks_.assign(head.columns.size(), {});
    wide_.assign(head.columns.size(), {});
    for (auto& column : columns_) column.reserve(rowsExpected);
    rising_ = true;
}

void LogColumns::append(std::span<const double> values) {
    const std::size_t row = frames_.size();
    const double frame = values.empty() ? 0 : values.front();
    rising_ = rising_ && (row == 0 || frame >= frames_.back());
    frames_.push_back(frame);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        const auto value = static_cast<float>(values[i]);
        columns_[i].push_back(value);
        if (row % blockRows == 0) {
            blocks_[i].push_back({value, value});
        } else {
            widen(blocks_[i].back(), value);
        }
        if (row % (blockRows * blocksInBlock) == 0) {
            wide_[i].push_back({value, value});
        } else {
            widen(wide_[i].back(), value);
        }
    }
}

int LogColumns::column(std::string_view name) const {
    const auto found = std::ranges::find(head_.columns, name);
    if (found != head_.columns.end()) return static_cast<int>(found - head_.columns.begin());
    return columnOfChannel(head_.columns, name);
}

std::size_t LogColumns::rowAt(double seconds) const {
    const double frame = seconds / secondsPerStep_;
    if (!rising_) {
        // Times that go back have no order to search by: the first row that is later tells.
        const auto later = std::ranges::find_if(frames_, [&](double one) { return one > frame; });
        return later == frames_.begin() ? 0 : static_cast<std::size_t>(later - frames_.begin()) - 1;
    }
    // A time that was a frame before it became seconds must find its row.
    constexpr double hair = 1e-6;
    const auto later = std::ranges::upper_bound(frames_, frame + hair);
    return later == frames_.begin() ? 0 : static_cast<std::size_t>(later - frames_.begin()) - 1;
}

ValueReach LogColumns::reach(int column, std::size_t first, std::size_t last) const {
    const auto at = static_cast<std::size_t>(column);
    last = std::min(last, rows());
    if (first >= last) return {};
    const std::vector<float>& values = columns_.at(at);
    constexpr std::size_t wideRows = blockRows * blocksInBlock;
    // Values by hand and not by reference: a plot asks for some ten thousand stretches a picture.
    float least = values[first];
    float most = least;
    const auto take = [&](float low, float high) {
        least = low < least ? low : least;
        most = high > most ? high : most;
    };
    std::size_t row = first;
    while (row < last) {
        if (row % blockRows != 0 || row + blockRows > last) {
            take(values[row], values[row]);
            ++row;
        } else if (row % wideRows != 0 || row + wideRows > last) {
            const ValueReach& block = blocks_[at][row / blockRows];
            take(block.least, block.most);
            row += blockRows;
        } else {
            const ValueReach& block = wide_[at][row / wideRows];
            take(block.least, block.most);
            row += wideRows;
        }
    }
    return {least, most};
}

StretchFigures LogColumns::figures(int column, std::size_t first, std::size_t last) const {
    last = std::min(last, rows());
    if (first >= last) return {};
    const ValueReach reached = reach(column, first, last);
    double sum = 0;
    const auto all = values(column);
    for (std::size_t row = first; row < last; ++row) sum += static_cast<double>(all[row]);
    return {static_cast<double>(reached.least), static_cast<double>(reached.most),
            sum / static_cast<double>(last - first), last - first};
}

}  // namespace zentaq
