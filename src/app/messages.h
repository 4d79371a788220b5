// Error_Handler: numbered boxes with their log lines, and the shared input checks.
// The texts stand in base/box_texts.cpp and base/warning_texts.cpp.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/console.h"
#include "app/window_set.h"
#include "base/warning_texts.h"
#include "platform/dialogs.h"
#include "unit/entry_outcome.h"

namespace zentaq {

class Messages {
 public:
    Messages(Dialogs& dialogs, std::function<void(std::string_view)> sysLog,
             std::function<void(const std::string&)> focusForm)
        : dialogs_(dialogs), sysLog_(std::move(sysLog)), focusForm_(std::move(focusForm)) {}

    // The codes are those of `base/message_codes.h`; any other does nothing.

    void Display_Error(int code);
    /// NotAscending is raised by Check_Ascending alone.
    void Display_Warning(int code, std::string_view text = {});
    void Display_Message(int code, std::string_view text = {});

    /// Tells why an entry was refused: its warning, and of a number out of range two more lines of the log.
    /// True: refused; what has nothing to tell is refused in silence.
    bool tell(const EntryOutcome& outcome);
    /// The same of all that one command had refused, in one box: that of the first, with the others below.
    void tell(std::span<const Refusal> refused);

    // The checks of a single field: true when its input was refused and the user has been told. Kept as they
    // are for the fields of the pages, which come with a later release; what a command enters is told by
    // tell().

    bool Check_Input(int code, std::string_view value);
    /// Both limits are inside. A refusal is told by OutOfRange and then by two lines of the log.
    bool Check_Range(float value, float minimum, float maximum, std::string_view rangeText);
    /// Fields of an axis from left to right; `index` is the one just entered.
    bool Check_Ascending(const std::vector<std::string>& fields, int index);

    /// The form that gets the focus back after a warning: the one that the user's entries come from.
    std::string ActiveFormName{window::config};

    /// While a program fills a field nobody has edited it: codes::MarksField raises no "Modified" then.
    bool SilentEdit = false;
    /// How codes::MarksField marks the field of the active form: "Modified", or "Invalid Entry" for a blank
    /// one.
    void onMark(std::function<void(std::string_view)> markField) { markField_ = std::move(markField); }

 private:
    bool checkAndMark(std::string_view value);
    void mark(std::string_view state) const;
    void warn(const WarningText& warning, std::string_view text, const std::string& further = {});

    Dialogs& dialogs_;
    std::function<void(std::string_view)> sysLog_;
    std::function<void(const std::string&)> focusForm_;
    std::function<void(std::string_view)> markField_;
};

}  // namespace zentaq
