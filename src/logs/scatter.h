// Two channels of a log against each other, in places as fine as a picture shows them: how many rows fell
// into each, the mean of a third channel, and the first row of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zentaq {

/// From `low` to `high`, both in it.
struct ScatterRange {
    double low = 0;
    double high = 1;

    bool operator==(const ScatterRange&) const = default;
};

struct ScatterPlace {
    std::int64_t count = 0;
    double sum = 0;
    std::size_t firstRow = 0;

    double mean() const { return sum / static_cast<double>(count); }
};

class LogScatter {
 public:
    LogScatter() = default;
    /// `across` by `up` places, each one at least.
    LogScatter(const ScatterRange& x, const ScatterRange& y, int across, int up);

    /// What lies outside, or is no number, is left out.
    void add(std::size_t row, double x, double y, double third);
    int across() const { return across_; }
    int up() const { return up_; }
    const ScatterRange& x() const { return x_; }
    const ScatterRange& y() const { return y_; }
    /// Places count from the left and from the foot.
    const ScatterPlace& at(int across, int up) const {
        return places_.at(static_cast<std::size_t>(up) * static_cast<std::size_t>(across_) +
                          static_cast<std::size_t>(across));
    }
    /// The place with rows that is nearest to a point of the picture, within `reach` places in each
    /// direction.
    std::optional<ScatterPlace> nearest(int across, int up, int reach) const;
    /// Rows that are in the picture.
    std::int64_t count() const { return count_; }

 private:
    ScatterRange x_;
    ScatterRange y_;
    int across_ = 0;
    int up_ = 0;
    std::vector<ScatterPlace> places_;
    std::int64_t count_ = 0;
};

/// The range when one zooms by a factor (0.5: half as much is shown) around a value that stays where it is.
ScatterRange zoomed(const ScatterRange& range, double factor, double around);

}  // namespace zentaq
