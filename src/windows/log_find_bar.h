// The line in which a log is searched: a condition, what it found, and the way from hit to hit.
#pragma once

#include <QToolButton>
#include <QWidget>
#include <vector>

#include "logs/log_search.h"
#include "qt/elided_label.h"
#include "windows/log_condition_entry.h"
#include "windows/sliced_work.h"

namespace zentaq {

class LogFindBar : public QWidget {
    Q_OBJECT

 public:
    LogFindBar(SettingsStore& settings, QWidget* parent);

    /// Not owned. nullptr: none. What was found in the one before is gone; the condition stays, and what is
    /// searched for in one log is searched for in the next.
    void showLog(const LogColumns* log);
    /// Rows were appended: the search goes on.
    void grown();
    /// Where "next" counts from, in seconds.
    void cursorAt(double seconds) { seconds_ = seconds; }

    /// Searches; an empty condition takes the hits away.
    void find();
    void searchFor(const QString& condition);
    /// To the next hit in a direction, 1 or -1.
    void next(int direction);
    void focusCondition();
    const LogSearch& search() const { return search_; }
    bool searching() const { return work_.running(); }
    ElidedLabel& said() { return *lblFound_; }

 Q_SIGNALS:
    /// They are other ones now, or none.
    void hitsFound(const std::vector<zentaq::LogHit>& hits);
    void timeChosen(double seconds);
    /// Esc: the keyboard goes back to the plot.
    void left();

 protected:
    void keyPressEvent(QKeyEvent* event) override;

 private:
    void clear();
    void say(const QString& text, bool wrong);
    void draw();

    LogSearch search_;
    SlicedWork work_;
    const LogColumns* log_ = nullptr;
    std::string found_;  ///< the condition whose hits are shown
    double seconds_ = 0;
    LogConditionEntry* cboCondition_;
    QToolButton* cmdFind_;
    QToolButton* cmdHitBefore_;
    QToolButton* cmdHitAfter_;
    ElidedLabel* lblFound_;
};

}  // namespace zentaq
