// What every command that speaks with a unit needs: the port of the user's choice, the time, Ctrl-C, the
// progress on a terminal, and the same outcomes told in the same way.
#pragma once

#include <string>
#include <string_view>

#include "base/errors.h"
#include "context.h"
#include "link/headless_session.h"
#include "platform/posix_clock.h"
#include "platform/posix_line_loop.h"
#include "platform/posix_serial_port.h"
#include "platform/posix_stop_signals.h"

namespace zentaq::ctl {

/// No unit was reached: the port cannot be opened, or nobody answers on it. Exit status 3.
class NoUnit : public Failure {
 public:
    using Failure::Failure;
};

/// The user ended the command by a signal. Exit status 128 and its number.
class Interrupted : public Failure {
 public:
    Interrupted(const std::string& what, int number) : Failure(what), signal(number) {}
    int signal;
};

/// The port that a user names: a number of the list, or the path of a device.
struct PortChoice {
    int number = 1;
    std::string path;  ///< empty: by number
};
/// Of all digits a number, else a path.
PortChoice portChoice(const std::string& text);

/// Shows how far a transfer has come; nothing where the standard error is no terminal.
class ProgressLine {
 public:
    explicit ProgressLine(std::ostream& out);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const LinkStatus& status);
    void clear();

 private:
    std::ostream& out_;
    bool terminal_;
    std::string shown_;
};

class LinkDesk {
 public:
    /// Opens the port. Throws NoUnit where that fails. `calibration` as in HeadlessSession.
    LinkDesk(const Context& context, const std::string& port, UnitHost& unitHost,
             Unit* calibration = nullptr);

    /// Finds out who is there. Throws NoUnit where nobody is, Failure where the unit takes no commands.
    void findUnit();
    /// The same, but a unit that must be upgraded first is told on the standard error only.
    Found findAnyUnit();

    HeadlessSession& session() { return session_; }
    Link& link() { return session_.link(); }
    /// "ORB A 000123".
    std::string unitName();
    const std::string& portName() const { return portName_; }
    int signal() { return signals_.received(); }
    void clearProgress() { progress_.clear(); }

    /// Throws what a command's end other than Done means. `what`: what was asked of the unit, as
    /// "take the change".
    void require(Ending ending, const std::string& what);

 private:
    PosixSerialPort::PortSource portsOf(const PortChoice& choice) const;
    void open(int number);
    void tellBoxes();

    const Context& context_;
    PosixClock clock_;
    PosixStopSignals signals_;
    ProgressLine progress_;
    PortChoice choice_;
    PosixSerialPort port_;
    PosixLineLoop loop_;
    HeadlessSession session_;
    std::string portName_;
    std::size_t boxesTold_ = 0;
};

}  // namespace zentaq::ctl
