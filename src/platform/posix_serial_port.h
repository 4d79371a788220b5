// The serial port: 38400,N,8,1 over the system's terminal interface, whole replies through the gate, and a
// device that may be pulled and plugged again. It is remembered by its identity, so that it comes back even
// under another number. Never waits; its owner looks after it about once a millisecond.
#pragma once

#include <termios.h>

#include <functional>
#include <optional>
#include <string>

#include "base/errors.h"
#include "platform/clock.h"
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

    /// How often a vanished device is looked for. Reading the list takes a few milliseconds; a device that is
    /// back is open within a quarter of a second.
    static constexpr std::int64_t lookUs = 250'000;
    /// While this many bytes wait for a line that takes none, further commands go nowhere.
    static constexpr std::size_t mostWaiting = 4096;
    /// How often the number of a device that has never said anything is looked up again.
    static constexpr std::int64_t numberUs = 1'000'000;

    /// What programs want differently.
    struct Manner {
        /// A reply is whole when enough bytes are there and none has come for this long.
        std::int64_t quietUs = ReceiveGate::defaultQuietUs;
        bool exclusive = false;    ///< programs that know no locks cannot open the device meanwhile
        bool tellsNumber = false;  ///< failures tell the number of the port as well
        bool restores = false;     ///< leaves the line with the settings that it had
    };

    PosixSerialPort(const Clock& clock, PortSource ports) : PosixSerialPort(clock, std::move(ports), {}) {}
    PosixSerialPort(const Clock& clock, PortSource ports, const Manner& manner)
        : clock_(clock), ports_(std::move(ports)), manner_(manner), gate_(manner.quietUs) {}
    ~PosixSerialPort() override { dropLine(); }

    /// Throws PortBusy while another program has the port, Failure where it is absent or no serial port.
    void open(int number) override;
    void close() override;
    /// True also while the device is away: it is looked for by its identity until close().
    bool isOpen() const override { return device_.has_value(); }
    /// Whether the device is there at this moment.
    bool present() const { return line_.valid(); }

    /// What the line does not take at once leaves with the next service(). While the device is away bytes
    /// go nowhere, as with a pulled cable; so they do behind `mostWaiting` that the line does not take.
    void write(std::string_view bytes) override;
    std::vector<std::uint8_t> read() override { return gate_.take(); }
    void setReceiveThreshold(int bytes) override { gate_.threshold(bytes); }
    std::vector<PortInfo> list() const override { return ports_(); }
    void followsNumber(bool follows) override { followsNumber_ = follows; }

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
    /// Bytes that are still to come before a reply is whole.
    std::size_t missing() const { return gate_.missing(); }

 private:
    void openDevice(const PortInfo& port);
    /// Answers the settings that it found.
    static termios setUp(int line);
    void send();
    void drain();
    void lose();
    void dropLine();
    void lookForDevice(std::int64_t nowUs);
    void followNumber(std::int64_t nowUs);

    const Clock& clock_;
    PortSource ports_;
    Manner manner_;
    PosixHandle lock_;  ///< of the open line
    PosixHandle line_;
    termios found_{};  ///< the settings of the open line before it was opened
    ReceiveGate gate_;
    std::optional<PortInfo> device_;  ///< the port's, whatever name and number it gets
    std::int64_t nextLookUs_ = 0;     ///< for a device that has vanished
    std::string outgoing_;
    int number_ = 0;
    bool heard_ = false;  ///< the device has sent something since open()
    bool lost_ = false;
    bool followsNumber_ = false;
    std::uint64_t writes_ = 0;
    std::int64_t nextNumberUs_ = 0;
};

}  // namespace zentaq
