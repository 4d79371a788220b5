// Parameter rows of the input/output manager: texts, units, and the cell that each row edits.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/gpio_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using Rows = std::vector<std::string>;

/// "mode|unit|parameter" of each row of a function. The pressure unit is PSIA, the range -10 to 90.
Rows rowsOf(int function, int slot = 3, int release = 5, int build = 99) {
    GpioCalibration cal(slot, release, build);
    cal.plainSensor("PSIA");
    return cal.rows(1, function);
}

struct FunctionRows {
    int function;
    Rows rows;
};

// From release 5 on, on every kind.
const std::vector<FunctionRows> newestRows = {
    {0, {"No Options to Configure||-1"}},
    {2,
     {"MAP above which Auxiliary Fuel Pump Control is ON|PSIA|4",
      "RPM below which Auxiliary Fuel Pump Control is OFF|RPM|0"}},
    {3,
     {"Temp above which FAN Thermo Control is ON|°C|0", "Temp below which FAN Thermo Control is OFF|°C|1",
      "Trigger on CLT or MAT 0 = CLT, 1 = MAT|CLT/MAT|2"}},
    {4,
     {"MAP above which Intake Runner Control is ON|PSIA|4",
      "RPM above which Intake Runner Control is ON|RPM|0"}},
    {5, {"MAP above which Nitrous Control is ON|PSIA|4", "RPM above which Nitrous Control is ON|RPM|0"}},
    {6, {"RPM above which Shift Light is ON|RPM|0"}},
    {7,
     {"Speed Above which TCC is ON|MPH|0", "Speed Below which TCC is OFF|MPH|1",
      "MAP Above which TCC is OFF|PSIA|2", "MAP Below which TCC is ON|PSIA|4",
      "Speed Input for Speed Reference |Spd In|6"}},
    {8, {"GPO Frequency (30, 60)|Hz (Cycles per sec)|1", "Table Select (1 or 2)|TBL|0", "Edit Table||-1"}},
    {9,
     {"RPM Above which GPO is ON|RPM|0", "RPM Above which GPO is OFF|RPM|2",
      "MAP Above which GPO is ON|PSIA|4", "MAP Above which GPO is OFF|PSIA|6"}},
    {10,
     {"RPM Above which GPO is ON|RPM|0", "RPM Above which GPO is OFF|RPM|2",
      "MAP Above which GPO is ON|PSIA|4", "MAP Above which GPO is OFF|PSIA|6"}},
    {11, {"Configured with Idle Speed||-1"}},
    {12,
     {"Max Positive Fuel Trim (0 to 50%)|GAMA Enrich|0", "Max Negative Fuel Trim (-50% to -1)|GAMA Lean|1"}},
    {13, {"Amount of Idle RPM to Increase Under Load 0-4000|Kickup RPM|0"}},
    {14, {"Max Valet Speed Limit 0-255|MPH|0", "Max Valet RPM Limit 1500-11000|Valet RPM|1"}},
    {15,
     {"RPM Above Which DataLogging Will Begin 0-20000|RPM|0",
      "Internal DataLog Samples per second 5,10,20|Samp. per sec|2", "Retrieve Datalog from unit||-1"}},
    {16, {"Amount of Negative Advance (-30 to -1)|Deg Ret|0", "Amount of Added Advance (1 to 30)|Deg Adv|1"}},
    {17, {"Max Positive Duty Cycle (0% to 50%)||0", "Max Negative Duty Cycle (-50% to -1%)||1"}},
    {18, {"Max Positive Duty Cycle (0% to 50%)||0", "Max Negative Duty Cycle (-50% to -1%)||1"}},
    {19, {"Amount of Negative Advance (-30 to -1)|Deg Ret|0"}},
    {20,
     {"Desired amount of Advance (30 to -30)|Deg Adv/Ret|0",
      "Time delay before retarding timing (0 to 10 steps of .005)|Seconds|2",
      "Time to hold retard (0 to 10 steps of .005)|Seconds|4",
      "Time to ramp in retard (0 to 10 steps of .005)|Seconds|6",
      "Active on Volts or Ground 0 = active high, 1 = active low|High/Low|1"}},
    {21,
     {"Tire Diameter in Inches (i.e. 27.2)|inches|3", "Final Drive Axle Ratio (i.e. 4:1)||4",
      "Number of Sensor Pulses Per Revolution (0 to 60)||5",
      "Pulses Per Mile (Enter New or use Calculated Value)||0"}},
    {22, {"No Options to Configure||-1"}},
    {23,
     {"Time to cut igntion (0 to 1000)|ms|0",
      "Time delay between completed cut and next cut (0 to 1000)|ms|1",
      "Minimum RPM to allow ignition cut (0 to 12000)|RPM|2",
      "Minimum MAP to allow ignition cut (-10 to 90)|PSIA|4",
      "Active on Volts or Ground 0 = active high, 1 = active low|High/Low|6"}},
    {24, {"No Options to Configure||-1"}},
    {25,
     {"D1 - Initial dutycycle (Held from 0 to S1) 0 - 100%|%|4",
      "S1 - Speed at which output begins ramping to D2 0 - 255|MPH|0", "D2 - Dutycycle at S2 0 - 100%|%|5",
      "S2 - Second speed change point (begin ramp to D3) 0 - 255|MPH|1", "D3 - Dutycycle at S3 0 - 100%|%|6",
      "S3 - Third speed change point (begin ramp to D4) 0 - 255|MPH|2",
      "D4 - Dutycycle at S4 and beyond 0 - 100%|%|7", "S4 - Final Speed change point 0 - 255|MPH|3"}},
    {99, {"No Options to Configure||-1"}},
};

TEST(GpioRows, OfEveryFunctionOnEveryKind) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const auto& [function, rows] : newestRows) {
            EXPECT_THAT(rowsOf(function, slot), ElementsAreArray(rows)) << slot << " function " << function;
        }
    }
}

TEST(GpioRows, OfTheAirConditionerHaveAHysteresisOnTheOrbC) {
    for (const int slot : {3, 4, 5, 7, 8}) {
        EXPECT_THAT(rowsOf(1, slot), ElementsAre("MAP above which A/C Control is OFF|PSIA|6",
                                                 "RPM above which A/C Control is OFF|RPM|2"));
    }
    EXPECT_THAT(rowsOf(1, 6), ElementsAre("MAP above which A/C Control is OFF|PSIA|6",
                                          "RPM above which A/C Control is OFF|RPM|2",
                                          "RPM Hysteresis (0 to 250)|Hys. RPM|4"));
}

TEST(GpioRows, TheInvertedIdleOutputOfTheOrbCIsConfiguredElsewhere) {
    EXPECT_THAT(rowsOf(29, 6), ElementsAre("Configured with Idle Speed||-1"));
    EXPECT_THAT(rowsOf(29, 3), ElementsAre("No Options to Configure||-1"));
}

TEST(GpioRows, OfAFullTableOfferTheFrequenciesThatTheFirmwareKnows) {
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{0, 0}, {1, 99}, {2, 6}}) {
        EXPECT_EQ(rowsOf(8, 3, release, build).front(), "GPO Frequency (60, 120)|Hz|1");
    }
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{2, 7}, {3, 0}, {5, 99}}) {
        EXPECT_EQ(rowsOf(8, 3, release, build).front(), "GPO Frequency (30, 60)|Hz (Cycles per sec)|1");
    }
}

TEST(GpioRows, OfTimedAdvanceHaveThreeGenerations) {
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{1, 99}, {2, 17}}) {
        EXPECT_THAT(rowsOf(20, 3, release, build),
                    ElementsAre("Desired amount of Advance (30 to -30)|Deg Adv/Ret|0",
                                "Time to fully advance/retard timing (0 to 2 steps of .05)|Secs|1",
                                "Time to fully restore timing (0 to 2 steps of .05)|Secs|2"));
    }
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{2, 18}, {3, 0}, {4, 99}}) {
        EXPECT_THAT(rowsOf(20, 3, release, build),
                    ElementsAre("Desired amount of Advance (30 to -30)|Deg Adv/Ret|0",
                                "Time to fully advance/retard timing (0 to 10 steps of .05)|Seconds|3",
                                "Time to fully restore timing (0 to 10 steps of .05)|Seconds|5"));
    }
    EXPECT_EQ(rowsOf(20, 3, 5, 0).size(), 5U);
    EXPECT_EQ(rowsOf(20, 4, 7, 99).size(), 5U);
}

TEST(GpioRows, OfBoostControlHaveTwoGenerations) {
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{3, 99}, {4, 2}}) {
        EXPECT_THAT(
            rowsOf(25, 3, release, build),
            ElementsAre("Speed at which boost begins to Rise 0 - 255|MPH|0",
                        "Speed at which boost is at Max 0 - 255|MPH|1", "Minimum dutycycle 0 - 100%|%|2",
                        "Maximum dutycycle 0 - 100%|%|3", "Speed Input for Speed Reference |Spd In|4"));
    }
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{4, 3}, {5, 0}}) {
        EXPECT_EQ(rowsOf(25, 3, release, build).size(), 8U);
    }
}

TEST(GpioRows, ShowTheCellThatTheyEdit) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot);
        for (int p = 0; p < 8; ++p) cal.unit.Set_GPIO_Param(1, p, 10.5F + static_cast<float>(p));
        for (const int function : {14, 15, 20, 21, 25}) {
            for (const GpioParamRow& row : cal.model.Show_GPIO_Param(1, function)) {
                const std::string expected =
                    row.parameter < 0 ? "" : std::to_string(10 + row.parameter) + ".5";
                EXPECT_EQ(row.value, expected) << slot << " " << row.mode;
            }
        }
    }
}

TEST(GpioRows, KeepTheSystemsTrailingBlankApartFromTheHint) {
    GpioCalibration cal(3);
    const auto rows = cal.model.Show_GPIO_Param(0, 14);
    EXPECT_EQ(rows.at(0).label, "Max Valet Speed Limit");
    EXPECT_EQ(rows.at(1).label, "Max Valet RPM Limit ");
    EXPECT_EQ(rows.at(1).hint, "1500-11000");
}

TEST(GpioRows, TellWhichOnesAreActions) {
    GpioCalibration cal(3);
    EXPECT_EQ(cal.model.Show_GPIO_Param(0, 8).at(2).form, GpioRowForm::EditTable);
    EXPECT_EQ(cal.model.Show_GPIO_Param(4, 15).at(2).form, GpioRowForm::Retrieve);
    EXPECT_EQ(cal.model.Show_GPIO_Param(4, 22).at(0).form, GpioRowForm::Notice);
}

TEST(GpioRows, TemperaturesFollowTheUsersScale) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 3);
    cal.unit.Set_GPIO_Param(0, 0, 90);
    cal.host.isFahrenheit = true;
    const auto rows = cal.model.Show_GPIO_Param(0, 3);
    EXPECT_EQ(rows.at(0).value, "194");  // 90 * 9 / 5 + 32
    EXPECT_EQ(rows.at(0).unit, "°F");
    EXPECT_EQ(rows.at(1).value, "32");
    EXPECT_EQ(rows.at(2).value, "0");
    EXPECT_EQ(rows.at(0).limits.text, "(-40 to 302 °F)");
}

// 27.959934 of the unit's own kPa are one volt. The sensor gives one volt at (1 - 0.5) / 0.05 = 10 PSIA.
constexpr float oneVoltKpa = 27.959934F;

TEST(GpioRows, PressuresFollowTheUsersSensor) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot);
        cal.plainSensor("PSIA");
        cal.unit.Set_GPIO_Func(1, 5);
        EXPECT_EQ(cal.model.Show_GPIO_Param(1, 5).at(0).value, "0") << "never set";
        cal.unit.Set_GPIO_Param(1, 4, oneVoltKpa);
        EXPECT_EQ(cal.model.Show_GPIO_Param(1, 5).at(0).value, "10") << slot;
        cal.unit.Set_GPIO_Param(1, 4, 0);
        EXPECT_TRUE(cal.model.enter(1, 0, "10"));
        EXPECT_NEAR(cal.unit.Get_GPIO_Param(1, 4), oneVoltKpa, 1e-3) << slot;
    }
}

TEST(GpioRows, PressuresOfOldFirmwareAreKpaAsTheyStand) {
    GpioCalibration cal(3, 2, 99);
    cal.unit.Set_GPIO_Func(0, 5);
    EXPECT_TRUE(cal.model.enter(0, 0, "80"));
    EXPECT_NEAR(cal.unit.Get_GPIO_Param(0, 4), 80, 1e-3);
    EXPECT_EQ(cal.model.Show_GPIO_Param(0, 5).at(0).value, "80");
}

TEST(GpioRows, StayLiveUntilTheManagerCloses) {
    GpioCalibration cal(3);
    EXPECT_FALSE(cal.model.parametersLive());
    cal.model.Show_GPIO_Param(0, 6);
    EXPECT_TRUE(cal.model.parametersLive());
    cal.model.CloseGPIO();
    EXPECT_FALSE(cal.model.parametersLive());
}

}  // namespace
}  // namespace zentaq::testing
