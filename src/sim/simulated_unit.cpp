#include "sim/simulated_unit.h"

#include <algorithm>
#include <utility>

#include "base/errors.h"
#include "base/text.h"

namespace zentaq::sim {

namespace {

const Bytes accepted{'A', 'X'};
const Bytes refused{'A', 'R'};
const Bytes verified{'P', 'N'};

constexpr std::uint8_t carriageReturn = '\r';
constexpr std::uint8_t lineFeed = '\n';
constexpr std::uint8_t timingZero = 0xFF;
constexpr std::uint8_t timingRestored = 0x00;
constexpr std::uint8_t noCode = 0xFF;
constexpr std::uint8_t erased = 0xFF;
// The lamp shows the codes of the present; the rows behind these hold the intermittent ones.
constexpr int lampRows = 6;
constexpr double logSecondsPerRecord = 0.1;
// The high byte of an engine speed above 21000 rpm, which no real record can hold.
constexpr std::uint8_t endOfLogMark = 0xFF;
constexpr std::size_t optionByte = 18;

void append(Bytes& target, const Bytes& more) {
    target.insert(target.end(), more.begin(), more.end());
}

}  // namespace

struct SimulatedUnit::CommandRow {
    char letter;
    Handler handler;
};

UnitIdentity defaultIdentity(const UnitProfile& profile) {
    return {.serial = profile.defaultSerial,
            .firmware = std::string(profile.defaultFirmware),
            .subtype = profile.subtype,
            .logRecords = profile.logRecords,
            .hasPic18 = profile.hasPic18};
}

SimulatedUnit::SimulatedUnit(const UnitProfile& profile, UnitIdentity identity, Drive drive)
    : profile_(profile),
      identity_(std::move(identity)),
      serialReply_(serialReplyOf(identity_.serialFormat, identity_.serial)),
      engineSetup_{identity_.serial, std::move(drive)},
      engine_(engineSetup_),
      memory_(profile.baseAddress, profile.memorySize),
      firmware_(profile.firmwarePrefix, identity_.firmware) {
    identity_.firmware = fixedWidth(identity_.firmware, firmwareLength);
    codes_.fill(noCode);
    setCalibrationName("");
}

Bytes SimulatedUnit::feed(std::span<const std::uint8_t> burst) {
    if (bootSeconds_ > 0) return {};
    Bytes replies;
    dropRestOfBurst_ = false;
    for (const std::uint8_t byte : burst) {
        if (dropRestOfBurst_) break;
        append(replies, consume(byte));
    }
    // Without a line end a line is over when nothing follows it.
    if (!profile_.linesEndInLineFeed && isProgramming() &&
        record_.state() == SRecordCollector::State::Complete)
        append(replies, programmingRecord());
    if (!burst.empty()) quietSeconds_ = 0;
    return replies;
}

void SimulatedUnit::advance(double seconds) {
    showMemoryToEngine();
    engine_.advance(seconds);
    quietSeconds_ += seconds;
    if (quietSeconds_ > stallSeconds) {
        expecting_ = Expecting::Command;
        record_.clear();
    }
    if (quietSeconds_ > programmingPatienceSeconds) memory_.abandonProgramming();
    if (quietSeconds_ > firmwarePatienceSeconds) firmware_.abandon();
    bootSeconds_ = std::max(0.0, bootSeconds_ - seconds);
}

void SimulatedUnit::installFirmware(const InstalledFirmware& firmware) {
    const bool known = firmware.state == FirmwareState::Missing ||
                       (!firmware.text.empty() && firmware.text.starts_with(profile_.firmwarePrefix));
    if (!known) throw BoundsError("\"" + firmware.text + "\" is firmware of another kind");
    firmware_.install(firmware);
    if (firmware.state == FirmwareState::Running)
        identity_.firmware = fixedWidth(firmware.text, firmwareLength);
}

void SimulatedUnit::loadMemory(const Bytes& content) {
    if (content.size() != memory().size()) throw BoundsError("The memory of this unit has another size");
    memory_.keepForGood(content);
}

void SimulatedUnit::setCalibrationName(std::string_view name) {
    memory_.keepText(profile_.nameOffset, name, nameLength);
}

void SimulatedUnit::powerCycle() {
    memory_.cyclePower();
    if (firmware_.cyclePower()) {
        identity_.firmware = fixedWidth(firmware_.installed().text, firmwareLength);
        memory_.keepForGood(Bytes(memory().size(), erased));
    }
    record_.clear();
    expecting_ = Expecting::Command;
    logPosition_ = 0;
    loggedEngine_.reset();
    engine_.cyclePower();
    showMemoryToEngine();
}

void SimulatedUnit::reset(double bootSeconds) {
    powerCycle();
    bootSeconds_ = bootSeconds;
}

void SimulatedUnit::lineLost() {
    if (!firmware_.programming()) return;
    firmware_.abandon();
    record_.clear();
}

void SimulatedUnit::setCode(int row, int bit) {
    if (row < 1 || row > codeRows || bit < 0 || bit > 7) throw BoundsError("No such check-engine code");
    auto& code = codes_[static_cast<std::size_t>(row - 1)];
    code = static_cast<std::uint8_t>(code & ~(1u << bit));
}

void SimulatedUnit::holdPin(int pin, int value) {
    const auto pins = static_cast<int>(profile_.inputs.gpio.size());
    if (pin < 1 || pin > pins || value < 0 || value > 255) throw BoundsError("No such pin or value");
    heldPins_.emplace_back(pin - 1, value);
}

Bytes SimulatedUnit::consume(std::uint8_t byte) {
    switch (expecting_) {
        case Expecting::TimingArgument:
            return timingArgument(byte);
        case Expecting::ProgramArgument:
            return programArgument(byte);
        case Expecting::OnTheFlyRecord:
            return onTheFlyByte(byte);
        case Expecting::Command:
            break;
    }
    return idleByte(byte);
}

Bytes SimulatedUnit::idleByte(std::uint8_t byte) {
    if (isProgramming()) return programmingByte(byte);
    switch (firmware_.installed().state) {
        case FirmwareState::Programmed:
            return {};  // it waits for its power to be cycled
        case FirmwareState::Missing:
            return byte == 'P' ? expectProgramArgument() : Bytes{};  // the boot loader knows P3 alone
        case FirmwareState::Running:
            break;
    }
    return command(byte);
}

Bytes SimulatedUnit::command(std::uint8_t byte) {
    static constexpr CommandRow rows[] = {
        {'A', &SimulatedUnit::clearCodes},
        {'B', &SimulatedUnit::firmwareReply},
        {'C', &SimulatedUnit::configReply},
        {'D', &SimulatedUnit::nextLogRecord},
        {'E', &SimulatedUnit::serialReply},
        {'F', &SimulatedUnit::narrowFrame},
        {'I', &SimulatedUnit::inputsFrame},
        {'K', &SimulatedUnit::stopEngine},
        {'P', &SimulatedUnit::expectProgramArgument},
        {'S', &SimulatedUnit::storeChanges},
        {'T', &SimulatedUnit::codesReply},
        {'W', &SimulatedUnit::wideFrame},
        {'Z', &SimulatedUnit::expectTimingArgument},
    };
    for (const CommandRow& row : rows) {
        if (byte == static_cast<std::uint8_t>(row.letter)) return (this->*row.handler)();
    }
    return {};  // an unknown byte is noise
}

Bytes SimulatedUnit::timingArgument(std::uint8_t byte) {
    expecting_ = Expecting::Command;
    // Any other byte ends the broken command and may begin the next one.
    if (byte != timingZero && byte != timingRestored) return consume(byte);
    engine_.setTimingZero(byte == timingZero);
    return accepted;
}

Bytes SimulatedUnit::programArgument(std::uint8_t byte) {
    expecting_ = Expecting::Command;
    if (byte == '3') return startFirmware();
    if (firmware_.installed().state != FirmwareState::Running) return consume(byte);
    if (byte == '1') return startProgramming();
    if (byte != '2') return consume(byte);
    expectRecords(calibrationRecords);
    expecting_ = Expecting::OnTheFlyRecord;
    return {};
}

Bytes SimulatedUnit::onTheFlyByte(std::uint8_t byte) {
    const auto state = record_.push(byte);
    if (state == SRecordCollector::State::Broken) return refuse();
    if (state != SRecordCollector::State::Complete) return {};
    const auto record = parseSRecord(record_.text());
    if (!record || !memory_.change(*record)) return refuse();
    record_.clear();
    expecting_ = Expecting::Command;
    return accepted;
}

Bytes SimulatedUnit::startProgramming() {
    memory_.beginProgramming();
    expectRecords(calibrationRecords);
    return accepted;
}

Bytes SimulatedUnit::startFirmware() {
    const bool allowed = upgradeMode_ || firmware_.installed().state == FirmwareState::Missing;
    if (!allowed) return refused;
    firmware_.begin();
    expectRecords(firmwareRecords);
    return accepted;
}

bool SimulatedUnit::isProgramming() const {
    return memory_.programming() || firmware_.programming();
}

void SimulatedUnit::expectRecords(std::string_view types) {
    record_ = SRecordCollector(types);
}

Bytes SimulatedUnit::programmingByte(std::uint8_t byte) {
    using State = SRecordCollector::State;
    if (byte == carriageReturn || byte == lineFeed) return programmingLineEnd(byte);
    if (record_.state() == State::Complete) return refuse();
    return record_.push(byte) == State::Broken ? refuse() : Bytes{};
}

Bytes SimulatedUnit::programmingLineEnd(std::uint8_t byte) {
    // This kind takes its lines without an end, and one that has an end is meant for another kind.
    if (!profile_.linesEndInLineFeed) return refuse();
    const bool endsRecord = byte == lineFeed && record_.state() == SRecordCollector::State::Complete;
    return endsRecord ? programmingRecord() : Bytes{};
}

Bytes SimulatedUnit::programmingRecord() {
    if (firmware_.programming()) return firmwareRecord();
    const auto record = parseSRecord(record_.text());
    if (!record) return refuse();
    if (record->type == '9') return endOfProgramming();
    // More lines than its firmware has memory for come from an image for another unit.
    if (!memory_.program(*record, programmedSize())) return refuse();
    record_.clear();
    return accepted;
}

Bytes SimulatedUnit::firmwareRecord() {
    const auto verdict = firmware_.take(parseSRecord(record_.text(), firmwareRecords));
    if (verdict == FirmwareMemory::Verdict::Refused) return refuse();
    record_.clear();
    return verdict == FirmwareMemory::Verdict::Verified ? verified : accepted;
}

Bytes SimulatedUnit::endOfProgramming() {
    if (!memory_.finishProgramming(programmedSize())) return refuse();
    record_.clear();
    return verified;
}

// What follows a refused record in the same burst are remains of it: hexadecimal digits that would be
// taken for commands.
Bytes SimulatedUnit::refuse() {
    memory_.abandonProgramming();
    firmware_.abandon();
    record_.clear();
    expecting_ = Expecting::Command;
    dropRestOfBurst_ = true;
    return refused;
}

Bytes SimulatedUnit::clearCodes() {
    codes_.fill(noCode);
    return accepted;
}

Bytes SimulatedUnit::firmwareReply() {
    Bytes reply = headedReply(profile_.firmwareReplyLength);
    std::copy_n(memory().begin() + profile_.nameOffset, nameLength, reply.begin() + 3);
    placeText(reply, 3 + nameLength, identity_.firmware, firmwareLength);
    if (profile_.subtypeByte > 0) reply[static_cast<std::size_t>(profile_.subtypeByte)] = identity_.subtype;
    seal(reply);
    return reply;
}

Bytes SimulatedUnit::configReply() {
    Bytes reply = headedReply(profile_.configReplyLength);
    reply[optionByte] = identity_.hasPic18 ? 1 : 0;
    seal(reply);
    return reply;
}

Bytes SimulatedUnit::nextLogRecord() {
    if (logPosition_ >= identity_.logRecords) {
        logPosition_ = 0;
        loggedEngine_.reset();
        Bytes end = headedReply(profile_.logRecord.length);
        end[3] = endOfLogMark;
        seal(end);
        return end;
    }
    if (!loggedEngine_) {
        loggedEngine_.emplace(engineSetup_);
        loggedEngine_->setCalibration(readEngineCalibration(profile_.firmwarePrefix, memory()));
    }
    ++logPosition_;
    loggedEngine_->advance(logSecondsPerRecord);
    return encodeFrame(profile_.logRecord, loggedEngine_->values());
}

Bytes SimulatedUnit::serialReply() {
    return serialReply_;
}

Bytes SimulatedUnit::narrowFrame() {
    return encodeFrame(profile_.narrow, liveValues());
}

Bytes SimulatedUnit::inputsFrame() {
    return encodeFrame(profile_.inputs, liveValues());
}

Bytes SimulatedUnit::wideFrame() {
    if (profile_.wide.length == 0 || release() < profile_.wideFromRelease) return {};
    return encodeFrame(profile_.wide, liveValues());
}

Bytes SimulatedUnit::stopEngine() {
    engine_.kill();
    return accepted;
}

Bytes SimulatedUnit::expectProgramArgument() {
    expecting_ = Expecting::ProgramArgument;
    return {};
}

Bytes SimulatedUnit::expectTimingArgument() {
    expecting_ = Expecting::TimingArgument;
    return {};
}

Bytes SimulatedUnit::storeChanges() {
    memory_.store();
    return accepted;
}

Bytes SimulatedUnit::codesReply() {
    Bytes reply = headedReply(profile_.codesReplyLength);
    std::copy(codes_.begin(), codes_.end(), reply.begin() + 3);
    seal(reply);
    return reply;
}

// Only on a change: the engine runs two hundred steps a second.
void SimulatedUnit::showMemoryToEngine() {
    if (shownRevision_ == memory_.runningRevision()) return;
    shownRevision_ = memory_.runningRevision();
    const bool whole = shownWholeRevision_ != memory_.wholeRevision();
    shownWholeRevision_ = memory_.wholeRevision();
    const EngineCalibration calibration = readEngineCalibration(profile_.firmwarePrefix, memory());
    whole ? engine_.program(calibration) : engine_.setCalibration(calibration);
}

LiveValues SimulatedUnit::liveValues() const {
    LiveValues live = engine_.values();
    const bool lamp =
        std::any_of(codes_.begin(), codes_.begin() + lampRows, [](auto code) { return code != noCode; });
    live.checkEngine = lamp ? 1 : 0;
    for (const auto& [index, value] : heldPins_) live.gpio.at(index) = value;
    return live;
}

int SimulatedUnit::release() const {
    int number = 0;
    for (const char c : identity_.firmware.substr(5, 2)) {
        if (c < '0' || c > '9') return 0;
        number = number * 10 + (c - '0');
    }
    return number;
}

int SimulatedUnit::programmedSize() const {
    return release() < profile_.fullMemoryFromRelease ? profile_.memorySizeOlder : profile_.memorySize;
}

}  // namespace zentaq::sim
