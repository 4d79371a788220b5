// What the soak has found, as the shortest story that tells it.
#include <gtest/gtest.h>

#include "base/errors.h"
#include "link/link_bench.h"

namespace zentaq {
namespace {

class SoakFindings : public LinkBench {
 protected:
    /// Answers whether the start of a download was refused.
    bool refused() {
        try {
            link.Program_Unit(TransferMode::Datalog, folder.path("log.dat"));
        } catch (const Failure&) {
            return true;
        }
        return false;
    }

    /// Polls every 10 ms, as the dashboard does.
    void pollFor(int milliseconds) {
        for (int i = 0; i < milliseconds; ++i) {
            if (i % 10 == 0) poller.fire({});
            ticks(1);
        }
    }
};

TEST_F(SoakFindings, AFirmwareReplyOfAUnitWhoseKindIsUnknownIdentifiesNothingAndThePollerStartsOver) {
    open();
    // A user asks for both; the first answer is lost on the way, the second is not.
    port.once("E", "no unit.");
    port.once("B", firmwareReply("DEMO", "ZQA-404099"));
    link.Send_ORB_Command("E");
    link.Send_ORB_Command("B");
    ticks(100);
    EXPECT_EQ(port.takeWritten(), (Texts{"E", "B"}));
    EXPECT_FALSE(link.linked().UnitIdentified);
    EXPECT_EQ(link.CurrentCommand(), "");
    port.always("E", identifyReply(200000));
    port.always("B", firmwareReply("DEMO", "ZQA-404099"));
    pollFor(300);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
}

TEST_F(SoakFindings, ATransferThatTheRingHasLostEndsAfter1001TicksThoughPollingGoesOn) {
    identify(200000, "ZQA-404099");
    port.always("F", std::string(35, '\0'));
    // A frame is in flight; the download waits behind it and is then the oldest of too many.
    link.Send_ORB_Command("F");
    ticks(1);
    ASSERT_FALSE(refused());
    for (int i = 0; i < CommandRing::size; ++i) link.Send_ORB_Command("F");
    pollFor(900);
    EXPECT_TRUE(host.messages.empty());
    EXPECT_TRUE(refused());
    pollFor(200);
    EXPECT_EQ(host.messages, (std::vector<int>{1007}));
    EXPECT_FALSE(link.transfer().active());
    EXPECT_FALSE(refused());
}

TEST_F(SoakFindings, NoTransferBeginsInsideTheBoxOfALinkThatIsBeingLost) {
    identify(200000, "ZQA-404099");
    link.Send_ORB_Command("F");
    ticks(1);
    ASSERT_FALSE(refused());
    // The frame is never answered: the transfer behind it fails, and its box is in view.
    bool refusedInBox = false;
    host.whileBoxShows = [&] { refusedInBox = refused(); };
    ticks(100);
    host.whileBoxShows = nullptr;
    EXPECT_EQ(host.messages, (std::vector<int>{1007}));
    EXPECT_TRUE(refusedInBox);
    EXPECT_FALSE(refused());
}

TEST_F(SoakFindings, NoTransferAndNoSecondSearchBeginsWhileAPortIsSearched) {
    int secondSearch = -1;
    bool refusedInSearch = false;
    yielding.meanwhile = [&] {
        ticks(1);
        if (secondSearch >= 0) return;
        secondSearch = link.Autodetect_COMM_Port();
        refusedInSearch = refused();
    };
    port.unitOnPort(2);
    port.always("E", identifyReply(200000));
    EXPECT_EQ(link.Autodetect_COMM_Port(), 2);
    EXPECT_EQ(secondSearch, 0);
    EXPECT_TRUE(refusedInSearch);
    EXPECT_FALSE(refused());
}

TEST_F(SoakFindings, AYieldThatFailsDoesNotLeaveTheSearchRunning) {
    yielding.meanwhile = [] { throw Failure("closed"); };
    EXPECT_THROW(link.Autodetect_COMM_Port(), Failure);
    yielding.meanwhile = [this] { ticks(1); };
    port.always("E", identifyReply(200000));
    EXPECT_EQ(link.Autodetect_COMM_Port(), 1);
}

}  // namespace
}  // namespace zentaq
