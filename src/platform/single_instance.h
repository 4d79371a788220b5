// Whether another instance of the program runs for this user. The lock belongs to the running process and
// goes with it, however it ends: no crash and no process number used again can leave it behind.
#pragma once

#include <filesystem>

namespace zentaq {

class SingleInstance {
 public:
    /// Claims the lock file, made where missing. A file that cannot be made or locked (its folder is missing
    /// or write-protected, the file system knows no locks) stops nobody: anotherRuns() is false then.
    explicit SingleInstance(const std::filesystem::path& lockFile);
    /// The lock of this program and user: beside the folder of the ports, or in the user's home where that
    /// folder does not count.
    SingleInstance();
    ~SingleInstance();
    SingleInstance(const SingleInstance&) = delete;
    SingleInstance& operator=(const SingleInstance&) = delete;

    bool anotherRuns() const { return anotherRuns_; }
    /// This object holds the lock.
    bool holds() const { return file_ >= 0; }

 private:
    void claim(const std::filesystem::path& lockFile);

    int file_ = -1;
    bool anotherRuns_ = false;
};

}  // namespace zentaq
