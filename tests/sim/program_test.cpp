// The real zentaq-sim: that its options reach the unit.
#include <sys/stat.h>

#include <fstream>
#include <optional>
#include <sstream>

#include "simulator_process.h"

namespace zentaq::sim {
namespace {

namespace fs = std::filesystem;
using namespace test;
using Words = std::vector<std::string>;

class Program : public SimulatorProcess {
 public:
    explicit Program(Words options) : SimulatorProcess([&] { return run(options); }) {}

 private:
    static int run(Words& words) {
        words.insert(words.begin(), ZENTAQ_APP_DIR "/zentaq-sim");
        std::vector<char*> pointers;
        for (std::string& word : words) pointers.push_back(word.data());
        pointers.push_back(nullptr);
        ::execv(pointers[0], pointers.data());
        return 127;
    }
};

/// A unit with these options, and the port on it.
class UnitProgram : public testing::Test {
 protected:
    void start(Words options) {
        const std::string link = (folder_.path() / "unit").string();
        options.insert(options.end(), {"--unit", "A", "--baud", "0", "--link", link});
        program_.emplace(options);
        ASSERT_TRUE(program_->ready());
        line_.emplace(link);
    }
    Bytes ask(std::string_view command, std::size_t length, int milliseconds = 5000) {
        return line_->ask(command, length, milliseconds);
    }

 private:
    TemporaryFolder folder_;
    std::optional<Program> program_;
    std::optional<Line> line_;
};

TEST_F(UnitProgram, FaultOptionsTakeTheRestOfTheWords) {
    start({"--refuse", "@A", "--refuse", "@K", "--silence", "@T#1", "--late", "1@E"});
    EXPECT_EQ(textOf(ask("A", 2)), "AR");
    EXPECT_EQ(textOf(ask("K", 2)), "AR");
    EXPECT_EQ(textOf(ask("S", 2)), "AX");
    EXPECT_TRUE(ask("T", 16, 50).empty());
    EXPECT_EQ(ask("T", 16).size(), 16u);
    EXPECT_EQ(ask("E", 8).size(), 8u);
}

TEST_F(UnitProgram, FaultOptionAloneStrikesEveryCommand) {
    start({"--refuse"});
    EXPECT_EQ(textOf(ask("A", 2)), "AR");
    EXPECT_EQ(textOf(ask("E", 2)), "AR");
}

TEST_F(UnitProgram, UpgradeModeAndPinsReachTheUnit) {
    start({"--upgrade-mode", "--gpio", "2=77"});
    EXPECT_EQ(ask("I", 21).at(4), 77);
    EXPECT_EQ(textOf(ask("P3", 2)), "AX");
}

TEST_F(UnitProgram, AdapterOptionsReachTheAdapter) {
    start({"--drop-writes", "2"});
    EXPECT_EQ(ask("EEEE", 16).size(), 16u);
    EXPECT_EQ(textOf(ask("A", 2)), "AX");
}

TEST(ProgramOptions, FirmwareFileIsMadeAndTheProgramEnds) {
    const TemporaryFolder folder;
    const std::string file = (folder.path() / "ZQC404001.nv3").string();
    EXPECT_EQ(Program({"--unit", "C", "--firmware", "ZQC-404001", "--make-firmware", file}).ended(), 0);
    std::ifstream content(file);
    std::string header;
    std::getline(content, header);
    EXPECT_EQ(header.substr(0, 8), "S0170000");
    EXPECT_EQ(Program({"--unit", "C", "--firmware", "ZQA-505100", "--make-firmware", file}).ended(), 1);
}

TEST(ProgramOptions, WrongOnesEndWithTwo) {
    EXPECT_EQ(Program({"--unit", "A", "--burst", "0"}).ended(), 2);
    EXPECT_EQ(Program({"--unit", "A", "--drop-writes", "-1"}).ended(), 2);
    EXPECT_EQ(Program({"--unit", "A", "--thunder"}).ended(), 2);
}

TEST(ProgramOptions, WrongOnesAreNamedInWordsOfAUser) {
    const auto said = [](const Words& options) { return Program(options).said(); };
    EXPECT_NE(said({"--unit", "A", "--baud", "-3"}).find("-3 not in range 0 to 4000000"), std::string::npos);
    EXPECT_NE(said({"--unit", "A", "--serial-format", "new"}).find("current, octal or old, not new"),
              std::string::npos);
    EXPECT_EQ(said({"--unit", "A", "--code", "20"}),
              "zentaq-sim: There is no check-engine code 20: one is a row, 1 to 12, with a digit from 1 to 8 "
              "behind it, such as 21 or 128\n");
    EXPECT_EQ(said({"--unit", "A", "--engine", "idel"}),
              "zentaq-sim: There is no file idel: --engine takes idle, drive, dyno or a datalog\n");
}

TEST(ProgramOptions, AMemoryThatIsNoFileIsRefusedBeforeTheUnitIsThereAndStays) {
    const TemporaryFolder folder;
    const fs::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const std::string link = (folder.path() / "unit").string();
    for (const char* option : {"--memory", "--running-memory"}) {
        EXPECT_EQ(Program({"--unit", "A", "--link", link, option, pipe.string()}).said(),
                  "zentaq-sim: Cannot write " + pipe.string() + ": it is a pipe, not a file\n");
    }
    EXPECT_EQ(Program({"--unit", "A", "--make-firmware", pipe.string()}).said(),
              "zentaq-sim: Cannot write " + pipe.string() + ": it is a pipe, not a file\n");
    EXPECT_TRUE(fs::is_fifo(pipe));
    const std::string memory = (folder.path() / "unit.mem").string();
    fs::rename(pipe, memory + ".firmware");
    EXPECT_EQ(Program({"--unit", "A", "--link", link, "--memory", memory}).said(),
              "zentaq-sim: Cannot write " + memory + ".firmware: it is a pipe, not a file\n");
    EXPECT_FALSE(fs::exists(memory));
    const std::string longName = (folder.path() / std::string(300, 'n')).string();
    EXPECT_EQ(Program({"--unit", "A", "--link", link, "--memory", longName}).said(),
              "zentaq-sim: Cannot write " + longName + ": File name too long\n");
}

TEST(ProgramOptions, HelpFitsATerminalOf80Columns) {
    std::istringstream help(Program({"--help"}).said());
    int lines = 0;
    for (std::string line; std::getline(help, line); ++lines) EXPECT_LE(line.size(), 80u) << line;
    EXPECT_GT(lines, 50);
}

TEST(ProgramEnd, ClosedPipeEndsItAndTakesItsLinkAway) {
    const TemporaryFolder folder;
    const fs::path link = folder.path() / "unit";
    Program program({"--unit", "A", "--link", link.string()});
    ASSERT_TRUE(program.ready());
    ASSERT_TRUE(fs::is_symlink(link));
    program.closeOutput();
    EXPECT_EQ(program.ended(), 0);
    EXPECT_FALSE(fs::is_symlink(link));
}

TEST(ProgramOptions, WrongWordsOfAFaultEndWithOne) {
    EXPECT_EQ(Program({"--unit", "A", "--silence", "300"}).ended(), 1);
    EXPECT_EQ(Program({"--unit", "A", "--late", "@Q"}).ended(), 1);
}

}  // namespace
}  // namespace zentaq::sim
