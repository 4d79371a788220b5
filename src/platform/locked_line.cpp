#include "platform/locked_line.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>

#include <cerrno>

#include "platform/device_keeper.h"

namespace zentaq {

LockedLine openLocked(const std::string& device) {
    LockedLine locked;
    locked.line = PosixHandle(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!locked.line.valid()) {
        locked.busy = errno == EBUSY;
        locked.trouble = openingTrouble(device, errno);
    } else if (::isatty(locked.line.get()) == 0) {
        locked.trouble = "no serial port";
        locked.line.reset();
    } else if (::flock(locked.line.get(), LOCK_EX | LOCK_NB) != 0) {
        locked.busy = true;
        locked.trouble = portBusyWords;
        locked.line.reset();
    }
    return locked;
}

bool hungUp(int line) {
    pollfd watched{line, 0, 0};
    return ::poll(&watched, 1, 0) > 0 && (watched.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

}  // namespace zentaq
