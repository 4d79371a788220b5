// Holds signals off while something runs that must not be stopped or ended in the middle: what comes
// meanwhile takes effect when the object goes.
#pragma once

#include <csignal>
#include <initializer_list>
#include <utility>
#include <vector>

namespace zentaq {

/// What a user at a terminal, or the end of a session, sends a program: Ctrl-C, Ctrl-\, Ctrl-Z, output in the
/// background, the end of the terminal and the request to end.
inline constexpr std::initializer_list<int> userSignals = {SIGINT,  SIGQUIT, SIGTSTP,
                                                           SIGTTOU, SIGHUP,  SIGTERM};

class HeldSignals {
 public:
    /// A signal that the program ignores stays ignored. Objects are made and end on one thread, and end in
    /// the opposite order. SIGTTOU is never due later: what was to be written has been written.
    explicit HeldSignals(std::initializer_list<int> numbers);
    ~HeldSignals();
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

 private:
    std::vector<std::pair<int, struct sigaction>> former_;
};

}  // namespace zentaq
