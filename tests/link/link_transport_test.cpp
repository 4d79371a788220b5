#include <gtest/gtest.h>

#include <utility>

#include "link/link_bench.h"

namespace zentaq {
namespace {

class LinkTransport : public LinkBench {};

TEST_F(LinkTransport, LoadWritesItsLinesShowsThePortAndOpensIt) {
    link.commPort(4);
    link.load();
    EXPECT_EQ(host.logLines, (Texts{"COMM. Initialized.", "Initializing Communication with ORB",
                                    "Connection with ORB Established."}));
    EXPECT_EQ(host.linkDisplay.status().port, "4");
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{4}));
}

TEST_F(LinkTransport, LoadEmptiesTheRing) {
    link.Send_ORB_Command("T");
    link.load();
    ticks(3);
    EXPECT_TRUE(port.written().empty());
}

TEST_F(LinkTransport, UnloadWritesItsLine) {
    link.unload();
    EXPECT_EQ(host.logLines, (Texts{"COMM. Terminated."}));
}

TEST_F(LinkTransport, OpeningReportsConnected) {
    EXPECT_TRUE(link.RS232_Initialize(2));
    EXPECT_TRUE(host.linkDisplay.status().connected);
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Connected);
    EXPECT_EQ(statusTexts(), (Texts{"Connected", "RS232 Connection Initialized!", ""}));
    EXPECT_EQ(host.logLines, (Texts{"Connection with ORB Established."}));
    EXPECT_EQ(port.threshold(), 0);
}

TEST_F(LinkTransport, APortThatCannotBeOpenedReportsNoConnection) {
    port.refuse(3);
    EXPECT_FALSE(link.RS232_Initialize(3));
    EXPECT_FALSE(host.linkDisplay.status().connected);
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::NoConnect);
    EXPECT_EQ(statusTexts(), (Texts{"No Connection Mode", "Port is Currently Not Available.",
                                    "Please Check your Serial Connection and try again"}));
    EXPECT_EQ(host.logLines, (Texts{"COMM Port:3 Not Available, Cannot Open Connection."}));
}

TEST_F(LinkTransport, CommPortZeroOpensPortOneAndIsTold) {
    EXPECT_TRUE(link.RS232_Initialize(0));
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{1}));
    EXPECT_EQ(link.commPort(), 1);
    EXPECT_EQ(host.portsForced, 1);
}

TEST_F(LinkTransport, NegativeCommPortOpensPortOne) {
    link.commPort(-5);
    link.ORB_Initialize();
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{1}));
}

TEST_F(LinkTransport, APortWithNoUnitOpensFineAndOnlyTheSerialNumberTells) {
    EXPECT_TRUE(link.RS232_Initialize(1));
    EXPECT_TRUE(host.linkDisplay.status().connected);
    EXPECT_EQ(link.linked().SerialNumber, 0);
}

TEST_F(LinkTransport, ASecondInitializeClosesAndReopens) {
    link.RS232_Initialize(1);
    link.RS232_Initialize(1);
    EXPECT_EQ(port.closes(), 1);
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{1, 1}));
    EXPECT_TRUE(port.isOpen());
}

TEST_F(LinkTransport, ReopeningWithAnIdentifiedUnitHidesTheProgressBar) {
    identify(200000, "ZQA0005001");
    host.linkDisplay.editStatus().progressVisible = true;
    link.RS232_Initialize(1);
    EXPECT_FALSE(host.linkDisplay.status().progressVisible);
}

TEST_F(LinkTransport, ReopeningWithNoUnitLeavesTheProgressBar) {
    host.linkDisplay.editStatus().progressVisible = true;
    link.RS232_Initialize(1);
    EXPECT_TRUE(host.linkDisplay.status().progressVisible);
}

TEST_F(LinkTransport, ClosingWritesItsLineAlsoWhenNothingIsOpen) {
    open();
    link.RS232_Close();
    EXPECT_FALSE(port.isOpen());
    link.RS232_Close();
    EXPECT_EQ(host.logLines,
              (Texts{"COMM: Connection with ORB terminated.", "COMM: Connection with ORB terminated."}));
    EXPECT_EQ(port.closes(), 1);
}

TEST_F(LinkTransport, OrbCloseLeavesItsKInTheQueue) {
    open();
    link.ORB_Close();
    ticks(1);
    EXPECT_TRUE(port.written().empty());
    EXPECT_EQ(link.ring().count(), 1);
}

TEST_F(LinkTransport, OutputGoesOutWholeAndCountsOneCommandLess) {
    open();
    link.Send_ORB_Command("T");
    link.Send_ORB_Command("T");
    link.RS232_OUTPUT(bytes({0x5A, 0x00, 0x80, 0xFF}));
    EXPECT_EQ(port.written(), (Texts{bytes({0x5A, 0x00, 0x80, 0xFF})}));
    EXPECT_EQ(link.ring().count(), 1);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Sending);
}

TEST_F(LinkTransport, OutputOnAClosedPortDoesNothing) {
    link.Send_ORB_Command("T");
    link.RS232_OUTPUT("T");
    EXPECT_EQ(link.ring().count(), 1);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Rest);
    EXPECT_TRUE(host.logLines.empty());
}

TEST_F(LinkTransport, ReceivedBytesReplaceRxBufferAndLightTheLamp) {
    open();
    port.setReceiveThreshold(2);
    port.send(atOnce("first"));
    port.advanceUs(1000);
    EXPECT_EQ(link.RxBuffer(), (std::vector<std::uint8_t>{'f', 'i', 'r', 's', 't'}));
    EXPECT_TRUE(link.ResponseReady());
    EXPECT_EQ(host.linkDisplay.status().receive, Lamp::Received);
    port.send(atOnce("AX"));
    port.advanceUs(1000);
    EXPECT_EQ(link.RxBuffer(), (std::vector<std::uint8_t>{'A', 'X'}));
}

TEST_F(LinkTransport, TheSendLampRestsWhenTheReplyCame) {
    open();
    port.always("K", atOnce("AX"));
    link.Send_ORB_Command("K");
    ticks(1);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Sending);
    ticks(1);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Rest);
}

TEST_F(LinkTransport, AnotherEventLeavesTheReplyAloneButResetsTheLamps) {
    open();
    port.setReceiveThreshold(2);
    port.send(atOnce("AX"));
    port.advanceUs(1000);
    link.RS232_OUTPUT("T");
    port.raiseError();
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Rest);
    EXPECT_EQ(host.linkDisplay.status().receive, Lamp::Rest);
    EXPECT_TRUE(link.ResponseReady());
    EXPECT_EQ(link.RxBuffer(), (std::vector<std::uint8_t>{'A', 'X'}));
}

TEST_F(LinkTransport, AnotherEventSetsNoResponseReady) {
    open();
    port.raiseError();
    EXPECT_FALSE(link.ResponseReady());
    EXPECT_TRUE(link.RxBuffer().empty());
}

struct StateCase {
    const char* state;
    LinkImage image;
    bool connectedBefore, connectedAfter, progressAfter;
};

TEST_F(LinkTransport, EachStateHasItsImageAndEffect) {
    const StateCase cases[] = {
        {"Connected", LinkImage::Connected, false, true, true},
        {"NoConnect", LinkImage::NoConnect, true, false, true},
        {"Transfer", LinkImage::Transfer, true, true, true},
        {"Firmware", LinkImage::Transfer, false, false, true},
        {"Monitor", LinkImage::Monitor, true, true, false},
        {"Warning", LinkImage::Warning, false, false, true},
    };
    for (const StateCase& row : cases) {
        host.linkDisplay.editStatus().connected = row.connectedBefore;
        host.linkDisplay.editStatus().progressVisible = true;
        host.linkDisplay.COMM_StatusMessage("t", "1", "2", row.state);
        EXPECT_EQ(host.linkDisplay.status().image, row.image) << row.state;
        EXPECT_EQ(host.linkDisplay.status().connected, row.connectedAfter) << row.state;
        EXPECT_EQ(host.linkDisplay.status().progressVisible, row.progressAfter) << row.state;
        EXPECT_EQ(statusTexts(), (Texts{"t", "1", "2"})) << row.state;
    }
    EXPECT_EQ(static_cast<int>(LinkImage::Connected), 2);
    EXPECT_EQ(static_cast<int>(LinkImage::Monitor), 3);
    EXPECT_EQ(static_cast<int>(LinkImage::NoConnect), 4);
    EXPECT_EQ(static_cast<int>(LinkImage::Transfer), 5);
    EXPECT_EQ(static_cast<int>(LinkImage::Warning), 6);
}

TEST_F(LinkTransport, ChangesMovesOnlyWhenTheStatusDoes) {
    host.linkDisplay.COMM_StatusMessage("t", "1", "2", "Monitor");
    const auto before = host.linkDisplay.status().changes;
    host.linkDisplay.COMM_StatusMessage("t", "1", "2", "Monitor");
    EXPECT_EQ(host.linkDisplay.status().changes, before);
    host.linkDisplay.COMM_StatusMessage("t", "1", "3", "Monitor");
    EXPECT_EQ(host.linkDisplay.status().changes, before + 1);
}

TEST_F(LinkTransport, APortThatCannotBeOpenedIsNotTakenForAUnitThatDoesNotAnswer) {
    port.refuseAll();
    ASSERT_FALSE(link.RS232_Initialize(3));
    ASSERT_FALSE(host.linkDisplay.status().trouble.empty());
    const std::string trouble = host.linkDisplay.status().trouble;
    link.Send_ORB_Command("E");  // as the poller does, into the void
    ticks(1100);
    ASSERT_TRUE(link.CurrentCommand().empty());
    EXPECT_EQ(statusTexts(), (Texts{"No Connection Mode", "Port is Currently Not Available.",
                                    "Please Check your Serial Connection and try again"}));
    EXPECT_EQ(host.linkDisplay.status().trouble, trouble) << "the system's reason";
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::NoConnect);
    EXPECT_FALSE(host.linkDisplay.status().connected);
}

TEST_F(LinkTransport, TheReasonGoesWithTheTrouble) {
    port.refuse(3);
    link.RS232_Initialize(3);
    ASSERT_FALSE(host.linkDisplay.status().trouble.empty());
    link.RS232_Initialize(1);
    EXPECT_EQ(host.linkDisplay.status().trouble, "");
}

// ---- Port search

class PortSearch : public LinkBench {
 protected:
    PortSearch() {
        yielding.meanwhile = [this] { ticks(1); };
    }
};

TEST_F(LinkTransport, APortThatIsThereTellsWhyItCannotBeOpened) {
    port.refuse(1);
    EXPECT_FALSE(link.RS232_Initialize(1));
    EXPECT_EQ(host.logLines,
              (Texts{"COMM Port:1 Not Available, Cannot Open Connection.", "  - Port not available"}));
}

TEST_F(PortSearch, WithNoPortAtAllTriesAllTwelveAndAnswersZero) {
    port.refuseAll();
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    ASSERT_EQ(host.logLines.size(), 12u);
    EXPECT_EQ(host.logLines.front(), "COMM Port:1 Not Available, Cannot Open Connection.");
    EXPECT_EQ(host.logLines.back(), "COMM Port:12 Not Available, Cannot Open Connection.");
    EXPECT_EQ(host.linkDisplay.status().title, "No Connection Mode");
    EXPECT_EQ(host.linkDisplay.status().port, "12") << "the port tried last";
    EXPECT_EQ(link.commPort(), 12);
}

TEST_F(PortSearch, FailedPortsLeaveNoCommandsBehindThatWouldSilenceThePollers) {
    port.refuseAll();
    link.Autodetect_COMM_Port();
    EXPECT_LT(link.ring().count(), 5);
}

TEST_F(PortSearch, FindsTheUnitOnItsPortAndLeavesItOpen) {
    port.refuse(2);
    port.unitOnPort(3);
    port.always("E", identifyReply(300000));
    EXPECT_EQ(link.Autodetect_COMM_Port(), 3);
    EXPECT_EQ(port.openedPorts(), (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(port.isOpen());
    EXPECT_EQ(link.commPort(), 3);
    EXPECT_EQ(link.linked().SerialNumber, 300000);
}

TEST_F(PortSearch, WaitsFiftyMillisecondsAtEachOpenPort) {
    for (int number = 2; number <= 12; ++number) port.refuse(number);
    link.Autodetect_COMM_Port();
    EXPECT_EQ(yielding.count, 50);
    EXPECT_EQ(clock.monotonicUs(), 50'000);
}

TEST_F(PortSearch, OpenPortsWithNoUnitAnswerZeroAndTheLastOneStaysOpen) {
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_TRUE(port.isOpen());
    EXPECT_EQ(link.commPort(), 12);
    EXPECT_EQ(port.written(), Texts(12, "E"));
}

TEST_F(PortSearch, AUnitFoundEarlierElsewhereDoesNotMakePortOneAHit) {
    port.unitOnPort(1);
    identify(300000, "ZQL0003001");
    port.unitOnPort(5);
    port.always("E", identifyReply(300000));
    EXPECT_EQ(link.Autodetect_COMM_Port(), 5);
}

TEST_F(PortSearch, AReplyThatCameBeforeTheSearchIsNotTakenForAnAnswer) {
    open();
    port.setReceiveThreshold(8);
    port.send(atOnce(identifyReply(300000)));
    port.advanceUs(1000);
    ASSERT_TRUE(link.ResponseReady());
    port.silent(true);
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_EQ(link.linked().SerialNumber, 0);
}

TEST_F(PortSearch, FramesOfALivingLinkDoNotKeepTheSearchFromItsUnit) {
    identify(300000, "ZQL0007001");
    port.unitOnPort(1);
    port.always("E", identifyReply(300000));
    for (int i = 0; i < 5; ++i) link.Send_ORB_Command("W");
    ticks(1);
    ASSERT_EQ(link.CurrentCommand(), "W");
    EXPECT_EQ(link.Autodetect_COMM_Port(), 1);
}

TEST_F(PortSearch, TheEndOfAFrameThatIsStillOnTheWireDoesNotStandInFrontOfTheAnswer) {
    identify(300000, "ZQL0007001");
    link.Send_ORB_Command("W");
    ticks(1);
    ASSERT_EQ(link.CurrentCommand(), "W");
    port.unitOnPort(1);
    port.always("E", identifyReply(300000));
    // The port is open again while the unit still speaks: the last 50 bytes of 66, 13 ms.
    yielding.meanwhile = [this, first = true]() mutable {
        if (std::exchange(first, false)) port.send(std::string(50, '\x01'));
        ticks(1);
    };
    EXPECT_EQ(link.Autodetect_COMM_Port(), 1);
    EXPECT_EQ(link.linked().SerialNumber, 300000);
}

TEST_F(PortSearch, ALineThatNeverGoesQuietDoesNotHoldTheSearch) {
    identify(300000, "ZQL0007001");
    link.Send_ORB_Command("W");
    ticks(1);
    port.silent(true);
    yielding.meanwhile = [this] {
        port.send(atOnce("\x77"));
        ticks(1);
    };
    const std::int64_t start = clock.monotonicUs();
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_LE(clock.monotonicUs() - start, 12 * 50'000 + 150'000);
}

TEST_F(PortSearch, AnAnswerThatATickHasHandledIsNotTakenForTheFrameThatIsAskedForNext) {
    port.unitOnPort(1);
    port.always("E", identifyReply(200000));
    port.always("B", firmwareReply("DEMO", "ZQA0004001"));
    // The dashboard polls as soon as the unit is known; its frame is not there when the 50 ms are over.
    port.always("F", {.bytes = std::string(35, '\x02'), .delayUs = 60'000});
    yielding.meanwhile = [this] {
        if (link.linked().UnitIdentified && link.ring().count() == 0) link.Send_ORB_Command("F");
        ticks(1);
    };
    EXPECT_EQ(link.Autodetect_COMM_Port(), 1);
    ASSERT_EQ(link.CurrentCommand(), "F");
    EXPECT_EQ(host.frameCount, 0);
    EXPECT_EQ(live.RPM, 0) << "0xFAA5 would be 64165 turns";
    ticks(60);
    EXPECT_EQ(live.RPM, 0x0202);
}

TEST_F(PortSearch, TheDirectCallHandlesAReplyThatNoTickSaw) {
    // Only the line moves: the tick that would handle the reply does not run, apart from the one that writes.
    int calls = 0;
    yielding.meanwhile = [&] {
        if (calls++ == 0) {
            ticks(1);
        } else {
            port.advanceUs(1000);
        }
    };
    port.unitOnPort(1);
    port.always("E", identifyReply(700000));
    EXPECT_EQ(link.Autodetect_COMM_Port(), 1);
    EXPECT_EQ(link.linked().LinkedUnitKind, 7);
}

}  // namespace
}  // namespace zentaq
