#include "platform/posix_clock.h"

#include <gtest/gtest.h>

#include <regex>

namespace zentaq {
namespace {

TEST(PosixClock, TellsTheTimeOfDay) {
    EXPECT_TRUE(std::regex_match(PosixClock().timeText(), std::regex("[0-2][0-9]:[0-5][0-9]:[0-6][0-9]")));
    EXPECT_FALSE(PosixClock().dateText().empty());
}

TEST(PosixClock, ItsMonotonicTimeNeverGoesBack) {
    const PosixClock clock;
    std::int64_t last = clock.monotonicUs();
    for (int i = 0; i < 1000; ++i) {
        const std::int64_t now = clock.monotonicUs();
        EXPECT_GE(now, last);
        last = now;
    }
}

}  // namespace
}  // namespace zentaq
