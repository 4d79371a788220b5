// The serial port for programs without Qt: 38400,N,8,1 over the system's terminal interface, whole replies
// through the gate, and a device that may be pulled and plugged again. Never waits; its owner polls.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/errors.h"
#include "platform/clock.h"
#include "platform/device_keeper.h"
#include "platform/posix_handle.h"
#include "platform/receive_gate.h"
#include "platform/serial_port.h"

namespace zentaq {

/// The port is there, but another program has it.
class PortBusy : public Failure {
 public:
    using Failure::Failure;
};

class PosixSerialPort : public SerialPort {
 public:
    using PortSource = std::function<std::vector<PortInfo>()>;

    /// How often a vanished device is looked for.
    static constexpr std::int64_t lookUs = DeviceKeeper::lookUs;
    /// While this many bytes wait for a line that takes none, further commands go nowhere.
    static constexpr std::size_t mostWaiting = 4096;

    PosixSerialPort(const Clock& clock, PortSource ports) : clock_(clock), ports_(std::move(ports)) {}

    /// Throws PortBusy while another program has the port, Failure where it is absent or no serial port.
    void open(int number) override;
    void close() override;
    /// True also while the device is away: it is looked for by its identity until close().
    bool isOpen() const override { return keeper_.keeps(); }
    /// Whether the device is there at this moment.
    bool present() const { return line_.valid(); }

    /// What the line does not take at once leaves with the next service(). While the device is away bytes
    /// go nowhere, as with a pulled cable; so they do behind `mostWaiting` that the line does not take.
    void write(std::string_view bytes) override;
    std::vector<std::uint8_t> read() override { return gate_.take(); }
    void setReceiveThreshold(int bytes) override { gate_.threshold(bytes); }
    std::vector<PortInfo> list() const override { return ports_(); }

    /// Takes what the line has brought, delivers a batch that is due, looks for a vanished device. Never to
    /// be called from inside onEvent's handler. True: a batch was delivered.
    bool service();
    /// For poll(): ready to read when bytes came. -1 while the device is away.
    int descriptor() const { return line_.get(); }
    /// For poll(): bytes wait until the line takes them.
    bool wantsToWrite() const { return !outgoing_.empty(); }
    /// Counts the calls of write().
    std::uint64_t writes() const { return writes_; }
    /// When service() delivers a reply that is there, if no further byte comes.
    std::optional<std::int64_t> nextDueUs() const { return gate_.nextDueUs(); }

 private:
    void openDevice(const std::string& device);
    void setUp(int line) const;
    void send();
    void drain();
    void lose();
    void dropLine();
    void lookForDevice(std::int64_t nowUs);

    const Clock& clock_;
    PortSource ports_;
    PosixHandle lock_;  ///< of the open line
    PosixHandle line_;
    ReceiveGate gate_;
    DeviceKeeper keeper_;
    std::string outgoing_;
    bool lost_ = false;
    std::uint64_t writes_ = 0;
};

}  // namespace zentaq
