#include "platform/posix_serial_port.h"

#include <sys/ioctl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <span>
#include <system_error>

#include "base/number_text.h"
#include "platform/locked_line.h"

namespace zentaq {

namespace {

/// One look takes no more than this, so that a line that floods cannot hold the program.
constexpr std::size_t mostPerLook = 16'384;

std::string reasonOf(int error) {
    return std::generic_category().message(error);
}

}  // namespace

void PosixSerialPort::open(int number) {
    close();
    const std::vector<PortInfo> ports = ports_();
    const auto found = std::ranges::find(ports, number, &PortInfo::number);
    if (found == ports.end()) throw Failure("Port " + numberText(number) + " is not present");
    const PortInfo port = *found;
    openDevice(port);
    device_ = port;
    number_ = number;
    heard_ = false;
    tell(&LineWatch::opened, port, clock_.monotonicUs());
    nextNumberUs_ = clock_.monotonicUs() + numberUs;
}

void PosixSerialPort::close() {
    if (isOpen()) tell(&LineWatch::closed, clock_.monotonicUs());
    device_.reset();
    dropLine();
}

void PosixSerialPort::openDevice(const PortInfo& port) {
    LockedLine locked = openLocked(port.device);
    if (!locked.line.valid()) {
        const std::string name =
            manner_.tellsNumber ? "Port " + numberText(port.number) + " (" + port.device + ")" : port.device;
        if (locked.busy) throw PortBusy(name + ": " + locked.trouble);
        throw Failure(name + ": " + locked.trouble);
    }
    found_ = setUp(locked.line.get());
    if (manner_.exclusive) ::ioctl(locked.line.get(), TIOCEXCL);
    // A reply that nobody read must not answer the first question.
    ::tcflush(locked.line.get(), TCIOFLUSH);
    line_ = std::move(locked.line);
    lock_ = std::move(locked.lock);
    lost_ = false;
}

termios PosixSerialPort::setUp(int line) {
    termios found{};
    bool done = ::tcgetattr(line, &found) == 0;
    termios settings = found;
    ::cfmakeraw(&settings);
    settings.c_cflag |= CLOCAL | CREAD;
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS);
    // One byte at least: then a line at rest and one that has hung up answer a read differently.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    done = done && ::cfsetspeed(&settings, B38400) == 0 && ::tcsetattr(line, TCSANOW, &settings) == 0;
    if (!done) throw Failure("The port cannot be set to 38400 baud: " + reasonOf(errno));
    return found;
}

void PosixSerialPort::write(std::string_view bytes) {
    ++writes_;
    // What is not answered is told by the time-outs.
    if (!line_.valid() || outgoing_.size() > mostWaiting) return;
    outgoing_ += bytes;
    send();
    tell(&LineWatch::written, bytes, clock_.monotonicUs());
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
    followNumber(clock_.monotonicUs());
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
    tell(&LineWatch::delivered, gate_.size(), clock_.monotonicUs());
    raise(CommEvent::DataReceived);
    return true;
}

void PosixSerialPort::drain() {
    std::array<std::uint8_t, 4096> buffer;
    std::size_t taken = 0;
    while (!lost_ && taken < mostPerLook) {
        const auto count = ::read(line_.get(), buffer.data(), buffer.size());
        if (count > 0) {
            const std::span<const std::uint8_t> lump(buffer.data(), static_cast<std::size_t>(count));
            taken += lump.size();
            heard_ = true;
            const std::int64_t nowUs = clock_.monotonicUs();
            gate_.received(lump, nowUs);
            tell(&LineWatch::arrived, lump, nowUs);
        } else if (count == 0) {
            // A program that sets the line without asking for its lock may let reads answer nothing.
            lost_ = hungUp(line_.get());
            return;
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            lost_ = true;
        }
    }
}

void PosixSerialPort::lose() {
    dropLine();
    tell(&LineWatch::lost, *device_, clock_.monotonicUs());
}

void PosixSerialPort::dropLine() {
    if (line_.valid()) {
        // The system would wait for half a minute until a stuck line has taken what is left.
        ::tcflush(line_.get(), TCOFLUSH);
        // Under the lock, like everything else. A line that has vanished takes nothing any more.
        if (manner_.restores) ::tcsetattr(line_.get(), TCSANOW, &found_);
        if (manner_.exclusive) ::ioctl(line_.get(), TIOCNXCL);
    }
    line_.reset();
    lock_.reset();
    gate_.take();
    outgoing_.clear();
    lost_ = false;
    nextLookUs_ = clock_.monotonicUs() + lookUs;
}

void PosixSerialPort::lookForDevice(std::int64_t nowUs) {
    if (nowUs < nextLookUs_) return;
    nextLookUs_ = nowUs + lookUs;
    const std::vector<PortInfo> ports = ports_();
    const auto port = std::ranges::find(ports, device_->identity, &PortInfo::identity);
    // A device node that has just been made may not be open to users yet: the next look tries again.
    if (port == ports.end() || !skipFailing([&] { openDevice(*port); })) return;
    device_ = *port;
    tell(&LineWatch::returned, *port, clock_.monotonicUs());
}

// A user who has named no device, and plugs the adapter in after the start, means that adapter, though
// another port had its number until then. A device that has spoken is the unit's and is kept, whatever its
// number becomes.
void PosixSerialPort::followNumber(std::int64_t nowUs) {
    if (heard_ || !followsNumber_ || nowUs < nextNumberUs_) return;
    nextNumberUs_ = nowUs + numberUs;
    for (const PortInfo& port : ports_()) {
        if (port.number != number_ || port.identity == device_->identity) continue;
        // Whoever was told that the device had gone is waiting for its return.
        const auto news = present() ? &LineWatch::opened : &LineWatch::returned;
        dropLine();
        device_ = port;
        if (!skipFailing([&] { openDevice(port); })) return lose();
        tell(news, port, clock_.monotonicUs());
        return;
    }
}

}  // namespace zentaq
