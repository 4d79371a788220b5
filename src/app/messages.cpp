#include "app/messages.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "base/warning_texts.h"

namespace zentaq {

namespace {

/// A numbered error. The number stands before its box and its line of the log.
struct ErrorText {
    int code;
    std::string_view text;
    std::string_view log;
};

constexpr std::array errors{
    ErrorText{codes::FormNotPrinted, "This form cannot be printed.\nCheck Printer Setup and try again.",
              "Form Cannot Be Printed"},
    ErrorText{codes::PortInUse, "Port is already in use by another process.",
              "Port is in use by another process."},
    ErrorText{codes::InvalidBinFile, "Not a valid BIN file!\nPlease choose another file and try again.",
              "Invalid BIN File!"},
    ErrorText{codes::NoCalibration,
              "You must have an open/active bin file before accessing this functionality\n"
              "Please choose another file or create one and try again.",
              "No Open BIN File."},
    ErrorText{codes::NoModel,
              "No ORB Unit has been associated to this Bin File.\n"
              "Please choose the ORB Unit from the List on the General Config Screen before continuing!",
              "No ORB Unit associated to selected BIN File."},
    ErrorText{codes::NoUnit,
              "No ORB Unit is Connected to the System!\n"
              "Please check to make sure your ORB unit is powered on and connected to the system.",
              "Attempted Communication, No ORB Unit Found."},
    ErrorText{codes::WrongUnit,
              "Incorrect ORB Unit is Connected to the System!\n"
              "Please connect a unit of the proper type or open an apprpriate file.",
              "Attempted Communication, Incorrect ORB Unit Found."},
    ErrorText{codes::NoSensor,
              "No MAP sensor calibration selected.\nPlease choose a MAP sensor from the drop down below.",
              "No MAP sensor calibration selected."},
};

/// The most lines of a box about many refused entries; the log has them all.
constexpr std::size_t mostRefusalsShown = 8;

/// `%` stands for the caller's text.
struct MessageText {
    int code;
    std::string_view title;
    std::string_view text;
};

constexpr std::string_view failed = "Failed";

constexpr std::array messages{
    MessageText{codes::Help, "Help", "%"},
    MessageText{codes::HelpLogged, "Help", "%"},
    MessageText{codes::DataSaved, "Data Saved.", "Data has been saved Successfully!"},
    MessageText{codes::Programmed, "Complete!",
                "You have successfully programmed your ORB unit.\n"
                "Please cycle the power on the unit before continuing."},
    MessageText{codes::CalibrationFailed, failed,
                "The BIN program operation failed.\n"
                "Please verify that the ORB has power, the engine is off and try again.\n"
                "The previous BIN file is still loaded."},
    MessageText{
        codes::FirmwareFailed, failed,
        "The firmware upgrade operation failed.\nPlease verify that the ORB has power and try again.\n"
        "There is now no firmware installed on this unit, the upgrade must be completed successfully "
        "before the unit will function."},
    MessageText{codes::FirmwareNotStarted, failed,
                "The firmware upgrade operation failed.\n"
                "Please verify that the ORB is in the upgrade mode then try again.\n"
                "The previous version of the firmware is still intact."},
    MessageText{codes::LogDownloaded, "Complete!", "The datalog has been successfully downloaded."},
    MessageText{codes::LogFailed, failed,
                "The unit either has no datalog data is currently datalogging\n"
                "Make sure you datalog switch is OFF and try again."},
    MessageText{codes::LoadCalibration, "Complete!",
                "The BIN file MUST be loaded before starting your engine.\n"
                "The unit may operate upredictably until the BIN file is loaded."},
    MessageText{codes::UnitLost, failed,
                "This unit will no longer communicate.\nThe firmware upgrade operation failed.\n"
                "Please contact Norvalia for repairs."},
};

/// What a box says of the refusals behind its first one.
std::string furtherLines(std::span<const Refusal> further) {
    std::string lines;
    for (const Refusal& refusal : further.first(std::min(further.size(), mostRefusalsShown)))
        lines += "\n" + refusal.brief();
    if (further.size() > mostRefusalsShown) {
        lines += "\nand " + numberText(static_cast<double>(further.size() - mostRefusalsShown)) +
                 " more, which are in the console.";
    }
    return lines;
}

}  // namespace

void Messages::Display_Error(int code) {
    const auto row = std::ranges::find(errors, code, &ErrorText::code);
    if (row == errors.end()) return;
    const std::string number = "Error " + numberText(code);
    dialogs_.show({number, number + ":\n" + std::string(row->text), Icon::Critical, Buttons::Ok});
    sysLog_(number + ": " + std::string(row->log));
}

void Messages::warn(const WarningText& warning, std::string_view text, const std::string& further) {
    dialogs_.show(
        {std::string(warning.title), filled(warning.text, text) + further, Icon::Exclamation, Buttons::Ok});
    sysLog_(filled(warning.log, text));
    focusForm_(ActiveFormName);
}

void Messages::Display_Warning(int code, std::string_view text) {
    const WarningText* warning = warningText(code);
    if (warning != nullptr && code != codes::NotAscending) warn(*warning, text);
}

bool Messages::tell(const EntryOutcome& outcome) {
    std::vector<Refusal> refused;
    noteRefusal(refused, outcome);
    tell(refused);
    return !outcome;
}

void Messages::tell(std::span<const Refusal> refused) {
    if (refused.empty()) return;
    for (const Refusal& further : refused.subspan(1)) sysLog_(further.brief());
    const Refusal& first = refused.front();
    warn(*warningText(first.warning), first.text, furtherLines(refused.subspan(1)));
    if (first.warning != codes::OutOfRange) return;
    sysLog_(first.text);
    sysLog_("Invalid Entry: " + first.entry + " -> " + first.limits);
}

void Messages::Display_Message(int code, std::string_view text) {
    const auto row = std::ranges::find(messages, code, &MessageText::code);
    if (row == messages.end()) return;
    const Icon icon = row->title == failed ? Icon::Exclamation : Icon::Information;
    dialogs_.show({std::string(row->title), filled(row->text, text), icon, Buttons::Ok});
    if (code == codes::HelpLogged) sysLog_("Message 1000: " + std::string(text));
}

bool Messages::Check_Input(int code, std::string_view value) {
    switch (code) {
        case codes::IsNumber:
            // kept: the key codes of the full stop and of two control keys pass, as any number does.
            return tell(checkNumeric(value));
        case codes::IsWhole:
            // Kept: the pair ".," is refused, neither character alone; "1.5" passes.
            if (value.find(".,") == std::string_view::npos) return false;
            return tell(Refusal{.warning = codes::NotWhole});
        case codes::IsFilled:
            return tell(checkFilled(value));
        case codes::MarksField:
            return checkAndMark(value);
        default:
            return false;
    }
}

bool Messages::checkAndMark(std::string_view value) {
    if (!SilentEdit) mark("Modified");
    if (!trimmed(value).empty()) return false;
    mark("Invalid Entry");
    return true;
}

void Messages::mark(std::string_view state) const {
    if (markField_) markField_(state);
}

bool Messages::Check_Range(float value, float minimum, float maximum, std::string_view rangeText) {
    return tell(checkLimits(value, {minimum, maximum, std::string(rangeText)}));
}

bool Messages::Check_Ascending(const std::vector<std::string>& fields, int index) {
    if (index < 1 || index >= static_cast<int>(fields.size())) return false;
    const auto right = fields.begin() + index;
    return tell(checkAscending(*(right - 1), *right));
}

}  // namespace zentaq
