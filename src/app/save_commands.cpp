#include "app/save_commands.h"

#include <memory>
#include <utility>

#include "app/command_guards.h"
#include "app/patience.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/text.h"
#include "unit/file_kind.h"

namespace zentaq {

namespace {

/// The name that a file of the older generation gets when it is saved.
std::string todaysName(const std::string& name, const UnitKind& kind) {
    if (!isOldFileName(name)) return name;
    return name.substr(0, name.size() - extensionOf(name).size()) + std::string(kind.extension);
}

}  // namespace

std::optional<ChosenFile> askCalibrationFile(Session& session, const std::string& suggestedName,
                                             int filterIndex) {
    const UnitKind& kind = session.currentUnitObject().kind();
    FileRequest request;
    request.title = "Zentaq4 User Calibration Files";
    request.folder = session.platform().userFolder;
    request.filter = kind.fileFilterExtension;
    request.filterIndex = filterIndex;
    request.defaultExtension = kind.extension;
    request.suggestedName = suggestedName;
    const std::string answered = session.dialogs().saveFile(request);
    if (answered.empty()) return {};
    const std::string path = calibrationFileName(answered, kind);
    const auto found = lookAt(session, path);
    if (!found) return {};
    ChosenFile chosen{path, found->sample, found->inHand};
    if (!found->there) return chosen;
    const Answer answer = session.dialogs().show(
        {"File Exists", "FILE EXISTS:   " + path + "\nOverwrite?", Icon::Exclamation, Buttons::YesNo});
    if (answer != Answer::Yes) return {};
    return chosen;
}

void SaveCommands::save() {
    afterEdits(session_, "Save", [commands = *this]() mutable { commands.saveNow(); });
}

void SaveCommands::saveAs() {
    afterEdits(session_, "Save As", [commands = *this]() mutable { commands.saveAsNow(); });
}

void SaveCommands::offerToSave(std::function<void()> goOn) {
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

void SaveCommands::saveInHand(const Saved& then) {
    if (session_.CurrentFile.empty()) {
        saveUnderNewName(then);
    } else {
        saveCurrent(then);
    }
}

// A file of the older generation is never written over: nothing could read the result by its name, and the
// user was told to use Save As. Nor is a sample.
void SaveCommands::saveCurrent(const Saved& then) {
    const std::string& file = session_.CurrentFile;
    if (isOldFileName(file) || session_.fileIsSample) return saveUnderNewName(then);
    if (!maySaveCutFile()) return then(false);
    saveChecked(session_.fileHolds, {}, then);
}

SaveCommands::InHand SaveCommands::inHand() {
    return {&session_.currentUnitObject(), session_.CurrentFile,
            session_.currentUnitObject().facts().cellsCutOff};
}

// Its length is all that tells a file that was cut, and a save writes the whole length.
bool SaveCommands::maySaveCutFile() {
    const InHand asked = inHand();
    if (asked.cellsCutOff == 0) return true;
    const std::string text =
        cutOffText(asked.unit->kind(), asked.cellsCutOff) +
        "\nA save makes it look whole, and nothing will warn of it again.\nSave all the same?";
    if (agrees(session_, "Damaged File", text)) return isStillInHand(asked);
    session_.sysLog("Calibration file not saved: it was cut, and the user thought better of it.");
    return false;
}

// The boxes in front of a save let other commands in.
bool SaveCommands::isStillInHand(const InHand& asked) {
    if (inHand() == asked && !session_.saving.running()) return true;
    session_.sysLog("Calibration file not saved: another command came while it was asked about.");
    return false;
}

void SaveCommands::saveChecked(std::optional<std::string> known, const std::function<void()>& stored,
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
    job->formerCode = session_.currentUnitObject().facts().firmwareCode;
    job->changes = session_.userChanges();
    job->stored = stored;
    job->then = then;
    // The commands may be gone by then: they are as good as their session.
    session_.saving.begin(job->save, [job, commands = *this](const FileSaved& saved) mutable {
        commands.saveEnded(*job, saved);
    });
}

void SaveCommands::saveEnded(SaveJob& job, const FileSaved& saved) {
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
    const bool movedOn = session_.currentUnitObject().facts().firmwareCode != job.formerCode;
    if (!movedOn) session_.currentUnitObject().noteSaved(job.content);
    session_.header().fileState = "OLD";
    if (session_.userChanges() == job.changes) session_.DataModified = false;
    session_.fileHolds = saved.holds;
    if (job.stored) job.stored();
    session_.messages.Display_Message(codes::DataSaved);
    job.then(true);
}

bool SaveCommands::mayOverwriteChange(const std::string& path) {
    const std::string text = "FILE CHANGED:   " + path +
                             "\nThe file was changed by another program since it was opened.\nOverwrite?";
    if (agrees(session_, "File Changed", text)) return true;
    session_.sysLog("Calibration file not saved: another program has changed it.");
    return false;
}

void SaveCommands::tellNotSaved(const std::string& why) {
    session_.sysLog("Calibration file not saved: " + why);
    session_.dialogs().show({"File Save Error",
                             "The calibration could not be saved.\n" + why +
                                 "\nThe calibration is still in memory: choose Save As and another folder.",
                             Icon::Critical, Buttons::Ok});
}

void SaveCommands::saveNow() {
    // The file in hand is not the place for a calibration that is being made.
    if (session_.creating()) return session_.windows().tell(&WindowNews::saveNew);
    if (session_.saving.putsOff("Save", [commands = *this]() mutable { commands.save(); })) return;
    if (session_.CurrentFile.empty()) return;
    saveCurrent([](bool) {});
}

void SaveCommands::saveAsNow() {
    if (session_.creating()) return session_.windows().tell(&WindowNews::saveNew);
    if (session_.saving.putsOff("Save As", [commands = *this]() mutable { commands.saveAs(); })) return;
    if (session_.slotInHand() == 0) {
        session_.messages.Display_Error(codes::NoCalibration);
        return;
    }
    saveUnderNewName([](bool) {});
}

void SaveCommands::saveUnderNewName(const Saved& then) {
    if (!maySaveCutFile()) return then(false);
    const InHand asked = inHand();
    const std::string name = fileNameOf(session_.CurrentFile);
    const auto chosen = askCalibrationFile(session_, todaysName(name, asked.unit->kind()));
    if (!chosen || !isStillInHand(asked)) return then(false);
    const std::string formerFile = session_.CurrentFile;
    session_.currentUnitObject().BinFile(chosen->path);
    const auto stored = [commands = *this, file = *chosen]() mutable { commands.takeName(file); };
    const auto ended = [&session = session_, formerFile, then](bool saved) {
        if (!saved) session.currentUnitObject().BinFile(formerFile);  // the former name stays in force
        then(saved);
    };
    saveChecked(chosen->inHand ? session_.fileHolds : std::nullopt, stored, ended);
}

void SaveCommands::takeName(const ChosenFile& file) {
    session_.CurrentFile = file.path;
    session_.fileNamed(file.path, file.sample);
    session_.FileFilterIndex = session_.currentUnitObject().kind().fileFilter;
    session_.windows().tell(&WindowNews::showUnit);  // the name stands on a page
}

}  // namespace zentaq
