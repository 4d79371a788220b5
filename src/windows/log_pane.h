// One pane of a plot: its lines with their scales, the stretches and the cursors over it, and above it the
// names and values of its channels at the play cursor.
#pragma once

#include <qcustomplot.h>

#include <QString>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "logs/log_columns.h"
#include "logs/log_finding.h"
#include "logs/log_marks.h"
#include "logs/plot_layout.h"
#include "logs/plot_lines.h"
#include "logs/plot_window.h"

namespace zentaq {

/// What all panes of a plot share.
struct PlotScene {
    const LogColumns* log = nullptr;
    const LogColumns* other = nullptr;  ///< laid over it
    double shift = 0;                   ///< seconds that are added to the times of `other`
    PlotWindow window;
    PlotBuckets buckets;
    PlotBuckets otherBuckets;
    std::optional<double> cursor;  ///< seconds, as are the two that measure
    std::optional<double> a;
    std::optional<double> b;
    std::vector<LogHit> hits;
    std::vector<LogMark> marks;
    std::size_t paneInHand = 0;
    bool keyboard = false;

    bool hasLog() const { return log != nullptr && !log->empty(); }
};

struct PaneLine {
    std::string channel;
    int column = -1;  ///< -1: the log has it not
    int otherColumn = -1;
    PlotScale scale;
    std::size_t color = 0;  ///< of plotColors()
};

/// Where the text of a marker stands in the first pane.
class LogPane;
QRect markFlag(const LogPane& pane, const LogMark& mark);

/// "Manifold Pressure 101.3 kPa"; what an overlay has at that moment behind it.
QString legendText(const PlotScene& scene, const PaneLine& line);

class LogPane {
 public:
    /// At row `number` of the plot's layout. `firstColor` counts the lines of the panes above.
    LogPane(QCustomPlot& plot, const PlotScene& scene, const PlotPane& shown, std::size_t number,
            std::size_t firstColor);
    ~LogPane();
    LogPane(const LogPane&) = delete;
    LogPane& operator=(const LogPane&) = delete;

    QCPAxisRect& axes() const { return *axes_; }
    const std::vector<PaneLine>& lines() const { return lines_; }
    /// The line whose scale stands at the left.
    const PaneLine* lead() const { return lead_ < lines_.size() ? &lines_[lead_] : nullptr; }
    void lead(std::size_t line);
    bool sharedScale() const { return shared_; }
    std::size_t number() const { return number_; }

    /// Finds the columns and scales of the logs anew.
    void follow();
    /// Colors, fonts and the room for the legend; `isLast` has the times below it.
    void dress(bool isLast, QSize room);
    /// The axes show what the window of the scene shows.
    void place();

    double xOf(double seconds) const;
    double yOf(const PaneLine& line, double value) const;
    /// Legend and plot.
    QRect whole() const;
    /// Where the name and value of a line stand.
    QRect legendSlot(std::size_t line) const;

 private:
    class Lines;
    class Now;

    /// With a little room above and below, so that a line at the end is seen.
    PlotScale shownScale(const PaneLine& line) const;
    int slotWidth() const;

    QCustomPlot& plot_;
    const PlotScene& scene_;
    std::size_t number_;
    bool shared_;
    std::size_t lead_ = 0;
    int slotsInLine_ = 1;
    int legendHeight_ = 0;
    std::vector<PaneLine> lines_;
    QCPAxisRect* axes_;
    std::unique_ptr<Lines> drawnLines_;
    std::unique_ptr<Now> drawnNow_;
};

}  // namespace zentaq
