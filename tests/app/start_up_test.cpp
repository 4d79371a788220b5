#include "app/start_up.h"

#include <filesystem>
#include <fstream>

#include "app/command_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class StartUp : public ProgramTest {
 protected:
    std::string logText() const {
        std::ifstream file(fake.folder.path("zentaq.log"));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// The texts of the console from the first ruler on, without their times and trailing blanks.
    std::vector<std::string> banner() const {
        std::vector<std::string> texts;
        for (const std::string& line : session.console.lines()) {
            std::string text = line.starts_with("12:34:56 - ") ? line.substr(11) : line;
            text.erase(text.find_last_not_of(' ') + 1);
            texts.push_back(text);
        }
        return texts;
    }
    std::string databasePath() const {
        std::filesystem::create_directories(fake.folder.path("bin/data"));
        return fake.folder.path("bin/data/zentaq410-02.pak");
    }
    void haveDatabase() const { std::filesystem::copy_file(builtReference(), databasePath()); }
    void store(const char* key, const std::string& value) { fake.settings.set("System", key, value); }
    void startWithoutFilePrompt() {
        store("FileOpen", "0");
        kernel.load();
    }
};

TEST_F(StartUp, BringsUpTheWindowsInItsFixedOrder) {
    startWithoutFilePrompt();
    std::vector<std::string> calls;
    for (const std::string& call : fake.windows.calls) {
        if (call != "night" && call != "day") calls.push_back(call);
    }
    EXPECT_THAT(calls, ElementsAre("showMain", "toolbar off", "splash Setting Up Environment", "graph pools",
                                   "splash Initializing Console", "splash Initializing Database",
                                   "showConfig", "splash Program Activated", "toolbar on", "showLink",
                                   "showDashboard", "comm list on", "focus frmConfig"));
    EXPECT_EQ(session.StartingUp, 0);
    EXPECT_TRUE(fake.ticker.running());
}

TEST_F(StartUp, WritesTheBannerInItsFixedOrder) {
    store("FileOpen", "0");
    haveDatabase();
    kernel.load();
    const std::string ruler(80, '-');
    std::vector<std::string> texts = banner();
    ASSERT_GE(texts.size(), 9u);
    texts.resize(9);
    EXPECT_TRUE(texts[6].starts_with("Program Initialized on Linux ")) << texts[6];
    texts[6] = "Program Initialized on";
    EXPECT_THAT(texts, ElementsAre(ruler, "Norvalia Zentaq Engine Management Software", "v4.10.2", ruler, "",
                                   "Saturday, 21 November 2026", "Program Initialized on",
                                   "COMM: Listening on Port #1", "User Interface Initialized."));
}

TEST_F(StartUp, TheRulersAndTheEmptyLineAreOnTheScreenOnly) {
    startWithoutFilePrompt();
    EXPECT_EQ(session.console.lines().front(), std::string(80, '-'));
    EXPECT_TRUE(logText().starts_with("12:34:56 - Norvalia Zentaq Engine Management Software"));
    EXPECT_THAT(logText(), Not(HasSubstr("---")));
    EXPECT_THAT(logText(), Not(HasSubstr("\n\n")));
    EXPECT_THAT(logText(), HasSubstr("12:34:56 - User Interface Initialized."));
}

TEST_F(StartUp, AFreshInstallationLogsShowsTheCommListAndOffersAFile) {
    kernel.load();
    EXPECT_TRUE(session.console.LogToFile());
    EXPECT_THAT(fake.windows.calls, Contains("comm list on"));
    ASSERT_EQ(fake.dialogs.requests.size(), 1u);
    EXPECT_EQ(fake.dialogs.requests[0].title, "Open Zentaq4 User Calibration Files");
    EXPECT_EQ(session.TableColorMode, 0);
    EXPECT_EQ(session.link.commPort(), 1);
}

TEST_F(StartUp, StoredSettingsTakeEffect) {
    store("FileOpen", "0");
    store("CommDialog", "0");
    store("TableColor", "1");
    store("CommPort", "7");
    kernel.load();
    EXPECT_TRUE(fake.dialogs.requests.empty());
    EXPECT_THAT(fake.windows.calls, Contains("comm list off"));
    EXPECT_EQ(session.TableColorMode, 1);
    EXPECT_EQ(session.link.commPort(), 7);
    EXPECT_TRUE(logged("COMM: Listening on Port #7"));
}

TEST_F(StartUp, AStoredDeviceIsOpenedUnderWhateverNumberItHasNow) {
    store("CommPort", "1");
    store("CommPortIdentity", "fake");
    fake.port.presentNumber = 2;  // a simulated unit took the first place
    kernel.load();
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_EQ(session.link.commPort(), 2);
    EXPECT_EQ(session.linkDisplay.status().port, "2");
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "2");
    EXPECT_TRUE(logged("COMM: Listening on Port #2"));
}

TEST_F(StartUp, AnotherDeviceWithTheStoredNumberIsLeftAlone) {
    store("CommPort", "1");
    store("CommPortIdentity", "usb:0403:6001:AB12");
    kernel.load();
    EXPECT_FALSE(fake.port.isOpen());
    EXPECT_EQ(fake.port.opens, 0);
    fake.clock.nowUs += 2'000'000;
    session.poll(false);
    EXPECT_EQ(fake.port.opens, 0);
    EXPECT_TRUE(logged("The port is not plugged in (usb:0403:6001:AB12)"));
}

TEST_F(StartUp, AStoredNumberWithoutADeviceKeepsTheOneThatHasItNow) {
    store("CommPort", "1");
    kernel.load();
    EXPECT_EQ(fake.settings.get("System", "CommPortIdentity"), "fake");
}

TEST_F(StartUp, WhereNobodyHasChosenAPortNoneIsKept) {
    kernel.load();
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_EQ(fake.settings.get("System", "CommPortIdentity"), "");
}

TEST_F(StartUp, TheLogHoldsOneRunOnly) {
    std::ofstream(fake.folder.path("zentaq.log")) << "an earlier run\n";
    kernel.load();
    EXPECT_THAT(logText(), Not(HasSubstr("an earlier run")));
}

TEST_F(StartUp, AutoLogOffLeavesAnEarlierLogUnchanged) {
    std::ofstream(fake.folder.path("zentaq.log")) << "an earlier run\n";
    store("AutoLog", "0");
    kernel.load();
    EXPECT_EQ(logText(), "an earlier run\n");
}

// ---- Values that are no numbers

TEST_F(StartUp, ASwitchIsOnForOneAndForWhatIsNoNumberAndOffForEveryOtherNumber) {
    const std::pair<const char*, bool> values[] = {
        {"", true},   {"yes", true}, {"1,0,0", true}, {"--1", true},  {"\xFF", true},
        {"0", false}, {"2", false},  {"-1", false},   {"1.5", false}, {"1E9", false}};
    for (const auto& [value, on] : values) {
        SCOPED_TRACE(value);
        FakeSession again;
        for (const char* key : {"AutoLog", "CommDialog", "FileOpen"})
            again.settings.set("System", key, value);
        MainCommands itsCommands{again.session};
        Kernel{again.session, itsCommands}.load();
        EXPECT_EQ(again.session.console.LogToFile(), on);
        EXPECT_THAT(again.windows.calls, Contains(on ? "comm list on" : "comm list off"));
        EXPECT_EQ(again.dialogs.requests.size(), on ? 1u : 0u);
    }
}

TEST_F(StartUp, AColourModeThatIsNo16BitNumberKeepsTheInitialOne) {
    for (const char* value : {"", "blue", "32768"}) {
        session.TableColorMode = 7;
        store("TableColor", value);
        kernel.load();
        EXPECT_EQ(session.TableColorMode, 7) << value;
    }
}

TEST_F(StartUp, AColourModeIsRoundedHalfToEven) {
    store("TableColor", "2.5");
    kernel.load();
    EXPECT_EQ(session.TableColorMode, 2);
}

TEST_F(StartUp, APortThatIsNo16BitNumberLeavesPort1) {
    for (const char* value : {"", "COM3", "40000"}) {
        FakeSession again;
        again.settings.set("System", "CommPort", value);
        MainCommands itsCommands{again.session};
        Kernel{again.session, itsCommands}.load();
        EXPECT_EQ(again.session.link.commPort(), 1) << value;
    }
}

// ---- Failures of single statements

/// The start and the shutdown of a program of which one window call fails.
struct BrokenRun {
    FakeSession fake;
    MainCommands commands{fake.session};
    Kernel kernel{fake.session, commands};

    explicit BrokenRun(const std::string& failing) {
        failAt(failing);
        std::filesystem::create_directories(fake.folder.path("bin/data"));
        std::filesystem::copy_file(builtReference(), fake.folder.path("bin/data/zentaq410-02.pak"));
        fake.settings.set("System", "TableColor", "1");
        kernel.load();
    }
    void failAt(const std::string& failing) {
        fake.windows.meanwhile = [failing](const std::string& call) {
            if (call == failing) throw Failure("no " + call);
        };
    }
};

TEST(StartUpWithAFailure, OfAnyWindowCallLeavesEverythingElseAsInAWholeRun) {
    BrokenRun whole("");
    const std::vector<std::string> expected = whole.fake.windows.calls;
    ASSERT_THAT(expected,
                ElementsAre("showMain", "toolbar off", "splash Setting Up Environment", "graph pools",
                            "splash Initializing Console", "splash Initializing Database", "showConfig",
                            "splash Program Activated", "toolbar on", "showLink", "showDashboard",
                            "comm list on", "focus frmConfig", "tip", "leave general config"));
    for (const std::string& failing : expected) {
        if (failing == expected.back()) continue;  // the file prompt's
        SCOPED_TRACE(failing);
        BrokenRun broken(failing);
        EXPECT_EQ(broken.fake.windows.calls, expected);
        EXPECT_EQ(broken.fake.session.console.lines(), whole.fake.session.console.lines());
        EXPECT_TRUE(broken.fake.dialogs.boxes.empty()) << "a failure of the start shows no box";
        EXPECT_EQ(broken.fake.dialogs.requests.size(), 1u) << "the file prompt still comes";
        EXPECT_EQ(broken.fake.session.StartingUp, 0);
        EXPECT_EQ(broken.fake.session.TableColorMode, 1);
        EXPECT_TRUE(broken.fake.session.hasUnit(8));
        EXPECT_TRUE(broken.fake.ticker.running());
        EXPECT_TRUE(broken.fake.port.isOpen());
    }
}

TEST(ShutdownWithAFailure, OfAnyWindowCallStillEndsTheProgram) {
    for (const char* failing : {"killTimers", "closeMain"}) {
        SCOPED_TRACE(failing);
        BrokenRun run("");
        run.failAt(failing);
        EXPECT_TRUE(run.kernel.System_Shutdown(true));
        EXPECT_FALSE(run.fake.port.isOpen());
        EXPECT_FALSE(run.fake.ticker.running());
        EXPECT_EQ(run.fake.windows.calls.back(), "closeMain");
    }
}

TEST(StartUpWithAFailure, OfTheSettingsStoreStartsAsOnAFreshInstallation) {
    class NoSettings : public SettingsStore {
        std::string get(const std::string&, const std::string&, const std::string&) const override {
            throw Failure("no settings");
        }
        void set(const std::string&, const std::string&, const std::string&) override {}
    } settings;
    FakeSession fake;
    RecordingWindows windows;
    Session session{Platform{fake.port, fake.ticker, fake.clock, settings, fake.dialogs, fake.yield,
                             fake.folder.path(), fake.folder.path()}};
    session.attach(windows);
    MainCommands commands{session};
    Kernel{session, commands}.load();
    EXPECT_TRUE(session.console.LogToFile());
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_THAT(windows.calls, Contains("comm list on"));
    EXPECT_EQ(session.StartingUp, 0);
}

TEST_F(StartUp, TheUserWhoClosesTheWindowMeanwhileIsNotAskedForAFile) {
    fake.windows.meanwhile = [this](const std::string& call) {
        if (call == "splash Initializing Console") kernel.System_Shutdown(true);
    };
    kernel.load();
    EXPECT_EQ(fake.windows.calls.back(), "closeMain") << "nothing is shown after the end";
    EXPECT_TRUE(fake.dialogs.requests.empty());
    EXPECT_FALSE(fake.ticker.running());
    EXPECT_FALSE(fake.port.isOpen());
}

// ---- Reference database

TEST_F(StartUp, AMissingDatabaseIsToldBehindTheBannerInOneLineAndStopsNothing) {
    startWithoutFilePrompt();
    const std::vector<std::string> texts = banner();
    const auto last = std::find(texts.begin(), texts.end(), "User Interface Initialized.");
    ASSERT_NE(last, texts.end());
    ASSERT_NE(last + 1, texts.end());
    EXPECT_EQ(*(last + 1), "No reference database: the file is missing");
    EXPECT_THAT(logText(), HasSubstr("12:34:56 - No reference database: the file is missing"));
    EXPECT_FALSE(session.database.has_value());
    EXPECT_TRUE(boxes().empty());
    EXPECT_EQ(session.StartingUp, 0);
}

TEST_F(StartUp, ADamagedDatabaseIsToldAndTheProgramWorksWithoutIt) {
    std::ofstream(databasePath()) << "no database at all, but long enough for a head";
    kernel.load();
    EXPECT_TRUE(logged("No reference database: the file is not a database"));
    EXPECT_FALSE(session.database.has_value());
    EXPECT_EQ(fake.dialogs.requests.size(), 1u);
    EXPECT_THROW(fake.forUnits.engine(3, 1), Failure);
}

// ---- Trouble from outside

TEST_F(StartUp, TroubleBeforeTheConsoleIsToldBehindTheBannerAndLaterTroubleAtOnce) {
    store("FileOpen", "0");
    haveDatabase();
    kernel.report("Settings file x is damaged");
    EXPECT_TRUE(session.console.lines().empty());
    kernel.load();
    EXPECT_EQ(banner().at(8), "User Interface Initialized.");
    EXPECT_EQ(banner().at(9), "Settings file x is damaged");
    kernel.report("Settings file x cannot be written");
    EXPECT_EQ(banner().back(), "Settings file x cannot be written");
}

// ---- One instance

TEST(FirstInstance, GoesOnWithoutABox) {
    const TemporaryFolder folder;
    const SingleInstance first(folder.path("zentaq4.lock"));
    ScriptedDialogs dialogs;
    EXPECT_TRUE(firstInstance(first, dialogs));
    EXPECT_TRUE(dialogs.boxes.empty());
}

TEST(FirstInstance, ASecondOneIsToldAndDoesNotGoOn) {
    const TemporaryFolder folder;
    const SingleInstance first(folder.path("zentaq4.lock"));
    const SingleInstance second(folder.path("zentaq4.lock"));
    ScriptedDialogs dialogs;
    EXPECT_FALSE(firstInstance(second, dialogs));
    ASSERT_EQ(dialogs.boxes.size(), 1u);
    EXPECT_EQ(dialogs.boxes[0].text, "Zentaq4 already running!  Program will now close.");
    EXPECT_EQ(dialogs.boxes[0].icon, Icon::None);
    EXPECT_EQ(dialogs.boxes[0].buttons, Buttons::Ok);
    EXPECT_TRUE(first.holds());
}

// ---- Tips

TEST(TipNumber, IsTheWholePartOfRandomTimesCountPlusOne) {
    EXPECT_EQ(tipNumber(0, 12), 1);
    EXPECT_EQ(tipNumber(0.0833, 12), 1);  // 0.9996 + 1
    EXPECT_EQ(tipNumber(0.0834, 12), 2);  // 1.0008 + 1
    EXPECT_EQ(tipNumber(0.5, 12), 7);
    EXPECT_EQ(tipNumber(0.999999, 12), 12);
    EXPECT_EQ(tipNumber(0.5, 1), 1);
}

TEST(TipNumber, IsZeroWithoutTips) {
    EXPECT_EQ(tipNumber(0.5, 0), 0);
}

TEST_F(StartUp, ShowsOneOfTheTips) {
    haveDatabase();
    kernel.load();
    EXPECT_THAT(session.database->tips(), Contains(fake.windows.tip));
}

// ---- State of the process

TEST_F(StartUp, KnowsItsFilesByTheApplicationFolder) {
    kernel.load();
    EXPECT_EQ(session.LogFile, fake.folder.path("zentaq.log"));
    EXPECT_EQ(session.DatabaseFile, fake.folder.path("bin/data/zentaq410-02.pak"));
}

TEST_F(StartUp, BeginsWithoutACalibration) {
    session.Monitoring = true;
    session.AutoMonitoring = true;
    session.DataModified = true;
    session.CurrentFile = "/old.ZQ4OA";
    session.FileFilterIndex = 3;
    kernel.load();
    EXPECT_FALSE(session.Monitoring);
    EXPECT_FALSE(session.AutoMonitoring);
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(session.FileFilterIndex, 1);
    EXPECT_EQ(session.AppName, "Zentaq4");
    EXPECT_EQ(session.VersionText, "4.10.2");
}

TEST_F(StartUp, SlotsWithoutAKindStayEmptyAndTheTwoOfOneKindAreTwoObjects) {
    kernel.load();
    for (const int slot : {3, 4, 5, 6, 7, 8}) EXPECT_TRUE(session.hasUnit(slot)) << slot;
    for (const int slot : {1, 2, 50, 99, 100}) EXPECT_FALSE(session.hasUnit(slot)) << slot;
    EXPECT_NE(&session.Units(7), &session.Units(8));
    EXPECT_EQ(session.Units(7).kind().className, session.Units(8).kind().className);
}

TEST_F(StartUp, MakesTheUnitObjectsAndTheTablesOfExpectedFirmware) {
    kernel.load();
    EXPECT_TRUE(session.hasUnit(3));
    EXPECT_EQ(session.Units(0).kind().className, "clsNull");
    EXPECT_EQ(session.Units(1).kind().className, "clsNull");
    EXPECT_EQ(session.expectedFirmware(3).release, 5);
    EXPECT_EQ(session.expectedFirmware(4).release, 7);
    EXPECT_EQ(session.expectedFirmware(6).release, 3);
    EXPECT_EQ(session.expectedFirmware(8).build, 99);
    EXPECT_EQ(session.slotInHand(), 0);
}

TEST_F(StartUp, ASlotAbove100IsABoundsError) {
    EXPECT_THROW(session.Units(101), BoundsError);
    EXPECT_THROW(session.Units(-1), BoundsError);
}

TEST_F(StartUp, AnUnwritableLogTurnsItselfOffAndTheProgramGoesOn) {
    std::filesystem::create_directory(fake.folder.path("zentaq.log"));
    std::ofstream(fake.folder.path("zentaq.log/occupied")) << "x";
    kernel.load();
    EXPECT_FALSE(session.console.LogToFile());
    EXPECT_TRUE(logged("Logging to the file is off."));
    EXPECT_TRUE(logged("User Interface Initialized."));
}

TEST_F(StartUp, ShutdownAsksAndCancelLeavesEverythingButTheLogLine) {
    kernel.load();
    session.Monitoring = true;
    boxes().clear();
    fake.dialogs.answers = {Answer::Cancel};
    EXPECT_FALSE(kernel.System_Shutdown(false));
    EXPECT_THAT(boxes(), ElementsAre(IsBox("Shutdown", "Would you like to Shutdown Zentaq?")));
    EXPECT_EQ(boxes()[0].buttons, Buttons::OkCancel);
    EXPECT_EQ(boxes()[0].icon, Icon::Question);
    EXPECT_TRUE(session.Monitoring);
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_TRUE(logged("System Shutdown Requested."));
    EXPECT_FALSE(logged("System Shutdown!"));
}

TEST_F(StartUp, ShutdownFromTheMenuOffersToSaveWhatIsUnsaved) {
    kernel.load();
    session.DataModified = true;
    boxes().clear();
    fake.dialogs.answers = {Answer::Ok, Answer::Cancel};
    EXPECT_TRUE(kernel.System_Shutdown(false));
    ASSERT_EQ(boxes().size(), 2u);
    EXPECT_THAT(boxes()[1], IsBox("SAVE", "Save changes?"));
}

TEST_F(StartUp, AConfirmedShutdownStopsTimersClosesThePortAndEnds) {
    kernel.load();
    session.Monitoring = true;
    session.AutoMonitoring = true;
    EXPECT_TRUE(kernel.System_Shutdown(true));
    EXPECT_FALSE(session.Monitoring);
    EXPECT_FALSE(session.AutoMonitoring);
    EXPECT_FALSE(fake.port.isOpen());
    EXPECT_FALSE(fake.ticker.running());
    EXPECT_TRUE(logged("System Shutdown!"));
    EXPECT_THAT(fake.windows.calls, Contains("killTimers"));
    EXPECT_EQ(fake.windows.calls.back(), "closeMain");
}

TEST_F(StartUp, ASecondShutdownDoesNothingMore) {
    kernel.load();
    EXPECT_TRUE(kernel.System_Shutdown(true));
    const auto calls = fake.windows.calls;
    EXPECT_TRUE(kernel.System_Shutdown(false));
    EXPECT_EQ(fake.windows.calls, calls);
}

TEST_F(StartUp, TheLinesOfAShutdownGoToTheLog) {
    kernel.load();
    kernel.System_Shutdown(true);
    const std::string text = logText();
    EXPECT_LT(text.find("System Shutdown Requested."), text.find("System Shutdown!"));
    EXPECT_NE(text.find("System Shutdown!"), std::string::npos);
}

TEST_F(StartUp, ClosingTheWindowWithNothingUnsavedAsksNothing) {
    kernel.load();
    boxes().clear();
    kernel.closeRequested();
    EXPECT_TRUE(boxes().empty());
    EXPECT_EQ(fake.windows.calls.back(), "closeMain");
}

TEST_F(StartUp, ClosingTheWindowOffersToSaveAndCancelDeclinesTheSaveOnly) {
    kernel.load();
    session.DataModified = true;
    boxes().clear();
    fake.dialogs.answers = {Answer::Cancel};
    kernel.closeRequested();
    EXPECT_THAT(boxes(), ElementsAre(IsBox("SAVE", "Save changes?")));
    EXPECT_EQ(boxes()[0].buttons, Buttons::OkCancel);
    EXPECT_EQ(boxes()[0].icon, Icon::Question);
    EXPECT_EQ(fake.windows.calls.back(), "closeMain");
}

}  // namespace
}  // namespace zentaq
