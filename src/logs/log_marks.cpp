#include "logs/log_marks.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "unit/safe_file.h"

namespace zentaq {

namespace {

constexpr int markDecimals = 3;
/// Thirty years: no log is so long.
constexpr double latestMark = 1e9;

}  // namespace

std::string marksFileOf(const std::string& log) {
    return log + ".marks";
}

std::vector<LogMark> marksIn(std::string_view text) {
    std::vector<LogMark> marks;
    for (const std::string& line : split(text, '\n')) {
        const auto tab = line.find('\t');
        if (tab == std::string::npos) continue;
        const auto seconds = parseNumber(std::string_view(line).substr(0, tab));
        if (!seconds || !(std::abs(*seconds) <= latestMark)) continue;
        marks.push_back({*seconds, std::string(trimmed(std::string_view(line).substr(tab + 1)))});
    }
    std::ranges::stable_sort(marks, {}, &LogMark::seconds);
    return marks;
}

std::string marksText(const std::vector<LogMark>& marks) {
    std::string text;
    for (const LogMark& mark : marks)
        text += numberText(roundTo(mark.seconds, markDecimals)) + "\t" + shownLine(mark.text) + "\n";
    return text;
}

std::vector<LogMark> readMarks(const std::string& log) {
    const auto text = readFileIfThere(marksFileOf(log), limits::logMarks);
    return text ? marksIn(*text) : std::vector<LogMark>{};
}

void writeMarks(const std::string& log, const std::vector<LogMark>& marks) {
    const std::string file = marksFileOf(log);
    if (!marks.empty()) return writeFileSafely(file, marksText(marks));
    if (std::remove(file.c_str()) != 0 && errno != ENOENT)
        throw FileError(file + ": " + std::generic_category().message(errno));
}

}  // namespace zentaq
