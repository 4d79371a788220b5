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

constexpr int orbaKindNumber = 3;

/// From which release a kind answers W, and from which it is asked for its configuration. 0: never.
struct MonitorRule {
    int slot;
    int wideFrom;
    int configurationFrom;
};

constexpr MonitorRule monitorRules[] = {
    {3, 5, 5}, {4, 7, 7}, {5, 0, 5}, {6, 3, 3}, {7, 5, 5}, {8, 5, 5},
};

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
    log("ORB CheckEngine Codes Successfully Cleared.");
    host_.codesCleared();
}

void Link::replyFrame(const Reply& reply) {
    decoder_.Monitor(linkedUnit(), reply);
    currentCommand_.clear();
    host_.frameDecoded();
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
    if (right) host_.frameDecoded();
}

void Link::replyCodes(const Reply& reply) {
    linkedUnit().Set_ECData(reply);
    currentCommand_.clear();
    host_.codesReceived();
}

bool Link::zeroAdvanceAsked() const {
    const auto asksForZero = [](const std::string& command) { return command.back() == '\xFF'; };
    for (int i = queueTail_; i != queueHead_;) {
        i = wrapped(i - 1);
        if (place(i).starts_with('Z')) return asksForZero(place(i));
    }
    return currentCommand_.starts_with('Z') ? asksForZero(currentCommand_) : status_.zeroAdvance;
}

void Link::replyZeroAdvance(const Reply&) {
    if (responseHeader_ != "AR") show(&LinkStatus::zeroAdvance, currentCommand_.back() == '\xFF');
    log(currentCommand_.back() == '\xFF' ? "ORB: Ignition Timing set to Zero"
                                         : "ORB: Restored Ignition Timing");
    currentCommand_.clear();
}

void Link::replySaved(const Reply&) {
    // Whatever the reply holds.
    log("ORB: ONFLY changes saved");
    currentCommand_.clear();
}

void Link::replyOnTheFly(const Reply&) {
    if (responseHeader_ == "AR") log("ONFLY: Change Failed!");
    currentCommand_.clear();
}

void Link::replyLine(const Reply&) {
    const bool verified = responseHeader_ == "PN";
    // "AX" above all leaves everything standing: the tick sends the next line.
    if (!verified && responseHeader_ != "AR") return;
    const bool firmware = commandKey(currentCommand_) == "P3";
    End_Transfer(verified);
    if (verified) {
        log(firmware ? "ORB: Firmware Upload Successful, Verified!"
                     : "ORB: Upload Successful, Program Verified!");
    } else {
        log(firmware ? "Firmware Upload to ORB Unit FAILED!" : "Data Upload to ORB Unit FAILED!");
    }
    currentCommand_.clear();
    transferLine_ = 0;
    transferActive_ = false;
}

// ---- E

void Link::replyIdentify(const Reply& reply) {
    const std::int32_t former = linked_.SerialNumber;
    const bool known = readSerialNumber(reply);
    show(&LinkStatus::firmwareUpgradeEnabled, !linked_.OldFirmware);
    // A reply in no known format, or with a number in no range, is no unit: the poller asks again.
    if (!known || !findUnitKind(former)) {
        countUnknownAnswer();
        currentCommand_.clear();
        return;
    }
    knowsWhoIsThere();
    if (linked_.LinkedUnitKind != 0) host_.unitKindFound(linked_.LinkedUnitKind);
    fillDashboardDefaults();
    if (!hasMarker(reply)) {
        acceptUnit("ORB Unit Found but must be upgraded!");
        linked_.OldFirmware = true;
    } else {
        acceptUnit("ORB Unit Found and Ready!");
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
    const bool told = linked_.OldFirmware;
    linked_.OldFirmware = true;
    if (told) return;
    host_.show(
        {.title = "Old ORBA Firmware",
         .text = "This system contains an old firmware.  It MUST be sent to Norvalia for upgrade before it "
                 "can be used with Zentaq4.\n"
                 "The old BIN file must then be opened, converted and programmed to the unit.",
         .icon = Icon::Critical});
}

bool Link::findUnitKind(std::int32_t former) {
    const SerialRange* range = unitOfSerial(linked_.SerialNumber);
    if (linked_.SerialNumber != 0 && range == nullptr) {
        discardInput();
        linked_.SerialNumber = 0;
        return false;
    }
    // The number 0 tells no kind.
    const int slot = range == nullptr ? linked_.LinkedUnitKind : range->slot;
    // A unit of the oldest format takes no changes, whoever of its kind was there before.
    const bool otherNumber = former != 0 && linked_.SerialNumber != 0 && former != linked_.SerialNumber;
    const bool otherUnit = linked_.LinkedUnitKind != slot || linked_.OldFirmware || otherNumber;
    if ((linked_.UnitIdentified && otherUnit) || isStranger(slot)) leaveFormerUnit();
    linked_.LinkedUnitKind = slot;
    if (range != nullptr && !linked_.UnitFound) show(&LinkStatus::unitLabel, range->label);
    return true;
}

// Whether a transfer that still waits was meant for another unit than the one that answers now.
bool Link::isStranger(int slot) const {
    if (openTransfer_.empty() || transferActive_) return false;
    if (transferSerial_ != 0 && transferSerial_ != linked_.SerialNumber) return true;
    if (!firmwarePending()) return false;
    // A unit of the oldest format takes no firmware from here. Kinds of one prefix take the same files.
    const auto prefix = [&](int of) { return host_.unit(of).kind().firmwarePrefix; };
    const bool known = slot != 0 && firmwareSlot_ != 0;
    return linked_.OldFirmware || (known && prefix(firmwareSlot_) != prefix(slot));
}

void Link::knowsWhoIsThere() {
    if (linked_.LinkedUnitKind == 0) return countUnknownAnswer();
    askFirst_ = false;
}

// Who answers, but never says who it is, is no unit without firmware: that one is silent.
void Link::countUnknownAnswer() {
    constexpr int mostUnknownAnswers = 3;
    if (!askFirst_ || ++unknownAnswers_ < mostUnknownAnswers) return;
    log("Who answers does not say what it is.");
    leaveFormerUnit();
}

// Another unit has taken the place of the one that was identified, with no silence between them, or of the
// one that a transfer waits for. Changes on the fly, a transfer and whatever else waits were meant for that
// one.
void Link::leaveFormerUnit() {
    if (transferPending()) {
        skipFailing([&] {
            host_.show({.title = "Another Unit",
                        .text = "Another unit answers than the one that was to be programmed or read.\n"
                                "The transfer has ended. Nothing more is sent to this unit.",
                        .icon = Icon::Exclamation});
        });
        skipFailing([&] { End_Transfer(false); });
    }
    transferActive_ = false;
    loseLink(FirmwareRestore::IfUnitKnown);
}

void Link::fillDashboardDefaults() {
    // A calibration that is being made has no file yet.
    const bool inHand = host_.currentUnit() == linked_.LinkedUnitKind;
    if (!inHand && linkedUnit().BinFile().empty()) storeDashboardDefaults(linkedUnit());
}

void Link::acceptUnit(std::string_view text) {
    hideNoConnectPanel();
    discardInput();
    COMM_StatusMessage("CONNECTED!", text, "", "Connected");
    const std::string serial = formatNumber(linked_.SerialNumber, "000000");
    show(&LinkStatus::serialNumber, serial);
    linkedUnit().Serial(serial);
    show(&LinkStatus::panel3, "");
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
    if (linked_.LinkedUnitKind == orbaKindNumber) showSubType(unitSubType(reply));
    show(&LinkStatus::panel3, linkedUnit().FirmWare());
    log("ORB :: BinFile : " + linked_.UnitBinName);
    linked_.UnitIdentified = true;
    linkedUnit().gpioListRead(true);
    if (linked_.LinkedUnitKind == host_.currentUnit()) host_.initializeOnFly(true);
    askForConfiguration();
    currentCommand_.clear();
}

void Link::storeFirmware(const Reply& reply) {
    const std::string raw = firmwareBytes(reply);
    const std::string shown = shownText(raw);
    log("ORB :: Firmware: " + shown);
    show(&LinkStatus::firmware, shown);
    Unit& unit = linkedUnit();
    unit.FirmWare(shown);
    const FirmwareNumber firmware = firmwareNumber(raw);
    if (!linked_.FirmwareTold) firmwareBefore_ = {unit.FW_Release(), unit.FW_Build()};
    // Before the release is stored: storing it brings a calibration in hand to this firmware.
    linked_.FirmwareTold = true;
    firmwareMended();  // whatever an earlier run did: this unit has one
    unit.FW_Build(firmware.build);
    unit.FW_Release(firmware.release);
}

void Link::warnUnitMismatch() {
    const int current = host_.currentUnit();
    if (current == 0 || current == linked_.LinkedUnitKind) return;
    if (linked_.UnitIdentified) return;  // told once per connect
    host_.show({.title = "Unit Type Mismatch",
                .text = "The currently open file is for a different system than the one just connected.\n"
                        "\n"
                        "You may still edit the calibration file, but no changes may be made to the unit.",
                .icon = Icon::Exclamation});
}

void Link::warnNewFirmware() {
    const int kind = linked_.LinkedUnitKind;
    const Unit& unit = linkedUnit();
    const std::pair known(host_.expectedRelease(kind), host_.expectedBuild(kind));
    const std::pair firmware(unit.FW_Release(), unit.FW_Build());
    if (firmware <= known) return;
    // Told once: a unit whose answer was lost on the way is asked several times.
    const std::array told{static_cast<int>(linked_.SerialNumber), firmware.first, firmware.second};
    if (toldFirmware_ == told) return;
    toldFirmware_ = told;
    host_.show({.title = {},
                .text = "This version of firmware is not fully supported by this version of Zentaq.\n"
                        "You will still be able to make changes to the unit, but not all features will be "
                        "available."});
}

void Link::showSubType(int subType) {
    const std::string_view label = subTypeLabel(subType);
    if (!label.empty()) show(&LinkStatus::unitLabel, label);
    linked_.UnitSubType = subType + 1;
}

void Link::askForConfiguration() {
    const auto rule = std::ranges::find(monitorRules, linked_.LinkedUnitKind, &MonitorRule::slot);
    linked_.WideMonitor = false;
    if (rule == std::end(monitorRules)) return;
    const int release = linkedUnit().FW_Release();
    linked_.WideMonitor = rule->wideFrom != 0 && release >= rule->wideFrom;
    if (release >= rule->configurationFrom) Send_ORB_Command("C");
}

// ---- C

void Link::replyConfiguration(const Reply& reply) {
    Unit& unit = linkedUnit();
    unit.hasPIC18(false);
    const auto pic18 = decodePic18(reply, linked_.LinkedUnitKind, {unit.FW_Release(), unit.FW_Build()});
    if (pic18) unit.hasPIC18(*pic18);
    currentCommand_.clear();
}

// ---- D

void Link::replyDatalogRecord(const Reply& reply) {
    if (isEndOfLog(reply)) return endDownload();
    ++transferLines_;
    if (!hasMarker(reply)) {
        // No message: the download stalls and ends by its time-out.
        currentCommand_.clear();
        return;
    }
    Unit& unit = linkedUnit();
    decoder_.Internal_Data_Conv(unit, reply);
    DataRecord(transferStream_, unit, live_, true, transferLines_);
    if (!transferStream_) throw FileError("The datalog cannot be written.");
    stepProgress(transferLines_, unit.kind().sizes.datalogMax);
    Send_ORB_Command("D");
    currentCommand_.clear();
}

void Link::endDownload() {
    // A first record that is at once the end: the unit had nothing to give.
    const bool complete = transferLines_ >= 2 && transferStream_.flush().good();
    End_Transfer(complete);
    if (complete) log("ORB: Datalog download complete!");
    transferActive_ = false;
    currentCommand_.clear();
}

}  // namespace zentaq
