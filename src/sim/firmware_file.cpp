#include "sim/firmware_file.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "sim/memory_file.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view headerStart = "SIMULATED ";
constexpr std::size_t textLength = 10;
constexpr std::size_t firstReleaseDigit = 5;
constexpr std::int64_t firstAddress = 0xF000;
constexpr std::int64_t firstLongAddress = 0x10000;
constexpr std::int64_t endAddress = 0x10800;
constexpr int lineBytes = 16;

/// Bytes that differ from line to line and from firmware to firmware; no unit ever runs them.
std::vector<std::uint8_t> content(std::string_view firmwareText, std::int64_t address) {
    const unsigned seed = std::accumulate(firmwareText.begin(), firmwareText.end(), 0u);
    std::vector<std::uint8_t> bytes;
    for (int i = 0; i < lineBytes; ++i) {
        bytes.push_back(static_cast<std::uint8_t>((static_cast<unsigned>(address + i) * 37 + seed) % 253));
    }
    return bytes;
}

bool isSimulatedFirmware(const fs::path& path) {
    constexpr std::size_t longestHeader = 128;
    std::string line;
    skipFailing([&] { line = readFileStart(path.string(), longestHeader); });
    line.erase(std::min(line.find('\n'), line.size()));
    if (line.ends_with('\r')) line.pop_back();
    const auto header = parseSRecord(line, "0");
    return header && firmwareTextOfHeader(*header);
}

}  // namespace

bool isFirmwareText(std::string_view text, std::string_view prefix) {
    return text.size() == textLength && text.starts_with(prefix) &&
           std::all_of(text.begin() + firstReleaseDigit, text.end(),
                       [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::optional<std::string> firmwareTextOfHeader(const SRecord& record) {
    const std::string text(record.data.begin(), record.data.end());
    if (record.type != '0' || !text.starts_with(headerStart)) return std::nullopt;
    if (text.size() != headerStart.size() + textLength) return std::nullopt;
    return text.substr(headerStart.size());
}

std::string simulatedFirmware(std::string_view firmwareText) {
    const std::string header = std::string(headerStart) + std::string(firmwareText);
    std::string file = sRecordText({'0', 0, {header.begin(), header.end()}}) + "\r\n";
    std::int64_t dataRecords = 0;
    for (std::int64_t address = firstAddress; address < endAddress; address += lineBytes, ++dataRecords) {
        const char type = address < firstLongAddress ? '1' : '2';
        file += sRecordText({type, address, content(firmwareText, address)}) + "\r\n";
    }
    return file + sRecordText({'5', dataRecords, {}}) + "\r\n" + sRecordText({'8', 0, {}}) + "\r\n";
}

void makeFirmwareFile(const fs::path& path, std::string_view firmwareText) {
    refuseOtherThanFile(path.string());
    std::error_code error;
    const bool taken = fs::file_size(path, error) != 0 && !error;
    if (taken && !isSimulatedFirmware(path)) {
        throw FileError(path.string() + " is no firmware of a simulated unit and stays as it is");
    }
    const std::string text = simulatedFirmware(firmwareText);
    writeMemoryFile(path, {text.begin(), text.end()});
}

}  // namespace zentaq::sim
