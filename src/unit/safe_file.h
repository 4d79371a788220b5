// Files read whole and written whole: a crash or a full disk leaves the old file as it was.
// All throw FileError with the path and the reason.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zentaq {

std::string readWholeFile(const std::string& path);
/// At most the first `most` bytes, however long the file is.
std::string readFileStart(const std::string& path, std::size_t most);

/// Writes a temporary file beside the target, flushes it to the disk and renames it.
/// A link is followed; the permissions of an existing file stay.
void writeFileSafely(const std::string& path, std::string_view content);

}  // namespace zentaq
