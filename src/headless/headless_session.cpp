#include "headless/headless_session.h"

#include <algorithm>

#include "link/link_commands.h"
#include "unit/unit_kind.h"

namespace zentaq {

namespace {

std::string headOf(const std::vector<std::uint8_t>& reply) {
    return {reply.begin(), reply.begin() + std::min<std::ptrdiff_t>(2, std::ssize(reply))};
}

Ending endingOf(const TransferEnd& end) {
    const bool download = end.mode == TransferMode::Datalog;
    switch (end.result) {
        case TransferResult::Verified:
            return Ending::Done;
        // Counts as a success in the program, where the user sees what the engine does next. Here nobody
        // looks.
        case TransferResult::RanOut:
        case TransferResult::BadRecord:
            return Ending::Unclear;
        case TransferResult::Refused:
            return Ending::Refused;
        case TransferResult::NotWritten:
            return Ending::NotWritten;
        default:
            return end.answered && !download ? Ending::Refused : Ending::Silent;
    }
}

}  // namespace

HeadlessSession::HeadlessSession(const Surroundings& surroundings)
    : around_(surroundings),
      decoder_(live_),
      link_(around_.port, *this, decoder_, live_, around_.clock, noYield_) {
    units_.push_back(std::make_unique<Unit>(nullKind(), around_.unitHost));
    for (const UnitKind& kind : unitKinds()) units_.push_back(std::make_unique<Unit>(kind, around_.unitHost));
}

// Opened past RS232_Initialize, which keeps the reason of a failure to itself.
void HeadlessSession::open(int portNumber) {
    link_.commPort(portNumber);
    around_.port.open(portNumber);
}

void HeadlessSession::pass() {
    around_.pass.yield();
    if (around_.trace != nullptr) around_.trace->tend();
    if (!around_.watch || linkDisplay.status().changes == shown_) return;
    shown_ = linkDisplay.status().changes;
    around_.watch(linkDisplay.status());
}

bool HeadlessSession::idle() const {
    return link_.CurrentCommand().empty() && link_.ring().empty();
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

TransferReport HeadlessSession::transfer(TransferMode mode, const std::string& path) {
    return passUntilEnd([&] { link_.Program_Unit(mode, path); });
}

TransferReport HeadlessSession::transferFirmware(const std::string& path, const std::string& text, int slot) {
    return passUntilEnd([&] { link_.programFirmware(path, text, slot); });
}

TransferReport HeadlessSession::passUntilEnd(const std::function<void()>& start) {
    ended_.reset();
    start();
    while (!ended_) {
        const Transfer& transfer = link_.transfer();
        if (stopWanted() && mayStop()) return {Ending::Stopped, transfer.done(), transfer.total()};
        pass();
    }
    return {endingOf(*ended_), ended_->lines, ended_->total, ended_->firmware};
}

// A line in flight is answered first, so that the next program on this port is not told of it. The answer to
// the last line decides which calibration stands in the unit. A download leaves nothing behind.
bool HeadlessSession::mayStop() const {
    const CommandRow* row = findCommand(commandKey(link_.CurrentCommand()));
    if (row == nullptr || !row->isBulk) return true;
    return link_.ResponseReady() && link_.transfer().line() < link_.transfer().total();
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

void HeadlessSession::heard(const LinkNews& news) {
    // A calibration of another kind is no news to whoever is about to compare them.
    if (news.event != LinkEvent::UnitMismatch) LinkTeller::heard(news);
    if (news.event == LinkEvent::KindFound) takeSlot(news.number);
    if (news.event == LinkEvent::UnitAgrees) initializeOnFly(true);
    if (news.event == LinkEvent::LinkLost) initializeOnFly(false);
    if (news.event == LinkEvent::FrameDecoded && onFrame_) onFrame_();
}

void HeadlessSession::transferEnded(const TransferEnd& end) {
    LinkTeller::transferEnded(end);
    ended_ = end;
}

void HeadlessSession::takeSlot(int slot) {
    Unit* calibration = around_.calibration;
    if (calibration == nullptr || calibration->kind().slot == slot) return;
    Unit* const empty = emptyUnit(slot);
    if (empty == nullptr || !shareFiles(calibration->kind(), empty->kind())) return;
    calibration->exchangeSlots(*empty);
    calibration->host().header().currentUnit = static_cast<float>(slot);
}

int HeadlessSession::slotInHand() const {
    return around_.calibration == nullptr ? 0 : around_.calibration->kind().slot;
}

float HeadlessSession::fileFirmwareCode() const {
    return around_.calibration == nullptr ? 0 : around_.calibration->facts().firmwareCode;
}

void HeadlessSession::initializeOnFly(bool on) {
    if (around_.trace != nullptr && !on && link_.linked().LinkedUnitKind == 0) around_.trace->linkLost();
    if (around_.calibration != nullptr) around_.calibration->ONFLY_MODE(on);
}

FirmwareVersion HeadlessSession::expectedFirmware(int slot) const {
    const UnitKind* kind = unitKindOfSlot(slot);
    return kind == nullptr ? FirmwareVersion{} : kind->expected;
}

}  // namespace zentaq
