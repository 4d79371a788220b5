// A dense line on the grid of the screen: an upright stroke a column of pixels. What other strokes hide is
// not drawn, so that many lines over one another cost little more than the pixels that are seen.
#pragma once

#include <span>
#include <vector>

#include "logs/plot_lines.h"

namespace zentaq {

/// Both ends belong to it; `top` is not below `bottom`.
struct PlotSpan {
    int x = 0;
    int top = 0;
    int bottom = 0;

    bool operator==(const PlotSpan&) const = default;
};

/// Where seconds and values stand on the screen, and the pixels of the pane, ends included.
struct PlotGrid {
    double left = 0;  ///< of second 0
    double perSecond = 1;
    double foot = 0;  ///< of value 0
    double perValue = -1;
    int firstX = 0;
    int lastX = 0;
    int top = 0;
    int bottom = 0;
};

/// Strokes that touch from column to column, cut at the pane; `spans` is emptied first. The points come in
/// the order of time. A value that is no number parts the line.
void plotSpans(const std::vector<PlotPoint>& points, const PlotGrid& grid, std::vector<PlotSpan>& spans);

/// Lines are shown to it from the front to the back.
class PlotCover {
 public:
    /// Nothing is hidden on this grid yet.
    void begin(const PlotGrid& grid);
    /// Leaves of the strokes what those before do not hide, and hides behind it what comes later.
    void takeVisible(std::vector<PlotSpan>& spans);

 private:
    struct Covered {
        int top = 0;
        int bottom = 0;
    };
    void takeVisible(const PlotSpan& span);
    void cover(std::vector<Covered>& column, const PlotSpan& span);

    int firstX_ = 0;
    std::vector<std::vector<Covered>> columns_;  ///< by x: parts that do not touch, from the top
    std::vector<PlotSpan> seen_;
};

}  // namespace zentaq
