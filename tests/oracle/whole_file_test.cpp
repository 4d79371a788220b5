// The S-record text of whole calibration files against a second encoder that shares no code with the program,
// and against public S-record tools.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

#include "base/errors.h"
#include "base/text.h"
#include "temporary_folder.h"
#include "unit/file_kind.h"
#include "unit/recording_host.h"
#include "unit/unit.h"
#include "unit/unit_kind.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;

constexpr int filesPerSeed = 1000;
constexpr int differencesShown = 5;

/// A unit kind, the name that the second encoder has for it, and the memory that its files fill.
struct KindCase {
    const char* name;
    const UnitKind& (*kind)();
    int newerFrom = 5;  ///< release from which a file is longer
    const char* range = "1100 - 198F";
    const char* newerRange = "1100 - 1A2F";
};

// gtest prints a parameter with this.
[[maybe_unused]] void PrintTo(const KindCase& kindCase, std::ostream* out) {
    *out << kindCase.name;
}

const KindCase orbA{"A", &orbaKind};
const KindCase everyKind[] = {orbA,
                              {"L", &orbLiteKind},
                              {"C", &orbcKind},
                              {"D", &orbdKind},
                              {"D6", &orbd6Kind},
                              {"PZK-2", &pzk2Kind, 0, "1100 - 14FF", "1100 - 14FF"}};

std::string testName(const KindCase& kindCase) {
    const std::string name = kindCase.name;
    return name == "PZK-2" ? "Pzk2" : "Orb" + name;
}

/// The known sensors of the second encoder's random_calibrations.SENSORS.
const std::map<int, SensorFacts> sensors = {{1, {0.05295f, -0.54738f, 1}},
                                            {2, {0.16931f, 0.21384f, 2}},
                                            {3, {0.11427f, 1.68125f, 3}},
                                            {4, {0.00158f, 0.05f, 4}}};

/// The S-record text of a file that the first number in it brings to its kind; nothing where it fails as the
/// program fails on purpose.
std::optional<std::string> sRecordTextOf(const fs::path& file, const UnitKind& kind,
                                         const std::map<int, SensorFacts>& known = {}) {
    try {
        EXPECT_EQ(unitKindOfSlot(kindOfCalibrationFile(file.string()).slot), &kind) << file;
        RecordingHost host;
        host.sensors = known;
        Unit unit(kind, host);
        unit.FileOpen(file.string());
        unit.ConvertData();
        return unit.sRecordText();
    } catch (const Failure&) {
        return std::nullopt;
    }
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
    return {status, TemporaryFolder::read(log)};
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

/// Fills the folder with random files and the texts that the second encoder makes of them.
void generate(const KindCase& kind, int count, int seed, const fs::path& folder, const char* options = "") {
    const std::string arguments = std::string(" --kind ") + kind.name + " --count " + std::to_string(count) +
                                  " --seed " + std::to_string(seed) + " --out " + quoted(folder) + options;
    const Outcome outcome = run(python("unit_oracle.py") + arguments, folder);
    ASSERT_EQ(outcome.status, 0) << outcome.output;
}

fs::path numbered(const fs::path& folder, int number, std::string_view extension) {
    std::string digits = std::to_string(number);
    digits.insert(0, 5 - digits.size(), '0');
    return folder / digits.append(extension);
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
    const auto left = split(ours, '\n');
    const auto right = split(theirs, '\n');
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

/// The second encoder's text of a numbered file; nothing where it says that none can be made.
std::optional<std::string> theirTextOf(const fs::path& folder, int number) {
    const fs::path path = numbered(folder, number, ".s19");
    return fs::exists(path) ? std::optional(TemporaryFolder::read(path)) : std::nullopt;
}

/// Counts what two encoders made of the same files, and describes the first few that differ.
class Comparison {
 public:
    void add(const fs::path& file, const std::optional<std::string>& ours,
             const std::optional<std::string>& theirs) {
        ++(theirs ? encoded_ : refused_);
        if (ours == theirs) return;
        if (++different_ <= differencesShown) report_ += describe(file, ours, theirs);
        if (ours && theirs) ++byIndex_[firstDifference(*ours, *theirs)->byte];
    }
    int encoded() const { return encoded_; }
    int refused() const { return refused_; }
    int different() const { return different_; }
    std::string report() const {
        std::string text = report_;
        for (const auto& [index, files] : byIndex_) {
            text += "first difference at image index " + std::to_string(index) + " in " +
                    std::to_string(files) + " files\n";
        }
        return text;
    }

 private:
    static std::string describe(const fs::path& file, const std::optional<std::string>& ours,
                                const std::optional<std::string>& theirs) {
        if (ours && theirs) return told(file, *firstDifference(*ours, *theirs));
        return file.filename().string() + ": only " + (ours ? "the program" : "the second encoder") +
               " makes an image of it\n";
    }

    int encoded_ = 0;
    int refused_ = 0;
    int different_ = 0;
    std::string report_;
    std::map<int, int> byIndex_;
};

using WholeFileCase = std::tuple<KindCase, int>;

class WholeFile : public testing::TestWithParam<WholeFileCase> {
 protected:
    const KindCase& kindCase() const { return std::get<0>(GetParam()); }
    const UnitKind& kind() const { return kindCase().kind(); }
    int seed() const { return std::get<1>(GetParam()); }
    fs::path file(int number) const { return numbered(folder_.path(), number, kind().extension); }
    void expectNoDifference(const Comparison& comparison) const {
        EXPECT_EQ(comparison.different(), 0) << comparison.report();
    }

    TemporaryFolder folder_;
};

TEST_P(WholeFile, SRecordTextOfRandomCalibrationsEqualsTheSecondEncoders) {
    ASSERT_NO_FATAL_FAILURE(generate(kindCase(), filesPerSeed, seed(), folder_.path()));
    Comparison comparison;
    for (int number = 0; number < filesPerSeed; ++number) {
        comparison.add(file(number), sRecordTextOf(file(number), kind()),
                       theirTextOf(folder_.path(), number));
    }
    expectNoDifference(comparison);
    // Both sorts must be among the files: those with an image, and those that no image can be made from.
    EXPECT_GT(comparison.encoded(), filesPerSeed * 3 / 4);
    EXPECT_GT(comparison.refused(), 0);
}

TEST_P(WholeFile, OfOldFirmwareFindsItsSensorAsInTheSecondEncoder) {
    constexpr int files = 150;
    ASSERT_NO_FATAL_FAILURE(generate(kindCase(), files, seed(), folder_.path(), " --sensors"));
    Comparison comparison;
    for (int number = 0; number < files; ++number) {
        comparison.add(file(number), sRecordTextOf(file(number), kind(), sensors),
                       theirTextOf(folder_.path(), number));
    }
    expectNoDifference(comparison);
    EXPECT_GT(comparison.encoded(), files / 2);
}

std::string nameOf(const testing::TestParamInfo<WholeFileCase>& info) {
    return testName(std::get<0>(info.param)) + "Seed" + std::to_string(std::get<1>(info.param));
}

INSTANTIATE_TEST_SUITE_P(EveryKind, WholeFile,
                         testing::Combine(testing::ValuesIn(everyKind), testing::Values(1)), nameOf);
INSTANTIATE_TEST_SUITE_P(MoreSeeds, WholeFile, testing::Combine(testing::Values(orbA), testing::Values(20)),
                         nameOf);

TEST(SecondEncoder, PassesItsOwnHandWorkedTests) {
    const TemporaryFolder folder;
    const Outcome outcome = run(python("test_unit_oracle.py"), folder.path());
    EXPECT_EQ(outcome.status, 0) << outcome.output;
}

// ---- The listing

/// The files of a folder that are calibrations, in quotes.
std::string calibrationsIn(const fs::path& folder) {
    std::string names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension().string().starts_with(".ZQ4")) names += " " + quoted(entry.path());
    }
    return names;
}

class Listing : public testing::TestWithParam<KindCase> {};

// Every heading in its order and every value, told by another program of the command line.
TEST_P(Listing, TellsWhatTheCommandLineTells) {
    const TemporaryFolder folder;
    ASSERT_NO_FATAL_FAILURE(generate(GetParam(), 3, 5, folder.path()));
    const Outcome outcome =
        run(python("print_check.py") + " " + quoted(fs::path(ZENTAQ_APP_DIR) / "zentaqctl") +
                calibrationsIn(folder.path()),
            folder.path());
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, testing::HasSubstr(" files checked"));
}

std::string nameOfListing(const testing::TestParamInfo<KindCase>& row) {
    return testName(row.param);
}

INSTANTIATE_TEST_SUITE_P(EveryKind, Listing, testing::ValuesIn(everyKind), nameOfListing);

TEST(ListingOfSamples, TellsWhatTheCommandLineTells) {
    const TemporaryFolder folder;
    const Outcome outcome =
        run(python("print_check.py") + " " + quoted(fs::path(ZENTAQ_APP_DIR) / "zentaqctl") +
                calibrationsIn(fs::path(ZENTAQ_APP_DIR) / "samples"),
            folder.path());
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, testing::HasSubstr("7 files checked"));
}

/// Random calibrations programmed into "/ORB.s19" of a temporary application folder.
class PublicTools : public testing::TestWithParam<KindCase> {
 protected:
    static constexpr int files = 20;

    void SetUp() override {
        if (!isInstalled("srec_cat") || !isInstalled("srec_info")) {
            GTEST_SKIP() << "srec_cat and srec_info of the package srecord are not installed";
        }
        ASSERT_NO_FATAL_FAILURE(generate(GetParam(), files, 77, folder_.path()));
        host_.folder = folder_.path();
    }

    /// Opens calibration `number`. False where no image can be made from it.
    bool convert(int number) {
        const fs::path file = numbered(folder_.path(), number, GetParam().kind().extension);
        try {
            unit_.FileOpen(file.string());
            unit_.ConvertData();
            return true;
        } catch (const Failure&) {
            EXPECT_FALSE(theirTextOf(folder_.path(), number)) << file;
            return false;
        }
    }

    /// The path of the S-record file of what convert() left.
    fs::path programmed() { return unit_.MakeS19(); }

    bool newer() const { return unit_.FW_Release() >= GetParam().newerFrom; }

    std::vector<std::uint8_t> lowBytes() const {
        const char* range = newer() ? GetParam().newerRange : GetParam().range;
        const std::size_t end = std::stoul(range + std::string_view("1100 - ").size(), nullptr, 16) + 1;
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 0; i < end - Unit::baseAddress; ++i) {
            const int whole = static_cast<int>(std::nearbyint(unit_.ImageData().at(i)));
            bytes.push_back(static_cast<std::uint8_t>(whole & 255));
        }
        return bytes;
    }

    TemporaryFolder folder_;
    RecordingHost host_;
    Unit unit_{GetParam().kind(), host_};
};

TEST_P(PublicTools, AcceptTheFileAndFindItsAddresses) {
    for (int number = 0; number < files; ++number) {
        if (!convert(number)) continue;
        const Outcome outcome = run("srec_info " + quoted(programmed()) + " -motorola", folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const std::string range = newer() ? GetParam().newerRange : GetParam().range;
        EXPECT_NE(outcome.output.find(range), std::string::npos) << number << "\n" << outcome.output;
    }
}

TEST_P(PublicTools, AcceptEveryOneOfManyFiles) {
    // One writer of the text serves all kinds: a thousand files of one kind, fewer of the others.
    const int count = GetParam().kind == orbA.kind ? filesPerSeed : filesPerSeed / 5;
    constexpr int filesPerCall = 100;
    ASSERT_NO_FATAL_FAILURE(generate(GetParam(), count, 4352, folder_.path()));
    for (int first = 0; first < count; first += filesPerCall) {
        std::string command = "cd " + quoted(folder_.path()) + " && srec_info";
        int written = 0;
        for (int number = first; number < first + filesPerCall; ++number) {
            if (!convert(number)) continue;
            const fs::path file = numbered(folder_.path(), number, ".ours");
            std::ofstream(file, std::ios::binary) << unit_.sRecordText();
            command += " " + quoted(file.filename()) + " -motorola";
            ++written;
        }
        ASSERT_GT(written, filesPerCall / 2);
        const Outcome outcome = run(command, folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        int described = 0;
        for (const std::string& line : split(outcome.output, '\n'))
            described += line.find("Format:") != std::string::npos;
        EXPECT_EQ(described, written) << outcome.output;
    }
}

TEST_P(PublicTools, RefuseTheFileWithOneDigitChanged) {
    int number = 0;
    while (!convert(number)) ++number;
    const fs::path file = programmed();
    std::string text = TemporaryFolder::read(file);
    text.at(9) = text.at(9) == '0' ? '1' : '0';
    std::ofstream(file, std::ios::binary | std::ios::trunc) << text;
    const Outcome outcome = run("srec_info " + quoted(file) + " -motorola", folder_.path());
    EXPECT_NE(outcome.status, 0) << outcome.output;
    EXPECT_NE(outcome.output.find("checksum"), std::string::npos) << outcome.output;
}

TEST_P(PublicTools, ReadBackTheBytesOfTheImage) {
    for (int number = 0; number < files; ++number) {
        if (!convert(number)) continue;
        const fs::path binary = folder_.path() / "memory.bin";
        const Outcome outcome =
            run("srec_cat " + quoted(programmed()) + " -motorola -offset -" +
                    std::to_string(Unit::baseAddress) + " -o " + quoted(binary) + " -binary",
                folder_.path());
        ASSERT_EQ(outcome.status, 0) << outcome.output;
        const std::string content = TemporaryFolder::read(binary);
        const std::vector<std::uint8_t> read(content.begin(), content.end());
        EXPECT_EQ(read, lowBytes()) << number;
        EXPECT_EQ(read, unit_.memoryBytes()) << number;
    }
}

TEST_P(PublicTools, AgreeWithOurOwnCheckerThatEveryLineIsValid) {
    for (int number = 0; number < files; ++number) {
        if (!convert(number)) continue;
        const Outcome outcome = run(python("check_srecord.py") + " " + quoted(programmed()), folder_.path());
        EXPECT_EQ(outcome.status, 0) << number << "\n" << outcome.output;
    }
}

INSTANTIATE_TEST_SUITE_P(EveryKind, PublicTools, testing::ValuesIn(everyKind),
                         [](const auto& kindCase) { return testName(kindCase.param); });

}  // namespace
}  // namespace zentaq
