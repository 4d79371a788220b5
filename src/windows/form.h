// Form: what a window is to the one who manages all of them. It takes the news of the core that concern it,
// and overrides below what it does otherwise than most.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/window_set.h"

namespace zentaq {

class Form : public WindowNews {
 public:
    /// `widget` is the window itself, which derives from this as well.
    explicit Form(QWidget* widget) : widget_(*widget) {}
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    QWidget& widget() const { return widget_; }

    /// Shows what it is opened on, as `WindowSet::open` names it: in front of all others, with the keyboard.
    virtual void openOn(const std::string& on, const std::string& title);
    /// The keyboard comes back; the field in hand keeps it.
    virtual void takeBack() { widget_.window()->activateWindow(); }
    /// Shows what the change counters of the core tell; at most sixty times a second.
    virtual void follow() {}
    /// Another window has gone, and may have stored what this one shows.
    virtual void windowClosed() {}

    // ---- Edits and the commands behind them
    /// What is being typed is entered. False: it was refused, and the user has been told.
    virtual bool finishEdits() { return true; }
    /// Keys wait for a change that is on its way to the unit.
    virtual bool keysWait() const { return false; }
    /// Runs a command when the keys that wait have had their turn; not at all, with a word to the user, when
    /// an entry among them is refused.
    virtual void behindKeys(const std::string& /*caption*/, std::function<void()> command) { command(); }
    /// What waited for a window that goes, for whoever removes it.
    struct Left {
        std::vector<std::function<void()>> commands;  ///< of the program, in order: they go on without it
        std::string notTaken;  ///< "2 keys, Discard Changes": what means this window alone
    };
    virtual Left takeWaiting() { return {}; }

    /// Told when the window has been closed, by whatever way, and is done with: the next time it is made
    /// anew.
    void onClosed(std::function<void()> then) { closed_ = std::move(then); }

 protected:
    /// A window that only hides, and keeps what it shows, does not tell.
    void tellClosed() {
        if (closed_) closed_();
    }

 private:
    QWidget& widget_;
    std::function<void()> closed_;
};

}  // namespace zentaq
