// Lowest, mean and highest value of numbers that come one by one.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace zentaq {

struct RunningFigures {
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
    double sum = 0;
    std::int64_t count = 0;

    void add(double value) {
        least = std::min(least, value);
        most = std::max(most, value);
        sum += value;
        ++count;
    }
    /// Of at least one.
    double mean() const { return sum / static_cast<double>(count); }
};

}  // namespace zentaq
