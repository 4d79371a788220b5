// Error_Handler: numbered boxes with their log lines, and the shared input checks.
// Every text of a numbered condition stands in the tables of messages.cpp.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <vector>

#include "app/console.h"
#include "platform/dialogs.h"

namespace zentaq {

class Messages {
 public:
    Messages(Dialogs& dialogs, std::function<void(std::string_view)> sysLog,
             std::function<void(const std::string&)> focusForm)
        : dialogs_(dialogs), sysLog_(std::move(sysLog)), focusForm_(std::move(focusForm)) {}

    /// Codes 1000 to 1007; any other does nothing.
    void Display_Error(int code);
    /// Codes 1000 to 1005 and 1007; 1006 is raised by Check_Ascending.
    void Display_Warning(int code, std::string_view text = {});
    /// Codes 0 and 1000 to 1009.
    void Display_Message(int code, std::string_view text = {});

    // The checks answer true when the input was refused and the user has been told.
    bool Check_Input(int code, std::string_view value);
    bool Check_Range(float value, float minimum, float maximum, std::string_view rangeText);
    /// Fields of an axis from left to right; `index` is the one just entered.
    bool Check_Ascending(const std::vector<std::string>& fields, int index);

    /// The form that gets the focus back after a warning: "frmConfig", "frmGeneralConfig" or "frmTABLE".
    std::string ActiveFormName = "frmConfig";

 private:
    void warn(const std::string& title, const std::string& text, std::string_view logLine);

    Dialogs& dialogs_;
    std::function<void(std::string_view)> sysLog_;
    std::function<void(const std::string&)> focusForm_;
};

}  // namespace zentaq
