#include "sim/simulator.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <thread>

#include "base/errors.h"
#include "sim/memory_file.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

namespace fs = std::filesystem;
using namespace test;
using Clock = std::chrono::steady_clock;

// A program's end of the line. Waits at most five seconds for a reply.
class Line {
 public:
    explicit Line(const std::string& path) : port_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_TRUE(port_.valid()) << path;
    }
    Bytes ask(const Bytes& command, std::size_t replyLength) {
        EXPECT_EQ(::write(port_.get(), command.data(), command.size()), static_cast<ssize_t>(command.size()));
        Bytes reply;
        while (reply.size() < replyLength) {
            pollfd watched{port_.get(), POLLIN, 0};
            if (::poll(&watched, 1, 5000) <= 0) break;
            std::uint8_t buffer[256];
            const auto count = ::read(port_.get(), buffer, sizeof buffer);
            if (count <= 0) break;
            reply.insert(reply.end(), buffer, buffer + count);
        }
        return reply;
    }
    Bytes ask(std::string_view command, std::size_t replyLength) {
        return ask(bytesOf(command), replyLength);
    }

    bool hungUp() {
        pollfd watched{port_.get(), POLLIN, 0};
        return ::poll(&watched, 1, 5000) == 1 && (watched.revents & POLLHUP) != 0;
    }

 private:
    FileDescriptor port_;
};

// A simulator that serves in the background until the object goes.
class Running {
 public:
    explicit Running(const SimulatorOptions& options)
        : stop_(::eventfd(0, EFD_CLOEXEC)),
          simulator_(options),
          thread_([this] { simulator_.run(stop_.get(), power_.get()); }) {}
    ~Running() {
        ::eventfd_write(stop_.get(), 1);
        thread_.join();
    }
    void cyclePower() { ::eventfd_write(power_.get(), 1); }
    Simulator& operator*() { return simulator_; }
    Simulator* operator->() { return &simulator_; }

 private:
    FileDescriptor stop_;
    FileDescriptor power_{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
    Simulator simulator_;
    std::thread thread_;
};

SimulatorOptions linkedIn(const TemporaryFolder& folder) {
    SimulatorOptions options;
    options.link = folder.path() / "unit";
    return options;
}

std::chrono::nanoseconds wireTime(int bytes) {
    return std::chrono::nanoseconds(bytes * 10'000'000'000LL / 38400);
}

TEST(Simulator, IdentifiesItselfOverTheTerminal) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.serial = 209999;  // 0x0003344F
    options.calibrationName = "TRACK DAY";
    Running simulator(options);
    Line line(simulator->portPath());
    // 55 + 03 + 34 + 4F = DB
    EXPECT_EQ(line.ask("E", 8), (Bytes{0xFA, 0xA5, 0x55, 0x00, 0x03, 0x34, 0x4F, 0xDB}));
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 12}), "TRACK DAY");
}

TEST(Simulator, AllByteValuesPassTheTerminalUnchanged) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.baud = 0;
    options.calibrationName = std::string("\x03\x04\x0a\x0d\x11\x13\x1a\x7f\xff", 9);
    Running simulator(options);
    Line line(simulator->portPath());
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 12}), *options.calibrationName);
    EXPECT_EQ(textOf(line.ask(Bytes{'Z', 0xFF}, 2)), "AX");
    EXPECT_EQ(textOf(line.ask(Bytes{'Z', 0x00}, 2)), "AX");
}

TEST(Simulator, ReplyIsNeverFasterThanTheWire) {
    const TemporaryFolder folder;
    Running simulator(linkedIn(folder));
    Line line(simulator->portPath());
    for (int i = 0; i < 5; ++i) {
        const auto start = Clock::now();
        ASSERT_EQ(line.ask("W", 65).size(), 65u);
        EXPECT_GE(Clock::now() - start, wireTime(1 + 65));
    }
    const auto start = Clock::now();
    ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
    EXPECT_GE(Clock::now() - start, wireTime(14 + 2));
}

TEST(Simulator, LineSurvivesAProgramThatClosesAndReopensIt) {
    const TemporaryFolder folder;
    Running simulator(linkedIn(folder));
    { EXPECT_EQ(Line(simulator->portPath()).ask("E", 8).size(), 8u); }
    { EXPECT_EQ(Line(simulator->portPath()).ask("E", 8).size(), 8u); }
}

TEST(Simulator, CableIsPulledWhenItEnds) {
    const TemporaryFolder folder;
    auto simulator = std::make_unique<Running>(linkedIn(folder));
    Line line((*simulator)->portPath());
    ASSERT_EQ(line.ask("E", 8).size(), 8u);
    simulator.reset();
    EXPECT_TRUE(line.hungUp());
}

TEST(Simulator, ChangeIsInTheMemoryFileWhenItsReplyIsThere) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    options.baud = 0;
    {
        Running simulator(options);
        ASSERT_EQ(readMemoryFile(*options.memoryFile, 2352)->at(34), 0);
        Line line(simulator->portPath());
        ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
        EXPECT_EQ(readMemoryFile(*options.memoryFile, 2352)->at(34), 0x80);
        ASSERT_EQ(textOf(line.ask("P1", 2)), "AX");
        for (int row = 0; row < 147; ++row) ASSERT_EQ(textOf(line.ask(imageRow(row, 5), 2)), "AX");
        ASSERT_EQ(textOf(line.ask(endRecord, 2)), "PN");
        EXPECT_EQ(readMemoryFile(*options.memoryFile, 2352)->at(34), 39);
    }
    Running again(options);
    Line line(again->portPath());
    const Bytes reply = line.ask("B", 39);
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(reply[3], (560 + 5) % 251);
}

TEST(Simulator, NameGivenOnTheCommandLineGoesIntoALoadedMemory) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    writeMemoryFile(*options.memoryFile, Bytes(2352, 'x'));
    options.calibrationName = "SECOND";
    const Simulator simulator(options);
    const auto content = readMemoryFile(*options.memoryFile, 2352);
    EXPECT_EQ(textOf({content->begin() + 558, content->begin() + 586}), "xxSECOND                  xx");
}

TEST(Simulator, MemoryFileOfAnotherSizeIsRefusedAndKept) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    std::ofstream(*options.memoryFile) << "something else";
    EXPECT_THROW(Simulator{options}, FileError);
    EXPECT_EQ(fs::file_size(*options.memoryFile), 14u);
    EXPECT_FALSE(fs::is_symlink(*options.link));
}

TEST(Simulator, AnnouncesItselfInThePortsFolderByModelAndSerial) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    const fs::path link = folder.path() / "zentaq4" / "ports" / "orb-a-200007";
    {
        SimulatorOptions options;
        options.serial = 200007;
        Running simulator(options);
        EXPECT_EQ(simulator->linkPath(), link);
        EXPECT_EQ(fs::read_symlink(link), simulator->portPath());
        EXPECT_EQ(Line(link.string()).ask("E", 8).size(), 8u);
    }
    EXPECT_FALSE(fs::is_symlink(link));
}

TEST(Simulator, EveryModelAnswersUnderItsOwnNameInThePortsFolder) {
    const TemporaryFolder folder;
    const ScopedVariable variable("XDG_RUNTIME_DIR", folder.path().c_str());
    const fs::path ports = folder.path() / "zentaq4" / "ports";
    struct Announced {
        const char* model;
        const char* link;
    };
    for (const Announced& row : {Announced{"A", "orb-a-200001"}, Announced{"A 6/12", "orb-a612-200002"},
                                 Announced{"Ar", "orb-ar-200003"}, Announced{"l", "orb-l-300001"},
                                 Announced{"C", "orb-c-350001"}, Announced{"D", "orb-d-700001"},
                                 Announced{"d6", "orb-d6-750001"}, Announced{"pzk2", "pzk-2-500001"}}) {
        SimulatorOptions options;
        options.model = row.model;
        options.baud = 0;
        Running simulator(options);
        ASSERT_EQ(simulator->linkPath(), ports / row.link);
        EXPECT_EQ(Line((ports / row.link).string()).ask("E", 8).size(), 8u) << row.model;
    }
}

TEST(Simulator, SerialNumberOrFirmwareOfAnotherKindIsRefusedUnlessAskedFor) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
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

TEST(Simulator, MemoryFolderHoldsAFileForEachUnit) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path();
    { const Simulator simulator(options); }
    options.model = "PZK-2";
    { const Simulator simulator(options); }
    EXPECT_EQ(fs::file_size(folder.path() / "orb-a-200001.mem"), 2352u);
    EXPECT_EQ(fs::file_size(folder.path() / "pzk-2-500001.mem"), 1024u);
}

TEST(Simulator, MemoryOfAnotherKindIsRefused) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    { const Simulator simulator(options); }
    options.model = "PZK-2";
    EXPECT_THROW(Simulator{options}, FileError);
}

TEST(Simulator, PowerCycleTakesBackWhatWasNotStored) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    options.baud = 0;
    Running simulator(options);
    Line line(simulator->portPath());
    ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
    ASSERT_EQ(readMemoryFile(*options.memoryFile, 2352)->at(34), 0x80);
    simulator.cyclePower();
    const auto byte34 = [&] { return readMemoryFile(*options.memoryFile, 2352)->at(34); };
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (byte34() != 0 && Clock::now() < deadline) std::this_thread::yield();
    EXPECT_EQ(byte34(), 0);
    EXPECT_EQ(line.ask("E", 8).size(), 8u);
}

TEST(Simulator, RefusedLineOfProgrammingIsAFaultOfTheLine) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.baud = 0;
    options.faults = {"refuse@line#3"};
    Running simulator(options);
    Line line(simulator->portPath());
    ASSERT_EQ(textOf(line.ask("P1", 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(0, 5), 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(1, 5), 2)), "AX");
    EXPECT_EQ(textOf(line.ask(imageRow(2, 5), 2)), "AR");
}

TEST(Simulator, LateReplyComesLate) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.faults = {"late=120@E"};
    Running simulator(options);
    Line line(simulator->portPath());
    const auto start = Clock::now();
    ASSERT_EQ(line.ask("E", 8).size(), 8u);
    EXPECT_GE(Clock::now() - start, std::chrono::milliseconds(120));
}

TEST(Simulator, CableThatWasPulledComesBackUnderTheSameName) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.baud = 0;
    options.faults = {"hang-up=50@S#1"};
    Running simulator(options);
    {
        Line line(simulator->portPath());
        ASSERT_EQ(textOf(line.ask("P2S10411228048", 2)), "AX");
        EXPECT_TRUE(line.ask("S", 0).empty());
        EXPECT_TRUE(line.hungUp());
    }
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (!fs::exists(*options.link) && Clock::now() < deadline) std::this_thread::yield();
    ASSERT_TRUE(fs::exists(*options.link));
    Line again(options.link->string());
    EXPECT_EQ(again.ask("E", 8).size(), 8u);
}

TEST(Simulator, WrongFaultIsRefused) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.faults = {"thunder"};
    EXPECT_THROW(Simulator{options}, Failure);
}

TEST(Simulator, UnknownModelIsRefused) {
    SimulatorOptions options;
    options.model = "Q";
    EXPECT_THROW(Simulator{options}, Failure);
}

TEST(Simulator, CodesOfTheCommandLineAreSet) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.codes = {21, 128};
    Running simulator(options);
    const Bytes reply = Line(simulator->portPath()).ask("T", 16);
    ASSERT_EQ(reply.size(), 16u);
    EXPECT_EQ(reply[4], 0xFE);
    EXPECT_EQ(reply[14], 0x7F);
}

TEST(Simulator, FailureIsToldAndEndsWithExitCodeOne) {
    SimulatorOptions options;
    options.model = "Q";
    std::ostringstream out;
    std::ostringstream errors;
    EXPECT_EQ(runSimulatorUntilSignal(options, out, errors), 1);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(errors.str(),
              "zentaq-sim: There is no unit \"Q\": the models are A, A 6/12, A r, L, C, D, D6, PZK-2\n");
}

// A simulator in a process of its own that lives no longer than the object.
class Child {
 public:
    explicit Child(const SimulatorOptions& options) {
        int pipe[2];
        EXPECT_EQ(::pipe(pipe), 0);
        process_ = ::fork();
        EXPECT_GE(process_, 0);
        if (process_ == 0) {
            std::ofstream out("/dev/fd/" + std::to_string(pipe[1]));
            std::ostringstream errors;
            ::_exit(runSimulatorUntilSignal(options, out, errors));
        }
        ::close(pipe[1]);
        output_.open("/dev/fd/" + std::to_string(pipe[0]));
        ::close(pipe[0]);
    }
    ~Child() {
        if (process_ > 0) endedBy(SIGKILL);
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    std::string said() {
        std::string line;
        std::getline(output_, line);
        return line;
    }
    void send(int signal) const { ::kill(process_, signal); }
    /// The exit code; nothing when it did not end by itself.
    std::optional<int> endedBy(int signal) {
        send(signal);
        int status = -1;
        EXPECT_EQ(::waitpid(process_, &status, 0), process_);
        process_ = 0;
        return WIFEXITED(status) ? std::optional(WEXITSTATUS(status)) : std::nullopt;
    }

 private:
    pid_t process_ = 0;
    std::ifstream output_;
};

TEST(SimulatorSignals, PowerSignalTakesBackWhatWasNotStored) {
    const TemporaryFolder folder;
    SimulatorOptions options = linkedIn(folder);
    options.memoryFile = folder.path() / "unit.mem";
    options.baud = 0;
    Child child(options);
    ASSERT_EQ(child.said(), "ready " + options.link->string());
    Line port(options.link->string());
    ASSERT_EQ(textOf(port.ask("P2S10411228048", 2)), "AX");
    ASSERT_EQ(readMemoryFile(*options.memoryFile, 2352)->at(34), 0x80);
    child.send(SIGUSR1);
    const auto byte34 = [&] { return readMemoryFile(*options.memoryFile, 2352)->at(34); };
    const auto deadline = Clock::now() + std::chrono::seconds(5);
    while (byte34() != 0 && Clock::now() < deadline) std::this_thread::yield();
    EXPECT_EQ(byte34(), 0);
    EXPECT_EQ(port.ask("E", 8).size(), 8u);
    EXPECT_EQ(child.endedBy(SIGTERM), 0);
}

class SimulatorProcess : public testing::TestWithParam<int> {};

TEST_P(SimulatorProcess, SaysReadyAnswersAndEndsCleanlyOnASignal) {
    const TemporaryFolder folder;
    const SimulatorOptions options = linkedIn(folder);
    Child child(options);
    EXPECT_EQ(child.said(), "ready " + options.link->string());
    EXPECT_EQ(child.said(), "ORB A, serial number 200001, firmware ZQA-405099");
    Line port(options.link->string());
    EXPECT_EQ(port.ask("E", 8).size(), 8u);
    EXPECT_EQ(child.endedBy(GetParam()), 0);
    EXPECT_FALSE(fs::is_symlink(*options.link));
    EXPECT_TRUE(port.hungUp());
}

INSTANTIATE_TEST_SUITE_P(Signals, SimulatorProcess, testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
}  // namespace zentaq::sim
