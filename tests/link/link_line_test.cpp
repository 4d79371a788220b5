// Adapters as they are: lumps that come late, stray bytes, floods, and a cable that is pulled and plugged
// again.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "link/link_bench.h"

namespace zentaq {
namespace {

using testing::Contains;

/// A narrow frame of ORB A: 35 bytes without head and sum, speed in the first two.
std::string narrowFrame(int rpm) {
    std::string frame(35, '\x01');
    frame[0] = static_cast<char>(rpm >> 8);
    frame[1] = static_cast<char>(rpm & 0xFF);
    return frame;
}

class LinkLine : public LinkBench {
 protected:
    /// Asks for a frame and lets the whole exchange pass.
    float speedOfFrame(const ScriptedReply& reply) {
        port.once("F", reply);
        link.Send_ORB_Command("F");
        ticks(60);
        return live.RPM;
    }
    void pollerTicks(int count) {
        for (int ms = 0; ms < count; ++ms) {
            ticks(1);
            poller.tick();
        }
    }
    std::string statusLine() const {
        return host.linkDisplay.status().title + " | " + host.linkDisplay.status().line1;
    }
};

/// A unit with narrow frames is known.
class LineOfOrbA : public LinkLine {
 protected:
    LineOfOrbA() { identify(200000, "ZQA0004001"); }
};

// ---- Lumps

TEST_F(LinkLine, TheRestOfAFirstIdentifyMayComeALumpLater) {
    open();
    port.once("E", {.bytes = identifyReply(200000), .byteUs = 0, .splitAt = 6, .pauseUs = 16'000});
    port.once("B", firmwareReply("DEMO", "ZQA0004001"));
    link.Send_ORB_Command("E");
    ticks(60);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(port.takeWritten(), (Texts{"E", "B"})) << "no second E";
}

TEST_F(LinkLine, AnIdentifyWithoutItsRestCostsOnePollAndNoTimeOut) {
    open();
    port.once("E", identifyReply(200000).substr(0, 6));
    link.Send_ORB_Command("E");
    ticks(60);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_FALSE(link.linked().UnitFound);
}

TEST_F(LinkLine, ASixByteIdentifyOfTheOldFormatWaitsForNothing) {
    open();
    port.once("E", bytes({0, 0, 0, 8}) + "AX");
    link.Send_ORB_Command("E");
    ticks(5);
    EXPECT_TRUE(link.linked().OldFirmware);
    EXPECT_EQ(link.linked().SerialNumber, 10);
}

TEST_F(LineOfOrbA, StrayBytesBetweenTwoFramesShiftNone) {
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3000)}), 3000);
    port.send("\x55\x55");
    ticks(5);
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3100)}), 3100);
}

TEST_F(LineOfOrbA, BytesThatComeBehindTheRequestSpoilOneFrameAtMost) {
    // What was left of the frame before stands in front of this one: 37 bytes instead of 35.
    EXPECT_NE(speedOfFrame({.bytes = "\x55\x55" + narrowFrame(3000)}), 3000);
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3100)}), 3100);
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3200)}), 3200);
}

TEST_F(LineOfOrbA, AShiftedFrameWhoseEndIsALumpLaterSpoilsNoOther) {
    // 35 bytes are there, two of them not its own; its last two come 16 ms later, when the next one has been
    // asked for.
    port.once("F", {.bytes = "\x55\x55" + narrowFrame(3000), .splitAt = 35, .pauseUs = 16'000});
    port.once("F", {.bytes = narrowFrame(3100), .delayUs = 10'000});
    link.Send_ORB_Command("F");
    link.Send_ORB_Command("F");
    ticks(90);
    int wrong = 0;
    for (const int rpm : {3200, 3300, 3400}) {
        if (speedOfFrame({.bytes = narrowFrame(rpm)}) != static_cast<float>(rpm)) ++wrong;
    }
    EXPECT_EQ(wrong, 0);
}

TEST_F(LineOfOrbA, AfterAFrameThatIsTooLongTheNextCommandWaitsUntilTheLineIsQuiet) {
    // The rest comes in lumps of 16 ms; the next request leaves 20 ms behind the last of them.
    port.once("F", {.bytes = narrowFrame(3000) + "\x55", .byteUs = 0});
    port.always("F", {.bytes = narrowFrame(3100), .byteUs = 0});
    link.Send_ORB_Command("F");
    link.Send_ORB_Command("F");
    ticks(4);
    port.send(ScriptedReply{.bytes = "\x66\x66", .delayUs = 10'000});
    port.takeWritten();
    ticks(25);
    EXPECT_TRUE(port.takeWritten().empty()) << "14 ms from the start and 20 more";
    ticks(15);
    EXPECT_EQ(port.takeWritten(), Texts{"F"});
    EXPECT_EQ(live.RPM, 3100);
}

TEST_F(LineOfOrbA, OfFramesThatAreTooLongOneBehindTheOtherOnlyTheFirstIsBelieved) {
    const std::string stray = "\x11\x11";
    EXPECT_EQ(speedOfFrame({.bytes = stray + narrowFrame(3000)}), 0x1111);
    EXPECT_EQ(speedOfFrame({.bytes = "\x22\x22" + narrowFrame(3100)}), 0x1111);
    EXPECT_EQ(speedOfFrame({.bytes = "\x33\x33" + narrowFrame(3200)}), 0x1111);
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3300)}), 3300);
}

TEST_F(LineOfOrbA, ALineThatNeverGoesQuietIsWrittenToAllTheSameAndTheLinkRecovers) {
    port.silent(true);
    link.Send_ORB_Command("F");
    for (int ms = 0; ms < 2000; ++ms) {
        port.send(atOnce(std::string(400, '\x77')));
        ticks(1);
        if (ms % 10 == 0 && link.ring().count() < 5) link.Send_ORB_Command("F");
    }
    const auto asked = port.takeWritten().size();
    EXPECT_GE(asked, 15U) << "every 100 ms or so";
    port.silent(false);
    tellOnce(200000, "ZQA0004001");
    ticks(150);  // What is in flight is given up; the poller asks who is there.
    link.Send_ORB_Command("E");
    ticks(150);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(speedOfFrame({.bytes = narrowFrame(3000)}), 3000);
}

TEST_F(LineOfOrbA, AStrayByteInATransferDoesNotHideARefusal) {
    host.current = 3;
    const std::string firmware = folder.write("new.nv3", "S1FIRST\r\nS1SECOND\r\nS1THIRD\r\n");
    port.once("P3", atOnce("AX"));
    port.once("S1FIRST", atOnce("AX"));
    port.once("S1SECOND", atOnce("AR"));
    link.Program_Unit(TransferMode::Firmware, firmware);
    ticks(5);
    port.send("\x55");  // in the gap in front of the first line
    ticks(60);
    EXPECT_FALSE(link.transfer().active());
    EXPECT_THAT(host.logLines, Contains("Firmware Upload to ORB Unit FAILED!"));
}

// ---- The adapter

TEST_F(LineOfOrbA, ALostAdapterIsToldWithItsNameAndTheLinkGoesDownAtOnce) {
    link.Send_ORB_Command("T");  // would wait for 1001 ticks
    ticks(2);
    port.loseDevice();
    EXPECT_EQ(statusLine(), "Adapter unplugged | scripted (/dev/ttyUSB0) has gone.");
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Warning);
    EXPECT_THAT(host.logLines, Contains("COMM: scripted (/dev/ttyUSB0) has gone. Looking for it."));
    ticks(1);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_FALSE(link.linked().UnitIdentified);
    EXPECT_TRUE(host.linkDisplay.status().connected) << "the port comes back by itself";
}

TEST_F(LineOfOrbA, PollsInTheVoidDoNotHideThatTheAdapterIsAway) {
    port.loseDevice();
    ticks(1);
    link.Send_ORB_Command("E");
    ticks(1100);
    EXPECT_EQ(statusLine(), "Adapter unplugged | scripted (/dev/ttyUSB0) has gone.");
}

TEST_F(LineOfOrbA, AnAdapterThatIsBackIsAskedAtOnceAheadOfAllThatWaited) {
    port.loseDevice();
    ticks(1);
    for (int i = 0; i < 5; ++i) link.Send_ORB_Command("E");
    ticks(100);  // The first of them is in flight, for 900 ticks more.
    port.takeWritten();
    tellOnce(200000, "ZQA0004001");
    port.returnDevice("/dev/ttyUSB1");
    EXPECT_EQ(statusLine(), "Adapter is back | scripted is back as /dev/ttyUSB1.");
    EXPECT_THAT(host.logLines, Contains("COMM: scripted is back as /dev/ttyUSB1."));
    ticks(60);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(port.takeWritten(), (Texts{"E", "B"}));
}

TEST_F(LineOfOrbA, TheEndOfAReplyThatWasCutByTheCableAnswersNoIdentify) {
    port.loseDevice();
    ticks(300);
    tellOnce(200000, "ZQA0004001");
    port.returnDevice("/dev/ttyUSB0");
    port.send(ScriptedReply{.bytes = std::string(12, '\x01'), .delayUs = 8000});
    ticks(80);
    EXPECT_TRUE(link.linked().UnitIdentified);
}

TEST_F(LineOfOrbA, ATransferKeepsItsOwnEndWhenTheAdapterIsPulled) {
    const std::string firmware = folder.write("new.nv3", "S1FIRST\r\nS1SECOND\r\n");
    link.Program_Unit(TransferMode::Firmware, firmware);
    ticks(2);
    ASSERT_TRUE(link.transfer().active());
    port.loseDevice();
    ticks(300);
    port.returnDevice("/dev/ttyUSB1");
    ticks(4000);
    EXPECT_TRUE(link.transfer().active()) << "5000 ticks are its patience";
    ticks(1000);
    EXPECT_FALSE(link.transfer().active());
    EXPECT_THAT(host.logLines, Contains("PROCESS FAILED - EXITED ABNORMALLY."));
}

TEST_F(LinkLine, NewsOfTheAdapterFromInsideAHandlerWaitForTheNextTick) {
    open();
    host.whileBoxShows = [&] {
        port.loseDevice();
        port.returnDevice("/dev/ttyUSB1");
    };
    port.once("E", bytes({0, 0, 0, 8}) + "AX");  // the old format shows a box
    link.Send_ORB_Command("E");
    ticks(5);
    ASSERT_EQ(host.boxes.size(), 1U);
    host.whileBoxShows = nullptr;
    port.once("E", identifyReply(200000));
    ticks(60);
    EXPECT_EQ(link.linked().SerialNumber, 200000);
}

TEST_F(LineOfOrbA, AnotherPortForgetsTheAdapterThatIsAway) {
    port.loseDevice();
    ticks(1);
    open();
    link.Send_ORB_Command("E");
    ticks(1100);
    EXPECT_EQ(host.linkDisplay.status().title, "Connecting...");
}

TEST_F(LineOfOrbA, APortThatIsClosedBeforeTheNextTickHasNoNewsOfItsAdapter) {
    port.loseDevice();
    link.RS232_Close();
    ticks(1);
    EXPECT_NE(host.linkDisplay.status().title, "Adapter is back");
    EXPECT_TRUE(link.linked().UnitIdentified) << "the close alone loses no link";
}

TEST_F(LineOfOrbA, RecordsThatWaitWhenTheAdapterGoesReachNoUnitThatComesBack) {
    port.silent(true);
    link.Send_ORB_Command("F");
    ticks(1);
    link.SEND_ONFLY("S10411415059");
    port.loseDevice();
    port.returnDevice("/dev/ttyUSB1");
    port.silent(false);
    port.takeWritten();
    tellOnce(200000, "ZQA0004001");
    ticks(100);
    EXPECT_EQ(port.takeWritten(), (Texts{"E", "B"}));
    EXPECT_EQ(host.onFlyCalls.front(), false) << "nothing more is sent until it has told who it is";
}

// ---- A unit whose power comes back

TEST_F(LinkLine, AtALowRateOfUpdatesASearchedUnitIsAskedForAgainAfter200IdleTicks) {
    open();
    poller.fire({});  // five a second: the tenth firing is two seconds away
    pollerTicks(199);
    EXPECT_TRUE(port.takeWritten().empty());
    tellOnce(200000, "ZQA0004001");
    pollerTicks(60);
    EXPECT_TRUE(link.linked().UnitIdentified);
    forget();
    pollerTicks(1000);
    EXPECT_TRUE(port.takeWritten().empty()) << "a unit that is known is not searched";
}

TEST_F(LinkLine, OnTheSecondTabAndWhilePollingIsSuspendedNothingIsSearched) {
    open();
    poller.fire({.tab2Showing = true});
    for (int ms = 0; ms < 500; ++ms) poller.tick();
    link.AutoPollSuspended(true);
    poller.fire({});
    for (int ms = 0; ms < 500; ++ms) poller.tick();
    EXPECT_EQ(link.ring().count(), 0);
}

}  // namespace
}  // namespace zentaq
