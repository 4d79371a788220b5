// clsConsole: the one writer of the system console, the link console and the log file.
// Views show `lines()` and `commLines()` and redraw when `changes()` moves.
#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "platform/clock.h"

namespace zentaq {

/// A log record with its fixed fields; only time and text reach an output.
struct LogRecord {
    std::string sequence;  ///< 4 characters: the line counter
    std::string kind;      ///< 1 character
    std::string tag;       ///< 8 characters
    std::string text;      ///< 80 characters
    std::string time;      ///< 8 characters: hh:mm:ss
};

class Console {
 public:
    /// `counter` is the number of lines written before; 0 but for tests of its end.
    explicit Console(const Clock& clock, std::int32_t counter = 0) : clock_(clock), counter_(counter) {}

    /// One system line, or two halves for more than 80 characters. Throws FileError when the log file
    /// cannot be written (the line is on the console by then) and Overflow after 2^31 - 1 lines.
    void SysLog(std::string_view kind, std::string_view tag, std::string_view text);
    void SysLog(std::string_view text) { SysLog("", "", text); }

    /// Many system lines in one write; the screen gets the last of them. Throws as SysLog does.
    void SysLogBlock(const std::vector<std::string>& texts);

    /// One link line. The list never holds more than 100; the 101st starts it anew.
    /// True when the line count before it was a multiple of 5, so that panel 3 is due to be cleared.
    bool CommLog(std::string_view text);

    /// Adds a result behind the last line, on the screen only.
    void AddtoLastLine(std::string_view text);

    /// A line straight to the list, with no time and not in the file.
    void plainLine(std::string_view text);

    bool LogToFile() const { return logToFile_; }
    void LogToFile(bool on) { logToFile_ = on; }
    const std::string& logFile() const { return logFile_; }
    void logFile(const std::string& path) { logFile_ = path; }

    const std::deque<std::string>& lines() const { return lines_; }
    const std::deque<std::string>& commLines() const { return commLines_; }
    std::uint64_t changes() const { return changes_; }
    /// The record of the last SysLog; kept: its first three fields are shown nowhere.
    const LogRecord& lastRecord() const { return record_; }

    static constexpr std::size_t textWidth = 80;
    static constexpr std::size_t commLimit = 100;

 private:
    void writeLines(const std::vector<std::string>& lines);
    void append(const std::string& line) const;

    const Clock& clock_;
    std::deque<std::string> lines_;
    std::deque<std::string> commLines_;
    std::string logFile_;
    bool logToFile_ = false;
    std::int32_t counter_ = 0;
    LogRecord record_;
    std::uint64_t changes_ = 0;
};

}  // namespace zentaq
