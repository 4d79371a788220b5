// The command ring and the tick machine: one command in flight, every time-out a count of ticks.
// A failing statement of a tick is skipped.
#include <utility>

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

/// What the pollers ask for all the time; which of them comes first matters to nobody.
bool isPoll(std::string_view command) {
    return command == "W" || command == "F" || command == "I" || command == "T";
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

void Link::Send_ORB_Command(std::string_view command) {
    place(queueTail_) = command;
    ++queuedCommands_;
    queueTail_ = wrapped(queueTail_ + 1);
    // kept: the overrun loses the oldest command, and QueuedCommands goes on counting it.
    if (queueTail_ == queueHead_) queueHead_ = wrapped(queueHead_ + 1);
}

void Link::queueInFront(std::string command) {
    // In a full ring the oldest command gives way.
    const int front = wrapped(queueHead_ - 1);
    const bool full = front == queueTail_;
    if (!full) queueHead_ = front;
    place(queueHead_) = std::move(command);
    ++queuedCommands_;
}

void Link::SEND_ONFLY(std::string_view record) {
    Send_ORB_Command("P2" + std::string(record));
    // While frames are monitored up to five polls wait, 17 ms each: the unit would take a keystroke some
    // 80 ms late. The record goes in front of them, and only of them: it stays behind earlier records and
    // behind whatever else a user has asked for, such as the storing of those.
    int at = wrapped(queueTail_ - 1);
    while (at != queueHead_ && isPoll(place(wrapped(at - 1)))) {
        const int before = wrapped(at - 1);
        std::swap(place(before), place(at));
        at = before;
    }
}

// A unit that is programmed takes nothing else, so that there it would have to wait all the same.
void Link::SEND_KILL() {
    queueInFront("K");
}

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

bool Link::nothingToSend() const {
    return queueHead_ == queueTail_ || place(queueHead_).empty();
}

bool Link::waits(std::string_view command) const {
    for (int index = queueHead_; index != queueTail_; index = wrapped(index + 1)) {
        if (place(index) == command) return true;
    }
    return false;
}

bool Link::identifying() const {
    return currentCommand_ == "E" || currentCommand_ == "B" || waits("E") || waits("B");
}

bool Link::wireTaken() const {
    const CommandRow* row = findCommand(commandKey(currentCommand_));
    return row && row->isBulk;
}

void Link::sendNextCommand() {
    std::string_view key;
    if (nothingToSend()) {
        if (restTicks_ > 0) lineAtRest();
        // Nobody waits in an empty ring. What an overrun or a failed write left in the count would silence
        // the pollers for good.
        if (queueHead_ == queueTail_) queuedCommands_ = 0;
    } else if (lineAtRest()) {
        if (askFirst_ && place(queueHead_) == "P3") queueInFront("E");
        currentCommand_ = place(queueHead_);
        key = commandKey(currentCommand_);
        // A key in no row keeps the threshold of the command before.
        if (findCommand(key)) {
            askedBytes_ = replyLengthFor(key);
            skipFailing([&] { port_.setReceiveThreshold(askedBytes_); });
        }
        prepareTransfer(key);
        skipFailing([&] { RS232_OUTPUT(currentCommand_); });
        queueHead_ = wrapped(queueHead_ + 1);
        responseReady_ = false;
        tickCount_ = 0;
        tailTicks_ = 0;
    }
    const CommandRow* row = findCommand(key);
    onFlyBusy_ = row && row->locksTable;
    skipFailing([&] { host_.onFlyLock(onFlyBusy_); });
}

int Link::replyLengthFor(std::string_view key) {
    return replyLength(*findCommand(key), linkedUnit().kind(), linked_.OldFirmware);
}

void Link::prepareTransfer(std::string_view key) {
    const CommandRow* row = findCommand(key);
    if (row && row->isBulk) {
        paceCount_ = 0;
        dropQueueBehindHead();
        transferActive_ = true;
    }
    if (key == "D") transferActive_ = true;
}

void Link::dropQueueBehindHead() {
    queueTail_ = wrapped(queueHead_ + 1);
    // The dropped commands no longer wait; left in the count they would silence the pollers for good.
    queuedCommands_ = 1;
}

bool Link::transferLost() const {
    if (!transferPending()) return false;
    if (currentCommand_.empty() && nothingToSend()) return true;
    if (openTransfer_.empty() || commandKey(currentCommand_) == openTransfer_) return false;
    return !waits(openTransfer_);
}

void Link::watchStalledTransfer() {
    // A record with a bad header, or a fault in its handler, leaves the download with no command in flight;
    // an overrun of the ring may lose one that waits. It ends by the same patience as an unanswered one,
    // whatever other commands go over the line meanwhile.
    stallCount_ = transferLost() ? stallCount_ + 1 : 0;
    if (stallCount_ <= stallPatienceTicks || !currentCommand_.empty()) return;
    stallCount_ = 0;
    skipFailing([&] { End_Transfer(false); });
    loseLink(FirmwareRestore::IfUnitKnown);
    abandonCommand();
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
    skipFailing([&] { RS232_OUTPUT(place(queueHead_)); });
    queueHead_ = wrapped(queueHead_ + 1);
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
        if (key == "P1" || key == "P3" || key == "D") skipFailing([&] { End_Transfer(false); });
        loseLink(FirmwareRestore::IfUnitKnown);
    }
    abandonCommand();
}

void Link::loseLink(FirmwareRestore restore) {
    // A transfer whose command still waits in the ring goes with it, and must end as it would on the wire.
    // Not so a firmware: a unit without one answers nothing else, so that the poll in front of it always
    // ends like this.
    const bool firmwareStays = firmwareWaits();
    if (!openTransfer_.empty() && !firmwareStays) skipFailing([&] { End_Transfer(false); });
    tellDroppedKill();
    queueTail_ = queueHead_;
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
    show(&LinkStatus::zeroAdvance, false);
    toldFirmware_.reset();
    queuedCommands_ = 0;
    if (firmwareStays) {
        Send_ORB_Command(openTransfer_);
        // Another unit may have come meanwhile. Silence to that very question is the answer of a unit
        // without firmware.
        askFirst_ = currentCommand_ != "E";
    }
    skipFailing([&] { host_.initializeOnFly(false); });
    showLostLink();
    show(&LinkStatus::send, Lamp::Rest);
    show(&LinkStatus::receive, Lamp::Rest);
}

// Nobody must believe that the engine was stopped.
void Link::tellDroppedKill() {
    if (currentCommand_ == "K") {
        log("Kill Engine was not answered: look at the engine.");
    } else if (waits("K")) {
        log("Kill Engine was not sent: the link is lost.");
    }
}

// Else the panel would go on saying what the last reply had been.
void Link::showLostLink() {
    if (adapterAway_) {
        showAdapter();
    } else if (!port_.isOpen()) {
        showNoConnection();
    } else if (firmwareLost_) {
        COMM_StatusMessage("Connecting...", "The upgrade broke off: the unit has no firmware.",
                           "Cycle its power and run Firmware Upgrade again.", "Warning");
    } else {
        COMM_StatusMessage("Connecting...", "The unit does not answer.", "", "Warning");
    }
}

void Link::restoreFileFirmware() {
    const FirmwareNumber former = formerFirmware();
    Unit& unit = linkedUnit();
    skipFailing([&] { unit.FW_Release(former.release); });
    unit.FW_Build(former.build);
}

// The number of the file is that of the calibration in hand, and of no other unit's object.
FirmwareNumber Link::formerFirmware() {
    if (host_.currentUnit() != linked_.LinkedUnitKind) {
        const Unit& unit = linkedUnit();
        return linked_.FirmwareTold ? firmwareBefore_ : FirmwareNumber{unit.FW_Release(), unit.FW_Build()};
    }
    const int code = toInt32(static_cast<double>(host_.fileFirmwareCode()));
    // A file that tells none counts as when it is opened.
    const UnitKind& kind = linkedUnit().kind();
    if (code == 0) return {kind.defaultRelease, kind.defaultBuild};
    return {code / 1000, code % 1000};
}

void Link::abandonCommand() {
    drainPort();
    transferActive_ = false;
    tailTicks_ = 0;
    currentCommand_.clear();
}

}  // namespace zentaq
