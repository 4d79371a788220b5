#include "windows/live_label.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>

#include "qt/named.h"
#include "windows/outlined.h"

namespace zentaq {
namespace {

constexpr std::array digits = {'0', '1', '2', '3', '4', '5', '6', '7', '8', '9'};

double digitWidth(const QFontMetricsF& metrics) {
    double widest = 0;
    for (const char digit : digits) widest = std::max(widest, metrics.horizontalAdvance(QLatin1Char(digit)));
    return widest;
}

double placeWidth(const QFontMetricsF& metrics, QChar letter, double digit) {
    return letter.isDigit() ? digit : metrics.horizontalAdvance(letter);
}

double textWidth(const QFontMetricsF& metrics, const QString& text) {
    const double digit = digitWidth(metrics);
    double width = 0;
    for (const QChar letter : text) width += placeWidth(metrics, letter, digit);
    return width;
}

/// The largest pixel size, up to `height`, at which `text` is no wider than `width`.
QFont fitted(QFont font, const QString& text, double width, double height) {
    font.setPixelSize(std::max(7, static_cast<int>(height)));
    const double needed = textWidth(QFontMetricsF(font), text);
    if (needed > width && needed > 0) {
        font.setPixelSize(std::max(7, static_cast<int>(font.pixelSize() * width / needed)));
    }
    return font;
}

/// Around a field or a lamp: one that is lit stands out from the panel.
QPen edgeOf(const std::optional<QColor>& lit, const DashColors& colors) {
    constexpr double litEdge = 2;
    const auto outline = lit ? outlineFor(*lit, colors.back) : std::nullopt;
    return outline ? QPen(*outline, litEdge) : QPen(colors.edge, 1);
}

}  // namespace

LiveLabel::LiveLabel(const Form& form, QWidget* parent)
    : QWidget(parent), form_(form), colors_(dashColors(false)) {
    named(this, form.name, form.caption.isEmpty() ? form.name : form.caption);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void LiveLabel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    setAccessibleDescription(text_.isEmpty() ? QString() : text_ + QLatin1Char(' ') + form_.unit);
    update(valueArea());
}

void LiveLabel::setUnit(const QString& unit) {
    if (unit == form_.unit) return;
    form_.unit = unit;
    update();
}

void LiveLabel::setMeaning(const QString& meaning) {
    setAccessibleName(meaning);
    setToolTip(meaning);
}

void LiveLabel::setAlarm(std::optional<QColor> color) {
    if (color == alarm_) return;
    alarm_ = color;
    update();
}

void LiveLabel::setColors(const DashColors& colors) {
    colors_ = colors;
    update();
}

QSize LiveLabel::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 12, fontMetrics().height() * 3};
}

void LiveLabel::resizeEvent(QResizeEvent*) {
    fitFonts();
}

void LiveLabel::fitFonts() {
    captionFont_ = font();
    captionFont_.setPixelSize(std::max(8, static_cast<int>(height() * 0.24)));
    const QString head = form_.caption + QStringLiteral("  ") + form_.unit;
    captionFont_ = fitted(captionFont_, head, width() * 0.92, height() * 0.25);
    QFont value = font();
    value.setWeight(QFont::DemiBold);
    valueFont_ = fitted(value, form_.widest, width() * 0.92, height() * 0.62);
}

QRect LiveLabel::valueArea() const {
    const int top = static_cast<int>(height() * 0.28);
    return {0, top, width(), height() - top};
}

void LiveLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double rounding = height() * 0.08;
    const QColor ground = alarm_.value_or(colors_.face);
    painter.setPen(edgeOf(alarm_, colors_));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), rounding, rounding);
    const int side = std::max(2, static_cast<int>(width() * 0.05));
    const QRect head(side, static_cast<int>(height() * 0.05), width() - 2 * side,
                     static_cast<int>(height() * 0.27));
    painter.setFont(captionFont_);
    const QColor ink = alarm_ ? inkFor(*alarm_) : colors_.labels;
    drawOutlined(painter, QRectF(head), Qt::AlignLeft, form_.caption, ink, ground);
    drawOutlined(painter, QRectF(head), Qt::AlignRight, form_.unit, ink, ground);
    paintDigits(painter, valueArea().adjusted(side, 0, -side, 0));
}

void LiveLabel::paintDigits(QPainter& painter, const QRect& area) const {
    // A text longer than foreseen is made smaller, not cut.
    const QFont font = fitted(valueFont_, text_, area.width(), valueFont_.pixelSize());
    painter.setFont(font);
    const QColor ink = alarm_ ? inkFor(*alarm_) : colors_.lights;
    const QColor ground = alarm_.value_or(colors_.face);
    const QFontMetricsF metrics(font);
    const double digit = digitWidth(metrics);
    const double base = area.center().y() + (metrics.capHeight() + 1) / 2;
    double right = area.right();
    // NOLINTNEXTLINE(modernize-loop-convert): from the right, without a copy of the text
    for (auto letter = text_.crbegin(); letter != text_.crend(); ++letter) {
        const double place = placeWidth(metrics, *letter, digit);
        const double slack = place - metrics.horizontalAdvance(*letter);
        drawOutlined(painter, QPointF(right - place + slack / 2, base), QString(*letter), ink, ground);
        right -= place;
    }
}

LiveLamp::LiveLamp(const QString& name, const QString& inscription, QWidget* parent)
    : QWidget(parent), inscription_(inscription), colors_(dashColors(false)) {
    named(this, name, inscription);
    setAccessibleDescription(QStringLiteral("off"));
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void LiveLamp::light(std::optional<QColor> color) {
    if (color == color_) return;
    color_ = color;
    setAccessibleDescription(lit() ? QStringLiteral("on") : QStringLiteral("off"));
    update();
}

void LiveLamp::setColors(const DashColors& colors) {
    colors_ = colors;
    update();
}

QSize LiveLamp::sizeHint() const {
    return {fontMetrics().horizontalAdvance(inscription_) + 2 * fontMetrics().height(),
            fontMetrics().height() * 2};
}

void LiveLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edgeOf(color_, colors_));
    painter.setBrush(color_.value_or(colors_.lampOff));
    const double radius = height() * 0.15;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    QFont text = font();
    text.setWeight(QFont::Bold);
    painter.setFont(fitted(text, inscription_, width() * 0.86, height() * 0.42));
    drawOutlined(painter, QRectF(rect()), Qt::AlignCenter, inscription_,
                 color_ ? inkFor(*color_) : colors_.labels, color_.value_or(colors_.lampOff));
}

}  // namespace zentaq
