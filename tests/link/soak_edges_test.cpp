// Rare turns of the ring and of the search that only hours of use come by.
#include <gtest/gtest.h>

#include "link/link_bench.h"

namespace zentaq {
namespace {

class LinkEdges : public LinkBench {};

TEST_F(LinkEdges, AnEmptyCommandStallsTheRingUntilACommandIsWrittenOverItsEnd) {
    open();
    link.Send_ORB_Command("");
    // The ring has 512 places: 510 more fill it behind the empty one.
    for (int i = 0; i < 510; ++i) link.Send_ORB_Command("K");
    ticks(50);
    EXPECT_TRUE(port.written().empty());
    link.Send_ORB_Command("T");
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"K"}));
}

TEST_F(LinkEdges, ASearchInVainShowsTheFailureOfEachPort) {
    port.refuseAll();
    Texts shown;
    for (int number = 1; number <= 12; ++number) {
        host.linkDisplay.COMM_StatusMessage("before", "", "", "Connected");
        EXPECT_FALSE(link.RS232_Initialize(number));
        shown.push_back(host.linkDisplay.status().title + "|" + host.linkDisplay.status().line1 + "|" +
                        host.linkDisplay.status().line2);
        EXPECT_FALSE(host.linkDisplay.status().connected) << number;
    }
    const Texts wanted(12,
                       "No Connection Mode|Port is Currently Not Available.|Please Check your Serial "
                       "Connection and try again");
    EXPECT_EQ(shown, wanted);
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_EQ(host.linkDisplay.status().title, "No Connection Mode");
    EXPECT_EQ(host.linkDisplay.status().port, "12") << "the port tried last";
    EXPECT_EQ(host.logLines.size(), 25u);  // twice twelve, and why the one that is in the list cannot be had
}

TEST_F(LinkEdges, AReplyBehindTheLinksTimeOutIsReadAsTheNextReplyOrDrained) {
    find(200000);
    link.Send_ORB_Command("T");
    ticks(1002);
    ASSERT_EQ(link.linked().LinkedUnitKind, 0);
    // Sixteen bytes of codes come when nobody waits any more; the next question gets them first.
    port.send(framed(16, {}));
    ticks(20);
    port.always("E", identifyReply(200000));
    for (int i = 0; i < 3; ++i) {
        link.Send_ORB_Command("E");
        ticks(20);
    }
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
    EXPECT_TRUE(link.linked().UnitFound);
}

}  // namespace
}  // namespace zentaq
