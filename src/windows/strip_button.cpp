#include "windows/strip_button.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <algorithm>
#include <cmath>
#include <utility>

#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

/// Enough of a long text to know which one it is.
constexpr int leastLetters = 14;

struct Ink {
    QColor ground;
    QColor text;
};

Ink inkOf(StripTone tone, const LookColors& colors) {
    switch (tone) {
        case StripTone::Good:
            return {colors.goodBadge, colors.goodBadgeText};
        case StripTone::OnFly:
            return {colors.highlight, colors.highlightText};
        case StripTone::Changed:
            return {colors.changedBadge, colors.changedBadgeText};
        case StripTone::Warning:
            return {colors.warningBadge, colors.warningBadgeText};
        case StripTone::Alarm:
            return {colors.alarmBadge, colors.alarmBadgeText};
        case StripTone::Plain:
            break;
    }
    return {colors.badge, colors.badgeText};
}

}  // namespace

StripButton::StripButton(const QString& name, bool elides, QWidget* parent)
    : QPushButton(parent), elides_(elides) {
    named(this, name);
    setFont(typeFont(Type::Strip));
    setAutoDefault(true);  // Enter presses it, as Space does
    setFocusPolicy(Qt::NoFocus);
}

void StripButton::say(const QString& text, const QString& meaning, StripTone tone) {
    if (text == accessibleName() && meaning == accessibleDescription()) {
        if (std::exchange(tone_, tone) != tone) update();
        return;
    }
    if (text != accessibleName()) {
        setText(QString(text).replace(u'&', "&&"));  // a name of a file takes no key for itself
        setAccessibleName(text);
        // A click leaves the keyboard with the cell in hand.
        setFocusPolicy(text.isEmpty() ? Qt::NoFocus : Qt::TabFocus);
        updateGeometry();
    }
    setAccessibleDescription(meaning);
    // What may be cut is told whole.
    setToolTip(plainTip(elides_ ? text + "\n" + meaning : meaning));
    if (std::exchange(tone_, tone) != tone) update();
}

int StripButton::widthOf(const QString& text) const {
    const QFontMetrics metrics = fontMetrics();
    // A text is cut as soon as a part of a pixel is missing.
    const int letters = static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(text))) + 1;
    return letters + 2 * space(metrics, Space::Normal);
}

QSize StripButton::sizeHint() const {
    const QFontMetrics metrics = fontMetrics();
    return {widthOf(accessibleName()),
            metrics.height() + 2 * space(metrics, Space::Line) + 2 * edgeWidth(metrics)};
}

int StripButton::leastWidth() const {
    const int whole = sizeHint().width();
    return elides_ ? std::min(whole, widthOf(QString(leastLetters, u'n'))) : whole;
}

void StripButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics metrics = fontMetrics();
    const LookColors colors = lookColors(appliedLook(*qApp));
    const auto [ground, ink] = inkOf(tone_, colors);
    const int radius = space(metrics, Space::Line);
    const QRectF body = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(underMouse() || isDown() ? QPen(ink, edgeWidth(metrics)) : QPen(Qt::NoPen));
    painter.setBrush(ground);
    painter.drawRoundedRect(body, radius, radius);
    painter.setPen(ink);
    const int side = space(metrics, Space::Normal);
    const QRect inside = rect().adjusted(side, 0, -side, 0);
    painter.drawText(
        inside, Qt::AlignCenter | Qt::TextSingleLine,
        elides_ ? metrics.elidedText(accessibleName(), Qt::ElideMiddle, inside.width()) : accessibleName());
    if (!hasFocus()) return;
    QStyleOptionFocusRect focus;
    focus.initFrom(this);
    focus.backgroundColor = ground;
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
}

}  // namespace zentaq
