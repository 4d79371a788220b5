// Keeps the programs of this system from changing one file at the same time: who changes a file holds its
// lock from the read to the rename of what takes its place, or the change of another one would be lost.
#pragma once

#include <chrono>
#include <string>

#include "platform/posix_handle.h"

namespace zentaq {

class FileLock {
 public:
    /// A slow disk may keep the other program for seconds.
    static constexpr std::chrono::milliseconds usualPatience{30'000};

    /// Waits until nobody else holds the lock of the file at `path`, at the end of its links. A file that is
    /// not there yet has none, nor has one of a file system without locks. Throws FileError when the
    /// other program does not end in time.
    explicit FileLock(const std::string& path, std::chrono::milliseconds patience = usualPatience);

 private:
    PosixHandle file_;
};

}  // namespace zentaq
