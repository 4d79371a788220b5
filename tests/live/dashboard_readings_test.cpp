#include "live/dashboard_readings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "live/calibration_fixture.h"

namespace zentaq {
namespace {

class Readings : public testing::Test {
 protected:
    explicit Readings(int slot = 3) : calibration(slot) {
        live.RPM = 3000;
        live.MAP = 65.9F;
        live.TPS = 0.5F;
        live.CLT = 79;
        live.PRIADV = 30.5F;
        live.SECADV = 28;
        live.EGOC = -4;
        live.EGOV = 0.45F;
        live.PRIPW = 10;
    }
    std::string text(const std::string& name) {
        const auto all = dashboardReadings(live, calibration.unit, settings);
        const DashboardReading* found = findReading(all, name);
        return found == nullptr ? "no " + name : found->text;
    }
    std::string unitOf(const std::string& name) {
        return findReading(dashboardReadings(live, calibration.unit, settings), name)->unit;
    }

    test::Calibration calibration;
    LiveValues live;
    DashboardSettings settings;
};

TEST_F(Readings, HaveFixedDecimals) {
    EXPECT_EQ(text("lblTach"), "3000");
    EXPECT_EQ(text("lblMAP"), "65.9");
    EXPECT_EQ(text("lblTPS"), "0.50");
    EXPECT_EQ(text("lblADV"), "30.5");
    EXPECT_EQ(text("lblADVSplit"), "2.5");
    EXPECT_EQ(text("lblEGOC"), "-4");
    EXPECT_EQ(text("lblEGOV"), "0.45");
    EXPECT_EQ(text("lblPPW"), "10.00");
    EXPECT_EQ(text("INJ_TOG"), "0.000");
    EXPECT_EQ(unitOf("lblMAP"), "kPa");
}

TEST_F(Readings, TemperaturesFollowTheChosenScale) {
    EXPECT_EQ(text("lblCLT"), "79");
    EXPECT_EQ(unitOf("lblCLT"), "C");
    settings.fahrenheit = true;
    EXPECT_EQ(text("lblCLT"), "174");  // 174.2
    EXPECT_EQ(unitOf("lblCLT"), "F");
    EXPECT_EQ(text("lblTemp"), "F");
}

TEST_F(Readings, AirMassTakesThePlaceOfPressure) {
    EXPECT_EQ(text("lblAMAP"), "");
    calibration.unit.Set_Control2(0, true);
    EXPECT_EQ(text("lblMAP"), "");
    EXPECT_EQ(text("lblAMAP"), "65.9");
}

TEST_F(Readings, DutyAndOffTimeFollowFromOnTimeAndSpeed) {
    // Two turns at 3000 rpm last 40 ms.
    EXPECT_EQ(text("lblPID"), "25.0");
    EXPECT_EQ(text("lblPOT"), "30.00");
    live.PRIDUTY = 31.4F;
    EXPECT_EQ(text("lblPID"), "31.4");
    live.RPM = 0;
    EXPECT_EQ(text("lblPOT"), "");
}

TEST_F(Readings, PinsFollowTheLabels) {
    calibration.unit.GPIODisplay()[2] = "ON";
    EXPECT_EQ(text("GPIO3"), "ON");
    EXPECT_EQ(text("GPIO8"), "");
    EXPECT_EQ(text("GPIO9"), "no GPIO9");
}

TEST_F(Readings, AirMassAndTheUnitOfTemperaturesAreShownOnlyWithAValue) {
    const auto shows = [&](std::string_view name, bool values = true) {
        auto all = dashboardReadings(live, calibration.unit, settings);
        if (!values) {
            for (auto& reading : all) reading.text.clear();
        }
        const auto shown = shownReadouts(all);
        return std::ranges::find(shown, name) != shown.end();
    };
    EXPECT_TRUE(shows("lblMAP"));
    EXPECT_FALSE(shows("lblAMAP"));
    EXPECT_TRUE(shows("lblTemp"));
    EXPECT_FALSE(shows("lblTemp", false));
    EXPECT_TRUE(shows("lblMAP", false));
    calibration.unit.Set_Control2(0, true);
    EXPECT_TRUE(shows("lblAMAP"));
    EXPECT_FALSE(shows("lblMAP"));
}

class IgnitionOnlyReadings : public Readings {
 protected:
    IgnitionOnlyReadings() : Readings(5) {}
};

TEST_F(IgnitionOnlyReadings, HaveNoFuelSide) {
    EXPECT_EQ(text("lblTach"), "3000");
    EXPECT_EQ(text("lblRetard"), "0.0");
    EXPECT_EQ(text("lblTFPW"), "no lblTFPW");
    EXPECT_EQ(text("lblCLT"), "no lblCLT");
}

}  // namespace
}  // namespace zentaq
