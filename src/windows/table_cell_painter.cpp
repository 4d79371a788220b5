#include "windows/table_cell_painter.h"

#include <QPainter>
#include <algorithm>

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
    const bool keyboard = view_.hasKeyboard();
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
    const QString text = index.data(Qt::DisplayRole).toString();
    painter->drawText(option.rect.adjusted(0, 0, -gap, 0),
                      Qt::AlignRight | Qt::AlignVCenter | Qt::TextDontClip, text);
    drawNote(*painter, option, text, view_.cells().note(index), back);
    const QColor wanted = keyboard ? look.focus : look.edge;
    const QColor frame = outlineFor(wanted, back).value_or(wanted);
    const int width = keyboard ? edgeWidth(option.fontMetrics) : 1;
    if ((option.state & QStyle::State_Selected) != 0) {
        drawEndsOfSelection(*painter, option.rect, index, frame, width);
    }
    if (index != view_.currentIndex()) return;
    const int inset = width / 2;
    painter->setPen(QPen(frame, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(option.rect.adjusted(inset, inset, -width + inset, -width + inset));
}

// A triangle in the upper corner where the value is higher than the other one, in the lower one where it is
// lower; the number beside it where the cell has the room.
void TableCellPainter::drawNote(QPainter& painter, const QStyleOptionViewItem& option, const QString& text,
                                const QString& note, const QColor& ground) const {
    if (note.isEmpty()) return;
    const QRect cell = option.rect;
    // As large as the digits leave it room for.
    const int least = space(option.fontMetrics, Space::Line) + edgeWidth(option.fontMetrics);
    const int free = cell.width() - option.fontMetrics.horizontalAdvance(text) -
                     2 * space(option.fontMetrics, Space::Tight);
    const int size = std::max(least, std::min(free, cell.height() * 2 / 5));
    const bool lower = note.startsWith(QLatin1Char('-'));
    const QPoint corner = lower ? cell.bottomLeft() + QPoint(0, 1) : cell.topLeft();
    const QPolygon triangle({corner, corner + QPoint(size, 0), corner + QPoint(0, lower ? -size : size)});
    const QColor ink = outlineFor(view_.colors().changed, ground).value_or(view_.colors().changed);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPolygon(triangle);
    const QFont small = typeFont(Type::Remark);
    const QFontMetrics metrics(small);
    const int needed = option.fontMetrics.horizontalAdvance(QStringLiteral("-00.0")) +
                       metrics.horizontalAdvance(note) + 2 * size;
    if (needed > cell.width()) return;
    painter.setFont(small);
    painter.setPen(QColor::fromRgb(cellInk(plain(ground), plain(view_.colors().text))));
    painter.drawText(cell.adjusted(size, 0, 0, 0), Qt::AlignLeft | (lower ? Qt::AlignBottom : Qt::AlignTop),
                     note);
}

// A tint alone is lost on the colors of the mixture and of the trail, and a number that is typed goes into
// all selected cells.
void TableCellPainter::drawEndsOfSelection(QPainter& painter, const QRect& cell, const QModelIndex& index,
                                           const QColor& color, int width) const {
    const auto ends = [&](int down, int across) {
        const QModelIndex next = index.sibling(index.row() + down, index.column() + across);
        return !next.isValid() || !view_.selectionModel()->isSelected(next);
    };
    const auto line = [&](const QRect& where) { painter.fillRect(where, color); };
    if (ends(-1, 0)) line({cell.left(), cell.top(), cell.width(), width});
    if (ends(1, 0)) line({cell.left(), cell.bottom() + 1 - width, cell.width(), width});
    if (ends(0, -1)) line({cell.left(), cell.top(), width, cell.height()});
    if (ends(0, 1)) line({cell.right() + 1 - width, cell.top(), width, cell.height()});
}

}  // namespace zentaq
