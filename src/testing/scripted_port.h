// A serial port for tests: written bytes are kept, replies come byte by byte in virtual time through the
// same gate as a real port's, and faults are scheduled apart from the healthy unit.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/receive_gate.h"
#include "platform/serial_port.h"
#include "testing/manual_clock.h"

namespace zentaq {

/// One reply of the scripted unit. Times are virtual microseconds.
struct ScriptedReply {
    std::string bytes;
    std::int64_t delayUs = 300;  ///< from the write to the first byte's arrival
    std::int64_t byteUs = 260;   ///< from one byte to the next: ten bits at 38400 baud
    std::size_t splitAt = 0;     ///< a pause stands before this byte; 0: none
    std::int64_t pauseUs = 0;
};

class ScriptedPort : public SerialPort {
 public:
    explicit ScriptedPort(ManualClock& clock) : clock_(clock) {}

    // ---- The healthy unit
    /// Answers every write that equals `command` with this reply.
    void always(std::string_view command, ScriptedReply reply);
    void always(std::string_view command, std::string_view bytes) { always(command, plain(bytes)); }
    /// Answers the next such write only; several wait in line and come before `always`.
    void once(std::string_view command, ScriptedReply reply);
    void once(std::string_view command, std::string_view bytes) { once(command, plain(bytes)); }
    /// Asked for writes that no script answers; empty bytes are silence.
    void otherwise(std::function<std::optional<ScriptedReply>(const std::string&)> responder);
    /// Bytes that come unasked, from now on.
    void send(const ScriptedReply& reply);
    void send(std::string_view bytes) { send(plain(bytes)); }

    // ---- The fault plan
    void refuse(int portNumber) { refused_.insert(portNumber); }
    void accept(int portNumber) { refused_.erase(portNumber); }
    void refuseAll() { refuseAll_ = true; }
    void failWrites(int count) { failingWrites_ = count; }
    void failReads(int count) { failingReads_ = count; }
    /// The unit of this port number is the only one that answers; 0: on every port.
    void unitOnPort(int portNumber) { unitPort_ = portNumber; }
    /// The unit goes silent, or speaks again.
    void silent(bool on) { silent_ = on; }
    void raiseError() { raise(CommEvent::Error); }
    /// The device vanishes, or comes back under a name; bytes under way are gone.
    void loseDevice();
    void returnDevice(std::string_view device);

    // ---- Time
    /// Moves the clock, delivering bytes and raising events at their times.
    void advanceUs(std::int64_t us);

    // ---- What happened
    const std::vector<std::string>& written() const { return written_; }
    std::vector<std::string> takeWritten();
    const std::vector<int>& openedPorts() const { return opened_; }
    int closes() const { return closes_; }
    int threshold() const { return gate_.threshold(); }
    std::size_t bytesHeld() const { return gate_.size(); }

    // ---- SerialPort
    void open(int number) override;
    void close() override;
    bool isOpen() const override { return openNumber_ != 0; }
    void write(std::string_view bytes) override;
    std::vector<std::uint8_t> read() override;
    void setReceiveThreshold(int bytes) override { gate_.threshold(bytes); }
    std::vector<PortInfo> list() const override;

 private:
    static ScriptedReply plain(std::string_view bytes) { return {.bytes = std::string(bytes)}; }
    std::optional<ScriptedReply> answerTo(const std::string& command);
    void schedule(const ScriptedReply& reply);
    void deliverArrivals();

    struct Arrival {
        std::int64_t atUs;
        std::uint8_t byte;
    };

    ManualClock& clock_;
    ReceiveGate gate_;
    std::map<std::string, ScriptedReply, std::less<>> always_;
    std::map<std::string, std::deque<ScriptedReply>, std::less<>> once_;
    std::function<std::optional<ScriptedReply>(const std::string&)> otherwise_;
    std::deque<Arrival> arrivals_;
    std::set<int> refused_;
    bool refuseAll_ = false;
    bool silent_ = false;
    int failingWrites_ = 0;
    int failingReads_ = 0;
    int unitPort_ = 0;
    PortInfo here_{
        .number = 1, .device = "/dev/ttyUSB0", .description = "scripted", .identity = "scripted-1"};
    bool away_ = false;
    int openNumber_ = 0;
    int closes_ = 0;
    std::vector<std::string> written_;
    std::vector<int> opened_;
};

}  // namespace zentaq
