// A page that asks for all the room of its controls and makes do with less: it scrolls.
#pragma once

#include <QBoxLayout>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>

namespace zentaq {

class PageArea : public QScrollArea {
 public:
    explicit PageArea(QWidget* parent) : QScrollArea(parent) {
        setFrameShape(NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
    }
    /// The page on the colour of what stands around it.
    void setPage(QWidget* page) {
        setWidget(page);
        page->setAutoFillBackground(false);
        viewport()->setAutoFillBackground(false);
    }
    QSize sizeHint() const override { return widget() == nullptr ? QSize() : widget()->sizeHint(); }
};

/// The parts of `columns` stand beside each other where a page of this width has room for them, else one
/// below the other. False when they do so already.
inline bool foldColumns(QBoxLayout& columns, int width) {
    const QMargins margins = columns.contentsMargins();
    int wanted = margins.left() + margins.right() + columns.spacing() * std::max(columns.count() - 1, 0);
    for (int i = 0; i < columns.count(); ++i) wanted += columns.itemAt(i)->minimumSize().width();
    const auto direction = wanted <= width ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (direction == columns.direction()) return false;
    columns.setDirection(direction);
    return true;
}

}  // namespace zentaq
