#include "windows/sketch_picture.h"

#include <QApplication>
#include <QEvent>
#include <algorithm>
#include <array>

#include "qt/named.h"
#include "qt/qt_text.h"
#include "windows/chart_painter.h"

namespace zentaq {

namespace {

constexpr int letters = 27;
constexpr int lines = 12;

/// Line by line; beyond them they begin anew.
constexpr std::array inks{&LookColors::accent, &LookColors::warning, &LookColors::good, &LookColors::changed,
                          &LookColors::alarm};

}  // namespace

SketchPicture::SketchPicture(QWidget* parent) : QWidget(parent) {
    named(this, "picSketch", "Picture of the settings");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SketchPicture::show(const SettingSketch& sketch) {
    sketch_ = sketch;
    setAccessibleDescription(shownString(sketch_.words));
    update();
}

QSize SketchPicture::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * letters, fontMetrics().height() * lines};
}

QSize SketchPicture::sizeHint() const {
    return minimumSizeHint();
}

void SketchPicture::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) update();
}

void SketchPicture::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double legend = drawLegend(nullptr, 0);
    // No higher than it is wide by half: a tall page would draw it out.
    const double high = std::min<double>(height() - legend, width() * 0.75);
    const ChartPainter chart(QRectF(0, 0, width(), high), font(), sketch_.across, sketch_.up);
    chart.drawScales(painter);
    for (std::size_t i = 0; i < sketch_.lines.size(); ++i)
        chart.drawLine(painter, sketch_.lines[i].points, penOf(i));
    for (const SketchMark& mark : sketch_.marks) {
        chart.drawDot(painter, mark.at, lookNow().accent, chart.letterHeight() / 5);
        chart.drawText(painter, mark.at, qString(mark.text), lookNow().text);
    }
    drawLegend(&painter, high);
}

QPen SketchPicture::penOf(std::size_t line) const {
    const double width = std::max(QFontMetricsF(font()).lineWidth() * 2, 2.0);
    const Qt::PenStyle style = sketch_.lines[line].dashed ? Qt::DashLine : Qt::SolidLine;
    return {lookNow().*inks[line % inks.size()], width, style};
}

/// The names of the lines, line by line from the left; answers the height of all. Without a painter it only
/// measures.
double SketchPicture::drawLegend(QPainter* painter, double top) const {
    const QFontMetricsF metrics(font());
    const double sample = metrics.height() * 1.5;
    const double gap = metrics.height() / 2;
    double x = gap;
    double y = top;
    bool any = false;
    for (std::size_t i = 0; i < sketch_.lines.size(); ++i) {
        if (sketch_.lines[i].name.empty()) continue;
        const QString name = qString(sketch_.lines[i].name);
        const double wide = sample + gap / 2 + metrics.horizontalAdvance(name) + gap;
        if (any && x + wide > width()) {
            x = gap;
            y += metrics.height();
        }
        any = true;
        if (painter != nullptr) {
            const double middle = y + metrics.height() / 2;
            painter->setPen(penOf(i));
            painter->drawLine(QPointF(x, middle), QPointF(x + sample, middle));
            painter->setPen(lookNow().text);
            painter->drawText(QPointF(x + sample + gap / 2, y + metrics.ascent()), name);
        }
        x += wide;
    }
    return any ? y + metrics.height() - top : 0;
}

}  // namespace zentaq
