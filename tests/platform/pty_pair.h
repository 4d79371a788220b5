// A pair of terminals: the program opens one end like a serial port, the test plays the unit on the other
// one.
#pragma once

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/locked_line.h"

namespace zentaq {

class PtyPair {
 public:
    PtyPair() {
        char name[128] = {};
        int slave = -1;
        if (::openpty(&master_, &slave, name, nullptr, nullptr) != 0) throw std::runtime_error("no pty");
        termios line{};
        ::tcgetattr(slave, &line);
        ::cfmakeraw(&line);
        ::tcsetattr(slave, TCSANOW, &line);
        ::close(slave);
        path_ = name;
        waitForLastOwner();
    }
    ~PtyPair() { hangUp(); }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;

    const std::string& path() const { return path_; }

    /// The cable is pulled.
    void hangUp() {
        if (master_ >= 0) ::close(master_);
        master_ = -1;
    }
    void send(std::string_view bytes) const {
        if (::write(master_, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
            throw std::runtime_error("pty write");
        }
    }
    /// Sends what the line takes within a few milliseconds; answers how much that was.
    std::size_t sendSome(std::string_view bytes) const {
        pollfd end{master_, POLLOUT, 0};
        if (::poll(&end, 1, 5) != 1) return 0;
        const auto count = ::write(master_, bytes.data(), bytes.size());
        return count > 0 ? static_cast<std::size_t>(count) : 0;
    }
    /// Whether the program has written something within so many milliseconds.
    bool waitForBytes(int ms) const {
        pollfd end{master_, POLLIN, 0};
        return ::poll(&end, 1, ms) == 1 && (end.revents & POLLIN) != 0;
    }
    /// What the program has written so far; never waits.
    std::string received() const {
        int count = 0;
        ::ioctl(master_, FIONREAD, &count);
        std::string bytes(static_cast<std::size_t>(count), '\0');
        if (count > 0) bytes.resize(static_cast<std::size_t>(::read(master_, bytes.data(), bytes.size())));
        return bytes;
    }

 private:
    /// The number may come from a test beside this one whose cable has just been pulled: its program keeps
    /// the claim on the device a moment longer.
    void waitForLastOwner() const {
        for (int ms = 0; ms < 2000 && openLocked(path_).busy; ++ms) ::poll(nullptr, 0, 1);
    }

    int master_ = -1;
    std::string path_;
};

/// Where a unit of this name announces its terminal.
inline void announce(const std::filesystem::path& folder, const std::string& name,
                     const std::string& terminal) {
    std::filesystem::remove(folder / name);
    std::filesystem::create_symlink(terminal, folder / name);
}

}  // namespace zentaq
