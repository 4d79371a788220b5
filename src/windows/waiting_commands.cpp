#include "windows/waiting_commands.h"

#include <QScopeGuard>
#include <QTimer>
#include <utility>

#include "link/flag_scope.h"
#include "qt/qt_dialogs.h"

namespace zentaq {

void WaitingCommands::afterEdits(const std::string& caption, const std::function<void()>& command) {
    const auto again = [this, caption, command] { afterEdits(caption, command); };
    if (session_.saving.putsOffWhileReading(caption, again)) return;
    const auto inTurn = [this, command] {
        if (edits_.finish()) command();
    };
    if (Form* form = edits_.waitIn()) return form->behindKeys(caption, inTurn);
    inTurn();
}

void WaitingCommands::later(const std::function<void()>& something) {
    later_.push_back(something);
    QTimer::singleShot(0, this, &WaitingCommands::runLater);
}

// A box runs an event loop of its own: the next one would stand upon it and be read first.
void WaitingCommands::runLater() {
    if (runsLater_ || later_.empty()) return;
    // A box would stand on a calibration of which one half is in hand.
    // And one that is about to go would be left standing under it.
    if (session_.saving.reading() || boxEndsByItself()) {
        return QTimer::singleShot(lookMs, this, &WaitingCommands::runLater);
    }
    const auto goOn = qScopeGuard([this] {
        if (!later_.empty()) QTimer::singleShot(0, this, &WaitingCommands::runLater);
    });
    const FlagScope scope(runsLater_);
    const std::function<void()> next = std::move(later_.front());
    later_.pop_front();
    next();
}

void WaitingCommands::handOn(const Form::Left& left) {
    if (!left.notTaken.empty()) session_.notice("The table was closed; not taken: " + left.notTaken + ".");
    if (left.commands.empty() || dropped_) return;
    handedOn_.insert(handedOn_.end(), left.commands.begin(), left.commands.end());
    QTimer::singleShot(0, this, &WaitingCommands::runHandedOn);
}

// In order, and not under a box of the command that removed the table: that one has not come to its end.
void WaitingCommands::runHandedOn() {
    if (runsHandedOn_) return;
    const auto goOn = qScopeGuard([this] {
        if (!handedOn_.empty()) QTimer::singleShot(lookMs, this, &WaitingCommands::runHandedOn);
    });
    const FlagScope scope(runsHandedOn_);
    while (!handedOn_.empty() && !boxStands() && !session_.saving.reading()) {
        const std::function<void()> next = std::move(handedOn_.front());
        handedOn_.pop_front();
        next();
    }
}

void WaitingCommands::drop() {
    dropped_ = true;
    handedOn_.clear();
}

}  // namespace zentaq
