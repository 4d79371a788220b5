#include "qt/value_label.h"

#include <QPaintEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

namespace zentaq {

namespace {

// A sign and a blank stand where a digit may stand, so they take a digit's cell.
bool takesDigitCell(QChar character) {
    return character.isDigit() || character == u'-' || character == u'+' || character == u' ';
}

qreal widestDigit(const QFontMetricsF& metrics) {
    qreal width = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit) {
        width = std::max(width, metrics.horizontalAdvance(QChar(digit)));
    }
    return width;
}

}  // namespace

ValueLabel::ValueLabel(const QString& pattern, QWidget* parent) : QLabel(parent), pattern_(pattern) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    setTextFormat(Qt::PlainText);
}

void ValueLabel::showValue(const QString& shown) {
    if (shown != text()) setText(shown);
}

QSize ValueLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    const QFontMetricsF metrics(font());
    return {
        static_cast<int>(std::ceil(textWidth(pattern_))) + margins.left() + margins.right() + 2 * margin(),
        static_cast<int>(std::ceil(metrics.height())) + margins.top() + margins.bottom() + 2 * margin()};
}

void ValueLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, foregroundRole()));

    const QRectF area = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    const QString shown = text();
    qreal left = area.right() + 1 - textWidth(shown);
    if (alignment() & Qt::AlignLeft) left = area.left();
    if (alignment() & Qt::AlignHCenter) left = area.center().x() - textWidth(shown) / 2;
    for (const QChar character : shown) {
        const qreal width = cellWidth(character);
        painter.drawText(QRectF(left, area.top(), width, area.height()), Qt::AlignCenter | Qt::TextDontClip,
                         QString(character));
        left += width;
    }
}

qreal ValueLabel::cellWidth(QChar character) const {
    const QFontMetricsF metrics(font());
    return takesDigitCell(character) ? widestDigit(metrics) : metrics.horizontalAdvance(character);
}

qreal ValueLabel::textWidth(const QString& text) const {
    qreal width = 0;
    for (const QChar character : text) width += cellWidth(character);
    return width;
}

}  // namespace zentaq
