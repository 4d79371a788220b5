// What is typed and clicked on a table while a change is on its way to the unit: it waits, and has its turn
// in order with the commands that came behind it.
#pragma once

#include "app/session.h"

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QObject>
#include <deque>
#include <functional>
#include <string>

#include "tables/live_zones.h"
#include "windows/form.h"

namespace zentaq {

class TypedAhead : public QObject {
 public:
    /// A key, a click on a cell or a command.
    struct Held {
        int key = 0;
        Qt::KeyboardModifiers modifiers;
        QString text;
        QEvent::Type click = QEvent::None;
        GridCell cell;
        std::string caption;
        std::function<void()> command;
        bool ofTable = false;  ///< the command is one of the table's own
    };
    /// The table, to which it goes.
    struct Table {
        std::function<bool()> ready;
        std::function<bool(const Held&)> play;  ///< false: an entry was refused, and the user has been told
    };
    TypedAhead(Session& session, Table table, QObject* parent);

    /// Something waits; while it has its turn, nothing waits behind it.
    bool waits() const { return !playing_ && !held_.empty(); }
    void holdKey(const QKeyEvent& event);
    void holdClick(const QMouseEvent& event, GridCell cell);
    void holdCommand(const std::string& caption, std::function<void()> command, bool ofTable);
    void playLater(int ms = 0);
    Form::Left take();
    /// All that waits, in words; empty for nothing.
    std::string names() const;

 private:
    void hold(Held held);
    void play();
    void drop();

    Session& session_;
    Table table_;
    std::deque<Held> held_;
    bool playing_ = false;
};

}  // namespace zentaq
