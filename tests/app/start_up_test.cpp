#include "app/start_up.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/fake_platform.h"

namespace zentaq {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class StartUp : public testing::Test {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    MainCommands commands{session};
    Kernel kernel{session, commands};

    std::string logText() const {
        std::ifstream file(fake.folder.path("zentaq.log"));
        return {std::istreambuf_iterator<char>(file), {}};
    }
    bool consoleHas(const std::string& text) const {
        for (const std::string& line : session.console.lines()) {
            if (line.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

TEST_F(StartUp, BringsUpTheWindowsInItsFixedOrder) {
    fake.settings.set("System", "FileOpen", "0");
    kernel.load();
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

TEST_F(StartUp, WritesTheBannerWithItsRulersOnTheScreenOnly) {
    fake.settings.set("System", "FileOpen", "0");
    kernel.load();
    const std::string ruler(80, '-');
    EXPECT_THAT(session.console.lines(), Contains(ruler));
    EXPECT_TRUE(consoleHas("12:34:56 - Norvalia Zentaq Engine Management Software"));
    EXPECT_TRUE(consoleHas("12:34:56 - v4.10.2"));
    EXPECT_TRUE(consoleHas("12:34:56 - Saturday, 21 November 2026"));
    EXPECT_TRUE(consoleHas("12:34:56 - Program Initialized on "));
    EXPECT_TRUE(consoleHas("12:34:56 - COMM: Listening on Port #1"));
    EXPECT_TRUE(consoleHas("12:34:56 - User Interface Initialized."));
    EXPECT_THAT(logText(), HasSubstr("Norvalia Zentaq Engine Management Software"));
    EXPECT_THAT(logText(), Not(HasSubstr(ruler)));
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
    fake.settings.set("System", "FileOpen", "0");
    fake.settings.set("System", "CommDialog", "0");
    fake.settings.set("System", "TableColor", "1");
    fake.settings.set("System", "CommPort", "7");
    kernel.load();
    EXPECT_TRUE(fake.dialogs.requests.empty());
    EXPECT_THAT(fake.windows.calls, Contains("comm list off"));
    EXPECT_EQ(session.TableColorMode, 1);
    EXPECT_EQ(session.link.commPort(), 7);
    EXPECT_TRUE(consoleHas("COMM: Listening on Port #7"));
}

TEST_F(StartUp, TheLogHoldsOneRunOnly) {
    std::ofstream(fake.folder.path("zentaq.log")) << "an earlier run\n";
    kernel.load();
    EXPECT_THAT(logText(), Not(HasSubstr("an earlier run")));
}

TEST_F(StartUp, AutoLogOffLeavesAnEarlierLogUnchanged) {
    std::ofstream(fake.folder.path("zentaq.log")) << "an earlier run\n";
    fake.settings.set("System", "AutoLog", "0");
    kernel.load();
    EXPECT_EQ(logText(), "an earlier run\n");
}

TEST_F(StartUp, AMissingDatabaseStopsNothingAndTheBannerIsTheFirstThatIsLogged) {
    fake.settings.set("System", "FileOpen", "0");
    kernel.load();
    EXPECT_FALSE(session.database.has_value());
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    EXPECT_EQ(session.console.lines().front(), std::string(80, '-'));
    EXPECT_EQ(logText().substr(0, 53), "12:34:56 - Norvalia Zentaq Engine Management Software");
    EXPECT_EQ(session.StartingUp, 0);
}

TEST_F(StartUp, MakesTheUnitObjectsAndTheTablesOfExpectedFirmware) {
    kernel.load();
    EXPECT_TRUE(session.hasUnit(3));
    EXPECT_EQ(session.Units(0).kind().className, "clsNull");
    EXPECT_EQ(session.Units(1).kind().className, "clsNull");
    EXPECT_EQ(session.expectedRelease(3), 5);
    EXPECT_EQ(session.expectedRelease(4), 7);
    EXPECT_EQ(session.expectedRelease(6), 3);
    EXPECT_EQ(session.expectedBuild(8), 99);
    EXPECT_EQ(session.currentUnit(), 0);
}

TEST_F(StartUp, ASlotAbove100IsABoundsError) {
    EXPECT_THROW(session.Units(101), BoundsError);
    EXPECT_THROW(session.Units(-1), BoundsError);
}

TEST_F(StartUp, AWindowThatFailsDoesNotStopTheSequence) {
    class Broken : public RecordingWindows {
        void showConfig() override { throw Failure("no screen"); }
    } broken;
    session.attach(broken);
    kernel.load();
    EXPECT_THAT(broken.calls, Contains("focus frmConfig"));
}

TEST_F(StartUp, AnUnwritableLogTurnsItselfOffAndTheProgramGoesOn) {
    std::filesystem::create_directory(fake.folder.path("zentaq.log"));
    std::ofstream(fake.folder.path("zentaq.log/occupied")) << "x";
    kernel.load();
    EXPECT_FALSE(session.console.LogToFile());
    EXPECT_TRUE(consoleHas("Logging to the file is off."));
    EXPECT_TRUE(consoleHas("User Interface Initialized."));
}

TEST_F(StartUp, ShutdownAsksAndCancelLeavesEverythingButTheLogLine) {
    kernel.load();
    session.Monitoring = true;
    fake.dialogs.boxes.clear();
    fake.dialogs.answers = {Answer::Cancel};
    EXPECT_FALSE(kernel.System_Shutdown(false));
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Shutdown");
    EXPECT_EQ(fake.dialogs.boxes[0].text, "Would you like to Shutdown Zentaq?");
    EXPECT_EQ(fake.dialogs.boxes[0].buttons, Buttons::OkCancel);
    EXPECT_EQ(fake.dialogs.boxes[0].icon, Icon::Question);
    EXPECT_TRUE(session.Monitoring);
    EXPECT_TRUE(fake.port.isOpen());
    EXPECT_TRUE(consoleHas("System Shutdown Requested."));
    EXPECT_FALSE(consoleHas("System Shutdown!"));
}

TEST_F(StartUp, ShutdownFromTheMenuOffersToSaveWhatIsUnsaved) {
    kernel.load();
    session.DataModified = true;
    fake.dialogs.boxes.clear();
    fake.dialogs.answers = {Answer::Ok, Answer::Cancel};
    EXPECT_TRUE(kernel.System_Shutdown(false));
    ASSERT_EQ(fake.dialogs.boxes.size(), 2u);
    EXPECT_EQ(fake.dialogs.boxes[1].title, "SAVE");
    EXPECT_EQ(fake.dialogs.boxes[1].text, "Save changes?");
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
    EXPECT_TRUE(consoleHas("System Shutdown!"));
    EXPECT_THAT(fake.windows.calls, Contains("killTimers"));
    EXPECT_EQ(fake.windows.calls.back(), "closeMain");
}

}  // namespace
}  // namespace zentaq
