// What a pane draws by itself: its lines below, and the cursors, markers and values that move while a log is
// played above, on a layer that is drawn without the lines.
#pragma once

#include "windows/log_pane.h"

namespace zentaq {

class LogPane::Lines : public QCPLayerable {
 public:
    Lines(QCustomPlot& plot, const PlotScene& scene, const LogPane& pane);

 protected:
    QRect clipRect() const override;
    void applyDefaultAntialiasingHint(QCPPainter* painter) const override;
    void draw(QCPPainter* painter) override;

 private:
    void drawHits(QCPPainter& painter) const;
    void drawLine(QCPPainter& painter, const PaneLine& line, bool over);

    const PlotScene& scene_;
    const LogPane& pane_;
    std::vector<PlotPoint> points_;  ///< kept for their room
    std::vector<QPointF> places_;
};

class LogPane::Now : public QCPLayerable {
 public:
    Now(QCustomPlot& plot, const PlotScene& scene, const LogPane& pane);

 protected:
    QRect clipRect() const override;
    void applyDefaultAntialiasingHint(QCPPainter* painter) const override;
    void draw(QCPPainter* painter) override;

 private:
    void drawLegend(QCPPainter& painter) const;
    void drawMarks(QCPPainter& painter) const;
    void drawUpright(QCPPainter& painter, double seconds, const QPen& pen, const QString& letter) const;
    void drawDots(QCPPainter& painter) const;

    const PlotScene& scene_;
    const LogPane& pane_;
};

}  // namespace zentaq
