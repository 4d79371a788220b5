// Files read whole, up to a limit that each reader tells: what is longer is refused before it is read, and
// what is no file (a folder, a pipe, a device) is refused without being opened. All throw FileError with the
// path and the reason.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "base/errors.h"

namespace zentaq {

/// The most that a reader takes, and of what.
struct FileLimit {
    std::string_view what;  ///< as it is told: "a wire trace"
    std::size_t bytes;
};

/// Each some times what the program itself ever writes.
namespace limits {
inline constexpr std::size_t kilobyte = 1024;
inline constexpr std::size_t megabyte = 1024 * kilobyte;

inline constexpr FileLimit calibration{"a calibration", 64 * kilobyte};
inline constexpr FileLimit calibrationText{"a calibration as text", megabyte};
inline constexpr FileLimit table{"a table as text", 256 * kilobyte};
inline constexpr FileLimit reply{"a reply in hexadecimal", 64 * kilobyte};
/// Half of what a trace may take on the disk, and a piece.
inline constexpr FileLimit trace{"a wire trace", 20 * megabyte};
inline constexpr FileLimit firmware{"a firmware", 16 * megabyte};
inline constexpr FileLimit image{"an S-record image", megabyte};
/// More than an hour at fifty lines a second.
inline constexpr FileLimit datalog{"a datalog", 64 * megabyte};
/// Markers of a log: some thousands.
inline constexpr FileLimit logMarks{"the markers of a datalog", megabyte};
/// One that is read row by row: a day and a night at fifty lines a second.
inline constexpr FileLimit datalogByRows{"a datalog", std::size_t{4096} * megabyte};
inline constexpr FileLimit settings{"a settings file", megabyte};
/// It names a process, a program and a machine.
inline constexpr FileLimit lock{"a lock file", 4 * kilobyte};
/// It holds the log that was imported last.
inline constexpr FileLimit database{"a reference database", std::size_t{8192} * megabyte};
/// Any row, text or answer of it.
inline constexpr FileLimit databaseText{"a row of the reference database", megabyte};
/// One line that the system tells of a device.
inline constexpr FileLimit deviceFact{"a fact about a device", 4 * kilobyte};
/// A photograph of a camera.
inline constexpr FileLimit picture{"a picture", 16 * megabyte};
inline constexpr FileLimit pictureList{"a list of pictures", 64 * kilobyte};
inline constexpr FileLimit guideIndex{"the index of a guide", 8 * megabyte};
inline constexpr FileLimit guidePage{"a page of a guide", 8 * megabyte};
inline constexpr FileLimit helpEntry{"the entry of the help", 64 * kilobyte};
inline constexpr FileLimit seeds{"a seed table", 16 * megabyte};
inline constexpr FileLimit simulatedMemory{"the memory of a simulated unit", 64 * kilobyte};
inline constexpr FileLimit simulatedState{"the state of a simulated unit", kilobyte};
}  // namespace limits

/// What stands there is no file, or is longer than its limit: another try finds the same.
class UnfitFile : public FileError {
 public:
    using FileError::FileError;
};

/// The whole of a file.
std::string readFile(const std::string& path, const FileLimit& limit);
/// Nothing only where the system says that there is no such file; whatever else fails is a failure.
std::optional<std::string> readFileIfThere(const std::string& path, const FileLimit& limit);
/// At most the first `most` bytes, however long the file is.
std::string readFileStart(const std::string& path, std::size_t most);
/// What comes until the end of a stream, such as the standard input. `name` is told.
std::string readStream(int descriptor, const std::string& name, const FileLimit& limit);

/// For whoever has a file read by a library: throws where it is no file, or longer than the limit. A file
/// that is missing is left to the library.
void checkFile(const std::string& path, const FileLimit& limit);

}  // namespace zentaq
