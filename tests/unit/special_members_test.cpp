// Members that share, derive or repair a cell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SpecialMember : public ::testing::Test {
 protected:
    OrbaCalibration cal;
    Unit& unit = cal.unit;
    RecordingHost& host = cal.host;
};

TEST_F(SpecialMember, AnEngineThatTheReferenceDataLacksLeavesEveryToothOffset) {
    Unit lite(orbLiteKind(), host);
    lite.set("Option_Type", 77);
    lite.hasPIC18(true);
    EXPECT_EQ(lite.limits("TOFFSET1").text, "(1 to 58 Tooth OffSet)");
    EXPECT_TRUE(lite.set("TOFFSET1", 1));
    EXPECT_TRUE(lite.set("TOFFSET1", 58));
    EXPECT_FALSE(lite.set("TOFFSET1", 0));
    EXPECT_FALSE(lite.set("TOFFSET1", 59));
    lite.set("TOOTHMIN", 3);
    lite.set("TOOTHMAX", 44);
    EXPECT_EQ(lite.limits("TOFFSET1").text, "(3 to 44 Tooth OffSet)");
}

TEST_F(SpecialMember, TachPulsesSendTheWholeCodeWhoseOtherHalfNeverSends) {
    unit.ONFLY_MODE(true);
    unit.set("P2EGTP", 0x05);
    EXPECT_THAT(host.sent, IsEmpty());
    unit.set("TACHTYP", 3);
    for (const char* none : {"5", "7"}) {
        EXPECT_EQ(refusalOf(unit.set("TACHTYP", none)).text, "0,1,2,3,4 or 6 Pulses per revolution");
    }
    unit.set("TACHTYP", 0);
    // Sums 4 + 4 + 17 + 0x85 = 0x9E and 4 + 4 + 17 + 5 = 0x1E.
    EXPECT_THAT(host.sent, ElementsAre("S10411048561", "S104110405E1"));
}

TEST_F(SpecialMember, NoTachPulsesGiveBackTheEnginesCode) {
    host.engines[{3, 0}] = {.p2EgTp = 0x87};
    unit.AssignDirectIndex(0xE5, 4);
    EXPECT_TRUE(unit.set("TACHTYP", 0));
    EXPECT_EQ(unit.DirectIndex(4), 0x85);
    host.engines.clear();
    EXPECT_TRUE(unit.set("TACHTYP", 0));
    EXPECT_EQ(unit.DirectIndex(4), 0x05);
    EXPECT_EQ(unit.get("TACHTYP"), 0);
}

TEST_F(SpecialMember, ARatioThatFitsNoRecordIsStoredAndReportedAsNotSent) {
    unit.set("AFR", 40);  // (40 / 0.12 - 0.5) * 255 = 84872 has more than 16 bits
    unit.ONFLY_MODE(true);
    host.forget();
    EXPECT_TRUE(unit.set("Set_Y", 0.12, 0));
    EXPECT_THAT(host.sent, IsEmpty());
    EXPECT_THAT(host.log, ElementsAre("ONFLY Conversion/Transmission Error; Data Not Sent."));
}

TEST_F(SpecialMember, TheEighthFuelTrimSharesItsCellWithTheNotes) {
    unit.set("Set_FuelTrim", 5, 7);
    unit.NOTES_TEXT("A");
    EXPECT_EQ(unit.get("FuelTrim", 7), 65);
    unit.set("Set_FuelTrim", 10, 7);
    EXPECT_EQ(unit.NOTES_TEXT(), "\n");
}

TEST_F(SpecialMember, AnOutputThatHasItsTrimAlreadyIsNotSentAgain) {
    unit.set("CYL_Number", 6);
    unit.set("INJTRIM", 5, 0);
    unit.AssignDirectIndex(0, 526);  // outputs 0, 6 and 12 are those of the first cylinder
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("INJTRIM", 5, 0));
    EXPECT_THAT(host.sent, ElementsAre(recordOf(520, {85, 128}), recordOf(526, {85})));
}

TEST_F(SpecialMember, ATrimOfTheOnlyCylinderGoesToAllOutputs) {
    unit.set("CYL_Number", 1);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("INJTRIM", 5, 0));
    std::vector<std::string> records{recordOf(520, {85, 85})};
    for (int output = 522; output < 536; ++output) records.push_back(recordOf(output, {85}));
    EXPECT_EQ(host.sent, records);
}

TEST_F(SpecialMember, NotesBeginWithNothingThatATrimCouldBe) {
    unit.set("CYL_Number", 8);
    unit.NOTES_TEXT("\n\t\r\n\v\f Street tune\nby night");
    EXPECT_EQ(unit.NOTES_TEXT(), " Street tune\nby night");
    EXPECT_EQ(unit.DirectIndex(2327), ' ');
    unit.set("FuelTrim", 7, 7);
    unit.NOTES_TEXT("\nStreet");
    unit.Initialize_Trims();
    EXPECT_EQ(unit.DirectIndex(511), 7) << "no line break has become 10 percent";
    unit.NOTES_TEXT("\n\n");
    EXPECT_EQ(unit.DirectIndex(2327), 0);
    unit.NOTES_TEXT(std::string("\0\nRace", 6));  // the shared cell is left to the trim
    EXPECT_EQ(unit.DirectIndex(2327), 0);
    EXPECT_EQ(unit.NOTES_TEXT(), "Race");
}

TEST_F(SpecialMember, TrimsRepeatByTheNumberOfCylinders) {
    for (int i = 0; i < 8; ++i) unit.AssignDirectIndex(static_cast<float>(i + 1), 2312 + i);
    const auto outputs = [&](int cylinders) {
        unit.set("CYL_Number", cylinders);
        unit.Initialize_Trims();
        std::vector<int> trims;
        for (int i = 0; i < 16; ++i) trims.push_back(static_cast<int>(unit.DirectIndex(520 + i)));
        return trims;
    };
    EXPECT_THAT(outputs(4), ElementsAre(1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 4, 1, 2, 3, 4));
    EXPECT_THAT(outputs(6), ElementsAre(1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6, 1, 2, 3, 4));
    EXPECT_THAT(outputs(8), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(outputs(0), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_THAT(outputs(12), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8));
}

TEST_F(SpecialMember, AThirdOxygenSensorTypeLeavesTheOptionBit) {
    unit.set("EGO_Type", 2);
    unit.set("EGO_Type", 3);
    EXPECT_EQ(unit.controlByte(1), 128);
}

TEST_F(SpecialMember, AnOptionTakesAnyNumberBut0AsOn) {
    for (const Parameter& row : orbaKind().parameters) {
        if (!row.name.starts_with("opt_")) continue;
        EXPECT_TRUE(unit.set(row.name, 2)) << row.name;
        EXPECT_EQ(unit.get(row.name), 1) << row.name;
    }
}

}  // namespace
}  // namespace zentaq::testing
