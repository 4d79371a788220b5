// The picture of a curve graph: its line and points, the engine's dot and the places where it was. A point is
// taken with the mouse or by keys; what a move means is entered by the one who owns the picture.
#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "config/curve_graph.h"
#include "windows/chart_painter.h"

namespace zentaq {

class CurvePicture : public QWidget {
    Q_OBJECT

 public:
    explicit CurvePicture(QWidget* parent);

    /// nullptr: nothing is drawn. It must outlive the picture, or be taken back.
    void show(const CurveGraph* graph);
    const CurveGraph* graph() const { return graph_; }

    /// The point in hand, from 0.
    std::size_t point() const { return point_; }
    void stand(std::size_t point);
    void showTrace(bool on);
    /// Where a point stands in the widget.
    QPointF placeOf(std::size_t point) const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void stood();
    /// A key: so many steps from where the point is by then.
    void stepAsked(std::size_t point, CurveWay way, int steps);
    /// A point has been dragged: this is to be entered at it.
    void moveAsked(std::size_t point, CurveWay way, const std::string& entry);

 protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    /// A point on its way with the mouse.
    struct Drag {
        QPointF from;
        std::optional<CurveWay> way{};  ///< settled with the first move
        std::string entry{};
    };
    ChartPainter painterOf() const;
    std::optional<std::size_t> nearest(QPointF place) const;
    void drawTrace(QPainter& painter, const ChartPainter& chart) const;
    void drawPoints(QPainter& painter, const ChartPainter& chart) const;
    void drawDragged(QPainter& painter, const ChartPainter& chart) const;
    void tell();

    const CurveGraph* graph_ = nullptr;
    std::size_t point_ = 0;
    bool trace_ = false;
    std::optional<Drag> drag_;
};

}  // namespace zentaq
