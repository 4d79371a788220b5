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

void placeText(Bytes& target, int at, std::string_view text, int width) {
    const std::string field = fixedWidth(text, static_cast<std::size_t>(width));
    std::transform(field.begin(), field.end(), target.begin() + at,
                   [](char c) { return static_cast<std::uint8_t>(c); });
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
      memory_(static_cast<std::size_t>(profile.memorySize)),
      permanent_(memory_),
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
    if (quietSeconds_ > programmingPatienceSeconds) programming_.reset();
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
    if (content.size() != memory_.size()) throw BoundsError("The memory of this unit has another size");
    keepForGood(content);
}

void SimulatedUnit::setCalibrationName(std::string_view name) {
    placeText(memory_, profile_.nameOffset, name, nameLength);
    placeText(permanent_, profile_.nameOffset, name, nameLength);
    ++revision_;
    ++permanentRevision_;
}

void SimulatedUnit::powerCycle() {
    memory_ = permanent_;
    ++revision_;
    if (firmware_.cyclePower()) {
        identity_.firmware = fixedWidth(firmware_.installed().text, firmwareLength);
        keepForGood(Bytes(memory_.size(), erased));
    }
    programming_.reset();
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
    if (programming_ || firmware_.programming()) return programmingByte(byte);
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
    const bool oneOrTwoBytes = record && (record->data.size() == 1 || record->data.size() == 2);
    if (!oneOrTwoBytes || !fitsIn(profile_.memorySize, *record)) return refuse();
    write(memory_, *record);
    ++revision_;
    record_.clear();
    expecting_ = Expecting::Command;
    return accepted;
}

Bytes SimulatedUnit::startProgramming() {
    programming_ = Programming{memory_, std::vector<bool>(memory_.size())};
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

void SimulatedUnit::expectRecords(std::string_view types) {
    record_ = SRecordCollector(types);
}

Bytes SimulatedUnit::programmingByte(std::uint8_t byte) {
    using State = SRecordCollector::State;
    if (byte == carriageReturn || byte == lineFeed) return programmingLineEnd(byte);
    // Only a unit that waits for the line's end can find something behind a whole record.
    if (record_.state() == State::Complete) return refuse();
    const State state = record_.push(byte);
    if (state == State::Broken) return refuse();
    if (state != State::Complete || profile_.linesEndInLineFeed) return {};
    return programmingRecord();
}

Bytes SimulatedUnit::programmingLineEnd(std::uint8_t byte) {
    const bool endsRecord = byte == lineFeed && record_.state() == SRecordCollector::State::Complete;
    return endsRecord ? programmingRecord() : Bytes{};
}

Bytes SimulatedUnit::programmingRecord() {
    if (firmware_.programming()) return firmwareRecord();
    const auto record = parseSRecord(record_.text());
    if (!record) return refuse();
    if (record->type == '9') return endOfProgramming();
    // More lines than its firmware has memory for come from an image for another unit.
    if (!fitsIn(programmedSize(), *record)) return refuse();
    write(programming_->staging, *record);
    const auto first = programming_->covered.begin() + (record->address - profile_.baseAddress);
    std::fill_n(first, record->data.size(), true);
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
    const auto first = programming_->covered.begin();
    const bool whole = std::all_of(first, first + programmedSize(), [](bool covered) { return covered; });
    if (!whole) return refuse();
    keepForGood(std::move(programming_->staging));
    programming_.reset();
    record_.clear();
    return verified;
}

// What follows a refused record in the same burst are remains of it: hexadecimal digits that would be
// taken for commands.
Bytes SimulatedUnit::refuse() {
    programming_.reset();
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
    std::copy_n(memory_.begin() + profile_.nameOffset, nameLength, reply.begin() + 3);
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
        loggedEngine_->setCalibration(readEngineCalibration(profile_.firmwarePrefix, memory_));
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
    permanent_ = memory_;
    ++permanentRevision_;
    return accepted;
}

Bytes SimulatedUnit::codesReply() {
    Bytes reply = headedReply(profile_.codesReplyLength);
    std::copy(codes_.begin(), codes_.end(), reply.begin() + 3);
    seal(reply);
    return reply;
}

void SimulatedUnit::keepForGood(Bytes content) {
    memory_ = permanent_ = std::move(content);
    newCalibration_ = true;
    ++revision_;
    ++permanentRevision_;
}

// Only on a change: the engine runs two hundred steps a second.
void SimulatedUnit::showMemoryToEngine() {
    if (shownRevision_ == revision_) return;
    shownRevision_ = revision_;
    const EngineCalibration calibration = readEngineCalibration(profile_.firmwarePrefix, memory_);
    newCalibration_ ? engine_.program(calibration) : engine_.setCalibration(calibration);
    newCalibration_ = false;
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

bool SimulatedUnit::fitsIn(int size, const SRecord& record) const {
    const std::int64_t first = record.address - profile_.baseAddress;
    const auto length = static_cast<std::int64_t>(record.data.size());
    return record.type == '1' && length > 0 && first >= 0 && first + length <= size;
}

void SimulatedUnit::write(Bytes& target, const SRecord& record) const {
    std::copy(record.data.begin(), record.data.end(),
              target.begin() + (record.address - profile_.baseAddress));
}

}  // namespace zentaq::sim
