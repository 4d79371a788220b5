#include "live/gauges.h"

#include <gtest/gtest.h>

#include "live/calibration_fixture.h"
#include "testing/memory_settings.h"

namespace zentaq {
namespace {

constexpr float petrol = 14.7F;

TEST(NeedleAngles, TachometerHasTwoScalesAndARest) {
    EXPECT_NEAR(tachAngle(1000, 9000), -97.196, 1e-6);
    EXPECT_NEAR(tachAngle(1000, 18000), -113.098, 1e-6);
    EXPECT_EQ(tachAngle(0, 9000), -123);
    EXPECT_EQ(tachAngle(100, 9000), -123);  // -125.82
    EXPECT_NEAR(tachAngle(200, 9000), -122.6392, 1e-6);
}

TEST(NeedleAngles, AreLinearInTheirValues) {
    EXPECT_NEAR(temperatureAngle(100), 114, 1e-9);
    EXPECT_NEAR(throttleAngle(5), 27.5, 1e-9);
    EXPECT_NEAR(idleAngle(50), 196.25, 1e-9);
    EXPECT_NEAR(voltAngle(14), 207.5, 1e-9);
}

TEST(NeedleAngles, RatioHasThreeStretches) {
    EXPECT_NEAR(afrAngle(15.5F, petrol), -38.3, 1e-4);
    EXPECT_NEAR(afrAngle(14.5F, petrol), -71.65, 1e-4);
    EXPECT_NEAR(afrAngle(13, petrol), -99.32, 1e-4);
}

TEST(NeedleAngles, RatioHasGapsThatAnswerZero) {
    EXPECT_EQ(afrAngle(14, {}), 0);
    EXPECT_NEAR(afrAngle(14.99F, {}), -47.787, 1e-4);
    EXPECT_EQ(afrAngle(14.995F, {}), 0);
    EXPECT_EQ(afrAngle(15, {}), 0);
    EXPECT_NEAR(afrAngle(15.01F, {}), -39.966, 1e-4);
}

TEST(NeedleAngles, TheGapsStayWithPetrolInHand) {
    EXPECT_EQ(afrAngle(14, petrol), 0);
    EXPECT_EQ(afrAngle(15, petrol), 0);
}

TEST(NeedleAngles, RatioIsScaledToPetrolByTheFuelInHand) {
    EXPECT_NEAR(afrAngle(9, 9.8F), -93.61, 1e-3);  // 9 * 14.7 / 9.8 = 13.5
    EXPECT_NEAR(afrAngle(9, {}), -145, 1e-9);
}

TEST(RatioNeedleColour, FollowsActualAgainstDesired) {
    EXPECT_EQ(afrNeedleColour(13, 14, petrol), colours::yellow);
    EXPECT_EQ(afrNeedleColour(13.75F, 14, petrol), colours::green);
    EXPECT_EQ(afrNeedleColour(14.75F, 14, petrol), colours::red);
    EXPECT_EQ(afrNeedleColour(14, 14, petrol), colours::blue);
}

TEST(RatioNeedleColour, TheBandIsThatOfTheFuel) {
    EXPECT_EQ(afrNeedleColour(0.75F, 1, {}), colours::green);
    EXPECT_EQ(afrNeedleColour(0.75F, 1, 1.0F), colours::yellow);  // band 0.034
}

TEST(DashboardSettings, AreReadFromTheStore) {
    MemorySettings store;
    EXPECT_FALSE(DashboardSettings::from(store).CLTAlarmValue);
    EXPECT_TRUE(DashboardSettings::from(store).fahrenheit);  // only "0" is Celsius
    store.set("System", "TemperatureToggle", "0");
    EXPECT_FALSE(DashboardSettings::from(store).fahrenheit);
    store.set("System", "CLTAlarmValue", "100");
    store.set("System", "MATAlarmValue", "60.5");
    store.set("System", "TemperatureToggle", "1");
    const DashboardSettings settings = DashboardSettings::from(store);
    EXPECT_EQ(settings.CLTAlarmValue, 100.0F);
    EXPECT_EQ(settings.MATAlarmValue, 60.5F);
    EXPECT_TRUE(settings.fahrenheit);
}

class Dashboard : public testing::Test {
 protected:
    void update(int slot) {
        test::Calibration calibration(slot);
        calibration.unit.AssignDirectIndex(8500, 58);  // REV_Limiter
        calibration.unit.AssignDirectIndex(14.7F, test::afrCell);
        gauges.UPDATE_DISPLAY(live, calibration.unit, settings, 14.7F);
    }

    LiveValues live;
    DashboardSettings settings{.CLTAlarmValue = 100, .MATAlarmValue = 60};
    Gauges gauges;
};

TEST_F(Dashboard, TheRatioNeedleScalesOnlyByACalibrationInHand) {
    test::Calibration linked(3);
    linked.unit.AssignDirectIndex(7.35F, test::afrCell);  // half of petrol: the needle would show 28
    live.AAFR = 14.5F;
    gauges.UPDATE_DISPLAY(live, linked.unit, settings, {});
    EXPECT_NEAR(gauges.angle(Needle::AFR), 0.5 * 48.7 - 96, 1e-3);
    gauges.UPDATE_DISPLAY(live, linked.unit, settings, 7.35F);
    EXPECT_NEAR(gauges.angle(Needle::AFR), (29 - 15) * 3.4 - 40, 1e-3);
}

TEST_F(Dashboard, AlarmsBeginAtTheirThresholds) {
    live.CLT = 99;
    live.MAT = 60;
    update(3);
    EXPECT_FALSE(gauges.cltAlarm());
    EXPECT_TRUE(gauges.matAlarm());
    live.CLT = 100;
    live.MAT = 59;
    update(3);
    EXPECT_TRUE(gauges.cltAlarm());
    EXPECT_FALSE(gauges.matAlarm());
}

TEST_F(Dashboard, WithoutAThresholdThereIsNoAlarm) {
    settings = {};
    live.CLT = 150;
    update(3);
    EXPECT_FALSE(gauges.cltAlarm());
}

TEST_F(Dashboard, OverRevBeginsAboveTheLimiter) {
    live.RPM = 8500;
    update(3);
    EXPECT_EQ(gauges.overRevColour(), colours::black);
    live.RPM = 8501;
    update(3);
    EXPECT_EQ(gauges.overRevColour(), colours::yellow);
}

TEST_F(Dashboard, LampFollowsTheUnit) {
    live.CHKE = true;
    update(3);
    EXPECT_EQ(gauges.checkEngineColour(), colours::red);
    live.CHKE = false;
    update(3);
    EXPECT_EQ(gauges.checkEngineColour(), colours::black);
}

TEST_F(Dashboard, TheIgnitionOnlyKindLeavesTheFuelGaugesAtRest) {
    live.CLT = 150;
    live.IACP = 50;
    live.TPS = 5;
    update(5);
    EXPECT_NEAR(gauges.angle(Needle::TPS), 27.5, 1e-9);
    EXPECT_NEAR(gauges.angle(Needle::Coolant), 49.6, 1e-9);  // -40 degrees
    EXPECT_NEAR(gauges.angle(Needle::IAC), 155, 1e-9);
    EXPECT_FALSE(gauges.cltAlarm());
}

TEST_F(Dashboard, ResetPutsNeedlesToRestAndClearsAlarms) {
    live.RPM = 9000;
    live.CLT = 150;
    live.CHKE = true;
    update(3);
    gauges.Reset_Dashboard();
    EXPECT_EQ(gauges.angle(Needle::Tachometer), -123);
    EXPECT_NEAR(gauges.angle(Needle::TPS), -55, 1e-9);
    EXPECT_NEAR(gauges.angle(Needle::VOLT), 155, 1e-9);
    EXPECT_NEAR(gauges.angle(Needle::AFR), -145, 1e-9);
    EXPECT_FALSE(gauges.cltAlarm());
    EXPECT_EQ(gauges.overRevColour(), colours::black);
    EXPECT_EQ(gauges.checkEngineColour(), colours::black);
}

TEST_F(Dashboard, AlarmsFlashRedAndYellowInTurn) {
    EXPECT_EQ(gauges.flash(), colours::red);
    EXPECT_EQ(gauges.flash(), colours::yellow);
    EXPECT_EQ(gauges.flash(), colours::red);
}

TEST(RevScale, TurnsTo18000AboveALimiterOf9000) {
    test::Calibration calibration(3);
    calibration.unit.AssignDirectIndex(9000, 58);
    EXPECT_EQ(revScaleOf(calibration.unit), 9000);
    calibration.unit.AssignDirectIndex(9001, 58);
    EXPECT_EQ(revScaleOf(calibration.unit), 18000);
}

}  // namespace
}  // namespace zentaq
