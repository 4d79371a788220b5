#include "sim/firmware_state_file.h"

#include <algorithm>
#include <iterator>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "sim/memory_file.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

namespace {

struct StateWord {
    FirmwareState state;
    std::string_view word;
};

constexpr StateWord words[] = {{FirmwareState::Running, "running"},
                               {FirmwareState::Missing, "missing"},
                               {FirmwareState::Programmed, "programmed"}};

}  // namespace

fs::path firmwareStateFile(const fs::path& memoryFile) {
    fs::path path = memoryFile;
    return path += ".firmware";
}

std::optional<InstalledFirmware> readFirmwareState(const fs::path& path) {
    std::error_code error;
    if (fs::symlink_status(path, error).type() == fs::file_type::not_found) return std::nullopt;
    const std::string content = readFile(path.string(), limits::simulatedState);
    const std::string line = content.substr(0, content.find('\n'));
    const std::size_t blank = std::min(line.find(' '), line.size());
    const auto* row = std::ranges::find(words, std::string_view(line).substr(0, blank), &StateWord::word);
    const std::string text = line.substr(std::min(blank + 1, line.size()));
    const bool known = row != std::end(words) && text.empty() == (row->state == FirmwareState::Missing);
    if (!known) throw FileError(path.string() + " does not tell the state of a firmware");
    return InstalledFirmware{row->state, text};
}

void writeFirmwareState(const fs::path& path, const InstalledFirmware& firmware) {
    const auto* row = std::ranges::find(words, firmware.state, &StateWord::state);
    std::string line(row->word);
    if (!firmware.text.empty()) line += " " + firmware.text;
    line += "\n";
    writeMemoryFile(path, {line.begin(), line.end()});
}

}  // namespace zentaq::sim
