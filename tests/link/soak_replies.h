// Any bytes as the reply to any command of any unit kind, through the link and through each decoder by
// itself. Tells what must never be and was: an exception, a value outside its range, a state that cannot be.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "link/link.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "platform/serial_port.h"
#include "sim/simulated_unit.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"

namespace zentaq {

/// A port that delivers what it is told, when it is told.
class ReplyPort : public SerialPort {
 public:
    void open(int) override { open_ = true; }
    void close() override { open_ = false; }
    bool isOpen() const override { return open_; }
    void write(std::string_view) override {}
    std::vector<std::uint8_t> read() override { return std::exchange(bytes_, {}); }
    void setReceiveThreshold(int) override {}
    std::vector<PortInfo> list() const override { return {}; }
    void deliver(std::span<const std::uint8_t> bytes) {
        bytes_.assign(bytes.begin(), bytes.end());
        raise(CommEvent::DataReceived);
    }

 private:
    std::vector<std::uint8_t> bytes_;
    bool open_ = false;
};

class ReplyStorm {
 public:
    static constexpr int kinds = 7;
    static constexpr int commands = 17;

    ReplyStorm();

    /// One reply. `kind` and `command` are taken modulo their numbers. Answers what was broken, or nothing.
    std::string strike(unsigned kind, unsigned command, std::span<const std::uint8_t> reply);

 private:
    void tick(int count);
    void meet(int slot);
    void putInFlight(const std::string& command);
    void bringToRest();
    void decodeDirectly(std::span<const std::uint8_t> reply);
    void requireRanges();
    void requireState();
    void require(bool holds, const std::string& what);

    TemporaryFolder folder_;
    ManualClock clock_;
    ReplyPort port_;
    RecordingLinkHost host_;
    LiveValues live_;
    FrameDecoder decoder_{live_};
    NoYield yield_;
    Link link_{port_, host_, decoder_, live_, clock_, yield_};
    std::string firmware_;
    std::string broken_;
};

/// Replies of real units, spoilt, and noise.
class ReplySource {
 public:
    explicit ReplySource(unsigned seed);
    struct Reply {
        unsigned kind;
        unsigned command;
        sim::Bytes bytes;
    };
    Reply next();

 private:
    std::size_t below(std::size_t limit) { return random_() % limit; }
    sim::Bytes good();
    sim::Bytes noise(std::size_t length);
    void mutate(sim::Bytes& bytes);

    std::mt19937 random_;
    std::vector<sim::SimulatedUnit> units_;
};

}  // namespace zentaq
