#include "sim/simulator.h"

#include <sys/eventfd.h>

#include <fstream>
#include <iostream>
#include <iterator>
#include <optional>
#include <sstream>
#include <thread>

#include "base/errors.h"
#include "sim/firmware_file.h"
#include "sim/memory_file.h"
#include "simulator_process.h"

namespace zentaq::sim {
namespace {

namespace fs = std::filesystem;
using namespace test;
using Clock = std::chrono::steady_clock;

// A simulator that serves in the background until the object goes.
class Running {
 public:
    explicit Running(const SimulatorOptions& options)
        : simulator_(options), thread_([this] { simulator_.run({.stop = stop_.get()}); }) {}
    ~Running() {
        ::eventfd_write(stop_.get(), 1);
        thread_.join();
    }
    const Simulator& operator*() const { return simulator_; }

 private:
    FileDescriptor stop_{::eventfd(0, EFD_CLOEXEC)};
    Simulator simulator_;
    std::thread thread_;
};

/// Waits at most five seconds for something to become true.
template <typename Condition>
bool comesTrue(Condition&& condition) {
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (!condition()) {
        if (Clock::now() > deadline) return false;
        std::this_thread::yield();
    }
    return true;
}

std::chrono::nanoseconds wireTime(int bytes) {
    return std::chrono::nanoseconds(bytes * 10'000'000'000LL / 38400);
}

/// What a unit in a folder of its own is told before it runs: its link, no pacing, and the file of its
/// running memory.
class SimulatorTest : public testing::Test {
 protected:
    SimulatorTest() {
        options.link = folder.path() / "unit";
        options.runningFile = folder.path() / "unit.running";
        options.baud = 0;
    }
    /// Runs the unit in the background until the test ends.
    Line begin() {
        simulator.emplace(options);
        return Line((**simulator).portPath());
    }
    static int byte34(const std::optional<fs::path>& memory) { return readMemoryFile(*memory, 2352)->at(34); }
    int running34() const { return byte34(options.runningFile); }
    std::string link() const { return options.link->string(); }

    const TemporaryFolder folder;
    SimulatorOptions options;
    std::optional<Running> simulator;
};

TEST_F(SimulatorTest, IdentifiesItselfOverTheTerminal) {
    options.serial = 209999;  // 0x0003344F
    options.calibrationName = "TRACK DAY";
    Line line = begin();
    // 55 + 03 + 34 + 4F = DB
    EXPECT_EQ(line.ask("E", 8), (Bytes{0xFA, 0xA5, 0x55, 0x00, 0x03, 0x34, 0x4F, 0xDB}));
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 12}), "TRACK DAY");
}

TEST_F(SimulatorTest, AllByteValuesPassTheTerminalUnchanged) {
    options.calibrationName = std::string("\x03\x04\x0a\x0d\x11\x13\x1a\x7f\xff", 9);
    Line line = begin();
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 12}), *options.calibrationName);
    EXPECT_EQ(textOf(line.ask(Bytes{'Z', 0xFF}, 2)), "AX");
    EXPECT_EQ(textOf(line.ask(Bytes{'Z', 0x00}, 2)), "AX");
}

TEST_F(SimulatorTest, ReplyIsNeverFasterThanTheWire) {
    options.baud = 38400;
    Line line = begin();
    for (int i = 0; i < 5; ++i) {
        const auto start = Clock::now();
        ASSERT_EQ(line.ask("W", 65).size(), 65u);
        EXPECT_GE(Clock::now() - start, wireTime(1 + 65));
    }
    const auto start = Clock::now();
    ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
    EXPECT_GE(Clock::now() - start, wireTime(14 + 2));
}

TEST_F(SimulatorTest, LineSurvivesAProgramThatClosesAndReopensIt) {
    { EXPECT_EQ(begin().ask("E", 8).size(), 8u); }
    { EXPECT_EQ(Line((**simulator).portPath()).ask("E", 8).size(), 8u); }
}

TEST_F(SimulatorTest, CableIsPulledWhenItEnds) {
    Line line = begin();
    ASSERT_EQ(line.ask("E", 8).size(), 8u);
    simulator.reset();
    EXPECT_TRUE(line.hungUp());
}

TEST_F(SimulatorTest, WhatIsForGoodIsInTheMemoryFileWhenItsReplyIsThere) {
    options.memoryFile = folder.path() / "unit.mem";
    {
        Line line = begin();
        const auto stored = [&] { return byte34(options.memoryFile); };
        ASSERT_EQ(stored(), 0);
        ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
        EXPECT_EQ(running34(), 0x80);
        EXPECT_EQ(stored(), 0);
        ASSERT_EQ(textOf(line.ask("S", 2)), "AX");
        EXPECT_EQ(stored(), 0x80);
        ASSERT_EQ(textOf(line.ask("P1", 2)), "AX");
        for (int row = 0; row < 147; ++row) ASSERT_EQ(textOf(line.ask(imageRow(row, 5), 2)), "AX");
        ASSERT_EQ(textOf(line.ask(endRecord, 2)), "PN");
        EXPECT_EQ(stored(), 39);
        EXPECT_EQ(running34(), 39);
    }
    const Bytes reply = begin().ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(reply[3], (560 + 5) % 251);
}

TEST_F(SimulatorTest, ChangeThatWasNotStoredDoesNotSurviveARestart) {
    options.memoryFile = folder.path() / "unit.mem";
    const auto change = [&](bool store) {
        Line line = begin();
        ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
        if (store) {
            ASSERT_EQ(textOf(line.ask("S", 2)), "AX");
        }
        simulator.reset();
    };
    const auto afterRestart = [&] {
        const Simulator again(options);
        return running34();
    };
    change(false);
    EXPECT_EQ(afterRestart(), 0);
    change(true);
    EXPECT_EQ(afterRestart(), 0x80);
}

TEST_F(SimulatorTest, NameGivenOnTheCommandLineGoesIntoALoadedMemory) {
    options.memoryFile = folder.path() / "unit.mem";
    writeMemoryFile(*options.memoryFile, Bytes(2352, 'x'));
    options.calibrationName = "SECOND";
    const Simulator unit(options);
    const auto content = readMemoryFile(*options.memoryFile, 2352);
    EXPECT_EQ(textOf({content->begin() + 558, content->begin() + 586}), "xxSECOND                  xx");
}

TEST_F(SimulatorTest, MemoryFileOfAnotherSizeIsRefusedAndKept) {
    options.memoryFile = folder.path() / "unit.mem";
    std::ofstream(*options.memoryFile) << "something else";
    EXPECT_THROW(Simulator{options}, FileError);
    EXPECT_EQ(fs::file_size(*options.memoryFile), 14u);
    EXPECT_FALSE(fs::is_symlink(*options.link));
}

TEST_F(SimulatorTest, AnnouncesItselfInThePortsFolderByModelAndSerial) {
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    const fs::path announced = folder.path() / "zentaq4" / "ports" / "orb-a-200007";
    options.link.reset();
    options.serial = 200007;
    begin();
    EXPECT_EQ((**simulator).linkPath(), announced);
    EXPECT_EQ(fs::read_symlink(announced), (**simulator).portPath());
    EXPECT_EQ(Line(announced.string()).ask("E", 8).size(), 8u);
    simulator.reset();
    EXPECT_FALSE(fs::is_symlink(announced));
}

TEST_F(SimulatorTest, EveryModelAnswersUnderItsOwnNameInThePortsFolder) {
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    const fs::path ports = folder.path() / "zentaq4" / "ports";
    struct Announced {
        const char* model;
        const char* link;
    };
    options.link.reset();
    for (const Announced& row : {Announced{"A", "orb-a-200001"}, Announced{"A 6/12", "orb-a612-200002"},
                                 Announced{"Ar", "orb-ar-200003"}, Announced{"l", "orb-l-300001"},
                                 Announced{"C", "orb-c-350001"}, Announced{"D", "orb-d-700001"},
                                 Announced{"d6", "orb-d6-750001"}, Announced{"pzk2", "pzk-2-500001"}}) {
        options.model = row.model;
        begin();
        ASSERT_EQ((**simulator).linkPath(), ports / row.link);
        EXPECT_EQ(Line((ports / row.link).string()).ask("E", 8).size(), 8u) << row.model;
    }
}

TEST_F(SimulatorTest, SerialNumberOrFirmwareOfAnotherKindIsRefusedUnlessAskedFor) {
    options.model = "L";
    options.serial = 200001;
    EXPECT_THROW(Simulator{options}, Failure);
    options.serial.reset();
    options.firmware = "ZQA-405099";
    EXPECT_THROW(Simulator{options}, Failure);
    EXPECT_FALSE(fs::is_symlink(*options.link));
    options.anyIdentity = true;
    EXPECT_NO_THROW(Simulator{options});
}

TEST_F(SimulatorTest, MemoryFolderHoldsAFileForEachUnit) {
    options.memoryFile = folder.path();
    { const Simulator unit(options); }
    options.model = "PZK-2";
    { const Simulator unit(options); }
    EXPECT_EQ(fs::file_size(folder.path() / "orb-a-200001.mem"), 2352u);
    EXPECT_EQ(fs::file_size(folder.path() / "pzk-2-500001.mem"), 1024u);
}

TEST_F(SimulatorTest, MemoryOfAnotherKindIsRefused) {
    options.memoryFile = folder.path() / "unit.mem";
    { const Simulator unit(options); }
    options.model = "PZK-2";
    EXPECT_THROW(Simulator{options}, FileError);
}

TEST_F(SimulatorTest, RefusedLineOfProgrammingIsAFaultOfTheLine) {
    options.faults = {"refuse@line#3"};
    Line line = begin();
    ASSERT_EQ(textOf(line.ask("P1", 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(0, 5), 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(1, 5), 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(2, 5), 2)), "AR");
}

TEST_F(SimulatorTest, LateReplyComesLate) {
    options.faults = {"late=120@E"};
    Line line = begin();
    const auto start = Clock::now();
    ASSERT_EQ(line.ask("E", 8).size(), 8u);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(120));
}

TEST_F(SimulatorTest, CableThatWasPulledComesBackUnderTheSameName) {
    options.faults = {"hang-up=50@S#1"};
    {
        Line line = begin();
        ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
        EXPECT_TRUE(line.ask("S", 0).empty());
        EXPECT_TRUE(line.hungUp());
    }
    ASSERT_TRUE(comesTrue([&] { return fs::exists(*options.link); }));
    Line again(link());
    EXPECT_EQ(again.ask("E", 8).size(), 8u);
}

TEST_F(SimulatorTest, CableComesBackUnderOtherNamesWhenToldTo) {
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    const fs::path ports = folder.path() / "zentaq4" / "ports";
    options.link.reset();
    options.serial = 1042;
    options.renames = true;
    options.faults = {"hang-up=10@S"};
    begin();
    for (const char* name : {"orb-a-1042", "orb-a-1042.2", "orb-a-1042.3"}) {
        ASSERT_TRUE(comesTrue([&] { return fs::exists(ports / name); })) << name;
        EXPECT_EQ(std::distance(fs::directory_iterator(ports), fs::directory_iterator()), 1) << name;
        Line line((ports / name).string());
        EXPECT_EQ(line.ask("E", 8).size(), 8u) << name;
        EXPECT_TRUE(line.ask("S", 0).empty());
        EXPECT_TRUE(line.hungUp()) << name;
    }
}

TEST_F(SimulatorTest, AdapterVanishesOverALongWriteAndComesBack) {
    options.adapter.vanishWrites = 20;
    {
        Line line = begin();
        EXPECT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");  // 14 bytes
        const auto start = Clock::now();
        EXPECT_TRUE(line.ask(imageRow(0, 1), 0).empty());  // 42 bytes
        EXPECT_TRUE(line.hungUp());
        ASSERT_TRUE(comesTrue([&] { return fs::exists(*options.link); }));
        EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(700));
    }
    EXPECT_EQ(Line(link()).ask("E", 8).size(), 8u);
}

TEST_F(SimulatorTest, AdapterLosesTheRestOfALongWrite) {
    options.adapter.dropWrites = 4;
    Line line = begin();
    EXPECT_EQ(line.ask("EEEEEE", 4 * 8).size(), 32u);
    EXPECT_EQ(textOf(line.ask("A", 2)), "AX") << "nothing of a fifth reply stands before it";
}

TEST_F(SimulatorTest, AdapterWithATimerKeepsAReplyUntilItFires) {
    options.adapter.burst = Delay(200);
    Line line = begin();
    ASSERT_EQ(line.ask("E", 8).size(), 8u);  // the timer has just fired
    const auto start = Clock::now();
    ASSERT_EQ(line.ask("E", 8).size(), 8u);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(100));
}

TEST_F(SimulatorTest, UnitThatResetsIsSilentWhileItBootsAndForgetsWhatWasNotStored) {
    options.faults = {"reset=300@A"};
    Line line = begin();
    ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
    EXPECT_EQ(textOf(line.ask("A", 1)), "A");
    const auto start = Clock::now();
    EXPECT_EQ(running34(), 0);
    Bytes reply;
    // Asked again and again; what comes is the answer to the first that is heard.
    while (reply.empty() && Clock::now() - start < std::chrono::seconds(5)) reply = line.askFor("E", 20);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(250));
    EXPECT_EQ(reply.at(0), 0xFA);
}

TEST_F(SimulatorTest, UnitAtAnotherRateUnderstandsNothing) {
    options.faults = {"noise@P2"};
    Line line = begin();
    EXPECT_FALSE(line.ask("P2S10411228048", 1).empty());
    EXPECT_EQ(running34(), 0);
}

TEST_F(SimulatorTest, PinThatIsHeldShowsInTheReply) {
    options.pins = {"9=201"};
    const Bytes reply = begin().ask("I", 21);
    ASSERT_EQ(reply.size(), 21u);
    EXPECT_EQ(reply[11], 201);  // pin 1 is byte 3
    EXPECT_TRUE(isSealed(reply));
}

TEST_F(SimulatorTest, PinThatTheUnitHasNotAndAFaultThatIsNoneAreRefused) {
    for (const char* pin : {"10=1", "0=1", "3=256", "3=-1", "3", "=4", "3=4x", "x=1", ""}) {
        options.pins = {pin};
        EXPECT_THROW(Simulator{options}, Failure) << pin;
    }
    options.pins.clear();
    options.faults = {"thunder"};
    EXPECT_THROW(Simulator{options}, Failure);
}

TEST_F(SimulatorTest, FirmwareAndItsStateOutliveTheProgram) {
    options.memoryFile = folder.path() / "unit.mem";
    options.upgradeMode = true;
    const std::string state = options.memoryFile->string() + ".firmware";
    const auto stateLine = [&] {
        std::ifstream file(state);
        std::string line;
        std::getline(file, line);
        return line;
    };
    std::istringstream file(simulatedFirmware("ZQA-505100"));
    std::string text;
    // An ORB A takes its lines without an end.
    const auto nextLine = [&] {
        const bool there = static_cast<bool>(std::getline(file, text));
        if (!text.empty() && text.back() == '\r') text.pop_back();
        return there;
    };
    nextLine();
    {
        Line line = begin();
        EXPECT_FALSE(fs::exists(state)) << "nothing has been programmed yet";
        ASSERT_EQ(textOf(line.ask("P3", 2)), "AX");
        ASSERT_EQ(textOf(line.ask(text, 2)), "AX");
        EXPECT_EQ(stateLine(), "missing");
    }
    options.upgradeMode = false;
    {
        Line line = begin();
        EXPECT_EQ((**simulator).description(), "ORB A, serial number 200001, no firmware");
        EXPECT_TRUE(line.askFor("E", 50).empty());
        ASSERT_EQ(textOf(line.ask("P3", 2)), "AX");
        std::string reply = textOf(line.ask(text, 2));
        while (reply == "AX" && nextLine()) reply = textOf(line.ask(text, 2));
        EXPECT_EQ(reply, "PN");
        EXPECT_EQ(stateLine(), "programmed ZQA-505100");
        EXPECT_TRUE(line.askFor("E", 50).empty());
        EXPECT_NE(readMemoryFile(*options.memoryFile, 2352)->at(560), 0xFF);
    }
    Line line = begin();
    EXPECT_EQ(stateLine(), "running ZQA-505100");
    EXPECT_EQ(*readMemoryFile(*options.memoryFile, 2352), Bytes(2352, 0xFF));
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 27, reply.begin() + 37}), "ZQA-505100");
}

TEST_F(SimulatorTest, FirmwareStateOfAnotherKindIsRefused) {
    options.memoryFile = folder.path() / "unit.mem";
    std::ofstream(options.memoryFile->string() + ".firmware") << "running ZQL-407099\n";
    EXPECT_THROW(Simulator{options}, Failure);
}

TEST_F(SimulatorTest, FirmwareFileIsWrittenForTheModelAndItsFirmwareOnly) {
    options.firmware = "ZQA-505098";
    const fs::path file = folder.path() / "ZQA505098.nv3";
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(writeFirmwareFor(options, file, out, errors), 0);
    EXPECT_EQ(out.str(), file.string() + ": firmware ZQA-505098, for simulated units only\n");
    EXPECT_EQ(errors.str(), "");
    EXPECT_TRUE(fs::exists(file));
    options.firmware = "ZQL-407100";
    EXPECT_EQ(writeFirmwareFor(options, folder.path() / "ZQL407100.nv3", out, errors), 1);
    EXPECT_FALSE(fs::exists(folder.path() / "ZQL407100.nv3"));
    EXPECT_EQ(errors.str(),
              "zentaq-sim: A firmware text of the ORB A looks like ZQA-405099, not \"ZQL-407100\"\n");
}

TEST_F(SimulatorTest, CodesOfTheCommandLineAreSet) {
    options.codes = {21, 128};
    const Bytes reply = begin().ask("T", 16);
    ASSERT_EQ(reply.size(), 16u);
    EXPECT_EQ(reply[4], 0xFE);
    EXPECT_EQ(reply[14], 0x7F);
}

TEST_F(SimulatorTest, FailureIsToldAndEndsWithExitCodeOne) {
    const auto expectFailure = [&](const std::string& why) {
        std::ostringstream out;
        std::ostringstream errors;
        EXPECT_EQ(runSimulatorUntilSignal(options, out, errors), 1);
        EXPECT_EQ(out.str(), "");
        EXPECT_EQ(errors.str(), "zentaq-sim: " + why + "\n");
    };
    options.model = "Q";
    expectFailure("There is no unit \"Q\": the models are A, A 6/12, A r, L, C, D, D6, PZK-2");
    options.model = "A";
    options.engine = folder.path("gone.dat");
    expectFailure("There is no file " + options.engine + ": --engine takes idle, drive, dyno or a datalog");
    options.engine = folder.write("notes.dat", "my notes\n");
    expectFailure(options.engine +
                  " is no datalog: its first line does not begin with \"ZENTAQ 4.10 DATALOG\" or "
                  "\"ZENTAQ 4.5 DATALOG\"");
}

/// A simulator in a process of its own, on its link.
class SimulatorSignals : public SimulatorTest {
 protected:
    void SetUp() override {
        child.emplace([this] {
            std::ostringstream errors;
            return runSimulatorUntilSignal(options, std::cout, errors);
        });
        ASSERT_EQ(child->line(), "ready " + link());
        port.emplace(link());
    }
    std::optional<SimulatorProcess> child;
    std::optional<Line> port;
};

TEST_F(SimulatorSignals, HangUpSignalCyclesThePowerAndTheUnitGoesOn) {
    ASSERT_EQ(textOf(port->ask("P2S10411228048", 2)), "AX");
    ASSERT_EQ(running34(), 0x80);
    child->send(SIGHUP);
    EXPECT_TRUE(comesTrue([&] { return running34() == 0; }));
    EXPECT_EQ(port->ask("E", 8).size(), 8u);
    EXPECT_EQ(child->endedBy(SIGTERM), 0);
}

class RenamingSimulator : public SimulatorSignals {
 protected:
    RenamingSimulator() { options.renames = true; }
};

TEST_F(RenamingSimulator, FirstUserSignalUnplugsTheUnitAndItComesBack) {
    child->send(SIGUSR1);
    EXPECT_TRUE(port->hungUp());
    const std::string second = link() + ".2";
    ASSERT_TRUE(comesTrue([&] { return fs::exists(second); }));
    EXPECT_FALSE(fs::is_symlink(*options.link));
    EXPECT_EQ(Line(second).ask("E", 8).size(), 8u);
    EXPECT_EQ(child->endedBy(SIGTERM), 0);
    EXPECT_FALSE(fs::is_symlink(second));
}

TEST_F(SimulatorSignals, SecondUserSignalFlipsTheUpgradeSwitch) {
    ASSERT_EQ(textOf(port->ask("P3", 2)), "AR");
    child->send(SIGUSR2);
    EXPECT_TRUE(comesTrue([&] { return textOf(port->ask("P3", 2)) == "AX"; }));
    EXPECT_EQ(child->endedBy(SIGTERM), 0);
}

/// Ends when its terminal does. The simulator's standard streams are the terminal, which only this process
/// keeps.
TEST_F(SimulatorTest, EndOfItsTerminalEndsIt) {
    std::optional<PseudoTerminal> terminal(std::in_place);
    const pid_t process = ::fork();
    ASSERT_GE(process, 0);
    if (process == 0) {
        const int line = ::open(terminal->devicePath().c_str(), O_RDWR | O_NOCTTY);
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) ::dup2(line, standard);
        ::close(line);
        terminal.reset();
        std::ostringstream out;
        std::ostringstream errors;
        ::_exit(runSimulatorUntilSignal(options, out, errors));
    }
    const bool ready = comesTrue([&] { return fs::exists(*options.link); });
    terminal.reset();
    int status = -1;
    const bool ended = ready && comesTrue([&] { return ::waitpid(process, &status, WNOHANG) == process; });
    if (!ended) {
        ::kill(process, SIGKILL);
        ::waitpid(process, &status, 0);
    }
    EXPECT_TRUE(ready);
    EXPECT_TRUE(ended);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_FALSE(fs::is_symlink(*options.link));
}

TEST_F(SimulatorTest, EndOfTheParentEndsItWhenAskedFor) {
    options.withParent = true;
    const pid_t parent = ::fork();
    ASSERT_GE(parent, 0);
    if (parent == 0) {
        if (::fork() == 0) {
            std::ostringstream out;
            std::ostringstream errors;
            ::_exit(runSimulatorUntilSignal(options, out, errors));
        }
        ::_exit(comesTrue([&] { return fs::exists(*options.link); }) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(parent, &status, 0), parent);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "the unit was there";
    EXPECT_TRUE(comesTrue([&] { return !fs::is_symlink(*options.link); }));
}

class SignalledEnd : public SimulatorSignals, public testing::WithParamInterface<int> {};

TEST_P(SignalledEnd, SaysReadyAnswersAndEndsCleanlyOnASignal) {
    EXPECT_EQ(child->line(), "ORB A, serial number 200001, firmware ZQA-405099");
    EXPECT_EQ(port->ask("E", 8).size(), 8u);
    EXPECT_EQ(child->endedBy(GetParam()), 0);
    EXPECT_FALSE(fs::is_symlink(*options.link));
    EXPECT_TRUE(port->hungUp());
}

INSTANTIATE_TEST_SUITE_P(Signals, SignalledEnd, testing::Values(SIGTERM, SIGINT));

}  // namespace
}  // namespace zentaq::sim
