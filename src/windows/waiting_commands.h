// Commands that wait: behind what was typed before them, behind a table that has gone, or for the event loop.
#pragma once

#include <QObject>
#include <deque>
#include <functional>
#include <string>

#include "app/session.h"
#include "windows/form.h"

namespace zentaq {

class WaitingCommands : public QObject {
 public:
    /// How often what waits looks whether it may go on.
    static constexpr int lookMs = 16;

    /// What the open windows hold.
    struct Edits {
        std::function<Form*()> waitIn;  ///< where keys wait for the unit; nullptr for nowhere
        std::function<bool()> finish;   ///< false: an entry was refused, and the user has been told
    };
    WaitingCommands(Session& session, Edits edits) : session_(session), edits_(std::move(edits)) {}

    /// As `WindowSet::afterEdits`.
    void afterEdits(const std::string& caption, const std::function<void()>& command);
    /// From the event loop, one after the other: what shows a box ends before the next begins.
    void later(const std::function<void()>& something);
    /// What was typed for the program goes on without the window that it waited for; the keys that meant that
    /// window alone are told in one line.
    void handOn(const Form::Left& left);
    /// The program ends: nothing is handed on any more.
    void drop();

 private:
    void runLater();
    void runHandedOn();

    Session& session_;
    Edits edits_;
    std::deque<std::function<void()>> later_;
    bool runsLater_ = false;
    std::deque<std::function<void()>> handedOn_;
    bool runsHandedOn_ = false;
    bool dropped_ = false;
};

}  // namespace zentaq
