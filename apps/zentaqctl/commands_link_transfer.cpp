// program, datalog: what takes a unit more than one reply.
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "base/box_texts.h"
#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/warning_texts.h"
#include "commands_link.h"
#include "link_desk.h"
#include "outputs.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace fs = std::filesystem;

namespace {

constexpr const char* previousStays = "The previous calibration is still in the unit.";

/// A folder for the image on its way to a unit, gone with the object.
class ScratchFolder {
 public:
    ScratchFolder() {
        std::error_code error;
        const fs::path place = fs::temp_directory_path(error);
        if (error)
            throw FileError("The folder for temporary files cannot be used: " + error.message() +
                            "; TMPDIR names it");
        std::string name = (place / "zentaqctl-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr)
            throw FileError("Cannot make the folder " + name + ": " + std::strerror(errno));
        path_ = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    const std::string& path() const { return path_; }

 private:
    std::string path_;
};

/// A calibration file in hand, as if it were open when the unit comes.
struct CalibrationInHand {
    CalibrationInHand(const Context& context, const std::string& file, CutFile cut)
        : host(context.database), unit(openCalibration(context, file, cut)->unit.kind(), host) {
        host.applicationFolder(scratch.path());
        unit.FileOpen(file);
        unit.BinFile(file);  // the unit keeps the name of the file
        host.header().currentUnit = static_cast<float>(unit.kind().slot);
        host.firmwareKnown(true);  // that of the unit, once it is on the link
    }
    ScratchFolder scratch;  ///< for the image: two runs never share one
    DatabaseHost host;
    Unit unit;
};

std::string ofLines(const TransferReport& end) {
    return numberText(end.lines) + " of " + numberText(end.total) + " lines";
}

std::string whyNotProgrammed(const TransferReport& end) {
    const bool allSent = end.total > 0 && end.lines == end.total;
    constexpr const char* unknown =
        " Which calibration it holds now is not known: cycle the power on the unit and program it again.";
    if (end.ending == Ending::Unclear) {
        return "The unit took " + ofLines(end) + " and did not verify the program." + unknown;
    }
    if (end.ending == Ending::Silent && allSent) {
        return "The unit did not answer to the last of " + numberText(end.total) + " lines." + unknown;
    }
    const std::string verb = end.ending == Ending::Refused ? "refused" : "did not answer to";
    const std::string what = end.lines == 0
                                 ? " the start of programming."
                                 : " line " + numberText(end.lines) + " of " + numberText(end.total) + ".";
    return messageLine(codes::CalibrationFailed) + " The unit " + verb + what;
}

void warnOlderFirmware(const Context& context, LinkDesk& desk) {
    const Unit& unit = desk.session().linkedUnit();
    if (unit.FW_Release() < desk.session().expectedFirmware(unit.kind().slot).release) {
        context.notes << onOneLine(warningText(codes::OldFirmware)->text) << '\n';
    }
}

void programUnit(LinkDesk& desk, const std::string& file) {
    TransferReport end;
    const auto fail = [&](const std::string& why) {
        throw Failure(file + " makes no image: " + why + " Nothing was sent to the unit.");
    };
    try {
        const auto hold = desk.holdSignals();
        end = desk.session().transfer(TransferMode::Calibration);
        desk.clearProgress();
    } catch (const Overflow&) {
        fail("a value does not fit the bytes that the unit has for it.");
    } catch (const Failure& failure) {
        fail(std::string(failure.what()) + ".");
    }
    if (end.ending == Ending::Stopped) {
        throw Interrupted("Interrupted after " + ofLines(end) + ". " + previousStays +
                              " Please cycle the power on the unit before continuing.",
                          desk.signal());
    }
    if (end.ending != Ending::Done) throw Failure(whyNotProgrammed(end));
}

// ---- Datalog

/// Told before the unit has sent a log of minutes in vain.
void refuseUnwritable(const std::string& file) {
    refuseOtherThanFile(file);
    const fs::path folder = fs::path(file).parent_path();
    const bool takesFiles = ::access(folder.empty() ? "." : folder.c_str(), W_OK) == 0;
    if (!takesFiles)
        throw FileError("Cannot write " + file + ": its folder takes no new file: " + std::strerror(errno));
}

std::string whyNotDownloaded(const TransferReport& end) {
    const std::string after = " after " + numberText(end.lines) + " records; nothing was written.";
    switch (end.ending) {
        case Ending::Refused:
            return messageLine(codes::LogFailed);
        case Ending::NotWritten:
            return "The datalog cannot be written" + after;
        case Ending::Unclear:
            return "The unit sent a damaged record" + after;
        default:
            return "The unit did not answer" + after;
    }
}

}  // namespace

void program(const Context& context, const std::string& port, const std::string& file) {
    CalibrationInHand calibration(context, file, CutFile::Refused);
    LinkDesk desk(context, port, calibration.host, &calibration.unit);
    desk.findUnit();
    desk.requireKind(calibration.unit.kind());
    endOnFailure([&] { calibration.unit.settleFirmware(); },
                 [&](const std::string& why) {
                     throw Failure(file + " makes no image: " + why + ". Nothing was sent to the unit.");
                 });
    warnOlderFirmware(context, desk);
    noteAxes(context, file, calibration.unit);
    // A warning may stand on a terminal that is stopped, and this for as long as its user likes.
    desk.requireSameUnit();
    programUnit(desk, file);
    noteOutOfRange(context, file, calibration.unit, calibration.unit.kind().fileFloats);
    tell(context, calibration.host);
    context.out << desk.unitName() << ": " << messageLine(codes::Programmed) << '\n';
}

void datalog(const Context& context, const std::string& port, const std::string& output,
             const std::string& file) {
    refuseUnwritable(output);
    refuseReplacing(context, output, "datalog");
    refuseSameFile(output, context.trace);
    refuseSameFile(output, file);
    std::unique_ptr<CalibrationInHand> calibration;
    if (!file.empty()) calibration = std::make_unique<CalibrationInHand>(context, file, CutFile::Told);
    DatabaseHost host(context.database);
    LinkDesk desk(context, port, host, calibration ? &calibration->unit : nullptr);
    desk.findUnit();
    if (calibration) desk.requireKind(calibration->unit.kind());
    const ScratchFolder scratch;
    const std::string fresh = scratch.path() + "/log.dat";
    const TransferReport end = desk.session().transfer(TransferMode::Datalog, fresh);
    desk.clearProgress();
    if (end.ending == Ending::Stopped) {
        throw Interrupted("Interrupted after " + numberText(end.lines) + " records; nothing was written.",
                          desk.signal());
    }
    if (end.ending != Ending::Done) throw Failure(whyNotDownloaded(end));
    const std::string log = readFile(fresh, limits::datalog);
    if (!wroteNew(context, output, log)) {
        refuseReplacing(context, output, "datalog");  // minutes have passed
        writeFileSafely(output, log);
    }
    context.out << desk.unitName() << ": " << messageLine(codes::LogDownloaded) << " (" << end.lines
                << " records in " << output << ")\n";
}

}  // namespace zentaq::ctl
