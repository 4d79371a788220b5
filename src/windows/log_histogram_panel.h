// A channel of a log laid over a table of the calibration in hand: what it did in each cell.
#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QWidget>
#include <memory>
#include <string>

#include "logs/log_histogram.h"
#include "logs/log_sweep.h"
#include "qt/elided_label.h"
#include "tables/table_grid.h"
#include "windows/log_condition_entry.h"
#include "windows/sliced_work.h"
#include "windows/table_view.h"

namespace zentaq {

class LogHistogramPanel : public QWidget {
    Q_OBJECT

 public:
    LogHistogramPanel(SettingsStore& settings, QWidget* parent);

    /// Not owned. nullptr: none.
    void showLog(const LogColumns* log);
    /// Rows were appended.
    void grown();
    /// The calibration in hand, whose tables are read and never written; nullptr: none. It is told again
    /// whenever something of it has changed.
    void showCalibration(Unit* unit);
    bool counting() const { return work_.running(); }
    TableGridView& view() { return *grid_; }

 Q_SIGNALS:
    /// The rows of a cell are asked for.
    void conditionChosen(const QString& condition);

 protected:
    void showEvent(QShowEvent* event) override;
    void changeEvent(QEvent* event) override;

 private:
    void fillTables();
    void fillChannels();
    /// What is chosen, or the log or the table, has changed: counted at once, or when it is seen again.
    void renew();
    void begin();
    bool slice();
    void draw();
    void drawCells();
    void drawCell(int row, int column);
    void say(const QString& text);
    void tellCell();
    QString inWords(int row, int column) const;
    QString digits(double value, int more) const;
    const RunningFigures& cellAt(int row, int column) const;
    void askRows(const QModelIndex& cell);

    const LogColumns* log_ = nullptr;
    Unit* unit_ = nullptr;
    LogSweep sweep_;
    SlicedWork work_;
    std::unique_ptr<LogHistogram> histogram_;
    int atColumn_ = -1;  ///< of the log
    int atRow_ = -1;
    int value_ = -1;
    bool stale_ = true;
    TableGrid cells_;
    TableGrid stored_;   ///< the table's own values
    std::string units_;  ///< of the log's pressures, where the table has others
    QComboBox* cboTable_;
    QComboBox* cboChannel_;
    QComboBox* cboShows_;
    LogConditionEntry* cboCondition_;
    QCheckBox* chkBeside_;
    ElidedLabel* lblHistogram_;
    ElidedLabel* lblCell_;
    TableGridView* grid_;
};

}  // namespace zentaq
