// What every command that speaks with a unit needs: the port of the user's choice, the time, Ctrl-C, the
// progress on a terminal, and the same outcomes told in the same way.
#pragma once

#include <string>
#include <string_view>

#include "base/errors.h"
#include "context.h"
#include "headless/headless_session.h"
#include "platform/dropping_output.h"
#include "platform/posix_clock.h"
#include "platform/posix_line_loop.h"
#include "platform/posix_serial_port.h"
#include "platform/posix_stop_signals.h"

namespace zentaq::ctl {

/// No unit was reached: the port cannot be opened, or nobody answers on it.
struct NoUnit : CommandEnd {
    explicit NoUnit(const std::string& what) : CommandEnd(what, 3) {}
};

/// The user ended the command by a signal.
struct Interrupted : CommandEnd {
    Interrupted(const std::string& what, int signal) : CommandEnd(what, 128 + signal) {}
};

/// The command needs a word of the user which nobody can give here.
struct NotConfirmed : CommandEnd {
    explicit NotConfirmed(const std::string& what) : CommandEnd(what, 2) {}
};

/// The port that a user names: a number of the list, or the path of a device.
struct PortChoice {
    int number = 1;
    std::string path;  ///< empty: by number
};
/// Of all digits a number, else a path.
PortChoice portChoice(const std::string& text);

/// Shows how far a transfer has come; nothing where the standard error is no terminal. Never waits for a
/// terminal that takes nothing: a unit that is being programmed does not wait either.
class ProgressLine {
 public:
    explicit ProgressLine(int descriptor);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;

    void show(const LinkStatus& status);
    void clear();
    /// A line of its own, on whatever the standard error is.
    void note(const std::string& text);

 private:
    DroppingOutput out_;
    bool terminal_;
    std::string shown_;
};

class LinkDesk {
 public:
    /// Opens the port. Throws NoUnit where that fails. `calibration` as in HeadlessSession.
    LinkDesk(const Context& context, const std::string& port, UnitHost& unitHost,
             Unit* calibration = nullptr);
    /// Closes the port while whoever reads along is still there to see it.
    ~LinkDesk() { port_.close(); }
    LinkDesk(const LinkDesk&) = delete;
    LinkDesk& operator=(const LinkDesk&) = delete;

    /// Finds out who is there. Throws NoUnit where nobody is, Failure where the unit takes no commands.
    void findUnit();
    /// The same, but a unit that must be upgraded first is told on the standard error only.
    Found findAnyUnit();

    /// The same, but whoever is there, or nobody, is an answer. Throws Interrupted only.
    Found search();

    /// Throws Failure where the unit that was found is of another kind.
    void requireKind(const UnitKind& kind);

    /// Right before what only the unit that was found may get goes out: throws where it does not answer any
    /// more, or another one does.
    void requireSameUnit();

    /// From now on a signal is answered by a warning, and only a second one within three seconds ends.
    /// A terminal that is closed ends nothing.
    void stopOnSecondSignal(std::string warning) { stopWarning_ = std::move(warning); }

    /// While the answer lives nothing that comes from a terminal or its user stops the program where it
    /// stands.
    [[nodiscard]] PosixStopSignals::Hold holdSignals() { return signals_.hold(); }

    HeadlessSession& session() { return session_; }
    Link& link() { return session_.link(); }
    SerialPort& port() { return port_; }
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
    void beginTrace();
    void open(int number);
    void tellBoxes();
    bool stopWanted();

    const Context& context_;
    PosixClock clock_;
    WireTrace trace_;  ///< outlives the port, to see it closed
    PosixStopSignals signals_;
    ProgressLine progress_;
    PortChoice choice_;
    PosixSerialPort port_;
    PosixLineLoop loop_;
    HeadlessSession session_;
    std::string portName_;
    std::size_t boxesTold_ = 0;
    std::string stopWarning_;        ///< empty: the first signal ends
    bool stopping_ = false;          ///< the second signal came
    std::int64_t stopWarnedUs_ = 0;  ///< 0: not warned yet
};

}  // namespace zentaq::ctl
