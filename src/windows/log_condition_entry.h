// Where a condition over the channels of a log is typed: names of channels are completed while one types, and
// the conditions that were used last can be chosen.
#pragma once

#include <QComboBox>
#include <QCompleter>
#include <QStandardItemModel>
#include <string>
#include <vector>

#include "logs/log_conditions.h"

namespace zentaq {

class LogConditionEntry : public QComboBox {
    Q_OBJECT

 public:
    LogConditionEntry(const QString& name, SettingsStore& settings, QWidget* parent);

    /// What may stand in a condition, by the columns of the log.
    void channels(const std::vector<std::string>& columns);
    std::string condition() const;
    /// It was good: it can be chosen again.
    void used();
    /// Where a condition is wrong: what stands from there on is selected, and has the keyboard.
    void showPlace(std::size_t place);
    void showPopup() override;

 Q_SIGNALS:
    /// Enter, or one of the former conditions.
    void entered();

 private:
    void completeWord();
    void takeWord(const QString& channel);
    /// Where the word in front of the cursor begins.
    qsizetype wordStart() const;

    LogConditions former_;
    QStandardItemModel* words_;
    QCompleter* completer_;
};

}  // namespace zentaq
