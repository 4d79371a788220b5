// Where a point of a surface stands on the picture: an oblique drawing with the rows going back to the left,
// the columns to the right and the values upward. Lengths are in the drawing's own units, y downward; a
// window scales them to its size.
#pragma once

namespace zentaq {

struct SurfacePoint {
    double x = 0;
    double y = 0;
};

class SurfaceProjection {
 public:
    static constexpr double acrossLength = 5650;  ///< of all columns
    static constexpr double upLength = 5550;      ///< of the whole span of values
    static constexpr double backLength = 3550;    ///< of all rows, before it is foreshortened

    /// Rows and columns of the table, 2 at least.
    SurfaceProjection(int rows, int columns);

    /// Row and column from 1, the lowest at the front and the left; they may lie between headers. `height` is
    /// the share of the span, 0 to 1.
    SurfacePoint at(double row, double column, double height) const;
    double width() const;
    double heightOfAll() const;

 private:
    double across_;  ///< one column to the right
    double left_;    ///< one row back
    double up_;      ///< one row back
    int rows_;
};

}  // namespace zentaq
