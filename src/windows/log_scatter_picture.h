// The picture of two channels of a log against each other: dots, scales, the colors of a third channel.
#pragma once

#include <QImage>
#include <QWidget>
#include <optional>

#include "config/chart.h"
#include "logs/scatter.h"

namespace zentaq {

class LogScatterPicture : public QWidget {
    Q_OBJECT

 public:
    explicit LogScatterPicture(QWidget* parent);

    /// What stands beside the scales; an empty `third`: all dots have one color.
    struct Captions {
        QString x;
        QString y;
        QString third;
    };
    void show(const Captions& captions, const ScatterRange& x, const ScatterRange& y,
              const ScatterRange& third);
    void showNothing();
    /// How many places there are room for.
    QSize places() const;
    /// Not owned.
    void draw(const LogScatter* scatter);
    /// Where the log is now.
    void now(std::optional<ChartPoint> at);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void rangesChosen(const zentaq::ScatterRange& x, const zentaq::ScatterRange& y);
    void allAsked();
    void rowChosen(qulonglong row);
    void resized();

 protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

 private:
    QRectF chartArea() const;
    void makeDots();
    void drawColors(QPainter& painter) const;
    void zoomBy(double factor, ChartPoint around);
    void choose(QPointF place);
    bool shows() const { return scatter_ != nullptr; }

    Captions captions_;
    ScatterRange x_;
    ScatterRange y_;
    ScatterRange third_;
    ChartScale across_;
    ChartScale up_;
    const LogScatter* scatter_ = nullptr;
    QImage dots_;
    std::optional<ChartPoint> now_;
    std::optional<QPointF> pressed_;
    QPointF dragged_;
};

}  // namespace zentaq
