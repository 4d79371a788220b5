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

/// One numbered condition. `%` in a text stands for the caller's text.
struct Numbered {
    int code;
    std::string_view title;
    std::string_view text;
    std::string_view log;
    Icon icon;
};

constexpr std::array errors{
    Numbered{codes::FormNotPrinted, "Error 1000",
             "This form cannot be printed.\nCheck Printer Setup and try again.",
             "Error 1000: Form Cannot Be Printed", Icon::Critical},
    Numbered{codes::PortInUse, "Error 1001", "Port is already in use by another process.",
             "Error 1001: Port is in use by another process.", Icon::Critical},
    Numbered{codes::InvalidBinFile, "Error 1002",
             "Not a valid BIN file!\nPlease choose another file and try again.",
             "Error 1002: Invalid BIN File!", Icon::Critical},
    Numbered{codes::NoCalibration, "Error 1003",
             "You must have an open/active bin file before accessing this functionality\n"
             "Please choose another file or create one and try again.",
             "Error 1003: No Open BIN File.", Icon::Critical},
    Numbered{codes::NoModel, "Error 1004",
             "No ORB Unit has been associated to this Bin File.\n"
             "Please choose the ORB Unit from the List on the General Config Screen before continuing!",
             "Error 1004: No ORB Unit associated to selected BIN File.", Icon::Critical},
    Numbered{codes::NoUnit, "Error 1005",
             "No ORB Unit is Connected to the System!\n"
             "Please check to make sure your ORB unit is powered on and connected to the system.",
             "Error 1005: Attempted Communication, No ORB Unit Found.", Icon::Critical},
    Numbered{codes::WrongUnit, "Error 1006",
             "Incorrect ORB Unit is Connected to the System!\n"
             "Please connect a unit of the proper type or open an apprpriate file.",
             "Error 1006: Attempted Communication, Incorrect ORB Unit Found.", Icon::Critical},
    Numbered{codes::NoSensor, "Error 1007",
             "No MAP sensor calibration selected.\nPlease choose a MAP sensor from the drop down below.",
             "Error 1007: No MAP sensor calibration selected.", Icon::Critical},
};

/// The most lines of a box about many refused entries; the log has them all.
constexpr std::size_t mostRefusalsShown = 8;

constexpr std::array messages{
    Numbered{codes::Help, "Help", "%", "", Icon::Information},
    Numbered{codes::HelpLogged, "Help", "%", "Message 1000: %", Icon::Information},
    Numbered{codes::DataSaved, "Data Saved.", "Data has been saved Successfully!", "", Icon::Information},
    Numbered{codes::Programmed, "Complete!",
             "You have successfully programmed your ORB unit.\n"
             "Please cycle the power on the unit before continuing.",
             "", Icon::Information},
    Numbered{codes::CalibrationFailed, "Failed",
             "The BIN program operation failed.\n"
             "Please verify that the ORB has power, the engine is off and try again.\n"
             "The previous BIN file is still loaded.",
             "", Icon::Exclamation},
    Numbered{codes::FirmwareFailed, "Failed",
             "The firmware upgrade operation failed.\nPlease verify that the ORB has power and try again.\n"
             "There is now no firmware installed on this unit, the upgrade must be completed successfully "
             "before the unit will function.",
             "", Icon::Exclamation},
    Numbered{codes::FirmwareNotStarted, "Failed",
             "The firmware upgrade operation failed.\n"
             "Please verify that the ORB is in the upgrade mode then try again.\n"
             "The previous version of the firmware is still intact.",
             "", Icon::Exclamation},
    Numbered{codes::LogDownloaded, "Complete!", "The datalog has been successfully downloaded.", "",
             Icon::Information},
    Numbered{codes::LogFailed, "Failed",
             "The unit either has no datalog data is currently datalogging\n"
             "Make sure you datalog switch is OFF and try again.",
             "", Icon::Exclamation},
    Numbered{codes::LoadCalibration, "Complete!",
             "The BIN file MUST be loaded before starting your engine.\n"
             "The unit may operate upredictably until the BIN file is loaded.",
             "", Icon::Information},
    Numbered{codes::UnitLost, "Failed",
             "This unit will no longer communicate.\nThe firmware upgrade operation failed.\n"
             "Please contact Norvalia for repairs.",
             "", Icon::Exclamation},
};

const Numbered* find(std::span<const Numbered> table, int code) {
    for (const Numbered& row : table) {
        if (row.code == code) return &row;
    }
    return nullptr;
}

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
    const Numbered* row = find(errors, code);
    if (row == nullptr) return;
    dialogs_.show({std::string(row->title), std::string(row->title) + ":\n" + std::string(row->text),
                   row->icon, Buttons::Ok});
    sysLog_(row->log);
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
    const Numbered* row = find(messages, code);
    if (row == nullptr) return;
    dialogs_.show({std::string(row->title), filled(row->text, text), row->icon, Buttons::Ok});
    if (!row->log.empty()) sysLog_(filled(row->log, text));
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
