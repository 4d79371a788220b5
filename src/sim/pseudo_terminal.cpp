#include "sim/pseudo_terminal.h"

#include <fcntl.h>
#include <termios.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "base/errors.h"

namespace zentaq::sim {

namespace {

[[noreturn]] void fail(const std::string& what) {
    throw FileError("Cannot " + what + ": " + std::strerror(errno));
}

// Bytes pass as they are: no echo, no line editing, no signals from control characters.
void makeRaw(int terminal) {
    termios settings{};
    if (::tcgetattr(terminal, &settings) != 0) fail("read the terminal's settings");
    ::cfmakeraw(&settings);
    ::cfsetspeed(&settings, B38400);
    if (::tcsetattr(terminal, TCSANOW, &settings) != 0) fail("set up the terminal");
}

}  // namespace

PseudoTerminal::PseudoTerminal() {
    master_ = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!master_.valid()) fail("open a pseudo-terminal");
    if (::grantpt(master_.get()) != 0 || ::unlockpt(master_.get()) != 0) fail("unlock the pseudo-terminal");
    std::array<char, 128> name{};
    if (::ptsname_r(master_.get(), name.data(), name.size()) != 0) fail("name the pseudo-terminal");
    devicePath_ = name.data();
    slave_ = FileDescriptor(::open(devicePath_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    if (!slave_.valid()) fail("open " + devicePath_);
    makeRaw(slave_.get());
}

std::vector<std::uint8_t> PseudoTerminal::read() {
    std::array<std::uint8_t, 4096> buffer;
    const auto count = ::read(master_.get(), buffer.data(), buffer.size());
    if (count <= 0) return {};
    return {buffer.begin(), buffer.begin() + count};
}

void PseudoTerminal::write(std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(master_.get(), bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return;
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

}  // namespace zentaq::sim
