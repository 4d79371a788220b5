#include "windows/gauge_widget.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "qt/named.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

constexpr double tickOuter = 0.98;
constexpr double majorInner = 0.86;
constexpr double minorInner = 0.92;
constexpr double numberCircle = 0.72;
constexpr double needleLength = 0.93;
constexpr double shortLength = 0.55;
constexpr double tailLength = 0.12;
constexpr double hubRadius = 0.075;

QPointF direction(double angle) {
    const double radians = angle * std::numbers::pi / 180;
    return {std::sin(radians), -std::cos(radians)};
}

}  // namespace

GaugeWidget::GaugeWidget(const GaugeFace& face, QWidget* parent)
    : QWidget(parent), face_(face), colors_(dashColors(false)), angle_(face.restAngle) {
    named(this, face.name, face.caption.isEmpty() ? face.name : face.caption);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void GaugeWidget::setFace(const GaugeFace& face) {
    face_ = face;
    picture_ = {};
    placeReadout();
    update();
}

void GaugeWidget::setColors(const DashColors& colors) {
    colors_ = colors;
    picture_ = {};
    update();
}

void GaugeWidget::setAngle(double degrees) {
    // Half a tenth of a degree moves no pixel of any face.
    if (std::abs(degrees - angle_) < 0.05) return;
    const QRegion left = needleRegion(angle_);
    angle_ = degrees;
    update(left.united(needleRegion(angle_)));
}

void GaugeWidget::setNeedleColor(std::optional<QColor> color) {
    if (color == needle_) return;
    needle_ = color;
    update(needleRegion(angle_));
}

void GaugeWidget::setReadout(QWidget* readout) {
    readout_ = readout;
    readout_->setParent(this);
    placeReadout();
}

QSize GaugeWidget::sizeHint() const {
    const double side = fontMetrics().height() * 5.0;
    return {static_cast<int>(side * face_.bounds.width()), static_cast<int>(side * face_.bounds.height())};
}

void GaugeWidget::resizeEvent(QResizeEvent*) {
    picture_ = {};
    placeReadout();
}

void GaugeWidget::placeReadout() {
    if (readout_ == nullptr) return;
    const QRectF area(place(face_.readout.topLeft()), place(face_.readout.bottomRight()));
    readout_->setGeometry(area.toRect());
}

double GaugeWidget::radius() const {
    return std::min(width() / face_.bounds.width(), height() / face_.bounds.height());
}

QPointF GaugeWidget::place(QPointF unit) const {
    return QPointF(width(), height()) / 2 + (unit - face_.bounds.center()) * radius();
}

QPointF GaugeWidget::onCircle(double angle, double length) const {
    return place(direction(angle) * length);
}

GaugeWidget::Needle GaugeWidget::needleAt(double angle) const {
    return {onCircle(angle, -tailLength), onCircle(angle, needleLength), onCircle(angle, shortLength)};
}

QRegion GaugeWidget::needleRegion(double angle) const {
    // A slanting needle's bounding box would be half the dial; a chain of small boxes along it is not.
    constexpr int parts = 8;
    const Needle needle = needleAt(angle);
    const QPointF step = (needle.tip - needle.tail) / parts;
    const int margin = static_cast<int>(radius() * hubRadius) + 4;
    QRegion region;
    for (int i = 0; i < parts; ++i) {
        const QRectF part(needle.tail + step * i, needle.tail + step * (i + 1));
        region += part.normalized().toAlignedRect().adjusted(-margin, -margin, margin, margin);
    }
    return region;
}

void GaugeWidget::paintEvent(QPaintEvent* event) {
    const double ratio = devicePixelRatioF();
    if (picture_.isNull()) {
        picture_ = QPixmap(size() * ratio);
        picture_.setDevicePixelRatio(ratio);
        picture_.fill(Qt::transparent);
        QPainter painter(&picture_);
        painter.setRenderHint(QPainter::Antialiasing);
        drawFace(painter);
        ++facesDrawn_;
    }
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(0, 0, picture_);
    painter.setRenderHint(QPainter::Antialiasing);
    drawNeedle(painter);
}

void GaugeWidget::drawFace(QPainter& painter) const {
    const double r = radius();
    const QRectF disc(place({-1, -1}), place({1, 1}));
    if (!face_.ticks.empty()) {
        const double from = face_.ticks.front().angle;
        const double to = face_.ticks.back().angle;
        const double sweep = to - from;
        QPainterPath sector;
        if (sweep > 200) {
            sector.addEllipse(disc.adjusted(-r * 0.03, -r * 0.03, r * 0.03, r * 0.03));
        } else {
            const QRectF rim = disc.adjusted(-r * 0.03, -r * 0.03, r * 0.03, r * 0.03);
            sector.moveTo(place({0, 0}));
            sector.arcTo(rim, 90 - from + 6, -(sweep + 12));
            sector.closeSubpath();
        }
        painter.setPen(QPen(colors_.edge, std::max(1.0, r * 0.012)));
        painter.setBrush(colors_.face);
        painter.drawPath(sector);
    }
    painter.setBrush(Qt::NoBrush);
    for (const auto& zone : face_.zones) {
        painter.setPen(QPen(colors_.*zone.color, r * 0.07, Qt::SolidLine, Qt::FlatCap));
        const double inset = r * 0.055;
        painter.drawArc(disc.adjusted(inset, inset, -inset, -inset), static_cast<int>((90 - zone.from) * 16),
                        static_cast<int>((zone.from - zone.to) * 16));
    }
    drawTicks(painter);
    QFont caption = font();
    caption.setPixelSize(std::max(8, static_cast<int>(r * 0.13)));
    painter.setFont(caption);
    const QPointF middle = place(face_.captionAt);
    drawOutlined(painter, QRectF(middle.x() - r, middle.y() - r * 0.2, 2 * r, r * 0.4), Qt::AlignCenter,
                 face_.caption, colors_.labels, colors_.face);
}

void GaugeWidget::drawTicks(QPainter& painter) const {
    const double r = radius();
    QFont numbers = font();
    numbers.setWeight(QFont::DemiBold);
    numbers.setPixelSize(std::max(8, static_cast<int>(r * 0.16)));
    painter.setFont(numbers);
    for (const auto& tick : face_.ticks) {
        const bool major = !tick.label.isEmpty();
        const QPen line(colors_.lights, std::max(1.0, r * (major ? 0.024 : 0.012)), Qt::SolidLine,
                        Qt::FlatCap);
        drawOutlined(painter, onCircle(tick.angle, major ? majorInner : minorInner),
                     onCircle(tick.angle, tickOuter), line, colors_.face);
        const QPointF middle = onCircle(tick.angle, numberCircle);
        drawOutlined(painter, QRectF(middle.x() - r / 4, middle.y() - r / 8, r / 2, r / 4), Qt::AlignCenter,
                     tick.label, colors_.lights, colors_.face);
    }
}

void GaugeWidget::drawNeedle(QPainter& painter) const {
    const double r = radius();
    const Needle needle = needleAt(angle_);
    const QColor color = needleColor();
    drawOutlined(painter, needle.tail, needle.tip,
                 QPen(color, std::max(2.0, r * 0.032), Qt::SolidLine, Qt::RoundCap), colors_.face);
    if (face_.twoLines) {
        drawOutlined(painter, place({0, 0}), needle.shortTip,
                     QPen(color, std::max(3.0, r * 0.07), Qt::SolidLine, Qt::RoundCap), colors_.face);
    }
    painter.setPen(QPen(colors_.edge, std::max(1.0, r * 0.012)));
    painter.setBrush(colors_.face);
    painter.drawEllipse(place({0, 0}), r * hubRadius, r * hubRadius);
}

}  // namespace zentaq
