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

class ZentaqctlImage : public Zentaqctl {
 protected:
    Outcome image(const std::string& rest = {}) { return onFile("image", rest + " -o " + inQuotes(output)); }
    std::string output = folder.file("out.s19");
};

TEST_F(ZentaqctlImage, WritesTheMemoryAsSRecords) {
    EXPECT_EQ(image().exitCode, 0);
    const std::vector<int> bytes = imageBytes(contentOf(output));
    ASSERT_EQ(bytes.size(), 147U * 16);
    EXPECT_EQ(bytes[58] * 256 + bytes[59], 7000);   // rev limit
    EXPECT_EQ(bytes[5], 0);                         // tooth offset 14
    EXPECT_EQ(bytes[592] * 256 + bytes[593], 438);  // 7000 / 16 = 437.5, to the even neighbour
    EXPECT_EQ(bytes[912 + 16], 50 - 26);            // VE
    EXPECT_EQ(bytes[656], 53);                      // 12.5 * 4.25 = 53.125
    EXPECT_EQ(std::string(bytes.begin() + 560, bytes.begin() + 566), "Street");
}

TEST_F(ZentaqctlImage, ForOlderFirmwareHasFewerRowsAndNoStopPoints) {
    EXPECT_EQ(image("--firmware 4.9").exitCode, 0);
    EXPECT_EQ(imageBytes(contentOf(output)).size(), 137U * 16);
}

TEST_F(ZentaqctlImage, ForFirmwareBeforeTheLinearSensorMovesTheInjectorScaling) {
    EXPECT_THAT(image("--firmware 2.17"),
                Succeeds(_, HasSubstr("Your BIN file has been updated to work with this firmware.")));
    // 7.4 ms / (876 / 1024) = 8.650 ms in microseconds
    const std::vector<int> bytes = imageBytes(contentOf(output));
    EXPECT_EQ(bytes[148] * 256 + bytes[149], 8650);
}

// Codes 0 to 999 tell no release: nobody knows what the injectors were made for, but a unit needs a sensor.
TEST_F(ZentaqctlImage, OfAFileThatTellsNoReleaseHasASensorAndItsInjectorsAsTheyAre) {
    constexpr int firmwareCode = -1, sensorScale = 126, sensorId = 128;
    plant(sensorId, 0);
    plant(sensorScale, 0);
    plant(firmwareCode, 2010);
    ASSERT_EQ(image("--firmware 5.99").exitCode, 0);
    const std::vector<int> ofOldFile = imageBytes(contentOf(output));
    for (const float code : {0.0F, 1.0F, 999.0F}) {
        plant(firmwareCode, code);
        EXPECT_THAT(
            image("--firmware 5.99"),
            Succeeds(_, file + " does not tell the firmware that it was made for: its injector scaling is "
                               "taken as it stands\n"));
        const std::vector<int> bytes = imageBytes(contentOf(output));
        ASSERT_EQ(bytes.size(), 147U * 16);
        EXPECT_EQ(bytes[148] * 256 + bytes[149], 7400) << code;
        EXPECT_NE(bytes[262] * 256 + bytes[263], 0) << code;
        for (int i = 262; i < 266; ++i) {
            const auto at = static_cast<std::size_t>(i);
            EXPECT_EQ(bytes[at], ofOldFile[at]) << code << " " << i;
        }
    }
}

TEST_F(ZentaqctlImage, TellsOfAnOutputCellThatNoEntryGives) {
    plant(1680 + 5, 500);
    EXPECT_THAT(image(), Succeeds(_, file + ": GPO1[0,5] (cell 1685) holds 500 (0 to 100%)\n"));
    EXPECT_EQ(imageBytes(contentOf(output))[1680 + 5], 251);  // 1275 less 1024
}

TEST_F(ZentaqctlImage, AValueThatItsReaderMendsIsToldAsTheFileHoldsIt) {
    plant(2196, 0);
    const std::string told = "EGO_Type (cell 2196) holds 0 (1 to 2)";
    EXPECT_EQ(image().error, file + ": " + told + "\n");
    const std::string again = folder.file("again.ZQ4OA");
    EXPECT_EQ(run("import - -o " + inQuotes(again), onFile("export").out).error, again + ": " + told + "\n");
    // As the first programs wrote it: the reader makes 1 of it.
    plant(2196, 129);
    EXPECT_THAT(image().error, IsEmpty());
}

TEST_F(ZentaqctlImage, LeavesTheCalibrationAlone) {
    const std::string before = contentOf(file);
    image();
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(ZentaqctlImage, OfACellThatFitsNoWordFailsAndWritesNothing) {
    plant(58, 40000);
    EXPECT_THAT(image(), Fails(1, isOneLine));
    EXPECT_FALSE(fs::exists(output));
    EXPECT_EQ(onFile("image", "-o " + inQuotes(folder.file("no/such/out.s19"))).exitCode, 1);
}

TEST_F(ZentaqctlImage, GoesToTheStandardOutputToo) {
    ASSERT_EQ(image().exitCode, 0);
    EXPECT_EQ(onFile("image", "-o -").out, contentOf(output));
}

struct Unfit {
    int cell;
    float value;
    const char* told;
};

class ZentaqctlUnfit : public ZentaqctlImage, public ::testing::WithParamInterface<Unfit> {};

TEST_P(ZentaqctlUnfit, ValueMakesNoImageAndIsNamedWithItsMemberAndCell) {
    const auto& [cell, value, told] = GetParam();
    plant(cell, value);
    expectRefused(image(), file + " makes no image: " + told +
                               ", which does not fit the bytes that the unit has for it");
    EXPECT_FALSE(fs::exists(output));
}

INSTANTIATE_TEST_SUITE_P(
    Cells, ZentaqctlUnfit,
    ::testing::Values(Unfit{34, 1e6F, "KNK_MIN (cell 34) holds 1000000"},
                      Unfit{656 + 3 * 16 + 5, 1e20F, "ADV[3,5] (cell 709) holds 1E+20"},
                      Unfit{283, 0, "Y[0] (cell 283) holds 0"},  // a ratio of 0 has no reciprocal
                      Unfit{237 + 2, 1e7F, "BATCom[2] (cell 239) holds 1E+07"},
                      Unfit{1680 + 17, 1e6F, "GPO1[1,1] (cell 1697) holds 1000000"},
                      Unfit{2312 + 1, 1e6F, "INJTRIM.sent[1] (cell 521) holds 1000000"},
                      Unfit{2242 + 3, 1e6F, "GPO1.X-Axis[3] (cell 2245) holds 1000000"},
                      Unfit{8, 1e20F, "CYL_Number (cell 8) holds 1E+20"},
                      Unfit{126, 1e6F, "MAP_Scaler (cell 126) holds 1000000"}));

TEST_F(ZentaqctlImage, NamesAParameterOfAPinThatFitsNoByte) {
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 2").exitCode, 0);
    plant(336 + 2 * 9 + 1, 1e7F);  // speed of the shift light
    EXPECT_THAT(image().error, HasSubstr("GPIO[2].parameter[0] (cell 355) holds 1E+07"));
}

}  // namespace
}  // namespace zentaq
