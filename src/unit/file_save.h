// One save of a calibration as plain data: the bytes, the file, and what the file is known to hold. The work
// itself touches nothing but the disk, so that it may be done beside the thread of the program.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace zentaq {

struct FileSave {
    std::string path;
    std::string start;  ///< written over the start of the file
    /// What the file began with when it was read or saved last. Nothing: whatever is there is replaced.
    std::optional<std::string> known;
};

struct FileSaved {
    enum class Outcome {
        Done,
        Changed,  ///< the file holds something else than is known; nothing was written
        Failed
    };
    Outcome outcome = Outcome::Failed;
    std::string why;    ///< of a failure
    std::string holds;  ///< what the file begins with now; not after a failure
};

/// As much as is compared of a file: more than a calibration has.
constexpr std::size_t knownBytes = 16384;

/// The start of a file, to be known later. Throws FileError.
std::string knownStart(const std::string& path);

/// Under the file's lock: looks, writes, flushes, renames. Never throws.
FileSaved saveFile(const FileSave& save);

}  // namespace zentaq
