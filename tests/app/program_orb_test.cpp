// The command "Program ORB" while the world behind its boxes goes on, and what other commands do to the link.
#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "app/overview.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::uint32_t firstOrbA = 200001;
constexpr std::uint32_t secondOrbA = 200002;
constexpr std::uint32_t someOrbL = 300001;

class ProgramOrb : public ProgramTest {
 protected:
    ProgramOrb() {
        session.makeUnits();
        session.link.load();
    }

    static std::vector<float> soundCalibration() {
        std::vector<float> floats = wholeFloats(3, 5099, 2);
        giveRisingAxes(floats);
        return floats;
    }
    void openCalibration(const std::vector<float>& floats = soundCalibration()) {
        open(writeFloats(fake.folder.path("tune.ZQ4OA"), floats));
        ASSERT_EQ(session.slotInHand(), 3);
        boxes().clear();
        fake.windows.calls.clear();
    }
    /// 7000 bytes of it.
    void openCutCalibration() {
        std::vector<float> floats = soundCalibration();
        floats.resize(1750);
        openCalibration(floats);
    }
    /// The unit tells a firmware of release 4, so that its configuration is not asked for.
    void link(std::uint32_t serial) {
        identify(serial);
        const bool orbA = serial < 300000;
        answer(firmwareReply("", orbA ? "ZQA-504099" : "ZQL-504099", orbA ? 39 : 38));
        ASSERT_TRUE(session.link.linked().UnitIdentified);
    }
    void expectNothingSent() {
        EXPECT_FALSE(session.link.transfer().pending());
        EXPECT_FALSE(session.link.AutoPollSuspended());
        EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
        ticks(5);
        EXPECT_FALSE(sent("P1"));
    }
};

// A calibration of zeros has much to ask about.
TEST_F(ProgramOrb, WhatIsInDoubtIsShownOnceAndGoesOutAllTheSame) {
    openCalibration();
    link(firstOrbA);
    commands.programming.programOrb();
    ASSERT_EQ(fake.windows.doubtsShown.size(), 1u);
    EXPECT_EQ(fake.windows.doubtsShown.front(), doubtsInHand(session));
    EXPECT_TRUE(session.link.transfer().pending());
}

TEST_F(ProgramOrb, ANewDoubtShowsThemAgain) {
    openCalibration();
    link(firstOrbA);
    session.doubtsLeft = doubtsInHand(session);
    unit().set("INJFIX_PW", 0);
    for (int i = 0; i < 8; ++i) unit().set("BLDTBL", 500 * (i + 1), i);
    unit().set("BLDTBL", 100, 4);
    const auto now = doubtsInHand(session);
    ASSERT_NE(now, session.doubtsLeft);
    commands.programming.programOrb();
    ASSERT_EQ(fake.windows.doubtsShown.size(), 1u);
    EXPECT_EQ(fake.windows.doubtsShown.front(), now);
}

TEST_F(ProgramOrb, DoubtsThatWereLeftOnceAreNotInTheWay) {
    openCalibration();
    link(firstOrbA);
    session.doubtsLeft = doubtsInHand(session);
    commands.programming.programOrb();
    EXPECT_TRUE(fake.windows.doubtsShown.empty());
    EXPECT_TRUE(session.link.transfer().pending());
}

TEST_F(ProgramOrb, WhoGoesBackToTheCalibrationSendsNothing) {
    openCalibration();
    link(firstOrbA);
    fake.windows.leavesDoubts = false;
    commands.programming.programOrb();
    expectNothingSent();
    EXPECT_TRUE(logged("Not programmed: the user looks at the calibration again."));
    EXPECT_TRUE(session.doubtsLeft.empty());
}

TEST_F(ProgramOrb, WhatChangesWhileTheDoubtsStandIsShownToo) {
    openCalibration();
    link(firstOrbA);
    fake.windows.meanwhileDoubts = [this] {
        fake.windows.meanwhileDoubts = nullptr;
        unit().set("BLDTBL", 100, 0);
        unit().set("BLDTBL", 50, 1);
    };
    commands.programming.programOrb();
    EXPECT_EQ(fake.windows.doubtsShown.size(), 2u);
}

TEST_F(ProgramOrb, AUnitThatGoesWhileTheDoubtsStandGetsNothing) {
    openCalibration();
    link(firstOrbA);
    fake.windows.meanwhileDoubts = [this] { loseUnit(); };
    commands.programming.programOrb();
    expectNothingSent();
}

TEST_F(ProgramOrb, GoesOutWhereNothingHappensMeanwhile) {
    openCalibration();
    link(firstOrbA);
    session.DataModified = true;
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Warning 1007", "SAVE", "Data Saved.")) << box().text;
    EXPECT_TRUE(session.link.transfer().pending());
    ticks(3);
    EXPECT_TRUE(sent("P1"));
}

// ---- A calibration that should not go into a unit

TEST_F(ProgramOrb, ACutFileIsAskedAboutAndGoesOutOnYesAlone) {
    openCutCalibration();
    link(firstOrbA);
    commands.programming.programOrb();
    EXPECT_EQ(box().title, "Program ORB");
    EXPECT_THAT(box().text,
                HasSubstr("The file ends early: 1081 of its 2828 cells are missing and were taken as 0."));
    EXPECT_TRUE(box().declines);
    EXPECT_TRUE(logged("Not programmed: the user thought better of it."));
    expectNothingSent();
    during("Program ORB", [&] { fake.dialogs.answers = {Answer::Yes}; });
    commands.programming.programOrb();
    EXPECT_TRUE(session.link.transfer().pending());
}

TEST_F(ProgramOrb, ACutFileIsAskedAboutBehindItsSaveToo) {
    openCutCalibration();
    link(firstOrbA);
    fake.dialogs.answers = {Answer::Yes};
    commands.saves.save();
    ASSERT_THAT(titles(), ElementsAre("Damaged File", "Data Saved."));
    commands.programming.programOrb();
    EXPECT_EQ(titles().back(), "Program ORB");
    EXPECT_THAT(box().text, HasSubstr("1081 of its 2828 cells are missing"));
    expectNothingSent();
}

TEST_F(ProgramOrb, ACutFileThatIsNotToBeSavedGoesNowhere) {
    openCutCalibration();
    link(firstOrbA);
    session.DataModified = true;
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Warning 1007", "SAVE", "Damaged File"));
    EXPECT_TRUE(session.DataModified);
    expectNothingSent();
}

TEST_F(ProgramOrb, AnAxisThatDoesNotRiseIsAskedAbout) {
    std::vector<float> floats = soundCalibration();
    floats[3 + 592 + 2] = 9000;  // the second speed; the third is 1500
    floats[3 + 2292] = 16;       // rows and columns in use
    floats[3 + 2293] = 16;
    openCalibration(floats);
    link(firstOrbA);
    commands.programming.programOrb();
    EXPECT_THAT(
        box().text,
        HasSubstr("\nRPM axis of the tables: 9000 is followed by 1500.\nProgram the unit all the same?"));
    expectNothingSent();
}

TEST_F(ProgramOrb, ALinkThatIsLostWhileACutFileIsAskedAboutIsError1005) {
    openCutCalibration();
    link(firstOrbA);
    during("Program ORB", [&] {
        fake.dialogs.answers = {Answer::Yes};
        loseUnit();
    });
    commands.programming.programOrb();
    EXPECT_EQ(titles().back(), "Error 1005");
    expectNothingSent();
}

TEST_F(ProgramOrb, ALinkThatIsLostWhileABoxStandsIsError1005) {
    openCalibration();
    for (const std::string title : {"Warning 1007", "SAVE", "Data Saved."}) {
        link(firstOrbA);
        session.DataModified = true;
        boxes().clear();
        during(title, [&] { loseUnit(); });
        commands.programming.programOrb();
        EXPECT_EQ(titles().back(), "Error 1005") << title;
        expectNothingSent();
    }
}

TEST_F(ProgramOrb, WhatChangesUnderTheFirstBoxEndsTheRunWithItsError) {
    struct Change {
        const char* what;
        std::function<void()> happens;
        const char* title;
    };
    const Change changes[] = {
        {"a unit of another kind comes", [&] { loseUnit(), link(someOrbL); }, "Error 1006"},
        {"the calibration is closed", [&] { session.CurrentFile.clear(); }, "Error 1003"},
        {"the unit is switched off and on, and has not told its firmware",
         [&] { loseUnit(), identify(firstOrbA); }, "Error 1005"}};
    for (const Change& change : changes) {
        SCOPED_TRACE(change.what);
        if (session.link.linked().UnitIdentified) loseUnit();
        openCalibration();
        link(firstOrbA);
        during("Warning 1007", change.happens);
        commands.programming.programOrb();
        EXPECT_EQ(titles().back(), change.title);
        expectNothingSent();
    }
}

TEST_F(ProgramOrb, AnotherUnitOfTheKindThatComesWhileABoxStandsIsToldByItsNumber) {
    openCalibration();
    link(firstOrbA);
    during("Warning 1007", [&] {
        loseUnit();
        link(secondOrbA);
    });
    commands.programming.programOrb();
    EXPECT_EQ(titles().back(), "Program ORB");
    EXPECT_THAT(box().text, HasSubstr("200002 in the place of 200001"));
    expectNothingSent();
    commands.programming.programOrb();
    EXPECT_TRUE(session.link.transfer().pending()) << "the user means this one";
}

TEST_F(ProgramOrb, ATransferThatBeginsWhileABoxStandsIsNotDisturbed) {
    openCalibration();
    link(firstOrbA);
    during("Warning 1007", [&] {
        session.link.AutoPollSuspended(true);
        session.link.Program_Unit(TransferMode::Datalog, fake.folder.path("log.dat"));
    });
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Warning 1007"));
    EXPECT_EQ(session.notices.text(0), "A transfer is running.  Please wait until it has ended.");
    EXPECT_TRUE(session.link.AutoPollSuspended());
    EXPECT_TRUE(session.link.transfer().pending());
    EXPECT_FALSE(session.link.transfer().programming());
    EXPECT_THAT(fake.windows.calls, Not(Contains("removeForms")));
}

TEST_F(ProgramOrb, AUnitThatHasNotToldItsFirmwareGetsNoImageMadeForThatOfTheFile) {
    openCalibration();
    identify(firstOrbA);
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Error 1005"));
    expectNothingSent();
}

TEST_F(ProgramOrb, ACalibrationThatCannotBeBroughtToTheFirmwareOfTheUnitIsToldBeforeAnythingIsAsked) {
    std::vector<float> floats = soundCalibration();
    floats[2] = 2017;
    openCalibration(floats);
    session.database.reset();
    session.DatabaseFile = fake.folder.path("none.pak");
    link(firstOrbA);
    session.DataModified = true;
    boxes().clear();
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Program ORB"));
    EXPECT_THAT(box().text, HasSubstr("Nothing was sent to the unit."));
    expectNothingSent();
}

TEST_F(ProgramOrb, ALinkThatIsLostWhileTheFormsCloseIsError1005) {
    openCalibration();
    link(firstOrbA);
    SlowlyClosingWindows closing;
    closing.meanwhile = [&] { loseUnit(); };
    session.attach(closing);
    commands.programming.programOrb();
    EXPECT_EQ(titles().back(), "Error 1005");
    expectNothingSent();
    session.attach(fake.windows);
}

// ---- Behind what was typed before

/// Windows in which an entry still waits for the unit: commands wait behind it.
class TypingWindows : public RecordingWindows {
 public:
    void afterEdits(const std::string& caption, const std::function<void()>& command) override {
        note("after " + caption);
        waiting.push_back(command);
    }
    void unitAnswers() {
        for (const auto& command : std::exchange(waiting, {})) command();
    }
    std::vector<std::function<void()>> waiting;
};

TEST_F(ProgramOrb, CommandsThatStoreProgramSaveOrCloseComeBehindTheEditsTypedBeforeThem) {
    openCalibration();
    link(firstOrbA);
    TypingWindows typing;
    session.attach(typing);
    const std::vector<std::function<void()>> all = {
        [&] { commands.unit.storeOnFly(); }, [&] { commands.programming.programOrb(); },
        [&] { commands.saves.save(); },      [&] { commands.saves.saveAs(); },
        [&] { commands.files.close(); },     [&] { commands.files.newCalibration(); },
        [&] { commands.files.open(); },      [&] { commands.programming.firmwareUpgrade(); }};
    for (const auto& command : all) command();
    EXPECT_THAT(typing.calls,
                ElementsAre("after Store Changes in ORB", "after Program ORB", "after Save", "after Save As",
                            "after Close", "after Create a New Calibration File",
                            "after Open an Existing Calibration File", "after Firmware Upgrade"));
    ticks(5);
    EXPECT_FALSE(sent("S"));
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_THAT(fake.dialogs.requests, ElementsAre(::testing::_)) << "of the opening at the start";
    session.attach(fake.windows);
}

TEST_F(ProgramOrb, StoringGoesOutBehindTheRecordOfAnEditThatWaited) {
    openCalibration();
    link(firstOrbA);
    TypingWindows typing;
    session.attach(typing);
    commands.unit.storeOnFly();
    session.link.SEND_ONFLY("S10411228048");
    typing.unitAnswers();
    fake.port.written.clear();
    ticks(1);
    answer("AX");
    EXPECT_THAT(fake.port.written, ElementsAre("P2S10411228048", "S"));
    session.attach(fake.windows);
}

// ---- Kill Engine

TEST_F(ProgramOrb, KillEnginePassesEveryCommandThatWaitsAndLeavesALine) {
    link(firstOrbA);
    session.link.Send_ORB_Command("W");
    ticks(1);
    fake.port.written.clear();
    session.link.SEND_ONFLY("S10411228048");
    commands.unit.storeOnFly();
    session.link.Send_ORB_Command("T");
    commands.unit.killEngine();
    EXPECT_TRUE(logged("USER: Kill Engine Requested."));
    answer(std::string(65, '\0'));
    EXPECT_THAT(fake.port.written, ElementsAre("K"));
    answer("AX");
    EXPECT_THAT(fake.port.written, ElementsAre("K", "P2S10411228048"));
}

TEST_F(ProgramOrb, KillEngineGoesOutInADownloadWhichGoesOnBehindIt) {
    link(firstOrbA);
    session.link.Program_Unit(TransferMode::Datalog, fake.folder.path("log.dat"));
    ticks(1);
    ASSERT_TRUE(session.link.transfer().active());
    commands.unit.killEngine();
    EXPECT_THAT(boxes(), IsEmpty());
    fake.port.written.clear();
    answer(framed(33, {{3, 10}}));
    EXPECT_THAT(fake.port.written, ElementsAre("K"));
    answer("AX");
    EXPECT_THAT(fake.port.written, ElementsAre("K", "D"));
    EXPECT_TRUE(session.link.transfer().pending());
}

TEST_F(ProgramOrb, KillEngineIsRefusedOnlyWhereTheWireIsReallyTaken) {
    const auto enabled = [&] { return ProgramTest::enabled("mnuMonitor_KillEngine"); };
    openCalibration();
    link(firstOrbA);
    commands.programming.programOrb();
    boxes().clear();
    ASSERT_TRUE(session.link.transfer().pending());
    EXPECT_TRUE(enabled()) << "the run still waits";
    commands.unit.killEngine();
    EXPECT_THAT(boxes(), IsEmpty());
    fake.port.written.clear();
    ticks(1);
    EXPECT_THAT(fake.port.written, ElementsAre("K"));
    answer("AX");
    ASSERT_THAT(fake.port.written, ElementsAre("K", "P1"));
    EXPECT_TRUE(enabled()) << "its refusal says why";
    commands.unit.killEngine();
    EXPECT_THAT(titles(), ElementsAre("Zentaq4"));
    ticks(20);
    EXPECT_THAT(fake.port.written, ElementsAre("K", "P1"));
}

TEST_F(ProgramOrb, AKillThatIsLostWithTheLinkIsTold) {
    link(firstOrbA);
    session.link.Send_ORB_Command("F");
    ticks(1);
    commands.unit.killEngine();
    ticks(90);
    EXPECT_TRUE(logged("Kill Engine was not sent: the link is lost."));
    EXPECT_FALSE(sent("K"));
}

TEST_F(ProgramOrb, AKillThatNobodyAnswersIsTold) {
    link(firstOrbA);
    commands.unit.killEngine();
    ticks(1002);
    EXPECT_TRUE(sent("K"));
    EXPECT_TRUE(logged("Kill Engine was not answered: look at the engine."));
}

TEST_F(ProgramOrb, KillEngineGoesOutThoughNoUnitIsKnownAndIsToldWhereNoPortIsOpen) {
    fake.port.written.clear();
    ASSERT_EQ(session.link.linked().LinkedUnitKind, 0);
    commands.unit.killEngine();
    ticks(1);
    EXPECT_TRUE(sent("K"));
    session.link.RS232_Close();
    boxes().clear();
    commands.unit.killEngine();
    ASSERT_FALSE(boxes().empty());
    EXPECT_EQ(box().text, "Kill Engine was not sent: no port is open.");
}

// ---- Ports

/// While a search yields time passes, and the user asks for more.
class PortSearch : public ProgramTest {
 protected:
    PortSearch() {
        fake.yield.passing = [this] { fake.clock.nowUs += 20'000; };
    }
};

TEST_F(PortSearch, ASecondOneIsRefusedWhileOneRunsAndTheFirstGoesOn) {
    int second = -1;
    int opensThen = 0;
    session.link.commPort(1);
    fake.port.presentNumber = 12;
    fake.yield.meanwhile = [&] {
        const int before = fake.port.opens;
        second = commands.unit.autodetectPort();
        opensThen = fake.port.opens - before;
    };
    EXPECT_EQ(commands.unit.autodetectPort(), 0);
    EXPECT_EQ(second, 0);
    EXPECT_EQ(opensThen, 0) << "the port of the first search stays as it is";
    EXPECT_TRUE(logged("A unit is being searched on the ports.  Please wait until that has ended."));
    EXPECT_EQ(session.notices.text(fake.clock.nowUs),
              "Could not Find ORB Unit.  Please check the serial connection.");
    EXPECT_EQ(session.notices.count(fake.clock.nowUs), 1) << "the other one has gone with the search";
}

TEST_F(PortSearch, NoOtherPortIsChosenUnderIt) {
    fake.port.presentNumber = 5;
    fake.yield.meanwhile = [&] { commands.unit.choosePort(3); };
    commands.unit.autodetectPort();
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "");
    EXPECT_TRUE(logged("is being searched"));
}

TEST_F(PortSearch, StoresThePortThatTheUnitAnsweredOn) {
    fake.port.presentNumber = 5;
    session.makeUnits();
    fake.yield.meanwhile = [&] {
        session.link.tick();
        ASSERT_EQ(session.link.CurrentCommand(), "E");
        session.link.commPort(9);
        fake.port.deliver(identifyReply(firstOrbA));
        session.link.tick();
    };
    EXPECT_EQ(commands.unit.autodetectPort(), 5);
    EXPECT_EQ(session.link.commPort(), 5);
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "5");
    EXPECT_EQ(fake.settings.get("System", "CommPortIdentity"), session.link.commIdentity());
    EXPECT_TRUE(fake.port.isOpen());
}

TEST_F(ProgramOrb, AMonitorSessionLeavesAPortThatIsAnsweringOpen) {
    fake.settings.set("System", "AutoMonitor", "1");
    identify(firstOrbA);
    ASSERT_EQ(session.link.CurrentCommand(), "B");
    const int opens = fake.port.opens;
    commands.unit.loadCommand(2);
    EXPECT_TRUE(session.Monitoring);
    EXPECT_EQ(fake.port.opens, opens);
    answer(firmwareReply("", "ZQA-504099"));
    EXPECT_TRUE(session.link.linked().UnitIdentified);
}

// ---- Boxes of the link

TEST_F(ProgramOrb, ALostAnswerIsFollowedByTheBoxesOfOneUnitOnce) {
    session.FW_ReleaseTable.at(3) = 4;
    session.FW_BuildTable.at(3) = 1;
    openCalibration();
    session.CurrentUnit(4);
    const PollerView view;
    session.link.Send_ORB_Command("E");
    int lost = 1;
    for (int i = 0; i < 4000; ++i) {
        session.link.tick();
        if (i % 8 == 0) session.poller.fire(view);
        const std::string command = session.link.CurrentCommand();
        if (session.link.ResponseReady() || command.empty()) continue;
        if (command == "E") fake.port.deliver(identifyReply(firstOrbA));
        if (command == "B" && --lost < 0) fake.port.deliver(firmwareReply("", "ZQA-504099"));
        if (command == "B" && lost == 0) lost = -1000;  // this one answer is lost
        if (lost == -1000 && command == "B") {
            for (int wait = 0; wait < 1001; ++wait) {
                session.link.tick();
                if (wait % 8 == 0) session.poller.fire(view);
            }
        }
        if (command == "F") fake.port.deliver(std::string(35, '\0'));
        if (command == "T") fake.port.deliver(framed(16, {}));
    }
    EXPECT_TRUE(session.link.linked().UnitIdentified);
    EXPECT_THAT(titles(), ElementsAre("Unit Type Mismatch", ""));
}

TEST_F(ProgramOrb, ABoxThatHasNotBeenReadStandsForAllThatSayTheSame) {
    LateWindows windows;
    session.attach(windows);
    openCalibration();
    session.CurrentUnit(4);
    for (int round = 0; round < 5; ++round) {
        link(firstOrbA);
        loseUnit();
    }
    windows.runEvents();
    EXPECT_THAT(titles(), ElementsAre("Unit Type Mismatch"));
    link(firstOrbA);
    windows.runEvents();
    EXPECT_THAT(titles(), ElementsAre("Unit Type Mismatch", "Unit Type Mismatch")) << "that was read";
    session.attach(fake.windows);
}

TEST_F(ProgramOrb, ARefusalInsideATickIsToldFromTheEventLoopAndAQuestionIsDeclined) {
    class AskingWindows : public LateWindows {
     public:
        explicit AskingWindows(Session& session) : session_(session) {}
        void onFlyLock(bool) override {
            if (std::exchange(done_, true)) return;
            EXPECT_TRUE(session_.link.handling());
            EXPECT_TRUE(session_.messages.Check_Range(500, 0, 100, "(0 to 100)"));
            EXPECT_EQ(session_.dialogs().show({"?", "?", Icon::Question, Buttons::YesNo}), Answer::No);
            EXPECT_EQ(session_.dialogs().show({"?", "?", Icon::Question, Buttons::OkCancel}), Answer::Cancel);
            EXPECT_EQ(session_.dialogs().openFile({}), "");
        }

     private:
        Session& session_;
        bool done_ = false;
    } windows(session);
    session.attach(windows);
    ticks(1);
    EXPECT_THAT(boxes(), IsEmpty());
    ASSERT_EQ(windows.waiting.size(), 1u);
    windows.runEvents();
    EXPECT_THAT(titles(), ElementsAre("Data Input Error"));
    session.attach(fake.windows);
}

}  // namespace
}  // namespace zentaq
