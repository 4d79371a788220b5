// The whole program on adapters as they are: bytes in lumps of 16 ms, large writes that are lost, a cable
// that is pulled and comes back under another name, a unit whose power is cycled.
#include <gmock/gmock.h>

#include <csignal>
#include <set>

#include "platform/port_list.h"
#include "system/flight_bench.h"

namespace zentaq {
namespace {

using testing::HasSubstr;

class AdapterFlight : public FlightBench {
 protected:
    const std::string ports = folder.path("ports");

    void start(const QStringList& options, const char* updates = "100") {
        std::filesystem::create_directory(ports);
        link = ports + "/unit";
        startUnit(options);
        program = std::make_unique<Program>(
            application, folder.path("app"),
            PosixSerialPort::PortSource([this] { return orderedPorts(simulatedPorts(ports), {}); }));
        program->stored().set("System", "ADUR", updates);
        program->kernel.load();
        ASSERT_TRUE(found());
    }
    bool back() { return found() && framesCome(3); }
    /// So many frames show nothing but an engine at idle.
    void expectIdle(unsigned frames) {
        std::set<float> speeds;
        const auto before = program->session.live.frames;
        comes([&] {
            speeds.insert(program->session.live.RPM);
            return program->session.live.frames > before + frames;
        });
        EXPECT_GT(*speeds.begin(), 300);
        EXPECT_LT(*speeds.rbegin(), 3000);
        EXPECT_TRUE(program->identified());
    }
    const LinkStatus& status() const { return program->session.linkDisplay.status(); }
};

TEST_F(AdapterFlight, FramesInLumpsOf16MillisecondsAreDecodedWhole) {
    start({"--burst", "16", "--engine", "idle"});
    ASSERT_TRUE(framesCome(50));
    expectIdle(100);
    EXPECT_THAT(status().frameTimes, HasSubstr(" frames/s: unit "));
}

TEST_F(AdapterFlight, NarrowFramesWithoutHeadAndSumStayInStepThroughLumps) {
    start({"--burst", "16", "--engine", "idle", "--firmware", "ZQA-404099"});
    ASSERT_FALSE(program->session.link.linked().WideMonitor);
    ASSERT_TRUE(framesCome(20));
    expectIdle(150);
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
    ASSERT_TRUE(program->open(calibration));
    program->commands.programming.programOrb();
    EXPECT_TRUE(told("The BIN program operation failed."));
    EXPECT_TRUE(back());
}

}  // namespace
}  // namespace zentaq
