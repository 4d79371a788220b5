// The engine's present point on a table: corner brackets around the cell that it is nearest to, and ticks at
// the edges of that cell which tell where in it. Digits stay free.
#pragma once

#include <QColor>
#include <QPoint>
#include <QWidget>

namespace zentaq {

class TableMarker : public QWidget {
    Q_OBJECT

 public:
    explicit TableMarker(QWidget* parent);

    /// `cell` and `point` in the parent; `ground` is what the cell looks like.
    void point(const QRect& cell, QPoint point, const QColor& ground);
    /// That it stands round, in the parent.
    QRect cell() const { return geometry().marginsRemoved(margins()); }
    /// Of the engine, in the parent.
    QPoint engine() const { return pos() + point_; }
    /// What is drawn: the marker's own colour, behind it the rim that it needs on this ground, if any.
    void setColor(const QColor& color);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    /// By which it reaches beyond its cell: half of its line lies on each side of the cell's edge.
    QMargins margins() const { return {reach_, reach_, reach_, reach_}; }

    QColor color_;
    QColor ground_;
    QPoint point_;
    int thick_ = 0;
    int reach_ = 0;
};

}  // namespace zentaq
