// The flight recorder's page of the workspace: its buttons, what it tells, and the log in hand.
#pragma once

#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QSlider>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QWidget>
#include <array>

#include "app/flight_record.h"
#include "app/session.h"
#include "qt/elided_label.h"
#include "qt/kept_splitter.h"
#include "windows/log_histogram_panel.h"
#include "windows/log_plot_view.h"
#include "windows/log_scatter_panel.h"
#include "windows/log_values.h"
#include "windows/redraw_gate.h"

namespace zentaq {

class RecorderPage : public QWidget {
    Q_OBJECT

 public:
    RecorderPage(Session& session, QWidget* parent);

    // ---- News
    void recorderChanged();
    void logChanged();
    void killTimers();
    void initializeRows() { plots_->Initialize_Rows(); }
    /// To the line in which the log is searched.
    void find();
    /// Another calibration is in hand, or something of it has changed.
    void calibrationChanged();

    /// Draws what the recorder holds now.
    void draw();

    /// Where nothing has to wrap the page makes do with the least, and does not scroll for comfort.
    int heightForWidth(int width) const override {
        return width < sizeHint().width() ? QWidget::heightForWidth(width)
                                          : layout()->minimumHeightForWidth(width);
    }

 protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

 private:
    void addButtons(QLayout& bar);
    QWidget* makeState();
    QWidget* makePosition();
    QWidget* makeSpeed();
    QWidget* makeFileButtons();
    void makeExports(QToolButton* button);
    void press(RecorderButton button);
    bool take(const QKeyEvent& key);
    void setTimer(QTimer& timer, int intervalMs);
    void drawButtons();
    void drawProgress();
    void drawPlots();
    void askOverlay();
    void takeOverlay();

    Session& session_;
    FlightRecord& recorder_;
    std::array<QPushButton*, recorderButtons> cmdFlightRecord_{};
    QLabel* lblFRFrame_ = nullptr;
    QLabel* lblFRTime_ = nullptr;
    ElidedLabel* lblFRStatus_ = nullptr;
    QSlider* sldPosition_ = nullptr;
    QSlider* sldPlaybackSpeed_ = nullptr;
    QToolButton* cmdFlightRecord_Import_ = nullptr;
    QAction* mnuOverlay_ = nullptr;
    QAction* mnuNoOverlay_ = nullptr;
    QToolButton* cmdFlightRecord_Export_ = nullptr;
    QProgressBar* prgImport_ = nullptr;
    QPushButton* cmdCancelImport_ = nullptr;
    LogPlotView* plots_ = nullptr;
    LogValues* values_ = nullptr;
    LogHistogramPanel* histogram_ = nullptr;
    LogScatterPanel* scatter_ = nullptr;
    QTabWidget* tabs_ = nullptr;
    LogLoading otherLoading_;
    LogColumns other_;
    QString otherName_;
    std::vector<LogMark> marksSeen_;
    std::size_t rowsSeen_ = 0;
    int logsSeen_ = 0;
    QTimer* tmrFlightRecord1_ = nullptr;  ///< playback
    QTimer* tmrFlightRecord2_ = nullptr;  ///< recording
    QTimer* tmrImport_ = nullptr;
    RedrawGate* redraw_ = nullptr;
};

}  // namespace zentaq
