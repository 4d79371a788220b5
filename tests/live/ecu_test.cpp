#include "live/ecu.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "live/calibration_fixture.h"
#include "unit/temperature.h"

namespace zentaq {
namespace {

using test::Calibration;

TEST(Ecu, SpeedIsTheHighByteTimes256PlusTheLow) {
    EXPECT_EQ(Ecu::RPM(12, 28), "3100");
    EXPECT_EQ(Ecu::RPM(0, 0), "0");
}

TEST(Ecu, AnglesCarryOneDecimal) {
    EXPECT_EQ(Ecu::Advance(100), "23.5");  // 23.5294
    EXPECT_EQ(Ecu::Advance(2), ".5");      // 0.4706
    EXPECT_EQ(Ecu::Secondary_Advance(255), "60.0");
    EXPECT_EQ(Ecu::Knock_Retard(255), "30.0");
}

TEST(Ecu, PressureFollowsTheSensor) {
    Calibration calibration(3);
    EXPECT_EQ(Ecu::MAP(calibration.unit, 255), "104.8");    // (5 + 0.54738) / 0.05295 = 104.766
    EXPECT_EQ(Ecu::MAP(calibration.unit, 150.25), "66.0");  // (2.94608 + 0.54738) / 0.05295 = 65.976
}

TEST(Ecu, KilopascalsBecomeTheUsersUnit) {
    Calibration calibration(3);
    const auto in = [&](const char* units) {
        calibration.unit.MAPUnits(units);
        return Ecu::KPAtoUnit(calibration.unit, 100);
    };
    EXPECT_EQ(in("kPa"), "100.0");
    EXPECT_EQ(in("PSIA"), "14.5");   // 14.503
    EXPECT_EQ(in("PSIG"), "-.2");    // -0.197
    EXPECT_EQ(in("mmHg"), "750.1");  // 750.06
    EXPECT_EQ(in("inHg"), "29.5");   // 29.53
}

TEST(Ecu, AirMassAndKnockArePercentOfTheByte) {
    EXPECT_EQ(Ecu::MAF(255), "100.0");
    EXPECT_EQ(Ecu::MAF(1), ".4");
    EXPECT_EQ(Ecu::KNOCK(51), "20");
}

TEST(Ecu, TemperaturesInBothModes) {
    EXPECT_EQ(Ecu::CLT(160, TemperatureMode::Celsius), "79");      // 79.216
    EXPECT_EQ(Ecu::CLT(160, TemperatureMode::Fahrenheit), "175");  // 174.59
    EXPECT_EQ(Ecu::MAT(0, TemperatureMode::Celsius), "-40");
    EXPECT_EQ(Ecu::MAT(0, TemperatureMode::Fahrenheit), "-40");
}

TEST(Ecu, VoltsOfSensors) {
    EXPECT_EQ(Ecu::TPS(25), ".49");
    EXPECT_EQ(Ecu::EGO_Voltage(255), "5.00");
}

TEST(Ecu, BatteryScaleBelongsToTheKind) {
    EXPECT_EQ(Ecu::Voltage(Calibration(3).unit, 205), "13.8");  // 13.8236
    EXPECT_EQ(Ecu::Voltage(Calibration(4).unit, 205), "16.1");  // 16.0784
}

TEST(Ecu, PulseCountsAreCoarseOnlyInTheNarrowFrameOfKind3) {
    Calibration a(3);
    Calibration l(4);
    EXPECT_EQ(Ecu::SPW(a.unit, 1, 244, {}), "4.000");
    EXPECT_EQ(Ecu::SPW(a.unit, 1, 244, {.fastFlag = true}), ".500");
    EXPECT_EQ(Ecu::PPW(l.unit, 1, 244, {}), ".500");
    EXPECT_EQ(Ecu::PPW(l.unit, 1, 244, {.internalLog = true}), "4.000");
    EXPECT_EQ(Ecu::TFPW(a.unit, 0, 204, {}), "80");
    EXPECT_EQ(Ecu::TFPW(a.unit, 0, 204, {.fastFlag = true}), "204");
    EXPECT_EQ(Ecu::TFPW(l.unit, 1, 0, {}), "256");
}

TEST(Ecu, AirPressureCountKeepsOneToThreeDecimals) {
    EXPECT_EQ(Ecu::UAP(0, 125), "1.0");
    EXPECT_EQ(Ecu::UAP(1, 1), "2.056");
}

TEST(Ecu, RatiosAreTheInverseOfTheTargetsImageByte) {
    Calibration calibration(3);
    calibration.unit.AssignDirectIndex(14.7F, test::afrCell);
    EXPECT_EQ(Ecu::Actual_AFR(calibration.unit, 255), "9.80");
    EXPECT_EQ(Ecu::Actual_AFR(calibration.unit, 0), "29.40");
    EXPECT_EQ(Ecu::Desired_AFR(calibration.unit, 127), "14.73");  // 14.7 / 0.998039
    calibration.unit.AssignDirectIndex(1, test::afrCell);
    EXPECT_EQ(Ecu::Desired_AFR(calibration.unit, 204), ".77");  // lambda: 1 / 1.3
}

TEST(Ecu, OxygenCorrectionIsPositiveWhileFuelIsAdded) {
    EXPECT_EQ(Ecu::EGO_Correction(128), "0");
    EXPECT_EQ(Ecu::EGO_Correction(133), "5");
    EXPECT_EQ(Ecu::EGO_Correction(103), "-25");
}

TEST(Ecu, IdleMotorStandsBetweenItsLimits) {
    EXPECT_EQ(Ecu::IAC(105, 55, 255), "25");
    EXPECT_EQ(Ecu::IAC(10, 55, 255), "0");
    EXPECT_EQ(Ecu::IAC(250, 55, 155), "100");
    EXPECT_THROW(Ecu::IAC(10, 55, 55), Overflow);
}

TEST(Ecu, SecondaryAsPercentOfPrimary) {
    EXPECT_EQ(Ecu::POPD(2, 4), "50");
    EXPECT_EQ(Ecu::POPD(2, 0), "0");
}

TEST(Ecu, PinsShowWhatTheirFunctionMeans) {
    Calibration calibration(4);
    const auto shown = [&](int function, int raw) {
        return Ecu::GPIO_Display(calibration.unit, function, raw);
    };
    EXPECT_EQ(shown(0, 1), "DISABLED");
    EXPECT_EQ(shown(6, 1), "ON");
    EXPECT_EQ(shown(6, 0), "OFF");
    EXPECT_EQ(shown(8, 102), "40%");
    EXPECT_EQ(shown(21, 88), "88 MPH");
    EXPECT_EQ(shown(12, 51), "1.00 V");
    EXPECT_EQ(shown(22, 255), "5.00 V");
    EXPECT_EQ(shown(77, 9), "9");
    EXPECT_EQ(Ecu::GPIO_Display(Calibration(3).unit, 22, 255), "DISABLED");
}

TEST(Temperature, GoesThereAndBack) {
    EXPECT_EQ(toFahrenheit(20), 68);
    EXPECT_EQ(toCelsius(68), 20);
    EXPECT_EQ(toCelsius(0), -17.78F);
    EXPECT_EQ(toCelsius(toFahrenheit(20)), 20);
}

class FuelOfACell : public testing::Test {
 protected:
    FuelOfACell() : calibration(3) {
        calibration.unit.AssignDirectIndex(10, 148);        // scale1, ms
        calibration.unit.AssignDirectIndex(0.5F, 150);      // INJ_On, ms
        calibration.unit.AssignDirectIndex(20, 912 + 37);   // VE of cell 37
        calibration.unit.AssignDirectIndex(50, 1168 + 37);  // SPW of cell 37
        fullPressure = calibration.unit.MAPMax();           // 5 volts: ratio 1
    }

    Calibration calibration;
    Ecu ecu;
    float fullPressure = 0;
};

TEST_F(FuelOfACell, PulseWidthIsOnTimePlusTrimmedScale) {
    EXPECT_EQ(ecu.Injector_Pulsewidth(calibration.unit, 37, fullPressure, false), "12.50");  // 0.5 + 1.2 * 10
    EXPECT_EQ(ecu.Get_PulseWidth(37), "12.50");
}

TEST_F(FuelOfACell, StagedShareMultipliesTheWhole) {
    EXPECT_EQ(ecu.Injector_Pulsewidth(calibration.unit, 37, fullPressure, true), "6.25");
}

TEST_F(FuelOfACell, SequentialEnginesHaveTwoTurnsForOneInjection) {
    calibration.unit.AssignDirectIndex(0, 2205);  // PHDSEQ
    calibration.unit.AssignDirectIndex(3, 2202);  // Engine_Type
    ecu.Injector_Pulsewidth(calibration.unit, 37, fullPressure, false);
    EXPECT_EQ(ecu.Injector_DutyCycle(calibration.unit, 6000, 37), "63");  // 12.5 ms of 20 ms = 62.5
    EXPECT_FLOAT_EQ(ecu.dutyPercent(37), 62.5F);
    calibration.unit.AssignDirectIndex(1, 2202);
    EXPECT_EQ(ecu.Injector_DutyCycle(calibration.unit, 6000, 37), "125");
    EXPECT_EQ(ecu.Get_DutyCycle(37), "125");
}

TEST_F(FuelOfACell, TheEngineTablesSequentialEnginesHaveTwoTurnsToo) {
    calibration.unit.AssignDirectIndex(0, 2202);  // Engine_Type
    ecu.Injector_Pulsewidth(calibration.unit, 37, fullPressure, false);
    const auto dutyOfPhase = [&](float phase) {
        calibration.unit.AssignDirectIndex(phase, 2205);  // PHDSEQ
        ecu.Injector_DutyCycle(calibration.unit, 6000, 37);
        return ecu.dutyPercent(37);
    };
    EXPECT_FLOAT_EQ(dutyOfPhase(3), 62.5F);  // (6000 / 120) * 12.5 / 10
    EXPECT_FLOAT_EQ(dutyOfPhase(2), 125);    // (6000 / 60) * 12.5 / 10
    EXPECT_FLOAT_EQ(dutyOfPhase(1), 125);
    EXPECT_FLOAT_EQ(dutyOfPhase(0), 62.5F);
}

TEST_F(FuelOfACell, AHeaderOf0RpmLeavesTheDutyAsItWas) {
    ecu.Injector_Pulsewidth(calibration.unit, 37, fullPressure, false);
    ecu.Injector_DutyCycle(calibration.unit, 6000, 37);
    const float before = ecu.dutyPercent(37);
    EXPECT_THROW(ecu.Injector_DutyCycle(calibration.unit, 0, 37), Overflow);
    EXPECT_EQ(ecu.dutyPercent(37), before);
}

TEST_F(FuelOfACell, ListsEndAt255) {
    EXPECT_EQ(ecu.Get_PulseWidth(255), "0.00");
    EXPECT_THROW(ecu.Get_PulseWidth(256), BoundsError);
    EXPECT_THROW(ecu.Get_DutyCycle(-1), BoundsError);
}

}  // namespace
}  // namespace zentaq
