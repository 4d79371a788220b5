// Paints the cells of a table: ground by the core's colour, an ink that reads on it, a tint for what is
// selected, a frame for the current cell.
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
    const TableGridView& view_;
};

}  // namespace zentaq
