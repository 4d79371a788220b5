// Members that share, derive or repair a cell.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/temperature.h"
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

    std::string refusal(const char* member, float value, int element = 0) {
        const auto outcome = unit.set(member, value, element);
        EXPECT_FALSE(outcome);
        return refusalOf(outcome).text;
    }
};

TEST_F(SpecialMember, AFreshCalibrationAnswersItsDefaults) {
    EXPECT_EQ(unit.get("AFR"), 14.64F);
    EXPECT_EQ(unit.DirectIndex(2225), 14.64F);
    EXPECT_EQ(unit.get("TPS_MARGIN_TOGGLE"), 1);
    EXPECT_EQ(unit.get("TPS_MARGIN_VALUE"), 0.08F);
    EXPECT_EQ(unit.DirectIndex(2224), 0);
    EXPECT_EQ(unit.get("MAP_BAR"), 1);
    EXPECT_EQ(unit.DirectIndex(39), 1);
    EXPECT_EQ(unit.DirectIndex(124), 1);
}

TEST_F(SpecialMember, ToothOffsetsWrapBelowZero) {
    unit.set("TOFFSET1", 14);
    unit.set("TOFFSET2", 20);
    unit.ConvertData();
    EXPECT_EQ(cal.image(5), 0);
    EXPECT_EQ(cal.image(6), 54);
    unit.ONFLY_MODE(true);
    unit.set("TOFFSET1", 20);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(5, {54})));
}

TEST_F(SpecialMember, TheFirstToothOffsetGoesFrom1To58) {
    EXPECT_TRUE(unit.set("TOFFSET1", 1));
    EXPECT_TRUE(unit.set("TOFFSET1", 58));
    EXPECT_EQ(refusal("TOFFSET1", 0.5F), "(1 to 58 Tooth OffSet)");
    EXPECT_EQ(refusal("TOFFSET1", 58.5F), "(1 to 58 Tooth OffSet)");
}

TEST_F(SpecialMember, TheFirstToothOffsetTakesTheEnginesTeethWithANewProcessor) {
    host.engines[{4, 7}] = {.toothMin = 4, .toothMax = 30};
    Unit lite(orbLiteKind(), host);
    lite.set("Option_Type", 7);
    lite.hasPIC18(true);
    EXPECT_EQ(refusalOf(lite.set("TOFFSET1", 31)).text, "(4 to 30 Tooth OffSet)");
    EXPECT_TRUE(lite.set("TOFFSET1", 30));
    lite.hasPIC18(false);
    EXPECT_TRUE(lite.set("TOFFSET1", 31));
}

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

TEST_F(SpecialMember, ARatioOfTheSensorCurveIsAbove0) {
    EXPECT_EQ(refusal("Y", 0, 3), "Value: 0 (0.12 to 29.28 AFR)");
    EXPECT_FALSE(unit.set("Y", -1, 3));
    EXPECT_TRUE(unit.set("Y", 0.12, 3));
}

TEST_F(SpecialMember, TheSecondToothOffsetStartsAtTheFirst) {
    unit.set("TOFFSET1", 12);
    EXPECT_EQ(refusal("TOFFSET2", 11), "(12 to 58 Tooth OffSet)");
    EXPECT_TRUE(unit.set("TOFFSET2", 12));
}

TEST_F(SpecialMember, TeethComeFromTheEngineOrElseFromWhatWasWritten) {
    unit.set("TOOTHMIN", 3);
    unit.set("TOOTHMAX", 44);
    EXPECT_EQ(unit.get("TOOTHMIN"), 3);
    EXPECT_EQ(unit.get("TOOTHMAX"), 44);
    host.engines[{3, 0}] = {.toothMin = 5, .toothMax = 50};
    EXPECT_EQ(unit.get("TOOTHMIN"), 5);
    EXPECT_EQ(unit.get("TOOTHMAX"), 50);
}

TEST_F(SpecialMember, CylindersAndEventsShareACell) {
    unit.ONFLY_MODE(true);
    unit.set("CYL_Number", 6);
    unit.set("INJ_Events", 3);
    EXPECT_EQ(unit.DirectIndex(8), 99);
    unit.set("CYL_Number", 8);
    EXPECT_EQ(unit.DirectIndex(8), 131);
    EXPECT_EQ(unit.get("CYL_Number"), 8);
    EXPECT_EQ(unit.get("INJ_Events"), 3);
    unit.ConvertData();
    EXPECT_EQ(cal.image(8), 131);
    EXPECT_THAT(host.sent, IsEmpty());
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("CYL_Number"), 8);
    EXPECT_EQ(unit.get("INJ_Events"), 8);
}

TEST_F(SpecialMember, TachPulsesAreCodedInTheHighNibble) {
    const std::vector<std::pair<int, int>> codes = {{1, 14}, {2, 2}, {3, 8}, {4, 3}, {6, 10}};
    unit.AssignDirectIndex(0x05, 4);
    for (const auto& [pulses, nibble] : codes) {
        EXPECT_TRUE(unit.set("TACHTYP", pulses));
        EXPECT_EQ(unit.DirectIndex(4), static_cast<float>(nibble * 16 + 5));
        EXPECT_EQ(unit.get("TACHTYP"), static_cast<float>(pulses));
    }
    EXPECT_EQ(refusal("TACHTYP", 5), "0,1,2,3,4 or 6 Pulses per revolution");
    EXPECT_EQ(refusal("TACHTYP", 7), "0,1,2,3,4 or 6 Pulses per revolution");
    EXPECT_EQ(refusalOf(unit.set("TACHTYP", 7)).warning, 1001);
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("TACHTYP"), 4);
}

TEST_F(SpecialMember, TachPulsesSendTheWholeCodeWhoseOtherHalfNeverSends) {
    unit.ONFLY_MODE(true);
    unit.set("P2EGTP", 0x05);
    EXPECT_THAT(host.sent, IsEmpty());
    unit.set("TACHTYP", 3);
    EXPECT_FALSE(unit.set("TACHTYP", 5));
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

TEST_F(SpecialMember, ABarRatingBelow4AndWholeIsTheLegacyRatingToo) {
    unit.ONFLY_MODE(true);
    for (const auto& [entry, rating] :
         std::vector<std::pair<float, float>>{{1, 1}, {2, 2}, {3, 3}, {2.5F, 4}, {4, 4}, {7, 4}, {10, 4}}) {
        EXPECT_TRUE(unit.set("MAP_BAR", entry));
        EXPECT_EQ(unit.DirectIndex(124), entry);
        EXPECT_EQ(unit.DirectIndex(39), rating);
        EXPECT_EQ(unit.get("MAP_BAR"), entry);
    }
    EXPECT_EQ(refusal("MAP_BAR", 0.5F), "(1.0 - 10.0 BAR)");
    EXPECT_EQ(refusal("MAP_BAR", 10.5F), "(1.0 - 10.0 BAR)");
    EXPECT_THAT(host.sent, IsEmpty());
    unit.set("MAP_BAR", 2);
    unit.ConvertData();
    EXPECT_EQ(cal.image(39), 2);
    EXPECT_EQ(cal.image(124), 50);
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("MAP_BAR"), 39);
    EXPECT_EQ(unit.get("MAP_DISP_MULT"), 124);
}

TEST_F(SpecialMember, TheRatingRepairsItsCells) {
    unit.AssignDirectIndex(3, 39);
    EXPECT_EQ(unit.get("MAP_BAR"), 3);
    EXPECT_EQ(unit.DirectIndex(124), 3);
}

TEST_F(SpecialMember, TheDisplayMultiplierRepairsItselfAndNeverSends) {
    EXPECT_EQ(unit.get("MAP_DISP_MULT"), 1);
    EXPECT_EQ(unit.DirectIndex(124), 1);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("MAP_DISP_MULT", 4));
    EXPECT_EQ(refusal("MAP_DISP_MULT", 11), "(1 - 10 BAR)");
    EXPECT_THAT(host.sent, IsEmpty());
}

TEST_F(SpecialMember, InitialAdvanceIsKeptWithoutTheMechanicalOffset) {
    unit.set("MOFFSET", 10);
    unit.ONFLY_MODE(true);
    EXPECT_EQ(refusal("Initial_Advance", 9), "(10 to 40 Degrees)");
    EXPECT_EQ(refusal("Initial_Advance", 41), "(10 to 40 Degrees)");
    EXPECT_TRUE(unit.set("Initial_Advance", 30));
    EXPECT_EQ(unit.DirectIndex(67), 20);
    EXPECT_EQ(unit.get("Initial_Advance"), 30);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(67, {85})));  // 20 * 4.25
    unit.ConvertData();
    EXPECT_EQ(cal.image(67), 85);
}

TEST_F(SpecialMember, TheAdvanceTableIsKeptWithoutTheMechanicalOffset) {
    unit.set("MOFFSET", 10);
    EXPECT_TRUE(unit.set("Set_ADV", 25, 17));
    EXPECT_EQ(unit.DirectIndex(656 + 17), 15);
    EXPECT_EQ(unit.get("Get_ADV", 17), 25);
    EXPECT_EQ(refusal("ADV", 9, 0), "(10 to 70 Degrees)");
    EXPECT_EQ(refusal("ADV", 70.5F, 0), "(10 to 70 Degrees)");
    unit.ConvertData();
    EXPECT_EQ(cal.image(656 + 17), 64);  // 63.75
}

TEST_F(SpecialMember, TheRatioTableIsKeptOnAFixedBase) {
    unit.set("AFR", 14.7F);
    EXPECT_TRUE(unit.set("Set_AFR", 14.7F, 3));
    EXPECT_EQ(unit.DirectIndex(1424 + 3), 14.7F);
    EXPECT_EQ(unit.get("Get_AFR", 3), 14.7F);
    unit.ConvertData();
    EXPECT_EQ(cal.image(1424 + 3), 128);  // 0.5 * 255 = 127.5
}

TEST_F(SpecialMember, ARatioRecordIsMadeOfTheEntryAndNotOfTheCell) {
    unit.set("AFR", 14.64F);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("Set_AFR", 12.5F, 0));
    EXPECT_FLOAT_EQ(unit.DirectIndex(1424), 12.551229F);  // 14.7 / 14.64 * 12.5
    EXPECT_THAT(host.sent, ElementsAre(recordOf(1424, {171})));
    unit.ConvertData();
    EXPECT_EQ(cal.image(1424), 170);
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("Get_AFR", 5), 1429);
}

TEST_F(SpecialMember, TheRatioTableGoesFromTwoThirdsToTwiceTheRatio) {
    unit.set("AFR", 10);
    EXPECT_EQ(refusal("Set_AFR", 6.6F), "(6.67 to 20 AFR)");
    EXPECT_EQ(refusal("Set_AFR", 20.1F), "(6.67 to 20 AFR)");
    EXPECT_TRUE(unit.set("Set_AFR", 20));
}

TEST_F(SpecialMember, TheSensorCurveTakesAnotherRatioOnTheFly) {
    unit.set("AFR", 12);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("Set_Y", 13.2F, 4));
    EXPECT_EQ(unit.DirectIndex(287), 13.2F);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(287, {104})));
    EXPECT_EQ(refusal("Set_Y", 29.3F, 4), "Value: 29.3 (0.12 to 29.28 AFR)");
    unit.ConvertData();
    EXPECT_EQ(cal.image(287), 155);
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("Y", 4), 287);
}

TEST_F(SpecialMember, ARatioThatFitsNoRecordIsStoredAndReportedAsNotSent) {
    unit.set("AFR", 40);  // (40 / 0.12 - 0.5) * 255 = 84872 has more than 16 bits
    unit.ONFLY_MODE(true);
    host.forget();
    EXPECT_TRUE(unit.set("Set_Y", 0.12, 0));
    EXPECT_THAT(host.sent, IsEmpty());
    EXPECT_THAT(host.log, ElementsAre("ONFLY Conversion/Transmission Error; Data Not Sent."));
}

TEST_F(SpecialMember, TheInjectorOpeningTimeIsKeptInEighths) {
    unit.set("INJ_On", 1.3F);
    EXPECT_EQ(unit.DirectIndex(150), 1.25F);
    unit.set("INJ_On", 0.0625F);  // a tie at half an eighth goes to the even one
    EXPECT_EQ(unit.DirectIndex(150), 0);
}

TEST_F(SpecialMember, TheFixedPulseSpeedIsRoundedBeforeItIsQuartered) {
    unit.set("INJFIX_RPM", 7.6F);
    unit.ConvertData();
    EXPECT_EQ(cal.image(266), 2);  // 8 / 4, not 7.6 / 4
}

TEST_F(SpecialMember, TheFixedPulseStandsUnroundedInTheImage) {
    unit.set("INJFIX_PW", 1.25F);
    unit.ONFLY_MODE(true);
    unit.set("INJFIX_PW", 1.25F);
    unit.ConvertData();
    EXPECT_EQ(cal.image(267), 12.5);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(267, {12})));  // a record takes whole numbers, ties to even
}

TEST_F(SpecialMember, NegativeBarometricTrimsAreSentAsTheirLowByte) {
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("Set_BARO_ADV", -20, 1));
    EXPECT_THAT(host.sent, ElementsAre(recordOf(127, {236})));
    unit.ConvertData();
    EXPECT_EQ(cal.image(127), -20);
}

TEST_F(SpecialMember, DutyBytesLieBetweenTheLimitsWhichAreSetWhenMissing) {
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("IAC_Start", 50));
    EXPECT_EQ(unit.get("MaxDuty"), 255);
    EXPECT_EQ(unit.get("MinDuty"), 1);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(322, {128})));  // 254 * 0.5 + 1
    unit.set("MinDuty", 55);
    EXPECT_TRUE(unit.set("Reset_Duty", 10));
    EXPECT_EQ(host.sent.back(), recordOf(309, {75}));  // 200 * 0.1 + 55
    unit.ConvertData();
    EXPECT_EQ(cal.image(309), 75);
    EXPECT_EQ(cal.image(322), 155);
    EXPECT_EQ(refusal("Reset_Duty", 0), "(1 to 100%)");
    EXPECT_EQ(refusal("IAC_Start", 101), "(1 to 100%)");
}

TEST_F(SpecialMember, TheDutyLimitsBoundEachOther) {
    EXPECT_TRUE(unit.set("MaxDuty", 200));
    EXPECT_EQ(refusal("MinDuty", 201), "(0 to 200)");
    EXPECT_TRUE(unit.set("MinDuty", 200));
    EXPECT_EQ(refusal("MaxDuty", 199), "(200 to 255)");
    EXPECT_EQ(refusal("MaxDuty", 256), "(200 to 255)");
    EXPECT_TRUE(unit.set("MaxDuty", 255));
}

TEST_F(SpecialMember, IdleTemperaturesAreEnteredInTheUsersScaleAndKeptInCelsius) {
    host.isFahrenheit = true;
    EXPECT_TRUE(unit.set("Set_ISTMP", 68, 1));
    EXPECT_EQ(unit.DirectIndex(311), 20);
    EXPECT_TRUE(unit.set("Set_ISTMP", -22, 0));
    EXPECT_EQ(unit.DirectIndex(310), -30);
    EXPECT_TRUE(unit.set("Set_ISTMP", 176, 2));
    EXPECT_EQ(unit.DirectIndex(312), 80);
    EXPECT_FALSE(unit.set("Set_ISTMP", 177, 2));
    EXPECT_FALSE(unit.set("Set_ISTMP", -23, 2));
}

TEST(Temperature, GoesThereAndBack) {
    EXPECT_EQ(toFahrenheit(20), 68);
    EXPECT_EQ(toCelsius(toFahrenheit(20)), 20);
    EXPECT_EQ(toCelsius(100), 37.78F);
}

TEST_F(SpecialMember, TheOxygenSensorTypeLosesTheOldMark) {
    unit.AssignDirectIndex(130, 2196);
    EXPECT_EQ(unit.get("EGO_Type"), 2);
    EXPECT_EQ(unit.DirectIndex(2196), 2);
    unit.AssignDirectIndex(129, 2196);
    EXPECT_EQ(unit.get("EGO_Type"), 1);
}

TEST_F(SpecialMember, TheOxygenSensorTypeMovesItsOptionBit) {
    unit.set("EGO_Type", 2);
    EXPECT_EQ(unit.controlByte(1), 128);
    unit.set("EGO_Type", 3);
    EXPECT_EQ(unit.controlByte(1), 128);
    unit.set("EGO_Type", 1);
    EXPECT_EQ(unit.controlByte(1), 0);
    EXPECT_EQ(unit.DirectIndex(2196), 1);
}

TEST_F(SpecialMember, EngineTypeAndSequenceStandInTheThirdControlByte) {
    unit.controlByte(2, 0xFF);
    unit.set("Engine_Type", 1);
    EXPECT_EQ(unit.controlByte(2), 0xEF);  // 0xCF + 32
    unit.controlByte(2, 0xFF);
    unit.set("PHDSEQ", 2);
    EXPECT_EQ(unit.controlByte(2), 0xBF);  // 0x3F + 128
    unit.set("PHDSEQ", 3);
    EXPECT_EQ(unit.controlByte(2), 0xFF);
    EXPECT_EQ(unit.get("Engine_Type"), 1);
    EXPECT_EQ(unit.get("PHDSEQ"), 3);
}

TEST_F(SpecialMember, DriverCurrentAndDecelerationCutMoveTheirBits) {
    unit.set("AMP42", 1);
    EXPECT_EQ(unit.controlByte(2), 8);
    unit.set("AMP42", 2);
    EXPECT_EQ(unit.controlByte(2), 8);
    unit.set("AMP42", 0);
    EXPECT_EQ(unit.controlByte(2), 0);
    unit.set("DCCL_CutActive", 1);
    EXPECT_EQ(unit.controlByte(0), 2);
    unit.set("DCCL_CutActive", 2);
    EXPECT_EQ(unit.controlByte(0), 0);
    EXPECT_EQ(unit.get("DCCL_CutActive"), 2);
}

TEST_F(SpecialMember, HighestBoostFollowsThePressureUnitsFromRelease3On) {
    unit.set("MAX_Boost", 290);
    unit.MAPUnits("kPa");
    EXPECT_FLOAT_EQ(unit.get("MAX_Boost"), 2.9F);
    unit.MAPUnits("PSIA");
    EXPECT_FLOAT_EQ(unit.get("MAX_Boost"), 19.994484F);
    unit.MAPUnits("PSIG");
    EXPECT_FLOAT_EQ(unit.get("MAX_Boost"), 19.994484F);
    unit.MAPUnits("mmHg");
    EXPECT_FLOAT_EQ(unit.get("MAX_Boost"), 0.386615F);
    unit.MAPUnits("inHg");
    EXPECT_FLOAT_EQ(unit.get("MAX_Boost"), 9.820521F);
    OrbaCalibration old(2);
    old.unit.set("MAX_Boost", 290);
    EXPECT_EQ(old.unit.get("MAX_Boost"), 290);
}

TEST_F(SpecialMember, TheThrottleMarginIsWhatWasWrittenOnceItsValueIsSet) {
    unit.set("TPS_MARGIN_TOGGLE", 2);
    EXPECT_EQ(unit.get("TPS_MARGIN_TOGGLE"), 1);  // no value yet
    unit.set("TPS_MARGIN_VALUE", 0.5F);
    EXPECT_EQ(unit.get("TPS_MARGIN_TOGGLE"), 2);
    EXPECT_EQ(unit.get("TPS_MARGIN_VALUE"), 0.5F);
    unit.IndexPolling(true);
    EXPECT_EQ(unit.get("TPS_MARGIN_TOGGLE"), 2);
    EXPECT_EQ(unit.get("TPS_MARGIN_VALUE"), 0.5F);
    EXPECT_EQ(unit.get("AFR"), 14.64F);
    EXPECT_EQ(unit.get("MAP_Scaler"), 0.05295F);
    EXPECT_EQ(unit.get("MAP_Offset"), -0.54738F);
    EXPECT_EQ(unit.get("MAP_ID"), 0);
}

TEST_F(SpecialMember, AFuelTrimIsWrittenTwiceAndSentFromItsImageCell) {
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("Set_FuelTrim", -4, 7));
    EXPECT_EQ(unit.DirectIndex(2327), -4);
    EXPECT_EQ(unit.DirectIndex(511), -4);
    EXPECT_EQ(unit.get("Get_FuelTrim", 7), -4);
    EXPECT_THAT(host.sent, ElementsAre(recordOf(511, {46})));
    EXPECT_EQ(refusal("FuelTrim", 15.5F), "(-15 to 15%)");
    unit.ConvertData();
    EXPECT_EQ(cal.image(511), 46);
}

TEST_F(SpecialMember, TheEighthFuelTrimSharesItsCellWithTheNotes) {
    unit.set("Set_FuelTrim", 5, 7);
    unit.NOTES_TEXT("A");
    EXPECT_EQ(unit.get("FuelTrim", 7), 65);
    unit.set("Set_FuelTrim", 10, 7);
    EXPECT_EQ(unit.NOTES_TEXT(), "\n");
}

TEST_F(SpecialMember, AnInjectorTrimIsSpreadOverItsOutputsAndSentAsAPair) {
    unit.set("CYL_Number", 8);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("Set_INJTRIM", 5, 2));
    EXPECT_EQ(unit.DirectIndex(2314), 5);
    EXPECT_EQ(unit.DirectIndex(522), 5);
    EXPECT_EQ(unit.DirectIndex(530), 5);
    EXPECT_EQ(unit.get("Get_INJTRIM", 2), 5);
    // 5 degrees are 43 counts. The pair first, then the second output of that cylinder.
    EXPECT_THAT(host.sent, ElementsAre(recordOf(522, {85, 128}), recordOf(530, {85})));
    EXPECT_EQ(refusal("INJTRIM", -15.5F), "(-15 to 15 Degrees)");
    unit.ConvertData();
    EXPECT_EQ(cal.image(522), 85);
    EXPECT_EQ(cal.image(530), 85);
}

TEST_F(SpecialMember, EveryOutputOfACylinderTakesItsTrimOnTheFly) {
    unit.set("CYL_Number", 4);
    unit.ONFLY_MODE(true);
    EXPECT_TRUE(unit.set("INJTRIM", -5, 1));  // -5 degrees: 127 + 43
    EXPECT_THAT(host.sent, ElementsAre(recordOf(521, {170, 128}), recordOf(525, {170}), recordOf(529, {170}),
                                       recordOf(533, {170})));
    std::vector<int> unitBytes(16, 128);
    for (const int output : {1, 5, 9, 13}) unitBytes[static_cast<std::size_t>(output)] = 170;
    unit.ConvertData();
    EXPECT_EQ(cal.imageBytes(520, 16), unitBytes) << "as a whole programming would leave it";
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

TEST_F(SpecialMember, TrimBytesCountAwayFrom128) {
    unit.AssignDirectIndex(15, 2312);
    unit.AssignDirectIndex(-15, 2313);
    unit.AssignDirectIndex(-5, 2314);
    unit.ConvertData();
    EXPECT_EQ(cal.imageBytes(520, 4), (std::vector<int>{0, 255, 170, 128}));
}

// ---- Option bits

struct OptionExpectation {
    const char* name;
    int byte;
    int mask;
};
class Option : public ::testing::TestWithParam<OptionExpectation> {};

TEST_P(Option, MovesItsBitAndNoOtherAndIsNeverSent) {
    const auto& [name, byte, mask] = GetParam();
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    EXPECT_EQ(cal.unit.get(name), 0);
    EXPECT_TRUE(cal.unit.set(name, 1));
    EXPECT_EQ(cal.unit.controlByte(byte), mask);
    EXPECT_EQ(cal.unit.get(name), 1);
    EXPECT_TRUE(cal.unit.set(name, 0));
    EXPECT_EQ(cal.unit.controlByte(byte), 0);
    EXPECT_TRUE(cal.unit.set(name, 2));
    EXPECT_EQ(cal.unit.get(name), 1);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    OrbA, Option,
    ::testing::Values(OptionExpectation{"opt_TDCParam1", 0, 1}, OptionExpectation{"opt_KnockActive", 0, 4},
                      OptionExpectation{"opt_FuelCut", 0, 16}, OptionExpectation{"opt_NoFuelCut", 0, 16},
                      OptionExpectation{"opt_IdleSpeed", 1, 2}, OptionExpectation{"opt_TDCParam2", 1, 4},
                      OptionExpectation{"opt_TDCParam3", 1, 8}, OptionExpectation{"opt_TachInv", 1, 16},
                      OptionExpectation{"opt_ProgCut", 1, 32}, OptionExpectation{"opt_ZeroAdv", 1, 64},
                      OptionExpectation{"opt_3Stage", 1, 64}, OptionExpectation{"opt_FullCut", 2, 1},
                      OptionExpectation{"opt_IdleMotorDeactive", 2, 2}),
    [](const auto& row) { return std::string(row.param.name); });

TEST(Options, TheAdvanceCutsClearABitOfTheThirdByte) {
    for (const char* name : {"opt_ZeroAdv", "opt_3Stage"}) {
        OrbaCalibration cal;
        cal.unit.controlByte(2, 0xFF);
        cal.unit.set(name, 1);
        EXPECT_EQ(cal.unit.controlByte(2), 0xFD);
    }
}

TEST(Options, FullCutClearsTheStagesAndTheirThresholds) {
    OrbaCalibration cal;
    cal.unit.controlByte(1, 0xFF);
    cal.unit.set("OVR1THR", 100);
    cal.unit.set("OVR2THR", 200);
    cal.unit.set("opt_FullCut", 1);
    EXPECT_EQ(cal.unit.controlByte(1), 0xBF);
    EXPECT_EQ(cal.unit.get("OVR1THR"), 0);
    EXPECT_EQ(cal.unit.get("OVR2THR"), 0);
}

TEST(Options, ControlBitsAreSetAndClearedByNumber) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.Set_Control(3, true);
    EXPECT_EQ(cal.unit.controlByte(0), 8);
    cal.unit.Set_Control(3, true);
    EXPECT_EQ(cal.unit.controlByte(0), 8);
    EXPECT_TRUE(cal.unit.Get_Control(3));
    cal.unit.Set_Control2(7, true);
    cal.unit.Set_Control3(0, true);
    EXPECT_EQ(cal.unit.controlByte(1), 128);
    EXPECT_EQ(cal.unit.controlByte(2), 1);
    EXPECT_TRUE(cal.unit.Get_Control2(7));
    EXPECT_TRUE(cal.unit.Get_Control3(0));
    cal.unit.Set_Control(3, false);
    EXPECT_FALSE(cal.unit.Get_Control(3));
    EXPECT_THAT(cal.host.sent, IsEmpty());
    cal.unit.ConvertData();
    EXPECT_EQ(cal.imageBytes(0, 3), (std::vector<int>{0, 128, 1}));
    EXPECT_EQ(cal.unit.DirectIndex(1), 128);
}

}  // namespace
}  // namespace zentaq::testing
