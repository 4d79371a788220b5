#include "app/auto_ve_tuning.h"

#include <algorithm>

#include "app/flight_record.h"
#include "base/box_texts.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr const char* boxTitle = "AutoVE";
constexpr const char* liveCaption = "Using live data";
constexpr const char* logCaption = "Using a data log";
// Kept: the two notes differ in their words.
constexpr const char* stopNote =
    "NOTE: You must still save the BIN file and reprogram the unit to apply the changes.";
constexpr const char* leaveNote =
    "NOTE: You must still save the BIN file and reprogram to apply the changes.";
constexpr int leastConstant = 5;
constexpr int mostConstant = 200;

}  // namespace

AutoVeTuning::AutoVeTuning(Session& session, AutoVeGrid& grid) : session_(session), grid_(grid) {
    refreshIdle();
}

void AutoVeTuning::refreshIdle() {
    const bool unit = session_.link.linked().LinkedUnitKind != 0;
    shown_.logEnabled = !unit;
    shown_.logCaption = unit ? "Please disconnect ECU." : logCaption;
    shown_.liveEnabled = unit;
    shown_.liveCaption = unit ? liveCaption : "Please connect ECU.";
}

void AutoVeTuning::live() {
    if (active()) {
        shown_.liveCaption = liveCaption;
        return run(Mode::Stop);
    }
    // Checked at the moment of acting: the unit may have gone while the window stood.
    if (session_.link.linked().LinkedUnitKind == 0) return refreshIdle();
    if (!takesConstant()) return;
    grid_.prepareAutoVE();
    run(Mode::Live);
}

void AutoVeTuning::dataLog() {
    if (active()) {
        shown_.progressVisible = false;
        shown_.logCaption = logCaption;
        return run(Mode::Stop);
    }
    if (session_.link.linked().LinkedUnitKind != 0) return refreshIdle();
    if (!takesConstant()) return;
    // Kept: colours and sums stay as the last run left them.
    run(Mode::DataLog);
}

bool AutoVeTuning::takesConstant() {
    const auto number = parseNumber(constant);
    int value = 0;
    const bool whole = number && skipFailing([&] { value = toInt16(*number); });
    if (whole && value >= leastConstant && value <= mostConstant) {
        grid_.Init_Auto_VE_Ranges(value);
        return true;
    }
    session_.dialogs().show({title, "Please use a value from 5 to 200.", Icon::Exclamation, Buttons::Ok});
    return false;
}

void AutoVeTuning::run(Mode mode) {
    if (mode == Mode::Stop) return stop();
    shown_.constantEnabled = false;
    shown_.message.clear();
    activate(true);
    mode == Mode::Live ? runLive() : askLog();
}

void AutoVeTuning::activate(bool on) {
    session_.AutoVEActive = on;
    grid_.autoVeActive(on);
    session_.windows().tell(&WindowNews::autoVeChanged);
}

void AutoVeTuning::runLive() {
    shown_.liveCaption = "Stop AutoVE";
    shown_.cancelEnabled = false;
    shown_.message = "Making Live Adjustments...";
}

void AutoVeTuning::askLog() {
    shown_.logCaption = "Cancel";
    shown_.liveEnabled = false;
    const std::string path = session_.dialogs().openFile({"Open Zentaq Datalog File",
                                                          session_.platform().userFolder,
                                                          "Zentaq Datalog (*.DAT)|*.dat", 1, "dat", {}});
    if (!active()) return;
    if (path.empty() || session_.recorder->Recording) {
        // Nothing has been changed, so nothing is asked.
        activate(false);
        shown_.constantEnabled = true;
        return refreshIdle();
    }
    shown_.message = "Loading Datalog...";
    shown_.cancelEnabled = false;
    logLoads_ = true;
    session_.recorder->LoadData(path);
    follow();
}

bool AutoVeTuning::follow() {
    if (!active()) {
        refreshIdle();
        return false;
    }
    if (logLoads_ && !session_.recorder->loading()) logLoaded();
    return logRuns_;
}

void AutoVeTuning::logLoaded() {
    logLoads_ = false;
    const LogColumns& log = session_.recorder->log();
    const bool usable =
        !log.empty() && log.column("RPM") >= 0 && log.column("MAP") >= 0 && log.column("EGOC") >= 0;
    if (!usable) {
        activate(false);
        shown_.constantEnabled = true;
        shown_.cancelEnabled = true;
        shown_.message = "Error Processing File.";
        return refreshIdle();
    }
    shown_.message.clear();
    shown_.progressVisible = true;
    shown_.percent = 0;
    record_ = 0;
    logRuns_ = true;
}

void AutoVeTuning::runRecords(int count) {
    if (!logRuns_) return;
    const LogColumns& log = session_.recorder->log();
    const int rpm = log.column("RPM");
    const int map = log.column("MAP");
    const int correction = log.column("EGOC");
    for (int i = 0; i < count && active() && record_ < log.rows(); ++i, ++record_) {
        // A speed or a correction that is no 16-bit number is no sample.
        skipFailing([&] {
            const std::int16_t speed = toInt16(static_cast<double>(log.value(rpm, record_)));
            const std::int16_t percent = toInt16(static_cast<double>(log.value(correction, record_)));
            const float pressure = log.value(map, record_);
            grid_.Show_Current_Activity(speed, pressure);
            grid_.Auto_VE(speed, pressure, percent);
        });
    }
    const std::size_t rows = std::max<std::size_t>(log.rows(), 1);
    shown_.percent = static_cast<int>(100 * record_ / rows);
    if (record_ < log.rows()) return;
    shown_.progressVisible = false;
    shown_.logCaption = logCaption;
    if (active()) run(Mode::Stop);
}

void AutoVeTuning::stop() {
    logRuns_ = false;
    logLoads_ = false;
    activate(false);
    shown_.constantEnabled = true;
    shown_.message.clear();
    shown_.progressVisible = false;
    shown_.cancelEnabled = true;
    refreshIdle();
    Stop_Auto_VE();
}

void AutoVeTuning::Stop_Auto_VE() {
    const Answer keep =
        session_.dialogs().show({boxTitle, "Would you like to keep the changes AutoVE has made?",
                                 Icon::Question, Buttons::YesNo});
    finish(keep == Answer::Yes, stopNote);
}

void AutoVeTuning::leaveTable() {
    if (!active()) return;
    logRuns_ = false;
    logLoads_ = false;
    const Answer keep = session_.dialogs().show(
        {boxTitle,
         "Leaving the VE table turns off AutoVE.  Would you like to keep the changes AutoVE has made so far?",
         Icon::Question, Buttons::YesNo});
    finish(keep == Answer::Yes, leaveNote);
    activate(false);
}

void AutoVeTuning::finish(bool keep, const char* note) {
    if (!keep) return grid_.restore();
    grid_.keepChanges();
    session_.dialogs().show({"Save", note, Icon::Information, Buttons::Ok});
}

}  // namespace zentaq
