// Turns Ctrl-C and its relatives into a question that a program asks when it suits it, so that it can end
// what it does in good order. Signals are as before when the object goes.
#pragma once

#include <csignal>

#include "platform/posix_handle.h"

namespace zentaq {

class PosixStopSignals {
 public:
    /// SIGINT, SIGTERM and SIGHUP; one that the program was told to ignore stays ignored.
    /// Throws Failure if the system gives no descriptor.
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

 private:
    sigset_t former_{};
    PosixHandle handle_;
    int received_ = 0;
};

}  // namespace zentaq
