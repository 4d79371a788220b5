#include "base/warning_texts.h"

#include <algorithm>
#include <array>

#include "base/message_codes.h"

namespace zentaq {

namespace {

constexpr std::string_view inputError = "Data Input Error";

constexpr std::array warnings{
    WarningText{codes::NotANumber, inputError,
                "Warning 1000: Data Input Error\nNon-numeric value detected.\n%",
                "Warning 1000: Data Input Error / Non-numeric value"},
    WarningText{codes::OutOfRange, inputError, "Warning 1001: Data Input Error\n% - Invalid Entry.",
                "Warning 1001: Data Input Error"},
    WarningText{codes::NotWhole, inputError, "Warning 1002: Data Input Error\nEnter Whole Numbers Only",
                "Warning 1002: Data Input Error / Non Whole Number"},
    WarningText{codes::OwnWarning, "Warning", "%", "Warning 1003: %"},
    WarningText{
        codes::InvalidEntry, inputError,
        "Warning 1004: Data Input Error\nThe information you have entered is invalid; please try again.",
        "Warning 1004: Invalid Information Provided"},
    WarningText{codes::BlankEntry, inputError,
                "Warning 1005: Data Input Error\nField CANNOT be NULL; please try again.",
                "Warning 1005: NULL Value Entered"},
    WarningText{
        codes::NotAscending, inputError,
        "Warning 1006: Data Input Error\nThe value you entered must be higher than that of the one to "
        "the left.\n%",
        "Warning 1006: Data Input Error / Value Lesser than Left."},
    WarningText{codes::OldFirmware, "Warning 1007",
                "Warning 1007:\nOlder ORB Unit firmware detected. The firmware may need to be upgraded for "
                "the unit to work properly with the new software.",
                "Warning 1007: ORB Unit needs Firmware Upgrade."},
};

void replaceFirst(std::string& text, std::string_view what, std::string_view by) {
    if (const auto at = text.find(what); at != std::string::npos) text.replace(at, what.size(), by);
}

}  // namespace

const WarningText* warningText(int code) {
    const auto found = std::ranges::find(warnings, code, &WarningText::code);
    return found == warnings.end() ? nullptr : &*found;
}

std::string filled(std::string_view pattern, std::string_view text) {
    std::string result{pattern};
    replaceFirst(result, "%", text);
    return result;
}

std::string warningLine(int code, std::string_view text) {
    const WarningText* warning = warningText(code);
    if (warning == nullptr) return std::string(text);
    std::string line{warning->text};
    replaceFirst(line, "\n", ": ");
    replaceFirst(line, "\n", " ");
    return filled(line, text);
}

}  // namespace zentaq
