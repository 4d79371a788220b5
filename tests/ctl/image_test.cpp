// The memory image as S-records.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

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
    EXPECT_EQ(bytes[912 + 16], 50 - 26);            // VE
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
    writeFile(file, bytes);
    const std::string output = folder.file("out.s19");
    const Outcome outcome = onFile("image", "-o " + inQuotes(output));
    EXPECT_EQ(outcome.exitCode, 1);
    expectOneLine(outcome.error);
    EXPECT_FALSE(fs::exists(output));
}

TEST_F(Zentaqctl, ImageGoesToTheStandardOutputToo) {
    const std::string output = folder.file("out.s19");
    ASSERT_EQ(onFile("image", "-o " + inQuotes(output)).exitCode, 0);
    EXPECT_EQ(onFile("image", "-o -").out, contentOf(output));
}

TEST_F(Zentaqctl, ImageDoesNotWriteOverTheCalibration) {
    const std::string before = contentOf(file);
    expectRefused(onFile("image", "-o " + inQuotes(file)), file + " would be overwritten; name another file");
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(onFile("image", "-o " + inQuotes(folder.file("no/such/out.s19"))).exitCode, 1);
}

TEST_F(Zentaqctl, ImageOfAValueThatFitsNoByteNamesTheFile) {
    plant(34, 1e6F);  // KNK_MIN, one byte
    expectRefused(onFile("image", "-o " + inQuotes(folder.file("x.s19"))),
                  file + " makes no image: a value does not fit the bytes that the unit has for it");
    EXPECT_FALSE(fs::exists(folder.file("x.s19")));
}

}  // namespace
}  // namespace zentaq
