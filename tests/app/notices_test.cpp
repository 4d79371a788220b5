#include "app/notices.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr std::int64_t aSecond = 1'000'000;

TEST(Notices, ALineGoesHalfAMinuteBehindTheFirstPress) {
    Notices notices;
    notices.tell("Told.");
    notices.userIsThere(100 * aSecond);
    EXPECT_EQ(notices.text(129 * aSecond), "Told.");
    notices.userIsThere(129 * aSecond);
    EXPECT_EQ(notices.text(130 * aSecond), "") << "a further press gives it no further time";
}

TEST(Notices, ALineWaitsForSomebodyWhoIsAway) {
    Notices notices;
    EXPECT_FALSE(notices.waitForSomebody());
    notices.tell("Told.");
    EXPECT_TRUE(notices.waitForSomebody());
    EXPECT_EQ(notices.text(3600 * aSecond), "Told.");
    notices.userIsThere(3600 * aSecond);
    EXPECT_FALSE(notices.waitForSomebody());
}

TEST(Notices, ALaterLineStandsInFrontAndTheFormerOneIsStillThere) {
    Notices notices;
    notices.tell("One.");
    notices.tell("Two.");
    EXPECT_EQ(notices.text(0), "Two.");
    EXPECT_EQ(notices.count(0), 2);
    notices.dismiss(0);
    EXPECT_EQ(notices.text(0), "One.");
    notices.dismiss(0);
    EXPECT_EQ(notices.text(0), "");
    notices.dismiss(0);
    EXPECT_EQ(notices.count(0), 0);
}

TEST(Notices, TheSameLineAgainComesToTheFrontAndWaitsAnew) {
    Notices notices;
    notices.tell("One.");
    notices.tell("Two.");
    notices.userIsThere(0);
    notices.tell("One.");
    EXPECT_EQ(notices.count(0), 2);
    EXPECT_EQ(notices.text(60 * aSecond), "One.");
    EXPECT_EQ(notices.count(60 * aSecond), 1);
}

TEST(Notices, ALineGoesWithWhatItIsAbout) {
    Notices notices;
    bool running = true;
    notices.tell("Older.");
    notices.tell("Wait until it has ended.", [&running] { return running; });
    EXPECT_EQ(notices.text(0), "Wait until it has ended.");
    running = false;
    EXPECT_EQ(notices.text(0), "Older.");
    notices.dismiss(0);
    EXPECT_EQ(notices.text(0), "") << "the one that was read, and not the one that had gone";
}

TEST(Notices, NoMoreStandThanAnybodyReads) {
    Notices notices;
    for (int i = 0; i < 20; ++i) notices.tell("Line " + std::to_string(i));
    EXPECT_EQ(notices.count(0), 9);
    EXPECT_EQ(notices.text(0), "Line 19");
}

}  // namespace
}  // namespace zentaq
