#include "app/file_commands.h"

#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "app/command_guards.h"
#include "app/patience.h"
#include "app/save_commands.h"
#include "app/sensor_matching.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
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

/// Releases are counted, not measured: 10.15 is the fifteenth of 10 and newer than 10.2.
using Release = std::pair<double, double>;

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

void FileCommands::newCalibration() {
    afterEdits(session_, "Create a New Calibration File",
               [commands = *this]() mutable { commands.newNow(); });
}

void FileCommands::open() {
    afterEdits(session_, "Open an Existing Calibration File",
               [commands = *this]() mutable { commands.openNow(); });
}

void FileCommands::open(const std::string& path) {
    const auto found = lookAt(session_, path);
    if (!found) return;
    if (!found->there) {
        session_.recentFiles.remove(path);
        return session_.notice("Not there any more: " + path);
    }
    afterEdits(session_, "Open " + fileNameOf(path),
               [commands = *this, path]() mutable { commands.openNow(path); });
}

void FileCommands::close() {
    afterEdits(session_, "Close", [commands = *this]() mutable { commands.closeNow(); });
}

void FileCommands::newNow() {
    if (session_.saving.putsOff("New", [commands = *this]() mutable { commands.newCalibration(); })) return;
    if (refusedByTransfer(session_)) return;
    if (!session_.windows().close(window::generalConfig)) return;
    // Asked whether or not something was changed: the file on the disk may be all there is of this tune.
    if (session_.header().fileState == "OLD") {
        const Answer answer = session_.dialogs().show(
            {"Save Data?", "Would you like to save the Current .BIN file before creating a new one?",
             Icon::Question, Buttons::YesNo});
        if (answer == Answer::Yes) {
            return SaveCommands(session_).saveCurrent([commands = *this](bool saved) mutable {
                if (!saved) return;
                // What was changed while the disk was busy is asked about as well.
                commands.session_.DataModified ? commands.newCalibration() : commands.startNew();
            });
        }
    }
    startNew();
}

void FileCommands::startNew() {
    if (refusedByTransfer(session_)) return;  // begun while the disk was busy
    session_.header().fileState = "NEW";
    session_.windows().open(window::generalConfig);
}

void FileCommands::openNow(const std::string& path) {
    const auto again = [commands = *this, path]() mutable {
        path.empty() ? commands.open() : commands.open(path);
    };
    if (session_.saving.putsOff("Open", again)) return;
    if (refusedByTransfer(session_)) return;
    if (!session_.windows().close(window::generalConfig)) return;
    if (session_.CurrentFile.empty()) return startOpening(path);
    // A save that was wanted and failed ends the command, so that nothing is lost.
    SaveCommands(session_).offerToSave([commands = *this, path]() mutable { commands.startOpening(path); });
}

void FileCommands::startOpening(const std::string& path) {
    if (refusedByTransfer(session_)) return;  // begun while the disk was busy
    if (!path.empty() && openChosen(path) == Next::Done) return;
    while (askAndOpen() == Next::AskAgain) {
    }
}

FileCommands::Next FileCommands::askAgain(const std::string& title, const std::string& text) {
    const Answer answer = session_.dialogs().show({title, text, Icon::Exclamation, Buttons::YesNo});
    return answer == Answer::Yes ? Next::AskAgain : Next::Done;
}

FileCommands::Next FileCommands::askAndOpen() {
    FileRequest request;
    request.title = "Open Zentaq4 User Calibration Files";
    request.folder = session_.platform().userFolder;
    request.filter = openFilter();
    request.filterIndex = session_.FileFilterIndex;
    const std::string path = session_.dialogs().openFile(request);
    return path.empty() ? Next::Done : openChosen(path);
}

FileCommands::Next FileCommands::openChosen(const std::string& path) {
    const std::string extension = upper(extensionOf(path));
    if (isOldFileName(path)) {
        const auto start = startOf(path);
        return start ? openOlder(path, *start) : Next::Done;
    }
    // Only the first four characters count, so ".ZQ4OA" and ".ZQ4" both pass.
    if (extension.substr(0, 4) != ".ZQ4") {
        return askAgain("File Extension Error", "INCORRECT FILE EXTENSION:   " + fileNameOf(path) +
                                                    "\nDo you want to enter a new filename?");
    }
    return openCalibration(path);
}

// One that cannot be read is as one that is empty: what is told of it names the file.
std::optional<FileCommands::FileStart> FileCommands::startOf(const std::string& path) {
    const FlagScope reading = session_.saving.beginReading();
    const auto start = std::make_shared<FileStart>();
    const auto fetch = [start, path, applicationFolder = session_.applicationFolder()] {
        endOnFailure([&] { start->bytes = knownStart(path); },
                     [&](const std::string& why) { start->why = why; });
        start->length = start->bytes.size();
        std::error_code error;
        if (!start->why.empty() || start->length == knownBytes) {
            start->length = std::filesystem::file_size(path, error);
        }
        if (error) start->length = start->bytes.size();
        start->sample = isSample(path, applicationFolder);
    };
    if (!waitPatiently(session_, "Opening " + fileNameOf(path), fetch)) return {};
    return *start;
}

FileCommands::Next FileCommands::openOlder(const std::string& path, const FileStart& start) {
    const int slot = kindOfOldFile(start.length);
    if (slot == 0) {
        return askAgain("File Format Error",
                        "INCORRECT FILE SIZE:   " + std::to_string(start.length) + "\nEnter a new filename?");
    }
    session_.sysLog("Opened Bin File: " + path);
    std::string why;
    const FlagScope reading = session_.saving.beginReading();
    const auto openBytes = [&](Unit& unit) {
        if (!start.why.empty()) throw FileError(start.why);
        unit.OldFileOpen(path, start.bytes);
    };
    const Outcome outcome = read(slot, openBytes, why);
    if (outcome != Outcome::Whole) return tellNotRead(outcome, path, why);
    session_.inform("This is an old format file.  You MUST do a 'Save As...' to save the file again.");
    finishOpening(path, start);
    session_.fileHolds.reset();  // never written over
    return Next::Done;
}

FileCommands::Outcome FileCommands::read(int slot, const std::function<void(Unit&)>& file, std::string& why) {
    // The former calibration stays in hand until the new one has been read whole. Reading lets events in: a
    // unit that comes meanwhile may take either of them to the other slot of its class.
    const bool hadFormer = session_.slotInHand() != 0;
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
        if (hadFormer && otherKind) session_.windows().removeForms();
    }
    session_.followLinkedKind();
    return outcome;
}

FileCommands::Next FileCommands::tellNotRead(Outcome outcome, const std::string& path,
                                             const std::string& why) {
    if (outcome == Outcome::Corrupt) return askAgain("File Read Error", corrupt(path));
    return askAgain("Reference Database",
                    "FILE CANNOT BE CONVERTED:   " + fileNameOf(path) +
                        "\nThis file was made for another firmware and must be converted.\n" + why +
                        "\nNothing was opened. Close the program that uses the database, or install this one "
                        "again.\nDo you want to enter a new filename?");
}

FileCommands::Next FileCommands::openCalibration(const std::string& path) {
    const std::string name = fileNameOf(path);
    session_.sysLog("Opened Calibration File: " + path);

    const auto start = startOf(path);
    if (!start) return Next::Done;
    CalibrationFileKind file;
    if (!skipFailing([&] { file = kindOfCalibrationStart(start->bytes, path); }) || file.slot == 0) {
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
    const auto openBytes = [&](Unit& unit) { unit.FileOpen(path, start->bytes); };
    const FlagScope reading = session_.saving.beginReading();
    const Outcome outcome = read(slot, openBytes, why);
    if (outcome != Outcome::Whole) return tellNotRead(outcome, path, why);
    session_.fileHolds = start->bytes;
    finishOpening(path, *start);
    return Next::Done;
}

void FileCommands::repairOldFields() {
    Unit& unit = session_.currentUnitObject();
    const float toggle = unit.get("TPS_MARGIN_TOGGLE");
    if (toggle == 0 || toggle == 1) return;
    session_.messages.tell(unit.set("TPS_MARGIN_TOGGLE", 0.0));
    session_.messages.tell(unit.set("TPS_MARGIN_VALUE", 0.08));
}

void FileCommands::finishOpening(const std::string& path, const FileStart& start) {
    Unit& unit = session_.currentUnitObject();
    unit.BinFile(path);
    repairOldFields();
    session_.noteOpened();
    if (session_.link.linked().LinkedUnitKind != 0 && !session_.link.kindInHand()) {
        session_.dialogs().show(
            {"Unit Type Mismatch",
             "This calibration file is for a different system than that connected.\n"
             "You may still edit the calibration file, but no changes will be made to the unit.",
             Icon::Exclamation, Buttons::Ok});
    }
    session_.FileFilterIndex = unit.kind().fileFilter;
    session_.CurrentFile = path;
    session_.fileNamed(path, start.sample);
    session_.sysLog("Loaded Calibration: " + path);
    if (!isOldFileName(path)) noteShortFile(start.length);
    session_.DataModified = false;
    // The box lets units come and go.
    if (session_.link.kindInHand() && session_.Monitoring) session_.applyMonitorMode();
    session_.retellLinkedUnit();
    // A unit that was identified before the file came takes changes from now on.
    session_.initializeOnFly(session_.link.unitAgrees());
    session_.windows().tell(&WindowNews::setupNodes);
    // Asked with each opening until the sensor stands in the database.
    skipFailing([&] { matchSensor(session_); });
    tellCutFile(path);
}

// Kept: a file of any length loads, and cells behind its end are 0, because older programs wrote fewer. The
// log says it of each; one as short as no program wrote it has been cut, and a box says so.
void FileCommands::noteShortFile(std::uintmax_t length) {
    constexpr std::uintmax_t headerBytes = 12;
    const auto whole =
        headerBytes + 4 * static_cast<std::uintmax_t>(session_.currentUnitObject().kind().fileFloats);
    if (length >= whole) return;
    session_.sysLog("Short file: " + std::to_string(length) + " of " + std::to_string(whole) +
                    " bytes. What is missing was taken as 0.");
}

void FileCommands::tellCutFile(const std::string& path) {
    const int cells = session_.currentUnitObject().facts().cellsCutOff;
    if (cells == 0) return;
    session_.dialogs().show({"Damaged File",
                             "FILE POSSIBLY CORRUPT:   " + fileNameOf(path) + "\n" +
                                 cutOffText(session_.currentUnitObject().kind(), cells) +
                                 "\nPlease look for a whole copy, and program no unit with this one.",
                             Icon::Exclamation, Buttons::Ok});
}

void FileCommands::closeNow() {
    if (session_.saving.putsOff("Close", [commands = *this]() mutable { commands.close(); })) return;
    if (session_.CurrentFile.empty()) return;
    if (refusedByTransfer(session_)) return;
    SaveCommands(session_).offerToSave([commands = *this]() mutable { commands.finishClosing(); });
}

void FileCommands::finishClosing() {
    if (refusedByTransfer(session_)) return;  // begun while the disk was busy
    session_.windows().removeForms();
    session_.initializeOnFly(false);
    session_.currentUnitObject().CloseFile();
    session_.fileInHand() = {.FileFilterIndex = session_.FileFilterIndex};
    session_.paintMemory.erase();
    session_.windows().tell(&WindowNews::titleChanged, "");
    session_.windows().tell(&WindowNews::setupNodes);
    session_.windows().tell(&WindowNews::showStartTab);
}

}  // namespace zentaq
