// One line of a wire trace: an event with its time, its bytes and what they mean. Writer and reader of trace
// files share this form.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zentaq {

/// First line of each trace file.
inline constexpr std::string_view traceMagic = "Zentaq4 wire trace, format 1";

/// How the event that tells the port begins.
inline constexpr std::string_view portOpened = "port opened: ";

enum class TraceDirection : char {
    Written = '>',
    Received = '<',
    Event = '*',  ///< the port, or the program
};

/// What can go wrong on the line, as the word behind the '!' of a trace line.
namespace trouble {
inline constexpr std::string_view timeOut = "time-out";    ///< a command had no answer
inline constexpr std::string_view tooShort = "short";      ///< an answer never became whole
inline constexpr std::string_view surplus = "surplus";     ///< an answer was longer than it should be
inline constexpr std::string_view wrongSum = "wrong-sum";  ///< a whole answer with damaged bytes
inline constexpr std::string_view refused = "refused";     ///< the unit said "AR"
inline constexpr std::string_view unclear = "unclear";     ///< an answer that says nothing known
inline constexpr std::string_view unasked = "unasked";     ///< bytes that no command waited for
inline constexpr std::string_view portLost = "port-lost";  ///< the adapter has vanished
inline constexpr std::string_view linkLost = "link-lost";  ///< the program has given up the unit
}  // namespace trouble

struct TraceLine {
    std::int64_t timeUs = 0;  ///< since the trace began
    TraceDirection direction = TraceDirection::Event;
    std::string bytes;    ///< of Written and Received, as they stood on the line
    std::string problem;  ///< a word of `trouble`; empty where all is well
    std::string command;  ///< key of the command that this belongs to, "W" or "P1"; empty for none
    std::string text;
};

/// "12.345" for 12345 microseconds: milliseconds with three decimals.
std::string traceTime(std::int64_t us);

/// The bytes in hexadecimal, two digits each, separated by blanks.
std::string hexBytes(std::string_view bytes);

/// What stands between the count and the bytes: "!wrong-sum W: 65 of 65 bytes".
std::string traceMeaning(const TraceLine& line);

/// Without a line end.
std::string formatTraceLine(const TraceLine& line);
/// Nothing for a text that is no such line, a line that was cut off among them.
std::optional<TraceLine> parseTraceLine(std::string_view text);

}  // namespace zentaq
