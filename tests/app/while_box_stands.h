// What tests ask of the boxes of a command: what happens while one stands, which there were, what was logged,
// which come later.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/console.h"
#include "app/fake_platform.h"

namespace zentaq {

/// Happens once, while the first box of this title stands.
inline void whileBoxStands(ScriptedDialogs& dialogs, const std::string& title,
                           std::function<void()> happens) {
    dialogs.meanwhile = [&dialogs, title, happens = std::move(happens)](const std::string& shown) {
        if (shown != title) return;
        const auto now = happens;  // outlives the lambda
        dialogs.meanwhile = {};
        now();
    };
}

inline std::vector<std::string> titlesOf(const ScriptedDialogs& dialogs) {
    std::vector<std::string> all;
    for (const Box& box : dialogs.boxes) all.push_back(box.title);
    return all;
}

inline bool hasLine(const Console& console, const std::string& text) {
    return std::ranges::any_of(console.lines(),
                               [&](const std::string& line) { return line.find(text) != std::string::npos; });
}

/// Windows whose `later` waits for the event loop, as the real ones' does.
class LateWindows : public RecordingWindows {
 public:
    void later(const std::function<void()>& something) override { waiting.push_back(something); }
    void runEvents() {
        while (!waiting.empty()) {
            const auto next = std::move(waiting.front());
            waiting.pop_front();
            next();
        }
    }
    bool boxOpen() const override { return box; }
    std::deque<std::function<void()>> waiting;
    bool box = false;
};

/// Windows that let the link go on while they close.
class SlowlyClosingWindows : public RecordingWindows {
 public:
    void removeForms() override { meanwhile(); }
    std::function<void()> meanwhile;
};

}  // namespace zentaq
