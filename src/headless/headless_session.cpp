#include "headless/headless_session.h"

#include <algorithm>

#include "base/errors.h"
#include "link/link_commands.h"
#include "link/reply_decoding.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

constexpr int lastSlot = 8;
constexpr int programmed = 1002;
constexpr int downloadDone = 1006;
/// A log of one record is as good as none.
constexpr int leastRecords = 2;

std::string headOf(const std::vector<std::uint8_t>& reply) {
    return {reply.begin(), reply.begin() + std::min<std::ptrdiff_t>(2, std::ssize(reply))};
}

}  // namespace

HeadlessSession::HeadlessSession(const Surroundings& surroundings)
    : around_(surroundings),
      decoder_(live_),
      link_(around_.port, *this, decoder_, live_, settings_, around_.clock, noYield_) {
    for (int slot = 0; slot <= lastSlot; ++slot) {
        if (const UnitKind* kind = unitKindOfSlot(slot)) {
            units_.push_back(std::make_unique<Unit>(*kind, around_.unitHost));
        }
    }
}

// Opened past RS232_Initialize, which keeps the reason of a failure to itself.
void HeadlessSession::open(int portNumber) {
    link_.commPort(portNumber);
    around_.port.open(portNumber);
}

void HeadlessSession::pass() {
    around_.pass.yield();
    if (around_.trace != nullptr) around_.trace->tend();
    if (!around_.watch || link_.status().changes == shown_) return;
    shown_ = link_.status().changes;
    around_.watch(link_.status());
}

bool HeadlessSession::idle() const {
    return link_.CurrentCommand().empty() && link_.QueueHead() == link_.QueueTail();
}

void HeadlessSession::passUntilIdle() {
    while (!idle() && !stopWanted()) pass();
}

// ---- Who is there

Found HeadlessSession::findUnit(std::int64_t patienceUs) {
    const LinkedUnit& linked = link_.linked();
    const std::int64_t end = around_.clock.monotonicUs() + patienceUs;
    bool damaged = false;
    while (around_.clock.monotonicUs() < end) {
        if (stopWanted()) return Found::Stopped;
        if (idle()) {
            if (linked.OldFirmware) return Found::OldFirmware;
            if (linked.UnitIdentified && !damaged) return Found::Identified;
            // What a damaged reply made the link tell is not true of this unit.
            if (damaged) boxes_.clear();
            damaged = false;
            link_.Send_ORB_Command("E");
        }
        damaged = !passAndCheckIdentity() || damaged;
    }
    if (damaged && linked.UnitFound) return Found::Damaged;
    return linked.UnitFound ? Found::Untold : Found::Nobody;
}

Found HeadlessSession::findAgain() {
    link_.Send_ORB_Command("E");
    return findUnit();
}

/// One step; false when it handled a reply to E or B whose checksum is wrong.
bool HeadlessSession::passAndCheckIdentity() {
    const std::string before = link_.CurrentCommand();
    pass();
    const bool handled = link_.CurrentCommand() != before;
    if (!handled || (before != "E" && before != "B") || link_.linked().OldFirmware) return true;
    return link_.commCheckSum(before);
}

// ---- Single commands

Ending HeadlessSession::command(std::string_view text) {
    link_.Send_ORB_Command(text);
    passUntilIdle();
    return idle() ? answer() : Ending::Stopped;
}

Ending HeadlessSession::answer() const {
    if (!link_.linked().UnitFound) return Ending::Silent;
    const std::string head = headOf(link_.RxBuffer());
    if (head == "AX") return Ending::Done;
    return head == "AR" ? Ending::Refused : Ending::Unclear;
}

Ending HeadlessSession::readCodes() {
    link_.Send_ORB_Command("T");
    passUntilIdle();
    if (!idle()) return Ending::Stopped;
    if (!link_.linked().UnitFound) return Ending::Silent;
    // The link trusts the reply as it comes; who acts on the codes without looking at them should not.
    return link_.commCheckSum("T") ? Ending::Done : Ending::Unclear;
}

// ---- Transfers

TransferEnd HeadlessSession::transfer(TransferMode mode, const std::string& path) {
    return passUntilEnd(mode, [&] { link_.Program_Unit(mode, path); });
}

TransferEnd HeadlessSession::transferFirmware(const std::string& path, const std::string& text, int slot) {
    return passUntilEnd(TransferMode::Firmware, [&] { link_.programFirmware(path, text, slot); });
}

TransferEnd HeadlessSession::passUntilEnd(TransferMode mode, const std::function<void()>& start) {
    closing_ = {};
    mode_ = mode;
    start();
    while (closing_.message == 0) {
        if (stopWanted() && mayStop()) {
            return {Ending::Stopped, link_.TransferLine(), linesOfFile(), 0};
        }
        pass();
    }
    return endOf(mode);
}

// A line in flight is answered first, so that the next program on this port is not told of it. The answer to
// the last line decides which calibration stands in the unit. A download leaves nothing behind.
bool HeadlessSession::mayStop() const {
    const CommandRow* row = findCommand(commandKey(link_.CurrentCommand()));
    if (row == nullptr || !row->isBulk) return true;
    return link_.ResponseReady() && link_.TransferLine() < linesOfFile();
}

// kept: the link counts one line more than a firmware file has.
int HeadlessSession::linesOfFile() const {
    return link_.TransferLines() - (mode_ == TransferMode::Firmware ? 1 : 0);
}

// Called before the closing routine forgets how far the transfer has come.
void HeadlessSession::displayMessage(int code) {
    if (closing_.message != 0) return;  // what comes behind the first one tells what to do next
    closing_ = {code, link_.TransferLine(), linesOfFile(), !link_.CurrentCommand().empty(),
                link_.ResponseReady()};
}

TransferEnd HeadlessSession::endOf(TransferMode mode) const {
    if (mode == TransferMode::Datalog) return {endOfDownload(), closing_.total, 0, closing_.message};
    return {endOfProgramming(), closing_.lines, closing_.total, closing_.message};
}

Ending HeadlessSession::endOfDownload() const {
    if (closing_.message == downloadDone) return Ending::Done;
    const bool alive = link_.linked().UnitFound;
    // The end of the log came, but what was read before could not be flushed.
    if (alive) return closing_.total < leastRecords ? Ending::Refused : Ending::NotWritten;
    if (closing_.commandInFlight) return Ending::Silent;
    // The download stood still behind a record that was not taken.
    bool whole = false;
    skipFailing([&] { whole = hasMarker(link_.RxBuffer()); });
    return whole ? Ending::NotWritten : Ending::Unclear;
}

Ending HeadlessSession::endOfProgramming() const {
    if (closing_.message != programmed) {
        // Who takes a firmware need not be a unit that was found.
        return link_.linked().UnitFound || closing_.answered ? Ending::Refused : Ending::Silent;
    }
    // A file that runs out without the unit's "PN" counts as a success in the program, where the user sees
    // what the engine does next. Here nobody looks.
    return headOf(link_.RxBuffer()) == "PN" ? Ending::Done : Ending::Unclear;
}

// ---- LinkHost

Unit* HeadlessSession::emptyUnit(int slot) const {
    const auto found = std::ranges::find_if(
        units_, [slot](const std::unique_ptr<Unit>& unit) { return unit->kind().slot == slot; });
    return found == units_.end() ? nullptr : found->get();
}

Unit& HeadlessSession::unit(int slot) {
    if (around_.calibration != nullptr && around_.calibration->kind().slot == slot) {
        return *around_.calibration;
    }
    Unit* const unit = emptyUnit(slot);
    return unit == nullptr ? *units_.front() : *unit;
}

void HeadlessSession::unitKindFound(int slot) {
    Unit* calibration = around_.calibration;
    if (calibration == nullptr || calibration->kind().slot == slot) return;
    Unit* const empty = emptyUnit(slot);
    if (empty == nullptr || !shareFiles(calibration->kind(), empty->kind())) return;
    calibration->exchangeSlots(*empty);
    calibration->host().header().currentUnit = static_cast<float>(slot);
}

int HeadlessSession::currentUnit() const {
    return around_.calibration == nullptr ? 0 : around_.calibration->kind().slot;
}

float HeadlessSession::fileFirmwareCode() const {
    return around_.calibration == nullptr ? 0 : around_.calibration->host().header().firmwareCode;
}

void HeadlessSession::initializeOnFly(bool on) {
    if (around_.trace != nullptr && !on && link_.linked().LinkedUnitKind == 0) around_.trace->linkLost();
    if (around_.calibration != nullptr) around_.calibration->ONFLY_MODE(on);
}

int HeadlessSession::expectedRelease(int slot) const {
    const UnitKind* kind = unitKindOfSlot(slot);
    return kind == nullptr ? 0 : kind->defaultRelease;
}

int HeadlessSession::expectedBuild(int slot) const {
    const UnitKind* kind = unitKindOfSlot(slot);
    return kind == nullptr ? 0 : kind->defaultBuild;
}

}  // namespace zentaq
