#include "windows/log_scatter_picture.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "base/number_text.h"
#include "base/rounding.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"
#include "tables/heat_scale.h"
#include "windows/chart_painter.h"

namespace zentaq {

namespace {

constexpr int dotPixels = 3;  // of a place, on a screen of the usual fineness
constexpr double scatterWheelZoom = 0.8;
constexpr double scatterKeyZoom = 0.5;
constexpr int barLetters = 12;
constexpr int reachOfClick = 3;
constexpr double scatterMarks = 6;

QRgb heatOf(double share) {
    const auto colour = static_cast<std::uint32_t>(heatColour(share));
    return qRgb(static_cast<int>(colour & 0xFF), static_cast<int>((colour >> 8) & 0xFF),
                static_cast<int>((colour >> 16) & 0xFF));
}

QString shortNumber(double value) {
    constexpr int digits = 2;
    return qString(numberText(roundTo(value, digits)));
}

}  // namespace

LogScatterPicture::LogScatterPicture(QWidget* parent) : QWidget(parent) {
    named(this, "picScatter", "Two channels of the datalog against each other");
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(
        "Wheel or a box with the mouse: zoom. Double click or key 0: show all. Click: go to that row.");
}

void LogScatterPicture::show(const Captions& captions, const ScatterRange& x, const ScatterRange& y,
                             const ScatterRange& third) {
    captions_ = captions;
    x_ = x;
    y_ = y;
    third_ = third;
    across_ = chartScale(x.low, x.high, false, scatterMarks, "0");
    up_ = chartScale(y.low, y.high, false, scatterMarks, "0");
    across_.title = captions.x.toStdString();
    up_.title = captions.y.toStdString();
    draw(nullptr);
}

void LogScatterPicture::showNothing() {
    captions_ = {};
    draw(nullptr);
}

QRectF LogScatterPicture::chartArea() const {
    QRectF area = rect();
    if (!captions_.third.isEmpty())
        area.setRight(area.right() - fontMetrics().averageCharWidth() * barLetters);
    return area;
}

QSize LogScatterPicture::places() const {
    const ChartPainter chart(chartArea(), font(), across_, up_);
    return (chart.plot().size() / dotPixels).toSize().expandedTo({1, 1});
}

void LogScatterPicture::draw(const LogScatter* scatter) {
    scatter_ = scatter;
    makeDots();
    update();
}

void LogScatterPicture::makeDots() {
    dots_ = {};
    if (scatter_ == nullptr) return;
    dots_ = QImage(scatter_->across(), scatter_->up(), QImage::Format_ARGB32);
    dots_.fill(Qt::transparent);
    const QRgb plain = plotColors().front().rgb();
    const double span = third_.high - third_.low;
    for (int up = 0; up < scatter_->up(); ++up) {
        for (int across = 0; across < scatter_->across(); ++across) {
            const ScatterPlace& place = scatter_->at(across, up);
            if (place.count == 0) continue;
            const double share = span > 0 ? (place.mean() - third_.low) / span : 0.5;
            dots_.setPixel(across, scatter_->up() - 1 - up,
                           captions_.third.isEmpty() ? plain : heatOf(share));
        }
    }
}

void LogScatterPicture::now(std::optional<ChartPoint> at) {
    if (now_ == at) return;
    now_ = at;
    update();
}

QSize LogScatterPicture::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 80, metrics.height() * 18};
}

QSize LogScatterPicture::minimumSizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 40, metrics.height() * 10};
}

void LogScatterPicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (captions_.x.isEmpty()) return;
    const ChartPainter chart(chartArea(), font(), across_, up_);
    chart.drawScales(painter);
    if (!dots_.isNull()) painter.drawImage(chart.plot(), dots_);
    const bool inside =
        now_ && now_->x >= x_.low && now_->x <= x_.high && now_->y >= y_.low && now_->y <= y_.high;
    if (inside) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(lookNow().liveMarker, edgeWidth(fontMetrics())));
        const double radius = chart.letterHeight() / 2;
        painter.drawEllipse(chart.place(*now_), radius, radius);
        painter.setRenderHint(QPainter::Antialiasing, false);
    }
    drawColors(painter);
    if (pressed_ && *pressed_ != dragged_) {
        painter.setPen(QPen(lookNow().focus, 1));
        painter.drawRect(QRectF(*pressed_, dragged_).normalized() & chart.plot());
    }
    if (!hasFocus()) return;
    const int edge = edgeWidth(fontMetrics());
    painter.setPen(QPen(lookNow().focus, edge));
    painter.drawRect(QRectF(rect()).adjusted(edge / 2.0, edge / 2.0, -edge / 2.0, -edge / 2.0));
}

// The scale of the colors, at the right of the chart.
void LogScatterPicture::drawColors(QPainter& painter) const {
    if (captions_.third.isEmpty()) return;
    const QFontMetrics metrics = fontMetrics();
    const int gap = space(metrics, Space::Normal);
    const QRectF area(chartArea().right() + gap, 0, metrics.averageCharWidth() * barLetters - 2 * gap,
                      height());
    const double line = metrics.height();
    // As many lines as the caption needs, up to three.
    const QRectF caption(area.left(), 0, area.width(), 3 * line);
    painter.setPen(lookNow().text);
    painter.drawText(caption, Qt::AlignLeft | Qt::AlignBottom | Qt::TextWordWrap, captions_.third);
    const QRectF bar(area.left(), caption.bottom() + 1.5 * line, line,
                     height() - caption.bottom() - 3.5 * line);
    painter.drawText(QRectF(area.left(), bar.top() - 1.25 * line, area.width(), line),
                     shortNumber(third_.high));
    painter.drawText(QRectF(area.left(), bar.bottom() + line / 4, area.width(), line),
                     shortNumber(third_.low));
    for (int y = 0; y < static_cast<int>(bar.height()); ++y) {
        const double share = 1 - y / bar.height();
        painter.fillRect(QRectF(bar.left(), bar.top() + y, bar.width(), 1), QColor(heatOf(share)));
    }
}

void LogScatterPicture::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void LogScatterPicture::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) draw(scatter_);
}

// ---- Zoom and choice

void LogScatterPicture::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !shows()) return;
    pressed_ = dragged_ = event->position();
}

void LogScatterPicture::mouseMoveEvent(QMouseEvent* event) {
    if (!pressed_) return;
    dragged_ = event->position();
    update();
}

void LogScatterPicture::mouseReleaseEvent(QMouseEvent* event) {
    if (!pressed_ || event->button() != Qt::LeftButton) return;
    const QRectF box = QRectF(*pressed_, event->position()).normalized();
    pressed_.reset();
    update();
    if (!shows()) return;
    const double least = space(fontMetrics(), Space::Normal);
    if (box.width() < least || box.height() < least) return choose(event->position());
    const ChartPainter chart(chartArea(), font(), across_, up_);
    const QRectF inside = box & chart.plot();
    if (inside.isEmpty()) return;
    const ChartPoint from = chart.at(inside.bottomLeft());
    const ChartPoint to = chart.at(inside.topRight());
    Q_EMIT rangesChosen({from.x, to.x}, {from.y, to.y});
}

void LogScatterPicture::mouseDoubleClickEvent(QMouseEvent*) {
    pressed_.reset();
    Q_EMIT allAsked();
}

void LogScatterPicture::wheelEvent(QWheelEvent* event) {
    if (!shows() || event->angleDelta().y() == 0) return event->ignore();
    const ChartPainter chart(chartArea(), font(), across_, up_);
    zoomBy(event->angleDelta().y() > 0 ? scatterWheelZoom : 1 / scatterWheelZoom, chart.at(event->position()));
}

void LogScatterPicture::keyPressEvent(QKeyEvent* event) {
    const ChartPoint middle{(x_.low + x_.high) / 2, (y_.low + y_.high) / 2};
    if (!shows() || event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
        case Qt::Key_Plus:
            return zoomBy(scatterKeyZoom, middle);
        case Qt::Key_Minus:
            return zoomBy(1 / scatterKeyZoom, middle);
        case Qt::Key_0:
            return Q_EMIT allAsked();
        default:
            QWidget::keyPressEvent(event);
    }
}

void LogScatterPicture::zoomBy(double factor, ChartPoint around) {
    Q_EMIT rangesChosen(zoomed(x_, factor, around.x), zoomed(y_, factor, around.y));
}

void LogScatterPicture::choose(QPointF place) {
    const ChartPainter chart(chartArea(), font(), across_, up_);
    const QRectF plot = chart.plot();
    const int across = static_cast<int>((place.x() - plot.left()) / plot.width() * scatter_->across());
    const int up = static_cast<int>((plot.bottom() - place.y()) / plot.height() * scatter_->up());
    if (const auto found = scatter_->nearest(across, up, reachOfClick)) Q_EMIT rowChosen(found->firstRow);
}

}  // namespace zentaq
