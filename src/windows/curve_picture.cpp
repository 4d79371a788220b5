#include "windows/curve_picture.h"

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <algorithm>
#include <utility>

#include "base/number_text.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int stepsOfAPage = 10;

}  // namespace

CurvePicture::CurvePicture(QWidget* parent) : QWidget(parent) {
    named(this, "picCurve", "Curve");
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void CurvePicture::show(const CurveGraph* graph) {
    graph_ = graph;
    if (graph_ == nullptr) drag_.reset();
    if (graph_ != nullptr && !graph_->points().empty())
        point_ = std::min(point_, graph_->points().size() - 1);
    tell();
    update();
}

void CurvePicture::tell() {
    const QString words = graph_ == nullptr ? QString() : shownString(graph_->inWords(point_));
    if (words == accessibleDescription()) return;
    setAccessibleDescription(words);
    QAccessibleEvent told(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&told);
}

void CurvePicture::stand(std::size_t point) {
    if (graph_ == nullptr || point >= graph_->points().size()) return;
    point_ = point;
    tell();
    update();
    Q_EMIT stood();
}

void CurvePicture::showTrace(bool on) {
    trace_ = on;
    update();
}

QSize CurvePicture::minimumSizeHint() const {
    constexpr int letters = 30;
    constexpr int lines = 4;
    return {fontMetrics().averageCharWidth() * letters, fontMetrics().height() * lines};
}

QSize CurvePicture::sizeHint() const {
    return {minimumSizeHint().width() * 3 / 2, minimumSizeHint().height() * 4};
}

void CurvePicture::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) update();
}

ChartPainter CurvePicture::painterOf() const {
    return {rect(), font(), graph_->across(), graph_->up()};
}

QPointF CurvePicture::placeOf(std::size_t point) const {
    return painterOf().place(graph_->points()[point]);
}

// ---- Painting

void CurvePicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (graph_ == nullptr) return;
    const ChartPainter chart = painterOf();
    chart.drawScales(painter);
    const double width = std::max(chart.lineWidth() * 2, 2.0);
    chart.drawLine(painter, graph_->points(), QPen(lookNow().accent, width));
    if (trace_) drawTrace(painter, chart);
    drawPoints(painter, chart);
    if (const auto dot = graph_->dot())
        chart.drawDot(painter, *dot, lookNow().liveMarker, chart.letterHeight() / 3);
    if (drag_) drawDragged(painter, chart);
    if (!hasFocus()) return;
    const int edge = edgeWidth(fontMetrics());
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(lookNow().focus, edge));
    painter.drawRect(rect().adjusted(edge / 2, edge / 2, -edge, -edge));
}

void CurvePicture::drawPoints(QPainter& painter, const ChartPainter& chart) const {
    const double radius = chart.letterHeight() / 5;
    for (const ChartPoint& at : graph_->points()) chart.drawDot(painter, at, lookNow().accent, radius);
    if (!hasFocus() || point_ >= graph_->points().size()) return;
    const ChartPoint at = graph_->points()[point_];
    if (!isPlace(at)) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(lookNow().focus, edgeWidth(fontMetrics())));
    painter.drawEllipse(chart.place(at), radius * 2, radius * 2);
}

/// From the last place to the first: each paler than the one behind it.
void CurvePicture::drawTrace(QPainter& painter, const ChartPainter& chart) const {
    const auto places = graph_->trace();
    for (std::size_t i = places.size(); i > 0; --i) {
        QColor color = lookNow().liveMarker;
        color.setAlphaF(static_cast<float>(1 - static_cast<double>(i - 1) /
                                                   static_cast<double>(CurveGraph::traceLength)));
        chart.drawDot(painter, places[i - 1], color, chart.letterHeight() / 6);
    }
}

void CurvePicture::drawDragged(QPainter& painter, const ChartPainter& chart) const {
    if (!drag_->way || drag_->entry.empty()) return;
    ChartPoint at = graph_->points()[point_];
    (*drag_->way == CurveWay::Up ? at.y : at.x) = numberOf(drag_->entry);
    auto points = graph_->points();
    points[point_] = at;
    painter.save();
    painter.setClipRect(chart.plot().adjusted(-1, -1, 1, 1));
    chart.drawLine(painter, points,
                   QPen(lookNow().changed, std::max(chart.lineWidth() * 2, 2.0), Qt::DashLine));
    chart.drawDot(painter, at, lookNow().changed, chart.letterHeight() / 4);
    painter.restore();
    chart.drawText(painter, at, shownString(drag_->entry), lookNow().text);
}

// ---- Keys

void CurvePicture::keyPressEvent(QKeyEvent* event) {
    const bool control = (event->modifiers() & Qt::ControlModifier) != 0;
    const bool other = (event->modifiers() & (Qt::AltModifier | Qt::MetaModifier)) != 0;
    if (graph_ == nullptr || graph_->points().empty() || other) return QWidget::keyPressEvent(event);
    const std::size_t last = graph_->points().size() - 1;
    const auto step = [this](CurveWay way, int steps) { Q_EMIT stepAsked(point_, way, steps); };
    switch (event->key()) {
        case Qt::Key_Escape:
            if (!drag_) return QWidget::keyPressEvent(event);
            drag_.reset();
            return update();
        case Qt::Key_Left:
            return control ? step(CurveWay::Across, -1) : stand(point_ > 0 ? point_ - 1 : 0);
        case Qt::Key_Right:
            return control ? step(CurveWay::Across, 1) : stand(std::min(point_ + 1, last));
        case Qt::Key_Home:
            return stand(0);
        case Qt::Key_End:
            return stand(last);
        case Qt::Key_Up:
        case Qt::Key_Plus:
            return step(CurveWay::Up, 1);
        case Qt::Key_Down:
        case Qt::Key_Minus:
            return step(CurveWay::Up, -1);
        case Qt::Key_PageUp:
            return step(CurveWay::Up, stepsOfAPage);
        case Qt::Key_PageDown:
            return step(CurveWay::Up, -stepsOfAPage);
        default:
            QWidget::keyPressEvent(event);
    }
}

void CurvePicture::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void CurvePicture::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    // A box stands, or another window: what was on its way stays where it was.
    drag_.reset();
    update();
}

// ---- Mouse

std::optional<std::size_t> CurvePicture::nearest(QPointF place) const {
    const ChartPainter chart = painterOf();
    const double reach = chart.letterHeight() * 1.2;
    std::optional<std::size_t> found;
    double least = reach * reach;
    for (std::size_t i = 0; i < graph_->points().size(); ++i) {
        if (!isPlace(graph_->points()[i])) continue;
        const QPointF way = chart.place(graph_->points()[i]) - place;
        const double distance = QPointF::dotProduct(way, way);
        if (distance > least) continue;
        least = distance;
        found = i;
    }
    return found;
}

void CurvePicture::mousePressEvent(QMouseEvent* event) {
    if (graph_ == nullptr || event->button() != Qt::LeftButton) return;
    const auto taken = nearest(event->position());
    if (!taken) return;
    stand(*taken);
    drag_ = Drag{event->position()};
}

void CurvePicture::mouseMoveEvent(QMouseEvent* event) {
    if (!drag_ || graph_ == nullptr || point_ >= graph_->points().size()) return;
    const QPointF moved = event->position() - drag_->from;
    if (!drag_->way) {
        if (moved.manhattanLength() < QApplication::startDragDistance()) return;
        const bool across = std::abs(moved.x()) > std::abs(moved.y()) && graph_->movable(CurveWay::Across);
        drag_->way = across ? CurveWay::Across : CurveWay::Up;
    }
    const ChartPoint at = painterOf().at(event->position());
    drag_->entry = graph_->entryFor(point_, *drag_->way, *drag_->way == CurveWay::Up ? at.y : at.x);
    update();
}

void CurvePicture::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    const auto drag = std::exchange(drag_, {});
    update();
    if (drag && drag->way && !drag->entry.empty()) Q_EMIT moveAsked(point_, *drag->way, drag->entry);
}

}  // namespace zentaq
