#include "windows/outlined.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFrame>
#include <algorithm>
#include <cmath>
#include <utility>

namespace zentaq {
namespace {

/// Of the height of the letters.
constexpr double edgeOfLetters = 0.11;
constexpr double thinnestEdge = 1;

}  // namespace

void drawOutlined(QPainter& painter, QPointF baseline, const QString& text, const QColor& ink,
                  const QColor& ground) {
    const auto outline = outlineFor(ink, ground);
    if (!outline) {
        painter.setPen(ink);
        painter.drawText(baseline, text);
        return;
    }
    QPainterPath letters;
    letters.addText(baseline, painter.font(), text);
    const double height = QFontMetricsF(painter.font()).capHeight();
    const double edge = std::max(thinnestEdge, height * edgeOfLetters);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(letters, QPen(*outline, 2 * edge, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(letters, ink);
    painter.restore();
}

void drawOutlined(QPainter& painter, const QRectF& area, Qt::Alignment alignment, const QString& text,
                  const QColor& ink, const QColor& ground) {
    const QFontMetricsF metrics(painter.font());
    const double width = metrics.horizontalAdvance(text);
    double left = area.center().x() - width / 2;
    if (alignment & Qt::AlignLeft) left = area.left();
    if (alignment & Qt::AlignRight) left = area.right() - width;
    const double base = area.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    drawOutlined(painter, QPointF(left, base), text, ink, ground);
}

void drawOutlined(QPainter& painter, QPointF from, QPointF to, const QPen& pen, const QColor& ground) {
    if (const auto outline = outlineFor(pen.color(), ground)) {
        QPen edge = pen;
        edge.setColor(*outline);
        edge.setWidthF(pen.widthF() + 2 * thinnestEdge);
        painter.setPen(edge);
        painter.drawLine(from, to);
    }
    painter.setPen(pen);
    painter.drawLine(from, to);
}

void OutlinedLabel::paintEvent(QPaintEvent* event) {
    const QColor ink = palette().color(foregroundRole());
    const QColor ground = palette().color(QPalette::Window);
    if (!outlineFor(ink, ground)) return QLabel::paintEvent(event);
    QPainter painter(this);
    drawOutlined(painter, QRectF(contentsRect()), alignment(), text(), ink, ground);
}

void OutlinedField::paintEvent(QPaintEvent* event) {
    const QColor ink = palette().color(QPalette::Text);
    const QColor ground = palette().color(QPalette::Base);
    if (!outlineFor(ink, ground)) return QLineEdit::paintEvent(event);
    QPainter painter(this);
    QStyleOptionFrame frame;
    initStyleOption(&frame);
    style()->drawPrimitive(QStyle::PE_PanelLineEdit, &frame, &painter, this);
    const int gap = fontMetrics().averageCharWidth() / 2;
    const QRect inside = style()->subElementRect(QStyle::SE_LineEditContents, &frame, this);
    painter.setClipRect(inside);
    drawOutlined(painter, QRectF(inside.adjusted(gap, 0, -gap, 0)), Qt::AlignLeft, text(), ink, ground);
}

void OutlinedRows::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    const QColor ink = option.palette.color(QPalette::Text);
    const QColor ground = option.palette.color(QPalette::Base);
    if ((option.state & QStyle::State_Selected) != 0 || !outlineFor(ink, ground)) {
        return QStyledItemDelegate::paint(painter, option, index);
    }
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString text = std::exchange(row.text, QString());
    const QStyle* style = row.widget != nullptr ? row.widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
    const int gap = row.fontMetrics.averageCharWidth() / 2;
    painter->setFont(row.font);
    drawOutlined(*painter, QRectF(row.rect.adjusted(gap, 0, -gap, 0)), Qt::AlignLeft, text, ink, ground);
}

}  // namespace zentaq
