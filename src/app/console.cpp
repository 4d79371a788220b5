#include "app/console.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"

namespace zentaq {

void Console::SysLog(std::string_view kind, std::string_view tag, std::string_view text) {
    if (counter_ == std::numeric_limits<std::int32_t>::max()) throw Overflow();
    ++counter_;
    const Record record{fixedWidth(formatNumber(counter_, "0000"), 4), fixedWidth(kind, 1),
                        fixedWidth(tag, 8), fixedWidth(text, textWidth), fixedWidth(clock_.timeText(), 8)};
    if (text.size() <= textWidth) {
        writeLine(record, record.text);
        return;
    }
    // Kept: with an odd length whose half rounds down, the middle character is in neither line.
    const auto half = static_cast<std::size_t>(toInt32(static_cast<double>(text.size()) / 2));
    writeLine(record, text.substr(0, half).substr(0, textWidth));
    writeLine(record, "   ..." + std::string(text.substr(text.size() - half).substr(0, textWidth)));
}

void Console::writeLine(const Record& record, std::string_view text) {
    const std::string line = record.time + " - " + std::string(text);
    plainLine(line);
    if (logToFile_) append(line);
}

void Console::append(const std::string& line) const {
    // One open and close for every line, so that a crash loses nothing.
    std::ofstream file(logFile_, std::ios::app | std::ios::binary);
    if (file) file << line << '\n';
    if (file) file.flush();
    if (!file) throw FileError("Log file " + logFile_ + " cannot be written: " + std::strerror(errno));
}

void Console::plainLine(std::string_view text) {
    lines_.emplace_back(text);
    ++changes_;
}

bool Console::CommLog(std::string_view text) {
    if (commLines_.size() == commLimit) commLines_.clear();
    const bool panelDue = commLines_.size() % 5 == 0;
    commLines_.emplace_back(text);
    ++changes_;
    return panelDue;
}

void Console::AddtoLastLine(std::string_view text) {
    if (lines_.empty()) {
        plainLine(text);
        return;
    }
    lines_.back() = std::string(trimmed(lines_.back())) + " " + std::string(text);
    ++changes_;
}

}  // namespace zentaq
