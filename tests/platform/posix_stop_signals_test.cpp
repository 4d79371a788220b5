#include "platform/posix_stop_signals.h"

#include <gtest/gtest.h>
#include <poll.h>

namespace zentaq {
namespace {

bool isBlocked(int number) {
    sigset_t mask;
    ::pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return ::sigismember(&mask, number) == 1;
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
}

TEST(StopSignals, AreAsBeforeWhenTheObjectGoes) {
    ASSERT_FALSE(isBlocked(SIGINT));
    {
        const PosixStopSignals signals;
        EXPECT_TRUE(isBlocked(SIGINT));
        ::raise(SIGINT);  // never asked for, and no end of this program either
    }
    EXPECT_FALSE(isBlocked(SIGINT));
}

TEST(StopSignals, OneThatIsIgnoredStaysIgnored) {
    const auto former = ::signal(SIGHUP, SIG_IGN);
    PosixStopSignals signals;
    EXPECT_FALSE(isBlocked(SIGHUP));
    ::raise(SIGHUP);
    EXPECT_EQ(signals.received(), 0);
    ::signal(SIGHUP, former);
}

}  // namespace
}  // namespace zentaq
