// Ticks and replies without an event loop, on a real terminal with a clock driven by hand.
#include "platform/posix_line_loop.h"

#include <gtest/gtest.h>
#include <poll.h>

#include "platform/posix_clock.h"
#include "platform/pty_pair.h"
#include "testing/manual_clock.h"

namespace zentaq {
namespace {

class LineLoop : public testing::Test {
 protected:
    LineLoop() {
        port.open(1);
        loop.onTick([this] {
            ++ticks;
            if (onTick) onTick();
        });
        loop.start();
    }
    /// Time passes, then one step: a tick is due, so nothing waits.
    void after(std::int64_t us) {
        clock.advanceUs(us);
        loop.yield();
    }

    PtyPair line;
    ManualClock clock;
    PosixSerialPort port{clock, [this] { return std::vector<PortInfo>{{1, line.path(), "", "one"}}; }};
    PosixLineLoop loop{port, clock};
    int ticks = 0;
    std::function<void()> onTick;
};

TEST_F(LineLoop, RunsATickAMillisecond) {
    after(1000);
    EXPECT_EQ(ticks, 1);
    after(999);
    EXPECT_EQ(ticks, 1);
    after(1);
    EXPECT_EQ(ticks, 2);
}

TEST_F(LineLoop, CatchesUpWithAPauseInPortions) {
    after(50'000);
    EXPECT_EQ(ticks, PosixLineLoop::ticksPerStep);
    after(0);
    after(0);
    EXPECT_EQ(ticks, 50);
}

TEST_F(LineLoop, ACommandThatIsWrittenAfterAPauseIsNotHeldLateForIt) {
    onTick = [this] {
        if (ticks == 1) port.write("E");
    };
    after(900'000);
    EXPECT_EQ(ticks, 1) << "the owed ticks were those before the command";
    after(1000);
    EXPECT_EQ(ticks, 2);
}

TEST_F(LineLoop, AReplyIsHandledAtOnceAndTheNextCommandLeaves) {
    port.setReceiveThreshold(2);
    int deliveries = 0;
    port.onEvent([&](CommEvent) { ++deliveries; });
    line.send("AX");
    pollfd arrival{port.descriptor(), POLLIN, 0};
    ASSERT_EQ(::poll(&arrival, 1, 1000), 1);
    after(1000);
    EXPECT_EQ(deliveries, 0);
    EXPECT_EQ(ticks, 0) << "the due tick must not overtake the reply";
    after(ReceiveGate::defaultQuietUs);
    EXPECT_EQ(deliveries, 1);
    EXPECT_EQ(ticks, 3) << "the one held back, and two ahead of their time";
    after(3000);
    EXPECT_EQ(ticks, 4) << "4.52 ms in all";
}

TEST_F(LineLoop, AStepInsideATickDoesNothing) {
    onTick = [this] { loop.yield(); };
    after(1000);
    EXPECT_EQ(ticks, 1);
}

TEST_F(LineLoop, AStoppedLoopRunsNothing) {
    loop.stop();
    after(10'000);
    EXPECT_EQ(ticks, 0);
}

TEST_F(LineLoop, ATickThatThrowsLeavesTheLoopUsable) {
    onTick = [] { throw Failure("no"); };
    EXPECT_THROW(after(1000), Failure);
    onTick = nullptr;
    after(1000);
    EXPECT_EQ(ticks, 2);
}

TEST(LineLoopInRealTime, AThousandTicksAreAboutOneSecondAndStepsWait) {
    const PosixClock clock;
    const PtyPair line;
    PosixSerialPort port{clock, [&] { return std::vector<PortInfo>{{1, line.path(), "", "one"}}; }};
    port.open(1);
    PosixLineLoop loop{port, clock};
    int ticks = 0;
    loop.onTick([&] { ++ticks; });
    loop.start();
    const std::int64_t start = clock.monotonicUs();
    int steps = 0;
    for (; ticks < 100 && steps < 100'000; ++steps) loop.yield();
    EXPECT_GE(clock.monotonicUs() - start, 100'000 - 1000);
    EXPECT_LE(steps, 1000) << "it does not spin";
}

}  // namespace
}  // namespace zentaq
