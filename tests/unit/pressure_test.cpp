// Volts, legacy kPa, user units and counts, for old and new firmware.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

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

TEST(PressureUnits, ACodeOutsideTheListHasNoText) {
    OrbaCalibration cal;
    cal.unit.AssignDirectIndex(99, 129);
    EXPECT_EQ(cal.unit.MAPUnits(), "");
}

// ---- Pressure cells

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

}  // namespace
}  // namespace zentaq::testing
