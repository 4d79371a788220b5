// SensorLinePicture: the line of a MAP sensor, volts across and pressure upwards, with the points it was made
// from, the ends of its range, and the reason when there is no line.
#pragma once

#include <QWidget>

#include "app/sensor_manager.h"

namespace zentaq {

class SensorLinePicture : public QWidget {
    Q_OBJECT

 public:
    explicit SensorLinePicture(QWidget* parent);

    void show(const SensorSketch& sketch);
    using QWidget::show;
    const SensorSketch& sketch() const { return sketch_; }

    /// Where a point stands in the widget. Only while a line is drawn.
    QPointF place(double volts, double pressure) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    /// The pressures at the bottom and the top of the picture, and the distance of its scale's marks.
    struct Scale {
        double bottom = 0;
        double top = 1;
        double step = 1;
    };
    Scale scale() const;
    QRectF plot() const;
    QString mark(double pressure, double step) const;
    void drawVolts(QPainter& painter) const;
    void drawPressures(QPainter& painter) const;
    void drawFormer(QPainter& painter) const;
    void drawLine(QPainter& painter) const;
    void drawEnd(QPainter& painter, QPointF end, const QString& text, bool low) const;
    void drawReason(QPainter& painter) const;

    SensorSketch sketch_;
};

}  // namespace zentaq
