#include "qt/qt_serial_port.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/file.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <atomic>
#include <thread>

#include "app/fake_platform.h"
#include "testing/manual_clock.h"
#include "platform/posix_serial_port.h"
#include "qt/port_list.h"
#include "windows/pty_pair.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The port's times are driven by hand; only the bytes' way through the terminal is real.
class SerialPortOnATerminal : public testing::Test {
 protected:
    TemporaryFolder folder;
    ManualClock clock;
    QtSerialPort port{clock, [this] { return orderedPorts(simulatedPorts(folder.path()), {}); }};
    int deliveries = 0;
    std::vector<std::uint8_t> delivered;

    SerialPortOnATerminal() {
        port.onEvent([this](CommEvent event) {
            if (event != CommEvent::DataReceived) return;
            ++deliveries;
            delivered = port.read();
        });
    }

    /// Runs the event loop until `done`; a second of real time is far more than a terminal needs.
    template <typename Condition>
    bool eventually(Condition done) {
        QElapsedTimer waiting;
        waiting.start();
        while (!done() && waiting.elapsed() < 1000) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            port.service();
        }
        return done();
    }
    void pass(std::int64_t us) {
        clock.advanceUs(us);
        port.service();
    }
};

TEST_F(SerialPortOnATerminal, RefusesANumberThatIsNotInTheList) {
    EXPECT_THROW(port.open(1), Failure);
    EXPECT_FALSE(port.isOpen());
}

TEST_F(SerialPortOnATerminal, RefusesAPortThatAnotherProgramHolds) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    QtSerialPort other{clock, [this] { return orderedPorts(simulatedPorts(folder.path()), {}); }};
    other.open(1);
    EXPECT_THROW(port.open(1), Failure);
    other.close();
    port.open(1);
    EXPECT_TRUE(port.isOpen());
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

TEST_F(SerialPortOnATerminal, WhoeverHasThePortDoesNotNoticeThatItIsWanted) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    {
        // Whatever a line of this machine is set to: a read of nothing does not answer here.
        const int first = ::open(line.path().c_str(), O_RDWR | O_NOCTTY);
        termios settings{};
        ::tcgetattr(first, &settings);
        settings.c_cc[VMIN] = 1;
        ::tcsetattr(first, TCSANOW, &settings);
        ::close(first);
    }
    BusyReader reader(line.path());
    for (int time = 0; time < 300; ++time) EXPECT_THROW(port.open(1), Failure);
    while (reader.reads() < 1000) std::this_thread::yield();
    reader.end();
    EXPECT_EQ(reader.broken(), 0);
}

TEST_F(SerialPortOnATerminal, APortOfAnotherOfOurProgramsIsNotEvenOpened) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    PosixSerialPort other{clock, [this] { return orderedPorts(simulatedPorts(folder.path()), {}); }};
    other.open(1);
    const int opens = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(::inotify_add_watch(opens, line.path().c_str(), IN_OPEN), 0);
    for (int time = 0; time < 3; ++time) EXPECT_THROW(port.open(1), Failure);
    char notice[4096];
    EXPECT_LT(::read(opens, notice, sizeof notice), 0) << "an opening can hold back a reply of the other one";
    other.close();
    port.open(1);
    EXPECT_GT(::read(opens, notice, sizeof notice), 0);
    EXPECT_THROW(other.open(1), PortBusy);
    port.close();
    other.open(1);
    EXPECT_TRUE(other.present());
    ::close(opens);
}

TEST_F(SerialPortOnATerminal, ADeviceThatWasNamedDoesNotGiveWayToTheOneThatTakesItsNumber) {
    const PtyPair named;
    const PtyPair other;
    announce(folder.path(), "B", named.path());
    port.followsNumber(false);
    port.open(1);
    announce(folder.path(), "A", other.path());
    pass(QtSerialPort::numberUs);
    port.write("E");
    std::string got;
    EXPECT_TRUE(eventually([&] { return !(got += named.received()).empty(); }));
    EXPECT_EQ(other.received(), "");
}

TEST_F(SerialPortOnATerminal, WritesAllBytesAtOnceIncludingThoseAbove127) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    port.open(1);
    port.write(std::string("Z\xFF", 2));
    std::string got;
    EXPECT_TRUE(eventually([&] { return (got += line.received()).size() >= 2; }));
    EXPECT_EQ(got, std::string("Z\xFF", 2));
}

TEST_F(SerialPortOnATerminal, DeliversAReplyOnceWhenTheLineHasGoneQuiet) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    port.open(1);
    port.setReceiveThreshold(2);
    line.send("AX");
    ASSERT_TRUE(eventually([&] { return port.settling(); }));
    pass(389);
    EXPECT_EQ(deliveries, 0);
    pass(1);
    EXPECT_EQ(deliveries, 1);
    EXPECT_THAT(delivered, ElementsAre('A', 'X'));
    pass(10'000);
    EXPECT_EQ(deliveries, 1);
}

TEST_F(SerialPortOnATerminal, AReplyThatNobodyReadDoesNotAnswerTheFirstQuestion) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    // Whoever had the line before has left without reading the reply.
    const int other = ::open(line.path().c_str(), O_RDWR | O_NOCTTY);
    ASSERT_GE(other, 0);
    line.send("OLDREPLY");
    ASSERT_TRUE(eventually([&] {
        int waiting = 0;
        return ::ioctl(other, FIONREAD, &waiting) == 0 && waiting == 8;
    }));
    port.open(1);
    port.setReceiveThreshold(2);
    line.send("AX");
    EXPECT_TRUE(eventually([&] {
        clock.advanceUs(600);
        return deliveries > 0;
    }));
    EXPECT_THAT(delivered, ElementsAre('A', 'X'));
    EXPECT_EQ(deliveries, 1);
    ::close(other);
}

/// Something else that the event loop wakes up for, and that looks after the port at once.
class OtherEvent {
 public:
    explicit OtherEvent(QtSerialPort& port) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, [this, &port] {
            std::uint64_t count = 0;
            EXPECT_EQ(::read(event_, &count, sizeof count), static_cast<ssize_t>(sizeof count));
            port.service();
        });
    }
    ~OtherEvent() { ::close(event_); }
    OtherEvent(const OtherEvent&) = delete;
    OtherEvent& operator=(const OtherEvent&) = delete;
    void happen() const { ::eventfd_write(event_, 1); }

 private:
    int event_ = ::eventfd(0, EFD_NONBLOCK);
    QSocketNotifier notifier_{event_, QSocketNotifier::Read};
};

TEST_F(SerialPortOnATerminal, ANoticeOfBytesThatWereTakenAlreadyIsNoLossOfTheDevice) {
    struct Losses : LineWatch {
        void lost(const PortInfo&, std::int64_t) override { ++count; }
        int count = 0;
    } losses;
    port.watch(losses);
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    // The order in which one round of the event loop serves them is its own: some stand in front of the port.
    const OtherEvent before(port);
    port.open(1);
    port.setReceiveThreshold(1);
    const OtherEvent behind(port), further(port);
    for (int round = 0; round < 20; ++round) {
        line.send("AX");
        for (const OtherEvent* event : {&before, &behind, &further}) event->happen();
        QCoreApplication::processEvents();
        clock.advanceUs(5000);
        port.service();
    }
    EXPECT_EQ(losses.count, 0);
    EXPECT_EQ(deliveries, 20);
    port.unwatch(losses);
}

TEST_F(SerialPortOnATerminal, HoldsBytesWhileTheThresholdIsZero) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    port.open(1);
    port.setReceiveThreshold(0);
    line.send("AX");
    EXPECT_FALSE(eventually([&] {
        clock.advanceUs(1000);
        return deliveries > 0;
    }));
    EXPECT_THAT(port.read(), ElementsAre('A', 'X'));
}

TEST_F(SerialPortOnATerminal, ComesBackByItsIdentityUnderAnotherNumberAndTerminal) {
    auto line = std::make_unique<PtyPair>();
    announce(folder.path(), "M", line->path());
    port.open(1);
    port.setReceiveThreshold(2);
    line->send("AX");
    ASSERT_TRUE(eventually([&] {
        clock.advanceUs(600);
        return deliveries == 1;
    }));
    line->hangUp();
    std::filesystem::remove(folder.path("M"));
    ASSERT_TRUE(eventually([&] {
        clock.advanceUs(QtSerialPort::lookUs);
        return !port.present();
    }));
    EXPECT_TRUE(port.isOpen()) << "a pulled cable does not close the port";
    port.write("F");  // Goes nowhere and fails nobody.

    const PtyPair before;
    const PtyPair again;
    announce(folder.path(), "B", before.path());
    announce(folder.path(), "M", again.path());
    pass(QtSerialPort::lookUs);
    ASSERT_TRUE(port.present());
    again.send("PN");
    ASSERT_TRUE(eventually([&] {
        clock.advanceUs(600);
        return deliveries == 2;
    }));
    EXPECT_THAT(delivered, ElementsAre('P', 'N'));
    port.write("E");
    std::string got;
    EXPECT_TRUE(eventually([&] { return !(got += again.received()).empty(); }));
    EXPECT_EQ(got, "E");
    EXPECT_THAT(before.received(), IsEmpty());
}

TEST_F(SerialPortOnATerminal, ASilentDeviceGivesWayToTheOneThatTakesItsNumber) {
    const PtyPair silent;
    const PtyPair unit;
    announce(folder.path(), "B", silent.path());
    port.open(1);
    announce(folder.path(), "A", unit.path());
    pass(QtSerialPort::numberUs);
    port.write("E");
    std::string got;
    EXPECT_TRUE(eventually([&] { return !(got += unit.received()).empty(); }));
    EXPECT_EQ(silent.received(), "");
}

TEST_F(SerialPortOnATerminal, WhoTakesTheNumberOfASilentDeviceThatHasGoneIsToldAsItsReturn) {
    struct News : LineWatch {
        void opened(const PortInfo&, std::int64_t) override { told += "opened "; }
        void lost(const PortInfo&, std::int64_t) override { told += "lost "; }
        void returned(const PortInfo&, std::int64_t) override { told += "returned "; }
        std::string told;
    } news;
    auto silent = std::make_unique<PtyPair>();
    const PtyPair unit;
    announce(folder.path(), "B", silent->path());
    port.open(1);
    port.watch(news);
    silent->hangUp();
    std::filesystem::remove(folder.path("B"));
    ASSERT_TRUE(eventually([&] {
        clock.advanceUs(QtSerialPort::lookUs);
        return !port.present();
    }));
    announce(folder.path(), "A", unit.path());
    pass(QtSerialPort::numberUs);
    EXPECT_TRUE(port.present());
    EXPECT_EQ(news.told, "lost returned ");
    port.unwatch(news);
}

TEST_F(SerialPortOnATerminal, ADeviceThatHasSpokenIsKeptWhateverItsNumberBecomes) {
    const PtyPair unit;
    const PtyPair other;
    announce(folder.path(), "B", unit.path());
    port.open(1);
    port.setReceiveThreshold(2);
    unit.send("AX");
    ASSERT_TRUE(eventually([&] { return port.settling(); }));
    announce(folder.path(), "A", other.path());
    pass(QtSerialPort::numberUs);
    port.write("E");
    std::string got;
    EXPECT_TRUE(eventually([&] { return !(got += unit.received()).empty(); }));
    EXPECT_EQ(other.received(), "");
}

TEST_F(SerialPortOnATerminal, LooksForAVanishedDeviceFourTimesASecondOnly) {
    int looks = 0;
    auto line = std::make_unique<PtyPair>();
    announce(folder.path(), "A", line->path());
    QtSerialPort counted{clock, [&] {
                             ++looks;
                             return orderedPorts(simulatedPorts(folder.path()), {});
                         }};
    counted.open(1);
    counted.setReceiveThreshold(1);
    line->send("A");
    ASSERT_TRUE(eventually([&] {
        counted.service();
        return counted.settling();
    }));
    line->hangUp();
    std::filesystem::remove(folder.path("A"));
    clock.advanceUs(QtSerialPort::lookUs);
    counted.service();
    ASSERT_FALSE(counted.present());
    looks = 0;
    for (int ms = 0; ms < 1000; ++ms) {
        clock.advanceUs(1000);
        counted.service();
    }
    EXPECT_EQ(looks, 4);
}

TEST_F(SerialPortOnATerminal, CloseForgetsTheDeviceAndTheBytes) {
    auto line = std::make_unique<PtyPair>();
    announce(folder.path(), "A", line->path());
    port.open(1);
    line->send("A");
    port.close();
    EXPECT_FALSE(port.isOpen());
    EXPECT_THAT(port.read(), IsEmpty());
    pass(QtSerialPort::lookUs);
    EXPECT_FALSE(port.present());
}

TEST_F(SerialPortOnATerminal, ALineThatTakesNothingNeitherWaitsNorFillsTheMemory) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
    port.open(1);
    QElapsedTimer waiting;
    waiting.start();
    for (int i = 0; i < 100'000; ++i)
        port.write("S1 a line of seventy bytes, of which a terminal holds some\r\n");
    EXPECT_LT(waiting.elapsed(), 5000);
    port.close();
    EXPECT_LT(waiting.elapsed(), 5000) << "closing waits for no stuck line";
    std::size_t came = 0;
    for (std::string some = line.received(); !some.empty(); some = line.received()) came += some.size();
    EXPECT_LT(came, 100'000U);
}

}  // namespace
}  // namespace zentaq
