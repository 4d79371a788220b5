#include "link_desk.h"

#include <unistd.h>

#include <csignal>
#include <ostream>

#include "base/box_texts.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "platform/posix_ports.h"
#include "platform/runtime_folder.h"

namespace zentaq::ctl {

namespace {

constexpr std::string_view clearLine = "\r\033[K";

bool isDigits(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

PortChoice portChoice(const std::string& text) {
    constexpr std::size_t longest = 4;
    if (!isDigits(text) || text.size() > longest) return {1, text};
    return {std::stoi(text), {}};
}

// ---- Progress

ProgressLine::ProgressLine(int descriptor) : out_(descriptor), terminal_(::isatty(descriptor) != 0) {}

void ProgressLine::show(const LinkStatus& status) {
    if (!terminal_) return;
    if (!status.progressVisible) return clear();
    const std::string text = shownLine(status.title + " " + status.progressText);
    if (text == shown_) return;
    out_.write(std::string(clearLine) + text);
    shown_ = text;
}

void ProgressLine::clear() {
    if (shown_.empty()) return;
    out_.write(clearLine);
    shown_.clear();
}

void ProgressLine::note(const std::string& text) {
    clear();
    out_.write(shownError(text) + "\n");
}

// ---- Desk

LinkDesk::LinkDesk(const Context& context, const std::string& port, UnitHost& unitHost, Unit* calibration)
    : context_(context),
      trace_(clock_),
      progress_(STDERR_FILENO),
      choice_(portChoice(port)),
      port_(clock_, portsOf(choice_)),
      loop_(port_, clock_, signals_.descriptor()),
      session_({.port = port_,
                .clock = clock_,
                .pass = loop_,
                .unitHost = unitHost,
                .calibration = calibration,
                .stopWanted = [this] { return stopWanted(); },
                .watch = [this](const LinkStatus& status) { progress_.show(status); },
                .trace = &trace_}),
      portName_(choice_.path.empty() ? "port " + numberText(choice_.number) : choice_.path) {
    loop_.onTick([this] { session_.link().tick(); });
    beginTrace();
    open(choice_.number);
    loop_.start();
}

void LinkDesk::beginTrace() {
    if (context_.trace.empty()) return;
    trace_.onFailure([this](const std::string& why) { progress_.note("The trace has ended: " + why); });
    trace_.start(context_.trace);
    port_.watch(trace_);
}

PosixSerialPort::PortSource LinkDesk::portsOf(const PortChoice& choice) const {
    if (choice.path.empty()) return posixPorts;
    const PortInfo named{choice.number, choice.path, {}, "path:" + choice.path};
    return [named] { return std::vector{named}; };
}

void LinkDesk::open(int number) {
    // Without the simulated units the numbers of the others are not what a user may think.
    const auto trouble = choice_.path.empty() ? runtimeFolderTrouble() : std::nullopt;
    if (trouble) context_.notes << *trouble << '\n';
    try {
        session_.open(number);
    } catch (const PortBusy& failure) {
        throw NoUnit(errorLine(codes::PortInUse) + " (" + failure.what() + ")");
    } catch (const Failure& failure) {
        const std::string hint = choice_.path.empty() ? "; the command ports lists those that are" : "";
        throw NoUnit("Port not available: " + std::string(failure.what()) + hint);
    }
}

Found LinkDesk::search() {
    const Found found = session_.findUnit();
    progress_.clear();
    tellBoxes();
    if (found == Found::Stopped) throw Interrupted("Interrupted. Nothing was changed in the unit.", signal());
    if (found == Found::Damaged) {
        throw Failure("A unit answers, but its replies are damaged: check the cable. Nothing was changed.");
    }
    return found;
}

bool LinkDesk::stopWanted() {
    // What nobody can read any more needs no asking: a full disk behind an endless monitor.
    if (stopWarning_.empty()) return signals_.received() != 0 || !context_.out;
    const int number = signals_.received();
    if (number == 0) return false;
    constexpr std::int64_t graceUs = 3'000'000;
    const std::int64_t now = clock_.monotonicUs();
    const bool warned = stopWarnedUs_ != 0 && now - stopWarnedUs_ <= graceUs;
    // The second signal stays: this is asked again until the transfer may be broken off.
    if (number != SIGHUP && (warned || stopping_)) return stopping_ = true;
    signals_.forget();
    if (number == SIGHUP) return false;
    progress_.note(stopWarning_);
    stopWarnedUs_ = now;
    return false;
}

Found LinkDesk::findAnyUnit() {
    const Found found = search();
    if (found == Found::Nobody) throw NoUnit(errorLine(codes::NoUnit) + " (" + portName_ + ")");
    if (found == Found::Untold) {
        throw Failure(unitName() + " does not tell its firmware: nothing can be done with it.");
    }
    return found;
}

void LinkDesk::findUnit() {
    if (findAnyUnit() == Found::OldFirmware) {
        throw Failure(unitName() + " must be upgraded before it takes commands.");
    }
}

void LinkDesk::requireKind(const UnitKind& kind) {
    if (session_.linkedUnit().kind().slot != kind.slot) throw Failure(errorLine(codes::WrongUnit));
}

void LinkDesk::requireSameUnit() {
    const LinkedUnit before = link().linked();
    const std::string name = unitName();
    const Found found = session_.findAgain();
    if (found == Found::Stopped) throw Interrupted("Interrupted. Nothing was changed in the unit.", signal());
    if (found == Found::Nobody) throw NoUnit(name + " does not answer any more. Nothing was sent to it.");
    const LinkedUnit& now = link().linked();
    if (now.SerialNumber == before.SerialNumber && now.LinkedUnitKind == before.LinkedUnitKind) return;
    throw Failure(unitName() + " answers now in the place of " + name + ". Nothing was sent to it.");
}

std::string LinkDesk::unitName() {
    return std::string(session_.linkedUnit().kind().name) + " " + session_.linkDisplay.status().serialNumber;
}

void LinkDesk::tellBoxes() {
    const auto& boxes = session_.boxes();
    for (; boxesTold_ < boxes.size(); ++boxesTold_)
        context_.notes << onOneLine(boxes[boxesTold_].text) << '\n';
}

void LinkDesk::require(Ending ending, const std::string& what) {
    switch (ending) {
        case Ending::Done:
            return;
        case Ending::Refused:
            throw Failure("The unit refused to " + what + ".");
        case Ending::Stopped:
            throw Interrupted("Interrupted: the unit was asked to " + what + ", the answer is not known.",
                              signal());
        case Ending::Silent:
            throw Failure("The unit did not answer when it was asked to " + what +
                          ". Whether it did is not known.");
        default:
            throw Failure("The unit was asked to " + what +
                          ", and its answer was damaged. Whether it did is not known.");
    }
}

}  // namespace zentaq::ctl
