// The bytes of the unit's memory beyond those of the plain rows, and their S-records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;

TEST(Image, TablesDimensionsAndAxisWordsStandAtTheirPlaces) {
    OrbaCalibration cal;
    cal.unit.Set_GPIO_Table(1, 3, 40);
    cal.unit.Set_GPIO_Table(2, 255, 100);
    cal.unit.SET_TBL_DIMENSIONS("VE", "ROWS", 12);
    cal.unit.SET_TBL_DIMENSIONS("VE", "COLS", 13);
    cal.unit.SET_TBL_DIMENSIONS("GPO1", "ROWS", 8);
    cal.unit.SET_TBL_DIMENSIONS("GPO1", "COLS", 9);
    cal.unit.SET_TBL_DIMENSIONS("GPO2", "ROWS", 10);
    cal.unit.SET_TBL_DIMENSIONS("GPO2", "COLS", 11);
    cal.unit.SET_TBL_AXIS_TYPE("GPO1", "ROW-AXIS", "TPS");
    cal.unit.SET_TBL_AXIS_TYPE("GPO2", "COL-AXIS", "RPM");
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(1683), 102);
    EXPECT_EQ(cal.image(2191), 255);
    EXPECT_EQ(cal.imageBytes(590, 2), (std::vector<int>{13, 12}));
    EXPECT_EQ(cal.imageBytes(2192, 4), (std::vector<int>{64, 7, 9, 8}));
    EXPECT_EQ(cal.imageBytes(2260, 2), (std::vector<int>{11, 10}));
}

TEST(Image, TheCalibrationNameIsOneByteACharacter) {
    OrbaCalibration cal;
    cal.unit.BinFile("/home/me/Race.ZQ4OA");
    cal.unit.ConvertData();
    EXPECT_EQ(cal.imageBytes(560, 5), (std::vector<int>{'R', 'a', 'c', 'e', ' '}));
    EXPECT_EQ(cal.image(583), ' ');
}

TEST(Image, AFlowSensorHasNoGainAndKeepsItsZero) {
    OrbaCalibration cal;
    cal.unit.MAPUnits("%Flow");
    cal.unit.set("MAP_Scaler", 0.05F);
    cal.unit.set("MAP_Offset", 0.5F);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.word(262), 0);
    EXPECT_EQ(cal.word(264), 102);  // 0.5 * 204.6 = 102.3
}

TEST(Image, ANegativeWordLeavesANegativeHighByte) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(-300, 592);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(592), -1);    // truncate(-1.17)
    EXPECT_EQ(cal.image(593), 0xD4);  // -300 AND 255
}

TEST(Image, ANumberOfMoreThan16BitsFailsAndNoFileIsWritten) {
    TemporaryFolder folder;
    OrbaCalibration cal;
    cal.host.folder = folder.path();
    cal.unit.AssignDirectIndex(40000, 58);
    EXPECT_THROW(cal.unit.ConvertData(), Overflow);
    EXPECT_THAT(folder.names(), ::testing::IsEmpty());
}

TEST(Image, AStopWithoutAKindAndACellThatIsNoStopAreZero) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(500, 2274);
    EXPECT_EQ(cal.unit.convertStopPointsToUnit(2274), 0);
    EXPECT_EQ(cal.unit.convertStopPointsToUnit(2225), 0);
}

TEST(Image, ANotesFirstCharacterInTheEighthFuelTrimsCellIsNoTrim) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(4, 511);
    cal.unit.NOTES_TEXT("A note");  // its first character stands in the cell of the eighth user trim
    cal.unit.ConvertData();
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(511), 54);  // 4 + 50, not 65 + 50
}

TEST(Image, FuelTrimBytesShowTheCellsBeforeTheTrimsAreSpread) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(10, 2320);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(504), 50);
    EXPECT_EQ(cal.unit.DirectIndex(504), 10);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(504), 60);
}

TEST(Image, SuccessIsTold) {
    OrbaCalibration cal;
    cal.unit.ConvertData();
    EXPECT_THAT(cal.host.lastLineAdditions, ElementsAre("SUCCESS!"));
}

// ---- S-records

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
}

TEST(SRecords, OldFirmwareTakes137RowsAndNew147) {
    for (const auto& [release, rows, lastAddress] :
         std::vector<std::tuple<int, std::size_t, std::string>>{{4, 137, "1980"}, {5, 147, "1A20"}}) {
        OrbaCalibration cal(release);
        cal.unit.ConvertData();
        const auto lines = linesOf(cal.unit.sRecordText());
        ASSERT_EQ(lines.size(), rows + 1);
        EXPECT_EQ(lines.front().substr(0, 8), "S1131100");
        EXPECT_EQ(lines[rows - 1].substr(0, 8), "S113" + lastAddress);
        EXPECT_EQ(lines.back(), "S9030000FC\r");
        EXPECT_EQ(cal.unit.memoryBytes().size(), 16 * rows);
        for (std::size_t i = 0; i < rows; ++i) EXPECT_EQ(lines[i].size(), 43U) << lines[i];
    }
}

TEST(SRecords, EveryLinesBytesSumTo255) {
    OrbaCalibration cal;
    for (int i = 0; i < 256; ++i) cal.unit.set("Set_VE", i % 101 - 50, i);
    cal.unit.AssignDirectIndex(0.4F, 130);  // unrounded in the image
    cal.unit.AssignDirectIndex(15.7F, 131);
    cal.unit.AssignDirectIndex(-0.3F, 132);
    cal.unit.ConvertData();
    auto lines = linesOf(cal.unit.sRecordText());
    lines.pop_back();
    for (const auto& line : lines) {
        int sum = 0;
        for (std::size_t i = 2; i + 1 < line.size(); i += 2) sum += std::stoi(line.substr(i, 2), nullptr, 16);
        EXPECT_EQ(sum % 256, 255) << line;
    }
}

TEST(SRecords, AnEmptyRowIsWrittenInFull) {
    OrbaCalibration cal;
    const auto lines = linesOf(cal.unit.sRecordText());
    // 19 + 0 + 17 = 36, and 255 - 36 = 0xDB.
    EXPECT_EQ(lines[0], "S113110000000000000000000000000000000000DB\r");
    // Address 0x11C0: 19 + 192 + 17 = 228, and 255 - 228 = 0x1B.
    EXPECT_EQ(lines[12], "S11311C0000000000000000000000000000000001B\r");
    // Address 0x11D0: 244, so the checksum has one digit and a zero.
    EXPECT_EQ(lines[13], "S11311D0000000000000000000000000000000000B\r");
}

TEST(SRecords, AnElementIsWrittenAsItsLowByte) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(255.5F, 9);  // rounds to 256
    cal.unit.AssignDirectIndex(300, 10);    // 0x12C
    cal.unit.AssignDirectIndex(-1, 11);     // 0xFFFF
    cal.unit.AssignDirectIndex(15, 12);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(9), 256);
    const std::string line = linesOf(cal.unit.sRecordText())[0];
    EXPECT_EQ(line.substr(8 + 2 * 9, 8), "002CFF0F");
    const auto bytes = cal.unit.memoryBytes();
    EXPECT_THAT(std::vector<int>(bytes.begin() + 9, bytes.begin() + 13), ElementsAre(0, 0x2C, 0xFF, 15));
}

TEST(SRecords, TheTextHoldsTheMemory) {
    OrbaCalibration cal;
    for (int i = 0; i < 256; ++i) cal.unit.set("Set_SPW", i % 100, i);
    cal.unit.ConvertData();
    std::vector<std::uint8_t> bytes;
    for (const auto& line : linesOf(cal.unit.sRecordText())) {
        if (!line.starts_with("S113")) continue;
        for (std::size_t i = 8; i < 40; i += 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(line.substr(i, 2), nullptr, 16)));
        }
    }
    EXPECT_EQ(bytes, cal.unit.memoryBytes());
}

TEST(MakeS19, WritesTheTextInTheProgramsFolderInPlaceOfTheOld) {
    TemporaryFolder folder;
    OrbaCalibration cal;
    cal.host.folder = folder.path();
    writeContent(folder.file("ORB.s19"), std::string(20000, 'x'));
    cal.unit.ConvertData();
    cal.host.forget();
    EXPECT_EQ(cal.unit.MakeS19(), folder.file("ORB.s19"));
    EXPECT_EQ(contentOf(folder.file("ORB.s19")), cal.unit.sRecordText());
    EXPECT_THAT(folder.names(), ElementsAre("ORB.s19"));
    EXPECT_THAT(cal.host.lastLineAdditions, ElementsAre("SUCCESS!"));
}

TEST(MakeS19, AFolderThatIsNotThereIsAFileError) {
    OrbaCalibration cal;
    cal.host.folder = "/no/such/folder";
    EXPECT_THROW(cal.unit.MakeS19(), FileError);
    EXPECT_THAT(cal.host.lastLineAdditions, ::testing::IsEmpty());
}

}  // namespace
}  // namespace zentaq::testing
