// The tick machine: one command in flight, every time-out a count of ticks.
// A failing statement of a tick is skipped.

#include "base/errors.h"
#include "base/rounding.h"
#include "link/flag_scope.h"
#include "link/link.h"
#include "link/link_commands.h"

namespace zentaq {

namespace {

constexpr int lineGapTicks = 10;
/// The same by the clock: after a pause many ticks come at once, and the unit writes its memory meanwhile.
constexpr std::int64_t lineGapUs = 10'000;
constexpr int framePatienceTicks = 21;
constexpr int frameRetries = 3;
constexpr int stallPatienceTicks = 1000;

unsigned byteAt(const std::vector<std::uint8_t>& bytes, int index) {
    return bytes.at(static_cast<std::size_t>(index));
}

int lastSummedByte(const CommandRow& row, const SizeConstants& sizes) {
    switch (row.checksum) {
        case ChecksumRule::BeforeEnd:
            return sizes.*row.replyLength - 2;
        case ChecksumRule::AtIndexSix:
            return 6;
        default:
            return 0;
    }
}

}  // namespace

void Link::tick() {
    if (handling_) return;
    // Events that a handler lets in do not start it again.
    const FlagScope scope(handling_);
    followAdapter();
    watchStalledTransfer();
    if (currentCommand_.empty()) {
        sendNextCommand();
    } else if (responseReady_) {
        reactToReply();
    } else {
        waitForReply();
    }
}

void Link::PROCESS_RESPONSE() {
    if (handling_) return;
    const FlagScope scope(handling_);
    processResponse();
}

bool Link::commCheckSum(std::string_view command) const {
    const std::string_view key = commandKey(command);
    const CommandRow* row = findCommand(key);
    if (row && row->checksum == ChecksumRule::Unchecked) return true;
    bool right = false;
    skipFailing([&] {
        const SizeConstants& sizes = host_.unit(linked_.LinkedUnitKind).kind().sizes;
        const int last = row ? lastSummedByte(*row, sizes) : 0;
        unsigned sum = 0;
        for (int i = 2; i <= last; ++i) sum += byteAt(rxBuffer_, i);
        right = (sum & 0xFF) == byteAt(rxBuffer_, last + 1);
    });
    return right;
}

// ---- Idle

bool Link::identifying() const {
    return currentCommand_ == "E" || currentCommand_ == "B" || ring_.holds("E") || ring_.holds("B");
}

bool Link::wireTaken() const {
    const CommandRow* row = findCommand(commandKey(currentCommand_));
    return row && row->isBulk;
}

void Link::sendNextCommand() {
    std::string_view key;
    if (ring_.nothingToSend()) {
        if (restTicks_ > 0) lineAtRest();
        ring_.settle();
    } else if (lineAtRest()) {
        if (askFirst_ && ring_.front() == "P3") ring_.pushInFront("E");
        currentCommand_ = ring_.front();
        key = commandKey(currentCommand_);
        // A key in no row keeps the threshold of the command before.
        if (findCommand(key)) {
            askedBytes_ = replyLengthFor(key);
            skipFailing([&] { port_.setReceiveThreshold(askedBytes_); });
        }
        prepareTransfer(key);
        skipFailing([&] { RS232_OUTPUT(currentCommand_); });
        ring_.pop();
        responseReady_ = false;
        tickCount_ = 0;
        tailTicks_ = 0;
    }
    const CommandRow* row = findCommand(key);
    onFlyBusy_ = row && row->locksTable;
    skipFailing([&] { tellNumber(LinkEvent::TableLock, onFlyBusy_ ? 1 : 0); });
}

int Link::replyLengthFor(std::string_view key) {
    return replyLength(*findCommand(key), linkedUnit().kind(), linked_.OldFirmware);
}

void Link::prepareTransfer(std::string_view key) {
    const CommandRow* row = findCommand(key);
    if (row && row->isBulk) {
        paceCount_ = 0;
        ring_.dropBehindFront();
        transfer_.activate();
    }
    if (key == "D") transfer_.activate();
}

bool Link::transferLost() const {
    if (!transfer_.pending()) return false;
    if (currentCommand_.empty() && ring_.nothingToSend()) return true;
    if (!transfer_.open() || commandKey(currentCommand_) == transfer_.key()) return false;
    return !ring_.holds(transfer_.key());
}

void Link::watchStalledTransfer() {
    // A record with a bad header, or a fault in its handler, leaves the download with no command in flight;
    // an overrun of the ring may lose one that waits. It ends by the same patience as an unanswered one,
    // whatever other commands go over the line meanwhile.
    stallCount_ = transferLost() ? stallCount_ + 1 : 0;
    if (stallCount_ <= stallPatienceTicks || !currentCommand_.empty()) return;
    stallCount_ = 0;
    skipFailing([&] { End_Transfer(stalledResult()); });
    loseLink(FirmwareRestore::IfUnitKnown);
    abandonCommand();
}

// What the record says behind which a download stands still.
TransferResult Link::stalledResult() const {
    if (transfer_.key() != "D" || !transfer_.active()) return TransferResult::NotAnswered;
    return repliedWithMarker() ? TransferResult::NotWritten : TransferResult::BadRecord;
}

// ---- A reply is there

void Link::reactToReply() {
    const CommandRow* row = findCommand(commandKey(currentCommand_));
    if (row && row->isBulk) {
        // The reply stands for ten ticks: that gap is the pacing of the transfer.
        if (paceCount_ < lineGapTicks) {
            ++paceCount_;
        } else if (gapIsOver() && !sendLine()) {
            return;
        }
    }
    tickCount_ = 0;
    retryCount_ = 0;
    if (frameInDoubt()) return currentCommand_.clear();
    processResponse();
}

bool Link::gapIsOver() const {
    return clock_.monotonicUs() - replySeenUs_ >= lineGapUs;
}

bool Link::sendLine() {
    if (!Send_Next_Line()) return false;
    // A stray byte in front of the answer would hide a refusal.
    drainPort();
    skipFailing([&] { RS232_OUTPUT(ring_.front()); });
    ring_.pop();
    responseReady_ = false;
    tickCount_ = 0;
    paceCount_ = 0;
    return true;
}

// ---- Waiting

void Link::waitForReply() {
    // The rest of an E reply that does not come: the handler takes what there is.
    if (tailTicks_ > 0 && --tailTicks_ == 0) responseReady_ = true;
    ++tickCount_;
    const std::string_view key = commandKey(currentCommand_);
    if (isFrameKey(key)) {
        waitForFrame();
    } else if (tickCount_ > statusRow(key).patienceTicks) {
        timeOut();
    }
}

void Link::waitForFrame() {
    if (tickCount_ < framePatienceTicks) return;
    tickCount_ = 0;
    // The command is not written again: a retry is only a further wait.
    if (++retryCount_ <= frameRetries) return;
    loseLink(FirmwareRestore::Always);
    abandonCommand();
}

void Link::timeOut() {
    const std::string key(commandKey(currentCommand_));
    if (key != "B" && key != "C") {
        if (key == "P1" || key == "P3" || key == "D") {
            skipFailing([&] { End_Transfer(TransferResult::NotAnswered); });
        }
        loseLink(FirmwareRestore::IfUnitKnown);
    }
    abandonCommand();
}

void Link::loseLink(FirmwareRestore restore) {
    // A transfer whose command still waits in the ring goes with it, and must end as it would on the wire.
    // Not so a firmware: a unit without one answers nothing else, so that the poll in front of it always
    // ends like this.
    const bool firmwareStays = firmwareWaits();
    if (transfer_.open() && !firmwareStays) {
        skipFailing([&] { End_Transfer(TransferResult::NotAnswered); });
    }
    tellDroppedKill();
    ring_.clear();
    tickCount_ = 0;
    retryCount_ = 0;
    if (restore == FirmwareRestore::Always || linked_.LinkedUnitKind != 0) {
        skipFailing([&] { restoreFileFirmware(); });
    }
    linkedUnit().gpioListRead(false);
    linked_.LinkedUnitKind = 0;
    linked_.FirmwareTold = false;
    linked_.UnitIdentified = false;
    linked_.UnitFound = false;
    // A unit that comes back has its own timing again.
    linked_.zeroAdvance = false;
    toldFirmware_.reset();
    if (firmwareStays) {
        Send_ORB_Command(transfer_.key());
        // Another unit may have come meanwhile. Silence to that very question is the answer of a unit
        // without firmware.
        askFirst_ = currentCommand_ != "E";
    }
    skipFailing([&] { tell(LinkEvent::LinkLost); });
    tellLostLink();
}

void Link::tellDroppedKill() {
    if (currentCommand_ == "K") {
        tell(LinkEvent::KillNotAnswered);
    } else if (ring_.holds("K")) {
        tell(LinkEvent::KillNotSent);
    }
}

// Else the panel would go on saying what the last reply had been.
void Link::tellLostLink() {
    if (adapterAway_) {
        tellAdapter(LinkEvent::AdapterAway);
    } else if (!port_.isOpen()) {
        tell(LinkEvent::NoPort);
    } else {
        tell(firmware_.lost() ? LinkEvent::FirmwareMissing : LinkEvent::UnitSilent);
    }
}

void Link::restoreFileFirmware() {
    const FirmwareVersion former = formerFirmware();
    Unit& unit = linkedUnit();
    skipFailing([&] { unit.FW_Release(former.release); });
    unit.FW_Build(former.build);
}

// The number of the file is that of the calibration in hand, and of no other unit's object.
FirmwareVersion Link::formerFirmware() {
    if (!kindInHand()) return linked_.FirmwareTold ? firmwareBefore_ : linkedUnit().firmware();
    const int code = toInt32(static_cast<double>(host_.fileFirmwareCode()));
    // A file that tells none counts as when it is opened.
    if (code == 0) return linkedUnit().kind().expected;
    return FirmwareVersion::ofCode(static_cast<float>(code));
}

void Link::abandonCommand() {
    drainPort();
    transfer_.deactivate();
    tailTicks_ = 0;
    currentCommand_.clear();
}

}  // namespace zentaq
