#include "app/messages.h"

#include <array>
#include <span>

#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"

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

constexpr std::string_view inputError = "Data Input Error";

constexpr std::array warnings{
    Numbered{codes::NotANumber, inputError, "Warning 1000: Data Input Error\nNon-numeric value detected.\n%",
             "Warning 1000: Data Input Error / Non-numeric value", Icon::Exclamation},
    Numbered{codes::OutOfRange, inputError, "Warning 1001: Data Input Error\n% - Invalid Entry.",
             "Warning 1001: Data Input Error", Icon::Exclamation},
    Numbered{codes::NotWhole, inputError, "Warning 1002: Data Input Error\nEnter Whole Numbers Only",
             "Warning 1002: Data Input Error / Non Whole Number", Icon::Exclamation},
    Numbered{codes::OwnWarning, "Warning", "%", "Warning 1003: %", Icon::Exclamation},
    Numbered{codes::InvalidEntry, inputError,
             "Warning 1004: Data Input Error\nThe information you have entered is invalid; please try again.",
             "Warning 1004: Invalid Information Provided", Icon::Exclamation},
    Numbered{codes::BlankEntry, inputError,
             "Warning 1005: Data Input Error\nField CANNOT be NULL; please try again.",
             "Warning 1005: NULL Value Entered", Icon::Exclamation},
    Numbered{codes::OldFirmware, "Warning 1007",
             "Warning 1007:\nOlder ORB Unit firmware detected. The firmware may need to be upgraded for the "
             "unit to work properly with the new software.",
             "Warning 1007: ORB Unit needs Firmware Upgrade.", Icon::Exclamation},
};

constexpr Numbered notAscending{codes::NotAscending, inputError,
                                "Warning 1006: Data Input Error\nThe value you entered must be higher than "
                                "that of the one to the left.\n%",
                                "Warning 1006: Data Input Error / Value Lesser than Left.",
                                Icon::Exclamation};

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

std::string filled(std::string_view pattern, std::string_view text) {
    std::string result{pattern};
    if (const auto at = result.find('%'); at != std::string::npos) result.replace(at, 1, text);
    return result;
}

/// Key codes of the full stop and of two control keys, which a key handler hands in as they are.
bool isPassingKeyCode(std::string_view value) {
    return value == "46" || value == "19" || value == "8";
}

}  // namespace

void Messages::Display_Error(int code) {
    const Numbered* row = find(errors, code);
    if (row == nullptr) return;
    dialogs_.show({std::string(row->title), std::string(row->title) + ":\n" + std::string(row->text),
                   row->icon, Buttons::Ok});
    sysLog_(row->log);
}

void Messages::warn(const std::string& title, const std::string& text, std::string_view logLine) {
    ++warnings_;
    dialogs_.show({title, text, Icon::Exclamation, Buttons::Ok});
    sysLog_(logLine);
    focusForm_(ActiveFormName);
}

void Messages::Display_Warning(int code, std::string_view text) {
    const Numbered* row = find(warnings, code);
    if (row == nullptr) return;
    warn(std::string(row->title), filled(row->text, text), filled(row->log, text));
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
            if (isNumeric(value) || isPassingKeyCode(value)) return false;
            Display_Warning(codes::NotANumber, "Retype Data");
            return true;
        case codes::IsWhole:
            // Kept: the pair ".," is refused, neither character alone; "1.5" passes.
            if (value.find(".,") == std::string_view::npos) return false;
            Display_Warning(codes::NotWhole);
            return true;
        case codes::IsFilled:
            if (!trimmed(value).empty()) return false;
            Display_Warning(codes::BlankEntry);
            return true;
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
    if (value <= maximum && value >= minimum) return false;
    Display_Warning(codes::OutOfRange, rangeText);
    sysLog_(rangeText);
    sysLog_("Invalid Entry: " + numberText(value) + " -> " + numberText(minimum) + " to " +
            numberText(maximum));
    return true;
}

bool Messages::Check_Ascending(const std::vector<std::string>& fields, int index) {
    if (index < 1 || index >= static_cast<int>(fields.size())) return false;
    const std::string& left = fields[static_cast<std::size_t>(index) - 1];
    const std::string& right = fields[static_cast<std::size_t>(index)];
    if (numberOf(left) < numberOf(right)) return false;
    warn(std::string(notAscending.title), filled(notAscending.text, left + " > " + right + " = FALSE"),
         notAscending.log);
    return true;
}

}  // namespace zentaq
