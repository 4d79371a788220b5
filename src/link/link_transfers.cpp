// The operations that move more than one frame: programming a calibration or a firmware line by line,
// retrieving the unit's own datalog, and the one routine that closes them.
#include "base/errors.h"
#include "base/text.h"
#include "link/firmware_file.h"
#include "link/link.h"
#include "link/link_commands.h"
#include "live/datalog_writer.h"

namespace zentaq {

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
    if (transfer_.pending()) throw Failure("A transfer is already running.");
    // The search would cut the line of the transfer; a tick that loses the link would drop its command.
    if (searching_ || handling_) throw Failure("The link is busy.");
    try {
        start();
    } catch (...) {
        transfer_.closeFile();
        tell(LinkEvent::NotBegun);
        autoPollSuspended_ = false;
        throw;
    }
}

void Link::startCalibration() {
    Unit& unit = host_.unit(host_.slotInHand());
    tell(LinkEvent::ConversionBegins, fileNameOf(unit.BinFile()));
    unit.ConvertData();
    const std::string path = unit.MakeS19();
    tell(LinkEvent::ProgrammingBegins);
    transfer_.sendFile(path);
    queueTransfer(TransferMode::Calibration, 0);
}

void Link::startFirmware(const std::string& path, std::string text, int slot, std::int32_t serial) {
    tell(LinkEvent::FirmwareBegins, path);
    transfer_.sendText(std::move(text));
    firmware_.begin(linked_.LinkedUnitKind, slot, !adapterAway_ && port_.isOpen());
    queueTransfer(TransferMode::Firmware, serial);
    // Who is there is not known: only a unit that takes this firmware, or one that has none, shall have it.
    askFirst_ = linked_.LinkedUnitKind == 0;
    unknownAnswers_ = 0;
}

void Link::startDatalog(const std::string& path) {
    tell(LinkEvent::DownloadBegins, path);
    transfer_.writeFile(path);
    writeDatalogHeader(transfer_.file(), linkedUnit());
    // Queued last, so that a file that cannot be made leaves no download without a file.
    queueTransfer(TransferMode::Datalog, 0);
}

/// `serial`: the unit that is meant, where none on the link tells.
void Link::queueTransfer(TransferMode mode, std::int32_t serial) {
    Send_ORB_Command(transfer_.begin(mode, linked_.LinkedUnitKind == 0 ? serial : linked_.SerialNumber));
}

// The poll in front of a firmware may have taken along what was known of the unit, and one without firmware
// tells nothing: then the kind that the firmware is for decides.
int Link::slotOfTransfer() const {
    const bool kindOfFile = linked_.LinkedUnitKind == 0 && transfer_.firmware();
    return kindOfFile ? firmware_.slot() : linked_.LinkedUnitKind;
}

bool Link::Send_Next_Line() {
    skipFailing([&] { yield_.yield(); });
    tell(LinkEvent::LineGoesOut, commandKey(currentCommand_));
    std::string line;
    if (!transfer_.nextLine(line)) {
        // kept: a file that runs out with no "PN" counts as a success, an empty file too.
        End_Transfer(transfer_.readFailed() ? TransferResult::NotRead : TransferResult::RanOut);
        currentCommand_.clear();
        return false;
    }
    host_.transferStep(transfer_.line(), transfer_.lines());
    if (!host_.unit(slotOfTransfer()).kind().bareProgramLines) line += "\r\n";
    // In front of what a user queued during the transfer: that waits until the transfer is over, and the
    // unit sees nothing but lines between the first and the last one.
    ring_.pushInFront(std::move(line));
    transfer_.lineSent();
    return true;
}

void Link::End_Transfer(TransferResult result) {
    skipFailing([&] { transfer_.closeFile(); });
    // A transfer that ends before its command was written has another one, or none, in flight.
    const std::string_view key = transfer_.open() ? transfer_.key() : commandKey(currentCommand_);
    TransferEnd end{.mode = Transfer::modeOf(key),
                    .result = result,
                    .lines = transfer_.done(),
                    .total = transfer_.total(),
                    .answered = responseReady_};
    transfer_.close();
    askFirst_ = false;
    if (end.mode == TransferMode::Firmware) {
        // A run that sent nothing has mended nothing.
        if (end.succeeded() && end.lines > 0) firmware_.mended();
        if (!end.succeeded()) end.firmware = firmware_.failed(startOfFirmware(), end.lines, port_.isOpen());
    }
    skipFailing([&] { host_.transferEnded(end); });
    transfer_.forgetNumbers();
    transfer_.deactivate();
    autoPollSuspended_ = false;
}

FirmwareMemory::Start Link::startOfFirmware() const {
    if (commandKey(currentCommand_) != "P3") return FirmwareMemory::Start::NotWritten;
    if (!responseReady_) return FirmwareMemory::Start::NotAnswered;
    return responseHeader_ == "AR" ? FirmwareMemory::Start::Refused : FirmwareMemory::Start::Taken;
}

bool Link::firmwareWaits() const {
    return transfer_.firmware() && commandKey(currentCommand_) != "P3" && !transferLost();
}

}  // namespace zentaq
