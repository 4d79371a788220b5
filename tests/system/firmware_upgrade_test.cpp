// A firmware upgrade of the whole program on a simulated unit in a process of its own: the good end, each way
// to fail, and what the unit holds afterwards.
#include <csignal>

#include "system/flight_bench.h"

namespace zentaq {
namespace {

constexpr const char* loadCalibration = "The BIN file MUST be loaded before starting your engine.";
constexpr const char* intact = "The previous version of the firmware is still intact.";
constexpr const char* gone = "There is now no firmware installed on this unit";

class FirmwareFlight : public FlightBench {
 protected:
    const std::string firmware = folder.path("ZQA-505100.nv3");

    void SetUp() override { ASSERT_TRUE(makeFirmware(firmware)); }
    /// The program has found a unit with these options.
    void start(const QStringList& options) {
        startUnit(QStringList(options) << "--serial"
                                       << "200042"
                                       << "--baud"
                                       << "0");
        startProgram();
        ASSERT_TRUE(found());
    }
    /// A whole file of few lines, so that no fault at a later line meets it.
    void shorten() const {
        std::ifstream in(firmware, std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) lines.push_back(line + "\n");
        in.close();
        ASSERT_GT(lines.size(), 100u);
        std::ofstream(firmware, std::ios::binary) << lines[0] << lines[1] << lines[2] << lines.back();
    }
    void upgrade() {
        program->dialogs.boxes.clear();
        program->dialogs.files.push_back(firmware);
        program->windows.main().run("mnuFirmwareUpgrade");
        ASSERT_TRUE(program->session.link.transfer().firmware());
    }
    std::string state() const {
        const auto bytes = bytesOf(memoryFile + ".firmware");
        return {bytes.begin(), bytes.end()};
    }
};

TEST_F(FirmwareFlight, AnUpgradeEndsWellAndTheUnitComesBackWithItsNewFirmware) {
    start({"--upgrade-mode"});
    const std::string before = program->session.linkDisplay.status().firmware;
    ASSERT_NE(before, "ZQA-505100");
    upgrade();

    // Meanwhile nothing may end the program unasked, and nobody may search or change the port.
    ASSERT_TRUE(comes([&] { return program->session.link.transfer().line() > 20; }));
    program->kernel.closeRequested();
    EXPECT_TRUE(program->boxShown("A firmware upgrade is running."));
    EXPECT_FALSE(program->windows.closed());
    EXPECT_EQ(program->commands.unit.autodetectPort(), 0);
    EXPECT_TRUE(program->session.link.transfer().firmware());

    ASSERT_TRUE(told(loadCalibration));
    EXPECT_TRUE(program->boxShown("You have successfully programmed your ORB unit."));
    EXPECT_EQ(state().substr(0, 21), "programmed ZQA-505100");
    EXPECT_FALSE(program->session.link.AutoPollSuspended());

    // The unit is silent until its power is cycled; then it is found by itself.
    ASSERT_TRUE(lost());
    unit->signal(SIGHUP);
    ASSERT_TRUE(found());
    EXPECT_EQ(program->session.linkDisplay.status().firmware, "ZQA-505100");
    EXPECT_NE(program->log().find("ORB: Firmware Upload Successful, Verified!"), std::string::npos);
}

TEST_F(FirmwareFlight, NothingOfTheUserEntersInsideATickAndTheBoxOfAClosingWindowLetsTheLinesGoOn) {
    start({"--upgrade-mode"});
    upgrade();
    const Link& wire = program->session.link;
    // A user who is always there: a timer that would do something at every chance that it gets.
    int insideTick = 0;
    QTimer always;
    QObject::connect(&always, &QTimer::timeout, [&] { insideTick += wire.handling() ? 1 : 0; });
    always.start(0);
    int before = 0, after = 0;
    bool boxInsideTick = true;
    program->dialogs.meanwhile = [&](const std::string& title) {
        if (title != "Transfer Running") return;
        boxInsideTick = wire.handling();
        before = wire.transfer().line();
        comes([&] { return wire.transfer().line() > before + 20 || !wire.transfer().firmware(); });
        after = wire.transfer().line();
    };
    ASSERT_TRUE(comes([&] { return wire.transfer().line() > 20; }));
    EXPECT_FALSE(program->windows.main().close());
    always.stop();
    EXPECT_TRUE(program->boxShown("A firmware upgrade is running."));
    EXPECT_FALSE(boxInsideTick);
    EXPECT_GT(after, before + 20) << "lines went out while the box stood";
    EXPECT_EQ(insideTick, 0);
    ASSERT_TRUE(told(loadCalibration));
    EXPECT_EQ(state().substr(0, 21), "programmed ZQA-505100");
}

TEST_F(FirmwareFlight, AUnitThatIsNotInUpgradeModeKeepsItsFirmwareAndGoesOn) {
    start({});
    upgrade();
    ASSERT_TRUE(told(intact));
    EXPECT_EQ(state(), "");
    EXPECT_TRUE(framesCome(21));
    EXPECT_TRUE(program->identified());

    // With its switch on it takes the same file.
    unit->signal(SIGUSR2);
    shorten();
    upgrade();
    ASSERT_TRUE(told(loadCalibration));
}

TEST_F(FirmwareFlight, ARefusedLineLeavesNoFirmwareAndASecondRunMendsTheUnit) {
    start({"--upgrade-mode", "--fault", "refuse@line#12"});
    upgrade();
    ASSERT_TRUE(told(gone));
    EXPECT_EQ(state().substr(0, 7), "missing");

    // The unit answers nothing now but the start of programming; polls in front of it are in vain.
    ASSERT_TRUE(comes([&] { return program->session.link.linked().LinkedUnitKind == 0; }));
    shorten();
    upgrade();
    ASSERT_TRUE(told(loadCalibration));
    EXPECT_EQ(state().substr(0, 21), "programmed ZQA-505100");
}

TEST_F(FirmwareFlight, SilenceInTheMiddleEndsByItsTimeOutAndASecondRunMendsTheUnit) {
    start({"--upgrade-mode", "--fault", "silence@line#30"});
    upgrade();
    ASSERT_TRUE(told(gone));
    EXPECT_EQ(state().substr(0, 7), "missing");
    EXPECT_EQ(program->session.link.linked().LinkedUnitKind, 0);
    // Its boot loader still waits for the next line: cycling the power ends that.
    unit->signal(SIGHUP);
    Program::runFor(500);
    shorten();
    upgrade();
    ASSERT_TRUE(told(loadCalibration));
    unit->signal(SIGHUP);
    ASSERT_TRUE(found());
    EXPECT_EQ(program->session.linkDisplay.status().firmware, "ZQA-505100");
}

}  // namespace
}  // namespace zentaq
