#include "windows/sensor_line_picture.h"

#include <QAccessible>
#include <QApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "base/nice_step.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr double fullVolts = 5;
constexpr int wholeVolts = 5;
/// Room above and below the line, for the texts at its ends, as a share of its range.
constexpr double headRoom = 0.16;
constexpr double wantedMarks = 5;

/// Quietens the marks of the scale behind a text without hiding them.
void backText(QPainter& painter, const QRectF& place) {
    constexpr int mostlyOpaque = 210;
    QColor veil = lookNow().surface;
    veil.setAlpha(mostlyOpaque);
    painter.fillRect(place, veil);
}

}  // namespace

SensorLinePicture::SensorLinePicture(QWidget* parent) : QWidget(parent) {
    named(this, "picLine", "Line of the sensor");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SensorLinePicture::show(const SensorSketch& sketch) {
    sketch_ = sketch;
    setAccessibleDescription(shownString(sketch_.words));
    QAccessibleEvent told(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&told);
    update();
}

QSize SensorLinePicture::minimumSizeHint() const {
    const int letter = fontMetrics().averageCharWidth();
    constexpr int letters = 40;
    constexpr int lines = 9;
    return {letter * letters, fontMetrics().height() * lines};
}

QSize SensorLinePicture::sizeHint() const {
    return minimumSizeHint() * 1.4;
}

// ---- Geometry

SensorLinePicture::Scale SensorLinePicture::scale() const {
    double low = std::min(sketch_.lowest, sketch_.highest);
    double high = std::max(sketch_.lowest, sketch_.highest);
    if (sketch_.former) {
        low = std::min({low, sketch_.former->front(), sketch_.former->back()});
        high = std::max({high, sketch_.former->front(), sketch_.former->back()});
    }
    double range = high - low;
    if (!(range > 0) || !std::isfinite(range)) range = 1;
    return {low - range * headRoom, high + range * headRoom, niceStep(range, wantedMarks)};
}

QRectF SensorLinePicture::plot() const {
    const QFontMetricsF metrics(font());
    const qreal gap = metrics.height() / 2;
    qreal left = gap;
    if (sketch_.drawn) {
        const Scale at = scale();
        const qreal widest = std::max(metrics.horizontalAdvance(mark(at.bottom, at.step)),
                                      metrics.horizontalAdvance(mark(at.top, at.step)));
        left += widest + gap / 2;
    }
    const qreal below = metrics.height() * 2 + gap / 2;
    const qreal above = metrics.height() + gap / 2;
    return QRectF(rect()).adjusted(left, above, -gap, -below);
}

QPointF SensorLinePicture::place(double volts, double pressure) const {
    const QRectF area = plot();
    const Scale at = scale();
    const double up = (pressure - at.bottom) / (at.top - at.bottom);
    return {area.left() + area.width() * volts / fullVolts, area.bottom() - area.height() * up};
}

QString SensorLinePicture::mark(double pressure, double step) const {
    constexpr int mostDecimals = 12;
    const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step))), 0, mostDecimals);
    return shownString(numberText(roundTo(pressure, decimals)));
}

// ---- Painting

void SensorLinePicture::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), lookNow().surface);
    painter.setPen(lookNow().border);
    painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    drawVolts(painter);
    if (!sketch_.drawn) {
        drawReason(painter);
        return;
    }
    drawPressures(painter);
    drawFormer(painter);
    drawLine(painter);
}

void SensorLinePicture::drawVolts(QPainter& painter) const {
    const QRectF area = plot();
    const QFontMetricsF metrics(font());
    for (int volts = 0; volts <= wholeVolts; ++volts) {
        const qreal x = area.left() + area.width() * volts / fullVolts;
        painter.setPen(lookNow().border);
        painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
        painter.setPen(lookNow().mutedText);
        const QString text = shownString(numberText(volts));
        const qreal width = metrics.horizontalAdvance(text);
        const qreal left = std::clamp(x - width / 2, qreal(0), QRectF(rect()).right() - width);
        painter.drawText(QPointF(left, area.bottom() + metrics.ascent() + metrics.height() / 8), text);
    }
    const QRectF title(area.left(), area.bottom() + metrics.height(), area.width(), metrics.height());
    painter.drawText(title, Qt::AlignCenter, "Volts");
}

void SensorLinePicture::drawPressures(QPainter& painter) const {
    const QRectF area = plot();
    const QFontMetricsF metrics(font());
    const Scale at = scale();
    for (double value = std::ceil(at.bottom / at.step) * at.step; value <= at.top; value += at.step) {
        const qreal y = place(0, value).y();
        painter.setPen(lookNow().border);
        painter.drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
        painter.setPen(lookNow().mutedText);
        const QRectF label(0, y - metrics.height() / 2, area.left() - metrics.height() / 4, metrics.height());
        painter.drawText(label, Qt::AlignRight | Qt::AlignVCenter, mark(value, at.step));
    }
    const QRectF title(metrics.height() / 2, metrics.height() / 4, area.right(), metrics.height());
    painter.drawText(title, Qt::AlignLeft | Qt::AlignVCenter,
                     QStringLiteral("Pressure, %1").arg(shownString(sketch_.unit)));
}

void SensorLinePicture::drawFormer(QPainter& painter) const {
    if (!sketch_.former) return;
    const QFontMetricsF metrics(font());
    painter.setPen(QPen(lookNow().mutedText, metrics.lineWidth() * 1.5, Qt::DashLine));
    painter.drawLine(place(0, sketch_.former->front()), place(fullVolts, sketch_.former->back()));
    // The line climbs, so the lower right corner is free.
    const QString text = "dashed: as stored";
    const QSizeF size(metrics.horizontalAdvance(text), metrics.height());
    const qreal gap = metrics.height() / 2;
    const QRectF legend(plot().bottomRight() - QPointF(size.width() + gap, size.height() + gap), size);
    backText(painter, legend);
    painter.setPen(lookNow().mutedText);
    painter.drawText(legend, Qt::AlignCenter, text);
}

void SensorLinePicture::drawLine(QPainter& painter) const {
    const QFontMetricsF metrics(font());
    const QPointF low = place(0, sketch_.lowest);
    const QPointF high = place(fullVolts, sketch_.highest);
    painter.setPen(QPen(lookNow().accent, std::max(metrics.lineWidth() * 2.5, 2.5)));
    painter.drawLine(low, high);
    painter.setPen(QPen(lookNow().surface, metrics.lineWidth()));
    painter.setBrush(lookNow().liveMarker);
    const qreal radius = metrics.height() / 3;
    for (const SensorSketch::Point& point : sketch_.points) {
        painter.drawEllipse(place(point.volts, point.pressure), radius, radius);
    }
    drawEnd(painter, low, shownString(sketch_.lowestText), true);
    drawEnd(painter, high, shownString(sketch_.highestText), false);
}

// The low end's text stands under the line, the high end's above it: a climbing line leaves both places free.
void SensorLinePicture::drawEnd(QPainter& painter, QPointF end, const QString& text, bool low) const {
    painter.save();
    QFont bold = font();
    bold.setBold(true);
    painter.setFont(bold);
    painter.setPen(lookNow().text);
    const QFontMetricsF metrics(bold);
    const qreal gap = metrics.height() / 3;
    const qreal width = metrics.horizontalAdvance(text) + gap;
    const QRectF place =
        low ? QRectF(end.x() + gap, end.y() + gap / 2, width, metrics.height())
            : QRectF(end.x() - gap - width, end.y() - gap / 2 - metrics.height(), width, metrics.height());
    backText(painter, place);
    painter.drawText(place, (low ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter, text);
    painter.restore();
}

void SensorLinePicture::drawReason(QPainter& painter) const {
    const qreal gap = QFontMetricsF(font()).height();
    painter.setPen(lookNow().text);
    const QRectF area = plot().adjusted(gap, gap, -gap, -gap);
    const QRectF text = painter.boundingRect(area, static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap,
                                             shownString(sketch_.why));
    painter.fillRect(text.adjusted(-gap / 2, -gap / 4, gap / 2, gap / 4), lookNow().surface);
    painter.drawText(area, static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap, shownString(sketch_.why));
}

}  // namespace zentaq
