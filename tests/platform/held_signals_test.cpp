#include "platform/held_signals.h"

#include <gtest/gtest.h>

#include "platform/other_process.h"

namespace zentaq {
namespace {

/// How a process ended that gets a signal while it holds signals off, and works on for a moment.
int statusAfter(int number) {
    OtherProcess process([number](const OtherProcess::Say&) {
        bool worked = false;
        {
            const HeldSignals held(userSignals);
            ::raise(number);
            worked = true;
        }
        ::_exit(worked ? 7 : 8);
    });
    return process.wait(true);
}

TEST(HeldSignals, EndTheProgramBehindWhatWasProtected) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const int status = statusAfter(number);
        ASSERT_TRUE(WIFSIGNALED(status)) << number;
        EXPECT_EQ(WTERMSIG(status), number);
    }
}

TEST(HeldSignals, StopTheProgramBehindWhatWasProtected) {
    EXPECT_TRUE(WIFSTOPPED(statusAfter(SIGTSTP)));
}

TEST(HeldSignals, OutputInTheBackgroundIsNotDueLater) {
    const int status = statusAfter(SIGTTOU);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 7);
}

TEST(HeldSignals, DoNothingToTheWorkItself) {
    int reached = 0;
    const auto former = std::signal(SIGINT, SIG_IGN);  // so that this program lives on
    {
        const HeldSignals held({SIGTERM, SIGINT});
        ::raise(SIGINT);
        ++reached;
    }
    EXPECT_EQ(reached, 1) << "ignored before, ignored meanwhile";
    std::signal(SIGINT, former);
}

}  // namespace
}  // namespace zentaq
