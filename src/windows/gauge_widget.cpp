#include "windows/gauge_widget.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "qt/look.h"
#include "qt/named.h"
#include "windows/live_label.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

constexpr double tickOuter = 0.98;
constexpr double majorInner = 0.86;
constexpr double minorInner = 0.92;
/// The outer end of the numbers, whatever their size.
constexpr double numberOuter = 0.83;
constexpr double numberShare = 0.17;
constexpr double needleLength = 0.93;
constexpr double shortLength = 0.55;
constexpr double tailLength = 0.12;
constexpr double hubRadius = 0.075;
constexpr double needleEdge = 1.2;

QPointF direction(double angle) {
    const double radians = angle * std::numbers::pi / 180;
    return {std::sin(radians), -std::cos(radians)};
}

}  // namespace

GaugeWidget::GaugeWidget(const GaugeFace& face, const LiveLabel* saidBy, QWidget* parent)
    : QWidget(parent),
      SpokenInstrument(this, QAccessible::Dial),
      face_(face),
      saidBy_(saidBy),
      colors_(dashColors(false)),
      angle_(face.restAngle) {
    named(this, face.name, face.caption.isEmpty() ? face.name : face.caption);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QString GaugeWidget::plainValue() const {
    return saidBy_ == nullptr ? QString() : saidBy_->plainValue();
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
    if (readout_ != nullptr) readout_->setParent(this);
    picture_ = {};
    placeReadout();
}

QSize GaugeWidget::sizeHint() const {
    return minimumSizeHint();
}

QSize GaugeWidget::minimumSizeHint() const {
    const double side = fontMetrics().height() * 2.0;
    const int beside = readout_ == nullptr ? 0 : readout_->minimumSizeHint().width();
    return {static_cast<int>(side * face_.bounds.width()) + beside,
            static_cast<int>(side * face_.bounds.height())};
}

void GaugeWidget::resizeEvent(QResizeEvent*) {
    picture_ = {};
    placeReadout();
}

void GaugeWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) setFace(face_);
}

void GaugeWidget::placeReadout() {
    if (readout_ == nullptr) return;
    const int left = static_cast<int>(faceArea().right()) + space(fontMetrics(), Space::Line);
    readout_->setGeometry(left, 0, width() - left, height());
    readout_->show();
}

QRectF GaugeWidget::faceArea() const {
    if (readout_ == nullptr) return rect();
    const int beside = readout_->minimumSizeHint().width() + space(fontMetrics(), Space::Line);
    return QRectF(0, 0, std::max(0, width() - beside), height());
}

double GaugeWidget::radius() const {
    const QRectF area = faceArea();
    return std::min(area.width() / face_.bounds.width(), area.height() / face_.bounds.height());
}

QPointF GaugeWidget::place(QPointF unit) const {
    return faceArea().center() + (unit - face_.bounds.center()) * radius();
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

QPixmap GaugeWidget::layer(const QColor& ground) const {
    const double ratio = devicePixelRatioF();
    QPixmap picture(size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(ground);
    return picture;
}

void GaugeWidget::paintEvent(QPaintEvent* event) {
    if (picture_.isNull() || picture_.devicePixelRatio() != devicePixelRatioF()) {
        picture_ = layer(colors_.back);
        QPainter face(&picture_);
        face.setRenderHint(QPainter::Antialiasing);
        drawFace(face);
        numbers_ = layer(Qt::transparent);
        QPainter numbers(&numbers_);
        numbers.setRenderHint(QPainter::Antialiasing);
        drawNumbers(numbers);
        ++facesDrawn_;
    }
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawPixmap(0, 0, picture_);
    painter.setRenderHint(QPainter::Antialiasing);
    drawNeedle(painter);
    painter.drawPixmap(0, 0, numbers_);
}

void GaugeWidget::paintFace(QPainter& painter) const {
    drawFace(painter);
    drawNumbers(painter);
}

double GaugeWidget::needleReach() {
    return needleLength;
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
}

void GaugeWidget::drawTicks(QPainter& painter) const {
    const double r = radius();
    for (const auto& tick : face_.ticks) {
        const bool major = !tick.label.isEmpty();
        const QPen line(colors_.lights, std::max(1.0, r * (major ? 0.024 : 0.012)), Qt::SolidLine,
                        Qt::FlatCap);
        drawOutlined(painter, onCircle(tick.angle, major ? majorInner : minorInner),
                     onCircle(tick.angle, tickOuter), line, colors_.face);
    }
}

QFont GaugeWidget::numberFont() const {
    QFont numbers = typeFont(Type::Caption);
    const int least = QFontInfo(numbers).pixelSize();
    numbers.setWeight(QFont::DemiBold);
    numbers.setPixelSize(std::max(least, static_cast<int>(radius() * numberShare)));
    return numbers;
}

/// The letters alone: without ascent and descent they come closer to each other.
QRectF GaugeWidget::numberPlace(const GaugeFace::Tick& tick, const QFontMetricsF& metrics) const {
    const QSizeF size(metrics.horizontalAdvance(tick.label), metrics.capHeight());
    const QPointF out = direction(tick.angle);
    const double reach = (std::abs(out.x()) * size.width() + std::abs(out.y()) * size.height()) / 2;
    const QPointF middle = place({0, 0}) + out * (radius() * numberOuter - reach);
    return {middle.x() - size.width() / 2, middle.y() - size.height() / 2, size.width(), size.height()};
}

QRectF GaugeWidget::captionPlace(const QFontMetricsF& metrics) const {
    const QPointF middle = place(face_.captionAt);
    const double width = metrics.horizontalAdvance(face_.caption);
    return {middle.x() - width / 2, middle.y() - metrics.capHeight() / 2, width, metrics.capHeight()};
}

/// Every number where there is room for all, else every second, third or further one.
std::vector<GaugeWidget::Number> GaugeWidget::numbers() const {
    std::vector<Number> all;
    const QFontMetricsF metrics(numberFont());
    for (const auto& tick : face_.ticks) {
        if (!tick.label.isEmpty()) all.push_back({tick.label, numberPlace(tick, metrics)});
    }
    const double gap = metrics.capHeight() / 4;
    const double hub = radius() * hubRadius;
    const QRectF middle(place({0, 0}) - QPointF(hub, hub), QSizeF(2 * hub, 2 * hub));
    for (std::size_t step = 1; step < all.size(); ++step) {
        std::vector<Number> some;
        std::vector<QRectF> taken{middle};
        if (!face_.caption.isEmpty()) taken.push_back(captionPlace(metrics));
        bool free = true;
        for (std::size_t i = 0; i < all.size(); i += step) {
            const QRectF around = all[i].place.adjusted(-gap, -gap, gap, gap);
            free = free && faceArea().contains(all[i].place) &&
                   std::none_of(taken.begin(), taken.end(),
                                [&](const QRectF& other) { return other.intersects(around); });
            taken.push_back(all[i].place);
            some.push_back(all[i]);
        }
        if (free) return some;
    }
    return {};
}

/// Above the needle, which goes below them: each keeps a little of the face around it.
void GaugeWidget::drawNumbers(QPainter& painter) const {
    const QFont font = numberFont();
    painter.setFont(font);
    const double halo = QFontMetricsF(font).capHeight() / 4;
    for (const Number& number : numbers()) {
        QPainterPath letters;
        letters.addText(number.place.bottomLeft(), font, number.text);
        painter.strokePath(letters, QPen(colors_.face, halo, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        drawOutlined(painter, number.place.bottomLeft(), number.text, colors_.lights, colors_.face);
    }
    if (face_.caption.isEmpty()) return;
    QFont caption = font;
    caption.setWeight(QFont::Normal);
    painter.setFont(caption);
    drawOutlined(painter, captionPlace(QFontMetricsF(caption)).bottomLeft(), face_.caption, colors_.labels,
                 face_.captionOnBack ? colors_.back : colors_.face);
}

void GaugeWidget::drawNeedle(QPainter& painter) const {
    const double r = radius();
    const Needle needle = needleAt(angle_);
    // The outline carries the contrast: the needle's own color may be any, and crosses ticks and zones.
    for (const auto& [color, more] :
         {std::pair(inkFor(colors_.face), 2 * needleEdge), {needleColor(), 0.0}}) {
        painter.setPen(QPen(color, std::max(2.0, r * 0.032) + more, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(needle.tail, needle.tip);
        if (!face_.twoLines) continue;
        painter.setPen(QPen(color, std::max(3.0, r * 0.07) + more, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(place({0, 0}), needle.shortTip);
    }
    painter.setPen(QPen(colors_.edge, std::max(1.0, r * 0.012)));
    painter.setBrush(colors_.face);
    painter.drawEllipse(place({0, 0}), r * hubRadius, r * hubRadius);
}

}  // namespace zentaq
