#include "config/new_calibration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <set>

#include "base/errors.h"
#include "base/rounding.h"
#include "config/quiet_calibration.h"
#include "other_program.h"
#include "refdata/refdata_fixture.h"
#include "refdata/schema.h"
#include "single_defaults.h"
#include "unit/gpio_functions.h"
#include "unit/gpio_pins.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::FloatNear;
using ::testing::IsEmpty;

constexpr const char* oneBar = "1 BAR (10-105 kPa)";
constexpr const char* fourCylinders = "4 Cylinder Coil per Plug, Sequential Injection";
constexpr const char* rotary = "2 Rotor Rotary, Leading and Trailing Plugs";

class NewCalibration : public refdata::ReferenceDatabase {
 protected:
    Database database = open();
    QuietCalibration calibration{orbaKind(), &database};
    Unit& unit = calibration.unit;

    EngineRow engine(const char* name) { return database.engineByName(name, 3).value(); }
    MapSensorRow sensor(const char* name) { return database.mapSensorByName(name).value(); }

    RefusedMembers fill(Unit& of, const EngineRow& engineRow, const char* sensorName,
                        const EngineFigures& figures = {}) {
        startNewCalibration(of);
        EXPECT_THAT(chooseEngine(of, engineRow), IsEmpty());
        EXPECT_THAT(chooseSensor(of, sensor(sensorName)), IsEmpty());
        return loadDefaults(of, database, figures);
    }
    RefusedMembers make(const char* sensorName, const EngineFigures& figures = {},
                        const char* engineName = fourCylinders) {
        return fill(unit, engine(engineName), sensorName, figures);
    }
};

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
    EXPECT_EQ(calibration.unit.facts().firmwareCode, 5099);
    EXPECT_EQ(calibration.host.header().fileState, "NEW");
}

TEST_F(NewCalibration, KeepsTheFirmwareThatAUnitHasTold) {
    unit.FW_Release(4);
    unit.FW_Build(12);
    startNewCalibration(unit);
    EXPECT_EQ(unit.FW_Release(), 4);
    EXPECT_EQ(calibration.unit.facts().firmwareCode, 4012);
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
    class FahrenheitHost : public DatabaseHost {
     public:
        using DatabaseHost::DatabaseHost;
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

/// A model of the list and what its new calibrations are made from.
struct Model {
    const UnitKind& kind;
    int variant = 0;
};
const std::vector<Model>& models() {
    static const std::vector<Model> all = {{orbaKind(), 1}, {orbaKind(), 2}, {orbaKind(), 3}, {orbLiteKind()},
                                           {pzk2Kind()},    {orbdKind()},    {orbd6Kind()},   {orbcKind()}};
    return all;
}
std::string nameOf(const Model& model) {
    return std::string(model.kind.className) + " " + std::to_string(model.kind.slot) + "/" +
           std::to_string(model.variant);
}

/// The members with an element outside the limits in force, each with its first such value.
std::vector<std::string> outsideTheirRange(Unit& unit) {
    std::vector<std::string> found;
    for (const Parameter& row : unit.kind().parameters) {
        if (row.readOnly) continue;
        for (int i = 0; i < row.count; ++i) {
            const float value = unit.read(row, i);
            // Some limits let a certain value through, such as 0 for "none".
            const RangeOf* range = std::get_if<RangeOf>(&row.range);
            const Limits limits = range != nullptr ? (*range)(unit, i, value) : unit.limits(row.name, i);
            // Pressures and ratios read back rounded.
            const float slack = 0.0001F * std::max(std::abs(limits.minimum), std::abs(limits.maximum));
            if (limits.unlimited() || (value >= limits.minimum - slack && value <= limits.maximum + slack))
                continue;
            found.push_back(std::string(row.name) + "[" + std::to_string(i) + "] " + std::to_string(value) +
                            " " + limits.text);
            break;
        }
    }
    return found;
}

class NewCalibrationOfModels : public NewCalibration {
 protected:
    void expectKeepsToItsRanges(const Model& model, const EngineRow& engineRow, const char* sensorName,
                                float boost) {
        SCOPED_TRACE(nameOf(model) + ", " + engineRow.displayValue + ", " + sensorName);
        EngineFigures figures = startingFigures(database, model.kind);
        figures.maxBoost = boost;
        QuietCalibration one(model.kind, &database);
        EXPECT_THAT(fill(one.unit, engineRow, sensorName, figures), IsEmpty());
        EXPECT_THAT(outsideTheirRange(one.unit), IsEmpty());
        EXPECT_NO_THROW(one.unit.ConvertData());
    }
};

TEST_F(NewCalibrationOfModels, WithEachEngineAndSensorKeepsToEveryRangeAndMakesAnImage) {
    struct Sensor {
        const char* name;
        float boost;
    };
    const std::array<Sensor, 2> sensors{{{oneBar, 0}, {"3 BAR (-14.5 to 31.1 PSIG)", 15}}};
    int made = 0;
    for (const Model& model : models()) {
        for (const EngineRow& engine : database.engines(model.kind.engines, model.variant)) {
            for (const Sensor& with : sensors) {
                expectKeepsToItsRanges(model, engine, with.name, with.boost);
                ++made;
            }
        }
    }
    EXPECT_GT(made, 500);
}

TEST_F(NewCalibrationOfModels, TakesEverySensorOfTheList) {
    for (const Model& model : models()) {
        const EngineRow engine = database.engines(model.kind.engines, model.variant).front();
        for (const MapSensorRow& row : database.mapSensors())
            expectKeepsToItsRanges(model, engine, row.description.c_str(), 0);
    }
}

/// The database as another program may change it: one value of one set is another, within its limits.
class ChangedSet {
 public:
    ChangedSet(const std::string& path, const refdata::DefaultsSet& set, const std::vector<float>& values)
        : name_(set.name), row_(set.ascending ? values.size() / 2 : 0), kept_(values.at(row_)), file_(path) {
        file_.run("PRAGMA synchronous = OFF");
        const auto lowest = static_cast<float>(set.minimum);
        if (set.ascending) {
            changed = values[row_ - 1] + (values[row_ + 1] - values[row_ - 1]) / 4;
        } else if (kept_ == lowest || kept_ == 0) {
            changed = static_cast<float>(set.maximum);
        } else if (kept_ - lowest > 2) {
            // Half of it, which a member that counts in powers of two takes as well.
            changed = std::max(std::floor(kept_ / 2), lowest);
        } else {
            changed = kept_ - lowest == 1 ? lowest : (kept_ + lowest) / 2;
        }
        store(changed);
    }
    ChangedSet(const ChangedSet&) = delete;
    ChangedSet& operator=(const ChangedSet&) = delete;
    ~ChangedSet() { store(kept_); }

    float changed = 0;

 private:
    void store(float value) {
        file_.run("UPDATE Defaults SET \"" + name_ + "\" = " + std::to_string(value) +
                  " WHERE rowid = " + std::to_string(row_ + 1));
    }

    std::string name_;
    std::size_t row_;
    float kept_;
    OtherProgram file_;
};

/// Everything that the defaults lead to on a kind: the figures offered, and the cells of a calibration with a
/// street cam and of one with a race cam, of a rotary engine where the kind runs one, both with boost.
std::vector<float> outcome(const UnitKind& kind, const Database& database) {
    EngineFigures figures = startingFigures(database, kind);
    std::vector<float> all = {figures.revLimit, figures.fullScalePulse, figures.openingTime,
                              figures.injectors};
    figures.maxBoost = 15;
    for (const bool raceCam : {false, true}) {
        figures.raceCam = raceCam;
        QuietCalibration one(kind, &database);
        startNewCalibration(one.unit);
        constexpr int wastedSpark = 1;
        constexpr int twoRotors = 14;
        const auto engine = raceCam ? database.engine(kind.engines, twoRotors) : std::nullopt;
        chooseEngine(one.unit, engine ? *engine : database.engine(kind.engines, wastedSpark).value());
        chooseSensor(one.unit, database.mapSensorByName("3 BAR (-14.5 to 31.1 PSIG)").value());
        loadDefaults(one.unit, database, figures);
        for (int byte = 0; byte < 3; ++byte) all.push_back(one.unit.controlByte(byte));
        for (int cell = 0; cell < kind.orbFileLength; ++cell) all.push_back(one.unit.DirectIndex(cell));
    }
    return all;
}

TEST_F(NewCalibration, FollowsEachSetOfTheDefaultsOnTheKindsThatItIsFor) {
    std::map<int, std::vector<float>> before;
    for (const UnitKind& kind : unitKinds()) before[kind.slot] = outcome(kind, database);
    for (const refdata::DefaultsSet& set : refdata::defaultsSets()) {
        // Curves of sensors are there to be chosen, later.
        if (set.name.starts_with("EGO1 ") || set.name.starts_with("EGO2 ")) continue;
        const ChangedSet change(path, set, database.defaults(set.name));
        bool ofOneKind = false;
        for (const UnitKind& kind : unitKinds()) {
            const std::string_view suffix = kind.defaultsSuffix;
            if (suffix.empty() || !set.name.ends_with(suffix)) continue;
            ofOneKind = true;
            EXPECT_NE(outcome(kind, database), before[kind.slot]) << set.name << " slot " << kind.slot;
        }
        const bool onMain = outcome(orbaKind(), database) != before[orbaKind().slot];
        EXPECT_EQ(onMain, !ofOneKind) << set.name;
    }
}

TEST_F(NewCalibration, TakesEachSingleNumberFromTheDefaults) {
    for (const refdata::DefaultsSet& set : refdata::defaultsSets()) {
        if (std::ranges::find(singleDefaults, set.name) == singleDefaults.end()) continue;
        const ChangedSet change(path, set, database.defaults(set.name));
        make(oneBar);
        EXPECT_NEAR(unit.get(set.name), change.changed, 0.051) << set.name;
    }
}

TEST_F(NewCalibration, HasEverySingleNumberOnEveryKindWithAFuelSideAndTheIgnitionOnesOnThePzk2) {
    std::set<std::string> lacking;
    for (const char* member : singleDefaults) {
        EXPECT_EQ(database.defaults(member).size(), 1U) << member;
        for (const UnitKind* kind : {&orbaKind(), &orbLiteKind(), &orbcKind(), &orbdKind(), &orbd6Kind()}) {
            EXPECT_TRUE(QuietCalibration(*kind).unit.has(member)) << member << " slot " << kind->slot;
        }
        if (!QuietCalibration(pzk2Kind()).unit.has(member)) lacking.insert(member);
    }
    const std::set<std::string> fuelAndIdle = {
        "TBSOFF",     "ACE0",           "ACE1",           "ACE2",     "ACE3",     "ACE4",
        "ACE5",       "ACE6",           "ACE7",           "ACCL_PW",  "ACCL_TM",  "SEPW",
        "SECLT",      "ASE0",           "ASE1",           "DCCL_0",   "DCCL_1",   "DCCL_3",
        "DCCL_4",     "MAP_Max",        "BSTCTTM",        "CONDIV",   "AVRDIV",   "Register_Number",
        "EGO_LMT",    "EGO_RPM",        "EGO_MAP",        "EGO_TMP",  "EGO_RPML", "EGO_HighVoltage",
        "EGO_Type",   "NEGPGAIN",       "EGO_LowVoltage", "POSPGAIN", "NEGDGAIN", "POSDGAIN",
        "Reset_Duty", "IAC_RPM_HI",     "IAC_RPM_LO",     "MinDuty",  "MaxDuty",  "IAC_Start",
        "EGO_SUD",    "DCCL_CutActive", "EGO_FailTime",   "MAFMax"};
    EXPECT_EQ(lacking, fuelAndIdle);
}

TEST_F(NewCalibration, TakesTheValuesOfItsOwnKindAndElseThePlainOnes) {
    const auto idleOf = [&](const UnitKind& kind) {
        QuietCalibration one(kind, &database);
        fill(one.unit, database.engine(kind.engines, 1).value(), oneBar);
        return std::make_pair(one.unit.get("ISRPM", 2), one.unit.get("KNK_MIN"));
    };
    EXPECT_EQ(idleOf(orbaKind()), std::make_pair(850.0F, 50.0F));
    EXPECT_EQ(idleOf(orbLiteKind()), std::make_pair(900.0F, 50.0F));
    EXPECT_EQ(idleOf(orbcKind()), std::make_pair(800.0F, 50.0F));
    EXPECT_EQ(idleOf(orbdKind()), std::make_pair(1100.0F, 50.0F));
    EXPECT_EQ(idleOf(orbd6Kind()), std::make_pair(1100.0F, 50.0F));
}

TEST_F(NewCalibration, OffersTheFiguresOfItsKind) {
    EXPECT_EQ(startingFigures(database, orbaKind()).revLimit, 7000);
    EXPECT_EQ(startingFigures(database, orbaKind()).fullScalePulse, 8);
    EXPECT_EQ(startingFigures(database, orbaKind()).openingTime, 1);
    EXPECT_EQ(startingFigures(database, orbaKind()).injectors, 4);
    EXPECT_EQ(startingFigures(database, orbcKind()).injectors, 6);
    EXPECT_EQ(startingFigures(database, pzk2Kind()).revLimit, 6000);
    EXPECT_EQ(startingFigures(database, orbd6Kind()).revLimit, 8000);
}

TEST_F(NewCalibration, OfAnIgnitionOnlyUnitIsTimedForAClassicEngine) {
    QuietCalibration one(pzk2Kind(), &database);
    fill(one.unit, database.engine(5, 1).value(), oneBar, startingFigures(database, pzk2Kind()));
    for (int cell = 0; cell < 256; ++cell) {
        EXPECT_GE(one.unit.get("ADV", cell), 8) << cell;
        EXPECT_LE(one.unit.get("ADV", cell), 38) << cell;
    }
    // 6000 RPM: all of the weights; at 20 kPa all of the vacuum can, at full load none.
    EXPECT_EQ(one.unit.get("ADV", 15), 38);
    EXPECT_EQ(one.unit.get("ADV", 255), 30);
    EXPECT_EQ(one.unit.get("Initial_Advance"), 8);
}

TEST_F(NewCalibration, ReadsTheTablesBetweenTheCellsOfTheDefaults) {
    make(oneBar, {.revLimit = 8000});
    // 16.0 kPa are 1/3 on the way from 14 to 20, where the lines are alike; at 1500 RPM 24.5 degrees.
    EXPECT_EQ(unit.get("ADV", 2), 24.5F);
    // 21.72 kPa: VE at 500 RPM is -27 at 20 kPa and -25 at 26 kPa, so -26.4.
    EXPECT_EQ(unit.get("VE", 16), -26);
    make(oneBar, {.revLimit = 12000});
    // 750 RPM, halfway from 12.5 to 16.5 degrees.
    EXPECT_EQ(unit.get("ADV", 0), 14.5F);
    // 9000 RPM and beyond are as the last column, 44 degrees.
    EXPECT_EQ(unit.get("ADV", 15), 44);
}

TEST_F(NewCalibration, WithBoostIsRetardedAndRich) {
    make("2.5 BAR (10-260 kPa)", {.maxBoost = 120});
    // The last line lies 120 kPa above the atmosphere: at 7000 RPM 17 degrees less than 30.5, and 11.4 to 1.
    EXPECT_EQ(unit.get("ADV", 255), 13.5F);
    EXPECT_FLOAT_EQ(unit.DirectIndex(1424 + 255), 11.4F);
    EXPECT_EQ(unit.get("ADV", 240), 6) << "no less than the least";
    for (int row = 1; row < 16; ++row) {
        for (int column = 0; column < 16; ++column) {
            const int cell = row * 16 + column;
            EXPECT_LE(unit.get("ADV", cell), unit.get("ADV", cell - 16)) << cell;
            if (unit.get("MAPTBL", row) <= 101.4F) continue;
            EXPECT_LE(unit.DirectIndex(1424 + cell), 13.0F) << cell;
            EXPECT_GE(unit.get("VE", cell), unit.get("VE", cell - 16)) << cell;
            const float boost = unit.get("MAPTBL", row) - 101.3F;
            EXPECT_LE(unit.get("ADV", cell), std::max(6.0F, 32.5F - boost / 8)) << cell;
        }
    }
}

TEST_F(NewCalibration, WithoutBoostIsNeitherRetardedNorEnriched) {
    make("3 BAR (1-316 kPa)");
    // 101.3 kPa at 7000 RPM: 34 at 92, 32.5 at 98 and 31 at 104 kPa in the column of 7000.
    EXPECT_NEAR(unit.get("ADV", 255), 31.5F, 0.5);
    EXPECT_NEAR(unit.DirectIndex(1424 + 255), 12.5F, 0.11);
}

TEST_F(NewCalibration, ARotaryEngineHasLessAdvanceThanAPistonEngineAndASplit) {
    make(oneBar, {.revLimit = 8000});
    std::vector<float> piston;
    for (int cell = 0; cell < 256; ++cell) piston.push_back(unit.get("ADV", cell));
    EXPECT_EQ(unit.get("SPLITBL", 0), 0);
    EXPECT_THAT(make(oneBar, {.revLimit = 8000}, rotary), IsEmpty());
    for (int cell = 0; cell < 256; ++cell) {
        const auto place = static_cast<std::size_t>(cell);
        EXPECT_EQ(unit.get("ADV", cell), std::max(piston[place] - 8, 6.0F)) << cell;
    }
    // Full load at 8000 RPM, 101.3 kPa: 32.5 degrees at 98 kPa and 31 at 104, so 31.5; of these 8 less.
    EXPECT_EQ(unit.get("ADV", 255), 23.5F);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(unit.get("SPLITBL", i), 10) << i;
}

TEST_F(NewCalibration, ADualPlugPistonEngineHasItsUsualSplitAndTheAdvanceOfAnyOther) {
    make(oneBar);
    const float full = unit.get("ADV", 255);
    make(oneBar, {}, "4 Cylinder Dual Plug Wasted Spark, Paired Injection");
    EXPECT_EQ(unit.get("ADV", 255), full);
    EXPECT_EQ(unit.get("SPLITBL", 7), 4);
}

TEST_F(NewCalibration, TheSplitOfTheDefaultsGoesOnTopOfTheEnginesUpToItsRange) {
    OtherProgram(path).run(
        "UPDATE Defaults SET SPLITBL = 2 WHERE rowid = 1;"
        "UPDATE Defaults SET SPLITBL = 25 WHERE rowid = 2");
    EXPECT_THAT(make(oneBar, {}, rotary), IsEmpty());
    EXPECT_EQ(unit.get("SPLITBL", 0), 12);
    EXPECT_EQ(unit.get("SPLITBL", 1), 30);  // 0 to 30 degrees
    EXPECT_EQ(unit.get("SPLITBL", 2), 10);
}

TEST_F(NewCalibration, TheStandardSensorIsNotTakenForBrokenOnADayOfHighPressure) {
    make(oneBar);
    // 104 kPa: 0.05295 * 104 - 0.54738 = 4.9594 V
    EXPECT_GT(unit.get("MAP_FailHigh"), 4.9594F);
    // In the unit one count of 255 below the 5 V that a short to the supply gives: 4.98 * 51 = 254.
    EXPECT_EQ(toInt16(unit.get("MAP_FailHigh") * 51), 254);
}

TEST_F(NewCalibration, AnAxisBeginsAboveNoPressureAtAll) {
    for (const MapSensorRow& row : database.mapSensors()) {
        startNewCalibration(unit);
        chooseSensor(unit, row);
        const auto axis = newPressureAxis(unit, 0, 16);
        const float vacuum = row.units == 3 ? -14.696F : 0;
        EXPECT_GE(axis.front(), vacuum) << row.description;
        EXPECT_TRUE(std::ranges::is_sorted(axis, std::less_equal<>())) << row.description;
        EXPECT_EQ(std::ranges::adjacent_find(axis), axis.end()) << row.description;
    }
    startNewCalibration(unit);
    chooseSensor(unit, sensor("1 Bar Absolute, 0.5-4.5 V from 0 to 100 kPa (-12 to 112 kPa)"));
    EXPECT_THAT(newPressureAxis(unit, 0, 16).front(), FloatNear(101.325F / 16, 0.01F));
}

TEST_F(NewCalibration, SetsEachPinToAFunctionOfItsOwnSide) {
    for (const Model& model : models()) {
        QuietCalibration one(model.kind, &database);
        fill(one.unit, database.engine(model.kind.engines, 1).value(), oneBar);
        for (const GpioPin& pin : model.kind.pins->rows) {
            const int code = one.unit.Get_GPIOFUNC(pin.pin);
            constexpr int unusedInput = 22;
            if (pin.side == GpioSide::Input) {
                EXPECT_EQ(code, unusedInput) << nameOf(model) << " pin " << pin.pin;
            } else {
                const GpioFunction* function = gpioFunctionOf(model.kind.pins->kind, code);
                ASSERT_NE(function, nullptr) << nameOf(model) << " pin " << pin.pin;
                EXPECT_NE(function->side, GpioSide::Input) << nameOf(model) << " pin " << pin.pin;
            }
        }
    }
}

TEST_F(NewCalibration, OfTheSecondOrbDFindsItsEngines) {
    const int engines = orbd6Kind().engines;
    const auto engine8 = database.engineByName("4 Cylinder Wasted Spark, Paired Injection", engines);
    ASSERT_TRUE(engine8);
    EXPECT_EQ(engine8->orbUnit, 7);
    EXPECT_EQ(database.engine(engines, 12)->displayValue, "V-Twin 60 Degree Odd Fire, Sequential Injection");
    QuietCalibration one(orbd6Kind(), &database);
    startNewCalibration(one.unit);
    EXPECT_THAT(chooseEngine(one.unit, database.engine(engines, 12).value()), IsEmpty());
    EXPECT_EQ(one.unit.get("TOOTHMAX"), 48);
}

TEST_F(NewCalibration, StopsAtATableOfTheDefaultsThatIsNotWhole) {
    OtherProgram(path).run("UPDATE Defaults SET ADV = NULL WHERE rowid = 200");
    EXPECT_EQ(refdata::failureOf<Failure>([&] { make(oneBar); }),
              "Set ADV of table Defaults has 255 values, not 256");
    EXPECT_EQ(unit.ONFLY_MODE(), false);
}

TEST_F(NewCalibration, NamesAMemberThatRefusesAndGoesOn) {
    const RefusedMembers refused = make(oneBar, {.revLimit = 500});
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].name, "REV_Limiter");
    EXPECT_EQ(refused[0].why.text, "(1000 to 20000 RPM)");
    EXPECT_EQ(unit.get("MAFMax"), 8000);
}

TEST_F(NewCalibration, AStopThatAnOutputTableRefusesIsNamedOnceAndTheOtherAxisKeepsItsOwn) {
    startNewCalibration(unit);
    chooseEngine(unit, engine(fourCylinders));
    chooseSensor(unit, sensor(oneBar));
    // The axis refuses its top and keeps what it has, which is no stop either.
    unit.AssignDirectIndex(30000, unit.find("RPMTBL")->cell(15));
    const RefusedMembers refused = loadDefaults(unit, database, {.revLimit = 60000});
    for (const char* table : {"GPO1", "GPO2"}) {
        EXPECT_EQ(std::ranges::count(refused, table, &RefusedMember::name), 1) << table;
        EXPECT_EQ(unit.Get_GPO_Stop(15, "X-Axis", table), 0) << table;
        EXPECT_EQ(unit.Get_GPO_Stop(15, "Y-Axis", table), 0) << table;
        EXPECT_NE(unit.Get_GPO_Stop(14, "Y-Axis", table), 0) << table;
    }
}

}  // namespace
}  // namespace zentaq
