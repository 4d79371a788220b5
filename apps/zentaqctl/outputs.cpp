#include "outputs.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace fs = std::filesystem;

namespace {

/// What an output must show of itself to be known by.
constexpr std::size_t beginningBytes = 128;

/// What is no file is left to the writer, which has its own words for it.
bool losesSomething(const std::string& output) {
    std::error_code ignored;
    return fs::is_regular_file(output, ignored) && fs::file_size(output, ignored) > 0;
}

bool sameFile(const std::string& one, std::string_view other) {
    std::error_code ignored;
    return one == other || fs::equivalent(one, other, ignored);
}

[[noreturn]] void refuse(const std::string& output, std::string_view what) {
    throw FileError(output + " is there already; --force puts the new " + std::string(what) +
                    " in its place");
}

bool isHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

}  // namespace

void refuseReplacing(const Context& context, const std::string& output, std::string_view what,
                     std::initializer_list<std::string_view> inputs) {
    if (context.force || output.empty() || output == "-" || !losesSomething(output)) return;
    const bool wanted =
        std::ranges::any_of(inputs, [&](std::string_view input) { return sameFile(output, input); });
    if (!wanted) refuse(output, what);
}

void refuseReplacingOther(const Context& context, const std::string& output, std::string_view what,
                          bool (*isOwn)(std::string_view beginning)) {
    if (context.force || output.empty() || output == "-" || !losesSomething(output)) return;
    bool own = false;
    skipFailing([&] { own = isOwn(readFileStart(output, beginningBytes)); });
    if (!own) refuse(output, what);
}

bool wroteNew(const Context& context, const std::string& output, std::string_view content) {
    std::error_code ignored;
    if (context.force || output.empty() || output == "-" || fs::exists(output, ignored)) return false;
    return writeNewFileSafely(output, content);
}

void writeCalibration(const Context& context, const std::string& output, std::string_view bytes,
                      std::initializer_list<std::string_view> inputs) {
    if (wroteNew(context, output, bytes)) return;
    refuseReplacing(context, output, "calibration", inputs);
    writeFileSafely(output, bytes);
}

void saveCalibration(const Context& context, Unit& unit, std::initializer_list<std::string_view> inputs) {
    const Unit::FileContent content = unit.fileContent();
    if (wroteNew(context, unit.BinFile(), content.bytes)) return unit.noteSaved(content);
    refuseReplacing(context, unit.BinFile(), "calibration", inputs);
    unit.SaveFile();
}

bool beginsWithSRecord(std::string_view beginning) {
    constexpr std::size_t shortest = 10;
    const auto end = beginning.find_first_of("\r\n");
    if (end == std::string_view::npos || end < shortest || beginning.front() != 'S') return false;
    return std::ranges::all_of(beginning.substr(1, end - 1), isHexDigit);
}

std::unique_ptr<std::ofstream> openGrowing(const Context& context, const std::string& output,
                                           std::string_view what) {
    constexpr mode_t forEveryone = 0666;  // less the user's mask
    std::error_code ignored;
    const fs::file_status found = fs::status(output, ignored);
    const bool device = fs::is_character_file(found);
    if (fs::exists(found) && !fs::is_regular_file(found) && !device) {
        throw FileError("Cannot write " + output + ": it is no file");
    }
    const bool free = fs::exists(found) && !losesSomething(output);
    const int how = context.force || free ? O_TRUNC : O_EXCL;
    const int file =
        ::open(output.c_str(), O_WRONLY | O_CREAT | O_NOCTTY | O_NONBLOCK | O_CLOEXEC | how, forEveryone);
    if (file < 0 && errno == EEXIST) refuse(output, what);
    if (file < 0) throw FileError("Cannot write " + output + ": " + std::strerror(errno));
    ::close(file);
    auto stream = std::make_unique<std::ofstream>(output, std::ios::binary | std::ios::app);
    if (!*stream) throw FileError("Cannot write " + output);
    return stream;
}

}  // namespace zentaq::ctl
