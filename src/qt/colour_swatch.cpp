#include "qt/colour_swatch.h"

#include <QPainter>

#include "base/number_text.h"
#include "qt/style_shapes.h"

namespace zentaq {

namespace {

constexpr int greenPlace = 256;
constexpr int bluePlace = 65536;

}  // namespace

ColourSwatch::ColourSwatch(QWidget* parent) : QFrame(parent) {
    setFrameShape(Box);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    tell();
}

void ColourSwatch::setColour(std::optional<QColor> colour) {
    if (colour_ == colour) return;
    colour_ = colour;
    tell();
    update();
}

void ColourSwatch::tell() {
    setAccessibleDescription(colour_ ? QStringLiteral("Red %1, green %2, blue %3")
                                           .arg(colour_->red())
                                           .arg(colour_->green())
                                           .arg(colour_->blue())
                                     : "The mode's own color");
}

QSize ColourSwatch::sizeHint() const {
    const int height = fontMetrics().height() * 5 / 4;
    return {height * 5 / 2, height};
}

void ColourSwatch::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor ink = palette().color(QPalette::WindowText);
    const QRectF area(rect());
    painter.fillRect(area, colour_ ? *colour_ : palette().color(QPalette::Base));
    zentaq::drawFrame(painter, area, 0, ink, hairline(painter));
    if (colour_) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(ink, hairline(painter)));
    painter.drawLine(area.bottomLeft(), area.topRight());
}

QString colourText(const QColor& colour) {
    return QString::fromStdString(
        numberText(colour.red() + greenPlace * colour.green() + bluePlace * colour.blue()));
}

QColor colorOfNumber(int number) {
    return {number & 0xFF, (number >> 8) & 0xFF, (number >> 16) & 0xFF};
}

std::optional<QColor> storedColor(const std::string& text) {
    bool isNumber = false;
    const int number = QString::fromStdString(text).trimmed().toInt(&isNumber);
    if (!isNumber || number < 0 || number > 0xFFFFFF) return std::nullopt;
    return colorOfNumber(number);
}

}  // namespace zentaq
