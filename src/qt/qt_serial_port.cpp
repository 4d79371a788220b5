#include "qt/qt_serial_port.h"

#include <sys/ioctl.h>
#include <termios.h>

#include <span>

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

/// What comes in a millisecond, the time from one call of service() to the next.
constexpr std::size_t bytesInATick = 4;

/// Bytes that wait in the driver; -1 when the device is gone.
int waitingBytes(int handle) {
    int count = 0;
    return ::ioctl(handle, FIONREAD, &count) == 0 ? count : -1;
}

}  // namespace

QtSerialPort::QtSerialPort(const Clock& clock, PortSource ports) : clock_(clock), ports_(std::move(ports)) {
    connect(&device_, &QSerialPort::readyRead, this, &QtSerialPort::keep);
    // The device cannot be closed from inside its own signal: service() does it. Qt also calls it an error
    // when a notice of bytes comes that drain() has taken already, so the system is asked whether the line is
    // there.
    connect(&device_, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError error) {
        if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError) return;
        const auto handle = static_cast<int>(device_.handle());
        if (waitingBytes(handle) < 0 || hungUp(handle)) lost_ = true;
    });
}

QtSerialPort::~QtSerialPort() {
    // Qt reports the end of a device that is destroyed while open; nobody listens any more.
    device_.disconnect(this);
}

void QtSerialPort::open(int number) {
    close();
    const PortInfo port = portOfNumber(ports_(), number);
    if (!openDevice(port.device)) {
        throw Failure("Port " + numberText(number) + " (" + port.device + "): " + openError_);
    }
    keeper_.keep(port);
    number_ = number;
    heard_ = false;
    tell(&LineWatch::opened, port, clock_.monotonicUs());
    nextNumberUs_ = clock_.monotonicUs() + numberUs;
}

void QtSerialPort::close() {
    if (isOpen()) tell(&LineWatch::closed, clock_.monotonicUs());
    keeper_.forget();
    closeDevice();
    gate_.take();
    lost_ = false;
}

bool QtSerialPort::openDevice(const std::string& device) {
    lost_ = false;
    // Qt sets a line up as soon as it opens it. Another program in the middle of a transfer must not notice
    // that this one wants the port, so the lock comes first.
    LockedLine locked = openLocked(device);
    if (!locked.line.valid()) {
        openError_ = locked.trouble;
        return false;
    }
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
    lock_ = std::move(locked);
    // A reply that nobody read must not answer the first question.
    device_.clear();
    lost_ = false;
    gate_.take();
    for (QSocketNotifier* notices : device_.findChildren<QSocketNotifier*>()) {
        if (notices->type() == QSocketNotifier::Read) notices_ = notices;
    }
    listen();
    keeper_.lookLater(clock_.monotonicUs());
    return true;
}

// A port that gives its bytes one by one would wake the program for each of them, thousands of times a
// second. service() takes them once a millisecond; only the end of a reply is waited for by the byte.
void QtSerialPort::listen() {
    if (!notices_) return;
    const std::size_t missing = gate_.missing();
    notices_->setEnabled(missing > 0 && missing <= bytesInATick);
}

std::vector<std::uint8_t> QtSerialPort::read() {
    std::vector<std::uint8_t> bytes = gate_.take();
    listen();
    return bytes;
}

void QtSerialPort::setReceiveThreshold(int bytes) {
    gate_.threshold(bytes);
    listen();
}

void QtSerialPort::closeDevice() {
    if (!device_.isOpen()) return;
    // The system would wait for half a minute until a stuck line has taken what is left.
    ::tcflush(static_cast<int>(device_.handle()), TCOFLUSH);
    // Qt puts the settings back that it found: under the lock, like everything else.
    device_.close();
    lock_.line.reset();
    lock_.lock.reset();
}

void QtSerialPort::write(std::string_view bytes) {
    ++writes_;
    // While the device is away bytes go nowhere, as with a pulled cable.
    if (!device_.isOpen() || lost_) return;
    // A line that takes nothing must not fill the memory; what is not answered is told by the time-outs.
    if (device_.bytesToWrite() > mostWaiting) return;
    if (device_.write(bytes.data(), static_cast<qint64>(bytes.size())) < 0) {
        lost_ = true;
        return;
    }
    device_.flush();
    tell(&LineWatch::written, bytes, clock_.monotonicUs());
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
    tell(&LineWatch::delivered, gate_.size(), clock_.monotonicUs());
    raise(CommEvent::DataReceived);
    return true;
}

// After a pause of the event loop the driver may hold more than Qt has noticed.
void QtSerialPort::drain() {
    const int waiting = waitingBytes(static_cast<int>(device_.handle()));
    if (waiting < 0) lost_ = true;
    if (waiting > 0) device_.waitForReadyRead(0);
    if (device_.bytesAvailable() > 0) keep();
}

void QtSerialPort::keep() {
    const QByteArray bytes = device_.readAll();  // this also turns the notices on again
    if (bytes.isEmpty()) return listen();
    heard_ = true;
    const auto* first = reinterpret_cast<const std::uint8_t*>(bytes.constData());
    const std::span lump(first, static_cast<std::size_t>(bytes.size()));
    const std::int64_t nowUs = clock_.monotonicUs();
    gate_.received(lump, nowUs);
    listen();
    tell(&LineWatch::arrived, lump, nowUs);
}

void QtSerialPort::checkLine(std::int64_t nowUs) {
    if (!keeper_.timeToLook(nowUs)) return;
    if (hungUp(static_cast<int>(device_.handle()))) lost_ = true;
}

void QtSerialPort::lose() {
    closeDevice();
    gate_.take();
    lost_ = false;
    keeper_.lookLater(clock_.monotonicUs());
    tell(&LineWatch::lost, keeper_.device(), clock_.monotonicUs());
}

void QtSerialPort::lookForDevice(std::int64_t nowUs) {
    if (!keeper_.timeToLook(nowUs)) return;
    const auto port = keeper_.findIn(ports_());
    // A device node that has just been made may not be open to users yet: the next look tries again.
    if (!port || !openDevice(port->device)) return;
    keeper_.keep(*port);
    tell(&LineWatch::returned, *port, clock_.monotonicUs());
}

// A user who has named no device, and plugs the adapter in after the start, means that adapter, though
// another port had its number until then. A device that has spoken is the unit's and is kept, whatever its
// number becomes.
void QtSerialPort::followNumber(std::int64_t nowUs) {
    if (heard_ || !followsNumber_ || nowUs < nextNumberUs_) return;
    nextNumberUs_ = nowUs + numberUs;
    for (const PortInfo& port : ports_()) {
        if (port.number != number_ || port.identity == keeper_.device().identity) continue;
        // Whoever was told that the device had gone is waiting for its return.
        const auto news = present() ? &LineWatch::opened : &LineWatch::returned;
        closeDevice();
        keeper_.keep(port);
        if (!openDevice(port.device)) return lose();
        tell(news, port, clock_.monotonicUs());
        return;
    }
}

}  // namespace zentaq
