#include "app/program_commands.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "app/command_guards.h"
#include "app/overview.h"
#include "app/patience.h"
#include "app/save_commands.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "link/firmware_file.h"
#include "unit/axis_order.h"
#include "unit/file_kind.h"

namespace zentaq {

void ProgramCommands::programOrb() {
    afterEdits(session_, "Program ORB", [commands = *this]() mutable { commands.programNow(); });
}

void ProgramCommands::firmwareUpgrade() {
    afterEdits(session_, "Firmware Upgrade", [commands = *this]() mutable { commands.upgradeNow(); });
}

void ProgramCommands::programNow() {
    if (session_.saving.putsOff("Program ORB", [commands = *this]() mutable { commands.programOrb(); }))
        return;
    if (refusedByTransfer(session_)) return;
    if (!session_.windows().close(window::generalConfig)) return;
    if (!mayProgram()) return;
    const LinkedIdentity unit = linkedIdentity();
    if (!broughtToFirmware()) return;
    if (session_.currentUnitObject().FW_Release() < session_.expectedFirmware(unit.kind).release) {
        session_.messages.Display_Warning(codes::OldFirmware);
    }
    SaveCommands(session_).offerToSave(
        [commands = *this, unit]() mutable { commands.startProgramming(unit); });
}

/// Only the reference database may be missing for it, and be back by now.
bool ProgramCommands::broughtToFirmware() {
    return endOnFailure([&] { session_.currentUnitObject().settleFirmware(); },
                        [&](const std::string& why) { tellNotConverted(why); });
}

std::string ProgramCommands::doubts() {
    Unit& unit = session_.currentUnitObject();
    std::string lines;
    if (const int cells = unit.facts().cellsCutOff; cells > 0) lines += cutOffText(unit.kind(), cells) + "\n";
    for (const std::string& line : axesWithoutOrder(unit)) lines += line + ".\n";
    return lines;
}

/// Those that the user has left behind once are not shown again, or the panel would be in the way.
bool ProgramCommands::leavesDoubts() {
    const std::vector<Doubt> found = doubtsInHand(session_);
    const auto isLeft = [&](const Doubt& one) {
        return std::ranges::find(session_.doubtsLeft, one) != session_.doubtsLeft.end();
    };
    if (std::ranges::all_of(found, isLeft)) return true;
    if (!session_.windows().showDoubts(found)) {
        session_.sysLog("Not programmed: the user looks at the calibration again.");
        return false;
    }
    session_.doubtsLeft = found;
    // Another calibration may be in hand by now.
    return doubtsInHand(session_) == found || leavesDoubts();
}

void ProgramCommands::startProgramming(const LinkedIdentity& unit) {
    if (!leavesDoubts()) return;
    const std::string asked = doubts();
    if (!asked.empty()) {
        const std::string text = "With this calibration the engine may get values that nobody chose:\n" +
                                 asked + "Program the unit all the same?";
        if (!agrees(session_, "Program ORB", text))
            return session_.sysLog("Not programmed: the user thought better of it.");
        // Another calibration may be in hand by now.
        if (doubts() != asked) return startProgramming(unit);
    }
    // The boxes let other commands in, and at the other end of the cable anything may have happened.
    const auto stillMay = [&] {
        return !refusedByTransfer(session_) && mayProgram() && isStillThere(unit, "Program ORB");
    };
    if (!stillMay()) return;
    session_.windows().removeForms();
    if (stillMay()) sendCalibration();
}

ProgramCommands::LinkedIdentity ProgramCommands::linkedIdentity() const {
    const LinkedUnit& linked = session_.link.linked();
    return {linked.LinkedUnitKind, linked.LinkedUnitKind == 0 ? 0 : linked.SerialNumber};
}

bool ProgramCommands::mayProgram() {
    const LinkedUnit& linked = session_.link.linked();
    // Until a unit has told its firmware, the image would be made for the one that the file was made for.
    const bool known = linked.LinkedUnitKind != 0 && (linked.UnitIdentified || linked.OldFirmware);
    int error = 0;
    if (session_.CurrentFile.empty()) {
        error = codes::NoCalibration;
    } else if (!known) {
        error = codes::NoUnit;
    } else if (!session_.link.kindInHand()) {
        error = codes::WrongUnit;
    }
    if (error != 0) session_.messages.Display_Error(error);
    return error == 0;
}

// A unit of the same kind in the place of the one that the user saw may belong to another engine.
bool ProgramCommands::isStillThere(const LinkedIdentity& unit, const std::string& title) {
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

void ProgramCommands::sendCalibration() {
    session_.link.AutoPollSuspended(true);
    endOnFailure([&] { session_.link.Program_Unit(TransferMode::Calibration, {}); },
                 [&](const std::string& why) {
                     session_.link.AutoPollSuspended(false);
                     tellNotConverted(why);
                 });
}

void ProgramCommands::tellNotConverted(const std::string& why) {
    session_.sysLog("Calibration not converted: " + why);
    session_.dialogs().show({"Program ORB",
                             "The calibration could not be turned into the unit's memory image.\n" + why +
                                 "\nNothing was sent to the unit.",
                             Icon::Critical, Buttons::Ok});
}

// ---- Firmware

void ProgramCommands::upgradeNow() {
    if (refusedByTransfer(session_)) return;
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

std::string ProgramCommands::chooseFirmware() {
    FileRequest request;  // dlgFirmware
    request.title = "Norvalia Firmware Files";
    request.folder = session_.applicationFolder() + "/bin";
    request.filter = "Norvalia Firmware(*.nv3)|*.nv3";
    return session_.dialogs().openFile(request);
}

// A unit that has lost its firmware cannot say what it is: then the run that broke off knows it, or the
// calibration in hand, and without one any name is taken, or such a unit could not be mended. One that was
// there when the command began, and has fallen silent, is the one that the user means.
int ProgramCommands::slotForFirmware(const LinkedIdentity& begunWith) const {
    const int linked = session_.link.linked().LinkedUnitKind;
    if (linked != 0) return linked;
    if (begunWith.kind != 0) return begunWith.kind;
    const int lost = session_.link.firmware().lostSlot();
    return lost != 0 ? lost : session_.slotInHand();
}

bool ProgramCommands::firmwareIsValid(const std::string& path, int slot) {
    if (session_.Units(slot).ValidFirmware(fileNameOf(path))) return true;
    session_.dialogs().show(
        {"Invalid Firmware", "This firmware file is not valid for this unit.", Icon::Critical, Buttons::Ok});
    return false;
}

bool ProgramCommands::mayUpgrade(const std::string& path, const LinkedIdentity& begunWith) {
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
std::optional<std::string> ProgramCommands::readFirmware(const std::string& path) {
    struct Fetched {
        std::string text;
        std::string why;
    };
    const auto fetched = std::make_shared<Fetched>();
    const auto fetch = [fetched, path] {
        endOnFailure([&] { fetched->text = checkFirmware(readFirmwareFile(path)).text; },
                     [&](const std::string& why) { fetched->why = why; });
    };
    if (!waitPatiently(session_, "Reading " + fileNameOf(path), fetch)) return {};
    if (fetched->why.empty()) return fetched->text;
    session_.sysLog("Firmware file not sent: " + fetched->why);
    session_.dialogs().show({"Firmware File Error",
                             fileNameOf(path) + " is no whole firmware file.\n" + fetched->why +
                                 "\nNothing was sent to the unit.  Please get the file anew and try again.",
                             Icon::Critical, Buttons::Ok});
    return {};
}

void ProgramCommands::startFirmware(const std::string& path, const std::string& text,
                                    const LinkedIdentity& begunWith) {
    // The boxes let other commands in, and at the other end of the cable anything may have happened.
    const auto stillMay = [&] { return !refusedByTransfer(session_) && mayUpgrade(path, begunWith); };
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

}  // namespace zentaq
