#include "windows/table_cell_painter.h"

#include <QPainter>

#include "qt/contrast.h"
#include "tables/cell_ground.h"
#include "windows/table_view.h"

namespace zentaq {

namespace {

constexpr double selectedShare = 0.4;

Rgb plain(const QColor& color) {
    return color.rgb() & RGB_MASK;
}

}  // namespace

TableCellPainter::TableCellPainter(TableGridView& view) : QStyledItemDelegate(&view), view_(view) {}

void TableCellPainter::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
    const LookColors& look = view_.colors();
    const bool keyboard = view_.hasFocus();
    Rgb ground = plain(view_.groundOf(index));
    // The current cell has its frame and keeps its colour in sight.
    if ((option.state & QStyle::State_Selected) != 0 && index != view_.currentIndex()) {
        ground = mixed(ground, plain(keyboard ? look.accent : look.restingSelection), selectedShare);
    }
    const QColor back = QColor::fromRgb(ground);
    painter->fillRect(option.rect, back);
    painter->setPen(QColor::fromRgb(cellInk(ground, plain(look.text))));
    painter->setFont(option.font);
    const int gap = space(option.fontMetrics, Space::Tight);
    painter->drawText(option.rect.adjusted(0, 0, -gap, 0),
                      Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip,
                      index.data(Qt::DisplayRole).toString());
    if (index != view_.currentIndex()) return;
    const QColor frame = keyboard ? look.focus : look.edge;
    const int width = keyboard ? edgeWidth(option.fontMetrics) : 1;
    const int inset = width / 2;
    painter->setPen(
        QPen(outlineFor(frame, back).value_or(frame), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option.rect.adjusted(inset, inset, -width + inset, -width + inset));
}

}  // namespace zentaq
