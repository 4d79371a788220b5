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

/// Along the edges, where the lines through the point meet them.
QPainterPath ticks(const QRectF& area, QPointF point, double length) {
    QPainterPath path;
    const auto line = [&](QPointF middle, QPointF half) {
        path.moveTo(middle - half);
        path.lineTo(middle + half);
    };
    const double x = std::clamp(point.x(), area.left(), area.right());
    const double y = std::clamp(point.y(), area.top(), area.bottom());
    for (const double edge : {area.top(), area.bottom()}) line({x, edge}, {length / 2, 0});
    for (const double edge : {area.left(), area.right()}) line({edge, y}, {0, length / 2});
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

// On the lines of the grid and not inside the cell: in the lowest rows there is no room between them and the
// digits.
void TableMarker::point(const QRect& cell, QPoint point, const QColor& ground) {
    thick_ = std::max(thinnest, static_cast<int>(cell.height() * thicknessShare));
    reach_ = (thick_ + 1) / 2 + rim;
    const QRect whole = cell.marginsAdded(margins());
    const QPoint inside = point - whole.topLeft();
    if (whole == geometry() && inside == point_ && ground == ground_) return;
    point_ = inside;
    ground_ = ground;
    setGeometry(whole);
    update();
}

void TableMarker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRectF area = QRectF(rect()).marginsRemoved(QMarginsF(margins()));
    QPainterPath path = brackets(area);
    path.addPath(ticks(area, point_, thick_));
    painter.setBrush(Qt::NoBrush);
    const auto draw = [&](const QColor& color, int width) {
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.drawPath(path);
    };
    // It lies on the neighbors too, whatever color they have.
    draw(outlineFor(color_, ground_).value_or(inkFor(color_)), thick_ + 2 * rim);
    draw(color_, thick_);
}

}  // namespace zentaq
