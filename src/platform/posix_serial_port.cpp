#include "platform/posix_serial_port.h"

#include <fcntl.h>
#include <sys/file.h>
#include <termios.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <system_error>

#include "base/number_text.h"

namespace zentaq {

namespace {

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

}  // namespace

void PosixSerialPort::open(int number) {
    close();
    const std::vector<PortInfo> ports = ports_();
    const auto port = std::ranges::find(ports, number, &PortInfo::number);
    if (port == ports.end()) throw Failure("Port " + numberText(number) + " is not present");
    openDevice(port->device);
    identity_ = port->identity;
}

void PosixSerialPort::close() {
    identity_.clear();
    lose();
}

void PosixSerialPort::openDevice(const std::string& device) {
    PosixHandle line(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
    if (!line.valid()) {
        if (errno == EBUSY) throw PortBusy(device + ": in use by another program");
        throw Failure(device + ": " + reasonOf(errno));
    }
    if (::isatty(line.get()) == 0) throw Failure(device + ": no serial port");
    // Before anything is set: the program that has the port must not lose its settings.
    if (::flock(line.get(), LOCK_EX | LOCK_NB) != 0) throw PortBusy(device + ": in use by another program");
    setUp(line.get());
    // A reply that nobody read must not answer the first question.
    ::tcflush(line.get(), TCIOFLUSH);
    line_ = std::move(line);
    lost_ = false;
}

void PosixSerialPort::setUp(int line) const {
    termios settings{};
    bool done = ::tcgetattr(line, &settings) == 0;
    ::cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    // One byte at least: then a read of nothing tells that the line has hung up.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    done = done && ::cfsetspeed(&settings, B38400) == 0 && ::tcsetattr(line, TCSANOW, &settings) == 0;
    if (!done) throw Failure("The port cannot be set to 38400 baud: " + reasonOf(errno));
}

void PosixSerialPort::write(std::string_view bytes) {
    ++writes_;
    if (!line_.valid()) return;
    outgoing_ += bytes;
    send();
}

void PosixSerialPort::send() {
    while (!outgoing_.empty() && !lost_) {
        const auto count = ::write(line_.get(), outgoing_.data(), outgoing_.size());
        if (count > 0) {
            outgoing_.erase(0, static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            lost_ = true;
        }
    }
}

bool PosixSerialPort::service() {
    if (!isOpen()) return false;
    if (!line_.valid()) {
        lookForDevice(clock_.monotonicUs());
        return false;
    }
    send();
    drain();
    if (lost_) {
        lose();
        return false;
    }
    if (!gate_.due(clock_.monotonicUs())) return false;
    gate_.delivered();
    raise(CommEvent::DataReceived);
    return true;
}

void PosixSerialPort::drain() {
    std::array<std::uint8_t, 4096> buffer;
    while (!lost_) {
        const auto count = ::read(line_.get(), buffer.data(), buffer.size());
        if (count > 0) {
            gate_.received(std::span(buffer.data(), static_cast<std::size_t>(count)), clock_.monotonicUs());
        } else if (count < 0 && errno == EAGAIN) {
            return;
        } else if (count == 0 || errno != EINTR) {
            lost_ = true;
        }
    }
}

void PosixSerialPort::lose() {
    line_.reset();
    gate_.take();
    outgoing_.clear();
    lost_ = false;
    nextLookUs_ = clock_.monotonicUs() + lookUs;
}

void PosixSerialPort::lookForDevice(std::int64_t nowUs) {
    if (nowUs < nextLookUs_) return;
    nextLookUs_ = nowUs + lookUs;
    const std::vector<PortInfo> ports = ports_();
    const auto port = std::ranges::find(ports, identity_, &PortInfo::identity);
    if (port == ports.end()) return;
    skipFailing([&] { openDevice(port->device); });
}

}  // namespace zentaq
