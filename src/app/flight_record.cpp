#include "app/flight_record.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <sstream>
#include <utility>

#include "app/command_guards.h"
#include "app/session.h"
#include "app/unit_commands.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "live/datalog_writer.h"
#include "logs/log_channel.h"
#include "logs/log_live.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr std::int64_t frameUs = 20'000;
/// What a busy machine has missed is recorded all the same; behind a longer pause the counter goes on, since
/// nobody has measured meanwhile.
constexpr std::int64_t mostAtOnce = 100;
constexpr int endMonitoring = 3;
constexpr const char* pauseMark = "||";
constexpr const char* logFilter = "Zentaq Datalog (*.DAT)|*.dat";

constexpr int at(RecorderButton button) {
    return static_cast<int>(button);
}

}  // namespace

std::string sessionForFile(const std::string& session) {
    std::string name;
    for (const char c : session) {
        if (c == '"') {
            name += "''";
        } else if (c == '/' || c == '\\' || c == ':' || static_cast<unsigned char>(c) < ' ') {
            name += '-';
        } else {
            name += c;
        }
    }
    return name;
}

FlightRecord::FlightRecord(Session& session)
    : session_(session),
      playback_({[this] { return log_.rows(); },
                 [this](std::size_t row) {
                     std::int32_t frame = 0;
                     skipFailing([&] { frame = toInt32(truncate(log_.frame(row))); });
                     return frame;
                 }}) {
    // A frame that was under way when the polling ended says nothing of the log.
    framesFollowed_ = session.frames.follow([this] {
        if (showsLog_) showRowOnGauges();
    });
    Mode(2);
}

FlightRecord::~FlightRecord() = default;

// ---- Recording

std::string FlightRecord::suggestedSession() const {
    std::string name = fileNameOf(session_.CurrentFile);
    name = name.substr(0, name.size() - extensionOf(name).size());
    if (name.empty() || name == "None") name = "Session";
    return name + "_" + session_.platform().clock.stampText();
}

std::optional<std::string> FlightRecord::askSession() {
    const auto answer = session_.dialogs().input(
        "Flight Record Session",
        "Enter a Session ID for this Recording... (ie: Test Run Sunday, Autocross #1, Drag Attempt, etc.)",
        suggestedSession());
    if (!answer || trimmed(*answer).empty()) return {};
    return sessionForFile(*answer);
}

void FlightRecord::Record() {
    const auto linked = [this] { return session_.link.linked().LinkedUnitKind != 0; };
    const auto refused = [&] {
        if (!linked()) session_.inform("No unit connected");
        return !linked() || Recording;
    };
    if (refused()) return;
    const auto name = askSession();
    if (!name) return;
    const std::string path = session_.platform().userFolder + "/" + std::string(trimmed(*name)) + ".dat";
    std::error_code unknown;
    if (std::filesystem::exists(path, unknown)) {
        const Answer over = session_.dialogs().show(
            {"File Exists",
             "A recording with that name exists already:\n" + shownInBox(path) + "\nRecord over it?",
             Icon::Question, Buttons::YesNo, true});
        if (over != Answer::Yes) return;
    }
    // The boxes let the link go on: the unit may have gone, or another command may have begun.
    if (refused()) return;
    cancelLoading();
    SessionName = *name;
    beginFile(path);
}

void FlightRecord::beginFile(const std::string& path) {
    std::ostringstream head;
    writeDatalogHeader(head, session_.Units(session_.link.linked().LinkedUnitKind));
    std::error_code unknown;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), unknown);
    // Markers of what is recorded over say nothing of the new log.
    skipFailing([&] { writeMarks(path, {}); });
    file_ = std::make_shared<LineAppender>();
    file_->begin(path, head.str());
    path_ = path;
    recorded_ = 0;
    lines_ = 0;
    recordingBeganUs_ = session_.platform().clock.monotonicUs();
    PlayState = 0;
    SetPlayTimer(false);
    Recording = true;
    Mode(2);
    setStatus("Recording");
    session_.sysLog("Recording to " + path);
    followLog();
}

void FlightRecord::RecordData() {
    if (!Recording) return;
    if (session_.link.linked().LinkedUnitKind == 0) return Toolbar(at(RecorderButton::Stop));
    const std::string failure = file_->failure();
    if (!failure.empty()) return recordingFailed(failure);
    setStatus("Recording");
    writeDue();
    changed();
}

void FlightRecord::writeDue() {
    const std::int64_t now = session_.platform().clock.monotonicUs();
    const std::int64_t due = std::max<std::int64_t>((now - recordingBeganUs_) / frameUs, recorded_ + 1);
    if (due - recorded_ > mostAtOnce) recorded_ = static_cast<std::int32_t>(due) - 1;
    Unit& unit = session_.Units(session_.link.linked().LinkedUnitKind);
    while (recorded_ < due) {
        ++recorded_;
        std::ostringstream line;
        DataRecord(line, unit, session_.live, false, recorded_);
        if (line.view().empty()) continue;
        file_->append(line.str());
        ++lines_;
    }
}

void FlightRecord::endRecording() {
    Mode(1);
    Recording = false;
    changed();
}

void FlightRecord::recordingFailed(const std::string& why) {
    const std::int64_t kept = file_->written();
    endRecording();
    setStatus("Stopped");
    session_.sysLog("Recording ended: " + why);
    const std::string text = "The recording has ended: the file cannot be written.\n" + shownInBox(why) +
                             "\n" + numberText(static_cast<double>(kept)) +
                             " lines were written and are kept. Make room, or choose another folder, and "
                             "record anew.";
    session_.windows().later([this, text] {
        session_.dialogs().show({"Flight Record Session", text, Icon::Exclamation, Buttons::Ok});
    });
    LoadData(path_);
}

// ---- Playback

void FlightRecord::Toolbar(int button) {
    if (button < 0 || button >= recorderButtons) return;
    const auto pressed = static_cast<RecorderButton>(button);
    if (SessionName.empty() && pressed != RecorderButton::Record) return;
    if (session_.Monitoring) {
        // The end of a session closes the button of the recorder to everybody but the recorder.
        const auto was = enabled_;
        UnitCommands(session_).loadCommand(endMonitoring);
        enabled_ = was;
    }
    press(pressed);
    changed();
}

void FlightRecord::press(RecorderButton button) {
    switch (button) {
        case RecorderButton::FullBack:
            setStatus("Full Back");
            PlayState = 0;
            playback_.toFirst();
            return jumped();
        case RecorderButton::FullForward:
            setStatus("Full Forward");
            PlayState = 0;
            playback_.toLast();
            return jumped();
        case RecorderButton::StepBack:
            return step(-1);
        case RecorderButton::StepForward:
            return step(1);
        case RecorderButton::Reverse:
            return play(-1);
        case RecorderButton::Play:
            return play(1);
        case RecorderButton::Stop:
            return stop();
        case RecorderButton::Record:
            // A second press ends what the first has begun.
            return Recording ? stop() : Record();
    }
}

void FlightRecord::jumped() {
    SetPlayTimer(false);
    Display();
}

void FlightRecord::step(int direction) {
    PlayState = 0;
    SetPlayTimer(false);
    const bool atTheEnd =
        direction < 0 ? playback_.CurrentRow == 0 : playback_.CurrentRow == playback_.LastFrame;
    const StepStatus status = atTheEnd ? StepStatus::AtEnd : playback_.FrameUpdate(direction);
    if (status != StepStatus::Moved) return setStatus(direction < 0 ? "Beginning" : "End");
    setStatus(direction < 0 ? "Step Back" : "Step Forward");
    Display();
}

void FlightRecord::play(int direction) {
    if (PlayState == direction) {
        PlayState = 0;
        SetPlayTimer(false);
        return setStatus("Stopped");
    }
    setStatus(direction < 0 ? "Reverse" : "Playing");
    PlayState = static_cast<std::int16_t>(direction);
    SetPlayTimer(true);
    followLog();
}

void FlightRecord::stop() {
    if (Recording) {
        endRecording();
        LoadData(path_);
    } else if (PlayState == 0) {
        playback_.rewind();
        Display();
    }
    setStatus("Stopped");
    SetPlayTimer(false);
    PlayState = 0;
    followLog();
}

void FlightRecord::firePlayback() {
    if (Recording || PlayState == 0) return;
    const int direction = PlayState;
    if (playback_.FrameUpdate(direction) == StepStatus::Moved) {
        Display();
    } else {
        SetPlayTimer(false);
        PlayState = 0;
        setStatus(direction > 0 ? "End" : "Beginning");
        followLog();
    }
    changed();
}

StepStatus FlightRecord::FrameUpdate(int step, float fraction) {
    const StepStatus status = playback_.FrameUpdate(step, fraction);
    if (status == StepStatus::Moved) Display();
    changed();
    return status;
}

void FlightRecord::goTo(double seconds) {
    if (log_.empty() || Recording) return;
    const std::size_t row = log_.rowAt(seconds);
    // The share that the jump turns into this row again.
    const double share = (static_cast<double>(row) + 0.5) / std::max<double>(playback_.LastFrame, 1);
    playback_.FrameUpdate(0, row + 1 == log_.rows() ? 1.0F : static_cast<float>(share));
    Display();
    changed();
}

void FlightRecord::Display() {
    followLog();
    if (log_.empty()) return;
    const std::size_t row = playback_.row();
    if (showsLog_) showRowOnGauges();
    const auto valueOf = [&](const char* name) {
        const int column = log_.column(name);
        return column < 0 ? 0.0F : log_.value(column, row);
    };
    session_.windows().tell(&WindowNews::logRowShown, valueOf("RPM"), valueOf("MAP"));
    changed();
}

void FlightRecord::showRowOnGauges() {
    if (log_.empty()) return;
    LogLive(log_).show(playback_.row(), session_.live);
    session_.windows().tell(&WindowNews::updateDisplay);
}

void FlightRecord::SetPlaySpeed(int intervalMs) {
    PlaySpeed = intervalMs;
}

void FlightRecord::SetPlayTimer(bool on) {
    playTimer_ = on;
}

int FlightRecord::intervalOf(int place) {
    struct Speed {
        int from;
        int intervalMs;
    };
    constexpr std::array<Speed, 5> speeds{{{100, 5}, {75, 10}, {50, 20}, {25, 40}, {0, 80}}};
    for (const Speed& speed : speeds) {
        if (place >= speed.from) return speed.intervalMs;
    }
    return speeds.back().intervalMs;
}

void FlightRecord::playbackSpeed(int place) {
    SetPlaySpeed(intervalOf(place));
    if (PlayState != 0) SetPlayTimer(true);
    changed();
}

// ---- The log in hand

void FlightRecord::importLog() {
    if (Recording) return;
    const std::string path = session_.dialogs().openFile(
        {"Open Zentaq Datalog File", session_.platform().userFolder, logFilter, 1, "dat", {}});
    // A recording may have begun while the box stood.
    if (!path.empty() && !Recording) LoadData(path);
}

void FlightRecord::cancelLoading() {
    if (loads_ && log_.empty()) SessionName.clear();
    loading_.cancel();
    storing_.cancel();
    loads_ = false;
    storedTold_ = true;
    changed();
}

void FlightRecord::LoadData(const std::string& path) {
    PlayState = 0;
    SetPlayTimer(false);
    cancelLoading();
    session_.sysLog("Load Datalog: " + path);
    setStatus("Checking File Version");
    path_ = path;
    log_ = {};
    marks_.clear();
    playback_.begin();
    headTaken_ = false;
    loads_ = true;
    std::string name = fileNameOf(path);
    SessionName = name.substr(0, name.size() - extensionOf(name).size());
    if (SessionName.empty()) SessionName = name;
    double cycleFactor = 0;
    skipFailing([&] { cycleFactor = Ecu::engineCycleFactor(session_.currentUnitObject()); });
    constexpr double sequential = 120;
    if (cycleFactor <= 0) cycleFactor = sequential;
    // The last lines of a recording may still be on their way to the disk.
    std::function<bool()> ready;
    if (file_) ready = [file = file_] { return file->idle(); };
    loading_.begin(session_.platform().side, path, cycleFactor, ready);
    if (session_.platform().side == nullptr) {
        while (loads_) takeLoaded();
    }
    changed();
}

void FlightRecord::takeLoaded() {
    if (loads_) {
        if (loading_.take(log_)) {
            if (!std::exchange(headTaken_, true)) takeHead();
            playback_.Count_Frames();
        }
        if (!loading_.running()) {
            loads_ = false;
            const std::string failure = loading_.failure();
            failure.empty() ? loaded() : loadFailed(failure);
        }
        changed();
    }
    takeStored();
    takeExported();
}

void FlightRecord::takeHead() {
    const bool oldest = log_.head().format == DatalogFormat::Oldest;
    session_.sysLog(oldest ? "Processing Zentaq 4.0 Datalog Format..."
                           : "Processing Zentaq 4.5 Datalog Format...");
    FrameField = oldest ? "Seconds" : "Frame";
    ++logsLoaded_;
    setStatus("Setting Database Labels");
    setStatus("Clearing Database");
    setStatus("Importing Data...");
    session_.windows().tell(&WindowNews::logChanged);
    const std::string& units = log_.head().mapUnits;
    Unit& unit = session_.currentUnitObject();
    if (units.empty() || session_.slotInHand() == 0 || unit.MAPUnits() == units) return;
    // Kept: the log's units become those of the calibration in hand, whose values stay as they are.
    const std::string before = unit.MAPUnits();
    unit.MAPUnits(units);
    session_.sysLog("Datalog: pressure units " + units + " in place of " + before);
    session_.notice("Pressures are in " + units + " now, as the datalog has them; the calibration had " +
                    before + ". Open it again before you program it.");
    session_.windows().tell(&WindowNews::showUnit);
}

void FlightRecord::loaded() {
    setStatus("Loading Data...");
    setStatus("Opening Datalog");
    setStatus("Reading Log Header");
    skipFailing([&] { marks_ = readMarks(path_); });
    playback_.begin();
    Mode(1);
    const DatalogReading reading = loading_.reading();
    for (const DatalogWarning& warning : reading.warnings)
        session_.sysLog("Line " + numberText(static_cast<double>(warning.line)) + ": " + warning.why);
    if (reading.skipped > 0) {
        session_.notice(numberText(static_cast<double>(reading.skipped)) +
                        (reading.skipped == 1 ? " damaged line of the datalog is left out."
                                              : " damaged lines of the datalog are left out."));
    }
    session_.windows().tell(&WindowNews::logChanged);
    storeLog();
    Display();
}

void FlightRecord::loadFailed(const std::string& why) {
    const bool something = !log_.empty();
    if (something) {
        playback_.begin();
        Mode(1);
    } else {
        SessionName.clear();
        Mode(2);
    }
    session_.windows().tell(&WindowNews::logChanged);
    setStatus("Error Processing File.");
    session_.sysLog("Datalog: " + why);
    session_.windows().later([this, why] {
        session_.dialogs().show({"Open Zentaq Datalog File",
                                 "The datalog cannot be read.\n" + shownInBox(why) + "\nChoose another file.",
                                 Icon::Exclamation, Buttons::Ok});
    });
}

void FlightRecord::storeLog() {
    storedTold_ = false;
    const auto fail = [this](const std::string& why) {
        storedTold_ = true;
        tellNotStored(why);
    };
    if (session_.DatabaseFile.empty()) return;
    endOnFailure(
        [&] {
            if (session_.requireReference().readOnly()) throw Failure("The file is write-protected.");
            double cycleFactor = 0;
            skipFailing([&] { cycleFactor = Ecu::engineCycleFactor(session_.currentUnitObject()); });
            storing_.begin(session_.platform().side, path_, session_.DatabaseFile, cycleFactor);
        },
        fail);
    takeStored();
}

void FlightRecord::takeStored() {
    const bool runs = storing_.running();
    const std::vector<std::string> lines = storing_.takeLines();
    skipFailing([&] { session_.console.SysLogBlock(lines); });
    if (runs || std::exchange(storedTold_, true)) return;
    const std::string failure = storing_.failure();
    if (failure.empty()) return;
    tellNotStored(failure);
}

// The strip has room for a few words.
void FlightRecord::tellNotStored(const std::string& why) {
    session_.sysLog("The datalog is shown, but not stored in the reference database. " + why);
    session_.notice("Datalog not stored");
}

void FlightRecord::cancelAll() {
    cancelLoading();
    exporting_.cancel();
    exportTold_ = true;
}

void FlightRecord::exportLog(LogExport format) {
    if (log_.empty() || Recording) return;
    const std::string ending(exportName(format));
    const std::string log = path_;
    const std::string target = session_.dialogs().saveFile(
        {"Save Datalog As", session_.platform().userFolder, exportCaption(format) + "|*." + ending, 1, ending,
         std::string(trimmed(SessionName)) + "." + ending});
    if (target.empty()) return;
    if (target == log) return session_.inform("The datalog itself would be overwritten. Name another file.");
    exportTarget_ = target;
    exportTold_ = false;
    exporting_.begin(session_.platform().side, log, target, format, {fileNameOf(log), 0, marks_});
    takeExported();
    changed();
}

void FlightRecord::takeExported() {
    if (exporting_.running() || std::exchange(exportTold_, true)) return;
    const std::string failure = exporting_.failure();
    if (failure.empty()) return session_.notice("Datalog written: " + shownLine(exportTarget_));
    session_.windows().later([this, failure] {
        session_.dialogs().show(
            {"Save Datalog As",
             "The datalog cannot be written.\n" + shownInBox(failure) + "\nChoose another place.",
             Icon::Exclamation, Buttons::Ok});
    });
}

void FlightRecord::marks(const std::vector<LogMark>& marks) {
    marks_ = marks;
    endOnFailure([&] { writeMarks(path_, marks_); },
                 [&](const std::string& why) { session_.notice("The markers cannot be stored. " + why); });
    changed();
}

// ---- State

void FlightRecord::Mode(int value) {
    const bool on = value == 1 || value == 3;
    enabled_.fill(on);
    if (value == 2) enabled_[static_cast<std::size_t>(RecorderButton::Record)] = true;
    if (value == 3) enabled_[static_cast<std::size_t>(RecorderButton::Record)] = false;
    if (value != 0) {
        setStatus(on ? "Ready" : "");
        playback_.FrameNumber = 0;
    }
    changed();
}

void FlightRecord::monitorSession(bool on) {
    enabled_[static_cast<std::size_t>(RecorderButton::Record)] = on;
    changed();
}

bool FlightRecord::enabled(RecorderButton button) const {
    // The mode of a recording has one button; the one that ends a recording works beside it.
    if (Recording && button == RecorderButton::Stop) return true;
    return enabled_[static_cast<std::size_t>(button)];
}

void FlightRecord::pageShown(bool shown) {
    pageShown_ = shown;
    followLog();
}

void FlightRecord::followLog() {
    const bool unit = session_.link.linked().LinkedUnitKind != 0;
    const bool shows = !Recording && !log_.empty() && (pageShown_ || (!unit && PlayState != 0));
    if (std::exchange(showsLog_, shows) == shows || shows) return;
    // What the log has left behind is nobody's value of now.
    forgetNumbers(session_.live);
    session_.windows().tell(&WindowNews::resetDashboard);
}

void FlightRecord::endAll() {
    if (Recording) endRecording();
    SetPlayTimer(false);
    PlayState = 0;
    cancelAll();
    file_.reset();
}

double FlightRecord::seconds() const {
    return log_.empty() ? 0 : log_.seconds(playback_.row());
}

void FlightRecord::setStatus(std::string text) {
    status_ = std::move(text);
}

void FlightRecord::changed() {
    session_.windows().tell(&WindowNews::recorderChanged);
}

// ---- What the page shows

std::string FlightRecord::frameText() const {
    return numberText(FrameNumber());
}

std::string FlightRecord::timeText() const {
    // Fiftieths of a second are whole hundredths: nothing has to be rounded.
    constexpr std::int64_t hundredthsAFrame = 2;
    constexpr std::int64_t hundredthsAMinute = 6000;
    const std::int64_t hundredths = std::max<std::int64_t>(FrameNumber(), 0) * hundredthsAFrame;
    return formatNumber(static_cast<double>(hundredths / hundredthsAMinute), "00") + ":" +
           formatNumber(static_cast<double>(hundredths % hundredthsAMinute) / 100, "00.00");
}

std::string FlightRecord::caption(RecorderButton button) const {
    if (button == RecorderButton::Reverse) return PlayState < 0 ? pauseMark : "<";
    if (button == RecorderButton::Play) return PlayState > 0 ? pauseMark : ">";
    return {};
}

double FlightRecord::place() const {
    if (log_.rows() < 2) return 0;
    return static_cast<double>(playback_.row()) / static_cast<double>(log_.rows() - 1);
}

std::vector<ShownChannel> FlightRecord::shown() const {
    constexpr std::array<const char*, 18> order{"RPM",    "MAP",   "TPS",   "BATTV", "EGOV",   "AAFR",
                                                "DAFR",   "EGOC",  "IACP",  "GAMA",  "SECADV", "KNKRET",
                                                "PRIADV", "SECPW", "PRIPW", "CLT",   "MAT",    "KNOCK"};
    std::vector<ShownChannel> all;
    for (const char* name : order) {
        const int column = log_.column(name);
        if (column < 0 || log_.empty()) continue;
        const Channel* channel = channelNamed(name);
        const bool temperature = channel->reading.unit == unitOfTemperature;
        const bool fahrenheit = temperature && session_.fahrenheit();
        float value = log_.value(column, playback_.row());
        if (fahrenheit) value = toFahrenheit(value);
        all.push_back({channelCaption(name),
                       formatNumber(static_cast<double>(value), channel->reading.format),
                       fahrenheit ? "F" : channelUnit(name, log_.head().mapUnits)});
    }
    // The first of them goes by its channel's name.
    if (!all.empty()) all.front().caption = "RPM";
    return all;
}

}  // namespace zentaq
