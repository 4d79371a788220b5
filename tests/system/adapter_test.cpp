// The whole program on adapters as they are: bytes in lumps of 16 ms, large writes that are lost, a cable
// that is pulled and comes back under another name, a unit whose power is cycled.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <set>

#include "platform/port_list.h"
#include "system/flight_rig.h"

namespace zentaq {
namespace {

using testing::HasSubstr;

constexpr int patienceMs = 20'000;

class AdapterFlight : public testing::Test {
 protected:
    int argc_ = 1;
    std::string name_ = "adapter";
    char* argv_[2] = {name_.data(), nullptr};
    QApplication application{argc_, argv_};
    TemporaryFolder folder;
    std::string ports = folder.path("ports");
    std::unique_ptr<UnitProcess> unit;
    std::unique_ptr<Program> program;

    void SetUp() override {
        std::filesystem::create_directory(folder.path("app"));
        std::filesystem::create_directory(ports);
    }
    void TearDown() override {
        program.reset();
        unit.reset();
    }

    void start(QStringList options, const char* updates = "100") {
        unit = std::make_unique<UnitProcess>(ports + "/unit", folder.path("memory.bin"), std::move(options));
        ASSERT_TRUE(unit->ready());
        program = std::make_unique<Program>(
            application, folder.path("app"),
            PosixSerialPort::PortSource([this] { return orderedPorts(simulatedPorts(ports), {}); }));
        program->stored().set("System", "ADUR", updates);
        program->kernel.load();
        ASSERT_TRUE(Program::waitFor([&] { return program->identified(); }, patienceMs));
    }
    bool framesCome(unsigned count) {
        const auto before = program->session.live.frames;
        return Program::waitFor([&] { return program->session.live.frames >= before + count; }, patienceMs);
    }
    bool lost() {
        return Program::waitFor([&] { return !program->identified(); }, patienceMs);
    }
    bool back() {
        return Program::waitFor([&] { return program->identified(); }, patienceMs) && framesCome(3);
    }
    const LinkStatus& status() const { return program->session.linkDisplay.status(); }
};

TEST_F(AdapterFlight, FramesInLumpsOf16MillisecondsAreDecodedWhole) {
    start({"--burst", "16", "--engine", "idle"});
    ASSERT_TRUE(framesCome(50));
    std::set<float> speeds;
    program->session.live.frames = 0;
    Program::waitFor(
        [&] {
            speeds.insert(program->session.live.RPM);
            return program->session.live.frames > 100;
        },
        patienceMs);
    EXPECT_GT(*speeds.begin(), 300);
    EXPECT_LT(*speeds.rbegin(), 3000) << "an engine at idle";
    EXPECT_TRUE(program->identified());
    EXPECT_THAT(status().frameTimes, HasSubstr(" frames/s: unit "));
}

TEST_F(AdapterFlight, NarrowFramesWithoutHeadAndSumStayInStepThroughLumps) {
    start({"--burst", "16", "--engine", "idle", "--firmware", "ZQA-404099"});
    ASSERT_FALSE(program->session.link.linked().WideMonitor);
    ASSERT_TRUE(framesCome(20));
    std::set<float> speeds;
    const auto before = program->session.live.frames;
    Program::waitFor(
        [&] {
            speeds.insert(program->session.live.RPM);
            return program->session.live.frames > before + 150;
        },
        patienceMs);
    EXPECT_GT(*speeds.begin(), 300);
    EXPECT_LT(*speeds.rbegin(), 3000) << "an engine at idle";
    EXPECT_TRUE(program->identified());
}

TEST_F(AdapterFlight, APulledAdapterIsFoundAgainUnderAnotherName) {
    start({"--rename", "--burst", "16"});
    ASSERT_TRUE(framesCome(10));
    const std::string before = program->serial().port.list().at(0).device;
    unit->signal(SIGUSR1);
    ASSERT_TRUE(lost());
    EXPECT_EQ(status().title, "Adapter unplugged");
    EXPECT_EQ(status().line1, "Simulated unit unit (" + before + ") has gone.");
    ASSERT_TRUE(back());
    EXPECT_EQ(status().title, "Monitoring...");
    EXPECT_THAT(program->log(), HasSubstr("COMM: Simulated unit unit (" + before + ") has gone."));
    EXPECT_THAT(program->log(), HasSubstr("COMM: Simulated unit unit.2 is back as "));
}

TEST_F(AdapterFlight, AUnitThatLosesItsPowerWithTheAdapterInPlaceIsFoundAgainAtALowRateToo) {
    start({}, "5");
    ASSERT_TRUE(framesCome(3));
    // The terminal stays and nobody answers; then the unit is switched on again.
    unit->signal(SIGSTOP);
    ASSERT_TRUE(lost());
    EXPECT_EQ(status().title, "Connecting...");
    unit->signal(SIGHUP);
    unit->signal(SIGCONT);
    EXPECT_TRUE(back());
}

TEST_F(AdapterFlight, AProgrammingRunThatTheAdapterSwallowsEndsAsFailedAndTheLinkComesBack) {
    start({"--vanish-writes", "30"});
    const std::string calibration = folder.path("car.ZQ4OA");
    std::filesystem::copy_file(anySample(), calibration);
    ASSERT_TRUE(program->open(calibration));
    program->commands.programming.programOrb();
    EXPECT_TRUE(
        Program::waitFor([&] { return program->boxShown("The BIN program operation failed."); }, patienceMs));
    EXPECT_TRUE(back());
}

}  // namespace
}  // namespace zentaq
