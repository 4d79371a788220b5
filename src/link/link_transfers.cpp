// The operations that move more than one frame: programming a calibration or a firmware line by line,
// retrieving the unit's own datalog, and the one routine that closes them.
#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/text.h"
#include "link/firmware_file.h"
#include "link/link.h"
#include "link/link_commands.h"
#include "live/datalog_writer.h"

namespace zentaq {

namespace {

constexpr int orbaKindNumber = 3;

enum Message {
    Programmed = 1002,
    CalibrationFailed = 1003,
    FirmwareFailed = 1004,
    FirmwareNotStarted = 1005,
    LogDone = 1006,
    LogFailed = 1007,
    LoadCalibration = 1008,
    UnitLost = 1009
};

/// Lines of a text; a last line without an end counts.
int lineCount(std::istream& text) {
    int lines = 0;
    for (std::string line; std::getline(text, line);) ++lines;
    return lines;
}

/// Lines of a text file. Throws FileError.
int ORB_File_Length(const std::string& path) {
    std::istringstream text(readFile(path, limits::image));
    return lineCount(text);
}

}  // namespace

void Link::Program_Unit(TransferMode mode, const std::string& path) {
    startTransfer([&] {
        switch (mode) {
            case TransferMode::Calibration:
                return startCalibration();
            case TransferMode::Firmware:
                return startFirmware(path, readFirmwareFile(path), 0, 0);
            case TransferMode::Datalog:
                return startDatalog(path);
        }
    });
}

void Link::programFirmware(const std::string& path, std::string text, int slot, std::int32_t serial) {
    startTransfer([&] { startFirmware(path, std::move(text), slot, serial); });
}

void Link::startTransfer(const std::function<void()>& start) {
    if (transferPending()) throw Failure("A transfer is already running.");
    // The search would cut the line of the transfer; a tick that loses the link would drop its command.
    if (searching_ || handling_) throw Failure("The link is busy.");
    try {
        start();
    } catch (...) {
        closeTransferFile();
        removeProgress();
        autoPollSuspended_ = false;
        throw;
    }
}

void Link::startCalibration() {
    Unit& unit = host_.unit(host_.currentUnit());
    log("Preparing " + fileNameOf(unit.BinFile()) + " for output to ORB Unit...");
    log("  - Converting Data...");
    unit.ConvertData();
    const std::string path = unit.MakeS19();
    log("  - Programming ORB...");
    const int lines = ORB_File_Length(path);
    startProgress();
    openTransferFile(path, std::ios::in);
    queueTransfer("P1");
    transferLines_ = lines;
}

void Link::startFirmware(const std::string& path, std::string text, int slot, std::int32_t serial) {
    log("Attempting Firmware Upgrade, Sending File... ");
    log("  - " + path);
    closeTransferFile();
    firmwareText_.str(std::move(text));
    const int lines = lineCount(firmwareText_) + 1;
    firmwareText_.clear();
    firmwareText_.seekg(0);
    startProgress();
    // A second run for the same unit knows no less of it than the one that broke off.
    if (linked_.LinkedUnitKind != 0) {
        firmwareSlot_ = linked_.LinkedUnitKind;
    } else if (slot != 0 || !firmwareLost_) {
        firmwareSlot_ = slot;
    }
    lineBroke_ = adapterAway_ || !port_.isOpen();
    queueTransfer("P3");
    if (linked_.LinkedUnitKind == 0) transferSerial_ = serial;
    // Who is there is not known: only a unit that takes this firmware, or one that has none, shall have it.
    askFirst_ = linked_.LinkedUnitKind == 0;
    unknownAnswers_ = 0;
    transferLines_ = lines;
}

void Link::startDatalog(const std::string& path) {
    log("Downloading on-board datalog file... ");
    log("Saving data to: " + path);
    startProgress();
    log("  - Downloading data...");
    openTransferFile(path, std::ios::out | std::ios::trunc);
    writeDatalogHeader(transferStream_, linkedUnit());
    // Queued last, so that a file that cannot be made leaves no download without a file.
    queueTransfer("D");
    transferLines_ = 0;
}

void Link::queueTransfer(std::string_view key) {
    openTransfer_ = key;
    transferSerial_ = linked_.LinkedUnitKind == 0 ? 0 : linked_.SerialNumber;
    Send_ORB_Command(key);
}

void Link::openTransferFile(const std::string& path, std::ios::openmode mode) {
    closeTransferFile();
    transferStream_.open(path, mode | std::ios::binary);
    const int reason = errno;
    if (!transferStream_) throw FileError("Cannot open " + path + ": " + std::strerror(reason));
}

void Link::closeTransferFile() {
    if (transferStream_.is_open()) transferStream_.close();
    transferStream_.clear();
    firmwareText_.str({});
    firmwareText_.clear();
}

// From memory, so that a disk that is pulled, or a file that is written to, does not leave half a firmware.
bool Link::nextLine(std::string& line) {
    std::istream& lines = firmwarePending() ? static_cast<std::istream&>(firmwareText_) : transferStream_;
    return static_cast<bool>(std::getline(lines, line));
}

// The poll in front of a firmware may have taken along what was known of the unit, and one without firmware
// tells nothing: then the kind that the firmware is for decides.
int Link::slotOfTransfer() const {
    return linked_.LinkedUnitKind == 0 && firmwarePending() ? firmwareSlot_ : linked_.LinkedUnitKind;
}

bool Link::Send_Next_Line() {
    skipFailing([&] { yield_.yield(); });
    showCommandStatus(commandKey(currentCommand_));
    std::string line;
    if (!nextLine(line)) {
        // kept: a file that runs out with no "PN" counts as a success, an empty file too.
        // Only a read that fails for another reason is none.
        End_Transfer(!transferStream_.bad());
        transferActive_ = false;
        currentCommand_.clear();
        return false;
    }
    if (line.ends_with('\r')) line.pop_back();
    stepProgress(transferLine_, transferLines_);
    if (slotOfTransfer() != orbaKindNumber) line += "\r\n";
    // In front of what a user queued during the transfer: that waits until the transfer is over, and the
    // unit sees nothing but lines between the first and the last one.
    queueInFront(std::move(line));
    ++transferLine_;
    return true;
}

void Link::End_Transfer(bool success) {
    skipFailing([&] { closeTransferFile(); });
    // A transfer that ends before its command was written has another one, or none, in flight.
    const std::string key = openTransfer_.empty() ? std::string(commandKey(currentCommand_)) : openTransfer_;
    openTransfer_.clear();
    askFirst_ = false;
    if (success) {
        reportSuccess(key);
    } else {
        reportFailure(key);
    }
    removeProgress();
    transferLines_ = 0;
    transferLine_ = 0;
    autoPollSuspended_ = false;
    log("Automatic POLL/SYNC: ENABLED");
}

void Link::reportSuccess(std::string_view key) {
    skipFailing([&] { host_.addToLastLine("SUCCESS!"); });
    if (key == "P1" || key == "P3") {
        COMM_StatusMessage(key == "P1" ? "Program ORB Successful" : "Program Firmware Successful",
                           "PROGRAM VERIFIED", "You Must Restart ECU After download completed.", "Connected");
        // A run that sent nothing has mended nothing.
        if (key == "P3" && transferLine_ > 0) firmwareMended();
        skipFailing([&] { host_.displayMessage(Programmed); });
        // The new firmware knows nothing of the calibration that the former one held.
        if (key == "P3") skipFailing([&] { host_.displayMessage(LoadCalibration); });
    } else if (key == "D") {
        COMM_StatusMessage("Download of Datalog Complete", "", "", "Connected");
        skipFailing([&] { host_.displayMessage(LogDone); });
    }
}

void Link::reportFailure(std::string_view key) {
    skipFailing([&] { host_.addToLastLine("FAIL!"); });
    constexpr std::string_view failed = "PROCESS FAILED - EXITED ABNORMALLY.";
    log(failed);
    // Else the panel would go on asking for patience where nothing is polled.
    COMM_StatusMessage("Transfer failed", failed, "", "Warning");
    const int message = key == "P3" ? firmwareFailure() : key == "P1" ? CalibrationFailed : LogFailed;
    skipFailing([&] { host_.displayMessage(message); });
}

// A unit erases its firmware when it takes the start of programming. One that refused the start still has
// what it had; of one that did not answer nobody knows, and the user is told the worse of the two.
int Link::firmwareFailure() {
    const bool asked = commandKey(currentCommand_) == "P3";
    const bool answered = asked && responseReady_;
    if (transferLine_ > 0 || (answered && responseHeader_ != "AR")) {
        firmwareLost_ = true;
        brokeAfterLines_ = brokeAfterLines_ || transferLine_ > 0;
        silentStarts_ = 0;
        return FirmwareFailed;
    }
    if (answered) {
        silentStarts_ = 0;
        return FirmwareNotStarted;
    }
    if (asked) return silentFirmwareStart();
    return firmwareLost_ ? FirmwareFailed : FirmwareNotStarted;
}

// That a unit will never answer again cannot be known after one silent try, nor where the line was not there
// to reach it.
int Link::silentFirmwareStart() {
    constexpr int triesUntilLost = 3;
    if (!brokeAfterLines_ || !port_.isOpen() || lineBroke_) return FirmwareFailed;
    return ++silentStarts_ >= triesUntilLost ? UnitLost : FirmwareFailed;
}

void Link::firmwareMended() {
    firmwareLost_ = false;
    brokeAfterLines_ = false;
    silentStarts_ = 0;
}

bool Link::firmwareWaits() const {
    return firmwarePending() && commandKey(currentCommand_) != "P3" && !transferLost();
}

}  // namespace zentaq
