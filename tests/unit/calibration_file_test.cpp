// Calibration files: layout, repairs on opening, saving over old files, failures.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CalibrationFile : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    RecordingHost host;
    Unit unit{orbaKind(), host};
    std::string path = folder.file("Tune.ZQ4OA");

    void open(const FileOfFloats& file) { openBytes(file.bytes()); }
    void openBytes(const std::string& bytes) {
        writeContent(path, bytes);
        unit.FileOpen(path);
    }
    std::vector<float> cells(int first, int count) const {
        std::vector<float> values;
        for (int i = 0; i < count; ++i) values.push_back(unit.DirectIndex(first + i));
        return values;
    }
};

// ---- Layout

TEST_F(CalibrationFile, ANewFileIs11324BytesOfHeaderAndCells) {
    unit.FW_Release(4);
    unit.FW_Build(7);
    unit.set("KNK_MIN", 50);
    unit.Set_Control(2, true);
    unit.AssignDirectIndex(8.5F, 2827);
    unit.BinFile(path);
    unit.SaveFile();
    const std::string bytes = contentOf(path);
    ASSERT_EQ(bytes.size(), 11324U);
    EXPECT_EQ(floatAt(bytes, 0), 3);
    EXPECT_EQ(floatAt(bytes, 1), 10.2F);
    EXPECT_EQ(floatAt(bytes, 2), 4007);
    EXPECT_EQ(floatAt(bytes, 3), 4);  // control byte 1
    EXPECT_EQ(floatAt(bytes, 3 + 34), 50);
    EXPECT_EQ(floatAt(bytes, 3 + 560), 'T');
    EXPECT_EQ(floatAt(bytes, 3 + 2827), 8.5F);
    EXPECT_EQ(bytes.substr(0, 4), std::string("\x00\x00\x40\x40", 4));  // 3.0, low byte first
    EXPECT_THAT(host.events, ElementsAre(UnitEvent::Saved));
    EXPECT_THAT(folder.names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(CalibrationFile, SavingOverALongerFileKeepsItsSurplus) {
    writeContent(path, std::string(11324, 'x') + "surplus");
    unit.BinFile(path);
    unit.SaveFile();
    const std::string bytes = contentOf(path);
    ASSERT_EQ(bytes.size(), 11331U);
    EXPECT_EQ(bytes.substr(11324), "surplus");
    EXPECT_EQ(bytes.find("xx"), std::string::npos);
}

TEST_F(CalibrationFile, AFileThatCannotBeWrittenIsAFileErrorAndNothingIsTold) {
    unit.BinFile("/no/such/folder/Tune.ZQ4OA");
    setFirmwareCode(unit, 2010);
    unit.FW_Build(99);
    EXPECT_THROW(unit.SaveFile(), FileError);
    EXPECT_THAT(host.events, IsEmpty());
    EXPECT_EQ(unit.facts().firmwareCode, 2010);
}

TEST_F(CalibrationFile, SavingWithoutAPathIsAFileError) {
    EXPECT_THROW(unit.SaveFile(), FileError);
}

// ---- Opening

TEST_F(CalibrationFile, OpeningReadsTheHeaderAndTellsTheForms) {
    open({9.44F, 4012, {{0, 5}, {1, 128}, {2, 1}, {34, 42}}});
    EXPECT_EQ(host.head.currentUnit, 3);
    EXPECT_EQ(unit.facts().programVersion, 9.44F);
    EXPECT_EQ(unit.facts().firmwareCode, 4012);
    EXPECT_EQ(host.head.fileState, "OLD");
    EXPECT_EQ(unit.FW_Release(), 4);
    EXPECT_EQ(unit.FW_Build(), 12);
    EXPECT_EQ(unit.controlByte(0), 5);
    EXPECT_EQ(unit.controlByte(1), 128);
    EXPECT_EQ(unit.controlByte(2), 1);
    EXPECT_EQ(unit.get("KNK_MIN"), 42);
    EXPECT_EQ(host.formChanges, 1);
    EXPECT_GE(host.yields, 1);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, OpeningSendsNothingToARunningUnit) {
    unit.ONFLY_MODE(true);
    open({9.44F, 4012});
    EXPECT_THAT(host.sent, IsEmpty());
}

TEST_F(CalibrationFile, MoreThan3001FloatsAreABoundsErrorAndNothingChanges) {
    unit.set("KNK_MIN", 50);
    setFirmwareCode(unit, 4001);
    EXPECT_THROW(openBytes(std::string(12 + 4 * 3002, '\0')), BoundsError);
    EXPECT_EQ(unit.get("KNK_MIN"), 50);
    EXPECT_EQ(unit.facts().firmwareCode, 4001);
    EXPECT_EQ(host.formChanges, 0);
}

TEST_F(CalibrationFile, AFileThatCannotBeOpenedIsAFileErrorAndNothingChanges) {
    unit.set("KNK_MIN", 50);
    EXPECT_THROW(unit.FileOpen(folder.file("missing.ZQ4OA")), FileError);
    EXPECT_THROW(unit.FileOpen(folder.path()), FileError);
    EXPECT_THROW(openBytes("short"), FileError);
    EXPECT_EQ(unit.get("KNK_MIN"), 50);
}

TEST_F(CalibrationFile, APipeIsAFileErrorAndNotAnEndlessWait) {
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_THROW(unit.FileOpen(path), FileError);
}

// 4 TB, almost all of it a hole: more than could be read into memory.
TEST_F(CalibrationFile, AFileOfAbsurdLengthIsABoundsErrorAndIsNotReadToItsEnd) {
    writeContent(path, FileOfFloats(9.44F, 5099).bytes());
    std::error_code noRoomForIt;
    std::filesystem::resize_file(path, std::uintmax_t{1} << 42U, noRoomForIt);
    if (noRoomForIt) GTEST_SKIP() << "this file system takes no file of 4 TB";
    EXPECT_THROW(unit.FileOpen(path), BoundsError);
}

TEST_F(CalibrationFile, ARepairThatFailsLeavesTheOldCalibrationWhole) {
    unit.set("KNK_MIN", 50);
    unit.Set_Control(1, true);
    FileOfFloats file(9.44F, 4012);
    file.cell(39) = 7;  // no such sensor
    EXPECT_THROW(open(file), BoundsError);
    EXPECT_EQ(unit.get("KNK_MIN"), 50);
    EXPECT_EQ(unit.controlByte(0), 2);
    EXPECT_EQ(unit.FW_Release(), 0);
    EXPECT_EQ(host.head.fileState, "");
    EXPECT_EQ(unit.facts().firmwareCode, 0);
}

// ---- Firmware

TEST_F(CalibrationFile, NoFirmwareInTheFileKeepsTheUnits) {
    unit.FW_Release(4);
    open({9.44F, 0});
    EXPECT_EQ(unit.FW_Release(), 4);
    EXPECT_EQ(unit.FW_Build(), 0);
}

TEST_F(CalibrationFile, TheLinksFirmwareGoesBeforeTheFiles) {
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    unit.FW_Build(3);
    open({9.44F, 4012});
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.FW_Build(), 3);
    EXPECT_EQ(unit.facts().firmwareCode, 4012);
}

// ---- Sensor repair

TEST_F(CalibrationFile, AnOldFileOnNewFirmwareGetsTheSensorOfItsRating) {
    host.firmwareIsKnownFromLink = true;
    host.sensors[2] = {.scale = 0.0252F, .offset = 0.2F, .unitsCode = 2};
    unit.FW_Release(5);
    open({9.44F, 2010, {{39, 2}, {124, 2}}});
    EXPECT_EQ(unit.get("MAP_ID"), 2);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.0252F);
    EXPECT_EQ(unit.get("MAP_Offset"), 0.2F);
    EXPECT_EQ(unit.MAPUnits(), "PSIA");
    EXPECT_EQ(host.informed.size(), 1U);  // of the injectors only
}

TEST_F(CalibrationFile, ARatingOfItsOwnIsACustomSensor) {
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    open({9.44F, 2010, {{39, 4}, {124, 2.5F}}});
    EXPECT_EQ(unit.get("MAP_ID"), 4);
    ASSERT_FALSE(host.informed.empty());
    EXPECT_EQ(
        host.informed[0],
        "Your BIN file appears to use a custom MAP sensor.\n"
        "Your tune has been preserved, but the senor must be defined to give accurate readings.\n"
        "You can define the customer sensor under Sensor Parameters->MAP and selecting the Custom button.");
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.05295F);  // no row for the sensor: the default
}

TEST_F(CalibrationFile, ARatingOf4IsSensor4WithoutABox) {
    unit.FW_Release(5);
    open({9.44F, 0, {{39, 4}, {124, 4}}});  // so old that it names no firmware
    EXPECT_EQ(unit.get("MAP_ID"), 4);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, ANewFileKeepsItsSensor) {
    host.sensors[1] = {.scale = 1, .offset = 1, .unitsCode = 2};
    open({9.44F, 3001, {{128, 9}}});
    EXPECT_EQ(unit.get("MAP_ID"), 9);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.05295F);
}

// ---- Stops, axes, dimensions

TEST_F(CalibrationFile, StopPointsAreSeededFromTheAxes) {
    FileOfFloats file(9.44F, 2010);  // a 1 bar sensor reads from 1 to 104
    for (int i = 0; i < 16; ++i) {
        file.cell(592 + 2 * i) = static_cast<float>(500 * (i + 1));
        file.cell(624 + 2 * i) = static_cast<float>(10 * i);  // 0 lies below, 110 and more above the sensor
    }
    open(file);
    for (const int first : {2242, 2274}) {
        EXPECT_EQ(unit.DirectIndex(first), 500);
        EXPECT_EQ(unit.DirectIndex(first + 15), 8000);
    }
    for (const int first : {2226, 2258}) {
        EXPECT_FLOAT_EQ(unit.DirectIndex(first), 1.1F);
        EXPECT_FLOAT_EQ(unit.DirectIndex(first + 1), 10);
        EXPECT_FLOAT_EQ(unit.DirectIndex(first + 10), 100);
        EXPECT_FLOAT_EQ(unit.DirectIndex(first + 11), 103.9F);
        EXPECT_FLOAT_EQ(unit.DirectIndex(first + 15), 103.9F);
    }
    EXPECT_NEAR(unit.DirectIndex(624), 1.1, 1e-4);
    EXPECT_NEAR(unit.DirectIndex(654), 103.9, 1e-4);
}

TEST_F(CalibrationFile, StopPointsStayWhenOneOfTheFirstFourIsSet) {
    open({9.44F, 2010, {{2245, 4000}, {592, 500}}});
    EXPECT_EQ(unit.DirectIndex(2242), 0);
    EXPECT_EQ(unit.DirectIndex(2226), 0);
    EXPECT_EQ(unit.DirectIndex(624), 0);
}

TEST_F(CalibrationFile, AxisTypesAreSeededOnlyWhenBothAreMissing) {
    open({9.44F, 5099});
    EXPECT_THAT(cells(2290, 2), ElementsAre(55, 55));
    open({9.44F, 5099, {{2291, 0x41}}});
    EXPECT_THAT(cells(2290, 2), ElementsAre(0, 0x41));
}

TEST_F(CalibrationFile, DimensionsAreSeeded) {
    open({10.2F, 5099});
    EXPECT_THAT(cells(2292, 6), ElementsAre(16, 16, 16, 16, 16, 16));
    open({10.2F, 5099, {{2292, 12}, {2293, 14}}});
    EXPECT_THAT(cells(2292, 6), ElementsAre(12, 14, 0, 0, 0, 0));
}

// ---- Injector scaling

TEST_F(CalibrationFile, InjectorScalingMovesUpWithTheFirmware) {
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    unit.FW_Build(4);
    open({9.44F, 2010, {{148, 10}, {150, 1}}});
    EXPECT_FLOAT_EQ(unit.DirectIndex(150), 1.9775171F);  // 1 + 10 * 100 / 1023
    EXPECT_EQ(unit.DirectIndex(148), 8.555F);            // 10 * 876 / 1024 = 8.5547
    EXPECT_EQ(unit.facts().firmwareCode, 5004);
    EXPECT_THAT(host.informed, ElementsAre("Your BIN file has been updated to work with this firmware.\n"
                                           "You should do a Save As... and reprogram your unit."));
}

TEST_F(CalibrationFile, InjectorScalingMovesDownWithTheFirmware) {
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(2);
    open({9.44F, 4010, {{148, 10}, {150, 1}}});
    EXPECT_NEAR(unit.DirectIndex(150), 0.0224829, 1e-6);  // 1 - 10 * 100 / 1023
    EXPECT_EQ(unit.DirectIndex(148), 11.689F);            // 10 / (876 / 1024) = 11.6895
    EXPECT_EQ(unit.facts().firmwareCode, 2000);
}

TEST_F(CalibrationFile, InjectorScalingStaysWhileNoUnitHasToldItsFirmware) {
    unit.FW_Release(5);
    open({9.44F, 0, {{148, 10}}});
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, WhatAUnitOfAnotherKindHasToldIsNotThisOnes) {
    host.firmwareIsKnownFromLink = true;
    host.linkedSlot = 4;
    open({9.44F, 5010, {{148, 10}}});
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.FW_Build(), 10);
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, AFileWithoutAReleaseIsNoOldOneForTheLink) {
    host.firmwareIsKnownFromLink = true;
    for (const float code : {0.0F, 1.0F, 999.0F, -2010.0F}) {
        for (const int release : {2, 5}) {
            unit.FW_Release(release);
            open({9.44F, code, {{148, 10}, {150, 1}}});
            unit.FW_Release(7 - release);
            unit.FW_Release(release);
            EXPECT_EQ(unit.DirectIndex(148), 10) << code << " " << release;
            EXPECT_EQ(unit.DirectIndex(150), 1) << code << " " << release;
            EXPECT_EQ(unit.facts().firmwareCode, code);
        }
    }
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, AUnitThatTellsNoReleaseMovesNothing) {
    host.firmwareIsKnownFromLink = true;
    open({9.44F, 5010, {{148, 10}}});
    unit.FW_Release(0);
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, AFileThatTellsNoReleaseKeepsItsSensorBesideAUnitThatTellsItsFirmware) {
    host.firmwareIsKnownFromLink = true;
    host.sensors[4] = {.scale = 0.0121F, .offset = 0.1F, .unitsCode = 0};
    unit.FW_Release(5);
    open({9.44F, 500, {{128, 6}, {126, 0.02F}}});
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.get("MAP_ID"), 6);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.02F);
}

TEST_F(CalibrationFile, AFileWithoutAReleaseGetsTheSensorOfItsRatingWithTheFirstNewFirmware) {
    host.sensors[2] = {.scale = 0.0252F, .offset = 0.2F, .unitsCode = 2};
    open({9.44F, 500, {{39, 2}, {124, 2}}});
    EXPECT_EQ(unit.FW_Release(), 0);
    EXPECT_EQ(unit.FW_Build(), 500);
    EXPECT_EQ(unit.get("MAP_ID"), 0);
    unit.FW_Release(5);
    EXPECT_EQ(unit.get("MAP_ID"), 2);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.0252F);
    unit.set("MAP_Scaler", 0.03);
    unit.FW_Release(2);
    unit.FW_Release(5);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.03F) << "one that is defined stays";
}

TEST_F(CalibrationFile, ANewReleaseOfAnOpenCalibrationMovesSensorAndInjectors) {
    host.sensors[1] = {.scale = 0.05F, .offset = 0.1F, .unitsCode = 1};
    open({9.44F, 2010, {{148, 10}}});
    host.firmwareIsKnownFromLink = true;
    unit.FW_Build(7);
    unit.FW_Release(5);
    EXPECT_EQ(unit.get("MAP_ID"), 1);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.05F);
    EXPECT_EQ(unit.DirectIndex(148), 8.555F);
    EXPECT_EQ(unit.facts().firmwareCode, 5007);
    unit.FW_Release(5);
    EXPECT_EQ(host.informed.size(), 1U);
    EXPECT_EQ(unit.DirectIndex(148), 8.555F);
}

// The cells were never moved up: the unit had not yet told its firmware when its release came.
TEST_F(CalibrationFile, ANewUnitThatCameAndWentLeavesAnOldFilesInjectorsAlone) {
    open({9.44F, 2010, {{148, 10}, {150, 1}}});
    unit.FW_Release(5);
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(2);
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_EQ(unit.DirectIndex(150), 1);
    EXPECT_EQ(unit.facts().firmwareCode, 2010);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, AnOldUnitThatCameAndWentLeavesANewFilesSensorAndInjectorsAlone) {
    host.sensors[1] = {.scale = 0.05F, .offset = 0.1F, .unitsCode = 1};
    open({9.44F, 5099, {{126, 0.08F}, {127, 0.5F}, {128, 12}, {129, 2}, {148, 10}}});
    unit.FW_Release(2);
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.08F);
    EXPECT_EQ(unit.get("MAP_Offset"), 0.5F);
    EXPECT_EQ(unit.get("MAP_ID"), 12);
    EXPECT_EQ(unit.MAPUnits(), "PSIA");
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(CalibrationFile, InjectorsThatWereMovedUpMoveDownAgain) {
    open({9.44F, 2010, {{148, 10}, {150, 1}}});
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    unit.FW_Release(2);
    EXPECT_EQ(unit.DirectIndex(148), 10);                // 8.555 / (876 / 1024) = 10.0004
    EXPECT_NEAR(unit.DirectIndex(150), 1.141251, 1e-5);  // 1 + (10 - 8.555) * 100 / 1023
    EXPECT_EQ(unit.facts().firmwareCode, 2010);
    EXPECT_EQ(host.informed.size(), 2U);
}

TEST_F(CalibrationFile, AReleaseWithoutACalibrationMovesNothing) {
    host.head.currentUnit = 0;
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(2);
    unit.FW_Release(5);
    EXPECT_THAT(host.informed, IsEmpty());
    EXPECT_EQ(unit.get("MAP_ID"), 0);
}

// ---- Barometric trim

TEST_F(CalibrationFile, BarometricTrimsAreSeededTogetherWithTheRatio) {
    FileOfFloats file(9.44F, 5099);
    file.cell(2225) = 9;
    open(file);
    EXPECT_THAT(cells(138, 8), ElementsAre(-50, -43, -35, -28, -20, -13, -5, 3));
    EXPECT_EQ(unit.get("AFR"), 14.64F);
    file.cell(145) = 1;
    open(file);
    EXPECT_THAT(cells(138, 8), ElementsAre(0, 0, 0, 0, 0, 0, 0, 1));
    EXPECT_EQ(unit.get("AFR"), 9);
}

// ---- Closing, names and notes

TEST_F(CalibrationFile, ClosingClearsTheCalibration) {
    open({9.44F, 4012});
    unit.BinFile(path);
    unit.FirmWare("ZQA 4.12");
    unit.Serial("12345");
    unit.CloseFile();
    EXPECT_EQ(unit.BinFile(), "");
    EXPECT_EQ(unit.FirmWare(), "");
    EXPECT_EQ(unit.Serial(), "");
    EXPECT_EQ(unit.facts().firmwareCode, 0);
    for (int i = 0; i < Unit::cellCount; ++i) ASSERT_EQ(unit.DirectIndex(i), 0) << i;
}

TEST_F(CalibrationFile, TheNameIsTheBareFileNameOf24Characters) {
    const std::vector<std::pair<std::string, std::string>> names = {
        {"/home/me/Race.ZQ4OA", "Race                    "},
        {"C:\\Tunes\\Race day.zq4oa", "Race day                "},
        {"Tune.BIN", "Tune.BIN                "},
        {"a/0123456789012345678901234567.ZQ4OA", "012345678901234567890123"},
        {"M\xC3\xBCller.ZQ4OA", "M\xC3\xBCller                  "},
        {"\xE6\x97\xA5.ZQ4OA", "?                       "}};
    for (const auto& [file, name] : names) {
        unit.BinFile(file);
        EXPECT_EQ(unit.BiName(), name);
        EXPECT_EQ(unit.BinFile(), file);
    }
    unit.BinFile("M\xC3\xBCller.ZQ4OA");
    EXPECT_EQ(unit.DirectIndex(561), 0xFC);
}

TEST_F(CalibrationFile, NotesHold500Characters) {
    EXPECT_EQ(unit.NOTES_TEXT(), "Write any useful information here.     (Limit 500 Characters)");
    unit.NOTES_TEXT(std::string(501, 'n'));
    EXPECT_EQ(unit.NOTES_TEXT(), std::string(500, 'n'));
    EXPECT_EQ(unit.DirectIndex(2827), 0);
    unit.NOTES_TEXT("two\r\nlines");
    EXPECT_EQ(unit.NOTES_TEXT(), "two\r\nlines");
    unit.AssignDirectIndex(0, 2328);
    EXPECT_EQ(unit.NOTES_TEXT(), "to\r\nlines");
    unit.NOTES_TEXT("");
    EXPECT_EQ(unit.NOTES_TEXT(), "Write any useful information here.     (Limit 500 Characters)");
}

TEST_F(CalibrationFile, NotesInAnyAlphabetComeBack) {
    const std::string notes =
        "\xD0\xA2\xD1\x8E\xD0\xBD 50 \xC2\xB0"
        "C \xF0\x9F\x8F\x81";
    unit.NOTES_TEXT(notes);
    EXPECT_EQ(unit.NOTES_TEXT(), notes);
    unit.NOTES_TEXT("\xFF\xC3");  // no valid text
    EXPECT_EQ(unit.NOTES_TEXT(), "\xC3\xBF\xC3\x83");
}

TEST_F(CalibrationFile, CellsThatAreNoCharactersAreLeftOutOfTheNotes) {
    unit.NOTES_TEXT("abc");
    unit.AssignDirectIndex(-7, 2328);
    EXPECT_EQ(unit.NOTES_TEXT(), "ac");
    unit.AssignDirectIndex(1e30F, 2328);
    EXPECT_EQ(unit.NOTES_TEXT(), "ac");
    unit.AssignDirectIndex(0xD800, 2328);
    EXPECT_EQ(unit.NOTES_TEXT(), "ac");
}

// ---- The file itself

TEST_F(CalibrationFile, ASavedFileKeepsItsPermissionsAndItsLinks) {
    const std::string real = folder.file("Real.ZQ4OA");
    writeContent(real, "old");
    std::filesystem::permissions(real,
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    std::filesystem::create_symlink(real, path);
    unit.BinFile(path);
    unit.SaveFile();
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(contentOf(real).size(), 11324U);
    EXPECT_EQ(std::filesystem::status(real).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace
}  // namespace zentaq::testing
