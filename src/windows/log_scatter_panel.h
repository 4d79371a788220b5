// Two channels of a log against each other, colored by a third: what is chosen, and the picture.
#pragma once

#include <QComboBox>
#include <QWidget>

#include "logs/log_sweep.h"
#include "logs/scatter.h"
#include "qt/elided_label.h"
#include "windows/log_condition_entry.h"
#include "windows/log_scatter_picture.h"
#include "windows/sliced_work.h"

namespace zentaq {

class LogScatterPanel : public QWidget {
    Q_OBJECT

 public:
    LogScatterPanel(SettingsStore& settings, QWidget* parent);

    /// Not owned. nullptr: none.
    void showLog(const LogColumns* log);
    /// Rows were appended.
    void grown();
    /// Where the log is now, in seconds.
    void cursorAt(double seconds);
    bool counting() const { return work_.running(); }
    const LogScatter& scatter() const { return scatter_; }

 Q_SIGNALS:
    void timeChosen(double seconds);

 protected:
    void showEvent(QShowEvent* event) override;

 private:
    void fillChannels();
    /// Other channels, another condition or another log: all of it is shown.
    void renew();
    /// Other ranges, or another size.
    void begin();
    bool slice();
    void drawn();
    int columnOf(const QComboBox& combo) const;
    QString captionOf(const QComboBox& combo) const;

    const LogColumns* log_ = nullptr;
    LogSweep sweep_;
    SlicedWork work_;
    LogScatter scatter_;
    ScatterRange x_;
    ScatterRange y_;
    int xColumn_ = -1;
    int yColumn_ = -1;
    int thirdColumn_ = -1;
    bool stale_ = true;
    bool zoomed_ = false;
    double seconds_ = 0;
    QComboBox* cboX_;
    QComboBox* cboY_;
    QComboBox* cboColour_;
    LogConditionEntry* cboCondition_;
    ElidedLabel* lblScatter_;
    LogScatterPicture* picture_;
};

}  // namespace zentaq
