#include <gtest/gtest.h>

#include "base/errors.h"
#include "base/text.h"
#include "link/link_bench.h"

namespace zentaq {
namespace {

using Messages = std::vector<int>;

class LinkTransfers : public LinkBench {
 protected:
    /// The unit takes every line and verifies what ends in S9.
    LinkTransfers() {
        answerLines("AX");
        answer("S9", "PN");
    }
    /// The start and every line get this reply, unless a test scripts another.
    void answerLines(const std::string& reply) {
        port.otherwise([reply](const std::string& command) -> std::optional<ScriptedReply> {
            if (command == "P1" || command == "P3" || command.starts_with("S")) return atOnce(reply);
            return std::nullopt;
        });
    }
    void answer(const std::string& line, const std::string& reply) { port.always(line, atOnce(reply)); }

    /// Programs a file of these lines as firmware.
    void upgrade(const std::string& content) {
        link.AutoPollSuspended(true);
        link.Program_Unit(TransferMode::Firmware, folder.write("new.nv3", content));
    }

    void upgradeWhole(const std::string& content) {
        upgrade(content);
        runUntilIdle();
    }

    /// Starts to program the calibration in hand.
    void program() {
        link.AutoPollSuspended(true);
        link.Program_Unit(TransferMode::Calibration, "");
    }
    /// Starts to program a calibration whose S-record file is replaced by this text before a line is read.
    void program(const std::string& content) {
        program();
        std::ofstream(folder.path("ORB.s19"), std::ios::binary | std::ios::trunc) << content;
    }

    /// Runs of two lines, one after the other, end with these messages.
    void expectRuns(const std::vector<Messages>& ends) {
        for (std::size_t run = 0; run < ends.size(); ++run) {
            forget();
            upgrade("S0\nS9\n");
            runUntilIdle();
            EXPECT_EQ(host.messages, ends[run]) << "run " << run;
        }
    }
    /// A run goes on for so many ticks and ends on the next.
    void expectEndBehind(int count, const Messages& messages) {
        ticks(count);
        EXPECT_TRUE(host.messages.empty());
        ticks(1);
        EXPECT_EQ(host.messages, messages);
    }
    /// Nothing is in flight, polling goes on and the bar is gone.
    void expectRest() const {
        EXPECT_FALSE(link.transfer().active());
        EXPECT_EQ(link.CurrentCommand(), "");
        EXPECT_FALSE(link.AutoPollSuspended());
        EXPECT_FALSE(host.linkDisplay.status().progressVisible);
    }
    /// What went out, and the messages at its end.
    void expectRun(const Texts& written, const Messages& messages) const {
        EXPECT_EQ(port.written(), written);
        EXPECT_EQ(host.messages, messages);
    }

    void runUntilIdle(int limit = 20'000) {
        for (int i = 0; i < limit && (link.transfer().active() || link.ring().count() > 0); ++i) ticks(1);
    }

    static std::string dataRecord(int rpmHigh, std::size_t length = 33) {
        return framed(length, {{3, rpmHigh}});
    }
};

class CalibrationTransfer : public LinkTransfers {
 protected:
    CalibrationTransfer() {
        host.current = 3;
        host.fileCode = 2099;
        find(200000);
        Unit& unit = host.unit(3);
        unit.BinFile("/home/tuner/My Car.ZQ4OA");
        // Any calibration that converts: some cells are divisors.
        for (int index = 0; index < Unit::cellCount; ++index) unit.AssignDirectIndex(20, index);
    }
};

// ---- Programming a calibration

TEST_F(CalibrationTransfer, StartWritesItsConsoleLinesAndQueuesP1) {
    link.Program_Unit(TransferMode::Calibration, "");
    EXPECT_EQ(host.logLines, (Texts{"Preparing My Car.ZQ4OA for output to ORB Unit...",
                                    "  - Converting Data...", "  - Programming ORB..."}));
    EXPECT_TRUE(std::filesystem::exists(folder.path("ORB.s19")));
    EXPECT_EQ(link.ring().count(), 1);
    EXPECT_TRUE(host.linkDisplay.status().progressVisible);
    EXPECT_EQ(host.linkDisplay.status().progressPercent, 0);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"P1"}));
    EXPECT_TRUE(link.transfer().active());
}

TEST_F(CalibrationTransfer, TicksThatAreRunAfterAPauseDoNotShortenTheGapInFrontOfALine) {
    program();
    link.tick();           // P1 goes out
    port.advanceUs(1000);  // the reply is there since 530 us, its line quiet
    const std::int64_t seen = clock.monotonicUs();
    for (int owed = 0; owed < 500; ++owed) link.tick();
    EXPECT_EQ(port.written(), (Texts{"P1"}));
    clock.setUs(seen + 9'000);
    for (int owed = 0; owed < 500; ++owed) link.tick();
    EXPECT_EQ(port.written(), (Texts{"P1"}));
    clock.setUs(seen + 10'000);
    link.tick();
    EXPECT_EQ(port.written().size(), 2U);
}

TEST_F(CalibrationTransfer, BytesBehindAnAnswerDoNotPutTheNextLineOff) {
    program();
    link.tick();  // P1 goes out
    port.advanceUs(1000);
    for (int noise = 0; noise < 10; ++noise) {
        port.send(atOnce("\x55"));
        for (int ms = 0; ms < 2; ++ms) {
            port.advanceUs(1000);
            link.tick();
        }
    }
    EXPECT_EQ(port.written().size(), 2U) << "twenty milliseconds have passed since the answer";
}

TEST_F(CalibrationTransfer, AWholeRunOfARealImageTakesElevenTicksALine) {
    program();
    constexpr int lineCount = 137 + 1;  // data lines of a firmware below 5, and the end record
    ASSERT_EQ(link.transfer().lines(), lineCount);
    Texts lines = split(TemporaryFolder::read(folder.path("ORB.s19")), '\n');
    lines.resize(lineCount);  // nothing stands behind the last line end
    for (std::string& line : lines) {
        if (line.ends_with('\r')) line.pop_back();
    }
    port.always(lines.back(), atOnce("PN"));

    ticks(1);  // P1 goes out
    // The reply to the last line is handled on the tick behind its writing.
    ticks(lineCount * 11);
    EXPECT_EQ(port.written().size(), 1u + lineCount);
    EXPECT_TRUE(link.transfer().active());
    EXPECT_TRUE(host.messages.empty());
    ticks(1);
    EXPECT_FALSE(link.transfer().active());
    EXPECT_EQ(host.messages, (Messages{1002}));
    EXPECT_EQ(Texts(port.written().begin() + 1, port.written().end()), lines);
}

TEST_F(CalibrationTransfer, ARunOf147LinesEndsOnTick1619) {
    std::string content;
    for (int i = 1; i <= 147; ++i) content += "S1" + std::to_string(i) + "\r\n";
    answer("S1147", "PN");
    program(content);
    // One tick writes P1, 147 times eleven ticks write a line, one more handles the last reply.
    ticks(1618);
    EXPECT_EQ(port.written().size(), 148u);
    EXPECT_TRUE(host.messages.empty());
    ticks(1);
    EXPECT_EQ(host.messages, (Messages{1002}));
}

TEST_F(CalibrationTransfer, TheNextLineGoesOutOnTheEleventhTickOfAReply) {
    program("S1a\r\nS1b\r\n");
    ticks(1);
    for (const Texts& sent : {Texts{"P1"}, Texts{"P1", "S1a"}}) {
        EXPECT_EQ(port.written(), sent);
        ticks(10);
        EXPECT_EQ(port.written(), sent);
        ticks(1);
    }
    EXPECT_EQ(port.written(), (Texts{"P1", "S1a", "S1b"}));
}

TEST_F(CalibrationTransfer, VerifiedEndsInOrder) {
    program("S1a\r\nS9\r\n");
    host.calls.clear();
    runUntilIdle();
    EXPECT_EQ(host.calls, (Texts{"add: SUCCESS!", "message: 1002", "log: Automatic POLL/SYNC: ENABLED",
                                 "log: ORB: Upload Successful, Program Verified!"}));
    EXPECT_EQ(host.logLines[2], "  - Programming ORB... SUCCESS!");
    EXPECT_EQ(statusTexts(), (Texts{"Program ORB Successful", "PROGRAM VERIFIED",
                                    "You Must Restart ECU After download completed."}));
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Connected);
    expectRest();
    EXPECT_EQ(link.transfer().line(), 0);
    EXPECT_EQ(link.transfer().lines(), 0);
}

TEST_F(CalibrationTransfer, VerifiedIsHandledOnceThoughItsReplyStands) {
    answerLines("PN");
    program("S1a\r\n");
    ticks(100);
    EXPECT_EQ(host.messages, (Messages{1002}));
    EXPECT_EQ(port.written(), (Texts{"P1"}));
}

TEST_F(CalibrationTransfer, RefusedBeforeAnyLineFailsWithMessage1003) {
    answer("P1", "AR");
    program("S1a\r\n");
    host.calls.clear();
    ticks(100);
    EXPECT_EQ(host.calls,
              (Texts{"add: FAIL!", "log: PROCESS FAILED - EXITED ABNORMALLY.", "message: 1003",
                     "log: Automatic POLL/SYNC: ENABLED", "log: Data Upload to ORB Unit FAILED!"}));
    EXPECT_EQ(port.written(), (Texts{"P1"}));
    expectRest();
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
}

TEST_F(CalibrationTransfer, RefusedAtTheThirdLineFailsThere) {
    answer("S1c", "AR");
    program("S1a\r\nS1b\r\nS1c\r\nS1d\r\n");
    runUntilIdle();
    ticks(100);
    expectRun({"P1", "S1a", "S1b", "S1c"}, {1003});
    EXPECT_EQ(link.transfer().line(), 0);
}

TEST_F(CalibrationTransfer, ALostReplyFailsAfter1000TicksAndTheLinkIsLostToo) {
    answer("S1b", "");
    program("S1a\r\nS1b\r\nS1c\r\n");
    ticks(1 + 11 + 11);
    ASSERT_EQ(port.written().back(), "S1b");
    expectEndBehind(1000, {1003});
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_EQ(host.onFlyCalls, (std::vector<bool>{false}));
    expectRest();
}

TEST_F(CalibrationTransfer, APortThatVanishesOnTheWayFailsWithMessage1003AndTheUnitIsFoundAgain) {
    program("S1a\r\nS1b\r\nS9\r\n");
    ticks(1 + 11);
    ASSERT_EQ(port.written().back(), "S1a");
    port.silent(true);
    ticks(11 + 1001);
    EXPECT_EQ(host.messages, (Messages{1003}));
    expectRest();
    EXPECT_EQ(link.ring().count(), 0);

    port.silent(false);
    forget();
    port.always("E", identifyReply(200000));
    poll(10);
    ticks(10);
    ASSERT_EQ(link.linked().LinkedUnitKind, 3);
    ticks(1010);  // the B that nobody answers
    forget();
    program("S1a\r\nS9\r\n");
    ticks(100);
    expectRun({"P1", "S1a", "S9"}, {1002});
}

TEST_F(CalibrationTransfer, AFrameThatIsNeverAnsweredInFrontOfP1FailsTheTransferAndPollingGoesOn) {
    link.Send_ORB_Command("F");
    ticks(1);
    program("S1a\r\n");
    forget();
    expectEndBehind(83, {1003});
    EXPECT_EQ(host.logLines, (Texts{"PROCESS FAILED - EXITED ABNORMALLY.", "Automatic POLL/SYNC: ENABLED"}));
    expectRest();
    ticks(50);
    EXPECT_TRUE(port.written().empty()) << "the transfer went with the queue";
}

TEST_F(CalibrationTransfer, ASecondTransferIsRefusedWhileTheFirstWaitsInTheQueue) {
    program("S1a\r\n");
    EXPECT_THROW(link.Program_Unit(TransferMode::Datalog, folder.path("log.dat")), Failure);
    EXPECT_TRUE(link.AutoPollSuspended());
    ticks(100);
    expectRun({"P1", "S1a"}, {1002});
}

TEST_F(CalibrationTransfer, NoPortIsSearchedOnTheWay) {
    program("S1a\r\nS9\r\n");
    ticks(5);
    const int closes = port.closes();
    yielding.meanwhile = [&] { port.advanceUs(1000); };
    EXPECT_EQ(link.Autodetect_COMM_Port(), 0);
    EXPECT_EQ(port.closes(), closes);
    ticks(100);
    EXPECT_EQ(host.messages, (Messages{1002}));
}

TEST_F(CalibrationTransfer, AnEmptyFileCountsAsASuccess) {
    program("");
    ticks(2000);
    expectRun({"P1"}, {1002});
    expectRest();
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
}

TEST_F(CalibrationTransfer, AFileThatRunsOutWithNoVerificationCountsAsASuccess) {
    answer("S9", "AX");
    program("S1a\r\nS9");
    ticks(2000);
    expectRun({"P1", "S1a", "S9"}, {1002});
    EXPECT_EQ(link.ring().head(), link.ring().tail());
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(CalibrationTransfer, OtherUnitsGetEachLineWithItsLineEnd) {
    find(300000);
    host.current = 3;
    program("S1a\r\nS9\n");
    ticks(100);
    EXPECT_EQ(port.written(), (Texts{"P1", "S1a\r\n", "S9\r\n"}));
}

TEST_F(CalibrationTransfer, CommandsQueuedBehindP1AreThrownAway) {
    program("S1a\r\n");
    link.Send_ORB_Command("T");
    link.Send_ORB_Command("K");
    ticks(1);
    EXPECT_EQ(link.ring().count(), 0);
    ticks(200);
    EXPECT_EQ(port.written(), (Texts{"P1", "S1a"}));
}

TEST_F(CalibrationTransfer, CommandsQueuedDuringTheRunWaitUntilItIsOver) {
    program("S1a\r\nS1b\r\nS9\r\n");
    ticks(14);
    link.Send_ORB_Command("T");
    ticks(100);
    EXPECT_EQ(port.written(), (Texts{"P1", "S1a", "S1b", "S9", "T"}));
}

TEST_F(CalibrationTransfer, ACommandThatEntersInTheYieldOfALineWaitsToo) {
    program("S1a\r\nS9\r\n");
    yielding.meanwhile = [&] {
        ticks(3);  // ticks inside a tick do nothing
        if (yielding.count == 1) link.SEND_ONFLY("S104");
    };
    ticks(100);
    EXPECT_EQ(port.written(), (Texts{"P1", "S1a", "S9", "P2S104"}));
}

TEST_F(CalibrationTransfer, AFullRingLosesItsOldestCommandToALine) {
    program("S9\r\n");
    ticks(2);
    for (int i = 0; i < 511; ++i) link.Send_ORB_Command("K" + std::to_string(i));
    ticks(12);
    EXPECT_EQ(port.written(), (Texts{"P1", "S9", "K1"}));
}

TEST_F(CalibrationTransfer, ProgressIsTheWholePartOfLinesSentAgainstAll) {
    link.Program_Unit(TransferMode::Calibration, "");
    ticks(1 + 74 * 11);
    // The 74th line steps with 73 of 138 lines before it: 52.9 %.
    EXPECT_EQ(link.transfer().line(), 74);
    EXPECT_EQ(host.linkDisplay.status().progressPercent, 52);
    EXPECT_EQ(host.linkDisplay.status().progressText, "52%");
}

TEST_F(CalibrationTransfer, EachLineShowsTheStatusOfItsTransfer) {
    program("S1a\r\nS1b\r\n");
    ticks(11);
    host.linkDisplay.COMM_StatusMessage("x", "y", "z", "Warning");
    ticks(1);
    EXPECT_EQ(statusTexts(), (Texts{"Programming ORB...", "Using COM Port: 1 @ 38400 Baud.",
                                    "Please wait... this may take a moment."}));
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Transfer);
}

TEST_F(CalibrationTransfer, ThePollerStandsStill) {
    program("S1a\r\n");
    ticks(1);
    link.AutoPollSuspended(false);
    poll(50);
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(CalibrationTransfer, ASecondTransferIsRefusedWhileOneRuns) {
    program("S1a\r\n");
    ticks(1);
    EXPECT_THROW(link.Program_Unit(TransferMode::Calibration, ""), Failure);
    EXPECT_TRUE(link.AutoPollSuspended());
    EXPECT_TRUE(link.transfer().active());
}

TEST_F(CalibrationTransfer, AnUnwritableFolderQueuesNothingAndLetsPollingGoOn) {
    host.unitHost.applicationFolder(folder.path("absent"));
    link.AutoPollSuspended(true);
    EXPECT_THROW(link.Program_Unit(TransferMode::Calibration, ""), FileError);
    EXPECT_EQ(link.ring().count(), 0);
    expectRest();
}

// ---- Programming firmware

class FirmwareTransfer : public LinkTransfers {
 protected:
    FirmwareTransfer() { find(200000); }
};

TEST_F(FirmwareTransfer, FirmwareStartWritesItsLinesAndCountsOneMore) {
    upgrade("S0\nS1\nS9\n");
    EXPECT_EQ(host.logLines,
              (Texts{"Attempting Firmware Upgrade, Sending File... ", "  - " + folder.path("new.nv3")}));
    EXPECT_EQ(link.transfer().lines(), 4);
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"P3"}));
}

TEST_F(FirmwareTransfer, VerifiedFirmwareEndsWithItsOwnTexts) {
    upgradeWhole("S0\nS9\n");
    EXPECT_EQ(port.written(), (Texts{"P3", "S0", "S9"}));
    EXPECT_EQ(host.messages, (Messages{1002, 1008})) << "done, and the calibration is still to come";
    EXPECT_EQ(host.logLines.back(), "ORB: Firmware Upload Successful, Verified!");
    EXPECT_EQ(host.linkDisplay.status().title, "Program Firmware Successful");
    EXPECT_EQ(host.linkDisplay.status().line1, "PROGRAM VERIFIED");
}

TEST_F(FirmwareTransfer, FirmwareRefusedAtALineFailsWithMessage1004) {
    answer("S1", "AR");
    upgradeWhole("S0\nS1\nS9\n");
    EXPECT_EQ(host.messages, (Messages{1004}));
    EXPECT_EQ(host.logLines.back(), "Firmware Upload to ORB Unit FAILED!");
    EXPECT_TRUE(link.firmware().lost());
    EXPECT_EQ(statusTexts(), (Texts{"Transfer failed", "PROCESS FAILED - EXITED ABNORMALLY.", ""}))
        << "nobody is to wait any more";
    EXPECT_EQ(host.linkDisplay.status().image, LinkImage::Warning);
}

TEST_F(FirmwareTransfer, FirmwareRefusedAtItsStartFailsWithMessage1005) {
    answerLines("AR");
    upgradeWhole("S0\nS9\n");
    EXPECT_EQ(port.written(), (Texts{"P3"}));
    EXPECT_EQ(host.messages, (Messages{1005})) << "the unit is not in upgrade mode";
    EXPECT_EQ(host.logLines.back(), "Firmware Upload to ORB Unit FAILED!");
    EXPECT_FALSE(link.firmware().lost());
}

TEST_F(FirmwareTransfer, AFirmwareStartHas5000TicksOfPatienceAndFailsWithMessage1004) {
    answerLines("");
    upgrade("S0\n");
    ticks(1 + 5000);
    EXPECT_TRUE(host.messages.empty());
    ticks(1);
    EXPECT_EQ(host.messages, (Messages{1004})) << "what it has now is not known";
    EXPECT_FALSE(link.firmware().lost());
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
}

TEST_F(FirmwareTransfer, AFirmwareLineThatIsNeverAnsweredFailsAfter5001TicksWithMessage1004) {
    answer("S1", "");
    upgrade("S0\nS1\nS9\n");
    ticks(1 + 11 + 11);
    ASSERT_EQ(port.written().back(), "S1");
    expectEndBehind(5000, {1004});
    EXPECT_TRUE(link.firmware().lost());
}

TEST_F(FirmwareTransfer, AnEmptyFirmwareFileCountsAsASuccess) {
    upgrade("");
    ticks(6000);
    expectRun({"P3"}, {1002, 1008});
}

/// A unit whose firmware broke off at its second line, and which then fell silent.
class LostFirmware : public FirmwareTransfer {
 protected:
    LostFirmware() {
        answer("S1", "AR");
        upgrade("S0\nS1\nS9\n");
        runUntilIdle();
        forget();
        EXPECT_TRUE(link.firmware().lost());
    }
};

TEST_F(LostFirmware, OnlyTheThirdStartInARowThatGetsNoAnswerIsToldWithMessage1009) {
    answerLines("");
    expectRuns({{1004}, {1004}, {1009}, {1009}});
}

TEST_F(LostFirmware, AnAnswerBetweenTwoSilentStartsBeginsTheCountAnew) {
    answerLines("");
    expectRuns({{1004}, {1004}});
    answerLines("AR");
    expectRuns({{1005}});
    answerLines("");
    expectRuns({{1004}, {1004}, {1009}});
}

TEST_F(LostFirmware, AUnitThatRefusesTheNextStartIsToldWithMessage1005) {
    answerLines("AR");
    expectRuns({{1005}});
    EXPECT_TRUE(link.firmware().lost()) << "no run has ended well since";
}

TEST_F(FirmwareTransfer, SilentStartsOfAUnitThatNeverGotALineProveNothing) {
    answerLines("");
    expectRuns(std::vector<Messages>(5, {1004}));
}

TEST_F(LostFirmware, WithAClosedPortNobodyKnowsThatTheUnitIsLostForGood) {
    answerLines("");
    link.RS232_Close();
    expectRuns(std::vector<Messages>(4, {1004}));
}

TEST_F(LostFirmware, WithTheAdapterPulledOutNobodyKnowsThatTheUnitIsLostForGood) {
    answerLines("");
    for (int run = 0; run < 4; ++run) {
        forget();
        upgrade("S0\nS9\n");
        while (port.written().empty() || port.written().back() != "P3") ticks(1);
        port.loseDevice();
        runUntilIdle();
        EXPECT_EQ(host.messages, (Messages{1004})) << run;
        EXPECT_EQ(host.linkDisplay.status().title, "Adapter unplugged");
        port.returnDevice("/dev/ttyUSB0");
        ticks(2000);
    }
}

TEST_F(LostFirmware, AnAdapterThatWasAwayWhenTheRunBeganProvesNothingThoughItIsBack) {
    answerLines("");
    for (int run = 0; run < 4; ++run) {
        forget();
        port.loseDevice();
        upgrade("S0\nS9\n");
        ticks(3);
        port.returnDevice("/dev/ttyUSB0");
        runUntilIdle();
        EXPECT_EQ(host.messages, (Messages{1004})) << run;
    }
}

TEST_F(LostFirmware, WithTheAdapterThereAgainLaterRunsMayTellThatTheUnitIsLost) {
    answerLines("");
    port.loseDevice();
    ticks(3);
    port.returnDevice("/dev/ttyUSB0");
    ticks(2000);
    expectRuns({{1004}, {1004}, {1009}});
}

TEST_F(LostFirmware, ItsKindIsKeptForTheRunThatMendsIt) {
    EXPECT_EQ(link.firmware().lostSlot(), 3);
    answer("E", "");
    link.Send_ORB_Command("E");
    ticks(1 + 1001);  // nobody answers any more
    ASSERT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_EQ(link.firmware().lostSlot(), 3);
    forget();
    upgradeWhole("S0\nS9\n");
    EXPECT_EQ(port.written(), (Texts{"E", "P3", "S0", "S9"})) << "this kind takes its lines without an end";
    EXPECT_EQ(link.firmware().lostSlot(), 0);
}

TEST_F(LostFirmware, ASecondRunThatEndsWellMendsIt) {
    expectRuns({{1002, 1008}});
    EXPECT_FALSE(link.firmware().lost());
    answerLines("AR");
    expectRuns({{1005}});
}

TEST_F(LostFirmware, AnEmptyFileMendsNothing) {
    upgradeWhole("");
    EXPECT_TRUE(link.firmware().lost());
}

TEST_F(LostFirmware, AUnitThatTellsItsFirmwareHasOne) {
    identify(200001, "ZQA-405099");
    EXPECT_FALSE(link.firmware().lost());
    answerLines("");
    expectRuns(std::vector<Messages>(4, {1004}));
}

TEST_F(LostFirmware, TheNextRunOutlivesThePollThatTheUnitDoesNotAnswer) {
    answer("E", "");
    link.Send_ORB_Command("E");
    ticks(1);
    upgrade("S0\nS9\n");
    EXPECT_TRUE(link.transfer().firmware());
    ticks(1001);  // the poll dies, and the link with it
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
    EXPECT_TRUE(host.messages.empty());
    EXPECT_TRUE(link.AutoPollSuspended());
    runUntilIdle();
    EXPECT_EQ(port.written(), (Texts{"E", "P3", "S0", "S9"})) << "the kind is still known";
    EXPECT_EQ(host.messages, (Messages{1002, 1008}));
}

TEST_F(FirmwareTransfer, AFirmwareOutlivesAFrameThatAUnitInUpgradeModeNoLongerAnswers) {
    link.Send_ORB_Command("F");
    ticks(1);
    upgrade("S9\n");
    link.Send_ORB_Command("K");
    ticks(84);
    EXPECT_EQ(link.ring().count(), 1) << "the firmware alone stays";
    runUntilIdle();
    EXPECT_EQ(port.written(), (Texts{"F", "E", "P3", "S9"})) << "lines as the kind takes them that was found";
    EXPECT_EQ(host.messages, (Messages{1002, 1008}));
}

/// A firmware for the ORB A that waits behind a frame which nobody answers any more.
class WaitingFirmware : public LinkTransfers {
 protected:
    WaitingFirmware() {
        find(200001);
        link.Send_ORB_Command("F");
        ticks(1);
        upgrade("S0\nS9\n");
        ticks(84);
        EXPECT_EQ(link.linked().LinkedUnitKind, 0);
        EXPECT_TRUE(link.transfer().firmware());
        forget();
    }
    void expectItEnds() {
        ticks(3000);
        EXPECT_EQ(std::ranges::count(port.written(), std::string("P3")), 0);
        EXPECT_EQ(host.messages, (Messages{1005}));
    }
};

TEST_F(WaitingFirmware, GoesOutOnceTheSameUnitHasSaidThatItIsThere) {
    port.once("E", identifyReply(200001));
    runUntilIdle();
    expectRun({"E", "P3", "S0", "S9"}, {1002, 1008});
    EXPECT_TRUE(host.boxes.empty());
}

TEST_F(WaitingFirmware, EndsWhereAUnitOfAnotherKindAnswers) {
    port.once("E", identifyReply(300001));
    expectItEnds();
    ASSERT_EQ(host.boxes.size(), 1u);
    EXPECT_EQ(host.boxes[0].title, "Another Unit");
    EXPECT_FALSE(link.transfer().pending());
    EXPECT_FALSE(link.AutoPollSuspended());
    EXPECT_EQ(link.linked().LinkedUnitKind, 4) << "it is the unit on the link from here on";
}

TEST_F(WaitingFirmware, EndsWhereAnotherUnitOfItsKindAnswers) {
    port.once("E", identifyReply(200002));
    expectItEnds();
}

TEST_F(WaitingFirmware, EndsWhereAUnitOfTheOldestFormatAnswers) {
    port.once("E", bytes({0x00, 0x01, 0x00, 0x01, 'A', 'X'}));
    expectItEnds();
}

TEST_F(WaitingFirmware, ADamagedAnswerIsAskedForAgainAndTheThirdEndsTheRun) {
    port.always("E", atOnce("garbage!"));
    expectItEnds();
    EXPECT_EQ(port.written(), (Texts{"E", "E", "E"}));
}

TEST_F(WaitingFirmware, GoesOutWhereNobodyAnswersAsAUnitWithoutFirmwareDoes) {
    answer("E", "");
    runUntilIdle();
    expectRun({"E", "P3", "S0", "S9"}, {1002, 1008});
}

TEST_F(LinkTransfers, AFirmwareThatWaitsWhileTheAdapterIsChangedAsksWhoIsThereNow) {
    find(200001);
    link.Send_ORB_Command("S");
    answer("S", "");
    ticks(1);
    upgrade("S0\nS9\n");
    port.once("E", identifyReply(300001));
    port.loseDevice();
    ticks(5);
    port.returnDevice("/dev/ttyUSB0");
    ticks(3000);
    EXPECT_EQ(std::ranges::count(port.written(), std::string("P3")), 0);
    EXPECT_EQ(host.messages, (Messages{1005}));
}

TEST_F(CalibrationTransfer, AProgramThatWaitsEndsWhereAnotherUnitOfItsKindAnswers) {
    port.once("E", identifyReply(200009));
    link.Send_ORB_Command("E");
    program("S1\n");
    ticks(3000);
    EXPECT_EQ(port.written().front(), "E");
    EXPECT_EQ(std::ranges::count(port.written(), std::string("P1")), 0);
    EXPECT_EQ(host.messages, (Messages{1003}));
}

TEST_F(CalibrationTransfer, AProgramThatWaitsEndsWhenItsAdapterGoes) {
    link.Send_ORB_Command("S");
    ticks(1);
    program("S1\n");
    port.loseDevice();
    ticks(1);
    EXPECT_EQ(host.messages, (Messages{1003}));
    port.returnDevice("/dev/ttyUSB0");
    ticks(3000);
    EXPECT_EQ(std::ranges::count(port.written(), std::string("P1")), 0);
}

TEST_F(LinkTransfers, WithoutAUnitTheKindThatTheFirmwareIsForDecidesHowItsLinesEnd) {
    open();
    for (const int slot : {3, 5, 0}) {
        forget();
        link.programFirmware("ZQA.nv3", "S0\nS9\n", slot);
        runUntilIdle();
        const std::string end = slot == 3 ? "" : "\r\n";
        EXPECT_EQ(port.written(), (Texts{"E", "P3", "S0" + end, "S9" + end})) << slot;
    }
}

TEST_F(FirmwareTransfer, AUnitOnTheLinkDecidesHowItsLinesEndWhateverTheCallerThinks) {
    link.programFirmware("ZQL.nv3", "S0\n", 4);
    runUntilIdle();
    EXPECT_EQ(port.written(), (Texts{"P3", "S0"}));
}

TEST_F(FirmwareTransfer, AFirmwareFileThatVanishesOnTheWayIsSentToItsEnd) {
    upgrade("S0\nS1\nS9\n");
    ticks(15);
    ASSERT_EQ(port.written(), (Texts{"P3", "S0"}));
    std::ofstream(folder.path("new.nv3"), std::ios::trunc) << "S2\n";
    std::filesystem::remove(folder.path("new.nv3"));
    runUntilIdle();
    expectRun({"P3", "S0", "S1", "S9"}, {1002, 1008});
}

TEST_F(FirmwareTransfer, AnAbsentFirmwareFileQueuesNothing) {
    EXPECT_THROW(link.Program_Unit(TransferMode::Firmware, folder.path("absent.nv3")), FileError);
    EXPECT_EQ(link.ring().count(), 0);
}

TEST_F(LinkTransfers, WithAClosedPortATransferFailsAndPollingGoesOn) {
    upgradeWhole("S0\n");
    EXPECT_EQ(host.messages, (Messages{1004}));
    expectRest();
}

// ---- The unit's own datalog

class DatalogTransfer : public LinkTransfers {
 protected:
    DatalogTransfer() { find(200000); }

    /// Records with these high bytes of engine speed; the last comes again and again.
    void answerRecords(const std::vector<int>& rpmHigh) {
        for (const int high : rpmHigh) port.once("D", atOnce(dataRecord(high)));
        port.always("D", atOnce(dataRecord(rpmHigh.back())));
    }
    void download() {
        link.AutoPollSuspended(true);
        link.Program_Unit(TransferMode::Datalog, folder.path("log.dat"));
    }
    std::size_t linesOfLog() const {
        return split(TemporaryFolder::read(folder.path("log.dat")), '\n').size() - 1;
    }
};

TEST_F(DatalogTransfer, StartWritesItsLinesAndTheHeaderOfTheFile) {
    download();
    EXPECT_EQ(host.logLines, (Texts{"Downloading on-board datalog file... ",
                                    "Saving data to: " + folder.path("log.dat"), "  - Downloading data..."}));
    EXPECT_EQ(link.transfer().lines(), 0);
    EXPECT_FALSE(link.transfer().active());
    ticks(1);
    EXPECT_EQ(port.written(), (Texts{"D"}));
    EXPECT_TRUE(link.transfer().active());
    ticks(1001);
    EXPECT_EQ(linesOfLog(), 3u);
}

TEST_F(DatalogTransfer, EachRecordIsALineUntilTheEndMarker) {
    answerRecords({0, 1, 2, 3, 4, 83});
    download();
    runUntilIdle();
    EXPECT_EQ(port.written(), Texts(6, "D"));
    EXPECT_EQ(linesOfLog(), 3u + 5u);
    EXPECT_EQ(host.messages, (Messages{1006}));
    EXPECT_EQ(host.logLines[2], "  - Downloading data... SUCCESS!");
    EXPECT_EQ(host.logLines.back(), "ORB: Datalog download complete!");
    EXPECT_EQ(statusTexts(), (Texts{"Download of Datalog Complete", "", ""}));
    expectRest();
}

TEST_F(DatalogTransfer, EngineSpeedByte82IsARecordAnd83TheEnd) {
    answerRecords({82, 82, 83});
    download();
    runUntilIdle();
    EXPECT_EQ(linesOfLog(), 3u + 2u);
}

TEST_F(DatalogTransfer, TheEndAtOnceIsAnEmptyLogAndMessage1007) {
    answerRecords({255});
    download();
    runUntilIdle();
    EXPECT_EQ(host.messages, (Messages{1007}));
    EXPECT_EQ(host.logLines[2], "  - Downloading data... FAIL!");
    EXPECT_FALSE(link.transfer().active());
    EXPECT_EQ(link.linked().LinkedUnitKind, 3);
}

TEST_F(DatalogTransfer, OneRecordAndTheEndIsAFailureToo) {
    answerRecords({1, 255});
    download();
    runUntilIdle();
    EXPECT_EQ(host.messages, (Messages{1007}));
}

TEST_F(DatalogTransfer, ABadHeaderRaisesNoMessageAndStallsIntoTheTimeOut) {
    port.once("D", atOnce(dataRecord(1)));
    port.always("D", atOnce(std::string(33, 'x')));
    download();
    ticks(5);
    EXPECT_EQ(link.CurrentCommand(), "");
    EXPECT_EQ(link.transfer().lines(), 2);
    EXPECT_TRUE(host.messages.empty());
    ticks(995);
    EXPECT_TRUE(host.messages.empty());
    EXPECT_TRUE(link.transfer().active());
    ticks(10);
    EXPECT_EQ(host.messages, (Messages{1007}));
    expectRest();
    EXPECT_EQ(port.written(), (Texts{"D", "D"}));
}

TEST_F(DatalogTransfer, ALostRecordEndsTheDownloadAndTheLinkAtThe1001stTick) {
    port.once("D", atOnce(dataRecord(1)));
    download();
    ticks(3);
    ASSERT_EQ(port.written(), (Texts{"D", "D"}));
    expectEndBehind(1000, {1007});
    EXPECT_EQ(link.linked().LinkedUnitKind, 0);
}

TEST_F(DatalogTransfer, AFullLogReachesAHundredPercentAndGoesOnCounting) {
    find(350000);  // a log of 1820 records
    port.always("D", atOnce(dataRecord(1, 40)));
    download();
    ticks(1 + 2 * 910);
    EXPECT_EQ(link.transfer().lines(), 910);
    EXPECT_EQ(host.linkDisplay.status().progressPercent, 50);
    ticks(2 * 910);
    EXPECT_EQ(host.linkDisplay.status().progressPercent, 100);
    ticks(2 * 10);
    EXPECT_EQ(link.transfer().lines(), 1830);
    EXPECT_EQ(host.linkDisplay.status().progressPercent, 100);
}

TEST_F(DatalogTransfer, AUserCommandIsWrittenBetweenTwoRecords) {
    answerRecords({1});
    port.always("T", atOnce(framed(16, {})));
    download();
    ticks(1);
    link.Send_ORB_Command("T");
    ticks(6);
    EXPECT_EQ(port.written(), (Texts{"D", "T", "D", "D"}));
}

TEST_F(DatalogTransfer, AUserCommandThatIsNeverAnsweredEndsTheDownloadWithTheLink) {
    answerRecords({1});
    download();
    ticks(1);
    link.Send_ORB_Command("K");
    ticks(2);
    ASSERT_EQ(port.written().back(), "K");
    ticks(1001);
    EXPECT_EQ(host.messages, (Messages{1007}));
    expectRest();
}

TEST_F(DatalogTransfer, AFileThatCannotBeMadeQueuesNothing) {
    link.AutoPollSuspended(true);
    EXPECT_THROW(link.Program_Unit(TransferMode::Datalog, folder.path("absent/log.dat")), FileError);
    EXPECT_EQ(link.ring().count(), 0);
    EXPECT_FALSE(link.AutoPollSuspended());
}

TEST_F(DatalogTransfer, AFullDiskFailsTheDownload) {
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "no full device here";
    answerRecords({1, 1, 255});
    link.Program_Unit(TransferMode::Datalog, "/dev/full");
    runUntilIdle();
    EXPECT_EQ(host.messages, (Messages{1007}));
}

}  // namespace
}  // namespace zentaq
