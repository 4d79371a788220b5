// Turns Ctrl-C and its relatives into a question that a program asks when it suits it, so that it can end
// what it does in good order. A program that does not ask, since it waits in a write or an open that does not
// come back, is ended as without this. Signals are as before when the object goes.
#pragma once

#include <csignal>
#include <ctime>
#include <utility>
#include <vector>

#include "platform/held_signals.h"
#include "platform/posix_handle.h"

namespace zentaq {

class PosixStopSignals {
 public:
    /// SIGINT, SIGTERM and SIGHUP; one that the program was told to ignore stays ignored. One object at a
    /// time. Throws Failure if there is another, or if the system gives no descriptor.
    PosixStopSignals();
    ~PosixStopSignals();
    PosixStopSignals(const PosixStopSignals&) = delete;
    PosixStopSignals& operator=(const PosixStopSignals&) = delete;

    /// The signal that came first; 0 for none so far.
    int received();
    /// The next signal is a first one again.
    void forget() { received_ = 0; }
    /// For poll(): ready to read when a signal came that nobody has asked for yet.
    int descriptor() const { return handle_.get(); }

    /// While it lives the program is never ended for not asking, SIGQUIT is asked for like the others,
    /// SIGTSTP waits, and writing to a terminal from the background or to a pipe without a reader does no
    /// harm.
    class Hold {
     public:
        explicit Hold(PosixStopSignals& signals);
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;

     private:
        PosixStopSignals& signals_;
        HeldSignals held_;
    };
    Hold hold() { return Hold(*this); }

 private:
    void watch(int number);
    void unwatch(std::size_t keep);

    std::vector<std::pair<int, struct sigaction>> former_;
    PosixHandle handle_;
    int received_ = 0;
};

}  // namespace zentaq
