#include "qt/qt_ticker.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <thread>

#include "app/fake_platform.h"
#include "qt/port_list.h"
#include "qt/qt_clock.h"
#include "windows/pty_pair.h"

namespace zentaq {
namespace {

/// Here the real clock is the thing under test, so these tests take real tenths of seconds.
class TickerOnTheClock : public testing::Test {
 protected:
    TemporaryFolder folder;
    QtClock clock;
    QtSerialPort port{clock, [this] { return orderedPorts(simulatedPorts(folder.path()), {}); }};
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
    /// Runs until the ticks that are owed have been caught up with, and compares with the clock.
    void expectOneTickAMillisecond(std::int64_t startUs) {
        runLoop(60);
        const auto elapsedMs = static_cast<double>(clock.monotonicUs() - startUs) / 1000.0;
        EXPECT_NEAR(ticks, elapsedMs, 25);
    }
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
    std::this_thread::sleep_for(std::chrono::milliseconds(150));  // A window that paints for long.
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

TEST_F(TickerOnTheClock, AReplyThatCameDuringAPauseIsDeliveredBeforeTheOwedTicks) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
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
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    runLoop(60);
    ASSERT_GE(ticksAtDelivery, 0);
    EXPECT_LE(ticksAtDelivery - before, 3) << "ticks owed from the pause must not count against the reply";
}

TEST_F(TickerOnTheClock, TicksOwedFromAPauseDoNotCountAgainstACommandThatIsWrittenBehindIt) {
    const PtyPair line;
    announce(folder.path(), "A", line.path());
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
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    paused = true;
    runLoop(60);
    ASSERT_NE(writtenUs, 0);
    EXPECT_GT(sinceWrite, 20);
    EXPECT_LE(ahead, 4);
}

}  // namespace
}  // namespace zentaq
