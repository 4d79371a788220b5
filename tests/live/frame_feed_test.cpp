#include "live/frame_feed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace zentaq {
namespace {

using ::testing::ElementsAre;

TEST(FrameFeed, TellsEachListenerInTheOrderInWhichTheyCame) {
    FrameFeed feed;
    std::vector<std::string> told;
    const auto paint = feed.follow([&] { told.emplace_back("paint"); });
    const auto recorder = feed.follow([&] { told.emplace_back("recorder"); });
    feed.tell();
    EXPECT_THAT(told, ElementsAre("paint", "recorder"));
}

TEST(FrameFeed, AListenerThatHasGoneIsNotTold) {
    FrameFeed feed;
    int frames = 0;
    auto follows = feed.follow([&] { ++frames; });
    feed.tell();
    follows.reset();
    feed.tell();
    EXPECT_EQ(frames, 1);
}

TEST(FrameFeed, AListenerMayBringOneAndEndAnotherWhileTheyAreTold) {
    FrameFeed feed;
    std::vector<std::string> told;
    FrameFeed::Subscription last;
    FrameFeed::Subscription brought;
    const auto first = feed.follow([&] {
        last.reset();
        if (!brought) brought = feed.follow([&] { told.emplace_back("brought"); });
    });
    last = feed.follow([&] { told.emplace_back("last"); });
    feed.tell();
    EXPECT_THAT(told, ElementsAre("brought"));
}

}  // namespace
}  // namespace zentaq
