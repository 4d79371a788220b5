#include "platform/locked_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

#include <cerrno>
#include <cstddef>
#include <cstring>

#include "platform/device_keeper.h"

namespace zentaq {

namespace {

/// A name that belongs to one process at a time and goes with it, however it ends. Made of the device's number,
/// since one device may have several paths.
PosixHandle claimOf(const struct stat& device) {
    PosixHandle claim(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const std::string name = "zentaq4-line-" + std::to_string(major(device.st_rdev)) + "-" +
                             std::to_string(minor(device.st_rdev));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The first byte stays 0: a name outside the file system.
    std::memcpy(address.sun_path + 1, name.data(), name.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    if (::bind(claim.get(), reinterpret_cast<const sockaddr*>(&address), length) == 0) return claim;
    const int error = errno;
    claim.reset();
    errno = error;
    return claim;
}

void openUnderLock(LockedLine& locked, const std::string& device) {
    locked.line = PosixHandle(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!locked.line.valid()) {
        locked.busy = errno == EBUSY;
        locked.trouble = openingTrouble(device, errno);
    } else if (::isatty(locked.line.get()) == 0) {
        locked.trouble = "no serial port";
    } else if (::flock(locked.line.get(), LOCK_EX | LOCK_NB) != 0) {
        locked.busy = true;
        locked.trouble = portBusyWords;
    }
}

}  // namespace

LockedLine openLocked(const std::string& device) {
    LockedLine locked;
    struct stat about {};
    if (::stat(device.c_str(), &about) != 0) {
        locked.trouble = openingTrouble(device, errno);
    } else if (!S_ISCHR(about.st_mode)) {
        locked.trouble = "no serial port";
    } else if (locked.lock = claimOf(about); !locked.lock.valid()) {
        locked.busy = errno == EADDRINUSE;
        locked.trouble = locked.busy ? std::string(portBusyWords) : "cannot be locked";
    } else {
        openUnderLock(locked, device);
    }
    if (!locked.trouble.empty()) {
        locked.line.reset();
        locked.lock.reset();
    }
    return locked;
}

bool hungUp(int line) {
    pollfd watched{line, 0, 0};
    return ::poll(&watched, 1, 0) > 0 && (watched.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

}  // namespace zentaq
