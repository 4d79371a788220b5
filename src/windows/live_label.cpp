#include "windows/live_label.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "qt/look.h"
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

/// Smaller than its caption no text of the panel gets.
int leastPixels() {
    return QFontInfo(typeFont(Type::Caption)).pixelSize();
}

/// The largest pixel size, up to `height`, at which `text` is no wider than `width`.
QFont fitted(QFont font, const QString& text, double width, double height) {
    const int least = leastPixels();
    font.setPixelSize(std::max(least, static_cast<int>(height)));
    const double needed = textWidth(QFontMetricsF(font), text);
    if (needed > width && needed > 0) {
        font.setPixelSize(std::max(least, static_cast<int>(font.pixelSize() * width / needed)));
    }
    return font;
}

/// Of the height of a tile: its caption, where there is more room than the caption needs.
constexpr double captionShare = 0.24;
constexpr double valueShare = 0.62;

/// Above the caption, below it and under the number.
double gapOf(int height) {
    return std::max(2.0, height * 0.08);
}

constexpr double boldIsWider = 1.15;

/// Space at the left and right inside a tile.
int sideOf(const QFontMetrics& metrics) {
    return space(metrics, Space::Tight);
}

/// Around a field or a lamp: one that is lit stands out from the panel.
QPen edgeOf(const std::optional<QColor>& lit, const DashColors& colors) {
    constexpr double litEdge = 2;
    const auto outline = lit ? outlineFor(*lit, colors.back) : std::nullopt;
    return outline ? QPen(*outline, litEdge) : QPen(colors.edge, 1);
}

}  // namespace

LiveLabel::LiveLabel(const Form& form, QWidget* parent)
    : QWidget(parent),
      SpokenInstrument(this, QAccessible::Indicator),
      form_(form),
      colors_(dashColors(false)) {
    named(this, form.name, form.caption.isEmpty() ? form.name : form.caption);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void LiveLabel::setText(const QString& text) {
    if (text == text_) return;
    text_ = text;
    valueChanged();
    update(valueArea());
}

QString LiveLabel::plainValue() const {
    return text_.isEmpty() ? QString() : text_ + QLatin1Char(' ') + form_.unit;
}

void LiveLabel::setUnit(const QString& unit) {
    if (unit == form_.unit) return;
    form_.unit = unit;
    fitFonts();
    update();
}

void LiveLabel::setMeaning(const QString& meaning) {
    setAccessibleName(meaning);
    setToolTip(meaning);
}

void LiveLabel::setAlarm(std::optional<QColor> color) {
    if (color == alarm_) return;
    const bool was = inAlarm();
    alarm_ = color;
    if (was != inAlarm()) alarmChanged();  // a colour that flashes is one alarm
    picture_ = {};
    update();
}

void LiveLabel::setColors(const DashColors& colors) {
    colors_ = colors;
    picture_ = {};
    update();
}

void LiveLabel::setInLine(bool on) {
    if (std::exchange(inLine_, on) == on) return;
    fitFonts();
    update();
}

QSize LiveLabel::sizeHint() const {
    return minimumSizeHint();
}

QSize LiveLabel::minimumSizeHint() const {
    const QFont caption = typeFont(Type::Caption);
    const QFontMetricsF metrics(caption);
    const double head = metrics.horizontalAdvance(form_.caption + QStringLiteral("  ") + form_.unit);
    QFont value = caption;
    value.setWeight(QFont::DemiBold);
    const double widest = std::max(head, textWidth(QFontMetricsF(value), form_.widest));
    const int line = static_cast<int>(std::ceil(metrics.height()));
    if (inLine_) {
        const double digits = textWidth(QFontMetricsF(value), form_.widest);
        const int between = space(fontMetrics(), Space::Normal);
        const double needed = metrics.horizontalAdvance(form_.caption) + between + digits;
        return {static_cast<int>(std::ceil(needed)) + 2 * sideOf(fontMetrics()), line};
    }
    return {static_cast<int>(std::ceil(widest)) + 2 * sideOf(fontMetrics()), 2 * line};
}

void LiveLabel::resizeEvent(QResizeEvent*) {
    fitFonts();
}

void LiveLabel::fitLine() {
    captionFont_ = typeFont(Type::Caption);
    valueFont_ = captionFont_;
    valueFont_.setWeight(QFont::DemiBold);
    picture_ = {};
}

void LiveLabel::fitFonts() {
    if (inLine_) return fitLine();
    const double room = width() - 2.0 * sideOf(fontMetrics());
    const QString head = form_.caption + QStringLiteral("  ") + form_.unit;
    captionFont_ = fitted(font(), head, room, height() * captionShare);
    QFont value = font();
    value.setWeight(QFont::DemiBold);
    const double rest = height() - QFontMetricsF(captionFont_).capHeight() - 3 * gapOf(height());
    // Digits have no descenders: their height is that of a capital.
    const double capitals = QFontMetricsF(value).capHeight() / QFontInfo(value).pixelSize();
    valueFont_ = fitted(value, form_.widest, room, std::min(rest / capitals, height() * valueShare));
    picture_ = {};
}

QRect LiveLabel::valueArea() const {
    if (inLine_) {
        const int caption = static_cast<int>(QFontMetricsF(captionFont_).horizontalAdvance(form_.caption));
        const int left = std::min(width(), sideOf(fontMetrics()) + caption);
        return {left, 0, width() - left, height()};
    }
    const int top = static_cast<int>(QFontMetricsF(captionFont_).capHeight() + 2 * gapOf(height()) - 1);
    return {0, top, width(), height() - top};
}

void LiveLabel::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) fitFonts();
}

void LiveLabel::paintEvent(QPaintEvent*) {
    const double ratio = devicePixelRatioF();
    if (picture_.isNull() || picture_.devicePixelRatio() != ratio) {
        picture_ = QPixmap(size() * ratio);
        picture_.setDevicePixelRatio(ratio);
        picture_.fill(colors_.back);
        QPainter painter(&picture_);
        paintField(painter);
    }
    QPainter painter(this);
    painter.drawPixmap(0, 0, picture_);
    const int side = sideOf(fontMetrics());
    paintDigits(painter, valueArea().adjusted(side, 0, -side, 0));
}

/// All but the number.
void LiveLabel::paintField(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    const double rounding = height() * 0.08;
    const QColor ground = alarm_.value_or(colors_.face);
    painter.setPen(edgeOf(alarm_, colors_));
    painter.setBrush(ground);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), rounding, rounding);
    painter.setFont(captionFont_);
    const QFontMetricsF metrics(captionFont_);
    const double base =
        inLine_ ? (height() + metrics.capHeight()) / 2 : gapOf(height()) + metrics.capHeight();
    const int side = sideOf(fontMetrics());
    const QColor ink = alarm_ ? inkFor(*alarm_) : colors_.labels;
    drawOutlined(painter, QPointF(side, base), form_.caption, ink, ground);
    if (inLine_) return;
    const double unitLeft = width() - side - metrics.horizontalAdvance(form_.unit);
    drawOutlined(painter, QPointF(unitLeft, base), form_.unit, ink, ground);
}

void LiveLabel::paintDigits(QPainter& painter, const QRect& area) const {
    // A text longer than foreseen is made smaller, not cut.
    const bool longer = text_.size() > form_.widest.size();
    const QFont font = longer ? fitted(valueFont_, text_, area.width(), valueFont_.pixelSize()) : valueFont_;
    painter.setFont(font);
    const QColor ink = alarm_ ? inkFor(*alarm_) : colors_.lights;
    const QColor ground = alarm_.value_or(colors_.face);
    const QFontMetricsF metrics(font);
    const double digit = digitWidth(metrics);
    const double below = inLine_ ? 0 : gapOf(height());
    const double base = area.top() + (area.height() - below + metrics.capHeight()) / 2;
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
    : QWidget(parent),
      SpokenInstrument(this, QAccessible::Indicator),
      inscription_(inscription),
      colors_(dashColors(false)) {
    named(this, name, inscription);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
}

void LiveLamp::light(std::optional<QColor> color) {
    if (color == color_) return;
    const bool was = lit();
    color_ = color;
    if (was != lit()) alarmChanged();
    update();
}

void LiveLamp::setColors(const DashColors& colors) {
    colors_ = colors;
    update();
}

QSize LiveLamp::sizeHint() const {
    return minimumSizeHint();
}

QSize LiveLamp::minimumSizeHint() const {
    const QFontMetricsF metrics(typeFont(Type::Caption));
    double widest = 0;
    for (const QString& word : inscription_.split(u' ')) {
        widest = std::max(widest, metrics.horizontalAdvance(word) * boldIsWider);
    }
    return {static_cast<int>(std::ceil(widest)) + 2 * sideOf(fontMetrics()),
            static_cast<int>(std::ceil(metrics.height()))};
}

/// In one line where that fits, else a word a line.
QStringList LiveLamp::lines(const QFontMetricsF& metrics) const {
    const QStringList words = inscription_.split(u' ');
    const bool oneLine = metrics.horizontalAdvance(inscription_) <= width() - 2 * sideOf(fontMetrics());
    const bool lowTile = height() < metrics.capHeight() * static_cast<int>(words.size()) * 1.4;
    return oneLine || lowTile ? QStringList{inscription_} : words;
}

void LiveLamp::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(edgeOf(color_, colors_));
    painter.setBrush(color_.value_or(colors_.lampOff));
    const double radius = height() * 0.08;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    QFont text = font();
    text.setWeight(QFont::Bold);
    text.setPixelSize(std::max(leastPixels(), static_cast<int>(height() * captionShare)));
    painter.setFont(text);
    const QFontMetricsF metrics(text);
    const QStringList shown = lines(metrics);
    const double step = metrics.capHeight() * 1.4;
    double middle = height() / 2.0 - step * static_cast<double>(shown.size() - 1) / 2;
    for (const QString& line : shown) {
        const QPointF base((width() - metrics.horizontalAdvance(line)) / 2, middle + metrics.capHeight() / 2);
        drawOutlined(painter, base, line, color_ ? inkFor(*color_) : colors_.labels,
                     color_.value_or(colors_.lampOff));
        middle += step;
    }
}

}  // namespace zentaq
