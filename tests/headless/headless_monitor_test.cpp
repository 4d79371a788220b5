// Watching a scripted unit in virtual time.
#include "headless/headless_monitor.h"

#include <gmock/gmock.h>

#include <sstream>

#include "headless/headless_bench.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class Monitor : public HeadlessBench {
 protected:
    void SetUp() override {
        port.always("T", framed(16, {}));
        port.always("W", atOnce(framed(65, {{3, 4}, {4, 176}})));  // 4 * 256 + 176 = 1200 rpm
        identify();
        wishes.durationUs = 1'000'000;
        wishes.onLink = [this](bool there) { link.push_back(there); };
        wishes.onSecond = [this](int second) { seconds.push_back(second); };
        wishes.onFrame = [this](std::int64_t us) {
            lastUs = us;
            ++frames;
        };
        startUs = clock.monotonicUs();
    }
    Ending run() { return HeadlessMonitor(session, wishes).run(); }
    std::int64_t elapsedUs() const { return clock.monotonicUs() - startUs; }

    HeadlessMonitor::Wishes wishes;
    std::vector<bool> link;
    std::vector<int> seconds;
    int frames = 0;
    std::int64_t lastUs = 0;
    std::int64_t startUs = 0;
};

TEST_F(Monitor, PollsAsTheDashboardDoesUntilTheTimeIsOver) {
    EXPECT_EQ(run(), Ending::Done);
    EXPECT_NEAR(static_cast<double>(elapsedUs()), 1e6, 2000);
    // A poll each 8 ms, 125 a second; the codes come with each fiftieth.
    EXPECT_GE(frames, 112);
    EXPECT_LE(frames, 126);
    EXPECT_GE(std::ranges::count(port.written(), "T"), 1);
    EXPECT_EQ(session.live().RPM, 1200);
    EXPECT_GT(lastUs, 900'000);
    EXPECT_THAT(seconds, ElementsAre(1));
    EXPECT_TRUE(link.empty());
}

TEST_F(Monitor, EndsWhenTheUserWants) {
    wishes.durationUs.reset();
    pass.meanwhile = [this] { stop = frames >= 300; };
    EXPECT_EQ(run(), Ending::Stopped);
    EXPECT_THAT(seconds, ElementsAre(1, 2));
}

TEST_F(Monitor, RecordsALineEachFiftiethOfASecond) {
    std::ostringstream log;
    wishes.log = &log;
    HeadlessMonitor monitor(session, wishes);
    EXPECT_EQ(monitor.run(), Ending::Done);
    EXPECT_EQ(monitor.records(), 50);
    std::istringstream lines(log.str());
    std::string line;
    for (int i = 0; i < 3; ++i) std::getline(lines, line);
    EXPECT_THAT(line, StartsWith("Frame\tRPM\tMAP\t"));
    std::getline(lines, line);
    EXPECT_THAT(line, StartsWith("1\t1200\t"));
    while (std::getline(lines, line) && !line.starts_with("50\t")) {
    }
    EXPECT_THAT(line, StartsWith("50\t1200\t"));
}

TEST_F(Monitor, FindsAUnitAgainThatWasAway) {
    std::ostringstream log;
    wishes.log = &log;
    wishes.durationUs = 5'000'000;
    pass.meanwhile = [this] { port.silent(elapsedUs() > 500'000 && elapsedUs() < 2'000'000); };
    HeadlessMonitor monitor(session, wishes);
    EXPECT_EQ(monitor.run(), Ending::Done);
    EXPECT_THAT(link, ElementsAre(false, true));
    EXPECT_LT(monitor.records(), 230) << "nothing is recorded while the unit is away";
    EXPECT_GT(monitor.records(), 100);
    EXPECT_THAT(log.str(), HasSubstr("\n250\t")) << "and the frame number is the time";
}

TEST_F(Monitor, GivesUpAfterFiveSecondsOfSilence) {
    wishes.durationUs.reset();
    pass.meanwhile = [this] { port.silent(frames >= 3); };
    EXPECT_EQ(run(), Ending::Silent);
    EXPECT_EQ(frames, 3);
    EXPECT_NEAR(static_cast<double>(elapsedUs()), 5e6, 100'000);
}

TEST_F(Monitor, IsSilentWhereTheUnitIsAwayWhenTheTimeIsOver) {
    wishes.durationUs = 2'000'000;
    pass.meanwhile = [this] { port.silent(frames >= 3); };
    EXPECT_EQ(run(), Ending::Silent);
}

TEST_F(Monitor, IsUnclearWhereNoFrameCanBeRead) {
    std::string damaged = framed(65, {});
    damaged[10] = 1;
    port.always("W", atOnce(damaged));
    EXPECT_EQ(run(), Ending::Unclear);
    wishes.durationUs.reset();
    EXPECT_EQ(run(), Ending::Unclear) << "after five seconds";
    EXPECT_EQ(frames, 0);
}

TEST_F(Monitor, EndsWhereItsLogCannotBeWritten) {
    std::ofstream log("/dev/full");
    wishes.log = &log;
    wishes.durationUs.reset();
    EXPECT_EQ(run(), Ending::NotWritten);
    EXPECT_LT(elapsedUs(), 1'100'000) << "at the first flush";
}

}  // namespace
}  // namespace zentaq
