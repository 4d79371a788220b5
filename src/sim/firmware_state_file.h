// What firmware a simulated unit holds, kept as one line of text beside its memory file.
// The memory file itself stays the unit's bytes and nothing else.
#pragma once

#include <filesystem>
#include <optional>

#include "sim/firmware_memory.h"

namespace zentaq::sim {

/// The file that belongs to a memory file: its name with ".firmware" behind it.
std::filesystem::path firmwareStateFile(const std::filesystem::path& memoryFile);

/// "running ZQA-505098", "programmed ZQA-505098" or "missing". Nothing if there is no file.
/// Throws FileError if it holds anything else.
std::optional<InstalledFirmware> readFirmwareState(const std::filesystem::path& path);

/// Replaces the file by a rename. Throws FileError; the old file then stands.
void writeFirmwareState(const std::filesystem::path& path, const InstalledFirmware& firmware);

}  // namespace zentaq::sim
