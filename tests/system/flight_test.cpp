// Program and simulated unit as two processes over a real terminal at the true wire pace.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "system/flight_bench.h"

namespace zentaq {
namespace {

using Flight = FlightBench;

TEST_F(Flight, AWholeFlightFromIdentificationToTheReturnOfTheCable) {
    const std::string runningFile = folder.path("running.bin");
    startUnit({"--serial", "200042", "--running-memory", QString::fromStdString(runningFile)});
    startProgram();
    Session& session = program->session;

    // The link finds the unit by itself.
    ASSERT_TRUE(found());
    EXPECT_EQ(session.link.linked().SerialNumber, 200042);
    EXPECT_EQ(session.link.linked().LinkedUnitKind, 3);
    EXPECT_EQ(session.linkDisplay.status().serialNumber, "200042");
    EXPECT_TRUE(session.link.linked().WideMonitor);
    ASSERT_TRUE(program->open(calibration));
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());

    // Ten seconds of live frames; the engine moves.
    std::set<float> speeds;
    const auto framesBefore = session.live.frames;
    Program::waitFor(
        [&] {
            speeds.insert(session.live.RPM);
            return false;
        },
        10'000);
    EXPECT_GT(session.live.frames - framesBefore, 100u);
    EXPECT_GT(speeds.size(), 20u);
    EXPECT_GT(*speeds.rbegin(), 500);

    // A change of one VE cell is one byte of the unit's memory: 12 + 50 = 62 at 912 + 37.
    ASSERT_TRUE(session.currentUnitObject().set("VE", 12.0, 37));
    EXPECT_TRUE(comes([&] {
        const auto memory = bytesOf(runningFile);
        return memory.size() > 949 && memory[949] == 62;
    }));

    // Programming: 147 lines and the unit's memory is the image.
    program->commands.programming.programOrb();
    EXPECT_TRUE(session.link.transfer().active() || session.link.ring().count() > 0);
    ASSERT_TRUE(told("You have successfully programmed your ORB unit."));
    const std::vector<std::uint8_t> image = session.currentUnitObject().memoryBytes();
    ASSERT_EQ(image.size(), 147u * 16u);
    const std::vector<std::uint8_t> memory = bytesOf(memoryFile);
    ASSERT_GE(memory.size(), image.size());
    EXPECT_TRUE(std::equal(image.begin(), image.end(), memory.begin()));
    EXPECT_FALSE(session.link.transfer().active());

    // The file is whole and opens again.
    session.markModified();
    program->commands.saves.save();
    ASSERT_TRUE(told("Data has been saved Successfully!"));
    EXPECT_EQ(std::filesystem::file_size(calibration), 11324u);
    ASSERT_TRUE(program->open(calibration));
    EXPECT_EQ(session.currentUnitObject().get("VE", 37), 12);

    // The cable is pulled: the link goes down and says so.
    unit->stop();
    ASSERT_TRUE(comes([&] { return session.link.linked().LinkedUnitKind == 0; }));
    ASSERT_TRUE(comes([&] { return session.linkDisplay.status().noConnectText == "Connecting..."; }));
    EXPECT_FALSE(session.currentUnitObject().ONFLY_MODE());

    // It comes back by itself, and changes reach the unit again.
    startUnit({"--serial", "200042"});
    ASSERT_TRUE(found());
    EXPECT_TRUE(session.currentUnitObject().ONFLY_MODE());
    EXPECT_TRUE(framesCome(21));

    // The log tells the story.
    program->kernel.System_Shutdown(true);
    const std::string log = program->log();
    for (const char* line :
         {"User Interface Initialized.", "Connection with ORB Established.", "ORB :: Firmware:",
          "Loaded Calibration: ", "ORB: Upload Successful, Program Verified!", "System Shutdown!"}) {
        EXPECT_NE(log.find(line), std::string::npos) << line;
    }
}

}  // namespace
}  // namespace zentaq
