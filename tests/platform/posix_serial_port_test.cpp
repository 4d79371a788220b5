// A port on a real terminal: only the bytes' way is real, times are driven by hand.
#include "platform/posix_serial_port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>

#include <atomic>
#include <functional>
#include <thread>

#include "testing/manual_clock.h"
#include "temporary_folder.h"
#include "windows/pty_pair.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PosixPort : public testing::Test {
 protected:
    PosixPort() {
        port.onEvent([this](CommEvent event) {
            if (event != CommEvent::DataReceived) return;
            ++deliveries;
            delivered = port.read();
        });
    }
    /// Waits for bytes at the program's end; a second is far more than a terminal needs.
    void arrive() {
        pollfd end{port.descriptor(), POLLIN, 0};
        ASSERT_EQ(::poll(&end, 1, 1000), 1);
        port.service();
    }
    void pass(std::int64_t us) {
        clock.advanceUs(us);
        port.service();
    }
    void plug(const PtyPair& line, const std::string& identity = "one") {
        ports = {{1, line.path(), "", identity}};
    }

    ManualClock clock;
    std::vector<PortInfo> ports;
    PosixSerialPort port{clock, [this] { return ports; }};
    int deliveries = 0;
    std::vector<std::uint8_t> delivered;
};

/// What comes at the unit's end until there is as much as wanted. The system carries it over in its own time:
/// two seconds are far more than it needs.
std::string received(const PtyPair& line, std::size_t length, const std::function<void()>& meanwhile = {}) {
    std::string got;
    for (int ms = 0; ms < 2000; ++ms) {
        got += line.received();
        if (got.size() >= length) break;
        ::poll(nullptr, 0, 1);
        if (meanwhile) meanwhile();
    }
    return got;
}

std::string failureOf(PosixSerialPort& port, int number) {
    try {
        port.open(number);
    } catch (const Failure& failure) {
        return failure.what();
    }
    return {};
}

TEST_F(PosixPort, RefusesWhatIsNoPort) {
    EXPECT_EQ(failureOf(port, 1), "Port 1 is not present");
    ports = {{1, "/nonexistent/tty", "", "gone"}};
    EXPECT_EQ(failureOf(port, 1), "/nonexistent/tty: No such file or directory");
    const TemporaryFolder folder;
    ports = {{1, folder.write("file", "text"), "", "file"}};
    EXPECT_THAT(failureOf(port, 1), HasSubstr("no serial port"));
    EXPECT_FALSE(port.isOpen());
}

TEST_F(PosixPort, SetsTheLineTo38400Baud8BitsNoParityOneStopBit) {
    const PtyPair line;
    plug(line);
    port.open(1);
    termios set{};
    ASSERT_EQ(::tcgetattr(port.descriptor(), &set), 0);
    EXPECT_EQ(::cfgetispeed(&set), static_cast<speed_t>(B38400));
    EXPECT_EQ(::cfgetospeed(&set), static_cast<speed_t>(B38400));
    EXPECT_EQ(set.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
    EXPECT_EQ(set.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0U);
    EXPECT_EQ(set.c_lflag & (ECHO | ICANON | ISIG), 0U);
    EXPECT_EQ(set.c_iflag & (IXON | IXOFF | ICRNL | ISTRIP), 0U);
    EXPECT_EQ(set.c_oflag & OPOST, 0U);
}

TEST_F(PosixPort, RefusesAPortThatAnotherProgramHoldsAndTakesItOnceItIsFree) {
    const PtyPair line;
    plug(line);
    const int other = ::open(line.path().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_THROW(port.open(1), PortBusy);
    ::close(other);
    port.open(1);
    EXPECT_TRUE(port.present());
    PosixSerialPort second{clock, [this] { return ports; }};
    EXPECT_THROW(second.open(1), PortBusy);
}

/// Another program's hold on a line.
class OtherHold {
 public:
    explicit OtherHold(const std::string& device) : line_(::open(device.c_str(), O_RDWR | O_NOCTTY)) {}
    ~OtherHold() { ::close(line_); }
    OtherHold(const OtherHold&) = delete;
    OtherHold& operator=(const OtherHold&) = delete;
    int line() const { return line_; }
    bool lock() const { return ::flock(line_, LOCK_EX | LOCK_NB) == 0; }
    /// How a read answers where nothing is there: with nothing, or not at all.
    void readsOfNothing(bool answered) const {
        termios settings{};
        ::tcgetattr(line_, &settings);
        settings.c_cc[VMIN] = answered ? 0 : 1;
        ::tcsetattr(line_, TCSANOW, &settings);
    }

 private:
    int line_;
};

TEST_F(PosixPort, APortThatIsRefusedIsLeftAsItWas) {
    const PtyPair line;
    plug(line);
    const OtherHold other(line.path());
    ASSERT_TRUE(other.lock());
    termios before{};
    ASSERT_EQ(::tcgetattr(other.line(), &before), 0);
    before.c_cc[VTIME] = 3;
    ::cfsetspeed(&before, B9600);
    ASSERT_EQ(::tcsetattr(other.line(), TCSANOW, &before), 0);
    line.send("reply");
    EXPECT_THROW(port.open(1), PortBusy);
    termios after{};
    ASSERT_EQ(::tcgetattr(other.line(), &after), 0);
    EXPECT_EQ(after.c_cc[VTIME], 3);
    EXPECT_EQ(::cfgetospeed(&after), static_cast<speed_t>(B9600));
    pollfd waiting{other.line(), POLLIN, 0};
    ASSERT_EQ(::poll(&waiting, 1, 1000), 1);
    char bytes[8] = {};
    EXPECT_EQ(::read(other.line(), bytes, sizeof bytes), 5)
        << "what came for the other program is still there";
}

TEST_F(PosixPort, AReadOfNothingWhileTheDeviceIsThereIsNoHangUp) {
    const PtyPair line;
    plug(line);
    port.open(1);
    port.setReceiveThreshold(2);
    const OtherHold other(line.path());
    other.readsOfNothing(true);
    for (int look = 0; look < 100; ++look) pass(1000);
    ASSERT_TRUE(port.present());
    other.readsOfNothing(false);
    line.send("AX");
    arrive();
    pass(ReceiveGate::defaultQuietUs);
    EXPECT_EQ(deliveries, 1);
}

TEST_F(PosixPort, AHangUpIsSeenThoughReadsOfNothingAreAnswered) {
    PtyPair line;
    plug(line);
    port.open(1);
    const OtherHold other(line.path());
    other.readsOfNothing(true);
    line.hangUp();
    pass(0);
    EXPECT_FALSE(port.present());
}

TEST_F(PosixPort, WritesAllBytesAtOnceIncludingThoseAbove127) {
    const PtyPair line;
    plug(line);
    port.open(1);
    port.write(std::string("Z\xFF\r\n\0", 5));
    EXPECT_EQ(received(line, 5), std::string("Z\xFF\r\n\0", 5));
    EXPECT_FALSE(port.wantsToWrite());
    EXPECT_EQ(port.writes(), 1U);
}

TEST_F(PosixPort, WhatTheLineDoesNotTakeAtOnceLeavesLater) {
    const PtyPair line;
    plug(line);
    port.open(1);
    const std::string much(100'000, 'x');
    port.write(much);
    ASSERT_TRUE(port.wantsToWrite()) << "a terminal holds a few thousand bytes";
    EXPECT_TRUE(received(line, much.size(), [this] { port.service(); }) == much);
    EXPECT_FALSE(port.wantsToWrite());
}

TEST_F(PosixPort, DeliversOnceWhenEnoughIsThereAndTheLineIsQuiet) {
    const PtyPair line;
    plug(line);
    port.open(1);
    port.setReceiveThreshold(2);
    line.send("A");
    arrive();
    pass(10'000);
    EXPECT_EQ(deliveries, 0) << "one byte of two";
    line.send("\xFF");
    arrive();
    EXPECT_EQ(deliveries, 0) << "the line may go on";
    EXPECT_EQ(port.nextDueUs(), clock.monotonicUs() + ReceiveGate::defaultQuietUs);
    pass(ReceiveGate::defaultQuietUs);
    EXPECT_EQ(deliveries, 1);
    EXPECT_THAT(delivered, ElementsAre('A', 0xFF));
    pass(10'000);
    EXPECT_EQ(deliveries, 1);
}

TEST_F(PosixPort, AReplyFromBeforeDoesNotAnswerTheFirstQuestion) {
    const PtyPair line;
    plug(line);
    port.open(1);
    line.send("AX");
    pollfd end{port.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&end, 1, 1000), 1);
    port.open(1);
    port.setReceiveThreshold(1);
    pass(10'000);
    EXPECT_EQ(deliveries, 0);
}

TEST_F(PosixPort, APulledDeviceComesBackUnderAnotherName) {
    auto line = std::make_unique<PtyPair>();
    plug(*line);
    port.open(1);
    line->hangUp();
    pass(0);
    EXPECT_TRUE(port.isOpen());
    EXPECT_FALSE(port.present());
    EXPECT_EQ(port.descriptor(), -1);
    port.write("lost");
    ports.clear();
    pass(PosixSerialPort::lookUs);
    EXPECT_FALSE(port.present());

    const PtyPair stranger;
    const PtyPair again;
    ports = {{1, stranger.path(), "", "other"}, {2, again.path(), "", "one"}};
    pass(PosixSerialPort::lookUs - 1);
    EXPECT_FALSE(port.present()) << "not looked for at every call";
    pass(1);
    ASSERT_TRUE(port.present());
    port.write("E");
    EXPECT_EQ(received(again, 1), "E");
    EXPECT_EQ(stranger.received(), "");
}

TEST_F(PosixPort, AClosedPortIsNotLookedForAndWritesNothing) {
    const PtyPair line;
    plug(line);
    port.open(1);
    port.close();
    EXPECT_FALSE(port.isOpen());
    port.write("E");
    pass(PosixSerialPort::lookUs);
    EXPECT_FALSE(port.present());
    EXPECT_EQ(line.received(), "");
    EXPECT_EQ(port.list().size(), 1U);
}

TEST_F(PosixPort, ALineThatTakesNothingFillsNoMemory) {
    const PtyPair line;
    plug(line);
    port.open(1);
    for (int i = 0; i < 1000; ++i) port.write(std::string(100, 'x'));
    // The terminal's own store, some commands behind it, and the rest went nowhere.
    const std::size_t came = received(line, 100'000, [this] { port.service(); }).size();
    EXPECT_LT(came, 40'000U);
    EXPECT_FALSE(port.wantsToWrite());
    port.write("E");
    EXPECT_EQ(received(line, 1), "E");
}

TEST_F(PosixPort, OneLookTakesSoMuchOfAFloodAndNoMore) {
    const PtyPair line;
    plug(line);
    port.open(1);
    std::atomic<bool> stop = false;
    std::thread flood([&] {
        const std::string bytes(4096, 'x');
        while (!stop) line.sendSome(bytes);
    });
    // Without an end to the look this would never return.
    for (int i = 0; i < 200; ++i) port.service();
    stop = true;
    flood.join();
    EXPECT_TRUE(port.present());
}

}  // namespace
}  // namespace zentaq
