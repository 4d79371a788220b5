#include <gtest/gtest.h>

#include "link/link_bench.h"

namespace zentaq {
namespace {

class LinkMachine : public LinkBench {};

// ---- Ring

TEST_F(LinkMachine, CommandsGoOutInOrderOneAtATime) {
    find(200000);
    port.always("K", atOnce("AX"));
    port.always("P2S10411415059", atOnce("AX"));
    link.Send_ORB_Command("K");
    link.SEND_ONFLY("S10411415059");
    EXPECT_EQ(link.ring().count(), 2);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"K"}));
    EXPECT_EQ(link.CurrentCommand(), "K");
    EXPECT_EQ(link.ring().count(), 1);
    ticks(1);
    EXPECT_EQ(link.CurrentCommand(), "");
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"K", "P2S10411415059"}));
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(LinkMachine, AChangeOnTheFlyPassesThePollsThatWaitBehindTheCommandInFlight) {
    open();
    for (const char* poll : {"W", "I"}) port.always(poll, ScriptedReply{.bytes = "?", .delayUs = 3000});
    port.always("P2one", atOnce("AX"));
    for (const char* poll : {"W", "I", "W"}) link.Send_ORB_Command(poll);
    ticks(1);
    link.SEND_ONFLY("one");
    EXPECT_EQ(link.ring().count(), 3);
    ticks(100);  // with no unit known a poll asks for one byte
    EXPECT_EQ(port.written(), (Texts{"W", "P2one", "I", "W"}));
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(LinkMachine, AnEmptyRingHoldsNoCommandsWhateverAnOverrunLeftInTheCount) {
    find(200000);
    port.always("K", atOnce("AX"));
    for (int i = 0; i < 520; ++i) link.Send_ORB_Command("K");
    EXPECT_EQ(link.ring().count(), 520);
    // The ring holds 511; with two ticks a command it is empty after 1022.
    ticks(1022);
    EXPECT_EQ(port.written().size(), 511u);
    EXPECT_EQ(link.ring().count(), 9);
    ticks(1);
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(LinkMachine, FailedWritesDoNotSilenceThePollersForGood) {
    find(200000);
    for (int i = 0; i < 6; ++i) {
        port.failWrites(1);
        link.Send_ORB_Command("B");
        ticks(1002);
        EXPECT_EQ(link.CurrentCommand(), "");
    }
    ticks(1);
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(LinkMachine, AnEmptyCommandStallsTheRingUntilACommandIsWrittenOverItsEnd) {
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

// ---- What is written and what is waited for

TEST_F(LinkMachine, ACommandIsWrittenAsItsBytesAndAsksForItsReplyLength) {
    const std::pair<std::string, int> rows[] = {{"A", 2},
                                                {"B", 39},
                                                {"C", 39},
                                                {"D", 33},
                                                {"E", 8},
                                                {"F", 35},
                                                {"I", 21},
                                                {"K", 2},
                                                {"P1", 2},
                                                {"P2S1", 2},
                                                {"P3", 2},
                                                {"S", 2},
                                                {"T", 16},
                                                {"W", 65},
                                                {bytes({'Z', 0xFF}), 2},
                                                {bytes({'Z', 0x00}), 2}};
    for (const auto& [command, replyLength] : rows) {
        SCOPED_TRACE(command);
        find(200000);
        link.Send_ORB_Command(command);
        ticks(1);
        EXPECT_EQ(port.written(), (Texts{command}));
        EXPECT_EQ(port.threshold(), replyLength);
        EXPECT_EQ(link.CurrentCommand(), command);
        ticks(5001);  // nobody answers
    }
}

TEST_F(LinkMachine, OtherKindsAskForTheirOwnLengths) {
    find(350000);
    EXPECT_EQ(host.linkDisplay.status().unitLabel, "C");
    link.Send_ORB_Command("W");
    ticks(1);
    EXPECT_EQ(port.threshold(), 70);
}

TEST_F(LinkMachine, AnOrbAWithOldFirmwareIsAskedForSixBytesAgain) {
    open();
    exchange("E", bytes({0x00, 0x00, 0x02, 0x9C, 'A', 'X'}));
    ASSERT_EQ(link.linked().LinkedUnitKind, 3);
    link.Send_ORB_Command("E");
    ticks(1);
    EXPECT_EQ(port.threshold(), 6);
}

TEST_F(LinkMachine, WithNoUnitKnownTheNullUnitTellsTheLengths) {
    open();
    link.Send_ORB_Command("F");
    ticks(1);
    EXPECT_EQ(port.threshold(), 1);
}

TEST_F(LinkMachine, AKeyInNoRowKeepsTheThresholdOfTheCommandBefore) {
    find(200000);
    exchange("T", framed(16, {}));
    link.Send_ORB_Command("Q");
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"T", "Q"}));
    EXPECT_EQ(port.threshold(), 16);
}

TEST_F(LinkMachine, AFailingWriteIsSkippedAndTheCommandWaitsForItsTimeOut) {
    find(200000);
    port.failWrites(1);
    link.Send_ORB_Command("B");
    link.Send_ORB_Command("K");
    ticks(1);
    EXPECT_EQ(link.CurrentCommand(), "B");
    EXPECT_TRUE(port.written().empty());
    ticks(1002);
    EXPECT_EQ(port.written(), (Texts{"K"}));
}

TEST_F(LinkMachine, OnAClosedPortACommandRunsIntoItsTimeOutAndTheCountIsCleared) {
    for (int i = 0; i < 7; ++i) link.Send_ORB_Command("E");
    ticks(1 + 1001);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_EQ(link.ring().head(), link.ring().tail());
}

// ---- The lock of the table grid

TEST_F(LinkMachine, ClearOnTheFlyAndStoreLockTheGridUntilTheNextIdleTick) {
    for (const std::string command : {"A", "P2S104", "S"}) {
        find(200000);
        port.once(command, atOnce("AX"));
        link.Send_ORB_Command(command);
        ticks(1);
        EXPECT_TRUE(link.OnFlyBusy()) << command;
        EXPECT_EQ(host.locks.back(), true) << command;
        ticks(1);  // the reply is handled
        EXPECT_TRUE(link.OnFlyBusy()) << command;
        ticks(1);
        EXPECT_FALSE(link.OnFlyBusy()) << command;
        EXPECT_EQ(host.locks.back(), false) << command;
    }
}

TEST_F(LinkMachine, OtherCommandsDoNotLockTheGrid) {
    find(200000);
    for (const std::string command : {"K", "T", "W", "E"}) {
        port.once(command, atOnce("AX"));
        link.Send_ORB_Command(command);
        ticks(2);
        EXPECT_FALSE(link.OnFlyBusy()) << command;
    }
}

TEST_F(LinkMachine, TheLockIsToldOnEachIdleTick) {
    open();
    ticks(5);
    EXPECT_EQ(host.locks, std::vector<bool>(5, false));
}

// ---- Time-outs

class LinkTimeOut : public LinkBench {
 protected:
    /// Writes a command that nobody answers.
    void ask(const std::string& command) {
        link.Send_ORB_Command(command);
        ticks(1);
        ASSERT_EQ(link.CurrentCommand(), command);
    }
};

TEST_F(LinkTimeOut, FrameWithNoReplyTakesTheLinkDownAtThe84thTick) {
    for (const std::string command : {"F", "I"}) {
        find(200000);
        ask(command);
        ticks(83);
        EXPECT_EQ(link.linked().LinkedUnitKind, 3) << command;
        EXPECT_EQ(link.CurrentCommand(), command);
        ticks(1);
        EXPECT_EQ(link.linked().LinkedUnitKind, 0) << command;
        EXPECT_EQ(link.CurrentCommand(), "");
    }
}

TEST_F(LinkTimeOut, AFrameIsNeverWrittenAgain) {
    find(200000);
    ask("F");
    ticks(84);
    EXPECT_EQ(port.written(), (Texts{"F"}));
}

TEST_F(LinkTimeOut, AReplyStartsTheCountOfRetriesAnew) {
    find(200000);
    port.once("F", {.bytes = std::string(35, '\0'), .delayUs = 60'000});  // two waits of 21 ticks are spent
    ask("F");
    ticks(75);
    ASSERT_EQ(link.CurrentCommand(), "");
    ask("F");
    ticks(83);
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
    ticks(1);
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
}

TEST_F(LinkTimeOut, ALostLinkDropsAllQueuedCommandsAndTheCount) {
    find(200000);
    ask("F");
    for (int i = 0; i < 4; ++i) link.Send_ORB_Command("K");
    ticks(84);
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_EQ(link.ring().head(), link.ring().tail());
    ticks(100);
    EXPECT_EQ(port.written(), (Texts{"F"}));
}

TEST_F(LinkTimeOut, ALostLinkPutsBackTheFirmwareOfTheFile) {
    host.current = 4;
    host.fileCode = 6123;
    identify(300000, "ZQL0007045");
    ASSERT_EQ(host.unit(4).FW_Release(), 7);
    ask("F");
    ticks(84);
    EXPECT_EQ(host.unit(4).FW_Release(), 6);
    EXPECT_EQ(host.unit(4).FW_Build(), 123);
}

TEST_F(LinkTimeOut, ALostLinkGivesTheObjectOfAnotherKindBackWhatItHadItself) {
    host.current = 3;  // the file in hand is for an ORB A
    host.fileCode = 2010;
    host.unit(4).FW_Release(6);
    host.unit(4).FW_Build(45);
    host.unit(3).FW_Release(2);
    host.unit(3).FW_Build(10);
    identify(300000, "ZQL0007045");
    ASSERT_EQ(host.unit(4).FW_Release(), 7);
    port.once("C", atOnce(framed(39, {})));
    exchange("B", firmwareReply("DEMO", "ZQL0007046", 38));  // told once more
    ticks(20);
    ask("F");
    ticks(84);
    EXPECT_EQ(host.unit(4).FW_Release(), 6);
    EXPECT_EQ(host.unit(4).FW_Build(), 45);
    EXPECT_EQ(host.unit(3).FW_Release(), 2);
    EXPECT_EQ(host.unit(3).FW_Build(), 10);
}

TEST_F(LinkTimeOut, ALostLinkLeavesAFileThatTellsNoFirmwareTheOneOfItsKind) {
    host.current = 3;
    host.fileCode = 0;
    identify(200000, "ZQA0002010");
    ask("F");
    ticks(84);
    EXPECT_EQ(host.unit(3).FW_Release(), 5);
    EXPECT_EQ(host.unit(3).FW_Build(), 99);
}

TEST_F(LinkTimeOut, ALostLinkClearsTheUnitAndTurnsOnTheFlyOffLast) {
    host.current = 4;
    identify(300000, "ZQL0003001");
    bool cleared = false;
    host.whenOnFly = [&] {
        cleared = link.linked().LinkedUnitKind == 0 && !link.linked().UnitIdentified &&
                  !link.linked().UnitFound && link.ring().count() == 0;
    };
    ask("W");
    link.Send_ORB_Command("K");
    ticks(1001);
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{false}));
    EXPECT_TRUE(cleared);
    EXPECT_EQ(link.linked().SerialNumber, 300000);
}

TEST_F(LinkTimeOut, ALostLinkDrainsThePort) {
    find(200000);
    ask("W");
    port.send(atOnce("xyz"));
    ticks(1000);
    EXPECT_EQ(port.bytesHeld(), 3u);
    ticks(1);
    EXPECT_EQ(port.bytesHeld(), 0u);
}

TEST_F(LinkTimeOut, AnAbsentFrameDrainsThePort) {
    find(200000);
    ask("F");
    port.send(atOnce("xyz"));
    ticks(84);
    EXPECT_EQ(port.bytesHeld(), 0u);
}

TEST_F(LinkTimeOut, WideFrameAndOthersAreGivenUpAtThe1001stTick) {
    for (const std::string command : {"W", "T", "K", "E", "P2S104", "Z"}) {
        find(200000);
        ask(command);
        ticks(1000);
        EXPECT_EQ(link.linked().LinkedUnitKind, 3) << command;
        ticks(1);
        EXPECT_EQ(link.linked().LinkedUnitKind, 0) << command;
        EXPECT_EQ(link.CurrentCommand(), "") << command;
    }
}

TEST_F(LinkTimeOut, FirmwareOrConfigurationWithNoReplyIsDroppedAndTheLinkStays) {
    for (const std::string command : {"B", "C"}) {
        find(200000);
        ask(command);
        link.Send_ORB_Command("K");
        ticks(1000);
        EXPECT_EQ(link.CurrentCommand(), command);
        ticks(1);
        EXPECT_EQ(link.CurrentCommand(), "");
        EXPECT_EQ(link.linked().LinkedUnitKind, 3);
        EXPECT_TRUE(link.linked().UnitFound);
        EXPECT_TRUE(host.onFlyCalls.empty());
        ticks(1);
        EXPECT_EQ(port.takeWritten(), (Texts{command, "K"}));
        link.RS232_Close();
        ticks(1001);
    }
}

TEST_F(LinkTimeOut, ClearAndStoreHave5000TicksOfPatience) {
    for (const std::string command : {"A", "S"}) {
        find(200000);
        ask(command);
        ticks(5000);
        EXPECT_EQ(link.linked().LinkedUnitKind, 3) << command;
        ticks(1);
        EXPECT_EQ(link.linked().LinkedUnitKind, 0) << command;
    }
}

TEST_F(LinkTimeOut, AReplyOnTheTickOfTheTimeOutWins) {
    find(200000);
    ask("T");
    port.send(
        {.bytes = framed(16, {}), .delayUs = 1'000'300, .byteUs = 0});  // told 820 us into the 1001st tick
    ticks(1000);
    EXPECT_FALSE(link.ResponseReady());
    ticks(1);
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
    EXPECT_EQ(host.codesReceivedCount, 1);
}

TEST_F(LinkTimeOut, AReplyAfterTheTimeOutIsNotTakenForTheNextCommands) {
    find(200000);
    ask("B");
    ticks(1001);
    port.send(atOnce(firmwareReply("LATE", "ZQA0005001")));
    ticks(2);
    ask("K");
    EXPECT_FALSE(link.ResponseReady());
    EXPECT_FALSE(link.linked().UnitIdentified);
}

TEST_F(LinkTimeOut, AFailingHostDoesNotStopTheLossOfTheLink) {
    host.failLog = true;
    host.whenOnFly = [] { throw std::runtime_error("no window"); };
    find(200000);
    ask("W");
    ticks(1001);
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_EQ(link.CurrentCommand(), "");
}

TEST_F(LinkTimeOut, AReplyBehindTheLinksTimeOutIsReadAsTheNextReplyOrDrained) {
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

TEST_F(LinkTimeOut, ALostLinkNoLongerSaysWhatItsLastReplyWas) {
    identify(200000, "ZQA-404099");
    link.Send_ORB_Command("F");
    ticks(90);
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_EQ(host.linkDisplay.status().title, "Connecting...");
    EXPECT_EQ(host.linkDisplay.status().line1, "The unit does not answer.");
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Warning);
    EXPECT_EQ(host.linkDisplay.status().send, Lamp::Rest);
    EXPECT_EQ(host.linkDisplay.status().receive, Lamp::Rest);
}

// ---- Replies of split lines

class SplitReply : public LinkBench, public testing::WithParamInterface<int> {};

TEST_P(SplitReply, AFirstIdentifyThatPausesAnywhereBeforeItsSixthByteIsWhole) {
    open();
    port.once(
        "E",
        {.bytes = identifyReply(200000), .splitAt = static_cast<std::size_t>(GetParam()), .pauseUs = 15'000});
    link.Send_ORB_Command("E");
    ticks(60);
    EXPECT_EQ(link.linked().SerialNumber, 200000);
    EXPECT_TRUE(link.linked().UnitFound);
}

INSTANTIATE_TEST_SUITE_P(At, SplitReply, testing::Range(0, 6));

class SplitBehindThreshold : public SplitReply {};

TEST_P(SplitBehindThreshold, AFirstIdentifyThatPausesLongAfterSixBytesCostsPollsButTheUnitIsFound) {
    open();
    port.once(
        "E",
        {.bytes = identifyReply(300000), .splitAt = static_cast<std::size_t>(GetParam()), .pauseUs = 15'000});
    port.always("E", identifyReply(300000));
    port.always("B", firmwareReply("DEMO", "ZQL0003001", 38));
    for (int firing = 0; firing < 300 && !link.linked().UnitIdentified; ++firing) {
        poller.fire({});
        ticks(10);
    }
    EXPECT_EQ(link.linked().SerialNumber, 300000);
    EXPECT_TRUE(link.linked().UnitIdentified);
}

INSTANTIATE_TEST_SUITE_P(At, SplitBehindThreshold, testing::Range(6, 8));

class SplitFrame : public SplitReply {};

TEST_P(SplitFrame, AWideFrameThatPausesAnywhereIsDecodedWhole) {
    find(300000);
    port.once("W", {.bytes = framed(66, {{3, 0x0B}, {4, 0xB8}}),
                    .splitAt = static_cast<std::size_t>(GetParam()),
                    .pauseUs = 30'000});
    link.Send_ORB_Command("W");
    ticks(80);
    EXPECT_EQ(live.RPM, 3000);  // 0x0BB8
    EXPECT_EQ(host.frameCount, 1);
}

INSTANTIATE_TEST_SUITE_P(At, SplitFrame, testing::Range(0, 66));

// ---- Status while receiving

const std::string portText = "Using COM Port: 7 @ 38400 Baud.";
const std::string waitText = "Please wait... this may take a moment.";

TEST_F(LinkMachine, WhileReceivingTheStatusIsTheRowOfTheCommand) {
    const Texts unchanged{"before", "a", "b"};
    const Texts monitoring{"Monitoring...", "Receiving", ""};
    const Texts info{"Active ORB...", "Receiving", ""};
    struct Row {
        std::string command;
        std::string activity;
        Texts texts;
        LinkImage image;
    };
    const Row rows[] = {
        {"A", "{Clear Codes}", unchanged, LinkImage::Warning},
        {"D", "{Datalog}", {"Retrieving Datalog...", portText, waitText}, LinkImage::Transfer},
        {"E", "{Polling}", {"Polling...", "Receiving", ""}, LinkImage::Transfer},
        {"F", "{Monitoring}", monitoring, LinkImage::Monitor},
        {"I", "{Monitoring}", monitoring, LinkImage::Monitor},
        {"W", "{Monitoring}", monitoring, LinkImage::Monitor},
        {"T", "{Check Engine}", unchanged, LinkImage::Warning},
        {"P1", "{BinFile}", {"Programming ORB...", portText, waitText}, LinkImage::Transfer},
        {"P2S104", "{Transfer ONFLY}", {"ONFLY TRANSFER...", "Receiving", ""}, LinkImage::Connected},
        {"P3", "{Firmware}", {"Programming Firmware...", portText, waitText}, LinkImage::Transfer},
        {"B", "{Info}", info, LinkImage::Connected},
        {"C", "{Info}", info, LinkImage::Connected},
        {"K", "{Info}", info, LinkImage::Connected},
        {"S", "{Info}", info, LinkImage::Connected},
        {bytes({'Z', 0xFF}), "{Info}", info, LinkImage::Connected}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.command);
        link.RS232_Initialize(7);
        link.commPort(4);  // stored for the next time; the port in use is told
        host.linkDisplay.COMM_StatusMessage("before", "a", "b", "Warning");
        link.Send_ORB_Command(row.command);
        ticks(1);
        ASSERT_EQ(link.CurrentCommand(), row.command);
        port.send(atOnce(std::string(80, 'x')));
        port.advanceUs(1000);
        EXPECT_EQ(host.linkDisplay.status().activity, row.activity);
        EXPECT_EQ(statusTexts(), row.texts);
        EXPECT_EQ(host.linkDisplay.status().image, row.image);
        ticks(6000);
    }
}

// ---- Checksum operation

class CommCheckSum : public LinkBench {
 protected:
    void receive(const std::string& reply) {
        port.setReceiveThreshold(1);
        port.send(atOnce(reply));
        port.advanceUs(2000);
    }
};

TEST_F(CommCheckSum, CommandsOfTwoByteRepliesAreNotChecked) {
    for (const std::string command : {"A", "K", "P1", "P2S104", "P3", "S", "Z"}) {
        EXPECT_TRUE(link.commCheckSum(command)) << command;
    }
}

TEST_F(CommCheckSum, IdentifySumsBytesTwoToSix) {
    open();
    // 0x55 + 0x00 + 0x03 + 0x0D + 0x40 = 0xA5
    receive(bytes({0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D, 0x40, 0xA5}));
    EXPECT_TRUE(link.commCheckSum("E"));
    receive(bytes({0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D, 0x40, 0xA4}));
    EXPECT_FALSE(link.commCheckSum("E"));
}

TEST_F(CommCheckSum, LongRepliesAreSummedUpToTheByteBeforeTheLast) {
    find(300000);
    const std::pair<const char*, std::size_t> lengths[] = {{"B", 38}, {"C", 39}, {"D", 36},
                                                           {"F", 28}, {"I", 21}, {"T", 16}};
    for (const auto& [command, length] : lengths) {
        std::string reply = framed(length, {{3, 0xF0}, {length - 2, 0x91}});
        receive(reply);
        EXPECT_TRUE(link.commCheckSum(command)) << command;
        reply[length - 2] = '\x90';
        receive(reply);
        EXPECT_FALSE(link.commCheckSum(command)) << command;
    }
}

TEST_F(CommCheckSum, AnyOtherCommandWantsAZeroInByteOne) {
    open();
    receive(bytes({0xFA, 0x00}));
    EXPECT_TRUE(link.commCheckSum("W"));
    EXPECT_TRUE(link.commCheckSum("Q"));
    receive(bytes({0xFA, 0xA5}));
    EXPECT_FALSE(link.commCheckSum("W"));
}

TEST_F(CommCheckSum, AShortReplyFails) {
    open();
    receive(bytes({0xFA, 0xA5, 0x55}));
    EXPECT_FALSE(link.commCheckSum("E"));
}

// ---- Events inside a handler

TEST_F(LinkMachine, WhileABoxShowsTheLinkStandsStillAndPollersQueueNothing) {
    host.current = 4;
    Poller polling(
        link, host.linkDisplay, [&] { link.Send_ORB_Command("T"); }, [] {});
    host.whileBoxShows = [&] {
        host.whileBoxShows = nullptr;
        for (int i = 0; i < 500; ++i) {
            ticks(1);
            polling.fire({});
        }
    };
    open();
    tellOnce(200000, "ZQA0001001");
    link.Send_ORB_Command("E");
    ticks(100);
    EXPECT_EQ(host.boxes.size(), 1u);
    EXPECT_TRUE(link.linked().UnitIdentified);
    EXPECT_EQ(port.written(), (Texts{"E", "B"}));
    EXPECT_EQ(link.ring().count(), 0);
}

}  // namespace
}  // namespace zentaq
