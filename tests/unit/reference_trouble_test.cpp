// Calibrations that have to be converted while the reference database cannot be asked: nothing is converted
// by halves, and nothing is made of what was not converted.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "unit/old_file_encoder.h"
#include "unit/reference_needed.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr const char* locked = "it is in use by another program";

class WithoutReference : public ::testing::Test {
 protected:
    /// A calibration of so old a firmware that its sensor is a rating of 2 bar.
    std::string oldRelease(float code = 2010) {
        return folder.write("Old.ZQ4OA", FileOfFloats(9.44F, code, {{39, 2}, {124, 2}, {148, 10}}).bytes());
    }
    std::string failureOf(const std::function<void()>& work) {
        try {
            work();
        } catch (const ReferenceNeeded& needed) {
            return needed.what();
        }
        return "no failure";
    }
    std::vector<float> cells() {
        std::vector<float> all;
        for (int i = 0; i < Unit::cellCount; ++i) all.push_back(unit.DirectIndex(i));
        return all;
    }

    TemporaryFolder folder;
    RecordingHost host;
    Unit unit{orbaKind(), host};
};

TEST_F(WithoutReference, AFileThatHasToBeConvertedIsNotOpenedAndTheFormerCalibrationStays) {
    host.firmwareIsKnownFromLink = true;
    unit.FW_Release(5);
    unit.AssignDirectIndex(6500, 58);
    const std::vector<float> before = cells();
    host.referenceTrouble = locked;
    EXPECT_EQ(
        failureOf([&] { unit.FileOpen(oldRelease()); }),
        "MAP sensor 2 of the reference database is needed to convert it: it is in use by another program");
    EXPECT_EQ(cells(), before);
    EXPECT_EQ(unit.facts().firmwareCode, 0);
    EXPECT_EQ(unit.FW_Release(), 5);
}

TEST_F(WithoutReference, AFileThatNeedsNoConversionOpens) {
    host.referenceTrouble = locked;
    unit.FileOpen(oldRelease());  // no unit has told its firmware: it stays one of release 2
    EXPECT_EQ(unit.FW_Release(), 2);
    EXPECT_THAT(host.informed, IsEmpty());
}

TEST_F(WithoutReference, AReleaseThatCannotBeReachedChangesNothingAndIsTold) {
    unit.FileOpen(oldRelease());
    host.firmwareIsKnownFromLink = true;
    host.referenceTrouble = locked;
    const std::vector<float> before = cells();
    unit.FW_Release(5);
    EXPECT_EQ(unit.FW_Release(), 2);
    EXPECT_EQ(cells(), before);
    EXPECT_EQ(unit.facts().firmwareCode, 2010);
    EXPECT_THAT(host.informed,
                ElementsAre("The calibration could not be brought to firmware release 5.\n"
                            "MAP sensor 2 of the reference database is needed to convert it: it is in use by "
                            "another program\n"
                            "It stays as it is, and nothing of it is sent to the unit."));
}

TEST_F(WithoutReference, NoImageIsMadeAndNothingIsSentUntilTheReleaseIsReached) {
    unit.FileOpen(oldRelease());
    for (int i = 283; i < 293; ++i) unit.AssignDirectIndex(14.64F, i);
    for (int i = 1424; i < 1680; ++i) unit.AssignDirectIndex(14.7F, i);
    host.firmwareIsKnownFromLink = true;
    unit.ONFLY_MODE(true);
    host.referenceTrouble = locked;
    unit.FW_Release(5);
    EXPECT_FALSE(unit.ONFLY_MODE());
    unit.ONFLY_MODE(true);
    unit.set("KNK_MIN", 50);
    EXPECT_THAT(host.sent, IsEmpty());
    EXPECT_THAT(failureOf([&] { unit.ConvertData(); }), HasSubstr(locked));

    // Tried again when it is needed.
    host.referenceTrouble.clear();
    host.sensors[2] = {.scale = 0.0252F, .offset = 0.2F, .unitsCode = 1};
    unit.ConvertData();
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.0252F);
    EXPECT_EQ(unit.facts().firmwareCode, 5010);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.ONFLY_MODE());
}

TEST_F(WithoutReference, AnotherFileOwesNothingOfTheFormerOnes) {
    unit.FileOpen(oldRelease());
    host.referenceTrouble = locked;
    unit.FW_Release(5);
    unit.FileOpen(oldRelease(5099));
    EXPECT_EQ(unit.FW_Release(), 5);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.ONFLY_MODE());
    EXPECT_NO_THROW(unit.settleFirmware());
}

TEST_F(WithoutReference, AFileOfTheOlderGenerationIsNotOpenedAndTheFormerCalibrationStays) {
    unit.AssignDirectIndex(6500, 58);
    const std::vector<float> before = cells();
    host.referenceTrouble = locked;
    LegacyFile file(2176);
    file[292] = 2;
    const std::string path = folder.write("old.BIN", file.bytes());
    EXPECT_THAT(failureOf([&] { unit.OldFileOpen(path); }), HasSubstr(locked));
    EXPECT_EQ(cells(), before);
}

TEST_F(WithoutReference, TheEnginesOwnTachCodeIsNotGuessed) {
    host.referenceTrouble = locked;
    unit.store("TACHTYP", 2);
    EXPECT_THROW(unit.set("TACHTYP", 0), Failure);
    EXPECT_EQ(unit.get("TACHTYP"), 2);
}

TEST_F(WithoutReference, ToothOffsetsAreShownAsTheCalibrationHasThem) {
    host.referenceTrouble = locked;
    unit.teeth({4, 20});
    EXPECT_EQ(unit.get("TOOTHMIN"), 4);
    EXPECT_EQ(unit.get("TOOTHMAX"), 20);
}

}  // namespace
}  // namespace zentaq::testing
