// The serial port on Qt: 38400,N,8,1, whole replies through the gate, and a device that may be pulled and
// plugged again. It is remembered by its identity, so that it comes back even under another number.
#pragma once

#include <QObject>
#include <QPointer>
#include <QSerialPort>
#include <QSocketNotifier>
#include <functional>
#include <string>

#include "platform/clock.h"
#include "platform/device_keeper.h"
#include "platform/locked_line.h"
#include "platform/receive_gate.h"
#include "platform/serial_port.h"

namespace zentaq {

class QtSerialPort : public QObject, public SerialPort {
    Q_OBJECT

 public:
    using PortSource = std::function<std::vector<PortInfo>()>;

    /// How often a vanished device is looked for.
    static constexpr std::int64_t lookUs = DeviceKeeper::lookUs;
    /// A reply is whole when enough bytes are there and none has come for one and a half character times.
    /// Every frame waits for it, and a byte that comes later than that is dropped before the next command.
    static constexpr std::int64_t quietUs = 390;
    /// How often the number of a device that has never said anything is looked up again.
    static constexpr std::int64_t numberUs = 1'000'000;
    /// While this many bytes wait for a line that takes none, further commands go nowhere.
    static constexpr std::int64_t mostWaiting = 4096;

    explicit QtSerialPort(const Clock& clock, PortSource ports);
    ~QtSerialPort() override;

    void open(int number) override;
    void close() override;
    /// True also while the device is away: it is looked for until close().
    bool isOpen() const override { return keeper_.keeps(); }
    /// Whether the device is there at this moment.
    bool present() const { return device_.isOpen(); }

    void write(std::string_view bytes) override;
    std::vector<std::uint8_t> read() override;
    void setReceiveThreshold(int bytes) override;
    std::vector<PortInfo> list() const override { return ports_(); }
    void followsNumber(bool follows) override { followsNumber_ = follows; }

    /// Takes what the line has brought, delivers a batch that is due, looks for a vanished device.
    /// To be called about once a millisecond, never from inside onEvent's handler. True: a batch was
    /// delivered.
    bool service();
    /// Counts the calls of write().
    std::uint64_t writes() const { return writes_; }
    /// A whole reply is there and waits for the line to be quiet.
    bool settling() const { return gate_.nextDueUs().has_value(); }

 private:
    bool openDevice(const std::string& device);
    void drain();
    void listen();
    void keep();
    void lose();
    void closeDevice();
    void checkLine(std::int64_t nowUs);
    void lookForDevice(std::int64_t nowUs);
    void followNumber(std::int64_t nowUs);

    const Clock& clock_;
    PortSource ports_;
    LockedLine lock_;  ///< of the open device; it outlives what Qt does when it closes
    QSerialPort device_;
    QPointer<QSocketNotifier> notices_;  ///< Qt's own, of each byte that comes
    ReceiveGate gate_{quietUs};
    DeviceKeeper keeper_;
    std::string openError_;
    int number_ = 0;
    bool heard_ = false;  ///< the device has sent something since open()
    bool lost_ = false;
    bool followsNumber_ = true;
    std::uint64_t writes_ = 0;
    std::int64_t nextNumberUs_ = 0;
};

}  // namespace zentaq
