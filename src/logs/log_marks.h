// Markers that a tuner sets in a log: a time and a text. They stand in a small text file beside the log, one
// a line: seconds, a tab, the text.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

struct LogMark {
    double seconds = 0;
    std::string text;

    bool operator==(const LogMark&) const = default;
};

/// "run.dat" has its markers in "run.dat.marks".
std::string marksFileOf(const std::string& log);

/// In the order of their times. A line that is none is passed over.
std::vector<LogMark> marksIn(std::string_view text);
std::string marksText(const std::vector<LogMark>& marks);

/// Those of a log; none where there is no file. Throws FileError for one that cannot be read.
std::vector<LogMark> readMarks(const std::string& log);
/// No markers, no file. Throws FileError.
void writeMarks(const std::string& log, const std::vector<LogMark>& marks);

}  // namespace zentaq
