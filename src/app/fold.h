// A part of a window that folds to one line: by the user's hand, which is kept in the settings, and by itself
// where room is short, which is not.
#pragma once

#include <string>
#include <utility>

#include "base/errors.h"
#include "base/settings_keys.h"
#include "platform/settings_store.h"

namespace zentaq {

class Fold {
 public:
    /// A store that cannot be read is passed over: open, as at the first start.
    Fold(SettingsStore& settings, std::string key) : settings_(settings), key_(std::move(key)) {
        skipFailing([&] { chosen_ = settings_.get(settings::forms, key_) == "1"; });
    }

    bool folded() const { return chosen_ || (short_ && !openedAnyway_); }

    /// The room that the window has by now. What was opened in spite of too little stays so until there is
    /// enough again.
    void roomShort(bool isShort) {
        short_ = isShort;
        if (!isShort) openedAnyway_ = false;
    }
    /// The user's hand.
    void toggle() {
        if (folded()) {
            openedAnyway_ = short_;
            choose(false);
        } else if (short_) {
            openedAnyway_ = false;
        } else {
            choose(true);
        }
    }
    /// Open in spite of too little room.
    bool openedAnyway() const { return openedAnyway_; }
    /// Gives way to another part that is opened in spite of too little room for both.
    void giveWay() { openedAnyway_ = false; }
    /// As at the first start.
    void toDefault() {
        openedAnyway_ = false;
        choose(false);
    }

 private:
    /// A store that cannot be written is passed over.
    void choose(bool fold) {
        if (std::exchange(chosen_, fold) == fold) return;
        skipFailing([&] { settings_.set(settings::forms, key_, fold ? "1" : "0"); });
    }

    SettingsStore& settings_;
    std::string key_;
    bool chosen_ = false;
    bool short_ = false;
    bool openedAnyway_ = false;
};

/// What folds in the main window. Its windows tell the room that they have and show what is said here.
struct Folds {
    explicit Folds(SettingsStore& settings)
        : messages(settings, "foldMessages"),
          tree(settings, "foldTree"),
          dashboard(settings, "foldDashboard") {}

    Fold messages;  ///< the consoles and the link panel
    Fold tree;
    Fold dashboard;

    /// Where room is short for both, messages and dashboard open one at a time.
    void toggle(Fold& fold) {
        fold.toggle();
        if (!fold.openedAnyway()) return;
        if (&fold == &messages) dashboard.giveWay();
        if (&fold == &dashboard) messages.giveWay();
    }
    void toDefault() {
        for (Fold* fold : {&messages, &tree, &dashboard}) fold->toDefault();
    }
};

}  // namespace zentaq
