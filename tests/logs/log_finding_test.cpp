#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "logs/log_finding.h"
#include "logs/log_fixture.h"

namespace zentaq {
namespace {

std::vector<LogHit> hitsOf(const std::string& rpms, const std::string& condition) {
    std::string text = "Frame,RPM,MAP\n";
    int frame = 0;
    std::istringstream in(rpms);
    for (std::string rpm; in >> rpm;) text += std::to_string(++frame) + "," + rpm + ",1\n";
    const LogColumns log = logOf(text);
    return findHits(log, LogExpression(condition, log.names()));
}

TEST(LogFinding, RowsThatFollowOneAnotherAreOneHit) {
    EXPECT_THAT(hitsOf("1 5 5 1 5 1", "RPM > 3"), testing::ElementsAre(LogHit{1, 2}, LogHit{4, 4}));
}

TEST(LogFinding, AHitMayBeginWithTheLogAndEndWithIt) {
    EXPECT_THAT(hitsOf("5 1 5", "RPM > 3"), testing::ElementsAre(LogHit{0, 0}, LogHit{2, 2}));
    EXPECT_THAT(hitsOf("5 5 5", "RPM > 3"), testing::ElementsAre(LogHit{0, 2}));
}

TEST(LogFinding, NothingIsFoundWhereNothingHolds) {
    EXPECT_TRUE(hitsOf("1 2 3", "RPM > 3").empty());
    EXPECT_TRUE(hitsOf("", "RPM > 3").empty());
}

}  // namespace
}  // namespace zentaq
