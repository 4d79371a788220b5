#include "platform/locked_line.h"

#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>

#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <system_error>

#include "platform/name_holder.h"

namespace zentaq {

namespace {

constexpr std::string_view portBusyWords = "in use by another program";

/// The group that may use a device. Where the device does not tell one that helps, the usual one of systems.
std::string groupOf(const std::string& device) {
    constexpr std::string_view usual = "dialout";
    struct stat about {};
    if (::stat(device.c_str(), &about) != 0 || about.st_gid == 0) return std::string(usual);
    const group* entry = ::getgrgid(about.st_gid);
    return entry == nullptr ? std::string(usual) : entry->gr_name;
}

/// Made of the device's number, since one device may have several paths.
std::string nameOfClaim(const struct stat& device) {
    return "zentaq4-line-" + std::to_string(major(device.st_rdev)) + "-" +
           std::to_string(minor(device.st_rdev));
}

/// A name that belongs to one process at a time and goes with it, however it ends.
PosixHandle claimOf(const std::string& name) {
    PosixHandle claim(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
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

/// The name needs no right to the device, so whoever holds it is told: a user can see whether it is a program
/// that may have the port. To find it is to look through all processes, so one that tries again and again
/// asks once a second.
std::string wordsForHolder(const struct stat& device) {
    using Clock = std::chrono::steady_clock;
    struct Asked {
        std::string name;
        Clock::time_point when;
        std::string holder;
    };
    thread_local Asked last;
    const std::string name = nameOfClaim(device);
    const auto now = Clock::now();
    if (last.name != name || now - last.when >= std::chrono::seconds(1))
        last = {name, now, holderOfName(name)};
    return std::string(portBusyWords) + (last.holder.empty() ? "" : ": " + last.holder);
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

std::string openingTrouble(const std::string& device, int error) {
    switch (error) {
        case EACCES:
        case EPERM: {
            const std::string group = groupOf(device);
            return "you may not use it: join the group " + group + " (sudo usermod -aG " + group +
                   " $USER) and log in again";
        }
        case EBUSY:
            return std::string(portBusyWords);
        case ENXIO:
        case ENODEV:
        case EIO:
            return "the adapter has gone";
        default:
            return std::generic_category().message(error);
    }
}

LockedLine openLocked(const std::string& device) {
    LockedLine locked;
    struct stat about {};
    if (::stat(device.c_str(), &about) != 0) {
        locked.trouble = openingTrouble(device, errno);
    } else if (!S_ISCHR(about.st_mode)) {
        locked.trouble = "no serial port";
    } else if (locked.lock = claimOf(nameOfClaim(about)); !locked.lock.valid()) {
        locked.busy = errno == EADDRINUSE;
        locked.trouble = locked.busy ? wordsForHolder(about) : "cannot be locked";
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
