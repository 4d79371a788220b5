#include "logs/log_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "logs/log_fixture.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

/// A row each 0.02 s, from 0 on.
LogColumns speeds(const std::vector<int>& rpms) {
    std::string text = "Frame,RPM,MAP\n";
    for (std::size_t i = 0; i < rpms.size(); ++i)
        text += std::to_string(i) + "," + std::to_string(rpms[i]) + ",1\n";
    return logOf(text);
}

void add(LogColumns& log, int rpm) {
    log.append(std::vector<double>{static_cast<double>(log.rows()), static_cast<double>(rpm), 1.0});
}

TEST(LogSearch, FindsTheSameInSlicesOfAnySize) {
    const LogColumns log = speeds({1, 5, 5, 1, 5, 5, 5, 1, 1, 5});
    for (const std::size_t slice : {1U, 2U, 3U, 7U, 100U}) {
        LogSearch search;
        search.begin(log, "RPM > 3");
        while (search.step(slice)) continue;
        EXPECT_THAT(search.hits(), ElementsAre(LogHit{1, 2}, LogHit{4, 6}, LogHit{9, 9})) << slice;
    }
}

TEST(LogSearch, TellsHowFarItIs) {
    const LogColumns log = speeds({1, 5, 5, 1});
    LogSearch search;
    search.begin(log, "RPM > 3");
    EXPECT_TRUE(search.step(1));
    EXPECT_EQ(search.share(), 0.25);
    EXPECT_FALSE(search.step(3));
    EXPECT_EQ(search.share(), 1);
}

TEST(LogSearch, GoesOnWhereTheLogHasGrownAndAHitGrowsWithIt) {
    LogColumns log = speeds({1, 5});
    LogSearch search;
    search.begin(log, "RPM > 3");
    EXPECT_FALSE(search.step(100));
    add(log, 6);
    add(log, 1);
    add(log, 7);
    EXPECT_FALSE(search.step(100));
    EXPECT_THAT(search.hits(), ElementsAre(LogHit{1, 2}, LogHit{4, 4}));
}

TEST(LogSearch, ALogThatBecameAnotherOneIsLeftAlone) {
    LogColumns log = speeds({5, 5, 5, 5});
    LogSearch search;
    search.begin(log, "MAP > 0");
    EXPECT_TRUE(search.step(1));
    DatalogHead head;
    head.columns = {"Frame"};
    log.begin(head);
    for (int i = 0; i < 9; ++i) log.append(std::vector<double>{1.0});
    EXPECT_FALSE(search.step(100));
    EXPECT_FALSE(search.valid());
    EXPECT_EQ(search.from(0, 1), std::nullopt);
}

TEST(LogSearch, ARefusedConditionLeavesTheSearchAsItWas) {
    const LogColumns log = speeds({1, 5});
    LogSearch search;
    search.begin(log, "RPM > 3");
    EXPECT_FALSE(search.step(100));
    EXPECT_THROW(search.begin(log, "RPM >"), ExpressionError);
    EXPECT_THAT(search.hits(), ElementsAre(LogHit{1, 1}));
    EXPECT_TRUE(search.valid());
}

TEST(LogSearch, GoesFromHitToHitInBothDirectionsAndRound) {
    const LogColumns log = speeds({5, 1, 5, 1, 1, 5, 5});  // hits begin at 0, 0.04 and 0.1 s
    LogSearch search;
    search.begin(log, "RPM > 3");
    while (search.step(100)) continue;
    EXPECT_EQ(search.from(0, 1), 1U);
    EXPECT_EQ(search.from(0.04, 1), 2U);
    EXPECT_EQ(search.from(0.06, -1), 1U);
    EXPECT_EQ(search.from(0.04, -1), 0U);
    EXPECT_EQ(search.from(0.12, 1), 0U) << "behind the last one comes the first";
    EXPECT_EQ(search.from(0, -1), 2U);
}

TEST(LogSearch, SaysHowManyHitsThereAreAndHowLongTheyLast) {
    std::vector<int> rpms(501, 1);  // 10 s
    for (int i = 100; i <= 150; ++i) rpms[static_cast<std::size_t>(i)] = 5;
    LogColumns log = speeds(rpms);
    LogSearch search;
    search.begin(log, "RPM > 3");
    while (search.step(100)) continue;
    EXPECT_EQ(search.text(), "1 hit, 1 s of 10 s");
    search.begin(log, "RPM > 9");
    while (search.step(100)) continue;
    EXPECT_EQ(search.text(), "No row of the log holds");
}

}  // namespace
}  // namespace zentaq
