#include "windows/frm_config_console.h"

#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"

namespace zentaq {

ConsoleView::ConsoleView(const QString& name, const QString& meaning, const std::deque<std::string>& lines,
                         QWidget* parent)
    : QListView(parent), model_(lines) {
    named(this, name, meaning);
    setToolTip(meaning);
    setFont(consoleFont());
    setUniformItemSizes(true);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerItem);
    setTabKeyNavigation(false);
    setTextElideMode(Qt::ElideNone);
    // Lines are padded with blanks to their full width; a bar to reach them would only cost a line of height.
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setModel(&model_);
}

void ConsoleView::sync() {
    if (!model_.sync() || model_.rowCount() == 0) return;
    setCurrentIndex(model_.index(model_.rowCount() - 1));
    scrollToBottom();
}

// ---- Places

int ConsoleView::lineHeight() const {
    if (lineHeight_ > 0) return lineHeight_;
    const int text = std::max(1, fontMetrics().height());
    if (model_.rowCount() == 0) return text;
    lineHeight_ = std::max(text, sizeHintForRow(0));
    return lineHeight_;
}

void ConsoleView::changeEvent(QEvent* event) {
    QListView::changeEvent(event);
    if (event->type() != QEvent::FontChange && event->type() != QEvent::StyleChange) return;
    lineHeight_ = 0;
    updateGeometries();
}

int ConsoleView::linesInView() const {
    return std::max(1, viewport()->height() / lineHeight());
}

int ConsoleView::rowAt(int y) const {
    const int height = lineHeight();
    return verticalScrollBar()->value() + (y >= 0 ? y / height : -1);
}

int ConsoleView::verticalOffset() const {
    return verticalScrollBar()->value() * lineHeight();
}

QRect ConsoleView::visualRect(const QModelIndex& index) const {
    if (!index.isValid()) return {};
    const int height = lineHeight();
    return {0, (index.row() - verticalScrollBar()->value()) * height, viewport()->width(), height};
}

QModelIndex ConsoleView::indexAt(const QPoint& point) const {
    if (!viewport()->rect().contains(point)) return {};
    const int row = rowAt(point.y());
    return row >= 0 && row < model_.rowCount() ? model_.index(row) : QModelIndex();
}

void ConsoleView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    if (!index.isValid()) return;
    const int row = index.row();
    const int above = verticalScrollBar()->value();
    const int lines = linesInView();
    if (hint == PositionAtTop || (hint == EnsureVisible && row < above)) {
        verticalScrollBar()->setValue(row);
    } else if (hint == PositionAtBottom || (hint == EnsureVisible && row >= above + lines)) {
        verticalScrollBar()->setValue(row - lines + 1);
    } else if (hint == PositionAtCenter) {
        verticalScrollBar()->setValue(row - lines / 2);
    }
}

void ConsoleView::doItemsLayout() {
    QAbstractItemView::doItemsLayout();
}

void ConsoleView::updateGeometries() {
    QScrollBar& bar = *verticalScrollBar();
    bar.setSingleStep(1);
    bar.setPageStep(linesInView());
    bar.setRange(0, std::max(0, model_.rowCount() - linesInView()));
    QAbstractItemView::updateGeometries();
}

// Whoever looks at the last line goes on looking at it.
void ConsoleView::resizeEvent(QResizeEvent* event) {
    const bool atEnd = verticalScrollBar()->value() == verticalScrollBar()->maximum();
    QAbstractItemView::resizeEvent(event);
    updateGeometries();
    if (atEnd) scrollToBottom();
}

void ConsoleView::scrollContentsBy(int, int) {
    viewport()->update();
}

void ConsoleView::rowsInserted(const QModelIndex& parent, int first, int last) {
    QAbstractItemView::rowsInserted(parent, first, last);
    updateGeometries();
    viewport()->update();
}

void ConsoleView::dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
    // The list would ask every changed line for its place, and all of the shown ones may have changed.
    if (first == last) {
        QAbstractItemView::dataChanged(first, last, roles);
    } else {
        viewport()->update();
    }
}

// ---- Cursor and selection

QModelIndex ConsoleView::moveCursor(CursorAction action, Qt::KeyboardModifiers) {
    const int rows = model_.rowCount();
    if (rows == 0) return {};
    const int row = currentIndex().isValid() ? currentIndex().row() : rows - 1;
    const auto to = [&](int target) { return model_.index(std::clamp(target, 0, rows - 1)); };
    switch (action) {
        case MoveUp:
        case MovePrevious:
            return to(row - 1);
        case MoveDown:
        case MoveNext:
            return to(row + 1);
        case MovePageUp:
            return to(row - linesInView());
        case MovePageDown:
            return to(row + linesInView());
        case MoveHome:
            return to(0);
        case MoveEnd:
            return to(rows - 1);
        case MoveLeft:
        case MoveRight:
            break;
    }
    return currentIndex();
}

void ConsoleView::setSelection(const QRect& rectangle, QItemSelectionModel::SelectionFlags command) {
    const int last = model_.rowCount() - 1;
    const int from = std::max(0, rowAt(rectangle.top()));
    const int to = std::min(last, rowAt(rectangle.bottom()));
    if (from > to) return;
    selectionModel()->select(QItemSelection(model_.index(from), model_.index(to)), command);
}

QRegion ConsoleView::visualRegionForSelection(const QItemSelection& selection) const {
    QRegion region;
    for (const QItemSelectionRange& range : selection) {
        region += visualRect(range.topLeft()) | visualRect(range.bottomRight());
    }
    return region & viewport()->rect();
}

// ---- Painting

void ConsoleView::paintEvent(QPaintEvent* event) {
    QPainter painter(viewport());
    const int last = std::min(rowAt(event->rect().bottom()), model_.rowCount() - 1);
    for (int row = std::max(0, rowAt(event->rect().top())); row <= last; ++row) paintLine(painter, row);
}

void ConsoleView::paintLine(QPainter& painter, int row) const {
    const QModelIndex index = model_.index(row);
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    if (selectionModel()->isSelected(index)) option.state |= QStyle::State_Selected;
    if (hasFocus() && index == currentIndex()) option.state |= QStyle::State_HasFocus;
    itemDelegate()->paint(&painter, option, index);
}

}  // namespace zentaq
