#include "link/poller.h"

#include <gtest/gtest.h>

#include "link/link_bench.h"
#include "testing/memory_settings.h"

namespace zentaq {
namespace {

class PollInterval : public testing::TestWithParam<std::pair<const char*, int>> {};

TEST_P(PollInterval, IsTheWholePartOfAThousandByTheRate) {
    MemorySettings settings;
    settings.set("System", "ADUR", GetParam().first);
    EXPECT_EQ(pollIntervalMs(settings), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Rates, PollInterval,
                         testing::Values(std::pair("100", 10), std::pair("50", 20), std::pair("30", 33),
                                         std::pair("3", 333), std::pair("1", 1000), std::pair("0.5", 2000),
                                         std::pair("1000", 1), std::pair("1500", 1), std::pair("999999", 1),
                                         std::pair("", 8), std::pair("0", 8), std::pair("-5", 8),
                                         std::pair("fast", 8)));

TEST(PollIntervalSetting, NeverWrittenGivesTheDesignValue) {
    EXPECT_EQ(pollIntervalMs(MemorySettings()), 8);
}

class PollerTest : public LinkBench {
 protected:
    void fire(int count, PollerView view = {}) {
        for (int i = 0; i < count; ++i) poller.fire(view);
    }
    /// Lets a unit answer all that is queued; the commands as they were written.
    Texts queued() {
        port.otherwise([](const std::string&) { return atOnce(std::string(80, '\0')); });
        ticks(40);
        return port.takeWritten();
    }

    int refreshes = 0;
    int displays = 0;
    Poller poller{link, host.linkDisplay,
                  [this] {
                      ++refreshes;
                      link.Send_ORB_Command("T");
                  },
                  [this] { ++displays; }};
};

/// With narrow frames, which carry the state of inputs and outputs.
class PollerOfOrbA : public PollerTest {
 protected:
    PollerOfOrbA() { identify(200000, "ZQA0004001"); }
};

TEST_F(PollerTest, WithNoUnitItAsksOnEveryTenthFiring) {
    open();
    fire(9);
    EXPECT_EQ(link.ring().count(), 0);
    fire(1);
    EXPECT_EQ(link.ring().count(), 1);
    fire(20);
    EXPECT_EQ(link.ring().count(), 1) << "the first question has not even gone out";
    EXPECT_TRUE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(host.linkDisplay.status().noConnectText, "Connecting...");
    EXPECT_EQ(displays, 0);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"E"}));
}

TEST_F(PollerTest, AFoundUnitThatIsNotIdentifiedIsAskedAgain) {
    find(200000);
    ASSERT_TRUE(link.linked().UnitFound);
    fire(10);
    ticks(2000);  // it does not answer
    fire(9);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"E"}));
    fire(1);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"E", "E"}));
}

TEST_F(PollerTest, WhileAnAnswerIsWaitedForNoFurtherQuestionsPileUp) {
    open();
    port.once("E", identifyReply(200001));
    fire(10);
    ticks(20);
    ASSERT_EQ(link.CurrentCommand(), "B");
    for (int i = 0; i < 90; ++i) {  // the answer to B is lost
        fire(1);
        ticks(10);
        ASSERT_EQ(link.ring().count(), 0) << i;
    }
    ticks(120);
    fire(10);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"E", "B", "E"}));
}

TEST_F(PollerTest, AUnitWithOldFirmwareStaysInTheSearch) {
    open();
    exchange("E", bytes({0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
    fire(10);
    EXPECT_EQ(host.linkDisplay.status().noConnectText, "Connecting...");
    EXPECT_TRUE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(PollerOfOrbA, AnIdentifiedUnitIsAskedForNarrowFrames) {
    fire(1);
    EXPECT_EQ(displays, 1);
    EXPECT_FALSE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(queued(), (Texts{"F"}));
}

TEST_F(PollerTest, AUnitWithTheWideMonitorIsAskedForWideFrames) {
    identify(200000, "ZQA0005001");
    fire(1);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"W"}));
}

TEST_F(PollerOfOrbA, FiveWaitingCommandsAreEnoughButTheDisplayGoesOn) {
    fire(8);
    EXPECT_EQ(link.ring().count(), 5);
    EXPECT_EQ(displays, 8);
}

TEST_F(PollerOfOrbA, FourWaitingCommandsLeaveRoomForOne) {
    for (int i = 0; i < 4; ++i) link.Send_ORB_Command("K");
    fire(1);
    EXPECT_EQ(link.ring().count(), 5);
    fire(1);
    EXPECT_EQ(link.ring().count(), 5);
}

TEST_F(PollerTest, InputAndOutputStateIsAskedForOnEveryFourthFiring) {
    identify(300000, "ZQL0003001");
    Texts all;
    for (int i = 0; i < 8; ++i) {
        fire(1);
        for (const std::string& command : queued()) all.push_back(command);
    }
    // The count stands at 3 on the fourth firing, which asks and starts over with its own addition.
    EXPECT_EQ(all, (Texts{"F", "F", "F", "F", "I", "F", "F", "F", "I", "F"}));
}

TEST_F(PollerOfOrbA, AUnitWhoseFramesCarryTheStateIsNotAskedForIt) {
    for (int i = 0; i < 10; ++i) {
        fire(1);
        EXPECT_EQ(queued(), (Texts{"F"}));
    }
}

TEST_F(PollerTest, TheWideMonitorCarriesTheStateItself) {
    identify(300000, "ZQL0007001");
    fire(4);
    EXPECT_EQ(queued(), (Texts{"W", "W", "W", "W"}));
    identify(300000, "ZQL0003001");
    fire(1);
    EXPECT_EQ(queued(), (Texts{"F", "I"})) << "the firings were counted all the same";
}

TEST_F(PollerOfOrbA, CodesAreRefreshedOnTheFiftyFirstFiring) {
    for (int i = 0; i < 50; ++i) {
        fire(1);
        queued();
    }
    EXPECT_EQ(refreshes, 0);
    fire(1);
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(queued(), (Texts{"F", "T"}));
    for (int i = 0; i < 49; ++i) {
        fire(1);
        queued();
    }
    EXPECT_EQ(refreshes, 1);
    fire(1);
    EXPECT_EQ(refreshes, 2) << "the firing that asks counts for the next time";
}

TEST_F(PollerOfOrbA, WithNoRoomTheCodesWait) {
    fire(60);
    EXPECT_EQ(refreshes, 0);
    queued();
    fire(1);
    EXPECT_EQ(refreshes, 1);
}

// A wide frame of 65 bytes takes 17 ms, so a firing each 10 ms finds one free place at most.
TEST_F(PollerTest, WhereFramesTakeEveryFreePlaceTheCodesGoFirstAfter25FiringsInVain) {
    identify(200000, "ZQA0005001");
    port.always("W", std::string(65, '\0'));
    port.always("T", std::string(16, '\0'));
    port.takeWritten();
    for (int firing = 0; firing < 300; ++firing) {
        fire(1);
        ticks(10);
    }
    // Due at the 51st firing and in vain until the 75th at least, so four times at most in 300 firings.
    const Texts written = port.takeWritten();
    EXPECT_GE(std::ranges::count(written, "T"), 3);
    EXPECT_LE(std::ranges::count(written, "T"), 4);
    EXPECT_GE(std::ranges::count(written, "W"), 150);
}

TEST_F(PollerOfOrbA, WhileAChangeIsOnTheWireThePanelSaysUpdating) {
    link.SEND_ONFLY("S104");
    ticks(1);
    ASSERT_TRUE(link.OnFlyBusy());
    fire(3);
    EXPECT_TRUE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(host.linkDisplay.status().noConnectText, "Updating");
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_EQ(displays, 0);
}

TEST_F(PollerOfOrbA, BehindTheSecondTabItOnlyMovesThePanelAway) {
    host.linkDisplay.showNoConnectPanel("Connecting...");
    fire(20, {.tab2Showing = true});
    EXPECT_FALSE(host.linkDisplay.status().noConnectPanel);
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_EQ(displays, 0);
}

TEST_F(PollerTest, BehindTheSecondTabNoUnitIsSearched) {
    open();
    fire(29, {.tab2Showing = true});
    EXPECT_EQ(link.ring().count(), 0);
    fire(9);
    EXPECT_EQ(link.ring().count(), 0) << "firings behind the tab do not count";
    fire(1);
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(PollerOfOrbA, AutoVeCoversTheDashboardOnEveryTab) {
    for (const bool second : {false, true}) {
        fire(1, {.tab2Showing = second, .autoVeOn = true});
        EXPECT_TRUE(host.linkDisplay.status().noConnectPanel);
        EXPECT_EQ(host.linkDisplay.status().noConnectText, "AutoVE ON");
    }
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(PollerOfOrbA, SuspendedPollingQueuesNothing) {
    link.AutoPollSuspended(true);
    fire(60);
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_EQ(refreshes, 0);
    link.AutoPollSuspended(false);
    fire(1);
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(PollerTest, SuspendedPollingSearchesNoUnit) {
    open();
    link.AutoPollSuspended(true);
    fire(30);
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(PollerOfOrbA, ALostLinkGoesBackToTheSearch) {
    fire(1);
    ticks(1 + 84);
    ASSERT_FALSE(link.linked().UnitIdentified);
    fire(10);
    EXPECT_EQ(host.linkDisplay.status().noConnectText, "Connecting...");
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"F", "E"}));
}

TEST_F(PollerTest, OnAClosedPortTheQueueDoesNotGrowWithoutBound) {
    for (int i = 0; i < 2000; ++i) {
        fire(1);
        ticks(10);
        ASSERT_LE(link.ring().count(), 12);
    }
}

}  // namespace
}  // namespace zentaq
