#include "qt/wrap_layout.h"

#include <algorithm>

namespace zentaq {

WrapLayout::~WrapLayout() {
    while (!items_.isEmpty()) delete items_.takeLast();
}

QLayoutItem* WrapLayout::takeAt(int index) {
    return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

std::vector<QList<QLayoutItem*>> WrapLayout::linesIn(int width) const {
    std::vector<QList<QLayoutItem*>> lines;
    int used = 0;
    for (QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        const int wide = item->sizeHint().width();
        if (lines.empty() || used + spacing() + wide > width) {
            lines.emplace_back();
            used = wide;
        } else {
            used += spacing() + wide;
        }
        lines.back().append(item);
    }
    return lines;
}

int WrapLayout::heightOf(const QList<QLayoutItem*>& line) {
    int height = 0;
    for (const QLayoutItem* item : line) height = std::max(height, item->sizeHint().height());
    return height;
}

int WrapLayout::heightForWidth(int width) const {
    const QMargins around = contentsMargins();
    int height = around.top() + around.bottom();
    const auto lines = linesIn(width - around.left() - around.right());
    for (const auto& line : lines) height += heightOf(line);
    return height + spacing() * std::max(0, static_cast<int>(lines.size()) - 1);
}

std::vector<qsizetype> WrapLayout::lineCounts(int width) const {
    const QMargins around = contentsMargins();
    std::vector<qsizetype> counts;
    for (const auto& line : linesIn(width - around.left() - around.right())) counts.push_back(line.size());
    return counts;
}

QSize WrapLayout::sizeHint() const {
    const QMargins around = contentsMargins();
    int width = 0;
    int height = 0;
    for (const QLayoutItem* item : items_) {
        if (item->isEmpty()) continue;
        width += item->sizeHint().width() + (width == 0 ? 0 : spacing());
        height = std::max(height, item->sizeHint().height());
    }
    return {width + around.left() + around.right(), height + around.top() + around.bottom()};
}

QSize WrapLayout::minimumSize() const {
    const QMargins around = contentsMargins();
    QSize least;
    for (const QLayoutItem* item : items_) {
        if (!item->isEmpty()) least = least.expandedTo(item->sizeHint());
    }
    return least + QSize(around.left() + around.right(), around.top() + around.bottom());
}

void WrapLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const QRect inside = rect.marginsRemoved(contentsMargins());
    int y = inside.top();
    for (const auto& line : linesIn(inside.width())) {
        const int high = heightOf(line);
        int x = inside.left();
        for (QLayoutItem* item : line) {
            const QSize size = item->sizeHint();
            const bool last = item == items_.last();
            const int left = last ? std::max(x, inside.right() + 1 - size.width()) : x;
            const int wide = std::min(size.width(), inside.width());
            item->setGeometry({left, y, wide, high});
            x = left + size.width() + spacing();
        }
        y += high + spacing();
    }
}

}  // namespace zentaq
