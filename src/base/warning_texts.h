// The words of the numbered warnings, as a box shows them and as a program without boxes tells them.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

/// In `text` and `log`, `%` stands for the caller's text.
struct WarningText {
    int code = 0;
    std::string_view title;
    std::string_view text;
    std::string_view log;
};

/// nullptr for a number that is no warning.
const WarningText* warningText(int code);

/// A pattern with the caller's text in place of its `%`.
std::string filled(std::string_view pattern, std::string_view text);

/// The text of a warning on one line: "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry."
std::string warningLine(int code, std::string_view text);

}  // namespace zentaq
