#include "qt/style_shapes.h"

#include <QFontMetrics>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "qt/contrast.h"

namespace zentaq {

namespace {

/// Gives the painter back as it came, and smooths.
class Smooth {
 public:
    explicit Smooth(QPainter& painter) : painter_(painter) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
    }
    ~Smooth() { painter_.restore(); }
    Smooth(const Smooth&) = delete;
    Smooth& operator=(const Smooth&) = delete;

 private:
    QPainter& painter_;
};

}  // namespace

QColor seenOn(const QColor& color, const QColor& ground) {
    return outlineFor(color, ground).value_or(color);
}

qreal hairline(const QPainter& painter) {
    const qreal ratio = painter.device()->devicePixelRatioF();
    return std::max(1.0, std::floor(ratio)) / ratio;
}

qreal rounding(const QFontMetrics& metrics) {
    return std::max(2.0, metrics.height() / 6.0);
}

void drawFramed(QPainter& painter, const QRectF& area, qreal radius, const QColor& ground,
                const QColor& edge) {
    const Smooth smooth(painter);
    const qreal line = hairline(painter);
    painter.setPen(QPen(edge, line));
    painter.setBrush(ground);
    painter.drawRoundedRect(area.adjusted(line / 2, line / 2, -line / 2, -line / 2), radius, radius);
}

void drawFrame(QPainter& painter, const QRectF& area, qreal radius, const QColor& color, qreal width) {
    if (radius <= 0) {  // smoothed, its corners would be pale
        const qreal height = area.height() - 2 * width;
        painter.fillRect(QRectF(area.left(), area.top(), area.width(), width), color);
        painter.fillRect(QRectF(area.left(), area.top() + width + height, area.width(), width), color);
        painter.fillRect(QRectF(area.left(), area.top() + width, width, height), color);
        painter.fillRect(QRectF(area.left() + area.width() - width, area.top() + width, width, height),
                         color);
        return;
    }
    const Smooth smooth(painter);
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    painter.setBrush(Qt::NoBrush);
    const QRectF middle = area.adjusted(width / 2, width / 2, -width / 2, -width / 2);
    painter.drawRoundedRect(middle, std::max(0.0, radius - width / 2), std::max(0.0, radius - width / 2));
}

void drawTick(QPainter& painter, const QRectF& box, const QColor& ink) {
    const Smooth smooth(painter);
    QPainterPath tick(box.topLeft() + QPointF(box.width() * 0.22, box.height() * 0.53));
    tick.lineTo(box.topLeft() + QPointF(box.width() * 0.42, box.height() * 0.73));
    tick.lineTo(box.topLeft() + QPointF(box.width() * 0.79, box.height() * 0.27));
    painter.strokePath(tick,
                       QPen(ink, std::max(2.0, box.width() / 7), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void drawBar(QPainter& painter, const QRectF& box, const QColor& ink) {
    const Smooth smooth(painter);
    const qreal y = box.center().y();
    painter.setPen(QPen(ink, std::max(2.0, box.width() / 7), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(box.left() + box.width() * 0.27, y),
                     QPointF(box.right() - box.width() * 0.27, y));
}

void drawArrow(QPainter& painter, const QRectF& area, Qt::ArrowType to, qreal width, const QColor& ink) {
    const Smooth smooth(painter);
    const qreal half = width / 2;
    QPolygonF arrow({QPointF(-half, -half / 2), QPointF(half, -half / 2), QPointF(0, half / 2)});
    painter.translate(area.center());
    painter.rotate(to == Qt::UpArrow ? 180 : to == Qt::LeftArrow ? 90 : to == Qt::RightArrow ? -90 : 0);
    painter.setPen(QPen(ink, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(ink);
    painter.drawPolygon(arrow);
}

void drawGrip(QPainter& painter, const QRectF& area, bool upright, const QColor& ink) {
    const Smooth smooth(painter);
    const qreal size = std::max(2.0, std::min(area.width(), area.height()) * 0.5);
    const QPointF step = upright ? QPointF(0, size * 2) : QPointF(size * 2, 0);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    for (int point = -2; point <= 2; ++point) {
        painter.drawEllipse(area.center() + step * point, size / 2, size / 2);
    }
}

}  // namespace zentaq
