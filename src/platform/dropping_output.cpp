#include "platform/dropping_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

namespace zentaq {

namespace {

/// The setting "does not wait" belongs to the opened file, which the shell and others share: a second opening
/// has one of its own. Fails for a terminal of another user.
PosixHandle openedAgain(int descriptor) {
    const std::string name = "/proc/self/fd/" + std::to_string(descriptor);
    return PosixHandle(::open(name.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
}

/// A byte at a time, since a terminal that takes some may wait for the rest.
void writeWhileTaken(int descriptor, std::string_view text) {
    for (const char letter : text) {
        pollfd room{descriptor, POLLOUT, 0};
        if (::poll(&room, 1, 0) != 1 || (room.revents & POLLOUT) == 0) return;
        if (::write(descriptor, &letter, 1) != 1) return;
    }
}

}  // namespace

DroppingOutput::DroppingOutput(int descriptor) : descriptor_(descriptor) {
    struct stat about {};
    if (::fstat(descriptor, &about) != 0) return;
    if (S_ISSOCK(about.st_mode)) way_ = Way::Socket;
    // A file takes everything, and a second opening of it would begin at its start.
    if (!S_ISCHR(about.st_mode) && !S_ISFIFO(about.st_mode)) return;
    own_ = openedAgain(descriptor);
    way_ = own_.valid() ? Way::OwnTerminal : Way::Polled;
}

void DroppingOutput::write(std::string_view text) const {
    ssize_t written = 0;
    switch (way_) {
        case Way::Plain:
            do {
                written = ::write(descriptor_, text.data(), text.size());
            } while (written < 0 && errno == EINTR);
            break;
        case Way::Socket:
            written = ::send(descriptor_, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
            break;
        case Way::OwnTerminal:
            written = ::write(own_.get(), text.data(), text.size());
            break;
        case Way::Polled:
            writeWhileTaken(descriptor_, text);
            break;
    }
    static_cast<void>(written);
}

}  // namespace zentaq
