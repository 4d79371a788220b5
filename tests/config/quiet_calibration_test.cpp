#include "config/quiet_calibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "refdata/refdata_fixture.h"
#include "unit/old_file_encoder.h"

namespace zentaq {
namespace {

using refdata::failureOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using zentaq::testing::LegacyFile;

LegacyFile oldFile(int floats) {
    LegacyFile file(floats);
    file[292] = 2;
    file[58] = 7200;
    file[355] = 9;  // eight cylinders, injected in banks
    return file;
}

class ImportWithReferenceData : public refdata::ReferenceDatabase {};

TEST_F(ImportWithReferenceData, TakesAnOldFileOfEachLengthAsItsKind) {
    const Database database = open();
    const std::pair<int, const UnitKind*> lengths[] = {
        {2176, &orbaKind()}, {2180, &orbaKind()}, {2328, &orbLiteKind()}, {1201, &pzk2Kind()}};
    for (const auto& [floats, kind] : lengths) {
        const auto calibration =
            QuietCalibration::importOld(folder.write("old.BIN", oldFile(floats).bytes()), &database);
        EXPECT_EQ(&calibration->unit.kind(), kind);
        EXPECT_EQ(calibration->unit.get("REV_Limiter"), 7200);
        EXPECT_EQ(calibration->host.header().currentUnit, kind->fileKind);
        EXPECT_THAT(calibration->host.told(), ElementsAre(HasSubstr("updated to work with this firmware.")));
    }
}

TEST_F(ImportWithReferenceData, SavesAsACalibrationThatOpensAgain) {
    const Database database = open();
    const auto calibration =
        QuietCalibration::importOld(folder.write("old.BIN", oldFile(2176).bytes()), &database);
    const std::string fresh = folder.file("new.ZQ4OA");
    calibration->unit.BinFile(fresh);
    calibration->unit.SaveFile();
    EXPECT_EQ(std::filesystem::file_size(fresh), 11324u);
    const auto again = QuietCalibration::open(fresh);
    EXPECT_EQ(again->unit.get("REV_Limiter"), 7200);
    EXPECT_THAT(again->unit.BiName(), HasSubstr("new "));
}

TEST(QuietCalibration, RefusesToImportWhatHasNoLengthOfAnOldFile) {
    const TemporaryFolder folder;
    const std::string path = folder.write("old.BIN", std::string(8703, '\0'));
    const auto import = [](const std::string& file) {
        return failureOf<FileError>([&] { QuietCalibration::importOld(file); });
    };
    EXPECT_EQ(import(path),
              path + " is no file of the older generation: no unit kind has files of 8703 bytes");
    EXPECT_THAT(import(folder.file("none.BIN")), HasSubstr("none.BIN"));
}

TEST_F(ImportWithReferenceData, ACalibrationThatItsExactLengthNamesOpens) {
    const Database database = open();
    const std::pair<std::size_t, const UnitKind*> lengths[] = {{8718, &orbaKind()},
                                                               {9324, &orbLiteKind()},
                                                               {9320, &orbcKind()},
                                                               {9316, &orbdKind()},
                                                               {4816, &pzk2Kind()}};
    for (const auto& [bytes, kind] : lengths) {
        const auto calibration =
            QuietCalibration::open(folder.write("a.ZQ4OA", std::string(bytes, '\0')), &database);
        EXPECT_EQ(&calibration->unit.kind(), kind) << bytes;
        EXPECT_EQ(calibration->host.header().currentUnit, static_cast<float>(kind->slot));
    }
    const std::string other = folder.write("a.ZQ4OA", std::string(9325, '\0'));
    EXPECT_THAT(failureOf<FileError>([&] { QuietCalibration::open(other); }),
                HasSubstr("does not begin with a unit kind"));
}

TEST(QuietCalibration, WithoutReferenceDataAnImportFailsAndSaysWhatItNeeds) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOf<Failure>(
                  [&] { QuietCalibration::importOld(folder.write("old.BIN", oldFile(2176).bytes())); }),
              "Engine 9 of the reference database is needed to convert it: There is no reference database");
}

TEST_F(ImportWithReferenceData, EngineAndSensorComeFromTheDatabase) {
    const Database database = open();
    const auto calibration =
        QuietCalibration::importOld(folder.write("old.BIN", oldFile(2176).bytes()), &database);
    Unit& unit = calibration->unit;
    EXPECT_EQ(unit.get("MAP_ID"), 2);
    EXPECT_FLOAT_EQ(unit.get("MAP_Scaler"), 0.0251F);
    EXPECT_EQ(unit.MAPUnits(), "kPa");
    EXPECT_EQ(unit.get("INJ_Mode"), 2);
    EXPECT_EQ(unit.get("PHDSEQ"), 1);
    EXPECT_EQ(unit.get("INJTBL", 0), 15);
    EXPECT_EQ(unit.get("INJTBL", 1), 240);
    EXPECT_EQ(unit.get("TOOTHMAX"), 58);
}

TEST_F(ImportWithReferenceData, APzk2TakesItsOwnEngine) {
    const Database database = open();
    LegacyFile file = oldFile(1201);
    file[355] = 14;  // two rotors
    const auto calibration = QuietCalibration::importOld(folder.write("old.BIN", file.bytes()), &database);
    EXPECT_EQ(calibration->unit.get("PHDSEQ"), 3);
    EXPECT_EQ(calibration->unit.get("TOOTHMAX"), 58);
}

}  // namespace
}  // namespace zentaq
