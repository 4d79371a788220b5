// The real program on files of a temporary folder.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "app/messages.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

namespace fs = std::filesystem;
using refdata::contentOf;
using refdata::TemporaryFolder;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

struct Outcome {
    int exitCode = -1;
    std::string out;
    std::string error;
};

std::string inQuotes(const std::string& text) {
    return "'" + text + "'";
}

class Zentaqctl : public ::testing::Test {
 protected:
    Zentaqctl() { fs::copy_file(ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA", file); }

    Outcome run(const std::string& arguments) {
        const std::string out = folder.file("stdout.txt");
        const std::string error = folder.file("stderr.txt");
        const std::string command = inQuotes(ZENTAQ_APP_DIR "/zentaqctl") + " " + arguments + " >" +
                                    inQuotes(out) + " 2>" + inQuotes(error);
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(out), contentOf(error)};
    }
    Outcome onFile(const std::string& command, const std::string& rest = {}) {
        return run(command + " " + inQuotes(file) + " " + rest);
    }
    float floatOf(const std::string& path, int index) const {
        const std::string bytes = contentOf(path);
        float value = NAN;
        if (bytes.size() >= 4U * static_cast<std::size_t>(index + 1)) {
            std::memcpy(&value, bytes.data() + 4 * index, sizeof value);
        }
        return value;
    }
    /// A cell behind the three header floats.
    float cellOf(const std::string& path, int cell) const { return floatOf(path, cell + 3); }

    TemporaryFolder folder;
    std::string file = folder.file("Street.ZQ4OA");
};

void expectOneLine(const std::string& text) {
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1) << text;
    EXPECT_EQ(text.back(), '\n');
}

// ---- info

TEST_F(Zentaqctl, InfoShowsWhatAFileIs) {
    const Outcome outcome = onFile("info");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.error, IsEmpty());
    EXPECT_THAT(outcome.out, StartsWith("Kind:     3\nModel:    ORB A\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nFirmware: 5099 (release 5, build 99)\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nName:     Street 2.0 Four\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nFloats:   2828\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nBytes:    11324\n"));
    EXPECT_THAT(outcome.out, HasSubstr("\nNotes:    Sample: 2.0 litre four"));
}

TEST_F(Zentaqctl, InfoShowsTheVersionOfTheProgramThatWroteTheFile) {
    const std::string version = std::string(ZENTAQ_VERSION).substr(2);  // "10.2" of "4.10.2"
    EXPECT_THAT(onFile("info").out, HasSubstr("\nVersion:  " + version + "\n"));
}

TEST_F(Zentaqctl, AFileThatIsNoCalibrationIsRefusedInOneLine) {
    refdata::writeFile(file, "hello, this is no calibration");
    const Outcome outcome = onFile("info");
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
    EXPECT_THAT(outcome.error, HasSubstr("is no calibration file"));
    EXPECT_THAT(outcome.out, IsEmpty());
}

TEST_F(Zentaqctl, AFileWithMoreValuesThanACalibrationIsRefused) {
    refdata::writeFile(file, contentOf(file) + std::string(1000, '\0'));  // 2828 + 250 > 3001
    const Outcome outcome = onFile("info");
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
}

TEST_F(Zentaqctl, AMissingFileFailsInOneLine) {
    const Outcome outcome = run("get " + inQuotes(folder.file("none.ZQ4OA")) + " KNK_MIN");
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
}

// ---- get

TEST_F(Zentaqctl, GetShowsAScalar) {
    EXPECT_EQ(onFile("get", "REV_Limiter").out, "7000\n");
}

TEST_F(Zentaqctl, GetShowsOneElement) {
    EXPECT_EQ(onFile("get", "ISRPM 1").out, "1150\n");
    EXPECT_EQ(onFile("get", "Get_VE 16").out, "-27\n");
}

TEST_F(Zentaqctl, GetShowsACurveOnOneLine) {
    EXPECT_EQ(onFile("get", "ISRPM").out, "1500 1150 850\n");
}

TEST_F(Zentaqctl, GetShowsATableAsItsRows) {
    const std::string out = onFile("get", "ADV").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 16);
    EXPECT_THAT(out, StartsWith("12.5 16.5 24.5 32 35 38 39.5 41.5 43 43 43.5 43.5 43.5 43.5 44 44\n"));
}

TEST_F(Zentaqctl, GetOfAnUnknownMemberFails) {
    const Outcome outcome = onFile("get", "KNOCK");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error, "ORB A has no member KNOCK\n");
}

TEST_F(Zentaqctl, GetOutsideATableFails) {
    for (const char* index : {"256", "-1"}) {
        const Outcome outcome = onFile("get", std::string("VE ") + index);
        EXPECT_EQ(outcome.exitCode, 1) << index;
        expectOneLine(outcome.error);
    }
}

// ---- set

TEST_F(Zentaqctl, SetWritesTheValueIntoItsCell) {
    EXPECT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    EXPECT_EQ(cellOf(file, 34), 44);
    EXPECT_EQ(onFile("get", "KNK_MIN").out, "44\n");
}

TEST_F(Zentaqctl, SetChangesNothingElse) {
    // The copy's own name first, so that it is no difference.
    ASSERT_EQ(onFile("set", "KNK_MIN 43").exitCode, 0);
    std::string before = contentOf(file);
    ASSERT_EQ(onFile("set", "KNK_MIN 44").exitCode, 0);
    const float value = 44;
    std::memcpy(before.data() + 12 + 4 * 34, &value, sizeof value);
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, SetTakesNegativeValuesAndAnIndex) {
    EXPECT_EQ(onFile("set", "VE -12.5 --index 17").exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 17), -12.5F);
    EXPECT_EQ(onFile("set", "VE -.5 --index 18").exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 18), -0.5F);
}

TEST_F(Zentaqctl, SetWithAnOutputLeavesTheFileAlone) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("Faster.ZQ4OA");
    EXPECT_EQ(onFile("set", "REV_Limiter 7200 -o " + inQuotes(copy)).exitCode, 0);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(cellOf(copy, 58), 7200);
    EXPECT_EQ(cellOf(copy, 560), 'F');  // the calibration takes the name of its file
}

TEST_F(Zentaqctl, SetAcceptsAValueAtItsLimit) {
    EXPECT_EQ(onFile("set", "KNK_MIN 100").exitCode, 0);
    EXPECT_EQ(onFile("set", "KNK_MIN 2").exitCode, 0);
}

TEST_F(Zentaqctl, SetTellsTheWarningAndTheRangeOfARefusedValueAndWritesNothing) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("never.ZQ4OA");
    const Outcome outcome = onFile("set", "KNK_MIN 101 -o " + inQuotes(copy));
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error, "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.\n");
    EXPECT_EQ(onFile("set", "KNK_MIN 101").exitCode, 1);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_FALSE(fs::exists(copy));
}

TEST_F(Zentaqctl, SetRefusesTextThatIsNoNumber) {
    const Outcome outcome = onFile("set", "KNK_MIN fast");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, StartsWith("Warning 1000: "));
    EXPECT_THAT(onFile("set", "KNK_MIN ''").error, StartsWith("Warning 1005: "));
}

TEST_F(Zentaqctl, SetUsesTheLimitsOfTheEngineInTheDatabase) {
    // TOFFSET2 may not lie below TOFFSET1, which is 14 for this engine.
    EXPECT_EQ(onFile("set", "TOFFSET2 13").exitCode, 1);
    EXPECT_EQ(onFile("set", "TOFFSET2 15").exitCode, 0);
}

TEST_F(Zentaqctl, SetThatCannotWriteLeavesTheFileWhole) {
    const std::string before = contentOf(file);
    const Outcome outcome = onFile("set", "KNK_MIN 44 -o " + inQuotes(folder.file("no/such/place.ZQ4OA")));
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
    EXPECT_EQ(contentOf(file), before);
}

/// A box on one line, as the program tells it.
class BoxText : public Dialogs {
 public:
    Answer show(const Box& box) override {
        text = box.text;
        if (const auto end = text.find('\n'); end != std::string::npos) text.replace(end, 1, ": ");
        if (const auto end = text.find('\n'); end != std::string::npos) text.replace(end, 1, " ");
        return Answer::Ok;
    }
    std::string openFile(const FileRequest&) override { return {}; }
    std::string saveFile(const FileRequest&) override { return {}; }
    std::optional<std::string> input(const std::string&, const std::string&, const std::string&) override {
        return {};
    }
    std::string text;
};

TEST_F(Zentaqctl, SaysTheSameWordsAsTheBoxesOfTheWindows) {
    BoxText box;
    Messages messages(
        box, [](std::string_view) {}, [](const std::string&) {});
    messages.Check_Range(101, 2, 100, "(2 to 100 units)");
    EXPECT_EQ(onFile("set", "KNK_MIN 101").error, box.text + "\n");
    messages.Check_Input(1000, "fast");
    EXPECT_EQ(onFile("set", "KNK_MIN fast").error, box.text + "\n");
    messages.Check_Input(1003, "");
    EXPECT_EQ(onFile("set", "KNK_MIN ''").error, box.text + "\n");
}

// ---- image

/// The data bytes of S113 lines by address; fails the test on a wrong checksum.
std::vector<int> imageBytes(const std::string& text) {
    std::vector<int> bytes;
    std::size_t at = 0;
    while (text.compare(at, 4, "S113") == 0) {
        const auto byteAt = [&](std::size_t place) {
            return std::stoi(text.substr(at + place, 2), nullptr, 16);
        };
        const int address = byteAt(4) * 256 + byteAt(6);
        EXPECT_EQ(address, 0x1100 + static_cast<int>(bytes.size()));
        int sum = 0;
        for (std::size_t place = 2; place < 42; place += 2) sum += byteAt(place);
        for (std::size_t place = 8; place < 40; place += 2) bytes.push_back(byteAt(place));
        EXPECT_EQ(sum % 256, 255) << "line at " << address;
        EXPECT_EQ(text.substr(at + 42, 2), "\r\n");
        at += 44;
    }
    EXPECT_EQ(text.substr(at), "S9030000FC\r\n");
    return bytes;
}

TEST_F(Zentaqctl, ImageWritesTheMemoryAsSRecords) {
    const std::string output = folder.file("out.s19");
    EXPECT_EQ(onFile("image", "-o " + inQuotes(output)).exitCode, 0);
    const std::vector<int> bytes = imageBytes(contentOf(output));
    ASSERT_EQ(bytes.size(), 147U * 16);
    EXPECT_EQ(bytes[58] * 256 + bytes[59], 7000);   // rev limit
    EXPECT_EQ(bytes[5], 0);                         // tooth offset 14
    EXPECT_EQ(bytes[592] * 256 + bytes[593], 438);  // 7000 / 16 = 437.5, to the even neighbour
    EXPECT_EQ(bytes[912 + 16], 50 - 27);            // VE
    EXPECT_EQ(bytes[656], 53);                      // 12.5 * 4.25 = 53.125
    EXPECT_EQ(std::string(bytes.begin() + 560, bytes.begin() + 566), "Street");
}

TEST_F(Zentaqctl, ImageForOlderFirmwareHasFewerRowsAndNoStopPoints) {
    const std::string output = folder.file("out.s19");
    EXPECT_EQ(onFile("image", "--firmware 4.9 -o " + inQuotes(output)).exitCode, 0);
    EXPECT_EQ(imageBytes(contentOf(output)).size(), 137U * 16);
}

TEST_F(Zentaqctl, ImageForFirmwareBeforeTheLinearSensorMovesTheInjectorScaling) {
    const std::string output = folder.file("out.s19");
    const Outcome outcome = onFile("image", "--firmware 2.17 -o " + inQuotes(output));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.error, HasSubstr("Your BIN file has been updated to work with this firmware."));
    // 7.4 ms / (876 / 1024) = 8.650 ms in microseconds
    const std::vector<int> bytes = imageBytes(contentOf(output));
    EXPECT_EQ(bytes[148] * 256 + bytes[149], 8650);
}

TEST_F(Zentaqctl, ImageLeavesTheCalibrationAlone) {
    const std::string before = contentOf(file);
    onFile("image", "-o " + inQuotes(folder.file("out.s19")));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, ImageOfACellThatFitsNoWordFailsAndWritesNothing) {
    std::string bytes = contentOf(file);
    const float tooFast = 40000;
    std::memcpy(bytes.data() + 12 + 4 * 58, &tooFast, sizeof tooFast);
    refdata::writeFile(file, bytes);
    const std::string output = folder.file("out.s19");
    const Outcome outcome = onFile("image", "-o " + inQuotes(output));
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
    EXPECT_FALSE(fs::exists(output));
}

// ---- record

TEST_F(Zentaqctl, RecordShowsTheLineThatAChangeSends) {
    const std::string before = contentOf(file);
    const Outcome outcome = onFile("record", "KNK_MIN 50");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "S10411228048\n");
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(Zentaqctl, RecordUsesTheScaleOfTheRunningUnit) {
    EXPECT_EQ(onFile("record", "CYL_OvrThr 20").out, "S10411415059\n");
}

TEST_F(Zentaqctl, RecordShowsTheElementsAddress) {
    // VE 17 of -5: 45 = 0x2D at 0x1100 + 912 + 17 = 0x14A1; 4 + 0x14 + 0xA1 + 0x2D = 0xE6
    EXPECT_EQ(onFile("record", "VE -5 --index 17").out, "S10414A12D19\n");
}

TEST_F(Zentaqctl, RecordShowsNothingWhereNothingIsSent) {
    const Outcome outcome = onFile("record", "INJ_Number 8");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, IsEmpty());
}

TEST_F(Zentaqctl, RecordOfARefusedValueFails) {
    const Outcome outcome = onFile("record", "KNK_MIN 1");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error, "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.\n");
    EXPECT_THAT(outcome.out, IsEmpty());
}

// ---- usage

TEST_F(Zentaqctl, WrongUsageEndsWithTwo) {
    const std::string name = inQuotes(file);
    for (const std::string& arguments :
         {std::string(), std::string("program"), std::string("get"), "get " + name,
          "set " + name + " KNK_MIN", "set " + name + " VE 5 --index x", "image " + name,
          "image " + name + " --firmware five -o x", "image " + name + " --firmware 5 -o x",
          "info " + name + " --loud", "get " + name + " VE 1 2"}) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_FALSE(outcome.error.empty()) << arguments;
        EXPECT_THAT(outcome.out, IsEmpty()) << arguments;
    }
}

TEST_F(Zentaqctl, HelpAndVersionAreNoFailure) {
    EXPECT_EQ(run("--help").exitCode, 0);
    EXPECT_THAT(run("set --help").out, HasSubstr("--index"));
    EXPECT_EQ(run("--version").out, ZENTAQ_VERSION "\n");
}

TEST_F(Zentaqctl, FailsWhenItsAnswerCannotBeWritten) {
    const std::string command =
        inQuotes(ZENTAQ_APP_DIR "/zentaqctl") + " get " + inQuotes(file) + " VE >/dev/full 2>/dev/null";
    const int status = std::system(command.c_str());
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

}  // namespace
}  // namespace zentaq
