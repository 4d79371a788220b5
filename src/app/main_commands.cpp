#include "app/main_commands.h"

#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "app/sensor_matching.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/settings_keys.h"
#include "base/text.h"
#include "config/gui_rules.h"
#include "config/tree.h"
#include "link/firmware_file.h"
#include "unit/axis_order.h"
#include "unit/file_kind.h"
#include "unit/reference_needed.h"

namespace zentaq {

namespace {

/// All calibrations, those of each kind, and files of the older generation.
std::string openFilter() {
    std::map<int, std::string_view> ofKinds;
    for (const UnitKind& kind : unitKinds()) ofKinds[kind.fileFilter] = kind.fileFilterExtension;
    std::string filter = "Zentaq4 File|*.ZQ4*|";
    for (const auto& [place, text] : ofKinds) filter += std::string(text) + "|";
    return filter + "Zentaq BIN file|*.BIN";
}

/// The extension of the older generation's files.
bool isOldName(const std::string& path) {
    return upper(extensionOf(path)) == ".BIN";
}

/// Releases are counted, not measured: 10.15 is the fifteenth of 10 and newer than 10.2.
struct Release {
    double major = 0, minor = 0;

    auto operator<=>(const Release&) const = default;
};

/// The name that a file of the older generation gets when it is saved.
std::string todaysName(const std::string& name, const UnitKind& kind) {
    if (!isOldName(name)) return name;
    return name.substr(0, name.size() - extensionOf(name).size()) + std::string(kind.extension);
}

std::string corrupt(const std::string& path) {
    return "FILE POSSIBLY CORRUPT:   " + fileNameOf(path) + "\nDo you want to enter a new filename?";
}

double countAt(const std::vector<std::string>& parts, std::size_t place) {
    return place < parts.size() ? parseNumber(parts[place]).value_or(0) : 0;
}

Release releaseOfFile(float version) {
    const auto parts = split(formatNumber(static_cast<double>(version), "##0.##"), '.');
    return {countAt(parts, 0), countAt(parts, 1)};
}

/// What this program writes into files: its version behind the first number.
Release releaseOfProgram() {
    const auto parts = split(ZENTAQ_VERSION, '.');
    return {countAt(parts, 1), countAt(parts, 2)};
}

}  // namespace

// A command that stores, programs, saves or closes means what the user has typed before it, also where that
// still waits for the unit.
void MainCommands::afterEdits(const std::string& caption, void (MainCommands::*command)()) {
    const auto again = [commands = *this, caption, command]() mutable {
        commands.afterEdits(caption, command);
    };
    if (session_.saving.putsOffWhileReading(caption, again)) return;
    session_.windows().afterEdits(caption, [commands = *this, command]() mutable { (commands.*command)(); });
}

void MainCommands::newCalibration() {
    afterEdits("Create a New Calibration File", &MainCommands::newNow);
}

void MainCommands::open() {
    afterEdits("Open an Existing Calibration File", &MainCommands::openNow);
}

void MainCommands::save() {
    afterEdits("Save", &MainCommands::saveNow);
}

void MainCommands::saveAs() {
    afterEdits("Save As", &MainCommands::saveAsNow);
}

void MainCommands::close() {
    afterEdits("Close", &MainCommands::closeNow);
}

void MainCommands::programOrb() {
    afterEdits("Program ORB", &MainCommands::programNow);
}

void MainCommands::firmwareUpgrade() {
    afterEdits("Firmware Upgrade", &MainCommands::upgradeNow);
}

void MainCommands::storeOnFly() {
    afterEdits("Store Changes in ORB", &MainCommands::storeNow);
}

void MainCommands::offerToSave(std::function<void()> goOn) {
    if (!session_.windows().close(window::generalConfig)) return;
    if (!session_.DataModified) return goOn();
    const Answer answer =
        session_.dialogs().show({"SAVE", "Save changes?", Icon::Question, Buttons::OkCancel});
    if (answer != Answer::Ok) return goOn();
    // What was changed while the disk was busy is asked about as well.
    saveCurrent([commands = *this, goOn = std::move(goOn)](bool saved) mutable {
        if (saved) commands.offerToSave(std::move(goOn));
    });
}

void MainCommands::saveInHand(const Saved& then) {
    if (session_.CurrentFile.empty()) {
        saveUnderNewName(then);
    } else {
        saveCurrent(then);
    }
}

// A file of the older generation is never written over: nothing could read the result by its name, and the
// user was told to use Save As.
void MainCommands::saveCurrent(const Saved& then) {
    if (isOldName(session_.CurrentFile)) return saveUnderNewName(then);
    if (!maySaveCutFile()) return then(false);
    saveChecked(session_.fileHolds, {}, then);
}

MainCommands::InHand MainCommands::inHand() {
    return {&session_.currentUnitObject(), session_.CurrentFile, session_.header().cellsCutOff};
}

// Its length is all that tells a file that was cut, and a save writes the whole length.
bool MainCommands::maySaveCutFile() {
    const InHand asked = inHand();
    if (asked.cellsCutOff == 0) return true;
    const Answer answer = session_.dialogs().show(
        {.title = "Damaged File",
         .text = cutOffText(asked.unit->kind(), asked.cellsCutOff) +
                 "\nA save makes it look whole, and nothing will warn of it again.\nSave all the same?",
         .icon = Icon::Exclamation,
         .buttons = Buttons::YesNo,
         .declines = true});
    if (answer == Answer::Yes) return isStillInHand(asked);
    session_.sysLog("Calibration file not saved: it was cut, and the user thought better of it.");
    return false;
}

// The boxes in front of a save let other commands in.
bool MainCommands::isStillInHand(const InHand& asked) {
    if (inHand() == asked && !session_.saving.running()) return true;
    session_.sysLog("Calibration file not saved: another command came while it was asked about.");
    return false;
}

void MainCommands::saveChecked(std::optional<std::string> known, const std::function<void()>& stored,
                               const Saved& then) {
    auto job = std::make_shared<SaveJob>();
    const bool made = endOnFailure(
        [&] {
            Unit& unit = session_.currentUnitObject();
            job->content = unit.fileContent();
            job->save = {unit.BinFile(), job->content.bytes, std::move(known)};
        },
        [&](const std::string& why) { tellNotSaved(why); });
    if (!made) return then(false);
    job->formerCode = session_.header().firmwareCode;
    job->changes = session_.userChanges();
    job->stored = stored;
    job->then = then;
    // The commands may be gone by then: they are as good as their session.
    session_.saving.begin(job->save, [job, commands = *this](const FileSaved& saved) mutable {
        commands.saveEnded(*job, saved);
    });
}

void MainCommands::saveEnded(SaveJob& job, const FileSaved& saved) {
    if (saved.outcome == FileSaved::Outcome::Failed) {
        tellNotSaved(saved.why);
        return job.then(false);
    }
    if (saved.outcome == FileSaved::Outcome::Changed) {
        if (!mayOverwriteChange(job.save.path)) return job.then(false);
        // What it holds now has been asked about; yet another change is asked about again.
        return saveChecked(saved.holds, job.stored, job.then);
    }
    // Another calibration has come into hand meanwhile: what is known of this file is nothing about that one.
    if (session_.currentUnitObject().BinFile() != job.save.path) return job.then(false);
    // A unit that has told its firmware meanwhile has brought the calibration in hand on.
    const float code = session_.header().firmwareCode;
    session_.currentUnitObject().noteSaved(job.content);
    if (code != job.formerCode) session_.header().firmwareCode = code;
    if (session_.userChanges() == job.changes) session_.DataModified = false;
    session_.fileHolds = saved.holds;
    if (job.stored) job.stored();
    session_.messages.Display_Message(codes::DataSaved);
    job.then(true);
}

bool MainCommands::mayOverwriteChange(const std::string& path) {
    const Answer answer = session_.dialogs().show(
        {.title = "File Changed",
         .text = "FILE CHANGED:   " + path +
                 "\nThe file was changed by another program since it was opened.\nOverwrite?",
         .icon = Icon::Exclamation,
         .buttons = Buttons::YesNo,
         .declines = true});
    if (answer == Answer::Yes) return true;
    session_.sysLog("Calibration file not saved: another program has changed it.");
    return false;
}

void MainCommands::tellNotSaved(const std::string& why) {
    session_.sysLog("Calibration file not saved: " + why);
    session_.dialogs().show({"File Save Error",
                             "The calibration could not be saved.\n" + why +
                                 "\nThe calibration is still in memory: choose Save As and another folder.",
                             Icon::Critical, Buttons::Ok});
}

void MainCommands::newNow() {
    if (session_.saving.putsOff("New", [commands = *this]() mutable { commands.newCalibration(); })) return;
    if (refusedByTransfer()) return;
    if (!session_.windows().close(window::generalConfig)) return;
    // Asked whether or not something was changed: the file on the disk may be all there is of this tune.
    if (session_.header().fileState == "OLD") {
        const Answer answer = session_.dialogs().show(
            {"Save Data?", "Would you like to save the Current .BIN file before creating a new one?",
             Icon::Question, Buttons::YesNo});
        if (answer == Answer::Yes) {
            return saveCurrent([commands = *this](bool saved) mutable {
                if (!saved) return;
                // What was changed while the disk was busy is asked about as well.
                commands.session_.DataModified ? commands.newCalibration() : commands.startNew();
            });
        }
    }
    startNew();
}

void MainCommands::startNew() {
    if (refusedByTransfer()) return;  // begun while the disk was busy
    session_.header().fileState = "NEW";
    session_.windows().open(window::generalConfig);
}

void MainCommands::openNow() {
    if (session_.saving.putsOff("Open", [commands = *this]() mutable { commands.open(); })) return;
    if (refusedByTransfer()) return;
    if (!session_.windows().close(window::generalConfig)) return;
    if (session_.CurrentFile.empty()) return startOpening();
    // A save that was wanted and failed ends the command, so that nothing is lost.
    offerToSave([commands = *this]() mutable { commands.startOpening(); });
}

void MainCommands::startOpening() {
    if (refusedByTransfer()) return;  // begun while the disk was busy
    while (openOnce() == Next::AskAgain) {
    }
}

MainCommands::Next MainCommands::askAgain(const std::string& title, const std::string& text) {
    const Answer answer = session_.dialogs().show({title, text, Icon::Exclamation, Buttons::YesNo});
    return answer == Answer::Yes ? Next::AskAgain : Next::Done;
}

MainCommands::Next MainCommands::openOnce() {
    FileRequest request;
    request.title = "Open Zentaq4 User Calibration Files";
    request.folder = session_.platform().userFolder;
    request.filter = openFilter();
    request.filterIndex = session_.FileFilterIndex;
    const std::string path = session_.dialogs().openFile(request);
    if (path.empty()) return Next::Done;

    const std::string extension = upper(extensionOf(path));
    if (isOldName(path)) {
        std::error_code error;
        const auto length = std::filesystem::file_size(path, error);
        return openOlder(path, error ? 0 : length);
    }
    // Only the first four characters count, so ".ZQ4OA" and ".ZQ4" both pass.
    if (extension.substr(0, 4) != ".ZQ4") {
        return askAgain("File Extension Error", "INCORRECT FILE EXTENSION:   " + fileNameOf(path) +
                                                    "\nDo you want to enter a new filename?");
    }
    return openCalibration(path);
}

MainCommands::Next MainCommands::openOlder(const std::string& path, std::uintmax_t length) {
    const int slot = kindOfOldFile(length);
    if (slot == 0) {
        return askAgain("File Format Error",
                        "INCORRECT FILE SIZE:   " + std::to_string(length) + "\nEnter a new filename?");
    }
    session_.sysLog("Opened Bin File: " + path);
    std::string why;
    const FlagScope reading = session_.saving.beginReading();
    const Outcome outcome = read(
        slot, [&](Unit& unit) { unit.OldFileOpen(path); }, why);
    if (outcome != Outcome::Whole) return tellNotRead(outcome, path, why);
    session_.inform("This is an old format file.  You MUST do a 'Save As...' to save the file again.");
    finishOpening(path);
    session_.fileHolds.reset();  // never written over
    return Next::Done;
}

MainCommands::Outcome MainCommands::read(int slot, const std::function<void(Unit&)>& file, std::string& why) {
    // The former calibration stays in hand until the new one has been read whole. Reading lets events in: a
    // unit that comes meanwhile may take either of them to the other slot of its class.
    const FileHeader former = session_.header();
    const Unit& formerUnit = session_.currentUnitObject();
    Outcome outcome = Outcome::Whole;
    session_.retryReference();
    endOnFailure(
        [&] {
            outcome = Outcome::Corrupt;
            Unit& unit = session_.Units(slot);
            try {
                file(unit);
            } catch (const ReferenceNeeded&) {
                outcome = Outcome::NeedsReference;
                throw;
            }
            session_.CurrentUnit(static_cast<float>(unit.kind().slot));
            outcome = Outcome::Whole;
        },
        [&](const std::string& reason) {
            why = reason;
            session_.sysLog("Calibration file not read: " + why);
        });
    if (outcome == Outcome::Whole) {
        session_.header().fileState = "OLD";
        session_.paintMemory.erase();  // behind the last frame that came while the file was read
        // A table of one kind does not stand over the calibration of another, which may lack it.
        const bool otherKind = &formerUnit != &session_.currentUnitObject();
        if (former.currentUnit != 0 && otherKind) session_.windows().removeForms();
    } else {
        session_.header() = former;
        if (former.currentUnit != 0) session_.CurrentUnit(static_cast<float>(formerUnit.kind().slot));
    }
    session_.followLinkedKind();
    return outcome;
}

MainCommands::Next MainCommands::tellNotRead(Outcome outcome, const std::string& path,
                                             const std::string& why) {
    if (outcome == Outcome::Corrupt) return askAgain("File Read Error", corrupt(path));
    return askAgain("Reference Database",
                    "FILE CANNOT BE CONVERTED:   " + fileNameOf(path) +
                        "\nThis file was made for another firmware and must be converted.\n" + why +
                        "\nNothing was opened. Close the program that uses the database, or install this one "
                        "again.\nDo you want to enter a new filename?");
}

MainCommands::Next MainCommands::openCalibration(const std::string& path) {
    const std::string name = fileNameOf(path);
    session_.sysLog("Opened Calibration File: " + path);

    CalibrationFileKind file;
    if (!skipFailing([&] { file = kindOfCalibrationFile(path); }) || file.slot == 0) {
        return askAgain("File Read Error", corrupt(path));
    }
    if (!session_.hasUnit(file.slot)) {
        return askAgain("Unit Support Error",
                        "INCORRECT ORB UNIT TYPE:   " + name +
                            "\nThis file was generated by a version of Zentaq newer than this,\n"
                            "and was built for a unit not supported by this version.\n"
                            "Do you want to enter a new filename?");
    }
    if (!file.byLength && releaseOfFile(file.programVersion) > releaseOfProgram()) {
        const Next next =
            askAgain("Version Support Error",
                     "FILE CREATED WITH NEWER ZENTAQ:   " + formatNumber(file.programVersion, "##.0#") +
                         "\nThis file was generated by a version of Zentaq newer than this\n"
                         "version.  Some features enabled in this file may not be supported.\n"
                         "Do you want to load another file?");
        if (next == Next::AskAgain) return next;  // No loads the newer file all the same
    }

    // The boxes let a unit come.
    const int slot = session_.slotForFile(file.slot);
    std::string why;
    std::string bytes;
    const auto openBytes = [&](Unit& unit) {
        bytes = knownStart(path);
        unit.FileOpen(path, bytes);
    };
    const FlagScope reading = session_.saving.beginReading();
    const Outcome outcome = read(slot, openBytes, why);
    if (outcome != Outcome::Whole) return tellNotRead(outcome, path, why);
    session_.fileHolds = std::move(bytes);
    finishOpening(path);
    return Next::Done;
}

void MainCommands::repairOldFields() {
    Unit& unit = session_.currentUnitObject();
    const float toggle = unit.get("TPS_MARGIN_TOGGLE");
    if (toggle == 0 || toggle == 1) return;
    unit.set("TPS_MARGIN_TOGGLE", 0.0);
    unit.set("TPS_MARGIN_VALUE", 0.08);
}

void MainCommands::finishOpening(const std::string& path) {
    Unit& unit = session_.currentUnitObject();
    unit.BinFile(path);
    repairOldFields();
    const LinkedUnit& linked = session_.link.linked();
    const auto matches = [&] { return linked.LinkedUnitKind == session_.currentUnit(); };
    if (linked.LinkedUnitKind != 0 && !matches()) {
        session_.dialogs().show(
            {"Unit Type Mismatch",
             "This calibration file is for a different system than that connected.\n"
             "You may still edit the calibration file, but no changes will be made to the unit.",
             Icon::Exclamation, Buttons::Ok});
    }
    session_.FileFilterIndex = unit.kind().fileFilter;
    session_.CurrentFile = path;
    session_.windows().tell(&WindowNews::titleChanged, "Current Calibration File: " + path);
    session_.sysLog("Loaded Calibration: " + path);
    if (!isOldName(path)) noteShortFile(path);
    session_.DataModified = false;
    // The box lets units come and go.
    if (matches() && session_.Monitoring) session_.applyMonitorMode();
    // A unit that was identified before the file came takes changes from now on.
    session_.initializeOnFly(matches() && linked.UnitIdentified);
    session_.windows().tell(&WindowNews::setupNodes);
    // Asked with each opening until the sensor stands in the database.
    skipFailing([&] { matchSensor(session_); });
    tellCutFile(path);
}

// Kept: a file of any length loads, and cells behind its end are 0, because older programs wrote fewer. The
// log says it of each; one as short as no program wrote it has been cut, and a box says so.
void MainCommands::noteShortFile(const std::string& path) {
    constexpr std::uintmax_t headerBytes = 12;
    const auto whole =
        headerBytes + 4 * static_cast<std::uintmax_t>(session_.currentUnitObject().kind().fileFloats);
    std::error_code error;
    const auto length = std::filesystem::file_size(path, error);
    if (error || length >= whole) return;
    session_.sysLog("Short file: " + std::to_string(length) + " of " + std::to_string(whole) +
                    " bytes. What is missing was taken as 0.");
}

void MainCommands::tellCutFile(const std::string& path) {
    const int cells = session_.header().cellsCutOff;
    if (cells == 0) return;
    session_.dialogs().show({"Damaged File",
                             "FILE POSSIBLY CORRUPT:   " + fileNameOf(path) + "\n" +
                                 cutOffText(session_.currentUnitObject().kind(), cells) +
                                 "\nPlease look for a whole copy, and program no unit with this one.",
                             Icon::Exclamation, Buttons::Ok});
}

void MainCommands::saveNow() {
    // The file in hand is not the place for a calibration that is being made.
    if (session_.creating()) return session_.windows().tell(&WindowNews::saveNew);
    if (session_.saving.putsOff("Save", [commands = *this]() mutable { commands.save(); })) return;
    if (session_.CurrentFile.empty()) return;
    saveCurrent([](bool) {});
}

void MainCommands::saveAsNow() {
    if (session_.creating()) return session_.windows().tell(&WindowNews::saveNew);
    if (session_.saving.putsOff("Save As", [commands = *this]() mutable { commands.saveAs(); })) return;
    if (session_.currentUnit() == 0) {
        session_.messages.Display_Error(codes::NoCalibration);
        return;
    }
    saveUnderNewName([](bool) {});
}

/// Empty where the user has thought better of it.
std::string MainCommands::askNewName() {
    const UnitKind& kind = session_.currentUnitObject().kind();
    FileRequest request;
    request.title = "Zentaq4 User Calibration Files";
    request.folder = session_.platform().userFolder;
    request.filter = kind.fileFilterExtension;
    request.defaultExtension = kind.extension;
    request.suggestedName = todaysName(fileNameOf(session_.CurrentFile), kind);
    std::string path = session_.dialogs().saveFile(request);
    if (path.empty()) return {};
    path = calibrationFileName(path, kind);
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return path;
    const Answer answer = session_.dialogs().show(
        {"File Exists", "FILE EXISTS:   " + path + "\nOverwrite?", Icon::Exclamation, Buttons::YesNo});
    return answer == Answer::Yes ? path : std::string();
}

void MainCommands::saveUnderNewName(const Saved& then) {
    if (!maySaveCutFile()) return then(false);
    const InHand asked = inHand();
    const std::string path = askNewName();
    if (path.empty() || !isStillInHand(asked)) return then(false);
    const std::string formerFile = session_.CurrentFile;
    std::error_code error;
    const bool sameFile = std::filesystem::equivalent(path, formerFile, error);
    session_.currentUnitObject().BinFile(path);
    const auto stored = [commands = *this, path]() mutable { commands.takeName(path); };
    const auto ended = [&session = session_, formerFile, then](bool saved) {
        if (!saved) session.currentUnitObject().BinFile(formerFile);  // the former name stays in force
        then(saved);
    };
    saveChecked(sameFile ? session_.fileHolds : std::nullopt, stored, ended);
}

void MainCommands::takeName(const std::string& path) {
    session_.CurrentFile = path;
    session_.windows().tell(&WindowNews::titleChanged, "Current Calibration File: " + path);
    session_.FileFilterIndex = session_.currentUnitObject().kind().fileFilter;
    session_.windows().tell(&WindowNews::showUnit);  // the name stands on a page
}

void MainCommands::closeNow() {
    if (session_.saving.putsOff("Close", [commands = *this]() mutable { commands.close(); })) return;
    if (session_.CurrentFile.empty()) return;
    if (refusedByTransfer()) return;
    offerToSave([commands = *this]() mutable { commands.finishClosing(); });
}

void MainCommands::finishClosing() {
    if (refusedByTransfer()) return;  // begun while the disk was busy
    session_.windows().removeForms();
    session_.initializeOnFly(false);
    session_.currentUnitObject().CloseFile();
    session_.CurrentUnit(0);
    session_.paintMemory.erase();
    session_.header().fileState.clear();
    session_.CurrentFile.clear();
    session_.fileHolds.reset();
    session_.DataModified = false;
    session_.windows().tell(&WindowNews::titleChanged, "");
    session_.windows().tell(&WindowNews::setupNodes);
    session_.windows().tell(&WindowNews::showStartTab);
}

void MainCommands::programNow() {
    if (session_.saving.putsOff("Program ORB", [commands = *this]() mutable { commands.programOrb(); }))
        return;
    if (refusedByTransfer()) return;
    if (!session_.windows().close(window::generalConfig)) return;
    if (!mayProgram()) return;
    const LinkedIdentity unit = linkedIdentity();
    if (!broughtToFirmware()) return;
    if (session_.currentUnitObject().FW_Release() < session_.expectedFirmware(unit.kind).release) {
        session_.messages.Display_Warning(codes::OldFirmware);
    }
    offerToSave([commands = *this, unit]() mutable { commands.startProgramming(unit); });
}

/// Only the reference database may be missing for it, and be back by now.
bool MainCommands::broughtToFirmware() {
    return endOnFailure([&] { session_.currentUnitObject().settleFirmware(); },
                        [&](const std::string& why) { tellNotConverted(why); });
}

std::string MainCommands::doubts() {
    Unit& unit = session_.currentUnitObject();
    std::string lines;
    if (const int cells = session_.header().cellsCutOff; cells > 0)
        lines += cutOffText(unit.kind(), cells) + "\n";
    for (const std::string& line : axesWithoutOrder(unit)) lines += line + ".\n";
    return lines;
}

void MainCommands::startProgramming(const LinkedIdentity& unit) {
    const std::string asked = doubts();
    if (!asked.empty()) {
        const Answer answer = session_.dialogs().show(
            {.title = "Program ORB",
             .text = "With this calibration the engine may get values that nobody chose:\n" + asked +
                     "Program the unit all the same?",
             .icon = Icon::Exclamation,
             .buttons = Buttons::YesNo,
             .declines = true});
        if (answer != Answer::Yes) return session_.sysLog("Not programmed: the user thought better of it.");
        // Another calibration may be in hand by now.
        if (doubts() != asked) return startProgramming(unit);
    }
    // The boxes let other commands in, and at the other end of the cable anything may have happened.
    const auto stillMay = [&] {
        return !refusedByTransfer() && mayProgram() && isStillThere(unit, "Program ORB");
    };
    if (!stillMay()) return;
    session_.windows().removeForms();
    if (stillMay()) sendCalibration();
}

MainCommands::LinkedIdentity MainCommands::linkedIdentity() const {
    const LinkedUnit& linked = session_.link.linked();
    return {linked.LinkedUnitKind, linked.LinkedUnitKind == 0 ? 0 : linked.SerialNumber};
}

bool MainCommands::mayProgram() {
    const LinkedUnit& linked = session_.link.linked();
    // Until a unit has told its firmware, the image would be made for the one that the file was made for.
    const bool known = linked.LinkedUnitKind != 0 && (linked.UnitIdentified || linked.OldFirmware);
    int error = 0;
    if (session_.CurrentFile.empty()) {
        error = codes::NoCalibration;
    } else if (!known) {
        error = codes::NoUnit;
    } else if (session_.currentUnit() != linked.LinkedUnitKind) {
        error = codes::WrongUnit;
    }
    if (error != 0) session_.messages.Display_Error(error);
    return error == 0;
}

// A unit of the same kind in the place of the one that the user saw may belong to another engine.
bool MainCommands::isStillThere(const LinkedIdentity& unit, const std::string& title) {
    const LinkedIdentity now = linkedIdentity();
    if (unit.kind == 0 || now.kind == 0 || now.serial == unit.serial) return true;
    session_.sysLog(title + ": another unit is connected now.");
    session_.dialogs().show(
        {title,
         "Another unit is connected now: serial number " + formatNumber(now.serial, "000000") +
             " in the place of " + formatNumber(unit.serial, "000000") +
             ".\nNothing was sent to it.  If it is the one that you mean, choose the command "
             "again.",
         Icon::Exclamation, Buttons::Ok});
    return false;
}

void MainCommands::sendCalibration() {
    session_.link.AutoPollSuspended(true);
    endOnFailure([&] { session_.link.Program_Unit(TransferMode::Calibration, {}); },
                 [&](const std::string& why) {
                     session_.link.AutoPollSuspended(false);
                     tellNotConverted(why);
                 });
}

void MainCommands::tellNotConverted(const std::string& why) {
    session_.sysLog("Calibration not converted: " + why);
    session_.dialogs().show({"Program ORB",
                             "The calibration could not be turned into the unit's memory image.\n" + why +
                                 "\nNothing was sent to the unit.",
                             Icon::Critical, Buttons::Ok});
}

// ---- Firmware

void MainCommands::upgradeNow() {
    if (refusedByTransfer()) return;
    const LinkedIdentity unit = linkedIdentity();
    const Answer answer = session_.dialogs().show({.title = "FIRMWARE UPGRADE WARNING",
                                                   .text = firmwareWarning(),
                                                   .icon = Icon::Exclamation,
                                                   .buttons = Buttons::OkCancel});
    if (answer != Answer::Ok) return;
    const std::string path = chooseFirmware();
    if (path.empty()) return;
    if (!mayUpgrade(path, unit)) return;
    const std::optional<std::string> text = readFirmware(path);
    if (text) startFirmware(path, *text, unit);
}

std::string MainCommands::chooseFirmware() {
    FileRequest request;  // dlgFirmware
    request.title = "Norvalia Firmware Files";
    request.folder = session_.applicationFolder() + "/bin";
    request.filter = "Norvalia Firmware(*.nv3)|*.nv3";
    return session_.dialogs().openFile(request);
}

// A unit that has lost its firmware cannot say what it is: then the run that broke off knows it, or the
// calibration in hand, and without one any name is taken, or such a unit could not be mended. One that was
// there when the command began, and has fallen silent, is the one that the user means.
int MainCommands::slotForFirmware(const LinkedIdentity& begunWith) const {
    const int linked = session_.link.linked().LinkedUnitKind;
    if (linked != 0) return linked;
    if (begunWith.kind != 0) return begunWith.kind;
    const int lost = session_.link.firmware().lostSlot();
    return lost != 0 ? lost : session_.currentUnit();
}

bool MainCommands::firmwareIsValid(const std::string& path, int slot) {
    if (session_.Units(slot).ValidFirmware(fileNameOf(path))) return true;
    session_.dialogs().show(
        {"Invalid Firmware", "This firmware file is not valid for this unit.", Icon::Critical, Buttons::Ok});
    return false;
}

bool MainCommands::mayUpgrade(const std::string& path, const LinkedIdentity& begunWith) {
    if (session_.link.linked().OldFirmware) {
        session_.dialogs().show(
            {"Firmware Upgrade",
             "This unit has a firmware that this program cannot upgrade: it must be sent to "
             "Norvalia.\nNothing was sent to the unit.",
             Icon::Critical, Buttons::Ok});
        return false;
    }
    return firmwareIsValid(path, slotForFirmware(begunWith)) && isStillThere(begunWith, "Firmware Upgrade");
}

// The transfer itself takes any lines, and a file that runs out for a success. A unit would be left with half
// a firmware, so nothing goes out of a file that is not whole.
std::optional<std::string> MainCommands::readFirmware(const std::string& path) {
    std::string text;
    const bool whole =
        endOnFailure([&] { text = checkFirmware(readFirmwareFile(path)).text; },
                     [&](const std::string& why) {
                         session_.sysLog("Firmware file not sent: " + why);
                         session_.dialogs().show(
                             {"Firmware File Error",
                              fileNameOf(path) + " is no whole firmware file.\n" + why +
                                  "\nNothing was sent to the unit.  Please get the file anew and try again.",
                              Icon::Critical, Buttons::Ok});
                     });
    return whole ? std::optional(std::move(text)) : std::nullopt;
}

void MainCommands::startFirmware(const std::string& path, const std::string& text,
                                 const LinkedIdentity& begunWith) {
    // The boxes let other commands in, and at the other end of the cable anything may have happened.
    const auto stillMay = [&] { return !refusedByTransfer() && mayUpgrade(path, begunWith); };
    if (!stillMay()) return;
    session_.windows().removeForms();
    if (!stillMay()) return;
    const int known = slotForFirmware(begunWith);
    const int slot = known != 0 ? known : slotOfFirmware(fileNameOf(path));
    session_.link.AutoPollSuspended(true);
    endOnFailure([&] { session_.link.programFirmware(path, text, slot, begunWith.serial); },
                 [&](const std::string& why) {
                     session_.sysLog("Firmware not sent: " + why);
                     session_.link.AutoPollSuspended(false);
                     session_.dialogs().show(
                         {"Firmware Upgrade",
                          "The firmware upgrade could not begin.\n" + why + "\nNothing was sent to the unit.",
                          Icon::Critical, Buttons::Ok});
                 });
}

// ---- While a transfer runs

bool MainCommands::refusedByTransfer() {
    if (!session_.link.transferPending()) return false;
    // It must not stand in front of what the end of the transfer has to tell.
    session_.show({.title = "Zentaq4",
                   .text = "A transfer is running.  Please wait until it has ended.",
                   .icon = Icon::Information,
                   .buttons = Buttons::Ok,
                   .stands = [&session = session_] { return session.link.transferPending(); }});
    return true;
}

bool MainCommands::refusedBySearch() {
    if (!session_.link.searching()) return false;
    session_.inform("A unit is being searched on the ports.  Please wait until that has ended.");
    return true;
}

bool MainCommands::mayLeaveUnit(LeftBehind& agreed) {
    if (!mayBreakTransfer(agreed)) return false;
    if (agreed.zeroAdvance || !zeroAdvanceOn()) return true;
    agreed.zeroAdvance = askToLeaveZeroAdvance("End the program all the same?") == Answer::Yes;
    return agreed.zeroAdvance;
}

// While the box is read one transfer may end and another begin, of which there is something else to say.
bool MainCommands::mayBreakTransfer(LeftBehind& agreed) {
    const Link& link = session_.link;
    while (link.transferPending()) {
        const bool firmware = link.transfer().firmware();
        bool& broken = firmware ? agreed.firmware : agreed.transfer;
        if (broken) return true;
        const auto stands = [&link, firmware] {
            return link.transferPending() && link.transfer().firmware() == firmware;
        };
        broken = askToBreakTransfer(firmware, stands) == Answer::Yes;
        if (!broken && (stands() || !link.transferPending())) return false;
    }
    return true;
}

Answer MainCommands::askToBreakTransfer(bool firmware, const std::function<bool()>& stands) {
    return session_.dialogs().show(
        {.title = "Transfer Running",
         .text = firmware ? "A firmware upgrade is running.\n"
                            "If the program ends now there will be no firmware on this unit, and the upgrade "
                            "must be completed successfully before the unit will function.\n"
                            "End the program all the same?"
                          : "The unit is being programmed, or its datalog retrieved.\n"
                            "If the program ends now the transfer fails. The unit keeps the calibration that "
                            "it has, and its power must be cycled.\n"
                            "End the program all the same?",
         .icon = Icon::Critical,
         .buttons = Buttons::YesNo,
         .declines = true,
         .stands = stands});
}

bool MainCommands::zeroAdvanceOn() const {
    return session_.link.linked().zeroAdvance || session_.link.zeroAdvanceAsked();
}

// A box that goes by itself is answered No, but nobody said so, and nothing is left behind any more.
bool MainCommands::mayLeaveZeroAdvance(const std::string& goOn) {
    if (!zeroAdvanceOn()) return true;
    return askToLeaveZeroAdvance(goOn) == Answer::Yes || !zeroAdvanceOn();
}

Answer MainCommands::askToLeaveZeroAdvance(const std::string& goOn) {
    const Answer answer =
        session_.dialogs().show({.title = "Zero Advance",
                                 .text = "The unit still runs with zero advance.\n"
                                         "It does so without the program too, until its power is cycled.\n"
                                         "To end it now, stay and choose Set Zero Advance once more.\n" +
                                         goOn,
                                 .icon = Icon::Exclamation,
                                 .buttons = Buttons::YesNo,
                                 .declines = true,
                                 .stands = [this] { return zeroAdvanceOn(); }});
    if (answer != Answer::Yes && zeroAdvanceOn()) {
        session_.sysLog("The unit runs with zero advance: stayed with it.");
    }
    return answer;
}

// Not refused by a download, nor by a run that still waits: it goes out in front of both.
void MainCommands::killEngine() {
    session_.sysLog("USER: Kill Engine Requested.");
    if (session_.link.wireTaken()) {
        refusedByTransfer();
        return;
    }
    if (!session_.platform().port.isOpen()) {
        session_.sysLog("Kill Engine was not sent: no port is open.");
        session_.inform("Kill Engine was not sent: no port is open.");
        return;
    }
    session_.link.SEND_KILL();
}

void MainCommands::zeroAdvance() {
    if (refusedByTransfer()) return;
    const bool on = !session_.link.zeroAdvanceAsked();
    session_.link.Send_ORB_Command(on ? std::string("Z\xFF") : std::string("Z\0", 2));
}

void MainCommands::refreshCodes() {
    if (refusedByTransfer()) return;
    session_.refreshCodes();
}

void MainCommands::clearCodes() {
    if (refusedByTransfer()) return;
    session_.codes.Clear_CHKE();
    session_.link.Send_ORB_Command("A");
}

void MainCommands::storeNow() {
    if (refusedByTransfer()) return;
    session_.link.Send_ORB_Command("S");
}

void MainCommands::identify() {
    if (refusedByTransfer()) return;
    session_.link.Send_ORB_Command("E");
    session_.link.Send_ORB_Command("B");
}

int MainCommands::autodetectPort() {
    if (refusedByTransfer() || refusedBySearch()) return 0;
    if (!mayLeaveZeroAdvance("Search the ports all the same?")) return 0;
    if (refusedByTransfer() || refusedBySearch()) return 0;  // begun while the box was read
    const int former = session_.link.commPort();
    const std::string formerIdentity = session_.link.commIdentity();
    const int port = session_.link.Autodetect_COMM_Port();
    if (port == 0) {
        // The search leaves the last port it tried; the user's own is the one to wait at.
        session_.link.commPort(former, formerIdentity);
        session_.link.ORB_Initialize();
        session_.inform("Could not Find ORB Unit.  Please check the serial connection.");
        return 0;
    }
    storePort();
    return port;
}

void MainCommands::storePort() {
    SettingsStore& store = session_.settings();
    store.set(settings::system, settings::CommPort, numberText(session_.link.commPort()));
    store.set(settings::system, settings::CommPortIdentity, session_.link.commIdentity());
}

void MainCommands::choosePort(int number, const std::string& identity) {
    if (refusedByTransfer() || refusedBySearch()) return;
    if (!mayLeaveZeroAdvance("Choose another port all the same?")) return;
    if (refusedByTransfer() || refusedBySearch()) return;  // begun while the box was read
    if (identity.empty()) {
        session_.link.commPort(number);
    } else {
        session_.link.commPort(number, identity);
    }
    session_.link.ORB_Initialize();
    storePort();
    // Another unit may be there, and an idle link would take it for the one of the former port.
    session_.link.Send_ORB_Command("E");
}

void MainCommands::loadCommand(int code) {
    if (code == 2) {
        if (refusedByTransfer() || refusedBySearch()) return;  // it opens the port anew
        session_.Monitoring = true;
        skipFailing([&] { session_.AutoMonitoring = session_.settingNumber("AutoMonitor") == 1; });
        // A port that is answering stays as it is: what is in flight there would be lost.
        const bool answering = session_.platform().port.isOpen() && session_.link.linked().UnitFound;
        if (!answering) session_.link.ORB_Initialize();
    } else if (code == 3) {
        session_.Monitoring = false;
        session_.AutoMonitoring = false;
        session_.windows().tell(&WindowNews::resetDashboard);
    }
}

void MainCommands::help() {
    session_.sysLog("HELP: Opening Help File.");
    session_.windows().open(window::help);
}

void MainCommands::dayMode() {
    session_.settings().set("System", "MonitorMode", "1");
    session_.windows().tell(&WindowNews::look, true);
}

void MainCommands::nightMode() {
    session_.settings().set("System", "MonitorMode", "0");
    session_.windows().tell(&WindowNews::look, false);
}

void MainCommands::openTable(const std::string& table, const std::string& title) {
    const auto again = [commands = *this, table, title]() mutable { commands.openTable(table, title); };
    if (session_.saving.putsOffWhileReading(title, again)) return;
    if (session_.currentUnit() == 0) return session_.messages.Display_Error(codes::NoCalibration);
    // What is entered into a table before its calibration has its default values would be lost with them.
    if (session_.creating()) return session_.windows().open(window::generalConfig);
    // The keys of the menu ask for tables of every kind.
    if (!hasTable(session_.currentUnitObject().kind(), table)) return;
    session_.windows().open(window::table, table, title);
}

int MainCommands::treeClick(const std::string& key) {
    constexpr int startPage = 0;
    constexpr std::string_view generalParameters = "root001";
    // The tree is about to be made anew.
    if (session_.currentUnit() == 0 || session_.saving.reading()) return startPage;
    for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
        if (node.key != key) continue;
        if (!node.table.empty()) openTable(node.table, node.title);
        if (node.key == generalParameters) session_.windows().open(window::generalConfig);
        return node.page;
    }
    return startPage;
}

}  // namespace zentaq
