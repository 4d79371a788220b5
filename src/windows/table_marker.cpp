#include "windows/table_marker.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

#include "qt/contrast.h"
#include "qt/named.h"

namespace zentaq {

namespace {

/// Of the cell's height: as much as the gap above its digits.
constexpr double thicknessShare = 1.0 / 9;
constexpr int thinnest = 2;
constexpr int rim = 1;

/// Four corners, each two arms, inside `area`.
QPainterPath brackets(const QRectF& area) {
    const double across = std::min(area.width() / 4, area.height() / 2);
    const double down = area.height() / 4;
    QPainterPath path;
    for (const bool right : {false, true}) {
        for (const bool low : {false, true}) {
            const QPointF corner(right ? area.right() : area.left(), low ? area.bottom() : area.top());
            path.moveTo(corner + QPointF(right ? -across : across, 0));
            path.lineTo(corner);
            path.lineTo(corner + QPointF(0, low ? -down : down));
        }
    }
    return path;
}

/// At the edges, where the lines through the point meet them.
QPainterPath ticks(const QRectF& area, QPointF point, double length) {
    QPainterPath path;
    const auto line = [&](QPointF from, QPointF step) {
        path.moveTo(from);
        path.lineTo(from + step);
    };
    const double x = std::clamp(point.x(), area.left(), area.right());
    const double y = std::clamp(point.y(), area.top(), area.bottom());
    line({x, area.top()}, {0, length});
    line({x, area.bottom()}, {0, -length});
    line({area.left(), y}, {length, 0});
    line({area.right(), y}, {-length, 0});
    return path;
}

}  // namespace

TableMarker::TableMarker(QWidget* parent) : QWidget(parent) {
    named(this, "TblMarker", "Present point of the engine");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void TableMarker::setColor(const QColor& color) {
    color_ = color;
    update();
}

void TableMarker::point(const QRect& cell, QPoint point, const QColor& ground) {
    const QPoint inside = point - cell.topLeft();
    if (cell == geometry() && inside == point_ && ground == ground_) return;
    point_ = inside;
    ground_ = ground;
    setGeometry(cell);
    update();
}

void TableMarker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const int thick = std::max(thinnest, static_cast<int>(height() * thicknessShare));
    const double middle = thick / 2.0;
    const QRectF area = QRectF(rect()).adjusted(middle, middle, -middle, -middle);
    QPainterPath path = brackets(area);
    path.addPath(ticks(area, point_, thick));
    painter.setBrush(Qt::NoBrush);
    const auto draw = [&](const QColor& color, int width) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.drawPath(path);
    };
    if (const auto outline = outlineFor(color_, ground_)) draw(*outline, thick + 2 * rim);
    draw(color_, thick);
}

}  // namespace zentaq
