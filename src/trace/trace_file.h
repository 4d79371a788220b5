// Reads a wire trace back: its lines, which of them tell of trouble, and what they add up to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "trace/trace_line.h"

namespace zentaq {

struct TraceFile {
    std::string program;  ///< version
    std::string begun;    ///< local date and time, as the program wrote them
    std::string port;
    int part = 1;  ///< of a trace that outgrew its file the later half
    std::vector<TraceLine> lines;
    int unknownLines = 0;  ///< not understood, and left out
    bool cut = false;      ///< the last line ends in the middle; it is left out
};

/// Takes line ends of both systems. Throws FileError for a text that is no trace.
TraceFile parseTrace(std::string_view content);
/// Reads FILE, with its older half in front where FILE.old is that. Throws FileError, with the file's name.
TraceFile readTrace(const std::string& path);

struct TraceFilter {
    std::string command;                ///< key; empty for all
    std::optional<double> fromSeconds;  ///< since the trace began
    std::optional<double> toSeconds;
    bool problems = false;  ///< only what went wrong, each behind the command before it
};
/// The chosen lines, as indexes in their order.
std::vector<std::size_t> chosenLines(const TraceFile& trace, const TraceFilter& filter);

struct CommandSummary {
    int written = 0;
    int replies = 0;  ///< whole ones, right or wrong
    int lumped = 0;   ///< replies in more than one lump
    int problems = 0;
    std::vector<double> replyMs;  ///< from the command to the whole reply, ascending
};

/// One kind of trouble.
struct ProblemSummary {
    int count = 0;
    std::size_t rank = 0;      ///< 1 for the kind that came first, 2 for the next one
    std::int64_t firstUs = 0;  ///< since the trace began
    std::int64_t lastUs = 0;
    std::map<std::string, int> commands;  ///< how often at which; the port and the program have none
};

struct TraceSummary {
    double seconds = 0;  ///< from the first chosen line to the last
    int lines = 0;
    std::map<std::string, CommandSummary> commands;
    int frames = 0;              ///< live frames with a right sum, or without one
    double framesPerSecond = 0;  ///< while they came; 0 for fewer than two
    double longestPauseMs = 0;   ///< between two frames
    std::int64_t pauseEndUs = 0;
    std::vector<std::string> units;  ///< who said who it is: serial number and kind, firmware and calibration
    std::map<std::string, ProblemSummary> problems;
};
TraceSummary summaryOf(const TraceFile& trace, const std::vector<std::size_t>& chosen);

/// Of ascending numbers the smallest that `share` of them do not exceed; 0 of none. `share`: above 0 to 1.
double quantile(const std::vector<double>& ascending, double share);

}  // namespace zentaq
