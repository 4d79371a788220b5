#include "config/database_host.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/quiet_calibration.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

using refdata::failureOf;
using refdata::TemporaryFolder;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class DatabaseHostTest : public ::testing::Test {
 protected:
    QuietCalibration calibration{orbaKind()};
    DatabaseHost& host = calibration.host;
    Unit& unit = calibration.unit;

    std::string refusalOf(std::string_view member, const Entry& value) {
        return failureOf<Refused>([&] { setOrThrow(unit, member, value); });
    }
};

TEST_F(DatabaseHostTest, ARefusedValueThrowsTheWarningWithItsRangeAndChangesNothing) {
    setOrThrow(unit, "KNK_MIN", 40);
    EXPECT_EQ(refusalOf("KNK_MIN", 101), "Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.");
    EXPECT_THAT(refusalOf("KNK_MIN", "fifty"), HasSubstr("Warning 1000: Data Input Error"));
    EXPECT_THAT(refusalOf("KNK_MIN", "  "), HasSubstr("Warning 1005: Data Input Error"));
    EXPECT_EQ(refusalOf("CONDIV", 3), "Warning 1001: Data Input Error: 2,4,8,16,32 or 64 - Invalid Entry.");
    EXPECT_EQ(unit.get("KNK_MIN"), 40);
}

TEST_F(DatabaseHostTest, AValueAtEitherEndOfItsRangeIsTaken) {
    setOrThrow(unit, "KNK_MIN", 2);
    EXPECT_EQ(unit.get("KNK_MIN"), 2);
    setOrThrow(unit, "KNK_MIN", 100);
    EXPECT_EQ(unit.get("KNK_MIN"), 100);
}

TEST_F(DatabaseHostTest, ANumberThatFitsNoFloatIsAnOverflow) {
    EXPECT_THROW(setOrThrow(unit, "BHP", "1e39"), Overflow);
    EXPECT_EQ(unit.get("BHP"), 0);
}

TEST_F(DatabaseHostTest, AMemberThatTheKindLacksIsNamed) {
    EXPECT_EQ(failureOf<NoSuchMember>([&] { setOrThrow(unit, "KNK_MEAN", 1); }),
              "ORB A has no member KNK_MEAN");
}

TEST_F(DatabaseHostTest, ADerivedMemberCannotBeSet) {
    EXPECT_THROW(setOrThrow(unit, "MAPMax", 200), NoSuchMember);
}

TEST_F(DatabaseHostTest, WhatIsIgnoredIsNamed) {
    EXPECT_NO_THROW(throwIfRefused({}, "BHP", "5"));
    EXPECT_EQ(failureOf<Refused>([] { throwIfRefused(EntryOutcome::ignored(), "GPO1.X-Axis", "5"); }),
              "GPO1.X-Axis does not take 5");
}

TEST_F(DatabaseHostTest, ABasicFigureTakesWhatItsCellHoldsThoughItsLimitsHaveMoved) {
    constexpr int flowCell = 2206;
    unit.set("CYL_Number", 4);
    unit.set("INJ_Number", 4);
    unit.set("PHDSEQ", 1);
    unit.set("REV_Limiter", 6000);
    unit.set("BHP", 200);
    unit.AssignDirectIndex(20, flowCell);
    // (0.4 + 0.0125 * 4) * 200 / 4 = 22.5 lb/hr; of 10 ms a turn 1.2 are dead: 22.5 * 10 / 8.8
    EXPECT_EQ(refusalOf("INJ_FlowRate", 21),
              "Warning 1001: Data Input Error: (25.57 to 500 Lbs/hr) - Invalid Entry.");
    EXPECT_NO_THROW(setOrThrow(unit, "INJ_FlowRate", "20"));
    EXPECT_EQ(unit.DirectIndex(flowCell), 20);
}

TEST_F(DatabaseHostTest, AFigureThatSharesItsCellIsNotTakenForTheCell) {
    constexpr int cylindersAndEvents = 8;
    unit.AssignDirectIndex(68, cylindersAndEvents);  // 4 * 16 + 4
    EXPECT_EQ(refusalOf("CYL_Number", 68), "Warning 1001: Data Input Error: (0 to 15) - Invalid Entry.");
    EXPECT_EQ(unit.DirectIndex(cylindersAndEvents), 68);
}

TEST_F(DatabaseHostTest, RecordsAreKeptInOrder) {
    unit.ONFLY_MODE(true);
    setOrThrow(unit, "CYL_OvrThr", 20);  // 20 * 4 = 80 = 0x50 at 0x1141
    setOrThrow(unit, "CYL_CutDly", 10);  // 0x0A at 0x1142: 4 + 0x11 + 0x42 + 0x0A = 0x61
    EXPECT_THAT(host.records(), ElementsAre("S10411415059", "S10411420A9E"));
}

TEST_F(DatabaseHostTest, WithoutADatabaseWhatNeedsAnEngineOrASensorFails) {
    EXPECT_EQ(failureOf<Failure>([&] { host.engine(3, 1); }), "There is no reference database");
    EXPECT_EQ(failureOf<Failure>([&] { host.mapSensor(1); }), "There is no reference database");
}

TEST_F(DatabaseHostTest, TheReasonWhyThereIsNoDatabaseIsPassedOn) {
    const auto locked = []() -> const Database& { throw Failure("it is in use by another program"); };
    DatabaseHost other{DatabaseSource(std::function<const Database&()>(locked))};
    EXPECT_EQ(failureOf<Failure>([&] { other.mapSensor(1); }), "it is in use by another program");
}

class FileKinds : public ::testing::Test {
 protected:
    TemporaryFolder folder;

    std::string openFailure(const std::string& content) {
        const std::string path = folder.file("x.ZQ4OA");
        refdata::writeFile(path, content);
        return failureOf<FileError>([&] { QuietCalibration::open(path); });
    }
};

TEST_F(FileKinds, AFileShorterThanItsHeaderOrWithoutAUnitKindIsNoCalibration) {
    for (const char* content : {"12345678901", "This is a letter to a friend."})
        EXPECT_THAT(openFailure(content), HasSubstr("is no calibration file")) << content;
}

TEST_F(FileKinds, AMissingFileIsNamed) {
    const std::string path = folder.file("missing.ZQ4OA");
    EXPECT_THAT(failureOf<FileError>([&] { QuietCalibration::open(path); }), HasSubstr(path));
}

TEST_F(FileKinds, ASavedCalibrationComesBackWithItsKindAndValues) {
    const std::string path = folder.file("Back again.ZQ4OA");
    QuietCalibration made(orbaKind());
    setOrThrow(made.unit, "KNK_MIN", 33);
    made.unit.BinFile(path);
    made.unit.SaveFile();
    const auto opened = QuietCalibration::open(path);
    EXPECT_EQ(opened->unit.kind().model, "ORB A");
    EXPECT_EQ(opened->unit.get("KNK_MIN"), 33);
    EXPECT_EQ(opened->unit.BiName(), "Back again              ");
}

}  // namespace
}  // namespace zentaq
