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
          thread_([this] { simulator_.run(stop_.get()); }) {}
    ~Running() {
        ::eventfd_write(stop_.get(), 1);
        thread_.join();
    }
    Simulator& operator*() { return simulator_; }
    Simulator* operator->() { return &simulator_; }

 private:
    FileDescriptor stop_;
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
    EXPECT_EQ(errors.str(), "zentaq-sim: There is no unit \"Q\"\n");
}

class SimulatorProcess : public testing::TestWithParam<int> {};

TEST_P(SimulatorProcess, SaysReadyAnswersAndEndsCleanlyOnASignal) {
    const TemporaryFolder folder;
    const SimulatorOptions options = linkedIn(folder);
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        std::ofstream out("/dev/fd/" + std::to_string(pipe[1]));
        std::ostringstream errors;
        ::_exit(runSimulatorUntilSignal(options, out, errors));
    }
    ::close(pipe[1]);
    std::ifstream output("/dev/fd/" + std::to_string(pipe[0]));
    std::string line;
    std::getline(output, line);
    EXPECT_EQ(line, "ready " + options.link->string());
    Line port(options.link->string());
    EXPECT_EQ(port.ask("E", 8).size(), 8u);
    ::kill(child, GetParam());
    int status = -1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(fs::is_symlink(*options.link));
    EXPECT_TRUE(port.hungUp());
    ::close(pipe[0]);
}

INSTANTIATE_TEST_SUITE_P(Signals, SimulatorProcess, testing::Values(SIGTERM, SIGINT, SIGHUP));

}  // namespace
}  // namespace zentaq::sim
