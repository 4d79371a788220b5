#include "platform/posix_stop_signals.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <string>

#include "base/errors.h"
#include "platform/other_process.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

bool endsTheProgram(int number) {
    struct sigaction action {};
    ::sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_DFL;
}

TEST(StopSignals, ASignalIsAQuestionAndNotTheEnd) {
    PosixStopSignals signals;
    EXPECT_EQ(signals.received(), 0);
    ::raise(SIGTERM);
    pollfd watched{signals.descriptor(), POLLIN, 0};
    EXPECT_EQ(::poll(&watched, 1, 1000), 1);
    EXPECT_EQ(signals.received(), SIGTERM);
    EXPECT_EQ(signals.received(), SIGTERM) << "it stays known";
    EXPECT_EQ(::poll(&watched, 1, 0), 0) << "and nobody is woken again";
}

TEST(StopSignals, TheFirstOneCounts) {
    PosixStopSignals signals;
    ::raise(SIGINT);
    EXPECT_EQ(signals.received(), SIGINT);
    ::raise(SIGTERM);
    EXPECT_EQ(signals.received(), SIGINT);
    signals.forget();
    EXPECT_EQ(signals.received(), 0);
    ::raise(SIGTERM);
    EXPECT_EQ(signals.received(), SIGTERM);
}

TEST(StopSignals, AreAsBeforeWhenTheObjectGoes) {
    ASSERT_TRUE(endsTheProgram(SIGINT));
    {
        const PosixStopSignals signals;
        EXPECT_FALSE(endsTheProgram(SIGINT));
        ::raise(SIGINT);  // never asked for, and no end of this program either
    }
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGALRM}) EXPECT_TRUE(endsTheProgram(number)) << number;
}

TEST(StopSignals, OneThatIsIgnoredStaysIgnored) {
    const auto former = std::signal(SIGHUP, SIG_IGN);
    PosixStopSignals signals;
    ::raise(SIGHUP);
    EXPECT_EQ(signals.received(), 0);
    std::signal(SIGHUP, former);
}

TEST(StopSignals, AreWatchedByOneObjectAtATime) {
    const PosixStopSignals signals;
    EXPECT_THROW(PosixStopSignals(), Failure);
}

TEST(StopSignals, EndAWriteThatDoesNotComeBack) {
    OtherProcess child([](const OtherProcess::Say& say) {
        const PosixStopSignals signals;
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) ::_exit(9);
        say('w');
        const std::string much(1 << 20, 'x');
        while (::write(ends[1], much.data(), much.size()) > 0) {
        }
    });
    ASSERT_EQ(child.said(), 'w');
    child.waitUntilItSleeps();
    child.signal(SIGINT);
    const int status = child.wait();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST(StopSignals, EndAnOpenThatDoesNotComeBack) {
    const TemporaryFolder folder;
    const std::string pipe = folder.path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    OtherProcess child([&](const OtherProcess::Say& say) {
        const PosixStopSignals signals;
        say('o');
        ::open(pipe.c_str(), O_WRONLY);
    });
    ASSERT_EQ(child.said(), 'o');
    child.waitUntilItSleeps();
    child.signal(SIGTERM);
    const int status = child.wait();
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

/// Lives through a transfer of a second, asking all the time, and tells what it was asked.
void transfer(const OtherProcess::Say& say) {
    PosixStopSignals signals;
    {
        const auto hold = signals.hold();
        say('b');
        int last = 0;
        for (int ms = 0; ms < 1000; ++ms) {
            ::usleep(1000);
            if (const int number = signals.received(); number != last) say(number == SIGQUIT ? 'q' : 'o');
            last = signals.received();
        }
        say('e');
    }
    say('a');
}

TEST(HeldStopSignals, CtrlZTakesEffectBehindTheTransfer) {
    OtherProcess child(transfer);
    ASSERT_EQ(child.said(), 'b');
    child.signal(SIGTSTP);
    EXPECT_EQ(child.said(), 'e');
    const int status = child.wait(true);
    ASSERT_TRUE(WIFSTOPPED(status));
    EXPECT_EQ(WSTOPSIG(status), SIGTSTP);
    child.signal(SIGCONT);
    EXPECT_EQ(child.said(), 'a');
}

TEST(HeldStopSignals, OutputFromTheBackgroundStopsNothing) {
    OtherProcess child(transfer);
    ASSERT_EQ(child.said(), 'b');
    child.signal(SIGTTOU);
    EXPECT_EQ(child.said(), 'e');
    EXPECT_EQ(child.said(), 'a');
}

TEST(HeldStopSignals, CtrlBackslashIsAskedForLikeCtrlC) {
    OtherProcess child(transfer);
    ASSERT_EQ(child.said(), 'b');
    child.signal(SIGQUIT);
    EXPECT_EQ(child.said(), 'q');
    EXPECT_EQ(child.said(), 'e');
    EXPECT_EQ(child.said(), 'a');
    EXPECT_EQ(child.wait(), 0);
}

TEST(HeldStopSignals, NothingEndsATransferThatDoesNotAsk) {
    OtherProcess child([](const OtherProcess::Say& say) {
        PosixStopSignals signals;
        const auto hold = signals.hold();
        say('b');
        for (int ms = 0; ms < 1500; ++ms) ::usleep(1000);
        say(signals.received() == SIGINT ? 'i' : 'n');
    });
    ASSERT_EQ(child.said(), 'b');
    child.signal(SIGINT);
    EXPECT_EQ(child.said(), 'i');
    EXPECT_EQ(child.wait(), 0);
}

TEST(HeldStopSignals, AreAsBeforeBehindTheTransfer) {
    PosixStopSignals signals;
    { const auto hold = signals.hold(); }
    for (const int number : {SIGQUIT, SIGTSTP, SIGTTOU, SIGPIPE})
        EXPECT_TRUE(endsTheProgram(number)) << number;
    EXPECT_FALSE(endsTheProgram(SIGINT)) << "this one is still asked for";
}

}  // namespace
}  // namespace zentaq
