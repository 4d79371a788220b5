#include "windows/surface_picture.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "qt/contrast.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "tables/cell_ground.h"

namespace zentaq {

namespace {

constexpr auto told = "Times New Roman";
QFont pictureFont(Type type) {
    QFont font = typeFont(type);
    font.setFamilies({QLatin1String(told), font.family()});
    return font;
}

}  // namespace

/// Where the drawing stands in an area, and how it is scaled.
struct SurfacePicture::Frame {
    SurfaceProjection projection;
    QPointF origin;
    double scale = 1;

    QPointF at(double row, double column, double height) const {
        const SurfacePoint point = projection.at(row, column, height);
        return origin + QPointF(point.x, point.y) * scale;
    }
};

SurfacePicture::SurfacePicture(SurfaceModel& model, QWidget* parent) : QWidget(parent), model_(model) {
    named(this, "picSurface", "Surface");
    setAutoFillBackground(false);
    setFocusPolicy(Qt::StrongFocus);
}

void SurfacePicture::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) update();
}

QSize SurfacePicture::sizeHint() const {
    const int letter = fontMetrics().averageCharWidth();
    return {letter * 90, letter * 60};
}

SurfacePicture::Frame SurfacePicture::frameOf(const QRect& area) const {
    const QFontMetrics metrics(pictureFont(Type::Body));
    const int line = metrics.height();
    // Values stand at the right, headers at the left and at the foot, and the axes' titles below those.
    const int side = QFontMetrics(pictureFont(Type::Remark)).horizontalAdvance(QStringLiteral("-000.00"));
    const QRect room = area.adjusted(side, line, -side, -line * 5 / 2);
    Frame frame{SurfaceProjection(model_.rows(), model_.columns()), {}, 1};
    const double wide = frame.projection.width();
    const double high = frame.projection.heightOfAll();
    frame.scale = std::max(0.001, std::min(room.width() / wide, room.height() / high));
    frame.origin = QPointF(room.left() + (room.width() - wide * frame.scale) / 2,
                           room.top() + (room.height() - high * frame.scale) / 2);
    return frame;
}

double SurfacePicture::heightAt(double row, double column) const {
    const auto inside = [](double place, int count) {
        return std::clamp(place, 1.0, static_cast<double>(count));
    };
    const double r = inside(row, model_.rows());
    const double c = inside(column, model_.columns());
    const int below = static_cast<int>(r);
    const int left = static_cast<int>(c);
    const int above = std::min(below + 1, model_.rows());
    const int right = std::min(left + 1, model_.columns());
    const auto between = [](double from, double to, double share) { return from + (to - from) * share; };
    return between(between(model_.height(below, left), model_.height(below, right), c - left),
                   between(model_.height(above, left), model_.height(above, right), c - left), r - below);
}

QPointF SurfacePicture::pointOf(const Frame& frame, double row, double column) const {
    return frame.at(row, column, heightAt(row, column));
}

// ---- Drawing

void SurfacePicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    draw(painter, rect());
    if (!hasFocus()) return;
    const int edge = edgeWidth(fontMetrics());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(lookColors(appliedLook(*qApp)).focus, edge));
    painter.drawRect(rect().adjusted(edge / 2, edge / 2, -edge, -edge));
}

void SurfacePicture::draw(QPainter& painter, const QRect& area) const {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area, lookColors(appliedLook(*qApp)).surface);
    if (model_.rows() < 2 || model_.columns() < 2) return;
    const Frame frame = frameOf(area);
    drawAxes(painter, frame);
    drawSurface(painter, frame);
    drawTicks(painter, frame);
    drawTitles(painter, area);
    const LookColors look = lookColors(appliedLook(*qApp));
    const double size = frame.scale * SurfaceProjection::acrossLength / 110;
    const LiveMarker live = model_.livePoint();
    if (live.visible) drawPoint(painter, pointOf(frame, live.row, live.column), look.liveMarker, size, false);
    drawPoint(painter, pointOf(frame, model_.row(), model_.column()), look.focus, size, true);
}

// Floor, and the two walls behind the surface.
void SurfacePicture::drawAxes(QPainter& painter, const Frame& frame) const {
    const LookColors look = lookColors(appliedLook(*qApp));
    painter.setPen(QPen(look.border, 1));
    const int rows = model_.rows();
    const int columns = model_.columns();
    for (int row = 1; row <= rows; ++row) {
        painter.drawLine(frame.at(row, 1, 0), frame.at(row, columns, 0));
        painter.drawLine(frame.at(row, columns, 0), frame.at(row, columns, 1));
    }
    for (int column = 1; column <= columns; ++column) {
        painter.drawLine(frame.at(1, column, 0), frame.at(rows, column, 0));
        painter.drawLine(frame.at(rows, column, 0), frame.at(rows, column, 1));
    }
    painter.setPen(QPen(look.edge, edgeWidth(fontMetrics())));
    painter.drawLine(frame.at(1, 1, 0), frame.at(1, columns, 0));
    painter.drawLine(frame.at(1, columns, 0), frame.at(rows, columns, 0));
    painter.drawLine(frame.at(rows, columns, 0), frame.at(rows, columns, 1));
    // The values stand here, where the surface never does.
    painter.drawLine(frame.at(1, columns, 0), frame.at(1, columns, 1));
}

QColor SurfacePicture::groundOf(int row, int column) const {
    const LookColors look = lookColors(appliedLook(*qApp));
    return QColor::fromRgb(cellGround(model_.colour(row, column), model_.trail(row, column),
                                      appliedLook(*qApp) == DisplayMode::Night,
                                      look.surface.rgb() & RGB_MASK));
}

// The rows go back to the left, so what covers another point lies before it or left of it.
void SurfacePicture::drawSurface(QPainter& painter, const Frame& frame) const {
    const LookColors look = lookColors(appliedLook(*qApp));
    for (int row = model_.rows() - 1; row >= 1; --row) {
        for (int column = model_.columns() - 1; column >= 1; --column) {
            const QPolygonF quad({pointOf(frame, row, column), pointOf(frame, row, column + 1),
                                  pointOf(frame, row + 1, column + 1), pointOf(frame, row + 1, column)});
            const QColor ground = groundOf(row, column);
            // Smooth edges come from the lines; a smooth fill leaves gaps to its neighbors.
            painter.setRenderHint(QPainter::Antialiasing, false);
            painter.setPen(Qt::NoPen);
            painter.setBrush(ground);
            painter.drawConvexPolygon(quad);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(outlineFor(look.text, ground).value_or(look.text), 0));
            painter.setBrush(Qt::NoBrush);
            painter.drawPolygon(quad);
        }
    }
}

void SurfacePicture::drawTicks(QPainter& painter, const Frame& frame) const {
    const LookColors look = lookColors(appliedLook(*qApp));
    const QFont font = pictureFont(Type::Remark);
    const QFontMetrics metrics(font);
    painter.setFont(font);
    painter.setPen(look.text);
    const auto text = [&](const QPointF& at, const QString& what, Qt::Alignment side) {
        const double wide = metrics.horizontalAdvance(what) + 2;
        const double high = metrics.height();
        QRectF box(at.x() - wide / 2, at.y(), wide, high);
        if (side == Qt::AlignLeft) box.moveTo(at.x(), at.y() - high / 2);
        if (side == Qt::AlignRight) box.moveTo(at.x() - wide, at.y() - high / 2);
        painter.drawText(box, Qt::AlignCenter | Qt::TextDontClip, what);
    };
    const TableGrid& grid = model_.sheet().grid();
    // Every so many that they leave each other room.
    const auto everySo = [](double room, double step) {
        return std::max(1, static_cast<int>(std::ceil(room / std::max(step, 1.0))));
    };
    const double acrossStep = frame.at(1, 2, 0).x() - frame.at(1, 1, 0).x();
    const int columnStep = everySo(metrics.horizontalAdvance(QStringLiteral("00000")), acrossStep);
    for (int column = 1; column <= model_.columns(); column += columnStep)
        text(frame.at(1, column, 0) + QPointF(0, 2), qString(grid.text(0, column)), Qt::AlignHCenter);
    const double upStep = frame.at(1, 1, 0).y() - frame.at(2, 1, 0).y();
    const int rowStep = everySo(metrics.height(), upStep);
    for (int row = 1; row <= model_.rows(); row += rowStep)
        text(frame.at(row, 1, 0) - QPointF(4, 0), qString(grid.text(model_.sheet().gridRow(row - 1), 0)),
             Qt::AlignRight);
    const double span = model_.highest() - model_.lowest();
    constexpr int valueTicks = 4;
    for (int tick = 0; tick <= valueTicks; ++tick) {
        const double share = static_cast<double>(tick) / valueTicks;
        if (span == 0 && tick > 0) break;
        text(frame.at(1, model_.columns(), share) + QPointF(4, 0),
             qString(formatNumber(model_.lowest() + span * share, "#0.00")), Qt::AlignLeft);
    }
}

void SurfacePicture::drawTitles(QPainter& painter, const QRect& area) const {
    const LookColors look = lookColors(appliedLook(*qApp));
    const SurfaceTitles titles = model_.titles();
    painter.setPen(look.text);
    painter.setFont(pictureFont(Type::Heading));
    const int line = QFontMetrics(painter.font()).height();
    const int gap = space(fontMetrics(), Space::Normal);
    QRect place = area.adjusted(gap, gap, -gap, -gap);
    for (const std::string& one : titles.lines) {
        painter.drawText(place, Qt::AlignRight | Qt::AlignTop, qString(one));
        place.setTop(place.top() + line);
    }
    painter.setFont(pictureFont(Type::Body));
    const QRect foot = area.adjusted(gap, gap, -gap, -gap);
    painter.drawText(foot, Qt::AlignHCenter | Qt::AlignBottom, qString(titles.columnAxis));
    painter.drawText(foot, Qt::AlignLeft | Qt::AlignBottom, qString(titles.rowAxis));
}

void SurfacePicture::drawPoint(QPainter& painter, const QPointF& at, const QColor& color, double size,
                               bool ring) const {
    const double radius = std::max(size, 4.0);
    const QColor rim = QColor::fromRgb(inkOn(color.rgb() & RGB_MASK));
    painter.setPen(QPen(rim, std::max(radius / 3, 1.5)));
    painter.setBrush(color);
    painter.drawEllipse(at, radius, radius);
    if (!ring) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, std::max(radius / 3, 1.5)));
    painter.drawEllipse(at, radius * 1.9, radius * 1.9);
}

// ---- Mouse

GridCell SurfacePicture::nearest(const QPointF& place) const {
    const Frame frame = frameOf(rect());
    GridCell best{1, 1};
    double least = std::numeric_limits<double>::infinity();
    for (int row = 1; row <= model_.rows(); ++row) {
        for (int column = 1; column <= model_.columns(); ++column) {
            const QPointF apart = pointOf(frame, row, column) - place;
            const double distance = QPointF::dotProduct(apart, apart);
            if (distance >= least) continue;
            least = distance;
            best = {row, column};
        }
    }
    return best;
}

void SurfacePicture::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return QWidget::mousePressEvent(event);
    const GridCell cell = nearest(event->position());
    Q_EMIT picked(cell.row, cell.column);
}

}  // namespace zentaq
