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

}  // namespace

void plotSpans(const std::vector<PlotPoint>& points, const PlotGrid& grid, std::vector<PlotSpan>& spans) {
    spans.clear();
    bool joins = false;
    PlotSpan now;
    PlotSpan before;
    const auto close = [&](bool draws) {
        if (!draws || now.x < grid.firstX || now.x > grid.lastX) return;
        PlotSpan span{now.x, now.top, std::max(now.bottom, now.top + thickness - 1)};
        if (span.bottom < grid.top || span.top > grid.bottom) return;
        span.top = std::max(span.top, grid.top);
        span.bottom = std::min(span.bottom, grid.bottom);
        spans.push_back(span);
    };
    bool open = false;
    for (const PlotPoint& point : points) {
        const auto value = static_cast<double>(point.value);
        if (!std::isfinite(value)) {
            close(open);
            open = joins = false;
            continue;
        }
        const int x = pixel(grid.left + point.seconds * grid.perSecond);
        const int y = pixel(grid.foot + value * grid.perValue);
        if (open && now.x == x) {
            now.top = std::min(now.top, y);
            now.bottom = std::max(now.bottom, y);
            continue;
        }
        close(open);
        joins = open && x - now.x <= 2;
        before = now;
        now = {x, y, y};
        open = true;
        if (!joins) continue;
        // Towards the column before, as far as there is a gap between the two.
        if (y > before.bottom) now.top = before.bottom + 1;
        if (y < before.top) now.bottom = before.top - 1;
    }
    close(open);
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
