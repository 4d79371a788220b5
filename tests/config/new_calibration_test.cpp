#include "config/new_calibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/quiet_calibration.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::IsEmpty;

class NewCalibration : public refdata::ReferenceDatabase {
 protected:
    Database database = open();
    QuietCalibration calibration{orbaKind(), &database};
    Unit& unit = calibration.unit;

    EngineRow engine(const char* name) { return database.engineByName(name, 3).value(); }
    MapSensorRow sensor(const char* name) { return database.mapSensorByName(name).value(); }

    RefusedMembers make(const char* sensorName, const EngineFigures& figures = {}) {
        startNewCalibration(unit);
        EXPECT_THAT(chooseEngine(unit, engine("4 Cylinder Coil per Plug, Sequential Injection")), IsEmpty());
        EXPECT_THAT(chooseSensor(unit, sensor(sensorName)), IsEmpty());
        return loadDefaults(unit, database, figures);
    }
};

constexpr const char* oneBar = "1 BAR (10-105 kPa)";

TEST_F(NewCalibration, TakesEveryDefaultValueWithTheStandardSensor) {
    EXPECT_THAT(make(oneBar), IsEmpty());
    EXPECT_THAT(calibration.host.refusals(), IsEmpty());
}

TEST_F(NewCalibration, TakesEveryDefaultValueWithEverySensorOfTheList) {
    for (const MapSensorRow& row : database.mapSensors()) {
        EXPECT_THAT(make(row.description.c_str()), IsEmpty()) << row.description;
    }
}

TEST_F(NewCalibration, TakesEveryEngineOfTheList) {
    for (const EngineRow& row : database.engines(3, 2)) {
        startNewCalibration(unit);
        EXPECT_THAT(chooseEngine(unit, row), IsEmpty()) << row.displayValue;
        EXPECT_EQ(unit.get("CYL_Number"), row.cylinders) << row.displayValue;
        EXPECT_EQ(unit.get("INJ_Events"), row.injEvents) << row.displayValue;
        EXPECT_EQ(unit.get("TOFFSET2"), row.offsetB) << row.displayValue;
    }
}

TEST_F(NewCalibration, CopiesTheEngineRowMemberByMember) {
    startNewCalibration(unit);
    chooseEngine(unit, engine("V6 90 Degree Odd Fire, Sequential Injection"));
    EXPECT_EQ(unit.get("Option_Type"), 8);
    EXPECT_EQ(unit.get("IGN_REV"), 3);
    EXPECT_EQ(unit.get("P1EGTP"), 100);
    EXPECT_EQ(unit.get("P2EGTP"), 130);
    EXPECT_EQ(unit.DirectIndex(8), 6 * 16 + 6);  // cylinders and events share a cell
    EXPECT_EQ(unit.get("TOFFSET1"), 14);
    EXPECT_EQ(unit.get("TOFFSET2"), 19);
    EXPECT_EQ(unit.get("INJ_Reset"), 6);
    EXPECT_EQ(unit.get("INJTBL", 5), 32);
    EXPECT_EQ(unit.controlByte(2), 3 * 64);  // PHDSEQ 3 in the upper two bits
}

TEST_F(NewCalibration, KnowsTheRatingOfASensorFromItsSpan) {
    startNewCalibration(unit);
    const std::pair<const char*, float> rows[] = {{oneBar, 1},
                                                  {"2 BAR (9-208 kPa)", 2},
                                                  {"2.5 BAR (10-260 kPa)", 2.5F},
                                                  {"3 BAR (-14.5 to 31.1 PSIG)", 3},
                                                  {"1 BAR (3.1-30.9 inHg)", 1}};
    for (const auto& [name, bar] : rows) {
        chooseSensor(unit, sensor(name));
        EXPECT_FLOAT_EQ(unit.get("MAP_BAR"), bar) << name;
    }
}

TEST_F(NewCalibration, ReplacesAFormerCalibrationWhole) {
    unit.Set_Control(5, true);
    unit.AssignDirectIndex(77, 2210);
    make(oneBar);
    EXPECT_FALSE(unit.Get_Control(5));
    EXPECT_EQ(unit.DirectIndex(2210), 0);
}

TEST_F(NewCalibration, GetsTheFirmwareOfItsKindWhenNoneIsKnown) {
    make(oneBar);
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.FW_Build(), 99);
    EXPECT_EQ(calibration.host.header().firmwareCode, 5099);
    EXPECT_EQ(calibration.host.header().fileState, "NEW");
}

TEST_F(NewCalibration, KeepsTheFirmwareThatAUnitHasTold) {
    unit.FW_Release(4);
    unit.FW_Build(12);
    startNewCalibration(unit);
    EXPECT_EQ(unit.FW_Release(), 4);
    EXPECT_EQ(calibration.host.header().firmwareCode, 4012);
}

TEST_F(NewCalibration, SpreadsTheSpeedAxisInEqualStepsUpToTheRevLimit) {
    EXPECT_THAT(newSpeedAxis(8000, 16), ElementsAre(500, 1000, 1500, 2000, 2500, 3000, 3500, 4000, 4500, 5000,
                                                    5500, 6000, 6500, 7000, 7500, 8000));
    make(oneBar, {.revLimit = 6400});
    EXPECT_EQ(unit.get("RPMTBL", 0), 400);
    EXPECT_EQ(unit.get("RPMTBL", 15), 6400);
    EXPECT_EQ(unit.get("REV_Limiter"), 6400);
}

TEST_F(NewCalibration, SpreadsThePressureAxisUpToTheAtmosphereAndTheBoost) {
    make("2.5 BAR (10-260 kPa)", {.maxBoost = 120});
    // 0.02 V/kPa - 0.2 V: 221.325 kPa are 4.2265 V; a sixteenth of that is 23.208 kPa.
    EXPECT_THAT(unit.get("MAPTBL", 0), FloatNear(23.2F, 0.001F));
    EXPECT_THAT(unit.get("MAPTBL", 15), FloatNear(221.3F, 0.001F));
}

TEST_F(NewCalibration, EndsThePressureAxisAtTheSensorWhenTheBoostGoesBeyond) {
    make(oneBar, {.maxBoost = 50});
    // The sensor reads back with 4 decimals: (5 + 0.5474) / 0.0529 = 104.87 kPa.
    EXPECT_THAT(unit.get("MAPTBL", 15), FloatNear(104.9F, 0.001F));
}

TEST_F(NewCalibration, AGaugeSensorsAxisEndsAtTheBoostItself) {
    make("3 BAR (-14.5 to 31.1 PSIG)", {.maxBoost = 15});
    EXPECT_THAT(unit.get("MAPTBL", 15), FloatNear(15, 0.01F));
}

TEST_F(NewCalibration, AnAirFlowUnitsAxisEndsAtTheSensor) {
    startNewCalibration(unit);
    chooseSensor(unit, sensor(oneBar));
    unit.MAPUnits("%Flow");
    EXPECT_FLOAT_EQ(newPressureAxis(unit, 0, 16).back(), unit.MAPMax());
}

TEST_F(NewCalibration, CarriesPressuresOfTheDefaultsIntoTheSensorsUnit) {
    make("1 BAR (1.5-15.2 PSIA)");
    // 85 kPa * 14.696 / 101.325 = 12.328 PSIA
    EXPECT_THAT(unit.get("EGO_MAP"), FloatNear(12.33F, 0.001F));
    // 0.8 kPa * 14.696 / 101.325 = 0.116: a rate, so the zero of the unit does not count
    EXPECT_THAT(unit.get("ACE1"), FloatNear(0.116F, 0.001F));
    make("2 BAR (-13.4 to 15.5 PSIG)");
    EXPECT_THAT(unit.get("EGO_MAP"), FloatNear(12.33F - 14.70F, 0.01F));
}

TEST_F(NewCalibration, KeepsNoOverboostCutAsNone) {
    make("1 BAR (1.5-15.2 PSIA)");
    EXPECT_EQ(unit.get("MAP_Max"), 0);
}

TEST_F(NewCalibration, TakesTheBlendCurveOfTheCamshaft) {
    make(oneBar);
    EXPECT_EQ(unit.get("LOWBLD", 0), 0);
    make(oneBar, {.raceCam = true});
    EXPECT_EQ(unit.get("LOWBLD", 0), 70);
    EXPECT_EQ(unit.get("CAMSTL"), 1);
}

TEST_F(NewCalibration, KeepsTheRatioTableOnItsBaseOf14_7) {
    make(oneBar);
    EXPECT_FLOAT_EQ(unit.DirectIndex(1424), 14);
    EXPECT_FLOAT_EQ(unit.get("AFR"), 14.64F);
    EXPECT_FLOAT_EQ(unit.get("Get_AFR", 0), 14 * 14.64F / 14.7F);
}

TEST_F(NewCalibration, GivesTheOutputTablesTheAxesOfTheMainTables) {
    make(oneBar);
    for (const char* table : {"GPO1", "GPO2"}) {
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 16);
        EXPECT_EQ(unit.Get_GPO_Stop(15, "X-Axis", table), 7000);
        EXPECT_FLOAT_EQ(unit.Get_GPO_Stop(3, "Y-Axis", table), unit.get("MAPTBL", 3));
    }
}

TEST_F(NewCalibration, AShorterTableSpreadsItsAxisOverItsOwnColumns) {
    make(oneBar, {.revLimit = 8000, .rows = 12, .columns = 8});
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 12);
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("VE", "COLS"), 8);
    EXPECT_EQ(unit.get("RPMTBL", 7), 8000);
    EXPECT_EQ(unit.get("RPMTBL", 8), 8000);
}

TEST_F(NewCalibration, SetsThePinsAndTheOptionBits) {
    make(oneBar);
    EXPECT_EQ(unit.Get_GPIOFUNC(0), 0);
    EXPECT_EQ(unit.Get_GPIOFUNC(3), 0);
    EXPECT_EQ(unit.Get_GPIOFUNC(4), 22);
    EXPECT_EQ(unit.Get_GPIOFUNC(7), 22);
    EXPECT_TRUE(unit.Get_Control(1));  // deceleration cut in use
    EXPECT_EQ(unit.get("opt_3Stage"), 1);
    EXPECT_EQ(unit.get("BARO_TRIM", 7), 3);
}

TEST_F(NewCalibration, IdleTemperaturesStayTheSameForATunerWhoReadsFahrenheit) {
    class FahrenheitHost : public QuietHost {
     public:
        using QuietHost::QuietHost;
        bool fahrenheit() const override { return true; }
    } host(&database);
    Unit other(orbaKind(), host);
    startNewCalibration(other);
    chooseSensor(other, sensor(oneBar));
    EXPECT_THAT(loadDefaults(other, database, {}), IsEmpty());
    EXPECT_NEAR(other.DirectIndex(312), 75, 0.01);  // cells hold Celsius
}

TEST_F(NewCalibration, SendsNothingThoughAUnitTakesChangesOnTheFly) {
    unit.ONFLY_MODE(true);
    make(oneBar);
    EXPECT_THAT(calibration.host.records(), IsEmpty());
    EXPECT_TRUE(unit.ONFLY_MODE());
}

TEST_F(NewCalibration, NamesAMemberThatRefusesAndGoesOn) {
    const RefusedMembers refused = make(oneBar, {.revLimit = 500});
    EXPECT_THAT(refused, ElementsAre("REV_Limiter"));  // 1000 to 20000
    EXPECT_EQ(unit.get("MAFMax"), 8000);
}

}  // namespace
}  // namespace zentaq
