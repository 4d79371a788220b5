// Where an on-the-fly record stands among the commands that wait.
#include "link/link_bench.h"

namespace zentaq {
namespace {

class OnTheFlyOrder : public LinkBench {
 protected:
    OnTheFlyOrder() {
        open();
        for (const char* command : {"A", "K", "S", "P2one", "P2two", "P2three"})
            port.always(command, atOnce("AX"));
        for (const char* poll : {"W", "F", "I", "T"}) port.always(poll, atOnce("?"));
    }

    void queue(const Texts& commands) {
        for (const std::string& command : commands) link.Send_ORB_Command(command);
    }
    /// What goes over the line until nothing waits any more. With no unit known a poll asks for one byte.
    Texts sent() {
        ticks(100);
        return port.written();
    }
};

TEST_F(OnTheFlyOrder, ARecordGoesInFrontOfThePollsThatWait) {
    queue({"W", "W", "I", "T", "F"});
    link.SEND_ONFLY("one");
    EXPECT_EQ(link.ring().count(), 6);
    EXPECT_EQ(sent(), (Texts{"P2one", "W", "W", "I", "T", "F"}));
}

TEST_F(OnTheFlyOrder, RecordsKeepTheirOrder) {
    queue({"W", "W"});
    link.SEND_ONFLY("one");
    link.SEND_ONFLY("two");
    queue({"W"});
    link.SEND_ONFLY("three");
    EXPECT_EQ(sent(), (Texts{"P2one", "P2two", "P2three", "W", "W", "W"}));
}

TEST_F(OnTheFlyOrder, TheCommandInFlightIsAnsweredFirst) {
    port.always("W", ScriptedReply{.bytes = "?", .delayUs = 3000, .byteUs = 0});
    queue({"W", "W"});
    ticks(1);
    link.SEND_ONFLY("one");
    EXPECT_EQ(sent(), (Texts{"W", "P2one", "W"}));
}

TEST_F(OnTheFlyOrder, StoringStaysBehindTheRecordsThatItStores) {
    queue({"W"});
    link.SEND_ONFLY("one");
    queue({"S"});
    EXPECT_EQ(sent(), (Texts{"P2one", "W", "S"}));
}

TEST_F(OnTheFlyOrder, ARecordPassesNoCommandOfTheUser) {
    for (const std::string command : {"S", "A", "K"}) {
        port.takeWritten();
        queue({"W", command, "W"});
        link.SEND_ONFLY("one");
        EXPECT_EQ(sent(), (Texts{"W", command, "P2one", "W"})) << command;
    }
}

TEST_F(OnTheFlyOrder, ItHoldsAcrossTheEndOfTheRing) {
    for (int i = 0; i < CommandRing::size - 2; ++i) {
        queue({"W"});
        ticks(3);
    }
    port.takeWritten();
    EXPECT_EQ(link.ring().tail(), CommandRing::size - 2);
    queue({"W", "W", "W"});
    EXPECT_EQ(link.ring().tail(), 1);
    link.SEND_ONFLY("one");
    EXPECT_EQ(link.ring().tail(), 2);
    EXPECT_EQ(sent(), (Texts{"P2one", "W", "W", "W"}));
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(OnTheFlyOrder, AFullRingLosesItsOldestPollAndNoRecord) {
    for (int i = 0; i < CommandRing::size - 1; ++i) queue({"W"});
    link.SEND_ONFLY("one");
    const int waiting = (link.ring().tail() - link.ring().head()) & (CommandRing::size - 1);
    EXPECT_EQ(waiting, CommandRing::size - 1);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"P2one"}));
}

}  // namespace
}  // namespace zentaq
