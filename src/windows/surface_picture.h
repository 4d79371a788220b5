// The picture of a surface: quads from the back to the front, so that the near side covers the far one, in
// the colors of the grid; lines, titles, ticks, the cursor and the engine's point.
#pragma once

#include <QWidget>
#include <vector>

#include "qt/look.h"
#include "tables/surface_model.h"
#include "tables/surface_projection.h"

namespace zentaq {

class SurfacePicture : public QWidget {
    Q_OBJECT

 public:
    /// `model` must outlive it.
    SurfacePicture(SurfaceModel& model, QWidget* parent);

    /// What is drawn, into any area.
    void draw(QPainter& painter, const QRect& area) const;
    /// The point of the surface nearest to a place of the widget.
    GridCell nearest(const QPointF& place) const;
    QSize sizeHint() const override;

 Q_SIGNALS:
    void picked(int row, int column);

 protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    struct Frame;
    Frame frameOf(const QRect& area) const;
    QPointF pointOf(const Frame& frame, double row, double column) const;
    double heightAt(double row, double column) const;
    void drawAxes(QPainter& painter, const Frame& frame) const;
    void drawTicks(QPainter& painter, const Frame& frame) const;
    void drawSurface(QPainter& painter, const Frame& frame) const;
    void drawTitles(QPainter& painter, const QRect& area) const;
    void drawPoint(QPainter& painter, const QPointF& at, const QColor& color, double size, bool ring) const;
    QColor groundOf(int row, int column) const;

    SurfaceModel& model_;
};

}  // namespace zentaq
