#include "logs/plot_spans.h"

#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

/// A pixel far outside a pane is as good as one that is farther away.
constexpr double farAway = 1e6;

int pixel(double place) {
    return static_cast<int>(std::floor(std::clamp(place, -farAway, farAway)));
}

/// A level line is two pixels thick, as is seen at arm's length.
constexpr int thickness = 2;

/// Makes strokes of the points that come to it.
class StrokeMaker {
 public:
    StrokeMaker(const PlotGrid& grid, std::vector<PlotSpan>& spans) : grid_(grid), spans_(spans) {}

    void point(int x, int y) {
        if (open_ && now_.x == x) {
            now_.top = std::min(now_.top, y);
            now_.bottom = std::max(now_.bottom, y);
        } else {
            if (open_) bridge(x, y);
            next(x, y);
        }
        lastY_ = y;
    }
    void end() {
        if (open_) draw();
        open_ = false;
    }

 private:
    /// The columns between the one in hand and `x` that are in the pane.
    void bridge(int x, int y) {
        const int from = now_.x;
        const int fromY = lastY_;
        const double slope = static_cast<double>(y - fromY) / (x - from);
        for (int i = std::max(from, grid_.firstX - 1) + 1; i < std::min(x, grid_.lastX + 1); ++i)
            next(i, fromY + static_cast<int>(std::floor(slope * (i - from))));
    }
    void next(int x, int y) {
        const PlotSpan before = now_;
        if (open_) draw();
        now_ = {x, y, y};
        // Towards the column before, as far as there is a gap between the two.
        if (open_ && y > before.bottom) now_.top = before.bottom + 1;
        if (open_ && y < before.top) now_.bottom = before.top - 1;
        open_ = true;
    }
    void draw() {
        if (now_.x < grid_.firstX || now_.x > grid_.lastX) return;
        const int bottom = std::max(now_.bottom, now_.top + thickness - 1);
        if (bottom < grid_.top || now_.top > grid_.bottom) return;
        spans_.push_back({now_.x, std::max(now_.top, grid_.top), std::min(bottom, grid_.bottom)});
    }

    const PlotGrid& grid_;
    std::vector<PlotSpan>& spans_;
    PlotSpan now_;
    int lastY_ = 0;
    bool open_ = false;
};

}  // namespace

void plotSpans(const std::vector<PlotPoint>& points, const PlotGrid& grid, std::vector<PlotSpan>& spans) {
    spans.clear();
    StrokeMaker strokes(grid, spans);
    for (const PlotPoint& point : points) {
        const auto value = static_cast<double>(point.value);
        if (!std::isfinite(value)) {
            strokes.end();
            continue;
        }
        strokes.point(pixel(grid.left + point.seconds * grid.perSecond),
                      pixel(grid.foot + value * grid.perValue));
    }
    strokes.end();
}

void PlotCover::begin(const PlotGrid& grid) {
    firstX_ = grid.firstX;
    columns_.resize(static_cast<std::size_t>(std::max(grid.lastX - grid.firstX + 1, 0)));
    // They keep their room for the next picture.
    for (auto& column : columns_) column.clear();
}

void PlotCover::takeVisible(std::vector<PlotSpan>& spans) {
    seen_.clear();
    for (const PlotSpan& span : spans) takeVisible(span);
    spans.swap(seen_);
}

void PlotCover::takeVisible(const PlotSpan& span) {
    std::vector<Covered>& column = columns_.at(static_cast<std::size_t>(span.x - firstX_));
    int top = span.top;
    const std::size_t before = seen_.size();
    for (const Covered& part : column) {
        if (part.bottom < top) continue;
        if (part.top > span.bottom) break;
        if (part.top > top) seen_.push_back({span.x, top, part.top - 1});
        top = part.bottom + 1;
    }
    if (top <= span.bottom) seen_.push_back({span.x, top, span.bottom});
    if (seen_.size() > before) cover(column, span);
}

void PlotCover::cover(std::vector<Covered>& column, const PlotSpan& span) {
    Covered whole{span.top, span.bottom};
    const auto touches = [&](const Covered& part) {
        return part.top <= whole.bottom + 1 && part.bottom >= whole.top - 1;
    };
    const auto first = std::ranges::find_if(column, touches);
    auto last = first;
    for (; last != column.end() && touches(*last); ++last) {
        whole.top = std::min(whole.top, last->top);
        whole.bottom = std::max(whole.bottom, last->bottom);
    }
    if (first != last) {
        *first = whole;
        column.erase(first + 1, last);
        return;
    }
    column.insert(std::ranges::find_if(column, [&](const Covered& part) { return part.top > whole.top; }),
                  whole);
}

}  // namespace zentaq
