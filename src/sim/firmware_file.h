// A firmware file for simulated units: S-records whose header tells that nobody may put it into a real one.
// Made on demand only.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "sim/srecord.h"

namespace zentaq::sim {

/// Whether `text` is 10 characters that begin with the kind's `prefix` and end in the five digits of release
/// and build.
bool isFirmwareText(std::string_view text, std::string_view prefix);

/// The firmware text in a header record such as "SIMULATED ZQA-505098". Nothing for any other record.
std::optional<std::string> firmwareTextOfHeader(const SRecord& record);

/// The whole file, with CR LF: the header, 256 lines of 16 bytes up to address FFFF, 128 above it with
/// addresses of three bytes, the number of these lines, and the end record.
std::string simulatedFirmware(std::string_view firmwareText);

/// Writes simulatedFirmware() to `path`. Throws FileError when that fails, or when something other than such
/// a file stands there: a real firmware file is never replaced.
void makeFirmwareFile(const std::filesystem::path& path, std::string_view firmwareText);

}  // namespace zentaq::sim
