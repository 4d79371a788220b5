// Files written whole: a crash, a kill or a full disk leaves the old file as it was. They are read by
// base/file_reader.h. All throw FileError with the path and the reason.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

/// Writes a temporary file beside the target, flushes it to the disk and renames it, so the folder must take
/// new files. A link is followed, also one whose target does not exist yet. Permissions stay; the owner and
/// the group stay where the system allows it. Another hard link to the old file keeps the old content.
/// What an earlier save of the same file has left behind because it was killed is removed.
void writeFileSafely(const std::string& path, std::string_view content);
/// The same for a name that is free. False where it is not, also where another program took it at this
/// moment: what stands there stays.
bool writeNewFileSafely(const std::string& path, std::string_view content);
/// For a calibration: the first, but what a longer file holds behind `start` stays, as if its start had been
/// written over. A file that is longer than any calibration is refused at once.
void writeFileStartSafely(const std::string& path, std::string_view start);
/// For a file that is made anew each time it is needed: whole or not at all as well, but nobody waits until
/// it is on the disk, which may take seconds.
void writeScratchFile(const std::string& path, std::string_view content);

}  // namespace zentaq
