#include "link/link_teller.h"

#include <algorithm>
#include <string>

#include "base/errors.h"
#include "base/message_codes.h"
#include "link/link_commands.h"

namespace zentaq {

namespace {

struct BoxWords {
    std::string_view title;
    std::string_view text;
    Icon icon = Icon::None;
};

constexpr BoxWords oldFirmware{"Old ORBA Firmware",
                               "This system contains an old firmware.  It MUST be sent to Norvalia for "
                               "upgrade before it can be used with "
                               "Zentaq4.\n"
                               "The old BIN file must then be opened, converted and programmed to the unit.",
                               Icon::Critical};
constexpr BoxWords otherUnit{"Another Unit",
                             "Another unit answers than the one that was to be programmed or read.\n"
                             "The transfer has ended. Nothing more is sent to this unit.",
                             Icon::Exclamation};
constexpr BoxWords unitMismatch{
    "Unit Type Mismatch",
    "The currently open file is for a different system than the one just connected.\n"
    "\n"
    "You may still edit the calibration file, but no changes may be made to the unit.",
    Icon::Exclamation};
constexpr BoxWords newFirmware{
    "",
    "This version of firmware is not fully supported by this version of Zentaq.\n"
    "You will still be able to make changes to the unit, but not all features will be available."};

/// What is said when something happens. "{1}" and "{2}" stand for the two texts of the news.
struct EventWords {
    LinkEvent event;
    std::string_view lines;  ///< of the console
    ActivityStatus status{};
    const BoxWords* box = nullptr;
};

using E = LinkEvent;

constexpr EventWords eventWords[] = {
    {E::Initialized, "COMM. Initialized."},
    {E::Terminated, "COMM. Terminated."},
    {E::Opening, "Initializing Communication with ORB"},
    {E::Opened,
     "Connection with ORB Established.",
     {"Connected", "RS232 Connection Initialized!", "", "Connected"}},
    {E::NotOpened, "COMM Port:{1} Not Available, Cannot Open Connection."},
    {E::PortTrouble, "  - {1}"},
    // Also when a command in the void runs out of patience: no unit has failed to answer.
    {E::NoPort,
     "",
     {"No Connection Mode", "Port is Currently Not Available.",
      "Please Check your Serial Connection and try again", "NoConnect"}},
    {E::Closed, "COMM: Connection with ORB terminated."},
    {E::AdapterGone, "COMM: {1} ({2}) has gone. Looking for it."},
    {E::AdapterAway,
     "",
     {"Adapter unplugged", "{1} ({2}) has gone.", "Looking for it: plug it in again.", "Warning"}},
    {E::AdapterBackAs, "COMM: {1} is back as {2}."},
    {E::AdapterBack, "", {"Adapter is back", "{1} is back as {2}.", "Asking who is there...", "Warning"}},
    {E::FirmwareMissing,
     "",
     {"Connecting...", "The upgrade broke off: the unit has no firmware.",
      "Cycle its power and run Firmware Upgrade again.", "Warning"}},
    {E::UnitSilent, "", {"Connecting...", "The unit does not answer.", "", "Warning"}},
    // Nobody must believe that the engine was stopped.
    {E::KillNotAnswered, "Kill Engine was not answered: look at the engine."},
    {E::KillNotSent, "Kill Engine was not sent: the link is lost."},
    {E::OldFirmware, "", {}, &oldFirmware},
    {E::UnitReady, "", {"CONNECTED!", "ORB Unit Found and Ready!", "", "Connected"}},
    {E::UnitMustUpgrade, "", {"CONNECTED!", "ORB Unit Found but must be upgraded!", "", "Connected"}},
    {E::UnknownAnswers, "Who answers does not say what it is."},
    {E::OtherUnit, "", {}, &otherUnit},
    {E::FirmwareTold, "ORB :: Firmware: {1}"},
    {E::UnitMismatch, "", {}, &unitMismatch},
    {E::NewFirmware, "", {}, &newFirmware},
    {E::UnitIdentified, "ORB :: BinFile : {2}"},
    {E::CodesCleared, "ORB CheckEngine Codes Successfully Cleared."},
    {E::ZeroAdvanceOn, "ORB: Ignition Timing set to Zero"},
    {E::ZeroAdvanceOff, "ORB: Restored Ignition Timing"},
    {E::ChangesSaved, "ORB: ONFLY changes saved"},
    {E::ChangeRefused, "ONFLY: Change Failed!"},
    {E::ConversionBegins, "Preparing {1} for output to ORB Unit...\n  - Converting Data..."},
    {E::ProgrammingBegins, "  - Programming ORB..."},
    {E::FirmwareBegins, "Attempting Firmware Upgrade, Sending File... \n  - {1}"},
    {E::DownloadBegins,
     "Downloading on-board datalog file... \nSaving data to: {1}\n  - Downloading data..."},
};

/// What is said when a transfer ends.
struct EndWords {
    TransferMode mode;
    ActivityStatus success;
    int done;                   ///< the message
    int failed;                 ///< the message; of a firmware one by what it leaves
    std::string_view verified;  ///< the last lines of the console
    std::string_view refused;
};

constexpr std::string_view verifiedText = "PROGRAM VERIFIED";
constexpr std::string_view restartText = "You Must Restart ECU After download completed.";

constexpr EndWords endWords[] = {
    {TransferMode::Calibration,
     {"Program ORB Successful", verifiedText, restartText, "Connected"},
     codes::Programmed,
     codes::CalibrationFailed,
     "ORB: Upload Successful, Program Verified!",
     "Data Upload to ORB Unit FAILED!"},
    {TransferMode::Firmware,
     {"Program Firmware Successful", verifiedText, restartText, "Connected"},
     codes::Programmed,
     codes::FirmwareFailed,
     "ORB: Firmware Upload Successful, Verified!",
     "Firmware Upload to ORB Unit FAILED!"},
    {TransferMode::Datalog,
     {"Download of Datalog Complete", "", "", "Connected"},
     codes::LogDownloaded,
     codes::LogFailed,
     "ORB: Datalog download complete!",
     ""},
};

constexpr std::string_view failedText = "PROCESS FAILED - EXITED ABNORMALLY.";

int failureMessage(const EndWords& words, FirmwareLeft left) {
    if (words.mode != TransferMode::Firmware || left == FirmwareLeft::None) return words.failed;
    return left == FirmwareLeft::Former ? codes::FirmwareNotStarted : codes::UnitLost;
}

std::string filled(std::string_view words, const LinkNews& news) {
    std::string text;
    while (true) {
        const std::size_t gap = words.find('{');
        text += words.substr(0, gap);
        if (gap == std::string_view::npos) return text;
        text += words[gap + 1] == '1' ? news.text : news.more;
        words.remove_prefix(gap + 3);
    }
}

}  // namespace

void LinkTeller::heard(const LinkNews& news) {
    // The link console tells each change of activity, not each frame.
    if (news.event == LinkEvent::ReplyCame) {
        const std::string_view activity = statusRow(news.text).activity;
        if (linkDisplay.status().activity != activity) skipFailing([&] { commLog(activity); });
    }
    linkDisplay.heard(news);
    const auto words = std::ranges::find(eventWords, news.event, &EventWords::event);
    if (words == std::end(eventWords)) return;
    tellLines(words->lines, news);
    const ActivityStatus& status = words->status;
    if (!status.state.empty()) {
        linkDisplay.COMM_StatusMessage(status.title, filled(status.line1, news), status.line2, status.state);
    }
    if (const BoxWords* box = words->box) {
        show({.title = std::string(box->title), .text = std::string(box->text), .icon = box->icon});
    }
}

// A log that cannot be written stops no transfer.
void LinkTeller::tellLines(std::string_view lines, const LinkNews& news) {
    while (!lines.empty()) {
        const std::size_t end = std::min(lines.find('\n'), lines.size());
        skipFailing([&] { sysLog(filled(lines.substr(0, end), news)); });
        lines.remove_prefix(std::min(end + 1, lines.size()));
    }
}

void LinkTeller::transferEnded(const TransferEnd& end) {
    const EndWords& words = *std::ranges::find(endWords, end.mode, &EndWords::mode);
    const auto line = [&](std::string_view text) { skipFailing([&] { sysLog(text); }); };
    const auto message = [&](int code) { skipFailing([&] { displayMessage(code); }); };
    skipFailing([&] { addToLastLine(end.succeeded() ? "SUCCESS!" : "FAIL!"); });
    if (end.succeeded()) {
        const ActivityStatus& status = words.success;
        linkDisplay.COMM_StatusMessage(status.title, status.line1, status.line2, status.state);
        message(words.done);
        // The new firmware knows nothing of the calibration that the former one held.
        if (end.mode == TransferMode::Firmware) message(codes::LoadCalibration);
    } else {
        line(failedText);
        // Else the panel would go on asking for patience where nothing is polled.
        linkDisplay.COMM_StatusMessage("Transfer failed", failedText, "", "Warning");
        message(failureMessage(words, end.firmware));
    }
    linkDisplay.removeProgress();
    line("Automatic POLL/SYNC: ENABLED");
    if (end.result == TransferResult::Verified) line(words.verified);
    if (end.result == TransferResult::Refused && !words.refused.empty()) line(words.refused);
}

}  // namespace zentaq
