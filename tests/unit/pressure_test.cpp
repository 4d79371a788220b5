// Volts, legacy kPa, user units and counts, for old and new firmware.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Pressure, TheDefaultSensorOfNewFirmware) {
    OrbaCalibration cal;
    EXPECT_NEAR(cal.unit.MAPMax(), 104.77, 0.005);
    EXPECT_NEAR(cal.unit.MAPMin(), 10.34, 0.005);
    EXPECT_NEAR(cal.unit.MAPRange(), 94.43, 0.005);
    EXPECT_EQ(cal.unit.MAPPrecision(), 1);
    EXPECT_EQ(cal.unit.get("MAP_Scaler"), 0.05295F);
    EXPECT_EQ(cal.unit.get("MAP_Offset"), -0.54738F);
    EXPECT_EQ(cal.unit.get("MAPMax"), cal.unit.MAPMax());
    EXPECT_EQ(cal.unit.get("MAPPrecision"), 1);
    EXPECT_FALSE(cal.unit.set("MAPMax", 5));
}

TEST(Pressure, ABarRatingOnOldFirmware) {
    OrbaCalibration cal(2);
    EXPECT_EQ(cal.unit.MAPMax(), 104);
    EXPECT_EQ(cal.unit.MAPMin(), 1);
    cal.unit.set("MAP_BAR", 2.5F);
    EXPECT_EQ(cal.unit.MAPMax(), 260);
    EXPECT_EQ(cal.unit.MAPMin(), 2.5F);
    EXPECT_EQ(cal.unit.MAPRange(), 257.5F);
    EXPECT_FLOAT_EQ(cal.unit.pressureToRatio(130), 0.5F);
}

TEST(Pressure, SensorCellsAreReadToFourPlaces) {
    OrbaCalibration cal;
    cal.unit.set("MAP_Scaler", 0.123456F);
    cal.unit.set("MAP_Offset", 1.23456F);
    EXPECT_EQ(cal.unit.get("MAP_Scaler"), 0.1235F);
    EXPECT_EQ(cal.unit.get("MAP_Offset"), 1.2346F);
}

TEST(Pressure, VoltsAndUserUnitsFollowTheSensorsLine) {
    OrbaCalibration cal;
    cal.unit.set("MAP_Scaler", 0.02F);
    cal.unit.set("MAP_Offset", 0.5F);
    EXPECT_FLOAT_EQ(cal.unit.voltsToPressure(2.5F), 100);
    EXPECT_FLOAT_EQ(cal.unit.pressureToVolts(100), 2.5F);
    EXPECT_FLOAT_EQ(cal.unit.pressureToRatio(100), 0.5F);
    EXPECT_FLOAT_EQ(cal.unit.MAPMax(), 225);
    EXPECT_FLOAT_EQ(cal.unit.MAPMin(), -25);
}

TEST(Pressure, TheLegacyScaleIsTheSameForEveryFirmware) {
    for (const int release : {2, 5}) {
        OrbaCalibration cal(release);
        // (876 / 1024 * 204.6 + 100) * 0.1016618
        EXPECT_FLOAT_EQ(cal.unit.voltsToKPa(1), 27.959934F);
        EXPECT_NEAR(cal.unit.KpaToVolts(27.959934F), 1, 1e-6);
    }
    OrbaCalibration old(2);
    EXPECT_EQ(old.unit.voltsToPressure(1), old.unit.voltsToKPa(1));
    EXPECT_EQ(old.unit.pressureToVolts(50), old.unit.KpaToVolts(50));
}

TEST(Pressure, EachRatingHasItsGainAndZero) {
    // (K * 204.6 + L) * 0.1016618 * B at one volt
    const std::vector<std::pair<float, double>> kpaAtOneVolt = {
        {1, 27.9599337}, {2, 45.5071575}, {3, 61.9137041}, {4, 91.9861382}};
    for (const auto& [rating, kpa] : kpaAtOneVolt) {
        OrbaCalibration cal;
        cal.unit.set("MAP_BAR", rating);
        EXPECT_NEAR(cal.unit.voltsToKPa(1), kpa, 2e-5) << rating;
        EXPECT_NEAR(cal.unit.KpaToVolts(cal.unit.voltsToKPa(3.3F)), 3.3, 2e-6) << rating;
    }
}

TEST(Pressure, ARatingOf5IsABoundsError) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(5, 39);
    EXPECT_THROW(cal.unit.voltsToKPa(1), BoundsError);
    EXPECT_THROW(cal.unit.get("MAP_Default"), BoundsError);
}

TEST(Pressure, CountsAreLegacyKpaOrVolts) {
    OrbaCalibration old(2);
    EXPECT_FLOAT_EQ(old.unit.KpaToCounts(100, true), 983.65F);
    EXPECT_FLOAT_EQ(old.unit.KpaToCounts(100, false), 983.65F);
    OrbaCalibration cal;
    EXPECT_NEAR(cal.unit.KpaToCounts(27.959934F, false), 204.6, 1e-3);
    EXPECT_NEAR(cal.unit.KpaToCounts(27.959934F, true), 51.15, 1e-3);
}

TEST(Pressure, DecimalsSuitTheSpan) {
    const auto precision = [](float highest) {
        OrbaCalibration cal;
        cal.unit.set("MAP_Scaler", 5 / highest);  // five volts at the top
        return cal.unit.MAPPrecision();
    };
    EXPECT_EQ(precision(2000), 0);
    EXPECT_EQ(precision(1000), 0);
    EXPECT_EQ(precision(250), 1);
    EXPECT_EQ(precision(100), 1);
    EXPECT_EQ(precision(20), 2);
    EXPECT_EQ(precision(5), 3);
    EXPECT_EQ(precision(-5), 4);
}

TEST(PressureUnits, EveryTextHasItsCode) {
    const std::vector<std::pair<std::string, float>> codes = {{"kPa", 1},  {"PSIA", 2}, {"PSIG", 3},
                                                              {"mmHg", 4}, {"inHg", 5}, {"%Flow", 6}};
    OrbaCalibration cal;
    EXPECT_EQ(cal.unit.MAPUnits(), "kPa");
    for (const auto& [text, code] : codes) {
        cal.unit.MAPUnits(text);
        EXPECT_EQ(cal.unit.DirectIndex(129), code);
        EXPECT_EQ(cal.unit.MAPUnits(), text);
        EXPECT_EQ(cal.unit.Get_Control2(0), text == "%Flow");
    }
    cal.unit.MAPUnits("bar");
    EXPECT_EQ(cal.unit.MAPUnits(), "%Flow");
    cal.unit.AssignDirectIndex(99, 129);
    EXPECT_EQ(cal.unit.MAPUnits(), "");
}

// ---- Pressure cells

TEST(PressureCell, IsKeptOnTheLegacyScaleAndReadInUserUnits) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.set("MAP_Default", 50));
    EXPECT_FLOAT_EQ(cal.unit.DirectIndex(42), 47.535198F);
    EXPECT_EQ(cal.unit.get("MAP_Default"), 50);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(42), 107);  // 2.1001 V * 51.15
    cal.unit.IndexPolling(true);
    EXPECT_EQ(cal.unit.get("MAP_Default"), 42);
}

TEST(PressureCell, IsSentAsItsByte) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.set("MAP_Default", 50);
    cal.unit.set("EGO_MAP", 80);
    cal.unit.set("MAP_Max", 100);
    cal.unit.set("Set_MAPTBL", 80, 15);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(42, {107}), recordOf(280, {189}), recordOf(257, {243}),
                                           recordOf(654, {2, 243})));  // 755
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(280), 189);
    EXPECT_EQ(cal.image(257), 243);
    EXPECT_EQ(cal.word(654), 755);
}

TEST(PressureCell, TheRangeTextIsRoundedToTheSensorsDecimals) {
    OrbaCalibration cal;
    EXPECT_EQ(refusalOf(cal.unit.set("MAP_Default", 105)).text, "(10.3 to 104.8 kPa)");
    EXPECT_EQ(refusalOf(cal.unit.set("MAPTBL", 10.3F, 0)).text, "(10.3 to 104.8 kPa)");
    EXPECT_TRUE(cal.unit.set("MAP_Default", cal.unit.MAPMax()));
    EXPECT_TRUE(cal.unit.set("MAP_Default", cal.unit.MAPMin()));
}

TEST(PressureCell, ANewSensorReadsTheSameVolts) {
    OrbaCalibration cal;
    cal.unit.set("MAP_Default", 50);
    const float volts = cal.unit.KpaToVolts(cal.unit.DirectIndex(42));
    cal.unit.set("MAP_Scaler", 0.02F);
    cal.unit.set("MAP_Offset", 0.1F);
    EXPECT_NEAR(cal.unit.get("MAP_Default"), (volts - 0.1) / 0.02, 0.05);
}

TEST(PressureCell, OldFirmwareClampsTheByteAndKeepsTheWord) {
    OrbaCalibration cal(2);
    cal.unit.AssignDirectIndex(100, 42);
    cal.unit.AssignDirectIndex(100, 624);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(42), 255);
    EXPECT_EQ(cal.word(624), 984);
}

TEST(BoostCut, ZeroClearsItWithoutSending) {
    OrbaCalibration cal;
    cal.unit.set("MAP_Max", 100);
    cal.unit.ONFLY_MODE(true);
    EXPECT_TRUE(cal.unit.set("MAP_Max", 0));
    EXPECT_EQ(cal.unit.DirectIndex(257), 0);
    EXPECT_EQ(cal.unit.get("MAP_Max"), 0);
    EXPECT_THAT(cal.host.sent, IsEmpty());
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(257), 0);
    EXPECT_FALSE(cal.unit.set("MAP_Max", 5));
    EXPECT_EQ(cal.unit.limits("MAP_Max").text, "(10.3 to 104.8 kPa)");
}

TEST(DecelerationPressure, WithoutASensorAnyEntryStores0AndSends255) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    EXPECT_TRUE(cal.unit.set("DCCL_3", 5000));
    EXPECT_EQ(cal.unit.DirectIndex(210), 0);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(210, {255})));
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(210), 0);
}

TEST(DecelerationPressure, WithASensorItIsAPressureCell) {
    OrbaCalibration cal;
    cal.unit.set("MAP_Active", 1);
    cal.unit.ONFLY_MODE(true);
    EXPECT_FALSE(cal.unit.set("DCCL_3", 5000));
    EXPECT_TRUE(cal.unit.set("DCCL_3", 50));
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(210, {107})));
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(210), 107);
}

TEST(AccelerationPressure, IsScaledByTheSensorsSpan) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    EXPECT_EQ(refusalOf(cal.unit.set("ACE1", 3.7F)).text, "(0.05500472 to 3.663834)");
    EXPECT_TRUE(cal.unit.set("ACE1", 2));
    EXPECT_FLOAT_EQ(cal.unit.DirectIndex(199), 2.1803222F);
    EXPECT_EQ(cal.unit.get("ACE1"), 2);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(199, {82})));
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(199), 82);
    cal.unit.IndexPolling(true);
    EXPECT_EQ(cal.unit.get("ACE1"), 199);
}

}  // namespace
}  // namespace zentaq::testing
