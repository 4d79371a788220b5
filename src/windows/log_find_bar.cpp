#include "windows/log_find_bar.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QStyle>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {

namespace {

constexpr std::size_t sliceRows = 4096;
constexpr double percent = 100;

QToolButton* hitButton(const QString& name, const QString& meaning, const QString& key, Qt::ArrowType arrow,
                       QWidget* parent) {
    auto* button = named(new QToolButton(parent), name, meaning);
    button->setArrowType(arrow);
    button->setToolTip(meaning + " (" + key + ")");
    button->setFocusPolicy(Qt::TabFocus);
    return button;
}

}  // namespace

LogFindBar::LogFindBar(SettingsStore& settings, QWidget* parent)
    : QWidget(parent), work_([this] { return search_.step(sliceRows); }, [this] { draw(); }, this) {
    named(this, "fraFindInLog", "Find in the datalog");
    cboCondition_ = new LogConditionEntry("cboLogCondition", settings, this);
    cboCondition_->setToolTip(
        "Shades the rows for which it holds. Enter searches, Enter again goes on to the next hit.");
    // Narrower than a button of a form: on a laptop at a large scale the line has little room.
    cmdFind_ = named(new QToolButton(this), "cmdFindInLog", "Find");
    cmdFind_->setText("Fi&nd");
    cmdFind_->setFocusPolicy(Qt::TabFocus);
    cmdFind_->setToolTip("Search (Ctrl+F goes to the line)");
    cmdHitBefore_ = hitButton("cmdHitBefore", "To the hit before", "Shift+F3", Qt::LeftArrow, this);
    cmdHitAfter_ = hitButton("cmdHitAfter", "To the next hit", "F3", Qt::RightArrow, this);
    lblFound_ = new ElidedLabel("lblFound", "What the search found", this);
    connect(cboCondition_, &LogConditionEntry::entered, this,
            [this] { cboCondition_->condition() == found_ && !search_.hits().empty() ? next(1) : find(); });
    connect(cmdFind_, &QToolButton::clicked, this, &LogFindBar::find);
    connect(cmdHitBefore_, &QToolButton::clicked, this, [this] { next(-1); });
    connect(cmdHitAfter_, &QToolButton::clicked, this, [this] { next(1); });
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(margins(fontMetrics(), Space::None));
    row->setSpacing(space(fontMetrics(), Space::Tight));
    row->addWidget(cboCondition_, 1);
    row->addWidget(cmdFind_);
    row->addWidget(cmdHitBefore_);
    row->addWidget(cmdHitAfter_);
    draw();
}

void LogFindBar::showLog(const LogColumns* log) {
    log_ = log;
    work_.stop();
    search_.stop();
    cboCondition_->channels(log == nullptr ? std::vector<std::string>{} : log->names());
    for (QWidget* one : std::initializer_list<QWidget*>{cboCondition_, cmdFind_})
        one->setEnabled(log != nullptr);
    // The hits of one log are none of the next: it is searched for the same, where it has the channels.
    const bool again = log != nullptr && !found_.empty() && cboCondition_->condition() == found_;
    if (!again) return clear();
    try {
        search_.begin(*log, found_);
        work_.start();
    } catch (const ExpressionError& wrong) {
        clear();
        say(shownString(wrong.what()), true);
    }
}

void LogFindBar::grown() {
    if (!found_.empty() && search_.valid()) work_.start();
}

void LogFindBar::find() {
    if (log_ == nullptr) return;
    const std::string condition = cboCondition_->condition();
    if (condition.empty()) return clear();
    try {
        search_.begin(*log_, condition);
        found_ = condition;
        cboCondition_->used();
        work_.start();
    } catch (const ExpressionError& wrong) {
        clear();
        say(shownString(wrong.what()), true);
        cboCondition_->showPlace(wrong.place);
    }
}

void LogFindBar::searchFor(const QString& condition) {
    cboCondition_->setEditText(condition);
    find();
}

// What the entry has no use for comes here.
void LogFindBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape || event->modifiers() != Qt::NoModifier)
        return QWidget::keyPressEvent(event);
    Q_EMIT left();
}

void LogFindBar::clear() {
    work_.stop();
    search_.stop();
    found_.clear();
    draw();
}

void LogFindBar::next(int direction) {
    if (cboCondition_->condition() != found_) return find();
    const auto hit = search_.from(seconds_, direction);
    if (!hit) return;
    // Whoever is asked shows it a picture later; who presses the key again meanwhile means the hit after.
    seconds_ = log_->seconds(search_.hits()[*hit].first);
    Q_EMIT timeChosen(seconds_);
}

void LogFindBar::focusCondition() {
    cboCondition_->setFocus();
    cboCondition_->lineEdit()->selectAll();
}

void LogFindBar::say(const QString& text, bool wrong) {
    lblFound_->show(text);
    lblFound_->setFont(typeFont(wrong ? Type::Strong : Type::Body));
}

void LogFindBar::draw() {
    const bool any = !search_.hits().empty();
    cmdHitBefore_->setEnabled(any);
    cmdHitAfter_->setEnabled(any);
    if (found_.empty())
        say({}, false);
    else if (work_.running())
        say(QString("Searching %1 %").arg(static_cast<int>(search_.share() * percent)), false);
    else
        say(qString(search_.text()), false);
    if (!work_.running()) Q_EMIT hitsFound(search_.hits());
}

}  // namespace zentaq
