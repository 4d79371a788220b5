#include "app/session.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>

#include "app/calibration_floats.h"
#include "app/fake_platform.h"
#include "app/main_commands.h"
#include "app/while_box_stands.h"
#include "base/text.h"
#include "no_file_grows.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class SessionTest : public ::testing::Test {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    MainCommands commands{session};

    SessionTest() {
        session.makeUnits();
        session.DatabaseFile = builtReference();  // opened by what needs it
    }

    std::string calibrationOf(float kind, const std::string& name) const {
        std::vector<float> floats = wholeFloats(kind);
        floats[3 + 126] = 0.05f;  // volts a kPa: pressures that differ are read as different ones
        giveRisingAxes(floats);
        return writeFloats(fake.folder.path(name), floats);
    }
    /// A unit on the link and a calibration of its kind in hand, unchanged.
    void openForProgramming(const std::string& firmware = "ZQA-405099") {
        fake.dialogs.files = {calibrationOf(3, "tune.ZQ4OA")};
        commands.files.open();
        connect(firmware);
        session.DataModified = false;
    }
    /// Programs the unit, up to the first byte on the wire. False: no transfer came about.
    bool programs() {
        // Mixtures of 0 have no byte, and without them there is no image.
        Unit& unit = session.currentUnitObject();
        for (int cell = 283; cell < 293; ++cell) unit.AssignDirectIndex(14.64F, cell);
        for (int cell = 1424; cell < 1680; ++cell) unit.AssignDirectIndex(14.7F, cell);
        commands.programming.programOrb();
        for (int tick = 0; tick < 5000 && !session.link.transfer().active(); ++tick) session.link.tick();
        return session.link.transfer().active();
    }
    bool logged(const std::string& text) const { return hasLine(session.console, text); }
    std::string oldCalibration() const {
        std::vector<float> floats = wholeFloats(3, 2099);
        floats[3 + 39] = 1;  // bar rating
        floats[3 + 124] = 1;
        floats[3 + 148] = 10;  // scale1, ms
        return writeFloats(fake.folder.path("old.ZQ4OA"), floats);
    }
    static std::vector<std::uint8_t> sealed(std::vector<std::uint8_t> reply) {
        reply.push_back(static_cast<std::uint8_t>(std::accumulate(reply.begin() + 2, reply.end(), 0)));
        return reply;
    }
    void answer(std::vector<std::uint8_t> reply) {
        fake.port.deliver(std::move(reply));
        session.link.tick();
        session.link.tick();
    }
    void connect(const std::string& firmware) {
        session.link.load();
        session.link.Send_ORB_Command("E");
        session.link.tick();
        answer(sealed({0xFA, 0xA5, 0x55, 0, 0x03, 0x0D, 0x41}));  // 200001
        std::vector<std::uint8_t> reply{0xFA, 0xA5, 0x55};
        reply.insert(reply.end(), 24, ' ');
        reply.insert(reply.end(), firmware.begin(), firmware.end());
        reply.push_back(0);
        answer(sealed(reply));
    }
    bool told(const std::string& text) const {
        for (const Box& box : fake.dialogs.boxes) {
            if (box.text.find(text) != std::string::npos) return true;
        }
        return false;
    }
};

TEST_F(SessionTest, AnOldCalibrationInHandIsBroughtToTheFirmwareThatTheUnitTells) {
    fake.dialogs.files = {oldCalibration()};
    commands.files.open();
    Unit& unit = session.currentUnitObject();
    ASSERT_EQ(unit.FW_Release(), 2);
    connect("ZQA-405099");
    ASSERT_TRUE(session.link.linked().UnitIdentified);
    EXPECT_EQ(unit.FW_Release(), 5);
    // Rating 1: K = 876 / 1024, L = 100 / 1023. 10 * K = 8.5546875 to 3 places; 0 + 10 * L = 0.97751...
    EXPECT_FLOAT_EQ(unit.get("scale1"), 8.555f);
    EXPECT_NEAR(unit.DirectIndex(150), 0.977517, 1e-5);
    EXPECT_TRUE(told("Your BIN file has been updated to work with this firmware."));
    EXPECT_EQ(session.header().firmwareCode, 5099);
}

TEST_F(SessionTest, AUnitOfTheCalibrationsKindTurnsOnTheFlyOnAndItsLossOff) {
    fake.dialogs.files = {oldCalibration()};
    commands.files.open();
    EXPECT_FALSE(session.currentUnitObject().ONFLY_MODE());
    connect("ZQA-402099");
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());
    EXPECT_TRUE(session.link.linked().FirmwareTold);
    session.link.Send_ORB_Command("F");
    for (int i = 0; i < 90; ++i) session.link.tick();
    EXPECT_FALSE(session.currentUnitObject().ONFLY_MODE());
    EXPECT_FALSE(session.link.linked().FirmwareTold);
}

TEST_F(SessionTest, AFileOpenedAfterTheUnitWasFoundTakesChangesOnTheFlyToo) {
    connect("ZQA-402099");
    fake.dialogs.files = {oldCalibration()};
    commands.files.open();
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());
    ASSERT_TRUE(session.currentUnitObject().set("KNK_MIN", 50.0));
    session.link.tick();
    EXPECT_EQ(fake.port.written.back(), "P2S10411228048");
}

TEST_F(SessionTest, TheProgramsVersionStandsInFilesAsMinorAndRevision) {
    EXPECT_FLOAT_EQ(session.programVersion(), 10.2f);
}

TEST_F(SessionTest, AFullDiskTurnsFileLoggingOffAndSaysSoOnce) {
    const std::string path = fake.folder.path("zentaq.log");
    session.console.logFile(path);
    session.console.LogToFile(true);
    {
        const NoFileGrows full;
        session.sysLog("first");
        session.sysLog("second");
    }
    std::vector<std::string> shown;
    for (const std::string& line : session.console.lines()) shown.emplace_back(trimmed(line));
    EXPECT_THAT(shown,
                ElementsAre("12:34:56 - first", "Log file " + path + " cannot be written: File too large",
                            "Logging to the file is off.", "12:34:56 - second"));
    EXPECT_FALSE(session.console.LogToFile());
}

TEST_F(SessionTest, EveryFifthLinkLineEmptiesThePanelOfTheFirmwareButNotWhileATransferRuns) {
    class Panels : public RecordingWindows {
     public:
        void clearPanel3() override { ++cleared; }
        int cleared = 0;
    } windows;
    session.attach(windows);
    for (int line = 0; line < 11; ++line) session.commLog("line");  // with 0, 5 and 10 lines in the list
    EXPECT_EQ(windows.cleared, 3);
    openForProgramming();
    ASSERT_TRUE(programs());
    windows.cleared = 0;
    const std::size_t before = session.console.commLines().size();
    for (int line = 0; line < 10; ++line) session.commLog("line");
    EXPECT_EQ(session.console.commLines().size(), before + 10);
    EXPECT_EQ(windows.cleared, 0);
    session.attach(fake.windows);
}

// ---- Program ORB

TEST_F(SessionTest, AUnitOfAnotherKindIsNotProgrammed) {
    connect("ZQA-405099");
    fake.dialogs.files = {calibrationOf(4, "lite.ZQ4OL")};
    commands.files.open();
    fake.dialogs.boxes.clear();
    commands.programming.programOrb();
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Error 1006");
    EXPECT_EQ(fake.dialogs.boxes[0].text,
              "Error 1006:\nIncorrect ORB Unit is Connected to the System!\n"
              "Please connect a unit of the proper type or open an apprpriate file.");
    EXPECT_TRUE(logged("Error 1006: Attempted Communication, Incorrect ORB Unit Found."));
    EXPECT_FALSE(session.link.transfer().active());
}

TEST_F(SessionTest, AnOlderFirmwareIsWarnedOfAndProgrammedAllTheSame) {
    session.FW_ReleaseTable[3] = 5;
    session.FW_BuildTable[3] = 99;
    openForProgramming("ZQA-404099");
    fake.dialogs.boxes.clear();
    EXPECT_TRUE(programs());
    ASSERT_FALSE(fake.dialogs.boxes.empty());
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Warning 1007");
    EXPECT_EQ(fake.dialogs.boxes[0].text,
              "Warning 1007:\nOlder ORB Unit firmware detected. The firmware may need to be upgraded for the "
              "unit to work properly with the new software.");
    EXPECT_TRUE(logged("Warning 1007: ORB Unit needs Firmware Upgrade."));
    EXPECT_THAT(fake.windows.calls, testing::Contains("focus frmConfig"));
}

TEST_F(SessionTest, TheExpectedFirmwareIsNotWarnedOf) {
    session.FW_ReleaseTable[3] = 5;
    session.FW_BuildTable[3] = 99;
    openForProgramming("ZQA-405099");
    fake.dialogs.boxes.clear();
    EXPECT_TRUE(programs());
    EXPECT_FALSE(told("Older ORB Unit firmware detected."));
}

TEST_F(SessionTest, AUnitThatFallsSilentFailsTheRunInTheUsersWords) {
    openForProgramming();
    fake.dialogs.boxes.clear();
    ASSERT_TRUE(programs());
    for (int tick = 0; tick < 20'000 && session.link.transfer().active(); ++tick) session.link.tick();
    ASSERT_FALSE(session.link.transfer().active());
    ASSERT_FALSE(fake.dialogs.boxes.empty());
    const Box& box = fake.dialogs.boxes.back();
    EXPECT_EQ(box.title, "Failed");
    EXPECT_EQ(box.text,
              "The BIN program operation failed.\n"
              "Please verify that the ORB has power, the engine is off and try again.\n"
              "The previous BIN file is still loaded.");
    EXPECT_EQ(box.icon, Icon::Exclamation);
    EXPECT_TRUE(logged("PROCESS FAILED - EXITED ABNORMALLY."));
}

TEST_F(SessionTest, WhatTheLinkReportsIsToldInTheUsersWords) {
    const std::pair<int, const char*> rows[] = {
        {1002,
         "You have successfully programmed your ORB unit.\n"
         "Please cycle the power on the unit before continuing."},
        {1004,
         "The firmware upgrade operation failed.\nPlease verify that the ORB has power and try again.\n"
         "There is now no firmware installed on this unit, the upgrade must be completed successfully "
         "before the unit will function."},
        {1006, "The datalog has been successfully downloaded."},
        {1007,
         "The unit either has no datalog data is currently datalogging\n"
         "Make sure you datalog switch is OFF and try again."}};
    LinkTeller& host = session;
    for (const auto& [code, text] : rows) {
        host.displayMessage(code);
        EXPECT_EQ(fake.dialogs.boxes.back().text, text);
    }
}

TEST_F(SessionTest, APortNumberBelowOneIsOneFromThenOn) {
    fake.settings.set("System", "CommPort", "0");
    session.link.commPort(0);
    session.link.ORB_Initialize();
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "1");
}

TEST_F(SessionTest, ABusyPortDoesNotFillTheLog) {
    class Busy : public FakePort {
        void open(int) override { throw Failure("busy"); }
    } busy;
    Session other{Platform{busy, fake.ticker, fake.clock, fake.settings, fake.dialogs, fake.yield,
                           fake.folder.path(), fake.folder.path()}};
    other.link.load();
    const std::size_t lines = other.console.lines().size();
    for (int second = 0; second < 10; ++second) {
        fake.clock.nowUs += 1'000'000;
        other.poll(false);
    }
    EXPECT_EQ(other.console.lines().size(), lines);
}

TEST_F(SessionTest, OnlyASettingOf0ShowsCelsius) {
    fake.settings.set("System", "TemperatureToggle", "");  // as on a fresh installation
    EXPECT_TRUE(session.fahrenheit());
    fake.settings.set("System", "TemperatureToggle", "0");
    EXPECT_FALSE(session.fahrenheit());
    fake.settings.set("System", "TemperatureToggle", "1");
    EXPECT_TRUE(session.fahrenheit());
}

// ---- Wire trace

TEST_F(SessionTest, TheWireTraceFollowsItsSetting) {
    session.applyTrace();
    EXPECT_FALSE(session.trace.running());
    fake.settings.set("System", "WireTrace", "1");
    session.applyTrace();
    EXPECT_TRUE(session.trace.running());
    EXPECT_TRUE(logged("Wire trace begun: "));
    fake.settings.set("System", "WireTrace", "0");
    session.applyTrace();
    EXPECT_FALSE(session.trace.running());
    EXPECT_TRUE(logged("Wire trace ended: "));
}

TEST_F(SessionTest, AWireTraceThatCannotBeWrittenIsToldAndEndsNothing) {
    std::filesystem::create_directory(session.traceFile());
    fake.settings.set("System", "WireTrace", "1");
    session.applyTrace();
    EXPECT_FALSE(session.trace.running());
    EXPECT_TRUE(logged("No wire trace: "));
}

TEST_F(SessionTest, TheWireTraceHoldsTheConsoleAndTheLossOfTheLink) {
    connect("ZQA-405099");
    fake.settings.set("System", "WireTrace", "1");
    session.applyTrace();
    session.sysLog("Hello");
    session.addToLastLine("SUCCESS!");
    session.initializeOnFly(false);  // another calibration was opened
    const auto content = [&] {
        fake.settings.set("System", "WireTrace", "0");
        session.applyTrace();
        return TemporaryFolder::read(session.traceFile());
    };
    const std::string text = content();
    EXPECT_THAT(text, HasSubstr("program: Hello\n"));
    EXPECT_THAT(text, HasSubstr("program: SUCCESS!\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("!link-lost")));
}

TEST_F(SessionTest, ALinkThatIsLostIsInTheWireTrace) {
    connect("ZQA-405099");
    fake.settings.set("System", "WireTrace", "1");
    session.applyTrace();
    session.link.Send_ORB_Command("T");
    for (int tick = 0; tick < 5000; ++tick) session.link.tick();
    ASSERT_EQ(session.link.linked().LinkedUnitKind, 0);
    fake.settings.set("System", "WireTrace", "0");
    session.applyTrace();
    EXPECT_THAT(TemporaryFolder::read(session.traceFile()), HasSubstr("!link-lost the unit is given up\n"));
}

}  // namespace
}  // namespace zentaq
