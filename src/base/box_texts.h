// The words of the numbered errors and messages, as a box shows them and as a program without boxes tells
// them. Those of the warnings: base/warning_texts.h.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

/// A numbered error. The number stands before its box and its line of the log.
struct ErrorText {
    int code;
    std::string_view text;
    std::string_view log;
};

/// `%` stands for the caller's text.
struct MessageText {
    int code;
    std::string_view title;
    std::string_view text;
};
inline constexpr std::string_view failedTitle = "Failed";

// nullptr for a number that is none.

const ErrorText* errorText(int code);
const MessageText* messageText(int code);

/// The text of a box on one line; empty lines go.
std::string onOneLine(std::string_view text);
/// "Error 1001: Port is already in use by another process."
std::string errorLine(int code);
std::string messageLine(int code);

}  // namespace zentaq
