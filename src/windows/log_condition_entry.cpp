#include "windows/log_condition_entry.h"

#include <QAbstractItemView>
#include <QLineEdit>

#include "logs/log_channel.h"
#include "logs/log_expression.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr int leastLetters = 8;

bool inName(QChar letter) {
    return letter.isLetterOrNumber() || letter == u'_';
}

}  // namespace

LogConditionEntry::LogConditionEntry(const QString& name, SettingsStore& settings, QWidget* parent)
    : QComboBox(parent), former_(settings) {
    named(this, name, "Condition over the channels");
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setMinimumContentsLength(leastLetters);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCompleter(nullptr);  // it would complete the whole condition by a former one while one types
    lineEdit()->setMaxLength(static_cast<int>(LogExpression::longest));
    lineEdit()->setAccessibleName(accessibleName());
    lineEdit()->setPlaceholderText("RPM > 3000 and MAP > 80");
    words_ = new QStandardItemModel(this);
    completer_ = new QCompleter(words_, this);
    completer_->setWidget(lineEdit());
    completer_->setCompletionRole(Qt::UserRole);
    completer_->setCaseSensitivity(Qt::CaseInsensitive);
    named(completer_->popup(), name + "Words", "Channels that begin like this");
    connect(completer_, qOverload<const QString&>(&QCompleter::activated), this,
            &LogConditionEntry::takeWord);
    connect(lineEdit(), &QLineEdit::textEdited, this, &LogConditionEntry::completeWord);
    connect(lineEdit(), &QLineEdit::returnPressed, this, [this] {
        // Enter takes the channel that is marked in the list.
        const bool chooses =
            completer_->popup()->isVisible() && completer_->popup()->currentIndex().isValid();
        if (!chooses) Q_EMIT entered();
    });
    connect(this, &QComboBox::textActivated, this, [this] { Q_EMIT entered(); });
}

void LogConditionEntry::channels(const std::vector<std::string>& columns) {
    words_->clear();
    for (const std::string& column : columns) {
        if (isTimeColumn(column)) continue;
        const std::string caption = channelCaption(column);
        const QString name = shownString(column);
        auto* item = new QStandardItem(caption == column ? name : name + "   " + shownString(caption));
        item->setData(qString(column), Qt::UserRole);
        words_->appendRow(item);
    }
    words_->sort(0);
}

std::string LogConditionEntry::condition() const {
    return currentText().trimmed().toStdString();
}

void LogConditionEntry::used() {
    former_.used(condition());
}

void LogConditionEntry::showPlace(std::size_t place) {
    const QString text = currentText();
    const int from = static_cast<int>(QString::fromStdString(text.toStdString().substr(0, place)).size());
    lineEdit()->setFocus();
    lineEdit()->setSelection(from, static_cast<int>(text.size()) - from);
}

// The list is read when it is opened: another entry may have had a condition meanwhile.
void LogConditionEntry::showPopup() {
    const QString typed = currentText();
    const QSignalBlocker quiet(this);
    clear();
    for (const std::string& condition : former_.all()) addItem(shownString(condition));
    setCurrentIndex(-1);
    setEditText(typed);
    if (count() > 0) QComboBox::showPopup();
}

// ---- Names of channels

qsizetype LogConditionEntry::wordStart() const {
    const QString text = currentText();
    qsizetype start = lineEdit()->cursorPosition();
    while (start > 0 && inName(text[start - 1])) --start;
    return start;
}

void LogConditionEntry::completeWord() {
    const qsizetype start = wordStart();
    const QString word = currentText().mid(start, lineEdit()->cursorPosition() - start);
    completer_->setCompletionPrefix(word);
    const bool whole = completer_->completionCount() == 1 &&
                       completer_->currentCompletion().compare(word, Qt::CaseInsensitive) == 0;
    if (word.isEmpty() || word[0].isDigit() || whole || completer_->completionCount() == 0)
        return completer_->popup()->hide();
    completer_->complete();
    completer_->popup()->setCurrentIndex({});
}

void LogConditionEntry::takeWord(const QString& channel) {
    const qsizetype start = wordStart();
    QString text = currentText();
    text.replace(start, lineEdit()->cursorPosition() - start, channel);
    lineEdit()->setText(text);
    lineEdit()->setCursorPosition(static_cast<int>(start + channel.size()));
}

}  // namespace zentaq
