#include "app/main_commands.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "config/tree.h"

namespace zentaq {

namespace {

constexpr const char* openFilter =
    "Zentaq4 File|*.ZQ4*|Zentaq4 ORBL File|*.ZQ4OL|Zentaq4 PZK-2 File|*.ZQ4PZK|Zentaq4 ORBA File|*.ZQ4OA|"
    "Zentaq4 ORBd File|*.ZQ4OD|Zentaq4 ORBc File|*.ZQ4OC|Zentaq BIN file|*.BIN";

/// Files from before the header existed are known by their length alone.
struct LengthOfKind {
    std::uintmax_t length;
    int kind;
};
constexpr std::array headerlessLengths{LengthOfKind{8718, 3}, LengthOfKind{9324, 4}, LengthOfKind{9320, 6},
                                       LengthOfKind{9316, 7}, LengthOfKind{4816, 5}};

constexpr float firstKind = 3, lastKind = 8;

struct Header {
    float kind = 0, version = 0, firmware = 0;
};

/// The three floats at the head of a calibration file. Throws FileError when they cannot be read.
Header readHeader(const std::string& path) {
    std::array<std::uint32_t, 3> words{};
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(words.data()), sizeof words);
    if (!file) throw FileError(path + " has no header");
    static_assert(std::endian::native == std::endian::little, "files hold little-endian floats");
    return {std::bit_cast<float>(words[0]), std::bit_cast<float>(words[1]), std::bit_cast<float>(words[2])};
}

bool isKnownKind(float kind) {
    return kind >= firstKind && kind <= lastKind && kind == std::floor(kind);
}

/// Releases are counted, not measured: 10.15 is the fifteenth of 10 and newer than 10.2.
struct Release {
    double major = 0, minor = 0;

    auto operator<=>(const Release&) const = default;
};

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

int kindOfLength(std::uintmax_t length) {
    for (const LengthOfKind& row : headerlessLengths) {
        if (row.length == length) return row.kind;
    }
    return 0;
}

}  // namespace

bool MainCommands::offerToSave() {
    if (!session_.DataModified) return true;
    const Answer answer =
        session_.dialogs().show({"SAVE", "Save changes?", Icon::Question, Buttons::OkCancel});
    return answer != Answer::Ok || saveChecked();
}

bool MainCommands::saveChecked() {
    return endOnFailure(
        [&] {
            session_.currentUnitObject().SaveFile();
            session_.DataModified = false;
        },
        [&](const std::string& why) {
            session_.sysLog("Calibration file not saved: " + why);
            session_.dialogs().show(
                {"File Save Error",
                 "The calibration could not be saved.\n" + why +
                     "\nThe calibration is still in memory: choose Save As and another folder.",
                 Icon::Critical, Buttons::Ok});
        });
}

void MainCommands::open() {
    // A save that was wanted and failed ends the command, so that nothing is lost.
    if (!session_.CurrentFile.empty() && !offerToSave()) return;
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
    request.filter = openFilter;
    request.filterIndex = session_.FileFilterIndex;
    const std::string path = session_.dialogs().openFile(request);
    if (path.empty()) return Next::Done;

    const std::string extension = upper(extensionOf(path));
    if (extension == ".BIN") {
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
    // The older generation's files are recognised by their lengths: 8704 or 8720 bytes are kind 3, 9312 kind
    // 4, 4804 kind 5. Reading them comes with a later release of the program, so the user is told so.
    const bool known = length == 8704 || length == 8720 || length == 9312 || length == 4804;
    if (!known) {
        return askAgain("File Format Error",
                        "INCORRECT FILE SIZE:   " + std::to_string(length) + "\nEnter a new filename?");
    }
    return askAgain("File Format Error", "This version does not read files of the older generation yet:   " +
                                             fileNameOf(path) + "\nEnter a new filename?");
}

MainCommands::Next MainCommands::openCalibration(const std::string& path) {
    const std::string name = fileNameOf(path);
    const std::string corrupt = "FILE POSSIBLY CORRUPT:   " + name + "\nDo you want to enter a new filename?";
    session_.sysLog("Opened Calibration File: " + path);

    Header header;
    std::error_code error;
    const auto length = std::filesystem::file_size(path, error);
    if (error || !skipFailing([&] { header = readHeader(path); }))
        return askAgain("File Read Error", corrupt);

    const bool headed = isKnownKind(header.kind);
    const int kind = headed ? static_cast<int>(header.kind) : kindOfLength(length);
    if (kind == 0) return askAgain("File Read Error", corrupt);
    if (!session_.hasUnit(kind)) {
        return askAgain("Unit Support Error",
                        "INCORRECT ORB UNIT TYPE:   " + name +
                            "\nThis file was generated by a version of Zentaq newer than this,\n"
                            "and was built for a unit not supported by this version.\n"
                            "Do you want to enter a new filename?");
    }
    if (headed && releaseOfFile(header.version) > releaseOfProgram()) {
        const Next next =
            askAgain("Version Support Error",
                     "FILE CREATED WITH NEWER ZENTAQ:   " + formatNumber(header.version, "##.0#") +
                         "\nThis file was generated by a version of Zentaq newer than this\n"
                         "version.  Some features enabled in this file may not be supported.\n"
                         "Do you want to load another file?");
        if (next == Next::AskAgain) return next;  // No loads the newer file all the same
    }

    // The former calibration stays in place until the new one has been read whole.
    const FileHeader former = session_.header();
    Unit& unit = session_.Units(kind);
    const bool read = endOnFailure(
        [&] {
            session_.CurrentUnit(static_cast<float>(kind));
            unit.FileOpen(path);
            session_.CurrentUnit(static_cast<float>(kind));
        },
        [&](const std::string& why) { session_.sysLog("Calibration file not read: " + why); });
    if (!read) {
        session_.header() = former;
        return askAgain("File Read Error", corrupt);
    }
    session_.header().fileState = "OLD";
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
    const bool matches = linked.LinkedUnitKind == session_.currentUnit();
    if (linked.LinkedUnitKind != 0 && !matches) {
        session_.dialogs().show(
            {"Unit Type Mismatch",
             "This calibration file is for a different system than that connected.\n"
             "You may still edit the calibration file, but no changes will be made to the unit.",
             Icon::Exclamation, Buttons::Ok});
    }
    session_.FileFilterIndex = unit.kind().fileFilter;
    session_.CurrentFile = path;
    session_.windows().titleChanged("Current Calibration File: " + path);
    session_.sysLog("Loaded Calibration: " + path);
    noteShortFile(path);
    session_.DataModified = false;
    if (matches && session_.Monitoring) session_.applyMonitorMode();
    // A unit that was identified before the file came takes changes from now on.
    session_.initializeOnFly(matches && linked.UnitIdentified);
    session_.windows().setupNodes();
}

// Kept: a file of any length loads, and cells behind its end are 0, because older programs wrote fewer. A
// file cut by an accident looks the same, so the log says it.
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

void MainCommands::save() {
    if (session_.CurrentFile.empty()) return;
    saveChecked();
}

void MainCommands::saveAs() {
    if (session_.currentUnit() == 0) {
        session_.messages.Display_Error(1003);
        return;
    }
    Unit& unit = session_.currentUnitObject();
    FileRequest request;
    request.title = "Zentaq4 User Calibration Files";
    request.folder = session_.platform().userFolder;
    request.filter = unit.kind().fileFilterExtension;
    request.defaultExtension = unit.kind().extension;
    request.suggestedName = fileNameOf(session_.CurrentFile);
    std::string path = session_.dialogs().saveFile(request);
    if (path.empty()) return;
    if (upper(path).ends_with("BIN")) {
        path = path.substr(0, path.size() - extensionOf(path).size()) + std::string(unit.kind().extension);
    }
    if (extensionOf(path).empty()) path += unit.kind().extension;
    if (std::filesystem::exists(path)) {
        const Answer answer = session_.dialogs().show(
            {"File Exists", "FILE EXISTS:   " + path + "\nOverwrite?", Icon::Exclamation, Buttons::YesNo});
        if (answer != Answer::Yes) return;
    }
    const std::string formerFile = session_.CurrentFile;
    unit.BinFile(path);
    if (!saveChecked()) {  // the former name stays in force
        unit.BinFile(formerFile);
        return;
    }
    session_.CurrentFile = path;
    session_.windows().titleChanged("Current Calibration File: " + path);
    session_.FileFilterIndex = unit.kind().fileFilter;
    session_.windows().showUnit();  // the name stands on a page
}

void MainCommands::close() {
    if (session_.CurrentFile.empty()) return;
    if (!offerToSave()) return;
    session_.windows().removeForms();
    session_.initializeOnFly(false);
    session_.currentUnitObject().CloseFile();
    session_.CurrentUnit(0);
    session_.header().fileState.clear();
    session_.CurrentFile.clear();
    session_.DataModified = false;
    session_.windows().titleChanged("");
    session_.windows().setupNodes();
    session_.windows().showStartTab();
}

void MainCommands::programOrb() {
    Messages& messages = session_.messages;
    const int linkedKind = session_.link.linked().LinkedUnitKind;
    if (session_.CurrentFile.empty()) return messages.Display_Error(1003);
    if (linkedKind == 0) return messages.Display_Error(1005);
    if (session_.currentUnit() != linkedKind) return messages.Display_Error(1006);
    if (session_.link.TransferActive()) return;
    if (session_.currentUnitObject().FW_Release() < session_.expectedRelease(linkedKind)) {
        messages.Display_Warning(1007);
    }
    if (!offerToSave()) return;
    session_.link.AutoPollSuspended(true);
    session_.windows().removeForms();
    endOnFailure(
        [&] { session_.link.Program_Unit(TransferMode::Calibration, {}); },
        [&](const std::string& why) {
            session_.sysLog("Calibration not converted: " + why);
            session_.link.AutoPollSuspended(false);
            session_.dialogs().show({"Program ORB",
                                     "The calibration could not be turned into the unit's memory image.\n" +
                                         why + "\nNothing was sent to the unit.",
                                     Icon::Critical, Buttons::Ok});
        });
}

void MainCommands::killEngine() {
    session_.link.Send_ORB_Command("K");
}

void MainCommands::zeroAdvance() {
    session_.zeroAdvance = !session_.zeroAdvance;
    session_.link.Send_ORB_Command(session_.zeroAdvance ? std::string("Z\xFF") : std::string("Z\0", 2));
}

void MainCommands::refreshCodes() {
    session_.refreshCodes();
}

void MainCommands::clearCodes() {
    session_.codes.Clear_CHKE();
    session_.link.Send_ORB_Command("A");
}

void MainCommands::storeOnFly() {
    session_.link.Send_ORB_Command("S");
}

void MainCommands::identify() {
    session_.link.Send_ORB_Command("E");
    session_.link.Send_ORB_Command("B");
}

int MainCommands::autodetectPort() {
    if (session_.link.TransferActive()) {
        session_.inform("A transfer is running.  Please search the unit when it has ended.");
        return 0;
    }
    const int former = session_.link.commPort();
    const int port = session_.link.Autodetect_COMM_Port();
    if (port == 0) {
        // The search leaves the last port it tried; the user's own is the one to wait at.
        session_.link.commPort(former);
        session_.link.ORB_Initialize();
        session_.inform("Could not Find ORB Unit.  Please check the serial connection.");
        return 0;
    }
    session_.link.commPort(port);
    session_.link.editStatus().port = std::to_string(port);
    session_.settings().set("System", "CommPort", std::to_string(port));
    return port;
}

void MainCommands::loadCommand(int code) {
    if (code == 2) {
        session_.Monitoring = true;
        skipFailing([&] { session_.AutoMonitoring = session_.settingNumber("AutoMonitor") == 1; });
        session_.link.ORB_Initialize();
    } else if (code == 3) {
        session_.Monitoring = false;
        session_.AutoMonitoring = false;
        session_.windows().resetDashboard();
    }
}

void MainCommands::dayMode() {
    session_.settings().set("System", "MonitorMode", "1");
    session_.windows().dayMode();
}

void MainCommands::nightMode() {
    session_.settings().set("System", "MonitorMode", "0");
    session_.windows().nightMode();
}

void MainCommands::openTable(const std::string& table, const std::string& title) {
    if (session_.currentUnit() == 0) return session_.messages.Display_Error(1003);
    session_.windows().openTable(table, title);
}

int MainCommands::treeClick(const std::string& key) {
    constexpr int startPage = 0;
    if (session_.currentUnit() == 0) return startPage;
    for (const TreeNode& node : treeNodes(session_.currentUnitObject())) {
        if (node.key != key) continue;
        if (!node.table.empty()) openTable(node.table, node.title);
        return node.page;
    }
    return startPage;
}

}  // namespace zentaq
