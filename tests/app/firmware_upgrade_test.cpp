// The command "Firmware Upgrade" and what other commands do while a transfer runs or waits.
#include <csignal>

#include "app/command_fixture.h"

namespace zentaq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

// 05 + 10 + 00 + AA + 55 = 114, FF - 14 = EB.
constexpr const char* wholeFirmware = "S0030000FC\r\nS1051000AA55EB\r\nS9030000FC\r\n";

constexpr const char* running = "A transfer is running.  Please wait until it has ended.";

class FirmwareUpgrade : public ProgramTest {
 protected:
    FirmwareUpgrade() {
        session.makeUnits();
        session.link.load();
    }

    /// A unit of this serial number answers E and nothing else.
    void linkUnit(std::uint32_t serial) {
        identify(serial);
        answer("");
    }
    void linkOrbA() { linkUnit(200001); }

    std::string firmware(const std::string& name, const std::string& text = wholeFirmware) {
        return fake.folder.write(name, text);
    }
    void choose(const std::string& path) {
        boxes().clear();
        fake.dialogs.files = {path};
        commands.programming.firmwareUpgrade();
    }
    void tickUntil(const std::string& written, int limit = 50) {
        const auto& all = fake.port.written;
        for (int i = 0; i < limit && (all.empty() || all.back() != written); ++i) tick();
    }
    /// A millisecond: the gap in front of a line is one of the clock too.
    void tick() {
        fake.clock.nowUs += 1000;
        session.link.tick();
    }
    void answer(const std::string& reply) {
        fake.port.deliver(reply);
        session.link.tick();
    }
    /// The upgrade is at its first line.
    void runUpgrade() {
        linkOrbA();
        choose(firmware("ZQA-505100.nv3"));
        tickUntil("P3");
        answer("AX");
        tickUntil("S0030000FC");
        boxes().clear();
        fake.windows.calls.clear();
    }
    /// The unit takes what is left of it.
    void finishUpgrade() {
        answer("AX");
        tickUntil("S1051000AA55EB");
        answer("AX");
        tickUntil("S9030000FC");
        answer("PN");
    }
};

TEST_F(FirmwareUpgrade, WarnsFirstAndCancelEndsIt) {
    fake.dialogs.answers = {Answer::Cancel};
    choose("");
    EXPECT_THAT(boxes(),
                ElementsAre(IsBox(
                    "FIRMWARE UPGRADE WARNING",
                    "You are about to upgrade the firmware on your Norvalia product.\n"
                    "Ensure that your laptop is connected to A/C power, before proceeding.\n"
                    "Before going on, consult the software user's guide appendix on firmware\n"
                    "upgrades to ensure that the unit is ready to recieve a new firmware.\n"
                    "INFO: Select the latest firmware file correct to the type of unit being upgraded.\n"
                    "ORB A\tZQAxxxxxxx\nORB L\tZQLxxxxxxx\nORB C\tZQCxxxxxxx\nORB D\tZQDxxxxxxx\n"
                    "PZK-2\tZPKxxxxxxx")));
    EXPECT_EQ(box().buttons, Buttons::OkCancel);
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
}

TEST_F(FirmwareUpgrade, TheDialogHasItsTitleFilterAndFolderAndNoNameEndsIt) {
    choose("");
    ASSERT_EQ(fake.dialogs.requests.size(), 1u);
    EXPECT_EQ(fake.dialogs.requests[0].title, "Norvalia Firmware Files");
    EXPECT_EQ(fake.dialogs.requests[0].filter, "Norvalia Firmware(*.nv3)|*.nv3");
    EXPECT_EQ(fake.dialogs.requests[0].folder, fake.folder.path("bin"));
    EXPECT_EQ(boxes().size(), 1u);
    EXPECT_FALSE(session.link.transfer().pending());
}

TEST_F(FirmwareUpgrade, AFileOfTheLinkedUnitGoesOutWithPollingSuspendedAndFormsRemoved) {
    linkOrbA();
    ASSERT_EQ(session.link.linked().LinkedUnitKind, 3);
    const std::string path = firmware("ZQA-505100.nv3");
    choose(path);
    EXPECT_THAT(titles(), ElementsAre("FIRMWARE UPGRADE WARNING"));
    EXPECT_TRUE(session.link.transfer().firmware());
    EXPECT_TRUE(session.link.AutoPollSuspended());
    EXPECT_THAT(fake.windows.calls, Contains("removeForms"));
    EXPECT_TRUE(logged("Attempting Firmware Upgrade, Sending File... "));
    EXPECT_TRUE(logged("  - " + path));
    tickUntil("P3");
    EXPECT_EQ(fake.port.written.back(), "P3");
}

TEST_F(FirmwareUpgrade, AFileOfAnotherUnitIsInvalid) {
    linkOrbA();
    const auto written = fake.port.written;
    choose(firmware("ZQL-705100.nv3"));
    EXPECT_THAT(titles(), ElementsAre("FIRMWARE UPGRADE WARNING", "Invalid Firmware"));
    EXPECT_EQ(box().text, "This firmware file is not valid for this unit.");
    EXPECT_EQ(boxes().back().icon, Icon::Critical);
    EXPECT_FALSE(session.link.transfer().pending());
    EXPECT_FALSE(session.link.AutoPollSuspended());
    session.link.tick();
    EXPECT_EQ(fake.port.written, written);
}

TEST_F(FirmwareUpgrade, TheLinkedUnitDecidesThoughAnotherCalibrationIsInHand) {
    linkOrbA();
    session.CurrentUnit(4);
    choose(firmware("ZQL-705100.nv3"));
    EXPECT_EQ(titles().back(), "Invalid Firmware");
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_TRUE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, WithoutAUnitTheCalibrationDecidesAndWithoutOneAnyNameIsTaken) {
    session.CurrentUnit(4);
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_EQ(titles().back(), "Invalid Firmware");
    session.CurrentUnit(0);
    choose(firmware("mended.nv3"));
    EXPECT_THAT(titles(), ElementsAre("FIRMWARE UPGRADE WARNING"));
    EXPECT_TRUE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, AUnitThatLostItsFirmwareIsRememberedWhateverCalibrationIsInHand) {
    runUpgrade();
    answer("AR");
    ASSERT_TRUE(session.link.firmware().lost());
    session.link.Send_ORB_Command("T");
    ticks(1100);  // nobody answers any more
    ASSERT_EQ(session.link.linked().LinkedUnitKind, 0);
    for (const float inHand : {0.0F, 4.0F}) {
        session.CurrentUnit(inHand);
        choose(firmware("ZQL-705100.nv3"));
        EXPECT_EQ(titles().back(), "Invalid Firmware") << inHand;
    }
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_TRUE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, WhatWasCheckedIsSentThoughTheFileChangesOnTheWay) {
    runUpgrade();
    firmware("ZQA-505100.nv3", "S9030000FC\r\n");
    answer("AX");
    tickUntil("S1051000AA55EB");
    EXPECT_EQ(fake.port.written.back(), "S1051000AA55EB");
    std::filesystem::remove(fake.folder.path("ZQA-505100.nv3"));
    answer("AX");
    tickUntil("S9030000FC");
    EXPECT_EQ(fake.port.written.back(), "S9030000FC");
}

TEST_F(FirmwareUpgrade, WithoutAUnitTheNameOfTheFileTellsHowItsLinesEnd) {
    choose(firmware("ZQA-505100.nv3"));
    tickUntil("P3", 1100);  // nobody answers to the question who is there
    answer("AX");
    tickUntil("S0030000FC");
    EXPECT_EQ(fake.port.written.back(), "S0030000FC");
}

TEST_F(FirmwareUpgrade, AFileThatIsNotWholeIsToldWithItsLineAndNothingIsSent) {
    linkOrbA();
    const auto written = fake.port.written;
    choose(firmware("ZQA-505100.nv3", "S0030000FC\r\nS1051000AA55EC\r\nS9030000FC\r\n"));
    EXPECT_EQ(titles().back(), "Firmware File Error");
    EXPECT_EQ(box().text,
              "ZQA-505100.nv3 is no whole firmware file.\nLine 2: the checksum is wrong.\n"
              "Nothing was sent to the unit.  Please get the file anew and try again.");
    choose(firmware("ZQA-505101.nv3", ""));
    EXPECT_THAT(box().text, HasSubstr("The file is empty."));
    choose(fake.folder.path("ZQA-absent.nv3"));
    EXPECT_EQ(titles().back(), "Firmware File Error");
    EXPECT_FALSE(session.link.transfer().pending());
    session.link.tick();
    EXPECT_EQ(fake.port.written, written);
}

TEST_F(FirmwareUpgrade, AVerifiedRunSaysWhatToDoNextAndPollingGoesOn) {
    runUpgrade();
    finishUpgrade();
    ASSERT_EQ(boxes().size(), 2u);
    EXPECT_THAT(boxes()[0].text, HasSubstr("You have successfully programmed your ORB unit."));
    EXPECT_THAT(boxes()[1].text, HasSubstr("The BIN file MUST be loaded before starting your engine."));
    EXPECT_FALSE(session.link.AutoPollSuspended());
    EXPECT_FALSE(session.link.transfer().pending());
}

// ---- While its boxes stand

class FirmwareUpgradeMeanwhile : public FirmwareUpgrade {
 protected:
    static constexpr std::uint32_t otherOrbA = 200002, orbL = 300001;
    /// Behind a silence another unit comes while the run waits, and gets nothing.
    void expectNothingForOneThatComes(std::uint32_t serial) {
        linkOrbA();
        during("", [&] { loseUnit(); });
        choose(firmware("ZQA-505100.nv3"));
        ASSERT_TRUE(session.link.transfer().firmware());
        fake.port.written.clear();
        linkUnit(serial);
        ticks(1100);
        EXPECT_FALSE(sent("P3"));
        EXPECT_FALSE(session.link.transfer().pending());
    }
};

TEST_F(FirmwareUpgradeMeanwhile, AUnitOfAnotherKindThatComesGetsNothing) {
    for (const std::string title : {"FIRMWARE UPGRADE WARNING", ""}) {
        linkOrbA();
        during(title, [&] {
            loseUnit();
            linkUnit(orbL);
        });
        choose(firmware("ZQA-505100.nv3"));
        EXPECT_EQ(titles().back(), "Invalid Firmware") << title;
        EXPECT_FALSE(session.link.transfer().pending()) << title;
        loseUnit();
    }
    EXPECT_FALSE(sent("P3"));
}

TEST_F(FirmwareUpgradeMeanwhile, AnotherUnitOfTheKindGetsNothingAndTheUserIsToldItsNumber) {
    linkOrbA();
    during("", [&] {
        loseUnit();
        linkUnit(otherOrbA);
    });
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_EQ(titles().back(), "Firmware Upgrade");
    EXPECT_THAT(box().text, HasSubstr("200002 in the place of 200001"));
    EXPECT_TRUE(logged("another unit is connected now"));
    EXPECT_FALSE(session.link.transfer().pending());
    EXPECT_FALSE(session.link.AutoPollSuspended());
    EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
}

TEST_F(FirmwareUpgradeMeanwhile, AnotherUnitOfTheKindThatAnswersBehindASilenceGetsNothing) {
    expectNothingForOneThatComes(otherOrbA);
}

TEST_F(FirmwareUpgradeMeanwhile, AUnitThatFallsSilentIsAskedBeforeItIsProgrammedAndAnotherKindGetsNothing) {
    session.CurrentUnit(4);  // the calibration in hand is no reason to take another file
    expectNothingForOneThatComes(orbL);
}

TEST_F(FirmwareUpgradeMeanwhile, AUnitOfAnotherKindThatComesWhileTheFormsCloseGetsNothing) {
    linkOrbA();
    SlowlyClosingWindows closing;
    closing.meanwhile = [&] {
        loseUnit();
        linkUnit(orbL);
    };
    session.attach(closing);
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_EQ(titles().back(), "Invalid Firmware");
    EXPECT_FALSE(session.link.transfer().pending());
    EXPECT_FALSE(sent("P3"));
    session.attach(fake.windows);
}

TEST_F(FirmwareUpgradeMeanwhile, AUnitOfTheOldestFirmwareThatComesGetsNothing) {
    during("", [&] {
        session.link.Send_ORB_Command("E");
        session.link.tick();
        answer(bytes({0, 1, 0, 1, 'A', 'X'}));
    });
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_EQ(titles().back(), "Firmware Upgrade");
    EXPECT_FALSE(session.link.transfer().pending());
}

// ---- The menu

TEST_F(FirmwareUpgrade, TheEntryIsEnabledWithoutAUnitAndNotDuringATransfer) {
    EXPECT_TRUE(enabled("mnuFirmwareUpgrade"));
    choose(firmware("any.nv3"));
    ASSERT_TRUE(session.link.transfer().pending());
    ASSERT_FALSE(session.link.transfer().active());
    EXPECT_FALSE(enabled("mnuFirmwareUpgrade")) << "queued counts too";
    tickUntil("P3", 1100);
    ASSERT_TRUE(session.link.transfer().active());
    EXPECT_FALSE(enabled("mnuFirmwareUpgrade"));
}

TEST_F(FirmwareUpgrade, TheEntryIsDisabledForAUnitOfTheOldestFirmware) {
    session.link.Send_ORB_Command("E");
    session.link.tick();
    answer(bytes({0, 3, 0x0D, 0x41, 'A', 'X'}));
    ASSERT_TRUE(session.link.linked().OldFirmware);
    EXPECT_FALSE(enabled("mnuFirmwareUpgrade"));
}

// ---- While it runs

TEST_F(FirmwareUpgrade, CommandsThatWouldDisturbAreRefusedInTheStripAndKillEngineInABox) {
    runUpgrade();
    session.CurrentFile = "tune.ZQ4OA";
    const auto written = fake.port.written;
    const int queued = session.link.ring().count();
    const int opens = fake.port.opens;
    const std::vector<std::function<void()>> disturbing = {
        [&] { commands.files.newCalibration(); },
        [&] { commands.files.open(); },
        [&] { commands.files.close(); },
        [&] { commands.programming.programOrb(); },
        [&] { commands.programming.firmwareUpgrade(); },
        [&] { commands.unit.killEngine(); },
        [&] { commands.unit.zeroAdvance(); },
        [&] { commands.unit.refreshCodes(); },
        [&] { commands.unit.clearCodes(); },
        [&] { commands.unit.storeOnFly(); },
        [&] { commands.unit.identify(); },
        [&] { commands.unit.choosePort(2); },
        [&] { commands.unit.loadCommand(2); },
        [&] { EXPECT_EQ(commands.unit.autodetectPort(), 0); },
    };
    constexpr std::size_t kill = 5;
    for (std::size_t i = 0; i < disturbing.size(); ++i) {
        boxes().clear();
        session.notices.dismiss(0);
        disturbing[i]();
        if (i == kill) {
            EXPECT_THAT(boxes(), ElementsAre(IsBox("Zentaq4", running)));
            continue;
        }
        EXPECT_EQ(session.notices.text(0), running) << i;
        EXPECT_THAT(boxes(), IsEmpty()) << i;
    }
    EXPECT_THAT(fake.windows.calls, IsEmpty());
    EXPECT_EQ(session.CurrentFile, "tune.ZQ4OA");
    EXPECT_EQ(session.link.ring().count(), queued);
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_EQ(fake.port.opens, opens);
    EXPECT_FALSE(session.link.zeroAdvanceAsked());
    EXPECT_FALSE(session.Monitoring);
    EXPECT_TRUE(session.link.AutoPollSuspended());
    EXPECT_EQ(fake.port.written, written);
}

TEST_F(FirmwareUpgrade, ARunThatStillWaitsInTheQueueKeepsThePortSearchAwayToo) {
    choose(firmware("any.nv3"));
    ASSERT_FALSE(session.link.transfer().active());
    const int opens = fake.port.opens;
    EXPECT_EQ(commands.unit.autodetectPort(), 0);
    EXPECT_EQ(fake.port.opens, opens);
    EXPECT_EQ(session.notices.text(0), running);
}

TEST_F(FirmwareUpgrade, ATransferThatBeganWhileTheFileWasChosenIsNotDisturbed) {
    linkOrbA();
    during("", [&] {
        session.link.AutoPollSuspended(true);
        session.link.Program_Unit(TransferMode::Datalog, fake.folder.path("log.dat"));
    });
    choose(firmware("ZQA-505100.nv3"));
    EXPECT_EQ(session.notices.text(0), running);
    EXPECT_TRUE(session.link.AutoPollSuspended());
    EXPECT_TRUE(session.link.transfer().pending());
    EXPECT_FALSE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, ClosingTheWindowAsksAndTheChoiceAtHandIsToStay) {
    runUpgrade();
    session.DataModified = true;
    kernel.closeRequested();
    EXPECT_THAT(titles(), ElementsAre("Transfer Running"));
    EXPECT_THAT(box().text, HasSubstr("there will be no firmware on this unit"));
    EXPECT_EQ(box().buttons, Buttons::YesNo);
    EXPECT_TRUE(box().declines);
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_TRUE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, TheLineAndTheBoxesAboutATransferStandNoLongerThanIt) {
    runUpgrade();
    commands.files.open();
    EXPECT_EQ(session.notices.text(0), running);
    commands.unit.killEngine();
    kernel.closeRequested();
    const std::vector<Box> both = boxes();
    ASSERT_EQ(both.size(), 2u);
    for (const Box& box : both) {
        ASSERT_TRUE(box.stands) << box.title;
        EXPECT_TRUE(box.stands()) << box.title;
    }
    finishUpgrade();
    for (const Box& box : both) EXPECT_FALSE(box.stands()) << box.title;
    EXPECT_EQ(session.notices.text(0), "");
}

TEST_F(FirmwareUpgrade, TheEndOfTheTransferUnderTheQuestionKeepsTheProgramForWhatItHasToTell) {
    runUpgrade();
    during("Transfer Running", [&] { finishUpgrade(); });
    fake.dialogs.answers = {Answer::No};  // as a box answers that goes by itself
    kernel.closeRequested();
    EXPECT_THAT(titles(), ElementsAre("Transfer Running", "Complete!", "Complete!"));
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
}

TEST_F(FirmwareUpgrade, AnotherTransferThanTheOneThatWasAskedAboutIsAskedAbout) {
    linkOrbA();
    session.link.Program_Unit(TransferMode::Datalog, fake.folder.path("log.dat"));
    boxes().clear();
    during("Transfer Running", [&] {
        EXPECT_FALSE(session.link.transfer().firmware());
        while (session.link.transfer().pending()) session.link.tick();  // nobody answers
        session.link.programFirmware("ZQA-505100.nv3", wholeFirmware, 3, 200001);
    });
    fake.dialogs.answers = {Answer::Yes, Answer::No};
    kernel.closeRequested();
    std::vector<std::string> questions;
    for (const Box& box : boxes())
        if (box.title == "Transfer Running") questions.push_back(box.text);
    ASSERT_EQ(questions.size(), 2u);
    EXPECT_THAT(questions[1], HasSubstr("A firmware upgrade is running."));
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    EXPECT_TRUE(session.link.transfer().firmware());
}

TEST_F(FirmwareUpgrade, ExitAsksOnceMoreAndNoStays) {
    runUpgrade();
    fake.dialogs.answers = {Answer::Ok, Answer::No};
    EXPECT_FALSE(kernel.System_Shutdown(false));
    EXPECT_THAT(titles(), ElementsAre("Shutdown", "Transfer Running"));
    EXPECT_TRUE(fake.port.isOpen());
}

TEST_F(FirmwareUpgrade, YesBreaksTheRunOffAndTheLogSaysIt) {
    runUpgrade();
    fake.dialogs.answers = {Answer::Yes};
    kernel.closeRequested();
    EXPECT_THAT(fake.windows.calls, Contains("closeMain"));
    EXPECT_FALSE(fake.port.isOpen());
    EXPECT_TRUE(logged("Transfer broken off by the user."));
}

TEST_F(FirmwareUpgrade, WithoutATransferNothingIsAsked) {
    kernel.closeRequested();
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_FALSE(logged("Transfer broken off"));
}

/// Whether a signal ends or stops this program at once.
bool actsAtOnce(int number) {
    struct sigaction action {};
    ::sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_DFL;
}

TEST_F(FirmwareUpgrade, WhatTheTerminalOfTheStartSendsWaitsUntilTheUnitIsDone) {
    runUpgrade();
    fake.ticker.start();
    fake.ticker.run(1);
    for (const int number : {SIGINT, SIGTSTP, SIGQUIT, SIGHUP, SIGTERM}) EXPECT_FALSE(actsAtOnce(number));
    answer("AR");
    ASSERT_FALSE(session.link.transfer().pending());
    fake.ticker.run(1);
    for (const int number : {SIGINT, SIGTSTP, SIGQUIT, SIGHUP, SIGTERM}) EXPECT_TRUE(actsAtOnce(number));
}

}  // namespace
}  // namespace zentaq
