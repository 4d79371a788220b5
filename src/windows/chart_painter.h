// Draws a chart: scales with their marks and titles, lines, points. The one place for all pictures of
// settings.
#pragma once

#include <QPainter>
#include <span>

#include "config/chart.h"
#include "qt/look.h"

namespace zentaq {

class ChartPainter {
 public:
    /// The chart in `area`; the scales must outlive it.
    ChartPainter(const QRectF& area, const QFont& font, const ChartScale& across, const ChartScale& up);

    /// Where the lines stand.
    const QRectF& plot() const { return plot_; }
    QPointF place(ChartPoint at) const;
    /// The other way round, also beyond the plot.
    ChartPoint at(QPointF place) const;

    /// Ground, marks and titles.
    void drawScales(QPainter& painter) const;
    /// A break where a point is none.
    void drawLine(QPainter& painter, std::span<const ChartPoint> points, const QPen& pen) const;
    void drawDot(QPainter& painter, ChartPoint at, const QColor& color, double radius) const;
    /// A text beside a place, inside the plot, on a veil of the ground.
    void drawText(QPainter& painter, ChartPoint at, const QString& text, const QColor& color) const;

    double lineWidth() const { return metrics_.lineWidth(); }
    double letterHeight() const { return metrics_.height(); }

 private:
    void drawAcross(QPainter& painter, const LookColors& look) const;
    void drawUp(QPainter& painter, const LookColors& look) const;

    const ChartScale& across_;
    const ChartScale& up_;
    QFont font_;
    QFontMetricsF metrics_;
    QRectF area_;
    QRectF plot_;
};

}  // namespace zentaq
