// Paints the cells of a table: ground by the core's colour, an ink that reads on it, a tint for what is
// selected and a line around all of it, a frame for the current cell.
#pragma once

#include <QStyledItemDelegate>

namespace zentaq {

class TableGridView;

class TableCellPainter : public QStyledItemDelegate {
    Q_OBJECT

 public:
    explicit TableCellPainter(TableGridView& view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

 private:
    void drawEndsOfSelection(QPainter& painter, const QRect& cell, const QModelIndex& index,
                             const QColor& color, int width) const;

    void drawNote(QPainter& painter, const QStyleOptionViewItem& option, const QString& text,
                  const QString& note, const QColor& ground) const;

    const TableGridView& view_;
};

}  // namespace zentaq
