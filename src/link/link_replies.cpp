// What each reply means: identification, live frames, codes, the ends of a transfer, one datalog record.
// A fault while handling a reply ends the handler and the command; nothing else is undone.
#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "link/link.h"
#include "link/link_commands.h"
#include "link/reply_decoding.h"
#include "live/datalog_writer.h"
#include "live/frame_decoder.h"

namespace zentaq {

namespace {

std::string headerOf(const std::vector<std::uint8_t>& reply) {
    return {static_cast<char>(reply.at(0)), static_cast<char>(reply.at(1))};
}

}  // namespace

Link::ReplyHandler Link::handlerFor(std::string_view key) {
    struct Row {
        std::string_view key;
        ReplyHandler handler;
    };
    static constexpr Row rows[] = {
        {"A", &Link::replyClearCodes},    {"B", &Link::replyFirmware},  {"C", &Link::replyConfiguration},
        {"D", &Link::replyDatalogRecord}, {"E", &Link::replyIdentify},  {"F", &Link::replyFrame},
        {"I", &Link::replyGpio},          {"K", &Link::replyNothing},   {"P1", &Link::replyLine},
        {"P2", &Link::replyOnTheFly},     {"P3", &Link::replyLine},     {"S", &Link::replySaved},
        {"T", &Link::replyCodes},         {"W", &Link::replyWideFrame}, {"Z", &Link::replyZeroAdvance},
    };
    const auto row = std::ranges::find(rows, key, &Row::key);
    return row == std::end(rows) ? &Link::replyNothing : row->handler;
}

void Link::processResponse() {
    const bool handled = skipFailing([&] {
        // A box of a handler lets a further reply in; the handler goes on with its own.
        const Reply reply = rxBuffer_;
        responseHeader_ = headerOf(reply);
        (this->*handlerFor(commandKey(currentCommand_)))(reply);
    });
    if (!handled) currentCommand_.clear();
}

void Link::replyNothing(const Reply&) {
    currentCommand_.clear();
}

void Link::replyClearCodes(const Reply&) {
    currentCommand_.clear();
    if (responseHeader_ != "AX") return;
    tell(LinkEvent::CodesCleared);
}

void Link::replyFrame(const Reply& reply) {
    decoder_.Monitor(linkedUnit(), reply);
    currentCommand_.clear();
    tell(LinkEvent::FrameDecoded);
}

void Link::replyGpio(const Reply& reply) {
    decoder_.Monitor_GPIO(linkedUnit(), reply);
    currentCommand_.clear();
}

void Link::replyWideFrame(const Reply& reply) {
    Unit& unit = linkedUnit();
    const bool right = frameSumIsRight(reply, unit.kind().sizes.wCmdLen);
    if (right) decoder_.MonitorW(unit, reply);
    currentCommand_.clear();
    if (right) tell(LinkEvent::FrameDecoded);
}

void Link::replyCodes(const Reply& reply) {
    linkedUnit().Set_ECData(reply);
    currentCommand_.clear();
    tell(LinkEvent::CodesReceived);
}

bool Link::zeroAdvanceAsked() const {
    const auto asksForZero = [](const std::string& command) { return command.back() == '\xFF'; };
    if (const std::string* waiting = ring_.last('Z')) return asksForZero(*waiting);
    return currentCommand_.starts_with('Z') ? asksForZero(currentCommand_) : linked_.zeroAdvance;
}

void Link::replyZeroAdvance(const Reply&) {
    const bool zero = currentCommand_.back() == '\xFF';
    if (responseHeader_ != "AR") linked_.zeroAdvance = zero;
    tell(zero ? LinkEvent::ZeroAdvanceOn : LinkEvent::ZeroAdvanceOff);
    currentCommand_.clear();
}

void Link::replySaved(const Reply&) {
    // Whatever the reply holds.
    tell(LinkEvent::ChangesSaved);
    currentCommand_.clear();
}

void Link::replyOnTheFly(const Reply&) {
    if (responseHeader_ == "AR") tell(LinkEvent::ChangeRefused);
    currentCommand_.clear();
}

void Link::replyLine(const Reply&) {
    const bool verified = responseHeader_ == "PN";
    // "AX" above all leaves everything standing: the tick sends the next line.
    if (!verified && responseHeader_ != "AR") return;
    End_Transfer(verified ? TransferResult::Verified : TransferResult::Refused);
    currentCommand_.clear();
}

// ---- E

void Link::replyIdentify(const Reply& reply) {
    const std::int32_t former = linked_.SerialNumber;
    const bool known = readSerialNumber(reply);
    // A reply in no known format, or with a number in no range, is no unit: the poller asks again.
    if (!known || !findUnitKind(former)) {
        countUnknownAnswer();
        currentCommand_.clear();
        return;
    }
    knowsWhoIsThere();
    if (linked_.LinkedUnitKind != 0) tellNumber(LinkEvent::KindFound, linked_.LinkedUnitKind);
    fillDashboardDefaults();
    if (!hasMarker(reply)) {
        acceptUnit(LinkEvent::UnitMustUpgrade);
        linked_.OldFirmware = true;
    } else {
        acceptUnit(LinkEvent::UnitReady);
        Send_ORB_Command("B");
    }
    currentCommand_.clear();
}

bool Link::readSerialNumber(const Reply& reply) {
    const auto serial = decodeSerial(reply);
    if (!serial) return false;
    linked_.SerialNumber = serial->serialNumber;
    if (serial->oldFirmware) {
        warnOldFirmware();
    } else {
        linked_.OldFirmware = false;
    }
    return true;
}

void Link::warnOldFirmware() {
    if (!std::exchange(linked_.OldFirmware, true)) tell(LinkEvent::OldFirmware);
}

bool Link::findUnitKind(std::int32_t former) {
    const UnitKind* kind = unitKindOfSerial(linked_.SerialNumber);
    if (linked_.SerialNumber != 0 && kind == nullptr) {
        discardInput();
        linked_.SerialNumber = 0;
        return false;
    }
    // The number 0 tells no kind.
    const int slot = kind == nullptr ? linked_.LinkedUnitKind : kind->slot;
    // A unit of the oldest format takes no changes, whoever of its kind was there before.
    const bool otherNumber = former != 0 && linked_.SerialNumber != 0 && former != linked_.SerialNumber;
    const bool otherUnit = linked_.LinkedUnitKind != slot || linked_.OldFirmware || otherNumber;
    if ((linked_.UnitIdentified && otherUnit) || isStranger(slot)) leaveFormerUnit();
    linked_.LinkedUnitKind = slot;
    if (kind != nullptr && !linked_.UnitFound) tell(LinkEvent::LabelTold, kind->label);
    return true;
}

// Whether a transfer that still waits was meant for another unit than the one that answers now.
bool Link::isStranger(int slot) const {
    if (!transfer_.open() || transfer_.active()) return false;
    if (transfer_.serial() != 0 && transfer_.serial() != linked_.SerialNumber) return true;
    if (!transfer_.firmware()) return false;
    // A unit of the oldest format takes no firmware from here. Kinds of one prefix take the same files.
    const auto prefix = [&](int of) { return host_.unit(of).kind().firmwarePrefix; };
    const bool known = slot != 0 && firmware_.slot() != 0;
    return linked_.OldFirmware || (known && prefix(firmware_.slot()) != prefix(slot));
}

void Link::knowsWhoIsThere() {
    if (linked_.LinkedUnitKind == 0) return countUnknownAnswer();
    askFirst_ = false;
}

// Who answers, but never says who it is, is no unit without firmware: that one is silent.
void Link::countUnknownAnswer() {
    constexpr int mostUnknownAnswers = 3;
    if (!askFirst_ || ++unknownAnswers_ < mostUnknownAnswers) return;
    tell(LinkEvent::UnknownAnswers);
    leaveFormerUnit();
}

// Another unit has taken the place of the one that was identified, with no silence between them, or of the
// one that a transfer waits for. Changes on the fly, a transfer and whatever else waits were meant for that
// one.
void Link::leaveFormerUnit() {
    if (transfer_.pending()) {
        skipFailing([&] { tell(LinkEvent::OtherUnit); });
        skipFailing([&] { End_Transfer(TransferResult::OtherUnit); });
    }
    transfer_.deactivate();
    loseLink(FirmwareRestore::IfUnitKnown);
}

void Link::fillDashboardDefaults() {
    // A calibration that is being made has no file yet.
    if (!kindInHand() && linkedUnit().BinFile().empty()) storeDashboardDefaults(linkedUnit());
}

void Link::acceptUnit(LinkEvent how) {
    discardInput();
    const std::string serial = formatNumber(linked_.SerialNumber, "000000");
    tell(how, serial);
    linkedUnit().Serial(serial);
    linked_.UnitFound = true;
}

// ---- B

void Link::replyFirmware(const Reply& reply) {
    // An answer from a unit whose kind nobody knows (its E reply was lost) identifies nothing: frames of no
    // kind would be asked for and thrown away for good. The poller starts over with E.
    if (linked_.LinkedUnitKind == 0) {
        currentCommand_.clear();
        return;
    }
    linked_.UnitBinName = unitBinName(reply);
    storeFirmware(reply);
    warnUnitMismatch();
    warnNewFirmware();
    if (tellsSubType(linkedUnit().kind())) tellSubType(unitSubType(reply));
    tell(LinkEvent::UnitIdentified, linkedUnit().FirmWare(), linked_.UnitBinName);
    linked_.UnitIdentified = true;
    linkedUnit().gpioListRead(true);
    if (unitAgrees()) tell(LinkEvent::UnitAgrees);
    askForConfiguration();
    currentCommand_.clear();
}

void Link::storeFirmware(const Reply& reply) {
    const std::string raw = firmwareBytes(reply);
    const std::string shown = shownText(raw);
    tell(LinkEvent::FirmwareTold, shown);
    Unit& unit = linkedUnit();
    unit.FirmWare(shown);
    const FirmwareVersion firmware = firmwareNumber(raw);
    if (!linked_.FirmwareTold) firmwareBefore_ = unit.firmware();
    // Before the release is stored: storing it brings a calibration in hand to this firmware.
    linked_.FirmwareTold = true;
    firmware_.mended();  // whatever an earlier run did: this unit has one
    unit.FW_Build(firmware.build);
    unit.FW_Release(firmware.release);
}

void Link::warnUnitMismatch() {
    const int current = host_.slotInHand();
    if (current == 0 || current == linked_.LinkedUnitKind) return;
    if (linked_.UnitIdentified) return;  // told once per connect
    tell(LinkEvent::UnitMismatch);
}

void Link::warnNewFirmware() {
    const Unit& unit = linkedUnit();
    const FirmwareVersion firmware{unit.FW_Release(), unit.FW_Build()};
    if (firmware <= host_.expectedFirmware(linked_.LinkedUnitKind)) return;
    // Told once: a unit whose answer was lost on the way is asked several times.
    const std::array told{static_cast<int>(linked_.SerialNumber), firmware.release, firmware.build};
    if (toldFirmware_ == told) return;
    toldFirmware_ = told;
    tell(LinkEvent::NewFirmware);
}

void Link::tellSubType(int subType) {
    const std::string_view label = subTypeLabel(linkedUnit().kind(), subType);
    if (!label.empty()) tell(LinkEvent::LabelTold, label);
    linked_.UnitSubType = subType + 1;
}

void Link::askForConfiguration() {
    const UnitKind& kind = linkedUnit().kind();
    const int release = linkedUnit().FW_Release();
    linked_.WideMonitor = kind.hasWideMonitor() && release >= kind.wideFrom;
    if (kind.hasCalibration && release >= kind.configurationFrom) Send_ORB_Command("C");
}

// ---- C

void Link::replyConfiguration(const Reply& reply) {
    Unit& unit = linkedUnit();
    unit.hasPIC18(false);
    const auto pic18 = decodePic18(reply, unit.kind(), unit.firmware());
    if (pic18) unit.hasPIC18(*pic18);
    currentCommand_.clear();
}

// ---- D

void Link::replyDatalogRecord(const Reply& reply) {
    if (isEndOfLog(reply)) return endDownload();
    transfer_.recordCame();
    if (!hasMarker(reply)) {
        // No message: the download stalls and ends by its time-out.
        currentCommand_.clear();
        return;
    }
    Unit& unit = linkedUnit();
    decoder_.Internal_Data_Conv(unit, reply);
    DataRecord(transfer_.file(), unit, live_, true, transfer_.lines());
    if (!transfer_.file()) throw FileError("The datalog cannot be written.");
    host_.transferStep(transfer_.lines(), unit.kind().sizes.datalogMax);
    Send_ORB_Command("D");
    currentCommand_.clear();
}

void Link::endDownload() {
    constexpr int leastRecords = 2;
    if (transfer_.lines() < leastRecords) {
        // A first record that is at once the end: the unit had nothing to give.
        End_Transfer(TransferResult::Refused);
    } else {
        const bool written = transfer_.file().flush().good();
        End_Transfer(written ? TransferResult::Verified : TransferResult::NotWritten);
    }
    currentCommand_.clear();
}

}  // namespace zentaq
