#include "windows/chart_painter.h"

#include <QApplication>
#include <QPainterPath>
#include <algorithm>

#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int mostlyOpaque = 215;

double share(double value, const ChartScale& scale) {
    const double range = scale.high - scale.low;
    return range > 0 ? (value - scale.low) / range : 0;
}

}  // namespace

ChartPainter::ChartPainter(const QRectF& area, const QFont& font, const ChartScale& across,
                           const ChartScale& up)
    : across_(across), up_(up), font_(font), metrics_(font), area_(area) {
    const qreal gap = metrics_.height() / 2;
    qreal widest = 0;
    for (const ChartTick& tick : up.ticks)
        widest = std::max(widest, metrics_.horizontalAdvance(qString(tick.text)));
    plot_ = area.adjusted(gap + widest + gap / 2, metrics_.height() + gap, -gap * 2,
                          -metrics_.height() * 2 - gap * 3 / 2);
    if (plot_.width() < 1 || plot_.height() < 1) plot_.setSize({1, 1});
}

QPointF ChartPainter::place(ChartPoint at) const {
    return {plot_.left() + plot_.width() * share(at.x, across_),
            plot_.bottom() - plot_.height() * share(at.y, up_)};
}

ChartPoint ChartPainter::at(QPointF place) const {
    const double right = (place.x() - plot_.left()) / plot_.width();
    const double above = (plot_.bottom() - place.y()) / plot_.height();
    return {across_.low + (across_.high - across_.low) * right, up_.low + (up_.high - up_.low) * above};
}

void ChartPainter::drawScales(QPainter& painter) const {
    const LookColors& look = lookNow();
    painter.setFont(font_);
    painter.fillRect(plot_, look.surface);
    drawAcross(painter, look);
    drawUp(painter, look);
    painter.setPen(look.edge);
    painter.drawRect(plot_);
}

void ChartPainter::drawAcross(QPainter& painter, const LookColors& look) const {
    qreal free = area_.left();
    for (const ChartTick& tick : across_.ticks) {
        const qreal x = place({tick.at, up_.low}).x();
        painter.setPen(look.border);
        painter.drawLine(QPointF(x, plot_.top()), QPointF(x, plot_.bottom()));
        const QString text = qString(tick.text);
        const qreal width = metrics_.horizontalAdvance(text);
        const qreal left = std::clamp(x - width / 2, area_.left(), area_.right() - width);
        // A text that would stand on the one before it is left out; its line tells.
        if (left < free) continue;
        painter.setPen(look.mutedText);
        painter.drawText(QPointF(left, plot_.bottom() + metrics_.ascent() + metrics_.height() * 3 / 8), text);
        free = left + width + metrics_.averageCharWidth();
    }
    const QRectF title(plot_.left(), plot_.bottom() + metrics_.height() * 12 / 8, plot_.width(),
                       metrics_.height());
    painter.setPen(look.text);
    painter.drawText(title, Qt::AlignCenter,
                     metrics_.elidedText(qString(across_.title), Qt::ElideRight, title.width()));
}

void ChartPainter::drawUp(QPainter& painter, const LookColors& look) const {
    qreal free = area_.bottom();
    for (const ChartTick& tick : up_.ticks) {
        const qreal y = place({across_.low, tick.at}).y();
        painter.setPen(look.border);
        painter.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
        if (y + metrics_.height() / 2 > free + metrics_.height() / 2) continue;
        painter.setPen(look.mutedText);
        const QRectF label(area_.left(), y - metrics_.height() / 2,
                           plot_.left() - area_.left() - metrics_.height() / 4, metrics_.height());
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, qString(tick.text));
        free = y - metrics_.height();
    }
    const QRectF title(area_.left() + metrics_.height() / 2, area_.top() + metrics_.height() / 8,
                       area_.width() - metrics_.height(), metrics_.height());
    painter.setPen(look.text);
    painter.drawText(title, Qt::AlignLeft | Qt::AlignVCenter,
                     metrics_.elidedText(qString(up_.title), Qt::ElideRight, title.width()));
}

void ChartPainter::drawLine(QPainter& painter, std::span<const ChartPoint> points, const QPen& pen) const {
    QPainterPath path;
    bool begun = false;
    for (const ChartPoint& point : points) {
        if (!isPlace(point)) {
            begun = false;
            continue;
        }
        begun ? path.lineTo(place(point)) : path.moveTo(place(point));
        begun = true;
    }
    painter.setBrush(Qt::NoBrush);
    painter.setPen(pen);
    painter.drawPath(path);
}

void ChartPainter::drawDot(QPainter& painter, ChartPoint at, const QColor& color, double radius) const {
    if (!isPlace(at)) return;
    painter.setPen(QPen(lookNow().surface, metrics_.lineWidth()));
    painter.setBrush(color);
    painter.drawEllipse(place(at), radius, radius);
}

void ChartPainter::drawText(QPainter& painter, ChartPoint at, const QString& text,
                            const QColor& color) const {
    if (!isPlace(at)) return;
    const qreal gap = metrics_.height() / 3;
    const qreal width = metrics_.horizontalAdvance(text) + gap;
    QRectF room(place(at) + QPointF(gap, -gap - metrics_.height()), QSizeF(width, metrics_.height()));
    room.moveLeft(std::clamp(room.left(), plot_.left(), std::max(plot_.left(), plot_.right() - width)));
    room.moveTop(std::clamp(room.top(), plot_.top(), plot_.bottom() - metrics_.height()));
    QColor veil = lookNow().surface;
    veil.setAlpha(mostlyOpaque);
    painter.fillRect(room, veil);
    painter.setPen(color);
    painter.setFont(font_);
    painter.drawText(room, Qt::AlignCenter, text);
}

}  // namespace zentaq
