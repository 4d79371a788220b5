#include "windows/typed_ahead.h"

#include <QApplication>
#include <QPointer>
#include <QScopeGuard>
#include <QTimer>
#include <utility>

#include "base/number_text.h"

namespace zentaq {
namespace {

/// Far more than anybody types while a unit answers, or is given up.
constexpr std::size_t mostHeldKeys = 1000;
/// How often what waits looks whether a box over the window has gone.
constexpr int boxPollMs = 20;

bool isModifier(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr;
}

/// "2 keys, Store Changes in ORB".
std::string namesOf(const std::deque<TypedAhead::Held>& held) {
    int keys = 0;
    int clicks = 0;
    std::string commands;
    for (const TypedAhead::Held& one : held) {
        if (one.command) {
            commands += ", " + one.caption;
        } else {
            ++(one.click != QEvent::None ? clicks : keys);
        }
    }
    const auto counted = [](int count, const std::string& what) {
        return count == 0 ? std::string() : ", " + numberText(count) + " " + what + (count == 1 ? "" : "s");
    };
    const std::string all = counted(keys, "key") + counted(clicks, "click") + commands;
    return all.empty() ? all : all.substr(2);
}

}  // namespace

TypedAhead::TypedAhead(Session& session, Table table, QObject* parent)
    : QObject(parent), session_(session), table_(std::move(table)) {}

std::string TypedAhead::names() const {
    return namesOf(held_);
}

// ---- Waiting

void TypedAhead::holdKey(const QKeyEvent& event) {
    // A held-down key would go on long after it was let go; Shift and its like come with the next key.
    if (event.isAutoRepeat() || isModifier(event.key())) return;
    Held held;
    held.key = event.key();
    held.modifiers = event.modifiers();
    held.text = event.text();
    hold(std::move(held));
}

void TypedAhead::holdClick(const QMouseEvent& event, GridCell cell) {
    Held held;
    held.click = event.type();
    held.modifiers = event.modifiers();
    held.cell = cell;
    hold(std::move(held));
}

void TypedAhead::holdCommand(const std::string& caption, std::function<void()> command, bool ofTable) {
    Held held;
    held.caption = caption;
    held.command = std::move(command);
    held.ofTable = ofTable;
    hold(std::move(held));
}

void TypedAhead::hold(Held held) {
    if (held_.size() < mostHeldKeys) return held_.push_back(std::move(held));
    QApplication::beep();
    const bool command = static_cast<bool>(held.command);
    const std::string names = namesOf({std::move(held)});
    const std::string told = "Too much waits for the unit; not taken: " + names + ".";
    // A key is missed by whoever types; a command that did not come passes for one that did.
    command ? session_.notice(told) : session_.sysLog(told);
}

Form::Left TypedAhead::take() {
    Form::Left left;
    std::deque<Held> notTaken;
    for (Held& one : std::exchange(held_, {})) {
        if (one.command && !one.ofTable) {
            left.commands.push_back(std::move(one.command));
        } else {
            notTaken.push_back(std::move(one));
        }
    }
    left.notTaken = namesOf(notTaken);
    return left;
}

// ---- Its turn

void TypedAhead::playLater(int ms) {
    QTimer::singleShot(ms, this, &TypedAhead::play);
}

void TypedAhead::play() {
    if (playing_ || held_.empty() || !table_.ready()) return;
    // What was typed before a box came is not meant for it, and its own boxes come after it.
    if (QApplication::activeModalWidget() != nullptr) return playLater(boxPollMs);
    const QPointer<TypedAhead> self(this);
    const Table table = table_;
    playing_ = true;
    // Also when a command fails: what waits behind it has its turn.
    const auto done = qScopeGuard([self] {
        if (!self) return;
        self->playing_ = false;
        if (!self->held_.empty() && self->table_.ready()) self->playLater();
    });
    while (!held_.empty() && table.ready()) {
        const Held next = std::move(held_.front());
        held_.pop_front();
        const bool taken = table.play(next);
        if (!self) return;  // the command has closed the table, and what waited was taken from it
        if (!taken) drop();
    }
}

// What was typed behind a refused entry was meant for a grid that took it: the digits of the next cell would
// land in this one.
void TypedAhead::drop() {
    if (held_.empty()) return;
    const std::string names = namesOf(std::exchange(held_, {}));
    session_.notice("The entry was refused; not taken behind it: " + names + ".");
}

}  // namespace zentaq
