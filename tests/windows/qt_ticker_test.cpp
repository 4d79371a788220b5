#include "qt/qt_ticker.h"

#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <atomic>
#include <thread>

#include "app/fake_platform.h"
#include "link/link.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "platform/port_list.h"
#include "platform/pty_pair.h"
#include "qt/qt_clock.h"
#include "qt/qt_yield.h"
#include "windows/timed_unit.h"

namespace zentaq {
namespace {

/// Here the real clock is the thing under test, so these tests take real tenths of seconds.
class TickerOnTheClock : public testing::Test {
 protected:
    TemporaryFolder folder;
    QtClock clock;
    PosixSerialPort port{clock, [this] { return orderedPorts(simulatedPorts(folder.path()), {}); },
                         windowPort};
    QtTicker ticker{port, clock};
    int ticks = 0;

    TickerOnTheClock() {
        ticker.onTick([this] { ++ticks; });
    }
    static void runLoop(int ms) {
        QEventLoop loop;
        QTimer::singleShot(ms, Qt::PreciseTimer, &loop, &QEventLoop::quit);
        loop.exec();
    }
    static void pause(int ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }
    /// Runs until the ticks that are owed have been caught up with, and compares with the clock.
    void expectOneTickAMillisecond(std::int64_t startUs) {
        runLoop(60);
        const auto elapsedMs = static_cast<double>(clock.monotonicUs() - startUs) / 1000.0;
        EXPECT_NEAR(ticks, elapsedMs, 25);
    }
};

class TickerOnALine : public TickerOnTheClock {
 protected:
    const PtyPair line;

    TickerOnALine() { announce(folder.path(), "A", line.path()); }
};

TEST_F(TickerOnTheClock, RunsAThousandTicksASecond) {
    const std::int64_t start = clock.monotonicUs();
    ticker.start();
    runLoop(400);
    expectOneTickAMillisecond(start);
}

TEST_F(TickerOnTheClock, CatchesUpAfterTheWindowWasBusy) {
    const std::int64_t start = clock.monotonicUs();
    ticker.start();
    runLoop(50);
    pause(150);  // A window that paints for long.
    expectOneTickAMillisecond(start);
}

TEST_F(TickerOnTheClock, NeverStartsATickInsideATick) {
    int depth = 0;
    int deepest = 0;
    ticker.onTick([&] {
        deepest = std::max(deepest, ++depth);
        if (++ticks == 3) runLoop(30);  // A tick that shows a box.
        --depth;
    });
    ticker.start();
    runLoop(80);
    EXPECT_GT(ticks, 3);
    EXPECT_EQ(deepest, 1);
}

TEST_F(TickerOnTheClock, GoesOnAfterATickThatFails) {
    ticker.onTick([&] {
        if (++ticks == 1) throw Failure("first");
    });
    ticker.start();
    runLoop(50);  // The application's notify() catches it.
    EXPECT_GT(ticks, 10);
}

TEST_F(TickerOnTheClock, StoppedRunsNoTick) {
    ticker.start();
    ticker.stop();
    runLoop(20);
    EXPECT_EQ(ticks, 0);
}

TEST_F(TickerOnALine, AReplyThatCameDuringAPauseIsDeliveredBeforeTheOwedTicks) {
    port.open(1);
    port.setReceiveThreshold(2);
    int ticksAtDelivery = -1;
    port.onEvent([&](CommEvent) {
        ticksAtDelivery = ticks;
        port.read();
    });
    ticker.start();
    runLoop(20);
    const int before = ticks;
    line.send("AX");
    pause(100);
    runLoop(60);
    ASSERT_GE(ticksAtDelivery, 0);
    EXPECT_LE(ticksAtDelivery - before, 3) << "ticks owed from the pause must not count against the reply";
}

/// Something else that the event loop wakes up for, and that looks after the port at once.
class OtherEvent {
 public:
    explicit OtherEvent(PosixSerialPort& port) {
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

TEST_F(TickerOnALine, ANoticeOfBytesThatWereTakenAlreadyIsNoLossOfTheDevice) {
    struct Losses : LineWatch {
        void lost(const PortInfo&, std::int64_t) override { ++count; }
        int count = 0;
    } losses;
    port.watch(losses);
    int deliveries = 0;
    port.onEvent([&](CommEvent) {
        ++deliveries;
        port.read();
    });
    ticker.start();
    // The order in which one round of the event loop serves them is its own: some stand in front of the port.
    const OtherEvent before(port);
    port.open(1);
    port.setReceiveThreshold(1);
    const OtherEvent behind(port), further(port);
    for (int round = 0; round < 20; ++round) {
        line.send("AX");
        for (const OtherEvent* event : {&before, &behind, &further}) event->happen();
        for (int ms = 0; ms < 1000 && deliveries == round; ++ms) runLoop(1);
    }
    EXPECT_EQ(losses.count, 0);
    EXPECT_EQ(deliveries, 20);
    port.unwatch(losses);
}

TEST_F(TickerOnALine, WakesForTheLastBytesOfAReplyAndForNoOtherOnes) {
    ticker.start();
    port.open(1);
    port.setReceiveThreshold(100);
    runLoop(5);
    const auto listens = [this] {
        for (const QSocketNotifier* notifier : ticker.findChildren<QSocketNotifier*>()) {
            if (notifier->socket() == port.descriptor()) return notifier->isEnabled();
        }
        return false;
    };
    EXPECT_FALSE(listens());
    line.send(std::string(96, 'x'));
    runLoop(20);
    EXPECT_TRUE(listens()) << "four are missing";
    line.send("xxxx");
    runLoop(20);
    EXPECT_FALSE(listens());
    port.close();
    runLoop(5);
    EXPECT_TRUE(ticker.findChildren<QSocketNotifier*>().isEmpty());
}

TEST_F(TickerOnALine, TicksOwedFromAPauseDoNotCountAgainstACommandThatIsWrittenBehindIt) {
    port.open(1);
    bool paused = false;
    std::int64_t writtenUs = 0;
    double ahead = 0;  // ticks since the write, less the milliseconds since
    int sinceWrite = 0;
    ticker.onTick([&] {
        if (writtenUs != 0) {
            ++sinceWrite;
            ahead = std::max(ahead, sinceWrite - static_cast<double>(clock.monotonicUs() - writtenUs) / 1000);
        } else if (paused) {
            port.write("F");
            writtenUs = clock.monotonicUs();
        }
    });
    ticker.start();
    runLoop(20);
    pause(200);
    paused = true;
    runLoop(60);
    ASSERT_NE(writtenUs, 0);
    EXPECT_GT(sinceWrite, 20);
    EXPECT_LE(ahead, 4);
}

TEST_F(TickerOnALine, TicksOwedFromAPauseDoNotShortenTheGapBehindTheReplyThatItBrought) {
    port.open(1);
    port.setReceiveThreshold(2);
    std::int64_t deliveredUs = 0;
    std::int64_t tenthUs = 0;
    int behind = 0;
    port.onEvent([&](CommEvent) {
        port.read();
        deliveredUs = clock.monotonicUs();
    });
    ticker.onTick([&] {
        if (deliveredUs != 0 && ++behind == 10) tenthUs = clock.monotonicUs();
    });
    ticker.start();
    runLoop(20);
    line.send("AX");
    pause(200);
    runLoop(100);
    ASSERT_NE(tenthUs, 0);
    // Two of the ten may run early.
    EXPECT_GE(tenthUs - deliveredUs, 7000);
}

TEST_F(TickerOnTheClock, LinesOfAFirmwareNeverFollowAnAnswerBeforeTenMillisecondsInABusyWindow) {
    constexpr int lines = 60;
    TimedUnit unit(lines);
    announce(folder.path(), "A", unit.path());
    RecordingLinkHost host;
    LiveValues live;
    FrameDecoder decoder{live};
    QtYield yield;
    Link link{port, host, decoder, live, clock, yield};
    ticker.onTick([&] { link.tick(); });
    ASSERT_TRUE(link.RS232_Initialize(1));
    ticker.start();
    // A window that paints again and again for some milliseconds, now and then for 50, and is idle in
    // between.
    QTimer window;
    int paint = 0;
    QObject::connect(&window, &QTimer::timeout, [&] {
        const int ms = ++paint % 8 == 0 ? 50 : 1 + paint % 6;
        pause(ms);
    });
    window.start(11);
    std::string text;
    for (int line = 0; line < 2 * lines; ++line) text += "S10510000000EA\n";
    link.programFirmware("test", text, 4);
    QElapsedTimer waiting;
    waiting.start();
    while (!unit.done() && waiting.elapsed() < 60'000) runLoop(20);
    ASSERT_TRUE(unit.done());
    EXPECT_GT(unit.gaps().size(), static_cast<std::size_t>(lines));
    EXPECT_GE(shortestOf(unit.gaps()), shortestGapUs);
    runLoop(20);
    ticker.onTick({});
}

/// Writes as fast as the line takes it until the end of its life.
class Flood {
 public:
    explicit Flood(const PtyPair& line)
        : writer_([this, &line] {
              const std::string bytes(2048, '\x77');
              while (!stop_) sent_ += line.sendSome(bytes);
          }) {}
    ~Flood() { stop(); }
    std::size_t stop() {
        stop_ = true;
        if (writer_.joinable()) writer_.join();
        return sent_;
    }

 private:
    std::atomic<bool> stop_ = false;
    std::size_t sent_ = 0;
    std::thread writer_;
};

TEST_F(TickerOnALine, AUnitThatFloodsLeavesTheWindowAndTheTicksAlive) {
    port.open(1);
    port.setReceiveThreshold(2);
    port.onEvent([&](CommEvent) { port.read(); });
    ticker.start();
    int windowEvents = 0;
    QTimer window;
    QObject::connect(&window, &QTimer::timeout, [&] { ++windowEvents; });
    window.start(10);
    Flood flood(line);
    runLoop(1000);
    const int ticksInFlood = ticks;
    // Modest figures: a machine that builds beside it must not fail the test, a window that hangs must.
    EXPECT_GT(flood.stop(), 100'000U) << "bytes in a second";
    EXPECT_GT(windowEvents, 10) << "of 100";
    EXPECT_GT(ticksInFlood, 100) << "of 1000";

    // What was on its way is over soon, and a reply is a reply again.
    runLoop(100);
    std::vector<std::uint8_t> reply;
    port.read();
    port.onEvent([&](CommEvent) { reply = port.read(); });
    // A terminal that was full may keep what comes next until more follows: the unit is asked more than once.
    for (int i = 0; i < 20 && reply.empty(); ++i) {
        line.send("AX");
        runLoop(50);
    }
    ASSERT_GE(reply.size(), 2U);
    EXPECT_EQ(reply[0], 'A');
    EXPECT_EQ(reply[1], 'X');
}

}  // namespace
}  // namespace zentaq
