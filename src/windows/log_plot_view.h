// The plot of a datalog with its list of channels, its saved layouts and the figures between two measuring
// cursors. Whoever owns the log tells what is to be shown, and hears what the user has chosen.
#pragma once

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QTableWidget>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "logs/log_columns.h"
#include "logs/log_finding.h"
#include "logs/log_marks.h"
#include "logs/plot_layout.h"
#include "platform/dialogs.h"
#include "platform/settings_store.h"
#include "qt/elided_label.h"
#include "windows/log_channel_list.h"
#include "windows/log_find_bar.h"
#include "windows/log_hit_list.h"
#include "windows/log_plot_area.h"

namespace zentaq {

class LogPlotView : public QWidget {
    Q_OBJECT

 public:
    explicit LogPlotView(SettingsStore& settings, QWidget* parent);

    /// Not owned; it must stay until another one is shown. nullptr: none. Markers, hits and the overlay of
    /// the log before go; channels stay.
    void showLog(const LogColumns* log, const QString& name);
    /// Rows were appended.
    void grown();
    /// A second log over the first, not owned. nullptr: none.
    void overlay(const LogColumns* other, const QString& name);
    /// Seconds that are added to the times of the overlay.
    void overlayShift(double seconds);
    double overlayShift() const { return area_->scene().shift; }
    /// The cursor that plays with the log, in seconds; it is kept in view.
    void cursorAt(double seconds);
    /// Shaded stretches, in the order of their rows.
    void hits(const std::vector<LogHit>& hits);
    /// To the line in which one searches.
    void focusCondition() { find_->focusCondition(); }
    void searchFor(const QString& condition) { find_->searchFor(condition); }
    /// To the next hit in a direction, 1 or -1.
    void nextHit(int direction) { find_->next(direction); }
    void marks(const std::vector<LogMark>& marks);
    /// By the names of the newer format, in the order of the panes.
    std::vector<std::string> channels() const;
    void channels(const std::vector<std::string>& shown);

    /// Fills the list with the channels of the log, under whichever name it has them.
    void Initialize_Rows();
    /// The column of the log behind a caption of the list; empty where the log has it not.
    std::string GraphSelect(const std::string& caption) const;
    /// Plots one channel more, by either of its names. "EGOC" has its own range.
    void Graph(const std::string& channel);

    /// Asks for the path of a picture; an empty answer means none. Without it nothing offers to save one.
    void askPathBy(std::function<std::string(const FileRequest& request)> ask);
    /// As PNG, SVG or PDF, by the end of the path. What went wrong; empty where nothing did.
    QString savePicture(const QString& path);

    LogPlotArea& area() { return *area_; }

 Q_SIGNALS:
    void timeChosen(double seconds);
    void marksEdited(const std::vector<zentaq::LogMark>& marks);

 private:
    QWidget* makeSide();
    QWidget* makeMain();
    QWidget* makeButtons();
    QWidget* makeOverlayLine();
    void connectArea();
    void connectFinding();
    void connectLayouts();

    std::vector<PlotPane> firstPanes() const;
    void addChannel(const std::string& channel);
    void fillLayouts(const QString& chosen);
    void chooseLayout(const QString& name);
    void saveLayout();
    void removeLayout();
    void panesChanged();
    void measured();
    void fillMeasures(double a, double b);
    void cursorMoved();
    void speak();
    void askAndSavePicture();

    SettingsStore& settings_;
    PlotLayouts layouts_;
    const LogColumns* log_ = nullptr;
    QString name_;
    std::function<std::string(const FileRequest&)> ask_;
    QTimer tmrSpeak_;  ///< a listener follows one line a second
    QElapsedTimer spoken_;

    LogPlotArea* area_;
    LogChannelList* list_;
    LogFindBar* find_;
    QTabWidget* tabLogSide_ = nullptr;
    LogHitList* lstHits_ = nullptr;
    QComboBox* cboLayouts_ = nullptr;
    QPushButton* cmdSaveLayout_ = nullptr;
    QPushButton* cmdDeleteLayout_ = nullptr;
    QPushButton* cmdSavePicture_ = nullptr;
    std::vector<QPushButton*> needLog_;
    ElidedLabel* lblPlot_ = nullptr;
    QWidget* overlayLine_ = nullptr;
    ElidedLabel* lblOverlay_ = nullptr;
    QDoubleSpinBox* spnOverlayShift_ = nullptr;
    QLabel* lblMeasures_ = nullptr;
    QTableWidget* tblMeasures_ = nullptr;
};

}  // namespace zentaq
