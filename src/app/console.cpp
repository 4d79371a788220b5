#include "app/console.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include "base/errors.h"
#include "base/file_type.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "base/utf8.h"

namespace zentaq {

namespace {

constexpr std::size_t sequenceWidth = 4;
constexpr std::size_t kindWidth = 1;
constexpr std::size_t tagWidth = 8;
constexpr std::size_t timeWidth = 8;
constexpr ::mode_t logMode = 0644;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw FileError("Log file " + path + " cannot be written: " + reason);
}

/// A pipe that nobody reads, and a socket, cannot be opened and say so in words that help nobody.
[[noreturn]] void refuseToOpen(const std::string& path, int reason) {
    struct stat status {};
    const bool found = reason == ENXIO && ::stat(path.c_str(), &status) == 0;
    const std::string other = found ? otherThanFile(status) : std::string();
    refuse(path, other.empty() ? std::strerror(reason) : other);
}

/// All bytes, however the system splits them. Answers 0 or the reason of the failure.
int writeWhole(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ::ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

/// An event is one line whatever is in it, and says nothing to whoever reads the file on a terminal.
std::string lineOf(std::string_view text) {
    if (isPlain(text)) return std::string(text);
    std::string line(text);
    std::ranges::replace(line, '\n', ' ');
    return shownLine(line);
}

}  // namespace

void Console::SysLog(std::string_view kind, std::string_view tag, std::string_view given) {
    if (counter_ == std::numeric_limits<std::int32_t>::max()) throw Overflow();
    ++counter_;
    const std::string text = lineOf(given);
    record_ = {fixedCharacters(formatNumber(counter_, "0000"), sequenceWidth),
               fixedCharacters(kind, kindWidth), fixedCharacters(tag, tagWidth),
               fixedCharacters(text, textWidth), fixedCharacters(clock_.timeText(), timeWidth)};
    const std::size_t length = characterCount(text);
    const std::string head = record_.time + " - ";
    if (length <= textWidth) return writeLines({head + record_.text});
    // kept: with an odd length whose half rounds down, the middle character is in neither line.
    const auto half = static_cast<std::size_t>(toInt32(static_cast<double>(length) / 2));
    writeLines({head + std::string(firstCharacters(firstCharacters(text, half), textWidth)),
                head + "   ..." + std::string(firstCharacters(lastCharacters(text, half), textWidth))});
}

void Console::SysLogBlock(const std::vector<std::string>& texts) {
    if (texts.empty()) return;
    if (counter_ > std::numeric_limits<std::int32_t>::max() - static_cast<std::int32_t>(texts.size()))
        throw Overflow();
    counter_ += static_cast<std::int32_t>(texts.size()) - 1;
    if (logToFile_) {
        const std::string head = clock_.timeText() + " - ";
        std::string block;
        for (std::size_t i = 0; i + 1 < texts.size(); ++i)
            block += head + fixedCharacters(lineOf(texts[i]), textWidth) + "\n";
        append(block.substr(0, block.empty() ? 0 : block.size() - 1));
    }
    SysLog(texts.back());
}

// All of an event is on the screen before the file is tried: it may be the one thing that fails.
void Console::writeLines(const std::vector<std::string>& lines) {
    for (const std::string& line : lines) plainLine(line);
    if (!logToFile_) return;
    for (const std::string& line : lines) append(line);
}

void Console::append(const std::string& line) const {
    // One open and close for every line, so that a crash loses nothing. A pipe is never waited for.
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    const int file = ::open(logFile_.c_str(), flags, logMode);
    if (file < 0) refuseToOpen(logFile_, errno);
    struct stat status {};
    if (::fstat(file, &status) == 0 && !S_ISREG(status.st_mode)) {
        ::close(file);
        refuse(logFile_, otherThanFile(status));
    }
    const int failure = writeWhole(file, line + "\n");
    const bool closed = ::close(file) == 0;
    if (failure != 0) refuse(logFile_, std::strerror(failure));
    if (!closed) refuse(logFile_, std::strerror(errno));
}

void Console::plainLine(std::string_view text) {
    lines_.push_back(lineOf(text));
    ++changes_;
}

bool Console::CommLog(std::string_view text) {
    if (commLines_.size() == commLimit) commLines_.clear();
    constexpr std::size_t panelEvery = 5;
    const bool panelDue = commLines_.size() % panelEvery == 0;
    commLines_.push_back(lineOf(text));
    ++changes_;
    return panelDue;
}

void Console::AddtoLastLine(std::string_view text) {
    if (lines_.empty()) {
        plainLine(text);
        return;
    }
    lines_.back() = std::string(trimmed(lines_.back())) + " " + lineOf(text);
    ++changes_;
}

}  // namespace zentaq
