// A simulated unit's memory as a file of raw bytes, so that it survives the simulator and can be looked at.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <vector>

namespace zentaq::sim {

/// The bytes of the file; nothing if it does not exist or is empty.
/// Throws FileError if it cannot be read or does not hold exactly `size` bytes.
std::optional<std::vector<std::uint8_t>> readMemoryFile(const std::filesystem::path& path, std::size_t size);

/// Replaces the file by a rename, so that a reader finds the old bytes or the new ones, never a mixture.
/// Throws FileError; the old file then stands.
void writeMemoryFile(const std::filesystem::path& path, const std::vector<std::uint8_t>& content);

}  // namespace zentaq::sim
