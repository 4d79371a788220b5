// The panes of a plot over one axis of time, with everything that mouse and keys do in them: zoom, the play
// cursor, two cursors that measure, markers, and the shift of a log that is laid over.
#pragma once

#include <qcustomplot.h>

#include <QLabel>
#include <QLineEdit>
#include <QRubberBand>
#include <QTimer>
#include <memory>
#include <optional>
#include <vector>

#include "windows/log_pane.h"

namespace zentaq {

/// What is dragged out of the list of channels: the name of one, in UTF-8.
inline constexpr const char* channelMimeType = "application/x-zentaq-channel";

class LogPlotArea : public QCustomPlot {
    Q_OBJECT

 public:
    explicit LogPlotArea(QWidget* parent);
    ~LogPlotArea() override;

    const PlotScene& scene() const { return scene_; }
    const std::vector<std::unique_ptr<LogPane>>& drawnPanes() const { return drawn_; }

    /// Not owned; nullptr for none. Cursors and zoom begin anew.
    void showLog(const LogColumns* log);
    void overlay(const LogColumns* other);
    void grown();
    /// In seconds, at most `farthestShift` to either side.
    void overlayShift(double seconds);
    static constexpr double farthestShift = 36000;
    /// The cursor that plays with the log; the window moves where it would leave it.
    void cursorAt(double seconds);
    void hits(const std::vector<LogHit>& hits);
    void marks(const std::vector<LogMark>& marks);
    const std::vector<PlotPane>& panes() const { return panes_; }
    void panes(const std::vector<PlotPane>& panes);
    /// The pane that keys and the list act on; 0 without one.
    std::size_t paneInHand() const { return scene_.paneInHand; }
    /// Whether another pane would still be one that can be read.
    bool hasRoomForPane() const;
    /// Whether somebody takes `pictureAsked`.
    void canSavePicture(bool can) { canSave_ = can; }

    /// Does what a key means in the plot; false for one that means nothing here.
    bool takeKey(const QKeyEvent& event);

    // What the buttons and the menu do as well.
    void zoomBy(double factor);
    void moveBy(double part);
    void showAll();
    bool zoomBack();
    /// Both in seconds; nothing takes a cursor away.
    void measure(std::optional<double> a, std::optional<double> b);
    /// A and B around the middle of what is shown, or away.
    void toggleMeasuring();
    void toggleScale();
    /// At the play cursor; its text is asked for in place.
    void addMark();
    void renameMark(std::size_t mark);
    void removeMark(std::size_t mark);
    /// The one that stands at the play cursor, to within a hundredth of what is shown.
    std::optional<std::size_t> markAtCursor() const;

    /// Time and values at the cursor, for a screen reader.
    QString inWords() const;
    /// Draws what is due now.
    void drawNow();

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

 Q_SIGNALS:
    void timeChosen(double seconds);
    void marksEdited(const std::vector<zentaq::LogMark>& marks);
    void panesChanged();
    void measured();
    void overlayShifted(double seconds);
    void cursorMoved();
    void pictureAsked();

 protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

 private:
    enum class Grip { None, Box, A, B, Mark, Shift, Move };
    /// A button of the mouse that is down.
    struct Drag {
        Grip grip = Grip::None;
        QPoint from;
        std::size_t pane = 0;
        std::size_t mark = 0;
        double shift = 0;
        double start = 0;  ///< of the window, or of a marker behind the pointer; in seconds
        bool moved = false;
    };
    /// Where a channel that is dropped goes.
    struct Drop {
        std::size_t pane = 0;
        bool joins = false;
    };

    // ---- Drawing
    void rebuild();
    void dress();
    void fillBuckets();
    void linesChanged();
    void cursorsChanged();
    void showEmptiness();

    // ---- Keys and mouse
    bool takesKey(const QKeyEvent& event) const;
    bool takesPlainKey(int key) const;
    void plainKey(int key);
    void controlKey(int key);
    void chooseCursor(double seconds);
    void takePane(std::size_t pane);
    double secondsAt(double x) const;
    double clamped(double seconds) const;
    std::optional<std::size_t> paneAt(QPoint at) const;
    std::optional<std::size_t> markAt(QPoint at) const;
    bool isNear(std::optional<double> cursor, QPoint at) const;
    Grip gripAt(const QMouseEvent& event) const;
    void follow(QPoint at);
    void letGo(QPoint at);
    void zoomToBox(QPoint from, QPoint to);
    Drop dropAt(QPoint at) const;
    void showDrop(QPoint at);
    void takeMark(const QString& text);
    void tellMarks();

    PlotScene scene_;
    std::vector<PlotPane> panes_;
    std::vector<std::unique_ptr<LogPane>> drawn_;
    QCPMarginGroup* margins_;
    std::optional<Drag> drag_;
    std::optional<std::size_t> named_;  ///< the marker whose text is being entered
    QTimer due_;
    bool linesDue_ = false;
    bool canSave_ = false;
    QRubberBand* band_;
    QLineEdit* txtMark_;
    QLabel* lblEmpty_;
};

}  // namespace zentaq
