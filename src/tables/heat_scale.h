// The heat scale of a table: a color for each value between the lowest and the highest that are shown, and
// the values of the cells that it spans.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace zentaq {

/// Dark blue at 0, gray in the middle, yellow at 1; for no number white. As cells have their colors: red +
/// 256
/// * green + 65536 * blue, with a mark above them by which the night knows the scale.
std::int32_t heatColour(double share);
bool isHeatColour(std::int32_t colour);

/// The values of a grid's cells, counted from 1, and the span from the lowest to the highest of them.
class HeatMap {
 public:
    /// Without any value.
    void resize(int rows, int columns);
    void put(int row, int column, float value);
    /// Finds the span; true when it has moved.
    bool measure();
    /// By the span as it was found last: the middle where all values are equal, white for a cell without one.
    std::int32_t colour(int row, int column) const;

 private:
    std::optional<std::size_t> placeOf(int row, int column) const;

    int rows_ = 0;
    int columns_ = 0;
    std::vector<float> values_;
    double lowest_ = 0;
    double highest_ = 0;
};

}  // namespace zentaq
