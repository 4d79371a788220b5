// The S-record text of whole calibration files against a second encoder that shares no code with the program,
// and against public S-record tools.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "temporary_folder.h"
#include "unit/unit.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;

constexpr int filesPerSeed = 1000;
constexpr std::size_t differencesShown = 5;

/// A program around the Unit object that has no user, no link and no reference data. Complete files need
/// none.
class LonelyHost : public UnitHost {
 public:
    explicit LonelyHost(fs::path folder = {}) : folder_(std::move(folder)) {}

    bool checkInput(int, std::string_view value) override { return value.empty(); }
    bool checkRange(float value, float minimum, float maximum, std::string_view) override {
        return value < minimum || value > maximum;
    }
    void sysLog(std::string_view) override {}
    void addToLastLine(std::string_view) override {}
    void displayMessage(int, std::string_view) override {}
    void displayWarning(int, std::string_view) override {}
    void inform(std::string_view) override {}
    void sendOnFly(std::string_view) override {}
    std::optional<EngineFacts> engine(int, int) override { return std::nullopt; }
    std::optional<SensorFacts> mapSensor(int) override { return std::nullopt; }
    bool fahrenheit() const override { return false; }
    bool firmwareKnownFromLink() const override { return false; }
    FileHeader& header() override { return header_; }
    float programVersion() const override { return 10.2f; }
    std::string applicationFolder() const override { return folder_.string(); }
    void yield() override {}
    void formsChanged() override {}

 private:
    fs::path folder_;
    FileHeader header_;
};

std::string sRecordTextOf(const fs::path& calibration) {
    LonelyHost host;
    Unit unit(orbaKind(), host);
    unit.FileOpen(calibration.string());
    unit.ConvertData();
    return unit.sRecordText();
}

std::string contentOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << path;
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string quoted(const fs::path& path) {
    return "'" + path.string() + "'";
}

struct Outcome {
    int status = -1;
    std::string output;  ///< standard output and standard error, as they came
};

/// Runs a shell command; `scratch` takes its output.
Outcome run(const std::string& command, const fs::path& scratch) {
    const fs::path log = scratch / "output.txt";
    const int status = std::system((command + " >" + quoted(log) + " 2>&1").c_str());
    return {status, contentOf(log)};
}

bool isInstalled(const std::string& program) {
    return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

fs::path oracleFolder() {
    return fs::path(ZENTAQ_SOURCE_DIR) / "tests" / "oracle";
}

std::string python(const std::string& script) {
    return quoted(ZENTAQ_PYTHON) + " -B " + quoted(oracleFolder() / script);
}

void generate(int count, int seed, const fs::path& folder) {
    const Outcome outcome = run(python("orba_oracle.py") + " --count " + std::to_string(count) + " --seed " +
                                    std::to_string(seed) + " --out " + quoted(folder),
                                folder);
    ASSERT_EQ(outcome.status, 0) << outcome.output;
}

fs::path numbered(const fs::path& folder, int number, const char* extension) {
    std::string digits = std::to_string(number);
    digits.insert(0, 5 - digits.size(), '0');
    return folder / (digits + extension);
}

std::vector<std::string> linesOf(std::string_view text) {
    std::vector<std::string> lines(1);
    for (const char character : text) {
        if (character == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += character;
        }
    }
    return lines;
}

/// Where two texts part, in terms of a data line: "S113", four digits of address, then two digits a byte.
struct Difference {
    std::size_t line = 0;  ///< counted from 1
    int byte = -1;         ///< image index; -1 when the texts part outside the data digits
    std::string ours;
    std::string theirs;
};

std::optional<Difference> firstDifference(const std::string& ours, const std::string& theirs) {
    constexpr std::size_t dataStart = 8;
    constexpr std::size_t dataEnd = dataStart + 32;
    if (ours == theirs) {
        return std::nullopt;
    }
    const auto left = linesOf(ours);
    const auto right = linesOf(theirs);
    std::size_t line = 0;
    while (line < left.size() && line < right.size() && left[line] == right[line]) {
        ++line;
    }
    const std::string a = line < left.size() ? left[line] : "(no line)";
    const std::string b = line < right.size() ? right[line] : "(no line)";
    std::size_t column = 0;
    while (column < a.size() && column < b.size() && a[column] == b[column]) {
        ++column;
    }
    if (column < dataStart || column >= dataEnd || a.size() != b.size()) {
        return Difference{line + 1, -1, a, b};
    }
    const std::size_t byte = (column - dataStart) / 2;
    const std::size_t start = dataStart + 2 * byte;
    return Difference{line + 1, static_cast<int>(16 * line + byte), a.substr(start, 2), b.substr(start, 2)};
}

std::string told(const fs::path& file, const Difference& difference) {
    std::ostringstream text;
    text << file.filename().string() << " line " << difference.line << " byte " << difference.byte
         << ": the program has " << difference.ours << ", the second encoder " << difference.theirs << "\n";
    return text.str();
}

TEST(FirstDifference, IsNoneBetweenEqualTexts) {
    EXPECT_FALSE(firstDifference("S9030000FC\r\n", "S9030000FC\r\n"));
}

TEST(FirstDifference, NamesLineAndImageIndexOfADataByte) {
    const std::string head = "S1131100" + std::string(32, '0') + "DB\r\n";
    const std::string ours = head + "S1131110" + "0001" + std::string(28, '0') + "CA\r\n";
    const std::string theirs = head + "S1131110" + "0010" + std::string(28, '0') + "BB\r\n";
    const auto difference = firstDifference(ours, theirs);
    ASSERT_TRUE(difference);
    EXPECT_EQ(difference->line, 2u);
    EXPECT_EQ(difference->byte, 17);
    EXPECT_EQ(difference->ours, "01");
    EXPECT_EQ(difference->theirs, "10");
}

TEST(FirstDifference, SeesAMissingLineAndOtherLineEnds) {
    EXPECT_TRUE(firstDifference("S9030000FC\r\n", ""));
    EXPECT_TRUE(firstDifference("S9030000FC\r\n", "S9030000FC\n"));
    EXPECT_TRUE(firstDifference("S9030000FC\r\n", "S9030000FC\r\n\r\n"));
}

class WholeFile : public testing::TestWithParam<int> {};

TEST_P(WholeFile, SRecordTextOfRandomCalibrationsEqualsTheSecondEncoders) {
    const TemporaryFolder folder;
    ASSERT_NO_FATAL_FAILURE(generate(filesPerSeed, GetParam(), folder.path()));
    std::size_t different = 0;
    std::string report;
    std::map<int, int> byIndex;
    for (int number = 0; number < filesPerSeed; ++number) {
        const fs::path file = numbered(folder.path(), number, ".ZQ4OA");
        const std::string theirs = contentOf(numbered(folder.path(), number, ".s19"));
        ASSERT_GT(theirs.size(), 137u * 44u) << file;
        const auto difference = firstDifference(sRecordTextOf(file), theirs);
        if (!difference) {
            continue;
        }
        ++byIndex[difference->byte];
        if (++different <= differencesShown) {
            report += told(file, *difference);
        }
    }
    for (const auto& [index, files] : byIndex) {
        report += "first difference at image index " + std::to_string(index) + " in " +
                  std::to_string(files) + " files\n";
    }
    EXPECT_EQ(different, 0u) << report;
}

INSTANTIATE_TEST_SUITE_P(Seeds, WholeFile, testing::Values(1, 20, 4352));

TEST(SecondEncoder, PassesItsOwnHandWorkedTests) {
    const TemporaryFolder folder;
    const Outcome outcome = run(python("test_orba_oracle.py"), folder.path());
    EXPECT_EQ(outcome.status, 0) << outcome.output;
}

/// A unit with one of the random calibrations programmed into "/ORB.s19" of a temporary application folder.
class PublicTools : public testing::Test {
 protected:
    static constexpr int files = 20;

    void SetUp() override {
        if (!isInstalled("srec_cat") || !isInstalled("srec_info")) {
            GTEST_SKIP() << "srec_cat and srec_info of the package srecord are not installed";
        }
        ASSERT_NO_FATAL_FAILURE(generate(files, 77, folder_.path()));
    }

    /// Opens calibration `number`, writes its S-record file and answers that file's path.
    fs::path program(Unit& unit, int number) const {
        unit.FileOpen(numbered(folder_.path(), number, ".ZQ4OA").string());
        unit.ConvertData();
        return unit.MakeS19();
    }

    TemporaryFolder folder_;
};

std::vector<std::uint8_t> lowBytes(const Unit& unit) {
    const std::size_t count = 16 * (unit.FW_Release() >= 5 ? 147 : 137);
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i < count; ++i) {
        const int whole = static_cast<int>(std::nearbyint(unit.ImageData().at(i)));
        bytes.push_back(static_cast<std::uint8_t>(whole & 255));
    }
    return bytes;
}

TEST_F(PublicTools, AcceptTheFileAndFindItsAddresses) {
    LonelyHost host(folder_.path());
    Unit unit(orbaKind(), host);
    for (int number = 0; number < files; ++number) {
        const fs::path file = program(unit, number);
        const Outcome outcome = run("srec_info " + quoted(file) + " -motorola", folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const std::string range = unit.FW_Release() >= 5 ? "1100 - 1A2F" : "1100 - 198F";
        EXPECT_NE(outcome.output.find(range), std::string::npos) << number << "\n" << outcome.output;
    }
}

TEST_F(PublicTools, AcceptEveryOneOfAThousandFiles) {
    constexpr int filesPerCall = 100;
    ASSERT_NO_FATAL_FAILURE(generate(filesPerSeed, 4352, folder_.path()));
    LonelyHost host(folder_.path());
    Unit unit(orbaKind(), host);
    for (int first = 0; first < filesPerSeed; first += filesPerCall) {
        std::string command = "cd " + quoted(folder_.path()) + " && srec_info";
        for (int number = first; number < first + filesPerCall; ++number) {
            unit.FileOpen(numbered(folder_.path(), number, ".ZQ4OA").string());
            unit.ConvertData();
            const fs::path file = numbered(folder_.path(), number, ".ours");
            std::ofstream(file, std::ios::binary) << unit.sRecordText();
            command += " " + quoted(file.filename()) + " -motorola";
        }
        const Outcome outcome = run(command, folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        std::size_t described = 0;
        for (const std::string& line : linesOf(outcome.output))
            described += line.find("Format:") != std::string::npos;
        EXPECT_EQ(described, static_cast<std::size_t>(filesPerCall)) << outcome.output;
    }
}

TEST_F(PublicTools, RefuseTheFileWithOneDigitChanged) {
    LonelyHost host(folder_.path());
    Unit unit(orbaKind(), host);
    const fs::path file = program(unit, 0);
    std::string text = contentOf(file);
    text.at(9) = text.at(9) == '0' ? '1' : '0';
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    const Outcome outcome = run("srec_info " + quoted(file) + " -motorola", folder_.path());
    EXPECT_NE(outcome.status, 0) << outcome.output;
    EXPECT_NE(outcome.output.find("checksum"), std::string::npos) << outcome.output;
}

TEST_F(PublicTools, ReadBackTheBytesOfTheImage) {
    LonelyHost host(folder_.path());
    Unit unit(orbaKind(), host);
    for (int number = 0; number < files; ++number) {
        const fs::path file = program(unit, number);
        const fs::path binary = folder_.path() / "memory.bin";
        const Outcome outcome =
            run("srec_cat " + quoted(file) + " -motorola -offset -" + std::to_string(Unit::baseAddress) +
                    " -o " + quoted(binary) + " -binary",
                folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const std::string content = contentOf(binary);
        const std::vector<std::uint8_t> read(content.begin(), content.end());
        EXPECT_EQ(read, lowBytes(unit)) << number;
        EXPECT_EQ(read, unit.memoryBytes()) << number;
    }
}

TEST_F(PublicTools, AgreeWithOurOwnCheckerThatEveryLineIsValid) {
    LonelyHost host(folder_.path());
    Unit unit(orbaKind(), host);
    for (int number = 0; number < files; ++number) {
        const fs::path file = program(unit, number);
        const Outcome outcome = run(python("check_srecord.py") + " " + quoted(file), folder_.path());
        EXPECT_EQ(outcome.status, 0) << number << "\n" << outcome.output;
    }
}

}  // namespace
}  // namespace zentaq
