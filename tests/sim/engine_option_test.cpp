// What the simulator as a program makes of the word that names its engine.
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "sim/simulator.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

struct Outcome {
    int exitCode;
    std::string out;
    std::string errors;
};

Outcome startWith(const std::string& engine) {
    SimulatorOptions options;
    options.model = "A";
    options.engine = engine;
    std::ostringstream out;
    std::ostringstream errors;
    const int exitCode = runSimulatorUntilSignal(options, out, errors);
    return {exitCode, out.str(), errors.str()};
}

TEST(EngineOption, AMissingFileEndsWithOneAndItsName) {
    const TemporaryFolder folder;
    const std::string path = folder.path("gone.dat");
    const Outcome outcome = startWith(path);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.errors,
              "zentaq-sim: There is no file " + path + ": --engine takes idle, drive, dyno or a datalog\n");
}

TEST(EngineOption, AFileThatIsNoDatalogEndsWithOneAndTheReason) {
    const TemporaryFolder folder;
    const std::string path = folder.path("notes.dat");
    std::ofstream(path) << "my notes\n";
    const Outcome outcome = startWith(path);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors,
              "zentaq-sim: " + path +
                  " is no datalog: its first line does not begin with \"ZENTAQ 4.10 DATALOG\" or "
                  "\"ZENTAQ 4.5 DATALOG\"\n");
}

}  // namespace
}  // namespace zentaq::sim
