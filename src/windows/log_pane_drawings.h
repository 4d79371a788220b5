// What a pane draws by itself: its lines below, and the cursors, markers and values that move while a log is
// played above, on a layer that is drawn without the lines.
#pragma once

#include "logs/plot_spans.h"
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
    /// What there is of a line to draw; `over` for that of the overlay.
    struct Line {
        const PaneLine* line = nullptr;
        bool over = false;
        std::vector<PlotSpan> spans{};
        long ink = 0;  ///< pixels of its strokes
    };
    std::vector<Line> linesToDraw() const;
    const PlotBuckets& bucketsOf(const Line& line) const;
    bool isFew(const Line& line) const;
    PlotGrid gridOf(const Line& line) const;
    void findPoints(const Line& line);
    void drawDense(QCPPainter& painter, std::vector<Line> lines);
    void drawFew(QCPPainter& painter, const Line& line);
    void clearPicture();
    void fillSpans(const Line& line);
    QPen penOf(const Line& line, double width) const;

    const PlotScene& scene_;
    const LogPane& pane_;
    std::vector<PlotPoint> points_;  ///< kept for their room
    std::vector<QPointF> places_;
    std::vector<QLine> strokes_;
    PlotCover cover_;
    QImage picture_;
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
