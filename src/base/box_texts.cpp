#include "base/box_texts.h"

#include <algorithm>
#include <array>

#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

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

constexpr std::array messages{
    MessageText{codes::Help, "Help", "%"},
    MessageText{codes::HelpLogged, "Help", "%"},
    MessageText{codes::DataSaved, "Data Saved.", "Data has been saved Successfully!"},
    MessageText{codes::Programmed, "Complete!",
                "You have successfully programmed your ORB unit.\n"
                "Please cycle the power on the unit before continuing."},
    MessageText{codes::CalibrationFailed, failedTitle,
                "The BIN program operation failed.\n"
                "Please verify that the ORB has power, the engine is off and try again.\n"
                "The previous BIN file is still loaded."},
    MessageText{
        codes::FirmwareFailed, failedTitle,
        "The firmware upgrade operation failed.\nPlease verify that the ORB has power and try again.\n"
        "There is now no firmware installed on this unit, the upgrade must be completed successfully "
        "before the unit will function."},
    MessageText{codes::FirmwareNotStarted, failedTitle,
                "The firmware upgrade operation failed.\n"
                "Please verify that the ORB is in the upgrade mode then try again.\n"
                "The previous version of the firmware is still intact."},
    MessageText{codes::LogDownloaded, "Complete!", "The datalog has been successfully downloaded."},
    MessageText{codes::LogFailed, failedTitle,
                "The unit either has no datalog data is currently datalogging\n"
                "Make sure you datalog switch is OFF and try again."},
    MessageText{codes::LoadCalibration, "Complete!",
                "The BIN file MUST be loaded before starting your engine.\n"
                "The unit may operate upredictably until the BIN file is loaded."},
    MessageText{codes::UnitLost, failedTitle,
                "This unit will no longer communicate.\nThe firmware upgrade operation failed.\n"
                "Please contact Norvalia for repairs."},
};

}  // namespace

const ErrorText* errorText(int code) {
    const auto row = std::ranges::find(errors, code, &ErrorText::code);
    return row == errors.end() ? nullptr : &*row;
}

const MessageText* messageText(int code) {
    const auto row = std::ranges::find(messages, code, &MessageText::code);
    return row == messages.end() ? nullptr : &*row;
}

std::string onOneLine(std::string_view text) {
    std::string line;
    for (const std::string& part : split(text, '\n')) {
        if (trimmed(part).empty()) continue;
        if (!line.empty()) line += ' ';
        line += trimmed(part);
    }
    return line;
}

std::string errorLine(int code) {
    return "Error " + numberText(code) + ": " + onOneLine(errorText(code)->text);
}

std::string messageLine(int code) {
    return onOneLine(messageText(code)->text);
}

}  // namespace zentaq
