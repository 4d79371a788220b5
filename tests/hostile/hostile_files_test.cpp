// Five thousand hostile files, through every command of zentaqctl that reads a file and through the readers
// of the core: nothing crashes, waits, eats memory or changes a file, and each refusal is one readable line.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/shown_text.h"
#include "base/utf8.h"
#include "calibration/calibration_diff.h"
#include "calibration/calibration_listing.h"
#include "calibration/calibration_merge.h"
#include "calibration/calibration_recipe.h"
#include "config/quiet_calibration.h"
#include "guide/guide.h"
#include "hostile/hostile_files.h"
#include "link/firmware_file.h"
#include "trace/trace_file.h"
#include "refdata/seed_table.h"
#include "sim/datalog_track.h"
#include "sim/firmware_state_file.h"
#include "sim/memory_file.h"
#include "sim/srecord.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr rlim_t mostMemory = rlim_t{400} << 20;
constexpr unsigned mostSeconds = 30;
#if defined(__SANITIZE_ADDRESS__)
constexpr bool memoryIsLimited = false;  // the sanitizer reserves terabytes
#else
constexpr bool memoryIsLimited = true;
#endif

// ---- Running the program

struct Outcome {
    int status = -1;  ///< as waitpid() has it
    std::string out;
    std::string error;

    bool exited() const { return WIFEXITED(status); }
    int code() const { return exited() ? WEXITSTATUS(status) : -1; }
};

[[noreturn]] void becomeProgram(const Words& arguments, int in, int out, int error) {
    if (memoryIsLimited) {
        const rlimit memory{mostMemory, mostMemory};
        ::setrlimit(RLIMIT_AS, &memory);
    }
    ::alarm(mostSeconds);  // a program that waits for ever dies of it, which counts as a crash
    ::dup2(in, STDIN_FILENO);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(error, STDERR_FILENO);
    std::string program = ZENTAQ_APP_DIR "/zentaqctl";
    std::vector<char*> pointers{program.data()};
    Words words = arguments;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    ::execv(program.c_str(), pointers.data());
    ::_exit(127);
}

std::string contentOfOpen(int file) {
    std::string content(static_cast<std::size_t>(::lseek(file, 0, SEEK_END)), '\0');
    const ssize_t count = ::pread(file, content.data(), content.size(), 0);
    content.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return content;
}

/// Runs zentaqctl with `input`, a path, as its standard input.
Outcome run(const TemporaryFolder& folder, const Words& arguments, const std::string& input) {
    const int in = ::open(input.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    const int out = ::open(folder.file("stdout").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const int error = ::open(folder.file("stderr").c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const pid_t child = ::fork();
    if (child == 0) becomeProgram(arguments, in, out, error);
    Outcome outcome;
    ::waitpid(child, &outcome.status, 0);
    outcome.out = contentOfOpen(out);
    outcome.error = contentOfOpen(error);
    for (const int file : {in, out, error}) {
        if (file >= 0) ::close(file);
    }
    return outcome;
}

// ---- What may be shown

/// The first character that does not belong on a terminal; empty for none.
std::string unreadable(std::string_view text) {
    while (!text.empty()) {
        const auto [code, length] = firstCharacter(text);
        const bool layout = code == '\n' || code == '\t';
        if (!layout && !isShownAsItIs(code)) return shownLine(text.substr(0, length));
        text.remove_prefix(length);
    }
    return {};
}

void expectLines(const std::string& error) {
    constexpr std::size_t longest = 1000;
    EXPECT_EQ(unreadable(error), "") << shownLines(error);
    for (std::size_t at = 0; at < error.size();) {
        const std::size_t end = error.find('\n', at);
        ASSERT_NE(end, std::string::npos) << "the last line has no end: " << error.substr(at);
        EXPECT_LE(end - at, longest) << error.substr(at, longest);
        at = end + 1;
    }
    for (const char* bare : {"std::", "basic_string", "bad_alloc", "a fault of its own", "vector"}) {
        EXPECT_EQ(error.find(bare), std::string::npos) << error;
    }
}

// ---- Commands

/// A command with a file in its place; `@` is the hostile one, `=` a good calibration, `>` an output.
struct Command {
    const char* name;
    Form form;
    Words words;
    bool raw = false;    ///< its answer is data, not words
    bool finds = false;  ///< status 1 may be an answer
};

void PrintTo(const Command& command, std::ostream* out) {
    *out << command.name;
}

const std::vector<Command>& commands() {
    static const std::vector<Command> all = {
        {"Info", Form::Calibration, {"info", "@"}},
        {"InfoJson", Form::Calibration, {"info", "@", "--json"}},
        {"GetTable", Form::Calibration, {"get", "@", "VE"}},
        {"GetNotes", Form::Calibration, {"get", "@", "NOTES_TEXT"}},
        {"Members", Form::Calibration, {"members", "@"}},
        {"Table", Form::Calibration, {"table", "@", "GPO1"}},
        {"TableFrom", Form::Table, {"table", "=", "VE", "--from", "@", "-o", ">"}},
        {"TableFromInput", Form::Table, {"table", "=", "VE", "--from", "-", "-o", ">"}},
        {"Cell", Form::Calibration, {"cell", "@", "58"}},
        {"Record", Form::Calibration, {"record", "@", "VE", "-5", "--index", "17"}},
        {"Set", Form::Calibration, {"set", "@", "KNK_MIN", "45", "-o", ">"}},
        {"Image", Form::Calibration, {"image", "@", "--firmware", "5.99", "-o", "-"}, true},
        {"ImportBin", Form::Old, {"import-bin", "@", "-o", ">"}},
        {"Diff", Form::Calibration, {"diff", "@", "="}, false, true},
        {"DiffOfInput", Form::Calibration, {"diff", "-", "=", "--json"}, false, true},
        {"Merge", Form::Calibration, {"merge", "=", "@", "=", "-o", ">"}},
        {"Export", Form::Calibration, {"export", "@"}},
        {"Import", Form::Listing, {"import", "@", "-o", ">"}},
        {"ImportOfInput", Form::Listing, {"import", "-", "-o", ">"}},
        {"DecodeInput", Form::Reply, {"decode", "--kind", "A", "--reply", "W", "-"}},
        {"DecodeScaled", Form::Calibration, {"decode", "--calibration", "@", "--reply", "E", "00"}},
        {"Trace", Form::Trace, {"trace", "@"}},
        {"TraceJson", Form::Trace, {"trace", "@", "--json", "--problems"}},
        {"Firmware", Form::Firmware, {"firmware", "@", "--yes", "--port", "none/port"}},
        {"Program", Form::Calibration, {"program", "@", "--port", "none/port"}}};
    return all;
}

class HostileFilesTo : public ::testing::TestWithParam<Command> {
 protected:
    static constexpr int filesEach = 200;

    HostileFilesTo() {
        fs::create_directory(hostile);
        good = folder.write("good.ZQ4OA", goodFile(Form::Calibration));
    }

    Words wordsFor(const std::string& path) const {
        Words words = GetParam().words;
        for (std::string& word : words) {
            if (word == "@") word = path;
            if (word == "=") word = good;
            if (word == ">") word = output;
        }
        return words;
    }

    bool readsInput() const {
        const Words& words = GetParam().words;
        return std::find(words.begin(), words.end(), "-") != words.end() && !GetParam().raw;
    }

    void expectEndedWell(const Outcome& outcome) const {
        ASSERT_TRUE(outcome.exited()) << "ended by signal " << WTERMSIG(outcome.status);
        constexpr int noUnit = 3;
        ASSERT_TRUE(outcome.code() == 0 || outcome.code() == 1 || outcome.code() == noUnit)
            << outcome.code() << ' ' << outcome.error;
        expectLines(outcome.error);
        if (!GetParam().raw) {
            EXPECT_EQ(unreadable(outcome.out), "");
        }
        if (outcome.code() == 0) return;
        EXPECT_FALSE(fs::exists(output)) << "refused, and written";
        if (GetParam().finds && !outcome.out.empty()) return;
        EXPECT_EQ(linesBesideCut(outcome.error), 1) << outcome.error;
    }
    /// A file that lost its end is told in front of the reason.
    static int linesBesideCut(const std::string& error) {
        std::istringstream lines(error);
        int count = 0;
        for (std::string line; std::getline(lines, line);) {
            if (!line.ends_with(" missing and were taken as 0.") &&
                !line.ends_with(" missing and was taken as 0."))
                ++count;
        }
        return count;
    }

    TemporaryFolder folder;
    std::string hostile = folder.file("hostile");
    std::string output = folder.file("made.ZQ4OA");
    std::string good;
};

/// All that a write, a rename or a change of rights leaves behind.
std::string stampOf(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) return "none";
    return std::to_string(status.st_ino) + " " + std::to_string(status.st_size) + " " +
           std::to_string(status.st_ctim.tv_sec) + "." + std::to_string(status.st_ctim.tv_nsec);
}

TEST_P(HostileFilesTo, AreReadOrRefusedInOneLineAndStayAsTheyAre) {
    HostileFiles files(GetParam().form, std::hash<std::string>()(GetParam().name) & 0xFFFFU);
    for (int number = 0; number < filesEach; ++number) {
        const std::string path = files.make(hostile, number);
        SCOPED_TRACE("file " + std::to_string(number) + ", fault " +
                     std::to_string(static_cast<int>(faultOf(number))) + ", " + shownBriefly(path));
        const std::string before = stampOf(path) + stampOf(good);
        const Outcome outcome = run(folder, wordsFor(path), readsInput() ? path : "/dev/null");
        expectEndedWell(outcome);
        if (HasFatalFailure()) return;
        EXPECT_EQ(stampOf(path) + stampOf(good), before);
        const auto left = static_cast<std::size_t>(std::distance(fs::directory_iterator(hostile), {}));
        EXPECT_EQ(left, fs::exists(fs::symlink_status(path)) ? 1U : 0U) << "something was left behind";
        fs::remove_all(hostile);
        fs::create_directory(hostile);
        fs::remove(output);
    }
}

INSTANTIATE_TEST_SUITE_P(Commands, HostileFilesTo, ::testing::ValuesIn(commands()),
                         [](const auto& row) { return std::string(row.param.name); });

// ---- The readers of the core

/// What a reader makes of a file, or of its bytes.
struct CoreReader {
    const char* name;
    Form form;
    std::function<void(const std::string& path)> read;
};

void PrintTo(const CoreReader& reader, std::ostream* out) {
    *out << reader.name;
}

void useCalibration(QuietCalibration& calibration) {
    Unit& unit = calibration.unit;
    unit.NOTES_TEXT();
    unit.BiName();
    skipFailing([&] { unit.ConvertData(); });
}

std::string bytesOf(const std::string& path) {
    return readFile(path, limits::calibrationText);
}

const std::vector<CoreReader>& coreReaders() {
    static const std::vector<CoreReader> all = {
        {"Calibration", Form::Calibration,
         [](const std::string& path) { useCalibration(*QuietCalibration::open(path)); }},
        {"OldFile", Form::Old,
         [](const std::string& path) { useCalibration(*QuietCalibration::importOld(path)); }},
        {"Listing", Form::Listing, [](const std::string& path) { fileFromListing(bytesOf(path)); }},
        {"Difference", Form::Calibration,
         [](const std::string& path) { differences(goodFile(Form::Calibration), bytesOf(path)); }},
        {"Merge", Form::Calibration,
         [](const std::string& path) {
             const std::string& good = goodFile(Form::Calibration);
             merge(good, bytesOf(path), good);
         }},
        {"Trace", Form::Trace,
         [](const std::string& path) {
             const TraceFile trace = readTrace(path);
             summaryOf(trace, chosenLines(trace, {}));
         }},
        {"Firmware", Form::Firmware, [](const std::string& path) { checkFirmware(readFirmwareFile(path)); }},
        {"SRecord", Form::Firmware,
         [](const std::string& path) {
             const std::string text = bytesOf(path);
             for (std::size_t at = 0; at < text.size() && at < 4096; at += 97) {
                 sim::parseSRecord(text.substr(at, 300), sim::firmwareRecords);
             }
         }},
        {"Datalog", Form::Datalog, [](const std::string& path) { sim::datalogDriveFromFile(path); }},
        {"Memory", Form::Old, [](const std::string& path) { sim::readMemoryFile(path, 2544); }},
        {"FirmwareState", Form::Recipe, [](const std::string& path) { sim::readFirmwareState(path); }},
        {"Recipe", Form::Recipe,
         [](const std::string& path) { CalibrationRecipe::parse(bytesOf(path), path); }},
        {"Seeds", Form::Seeds, [](const std::string& path) { refdata::SeedTable::read(path); }},
        {"GuideIndex", Form::Index, [](const std::string& path) {
             // The index has a fixed name in its folder.
             const TemporaryFolder folder;
             fs::create_symlink(path, folder.file("guide.tsv"));
             Guide::read(folder.path().string()).search("fuel");
         }}};
    return all;
}

class HostileFilesInside : public ::testing::TestWithParam<CoreReader> {};

/// In a child with little memory: a crash there is told as one, and ends no other test.
int statusOfReading(const CoreReader& reader, int filesEach) {
    const pid_t child = ::fork();
    if (child != 0) {
        int status = -1;
        ::waitpid(child, &status, 0);
        return status;
    }
    if (memoryIsLimited) {
        const rlimit memory{2 * mostMemory, 2 * mostMemory};
        ::setrlimit(RLIMIT_AS, &memory);
    }
    ::alarm(3 * mostSeconds);
    int strange = 0;
    {
        const TemporaryFolder folder;
        HostileFiles files(reader.form, 1);
        for (int number = 0; number < filesEach; ++number) {
            const std::string hostile = folder.file(std::to_string(number));
            fs::create_directory(hostile);
            const std::string path = files.make(hostile, number);
            try {
                reader.read(path);
            } catch (const Failure&) {
                // told and done
            } catch (const std::exception& failure) {
                std::fprintf(stderr, "file %d, fault %d: %s\n", number, static_cast<int>(faultOf(number)),
                             failure.what());
                ++strange;
            }
            fs::remove_all(hostile);
        }
    }
    ::_exit(strange == 0 ? 0 : 1);
}

TEST_P(HostileFilesInside, AreReadOrRefusedWithAFailureOfTheCore) {
    constexpr int filesEach = 400;
    const int status = statusOfReading(GetParam(), filesEach);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "a failure of another kind came out";
}

INSTANTIATE_TEST_SUITE_P(Readers, HostileFilesInside, ::testing::ValuesIn(coreReaders()),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq
