#include "unit/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <optional>
#include <thread>
#include <utility>

#include "base/errors.h"

namespace zentaq {

namespace {

using Clock = std::chrono::steady_clock;

/// For writing where it may not be read. Never blocking: opening a pipe would wait for its other end.
PosixHandle openedToLock(const std::string& path) {
    constexpr int flags = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    PosixHandle file(::open(path.c_str(), O_RDONLY | flags));
    if (!file.valid() && errno == EACCES) file = PosixHandle(::open(path.c_str(), O_WRONLY | flags));
    return file;
}

/// False where the file system knows no locks.
bool waited(const PosixHandle& file, const std::string& path, Clock::time_point end) {
    constexpr std::chrono::milliseconds pause{5};
    while (::flock(file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return false;
        if (Clock::now() >= end) {
            throw FileError("Cannot write " + path +
                            ": another program has been changing it for a while; try again");
        }
        std::this_thread::sleep_for(pause);
    }
    return true;
}

/// The one who held the lock before may have put another file in its place.
bool isStill(const PosixHandle& file, const std::string& path) {
    struct stat held {};
    struct stat named {};
    if (::fstat(file.get(), &held) != 0) return true;
    if (::stat(path.c_str(), &named) != 0) return errno != ENOENT;
    return held.st_dev == named.st_dev && held.st_ino == named.st_ino;
}

}  // namespace

FileLock::FileLock(const std::string& path, std::chrono::milliseconds patience) {
    const Clock::time_point end = Clock::now() + patience;
    while (true) {
        PosixHandle file = openedToLock(path);
        if (!file.valid() || !waited(file, path, end)) return;
        if (!isStill(file, path)) continue;
        file_ = std::move(file);
        return;
    }
}

}  // namespace zentaq
