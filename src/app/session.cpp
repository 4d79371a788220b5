#include "app/session.h"

#include <algorithm>
#include <utility>

#include "app/flight_record.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/settings_keys.h"
#include "config/engine_facts.h"

namespace zentaq {

namespace {

/// How often a closed port is looked for.
constexpr std::int64_t portCheckUs = 1'000'000;

/// How often the shares of a frame are told.
constexpr std::int64_t timesUs = 500'000;

}  // namespace

Session::Session(const Platform& platform)
    : dialogs_(platform.dialogs, {[this] { return insideTick(); }, [this](const Box& box) { show(box); }}),
      yield_(platform.yield, [this] { return insideTick(); }),
      console(platform.clock),
      messages(
          dialogs_, [this](std::string_view text) { sysLog(text); },
          [this](const std::string& form) { windows_->focus(form); }),
      decoder(live),
      link(platform.port, *this, decoder, live, platform.clock, yield_),
      poller(
          link, linkDisplay, [this] { refreshCodes(); },
          [this] { windows_->tell(&WindowNews::updateDisplay); }),
      trace(platform.clock),
      saving(*this, platform.writer),
      recentFiles(platform.settings),
      folds(platform.settings),
      platform_(platform) {
    for (LineWatch* watcher : watchers()) platform_.port.watch(*watcher);
    trace.onFailure([this](const std::string& why) { sysLog("Wire trace ended: " + why); });
    messages.onMark([this](std::string_view state) {
        if (state == "Modified") markModified();
    });
    platform_.ticker.onTick([this] {
        link.tick();
        holdSignals();
        poller.tick();
        saving.poll();
    });
    paintFollows_ = frames.follow(
        [this] { paintMemory.ofUnit(link.linked().LinkedUnitKind, link.linked().SerialNumber); });
    units_[0] = std::make_unique<Unit>(nullKind(), *this);
    recorder = std::make_unique<FlightRecord>(*this);
}

Session::~Session() {
    recorder.reset();
    platform_.ticker.stop();
    platform_.ticker.onTick({});
    platform_.port.onEvent({});
    for (LineWatch* watcher : watchers()) platform_.port.unwatch(*watcher);
}

void Session::makeUnits() {
    for (const UnitKind& kind : unitKinds()) {
        const auto slot = static_cast<std::size_t>(kind.slot);
        FW_ReleaseTable[slot] = kind.expected.release;
        FW_BuildTable[slot] = kind.expected.build;
        auto& place = units_[slot];
        if (!place) place = std::make_unique<Unit>(kind, *this);
    }
}

Unit& Session::Units(int slot) {
    if (slot < 0 || slot >= slotCount) throw BoundsError();
    auto& place = units_[static_cast<std::size_t>(slot)];
    return place ? *place : *units_[0];
}

bool Session::hasUnit(int slot) const {
    return slot > 0 && slot < slotCount && units_[static_cast<std::size_t>(slot)] != nullptr;
}

Database* Session::reference() {
    skipFailing([&] { requireReference(); });
    return database ? &*database : nullptr;
}

Database& Session::requireReference() {
    if (database) return *database;
    constexpr std::int64_t pauseUs = 1'000'000;  // a locked file costs a moment each time
    const std::int64_t now = platform_.clock.monotonicUs();
    if (now < nextReferenceUs_) throw Failure(noReference_);
    const bool again = !std::exchange(noReference_, "The reference database could not be opened.").empty();
    if (!DatabaseFile.empty()) {
        endOnFailure([&] { database = Database::open(DatabaseFile); },
                     [&](const std::string& why) { noReference_ = why; });
    }
    if (!database) {
        nextReferenceUs_ = now + pauseUs;
        throw Failure(noReference_);
    }
    if (again) sysLog("Reference database opened.");
    return *database;
}

bool Session::heatScaleChosen() const {
    return platform_.settings.get(settings::system, settings::CellScale) == "1";
}

double Session::settingNumber(const std::string& key) const {
    return numberOf(platform_.settings.get(settings::system, key));
}

void Session::poll(bool secondTabShowing) {
    const std::int64_t now = platform_.clock.monotonicUs();
    // A port that was absent at the start is opened as soon as its cable is plugged in.
    if (!linkDisplay.status().connected && now >= nextPortCheckUs_) {
        nextPortCheckUs_ = now + portCheckUs;
        const auto port = link.chosenPort();
        // A port that is there but busy would fill the log with its failure, once a second.
        if (port && skipFailing([&] { platform_.port.open(port->number); })) link.ORB_Initialize();
    }
    poller.fire({.tab2Showing = secondTabShowing || recorder->showsLog(), .autoVeOn = AutoVEActive});
    trace.tend();
    showFrameTimes();
}

// Ctrl-C or Ctrl-Z in the terminal that the program was started from, or the end of that terminal, would
// leave a unit with half a program.
void Session::holdSignals() {
    const bool wanted = link.transfer().programming();
    if (wanted == heldSignals_.has_value()) return;
    if (wanted) {
        heldSignals_.emplace(userSignals);
    } else {
        heldSignals_.reset();
    }
}

void Session::showFrameTimes() {
    const std::int64_t now = platform_.clock.monotonicUs();
    if (now < nextTimesUs_) return;
    nextTimesUs_ = now + timesUs;
    linkDisplay.showFrameTimes(frameTimesText(timing.shares(now)));
}

void Session::applyTrace() {
    const bool wanted = platform_.settings.get(settings::system, settings::WireTrace) == "1";
    if (wanted == trace.running()) return;
    if (!wanted) {
        trace.stop();
        return sysLog("Wire trace ended: " + traceFile());
    }
    const LinkedUnit& linked = link.linked();
    endOnFailure(
        [&] {
            trace.start(traceFile(), linked.LinkedUnitKind, linked.OldFirmware);
            sysLog("Wire trace begun: " + traceFile());
        },
        [&](const std::string& why) { sysLog("No wire trace: " + why); });
}

void Session::refreshCodes() {
    codes.Clear_CHKE();
    link.Send_ORB_Command("T");
}

bool Session::dayMode() const {
    bool day = false;
    skipFailing([&] { day = settingNumber(settings::MonitorMode) == 1; });
    return day;
}

void Session::applyMonitorMode() {
    windows_->tell(&WindowNews::look, dayMode());
}

void Session::markModified() {
    if (slotInHand() == 0) return;
    DataModified = true;
    ++userChanges_;
}

void Session::fileNamed(const std::string& path, bool sample) {
    fileIsSample = sample;
    windows_->tell(&WindowNews::titleChanged, "Current Calibration File: " + path);
    if (!sample) recentFiles.add(path);
}

// ---- UnitHost

void Session::sysLog(std::string_view text) {
    trace.note(text);
    // A log file that cannot be written must not end a command on a running engine: the line is on the
    // console by then, and the file is left alone from here on.
    endOnFailure([&] { console.SysLog(text); },
                 [&](const std::string& why) {
                     console.LogToFile(false);
                     console.plainLine(why);
                     console.plainLine("Logging to the file is off.");
                 });
}

void Session::addToLastLine(std::string_view text) {
    trace.note(text);
    console.AddtoLastLine(text);
}

void Session::heard(const UnitNews& news) {
    news.event == UnitEvent::Saved ? messages.Display_Message(codes::DataSaved) : inform(textOf(news));
}

void Session::inform(std::string_view text) {
    // Also called while the link stores a unit's firmware, so not from inside its handler.
    const Box box{"Zentaq4", std::string(text), Icon::Information, Buttons::Ok};
    show(box);
}

void Session::notice(std::string_view text, const std::function<bool()>& stands) {
    sysLog(text);
    if (!windows_->noticesSeen()) {
        return show({.title = "Zentaq4",
                     .text = std::string(text),
                     .icon = Icon::Information,
                     .buttons = Buttons::Ok,
                     .stands = stands});
    }
    notices.tell(std::string(text), stands);
}

void Session::sendOnFly(std::string_view record) {
    unitMemory.changeSent();
    link.SEND_ONFLY(record);
}

std::optional<EngineFacts> Session::engine(int kind, int optionType) {
    const auto row = requireReference().engine(kind, optionType);
    if (!row) return {};
    return engineFacts(*row);
}

std::optional<SensorFacts> Session::mapSensor(int id) {
    retryReference();  // asked for when a calibration is converted, and only then
    const auto row = requireReference().mapSensor(id);
    if (!row) return {};
    return SensorFacts{row->scale, row->offset, row->units};
}

bool Session::fahrenheit() const {
    // kept: only "0" is Celsius, so a fresh installation shows Fahrenheit until the options are applied.
    return platform_.settings.get(settings::system, settings::TemperatureToggle) != "0";
}

bool Session::firmwareKnownFromLink(int slot) const {
    return link.linked().tells(slot);
}

// A file is being read: the user's next command is not meant for what is half in hand.
void Session::yield() {
    yield_.yieldWithoutInput();
}

void Session::formsChanged() {
    windows_->tell(&WindowNews::showUnit);
}

// ---- LinkHost

int Session::slotInHand() const {
    return toInt16(fileHeader.currentUnit);
}

float Session::fileFirmwareCode() const {
    const auto& inHand = units_.at(static_cast<std::size_t>(slotInHand()));
    return inHand ? inHand->facts().firmwareCode : 0;
}

void Session::heard(const LinkNews& news) {
    LinkTeller::heard(news);
    unitMemory.heard(news);
    switch (news.event) {
        case LinkEvent::PortForced:
            return platform_.settings.set(settings::system, settings::CommPort, "1");
        case LinkEvent::LinkLost:
            return initializeOnFly(false);
        case LinkEvent::UnitReady:
        case LinkEvent::UnitMustUpgrade:
            return rememberUnit();
        case LinkEvent::UnitAgrees:
            return initializeOnFly(true);
        case LinkEvent::TableLock:
            return windows_->tell(&WindowNews::onFlyLock, news.number != 0);
        case LinkEvent::KindFound:
            return unitKindFound(news.number);
        case LinkEvent::CodesReceived:
            return codesReceived();
        case LinkEvent::CodesCleared:
            return codesCleared();
        case LinkEvent::FrameDecoded:
            unitMemory.frameCame(platform_.clock.monotonicUs());
            return frames.tell();
        default:
            return;
    }
}

void Session::commLog(std::string_view text) {
    if (console.CommLog(text) && !link.transfer().active()) windows_->tell(&WindowNews::clearPanel3);
}

// A reply handler that told a user something would stand still until the answer, and the frames of a running
// engine with it: its boxes come from the event loop. A link that comes and goes has the same to tell each
// time; while a box has not been read, it stands for all of them.
void Session::show(const Box& box) {
    const auto same = [box](const Box& other) { return other.title == box.title && other.text == box.text; };
    if (std::ranges::any_of(boxesToShow_, same)) return;
    boxesToShow_.push_back(box);
    windows_->later([this, box, same] {
        if (!box.stands || box.stands()) platform_.dialogs.show(box);
        std::erase_if(boxesToShow_, same);
    });
}

void Session::transferEnded(const TransferEnd& end) {
    LinkTeller::transferEnded(end);
    unitMemory.transferEnded(end);
}

void Session::rememberUnit() {
    const LinkedUnit& linked = link.linked();
    const std::string model(Units(linked.LinkedUnitKind).kind().name);
    unitMemory.unitIs(linked.SerialNumber, model + " " + formatNumber(linked.SerialNumber, "000000"));
}

void Session::displayMessage(int code) {
    windows_->later([this, code] { messages.Display_Message(code); });
}

void Session::initializeOnFly(bool on) {
    if (!on && link.linked().LinkedUnitKind == 0) trace.linkLost();
    // What is entered for a calibration that is being made must not reach the running engine.
    currentUnitObject().ONFLY_MODE(on && !creating());
    windows_->tell(&WindowNews::onFlyChanged, on && currentUnitObject().ONFLY_MODE());
}

void Session::retellLinkedUnit() {
    if (!link.unitAgrees()) return;
    const LinkStatus& told = linkDisplay.status();
    currentUnitObject().Serial(told.serialNumber);
    currentUnitObject().FirmWare(told.firmware);
}

int Session::slotForFile(int slot) const {
    const UnitKind* file = unitKindOfSlot(slot);
    const UnitKind* linked = unitKindOfSlot(link.linked().LinkedUnitKind);
    return file != nullptr && linked != nullptr && shareFiles(*file, *linked) ? linked->slot : slot;
}

void Session::followLinkedKind() {
    const int former = slotInHand();
    const int slot = slotForFile(former);
    if (slot == former || !hasUnit(slot)) return;
    auto& inHand = units_[static_cast<std::size_t>(former)];
    auto& other = units_[static_cast<std::size_t>(slot)];
    inHand->exchangeSlots(*other);
    std::swap(inHand, other);
    fileHeader.currentUnit = static_cast<float>(slot);
    if (!link.linked().tells(slot)) return;
    // The firmware that the unit has told stands in the object that was in its slot until now.
    const Unit& told = Units(former);
    Units(slot).FW_Build(told.FW_Build());
    Units(slot).FW_Release(told.FW_Release());
}

void Session::unitKindFound(int slot) {
    followLinkedKind();
    FileFilterIndex = Units(slot).kind().fileFilter;
    applyMonitorMode();
    windows_->tell(&WindowNews::unitKindFound, slot);
}

void Session::codesReceived() {
    const int slot = link.linked().LinkedUnitKind;
    codes.Clear_CHKE();
    for (const std::string& text : activeCodes(Units(slot))) codes.Update_CHKE(text);
    windows_->tell(&WindowNews::codesChanged);
}

void Session::codesCleared() {
    codes.Clear_CHKE();
    codes.tellCleared();
    windows_->tell(&WindowNews::codesChanged);
}

FirmwareVersion Session::expectedFirmware(int slot) const {
    const auto at = static_cast<std::size_t>(slot);
    return {FW_ReleaseTable.at(at), FW_BuildTable.at(at)};
}

}  // namespace zentaq
