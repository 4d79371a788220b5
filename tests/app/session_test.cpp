#include "app/session.h"

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "base/text.h"
#include "no_file_grows.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr std::uint32_t orbA = 200001;

class SessionTest : public CommandTest {
 protected:
    std::string calibrationOf(float kind, const std::string& name) const {
        std::vector<float> floats = wholeFloats(kind);
        floats[3 + 126] = 0.05f;  // volts a kPa: pressures that differ are read as different ones
        giveRisingAxes(floats);
        return writeFloats(fake.folder.path(name), floats);
    }
    /// A unit on the link and a calibration of its kind in hand, unchanged.
    void openForProgramming(const std::string& firmware = "ZQA-405099") {
        open(calibrationOf(3, "tune.ZQ4OA"));
        connect(orbA, firmware);
        session.DataModified = false;
    }
    /// Programs the unit, up to the first byte on the wire. False: no transfer came about.
    bool programs() {
        // Mixtures of 0 have no byte, and without them there is no image.
        for (int cell = 283; cell < 293; ++cell) unit().AssignDirectIndex(14.64F, cell);
        for (int cell = 1424; cell < 1680; ++cell) unit().AssignDirectIndex(14.7F, cell);
        commands.programming.programOrb();
        for (int tick = 0; tick < 5000 && !session.link.transfer().active(); ++tick) session.link.tick();
        return session.link.transfer().active();
    }
    void trace(bool on) {
        fake.settings.set("System", "WireTrace", on ? "1" : "0");
        session.applyTrace();
    }
    std::string oldCalibration() const {
        std::vector<float> floats = wholeFloats(3, 2099);
        floats[3 + 39] = 1;  // bar rating
        floats[3 + 124] = 1;
        floats[3 + 148] = 10;  // scale1, ms
        return writeFloats(fake.folder.path("old.ZQ4OA"), floats);
    }
    bool told(const std::string& part) {
        return std::ranges::any_of(boxes(),
                                   [&](const Box& box) { return box.text.find(part) != std::string::npos; });
    }
};

TEST_F(SessionTest, AnOldCalibrationInHandIsBroughtToTheFirmwareThatTheUnitTells) {
    open(oldCalibration());
    ASSERT_EQ(unit().FW_Release(), 2);
    connect(orbA, "ZQA-405099");
    ASSERT_TRUE(session.link.linked().UnitIdentified);
    EXPECT_EQ(unit().FW_Release(), 5);
    // Rating 1: K = 876 / 1024, L = 100 / 1023. 10 * K = 8.5546875 to 3 places; 0 + 10 * L = 0.97751...
    EXPECT_FLOAT_EQ(unit().get("scale1"), 8.555f);
    EXPECT_NEAR(unit().DirectIndex(150), 0.977517, 1e-5);
    EXPECT_TRUE(told("Your BIN file has been updated to work with this firmware."));
    EXPECT_EQ(session.currentUnitObject().facts().firmwareCode, 5099);
}

TEST_F(SessionTest, AUnitOfTheCalibrationsKindTurnsOnTheFlyOnAndItsLossOff) {
    open(oldCalibration());
    EXPECT_FALSE(unit().ONFLY_MODE());
    connect(orbA, "ZQA-402099");
    EXPECT_TRUE(unit().ONFLY_MODE());
    EXPECT_TRUE(session.link.linked().FirmwareTold);
    loseUnit();
    EXPECT_FALSE(unit().ONFLY_MODE());
    EXPECT_FALSE(session.link.linked().FirmwareTold);
}

TEST_F(SessionTest, AFileOpenedAfterTheUnitWasFoundTakesChangesOnTheFlyToo) {
    connect(orbA, "ZQA-402099");
    open(oldCalibration());
    EXPECT_TRUE(unit().ONFLY_MODE());
    ASSERT_TRUE(unit().set("KNK_MIN", 50.0));
    session.link.tick();
    EXPECT_EQ(fake.port.written.back(), "P2S10411228048");
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
    for (int line = 0; line < 11; ++line) fake.forLink.commLog("line");  // with 0, 5 and 10 lines in the list
    EXPECT_EQ(windows.cleared, 3);
    openForProgramming();
    ASSERT_TRUE(programs());
    windows.cleared = 0;
    const std::size_t before = session.console.commLines().size();
    for (int line = 0; line < 10; ++line) fake.forLink.commLog("line");
    EXPECT_EQ(session.console.commLines().size(), before + 10);
    EXPECT_EQ(windows.cleared, 0);
    session.attach(fake.windows);
}

// ---- Program ORB

TEST_F(SessionTest, AUnitOfAnotherKindIsNotProgrammed) {
    connect(orbA, "ZQA-405099");
    open(calibrationOf(4, "lite.ZQ4OL"));
    boxes().clear();
    commands.programming.programOrb();
    EXPECT_THAT(titles(), ElementsAre("Error 1006"));
    EXPECT_FALSE(session.link.transfer().active());
}

TEST_F(SessionTest, TheExpectedFirmwareIsNotWarnedOf) {
    openForProgramming("ZQA-405099");
    boxes().clear();
    EXPECT_TRUE(programs());
    EXPECT_FALSE(told("Older ORB Unit firmware detected."));
}

TEST_F(SessionTest, AUnitThatFallsSilentFailsTheRunInTheUsersWords) {
    openForProgramming();
    boxes().clear();
    ASSERT_TRUE(programs());
    for (int tick = 0; tick < 20'000 && session.link.transfer().active(); ++tick) session.link.tick();
    ASSERT_FALSE(session.link.transfer().active());
    EXPECT_THAT(box().text, HasSubstr("The BIN program operation failed."));
    EXPECT_TRUE(logged("PROCESS FAILED - EXITED ABNORMALLY."));
}

TEST_F(SessionTest, WhatTheLinkReportsIsToldInTheUsersWords) {
    fake.forLink.displayMessage(1006);
    EXPECT_EQ(box().text, "The datalog has been successfully downloaded.");
}

TEST_F(SessionTest, WhatAUnitObjectReportsIsToldInTheUsersWords) {
    fake.forUnits.heard({.event = UnitEvent::Saved});
    EXPECT_EQ(box().title, "Data Saved.");
    EXPECT_EQ(box().text, "Data has been saved Successfully!");
    fake.forUnits.heard({.event = UnitEvent::Migrated});
    EXPECT_EQ(box().title, "Zentaq4");
    EXPECT_EQ(box().text,
              "Your BIN file has been updated to work with this firmware.\n"
              "You should do a Save As... and reprogram your unit.");
}

TEST_F(SessionTest, APortNumberBelowOneIsOneFromThenOn) {
    fake.settings.set("System", "CommPort", "0");
    session.link.commPort(0);
    session.link.ORB_Initialize();
    EXPECT_EQ(session.link.commPort(), 1);
    EXPECT_EQ(fake.settings.get("System", "CommPort"), "1");
}

TEST_F(SessionTest, ABusyPortDoesNotFillTheLog) {
    fake.port.busy = true;
    session.link.load();
    const std::size_t lines = session.console.lines().size();
    for (int second = 0; second < 10; ++second) {
        fake.clock.nowUs += 1'000'000;
        session.poll(false);
    }
    EXPECT_EQ(session.console.lines().size(), lines);
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
    trace(true);
    EXPECT_TRUE(session.trace.running());
    EXPECT_TRUE(logged("Wire trace begun: "));
    trace(false);
    EXPECT_FALSE(session.trace.running());
    EXPECT_TRUE(logged("Wire trace ended: "));
}

TEST_F(SessionTest, AWireTraceThatCannotBeWrittenIsToldAndEndsNothing) {
    std::filesystem::create_directory(session.traceFile());
    trace(true);
    EXPECT_FALSE(session.trace.running());
    EXPECT_TRUE(logged("No wire trace: "));
}

TEST_F(SessionTest, TheWireTraceHoldsTheConsoleAndTheLossOfTheLink) {
    connect(orbA, "ZQA-405099");
    trace(true);
    session.sysLog("Hello");
    session.addToLastLine("SUCCESS!");
    session.initializeOnFly(false);  // another calibration was opened
    trace(false);
    const std::string text = TemporaryFolder::read(session.traceFile());
    EXPECT_THAT(text, HasSubstr("program: Hello\n"));
    EXPECT_THAT(text, HasSubstr("program: SUCCESS!\n"));
    EXPECT_THAT(text, testing::Not(HasSubstr("!link-lost")));
}

TEST_F(SessionTest, ALinkThatIsLostIsInTheWireTrace) {
    connect(orbA, "ZQA-405099");
    trace(true);
    loseUnit();
    trace(false);
    EXPECT_THAT(TemporaryFolder::read(session.traceFile()), HasSubstr("!link-lost the unit is given up\n"));
}

}  // namespace
}  // namespace zentaq
