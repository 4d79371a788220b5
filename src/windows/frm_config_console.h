// A console: lines in fixed pitch whose last one is always in view. All lines have one height, so a new line
// costs the same behind ten lines and behind a hundred thousand.
#pragma once

#include <QListView>

#include "qt/line_model.h"

namespace zentaq {

class ConsoleView : public QListView {
    Q_OBJECT

 public:
    ConsoleView(const QString& name, const QString& meaning, const std::deque<std::string>& lines,
                QWidget* parent);

    /// Shows what is new and selects the last line.
    void sync();

    // ---- The list's own layout asks every line for its place; here a place is the line's number times the
    // height of a line.
    QRect visualRect(const QModelIndex& index) const override;
    QModelIndex indexAt(const QPoint& point) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    void doItemsLayout() override;

 protected:
    int verticalOffset() const override;
    int horizontalOffset() const override { return 0; }
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    void setSelection(const QRect& rectangle, QItemSelectionModel::SelectionFlags command) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void updateGeometries() override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void rowsInserted(const QModelIndex& parent, int first, int last) override;
    void dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) override;

 private:
    /// The style's height of a line, asked once for each look and font.
    int lineHeight() const;
    /// Whole lines that the view shows, at least 1.
    int linesInView() const;
    int rowAt(int y) const;
    void paintLine(QPainter& painter, int row) const;

    LineModel model_;
    mutable int lineHeight_ = 0;
};

}  // namespace zentaq
