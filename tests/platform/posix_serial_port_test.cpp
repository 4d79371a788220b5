// A port on a real terminal: only the bytes' way is real, times are driven by hand.
#include "platform/posix_serial_port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>

#include "platform/pty_pair.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PosixPort : public testing::Test {
 protected:
    PosixPort() {
        plug(line);
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
    void plug(const PtyPair& other, const std::string& identity = "one") {
        ports = {{1, other.path(), "", identity}};
    }
    /// Another line is the first of the list from now on.
    void plugInFront(const PtyPair& other) {
        ports.insert(ports.begin(), {1, other.path(), "", "another"});
        ports.back().number = static_cast<int>(ports.size());
    }

    PtyPair line;
    ManualClock clock;
    std::vector<PortInfo> ports;  ///< the line alone, unless a test says otherwise
    int looks = 0;                ///< at the list
    PosixSerialPort port{clock, [this] {
                             ++looks;
                             return ports;
                         }};
    int deliveries = 0;
    std::vector<std::uint8_t> delivered;
};

class OpenPort : public PosixPort {
 protected:
    OpenPort() { port.open(1); }
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
    ports.clear();
    EXPECT_EQ(failureOf(port, 1), "Port 1 is not present");
    ports = {{1, "/nonexistent/tty", "", "gone"}};
    EXPECT_EQ(failureOf(port, 1), "/nonexistent/tty: No such file or directory");
    const TemporaryFolder folder;
    ports = {{1, folder.write("file", "text"), "", "file"}};
    EXPECT_THAT(failureOf(port, 1), HasSubstr("no serial port"));
    EXPECT_FALSE(port.isOpen());
}

TEST_F(PosixPort, PutsBackTheSettingsThatItFoundWhereThatIsWanted) {
    for (const bool restores : {true, false}) {
        const PosixHandle other(::open(line.path().c_str(), O_RDWR | O_NOCTTY));
        termios before{};
        ASSERT_EQ(::tcgetattr(other.get(), &before), 0);
        ::cfsetspeed(&before, B9600);
        before.c_cc[VMIN] = 5;
        before.c_iflag |= IXON;
        ASSERT_EQ(::tcsetattr(other.get(), TCSANOW, &before), 0);
        PosixSerialPort leaving{clock, [this] { return ports; }, {.exclusive = true, .restores = restores}};
        leaving.open(1);
        termios now{};
        ASSERT_EQ(::tcgetattr(other.get(), &now), 0);
        ASSERT_EQ(::cfgetospeed(&now), static_cast<speed_t>(B38400));
        leaving.close();
        ASSERT_EQ(::tcgetattr(other.get(), &now), 0);
        EXPECT_EQ(::cfgetospeed(&now), static_cast<speed_t>(restores ? B9600 : B38400));
        EXPECT_EQ(now.c_cc[VMIN], restores ? 5 : 1);
        EXPECT_EQ((now.c_iflag & IXON) != 0, restores);
    }
}

TEST_F(PosixPort, ALineThatHasVanishedIsClosedWithoutItsSettings) {
    PosixSerialPort leaving{clock, [this] { return ports; }, {.exclusive = true, .restores = true}};
    leaving.open(1);
    line.hangUp();
    leaving.close();
    EXPECT_FALSE(leaving.isOpen());
    EXPECT_FALSE(leaving.present());
}

TEST_F(OpenPort, SetsTheLineTo38400Baud8BitsNoParityOneStopBit) {
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
    const int other = ::open(line.path().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    EXPECT_THROW(port.open(1), PortBusy);
    ::close(other);
    port.open(1);
    EXPECT_TRUE(port.present());
    PosixSerialPort second{clock, [this] { return ports; }};
    EXPECT_THROW(second.open(1), PortBusy);
}

TEST_F(PosixPort, WhereItIsAskedForAFailureTellsTheNumberOfThePortToo) {
    PosixSerialPort telling{clock, [this] { return ports; }, {.tellsNumber = true}};
    ports = {{2, "/nonexistent/tty", "", "gone"}};
    EXPECT_EQ(failureOf(telling, 2), "Port 2 (/nonexistent/tty): No such file or directory");
}

TEST_F(PosixPort, APortOfAnotherOfOurProgramsIsNotEvenOpened) {
    PosixSerialPort other{clock, [this] { return ports; }};
    other.open(1);
    const int opens = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(::inotify_add_watch(opens, line.path().c_str(), IN_OPEN), 0);
    for (int time = 0; time < 3; ++time) EXPECT_THROW(port.open(1), PortBusy);
    char notice[4096];
    EXPECT_LT(::read(opens, notice, sizeof notice), 0) << "an opening can hold back a reply of the other one";
    other.close();
    port.open(1);
    EXPECT_GT(::read(opens, notice, sizeof notice), 0);
    ::close(opens);
}

TEST_F(PosixPort, WhereItIsAskedForTheDeviceIsItsOwnUntilItIsClosed) {
    PosixSerialPort alone{clock, [this] { return ports; }, {.exclusive = true}};
    const auto exclusive = [](int descriptor) {
        int held = 0;
        EXPECT_EQ(::ioctl(descriptor, TIOCGEXCL, &held), 0);
        return held != 0;
    };
    const int other = ::open(line.path().c_str(), O_RDWR | O_NOCTTY);
    alone.open(1);
    EXPECT_TRUE(exclusive(other));
    alone.close();
    EXPECT_FALSE(exclusive(other));
    ::close(other);
    port.open(1);
    EXPECT_FALSE(exclusive(port.descriptor()));
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

/// Reads the line of a program that has it, as fast as it can, and counts the reads that find it hung up.
class BusyReader {
 public:
    explicit BusyReader(const std::string& device)
        : line_(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK)) {
        ::flock(line_, LOCK_EX | LOCK_NB);
        thread_ = std::thread([this] {
            char byte = 0;
            for (; !stop_; ++reads_) broken_ += ::read(line_, &byte, 1) == 0 ? 1 : 0;
        });
    }
    ~BusyReader() {
        end();
        ::close(line_);
    }
    BusyReader(const BusyReader&) = delete;
    BusyReader& operator=(const BusyReader&) = delete;
    void end() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
    }
    int broken() const { return broken_; }
    int reads() const { return reads_; }

 private:
    int line_;
    std::atomic<bool> stop_ = false;
    std::atomic<int> reads_ = 0;
    std::atomic<int> broken_ = 0;
    std::thread thread_;
};

TEST_F(PosixPort, WhoeverHasThePortDoesNotNoticeThatItIsWanted) {
    // Whatever a line of this machine is set to: a read of nothing does not answer here.
    OtherHold(line.path()).readsOfNothing(false);
    BusyReader reader(line.path());
    for (int time = 0; time < 300; ++time) EXPECT_THROW(port.open(1), PortBusy);
    while (reader.reads() < 1000) std::this_thread::yield();
    reader.end();
    EXPECT_EQ(reader.broken(), 0);
}

TEST_F(OpenPort, AReadOfNothingWhileTheDeviceIsThereIsNoHangUp) {
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

TEST_F(OpenPort, AHangUpIsSeenThoughReadsOfNothingAreAnswered) {
    const OtherHold other(line.path());
    other.readsOfNothing(true);
    line.hangUp();
    pass(0);
    EXPECT_FALSE(port.present());
}

TEST_F(OpenPort, WritesAllBytesAtOnceIncludingThoseAbove127) {
    port.write(std::string("Z\xFF\r\n\0", 5));
    EXPECT_EQ(received(line, 5), std::string("Z\xFF\r\n\0", 5));
    EXPECT_FALSE(port.wantsToWrite());
    EXPECT_EQ(port.writes(), 1U);
}

TEST_F(OpenPort, WhatTheLineDoesNotTakeAtOnceLeavesLater) {
    const std::string much(100'000, 'x');
    port.write(much);
    ASSERT_TRUE(port.wantsToWrite()) << "a terminal holds a few thousand bytes";
    EXPECT_TRUE(received(line, much.size(), [this] { port.service(); }) == much);
    EXPECT_FALSE(port.wantsToWrite());
}

TEST_F(OpenPort, DeliversOnceWhenEnoughIsThereAndTheLineIsQuiet) {
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

TEST_F(PosixPort, AShorterQuietIsEnoughWhereItIsAskedFor) {
    PosixSerialPort quick{clock, [this] { return ports; }, {.quietUs = 390}};
    quick.open(1);
    quick.setReceiveThreshold(2);
    EXPECT_EQ(quick.missing(), 2U);
    line.send("AX");
    pollfd end{quick.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&end, 1, 1000), 1);
    quick.service();
    EXPECT_EQ(quick.missing(), 0U);
    clock.advanceUs(389);
    EXPECT_FALSE(quick.service());
    clock.advanceUs(1);
    EXPECT_TRUE(quick.service());
}

TEST_F(OpenPort, HoldsBytesWhileTheThresholdIsZero) {
    port.setReceiveThreshold(0);
    line.send("AX");
    arrive();
    pass(100'000);
    EXPECT_EQ(deliveries, 0);
    EXPECT_THAT(port.read(), ElementsAre('A', 'X'));
}

TEST_F(PosixPort, AReplyThatNobodyReadDoesNotAnswerTheFirstQuestion) {
    {
        // Whoever had the line before leaves without reading the reply.
        const OtherHold other(line.path());
        line.send("OLDREPLY");
        pollfd end{other.line(), POLLIN, 0};
        ASSERT_EQ(::poll(&end, 1, 1000), 1);
        port.open(1);
    }
    port.setReceiveThreshold(2);
    pass(10'000);
    EXPECT_EQ(deliveries, 0);
    line.send("AX");
    arrive();
    pass(10'000);
    EXPECT_THAT(delivered, ElementsAre('A', 'X'));
    EXPECT_EQ(deliveries, 1);
}

TEST_F(OpenPort, APulledDeviceComesBackUnderAnotherName) {
    port.setReceiveThreshold(2);
    line.hangUp();
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
    again.send("PN");
    arrive();
    pass(ReceiveGate::defaultQuietUs);
    EXPECT_THAT(delivered, ElementsAre('P', 'N'));
}

TEST_F(OpenPort, LooksForAVanishedDeviceFourTimesASecondOnly) {
    line.hangUp();
    pass(0);
    ASSERT_FALSE(port.present());
    looks = 0;
    ports.clear();
    for (int ms = 0; ms < 1000; ++ms) pass(1000);
    EXPECT_EQ(looks, 4);
}

TEST_F(PosixPort, ASilentDeviceGivesWayToTheOneThatTakesItsNumberUnlessItWasNamed) {
    for (const bool follows : {true, false}) {
        const PtyPair second;
        plug(line);
        port.followsNumber(follows);
        port.open(1);
        plugInFront(second);
        pass(PosixSerialPort::numberUs);
        port.write("E");
        EXPECT_EQ(received(follows ? second : line, 1), "E");
        EXPECT_EQ((follows ? line : second).received(), "");
    }
}

TEST_F(PosixPort, WhoTakesTheNumberOfASilentDeviceThatHasGoneIsToldAsItsReturn) {
    struct News : LineWatch {
        void opened(const PortInfo&, std::int64_t) override { told += "opened "; }
        void lost(const PortInfo&, std::int64_t) override { told += "lost "; }
        void returned(const PortInfo&, std::int64_t) override { told += "returned "; }
        std::string told;
    } news;
    const PtyPair unit;
    port.followsNumber(true);
    port.open(1);
    port.watch(news);
    line.hangUp();
    pass(0);
    ASSERT_FALSE(port.present());
    plug(unit, "another");
    pass(PosixSerialPort::numberUs);
    EXPECT_TRUE(port.present());
    EXPECT_EQ(news.told, "lost returned ");
    port.unwatch(news);
}

TEST_F(PosixPort, ADeviceThatHasSpokenIsKeptWhateverItsNumberBecomes) {
    const PtyPair other;
    port.followsNumber(true);
    port.open(1);
    line.send("AX");
    arrive();
    plugInFront(other);
    pass(PosixSerialPort::numberUs);
    port.write("E");
    EXPECT_EQ(received(line, 1), "E");
    EXPECT_EQ(other.received(), "");
}

TEST_F(OpenPort, AClosedPortIsNotLookedForAndWritesNothing) {
    line.send("A");
    arrive();
    port.close();
    EXPECT_FALSE(port.isOpen());
    EXPECT_THAT(port.read(), IsEmpty());
    port.write("E");
    pass(PosixSerialPort::lookUs);
    EXPECT_FALSE(port.present());
    EXPECT_EQ(line.received(), "");
    EXPECT_EQ(port.list().size(), 1U);
}

TEST_F(OpenPort, ALineThatTakesNothingIsNotWaitedFor) {
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 100'000; ++i) port.write(std::string(60, 'x'));
    port.close();
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

TEST_F(OpenPort, ALineThatTakesNothingFillsNoMemory) {
    for (int i = 0; i < 1000; ++i) port.write(std::string(100, 'x'));
    // The terminal's own store, some commands behind it, and the rest went nowhere.
    const std::size_t came = received(line, 100'000, [this] { port.service(); }).size();
    EXPECT_LT(came, 40'000U);
    EXPECT_FALSE(port.wantsToWrite());
    port.write("E");
    EXPECT_EQ(received(line, 1), "E");
}

TEST_F(OpenPort, OneLookTakesSoMuchOfAFloodAndNoMore) {
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
