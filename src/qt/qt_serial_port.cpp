#include "qt/qt_serial_port.h"

#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>

#include <algorithm>
#include <span>

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

/// Bytes that wait in the driver; -1 when the device is gone.
int waitingBytes(int handle) {
    int count = 0;
    return ::ioctl(handle, FIONREAD, &count) == 0 ? count : -1;
}

bool hungUp(int handle) {
    pollfd line{handle, 0, 0};
    return ::poll(&line, 1, 0) > 0 && (line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0;
}

}  // namespace

QtSerialPort::QtSerialPort(const Clock& clock, PortSource ports) : clock_(clock), ports_(std::move(ports)) {
    connect(&device_, &QSerialPort::readyRead, this, &QtSerialPort::keep);
    // The device cannot be closed from inside its own signal: service() does it.
    connect(&device_, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        if (error != QSerialPort::NoError && error != QSerialPort::TimeoutError) lost_ = true;
    });
}

QtSerialPort::~QtSerialPort() {
    // Qt reports the end of a device that is destroyed while open; nobody listens any more.
    device_.disconnect(this);
}

void QtSerialPort::open(int number) {
    close();
    const std::vector<PortInfo> ports = ports_();
    const auto port = std::find_if(ports.begin(), ports.end(),
                                   [number](const PortInfo& entry) { return entry.number == number; });
    if (port == ports.end()) throw Failure("Port " + numberText(number) + " is not present");
    if (!openDevice(port->device)) {
        throw Failure("Port " + numberText(number) + " (" + port->device + "): " + openError_);
    }
    identity_ = port->identity;
    number_ = number;
    heard_ = false;
    nextNumberUs_ = clock_.monotonicUs() + numberUs;
}

void QtSerialPort::close() {
    identity_.clear();
    if (device_.isOpen()) device_.close();
    gate_.take();
    lost_ = false;
}

bool QtSerialPort::openDevice(const std::string& device) {
    lost_ = false;
    device_.setPortName(QString::fromStdString(device));
    device_.setBaudRate(QSerialPort::Baud38400);
    device_.setDataBits(QSerialPort::Data8);
    device_.setParity(QSerialPort::NoParity);
    device_.setStopBits(QSerialPort::OneStop);
    device_.setFlowControl(QSerialPort::NoFlowControl);
    if (!device_.open(QIODevice::ReadWrite)) {
        openError_ = device_.errorString().toStdString();
        lost_ = false;
        return false;
    }
    // Qt's exclusive mode does not bind an administrator; a lock binds everybody who asks for it.
    if (::flock(device_.handle(), LOCK_EX | LOCK_NB) != 0) {
        openError_ = "in use by another program";
        device_.close();
        return false;
    }
    // A reply that nobody read must not answer the first question.
    device_.clear();
    lost_ = false;
    gate_.take();
    nextLookUs_ = clock_.monotonicUs() + lookUs;
    return true;
}

void QtSerialPort::write(std::string_view bytes) {
    ++writes_;
    // While the device is away bytes go nowhere, as with a pulled cable.
    if (!device_.isOpen() || lost_) return;
    if (device_.write(bytes.data(), static_cast<qint64>(bytes.size())) < 0) {
        lost_ = true;
        return;
    }
    device_.flush();
}

bool QtSerialPort::service() {
    if (!isOpen()) return false;
    const std::int64_t nowUs = clock_.monotonicUs();
    followNumber(nowUs);
    if (!device_.isOpen()) {
        lookForDevice(nowUs);
        return false;
    }
    drain();
    checkLine(nowUs);
    if (lost_) {
        lose();
        return false;
    }
    if (!gate_.due(clock_.monotonicUs())) return false;
    gate_.delivered();
    raise(CommEvent::DataReceived);
    return true;
}

// After a pause of the event loop the driver may hold more than Qt has noticed.
void QtSerialPort::drain() {
    const int waiting = waitingBytes(static_cast<int>(device_.handle()));
    if (waiting < 0) lost_ = true;
    if (waiting > 0) device_.waitForReadyRead(0);
    keep();
}

void QtSerialPort::keep() {
    const QByteArray bytes = device_.readAll();
    if (bytes.isEmpty()) return;
    heard_ = true;
    const auto* first = reinterpret_cast<const std::uint8_t*>(bytes.constData());
    gate_.received(std::span(first, static_cast<std::size_t>(bytes.size())), clock_.monotonicUs());
}

void QtSerialPort::checkLine(std::int64_t nowUs) {
    if (nowUs < nextLookUs_) return;
    nextLookUs_ = nowUs + lookUs;
    if (hungUp(static_cast<int>(device_.handle()))) lost_ = true;
}

void QtSerialPort::lose() {
    device_.close();
    gate_.take();
    lost_ = false;
    nextLookUs_ = clock_.monotonicUs() + lookUs;
}

void QtSerialPort::lookForDevice(std::int64_t nowUs) {
    if (nowUs < nextLookUs_) return;
    nextLookUs_ = nowUs + lookUs;
    for (const PortInfo& port : ports_()) {
        if (port.identity == identity_ && openDevice(port.device)) return;
    }
}

// A user who plugs the adapter in after the start means that adapter, though another port had its number
// until then. A device that has spoken is the unit's and is kept, whatever its number becomes.
void QtSerialPort::followNumber(std::int64_t nowUs) {
    if (heard_ || nowUs < nextNumberUs_) return;
    nextNumberUs_ = nowUs + numberUs;
    for (const PortInfo& port : ports_()) {
        if (port.number != number_ || port.identity == identity_) continue;
        if (device_.isOpen()) device_.close();
        identity_ = port.identity;
        if (!openDevice(port.device)) lose();
        return;
    }
}

}  // namespace zentaq
