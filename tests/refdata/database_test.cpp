#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "other_program.h"
#include "refdata_fixture.h"

namespace zentaq::refdata {
namespace {

class DatabaseTest : public ReferenceDatabase {
 protected:
    static MapSensorRow sensorNamed(const std::string& name) { return {0, name, 0.0333f, 0.25f, 2}; }
};

// ---- Two programs on one file

TEST_F(DatabaseTest, WhatIsReadAtOnceIsOfOneState) {
    Database database = open();
    OtherProgram other(path);
    {
        const Database::Reading reading(database);
        const std::size_t sensors = database.mapSensors().size();
        {
            const Database::Reading within(database);
            EXPECT_EQ(database.defaults("REV_Limiter").size(), 1U);
        }
        other.run("BEGIN IMMEDIATE");
        other.run("DELETE FROM MAPCals WHERE ID = 1");
        EXPECT_FALSE(other.takes("COMMIT"));
        EXPECT_EQ(database.mapSensors().size(), sensors);
        EXPECT_TRUE(database.mapSensor(1));
    }
    EXPECT_TRUE(other.takes("COMMIT"));
    EXPECT_FALSE(database.mapSensor(1));
}

TEST_F(DatabaseTest, WhatIsReadAtOnceIsNotWrittenMeanwhile) {
    Database database = open();
    {
        const Database::Reading reading(database);
        EXPECT_EQ(failureOf<Failure>([&] { database.addMapSensor(sensorNamed("New (PSIA)")); }),
                  "Reference database " + path + ": it is being read");
    }
    EXPECT_FALSE(database.mapSensorByName("New (PSIA)"));
    EXPECT_NO_THROW(database.addMapSensor(sensorNamed("New (PSIA)")));
}

TEST_F(DatabaseTest, TwoHandlesReadAndWriteSideBySide) {
    Database first = open();
    const Database second = open();
    const int id = first.addMapSensor(sensorNamed("Shared (PSIA)"));
    ASSERT_TRUE(second.mapSensor(id));
    EXPECT_EQ(second.mapSensor(id)->description, "Shared (PSIA)");
}

// ---- Engines

TEST_F(DatabaseTest, AnEngineComesWithAllItsColumns) {
    const auto engine = open().engine(3, 12);
    ASSERT_TRUE(engine);
    EXPECT_EQ(engine->orbUnit, 3);
    EXPECT_EQ(engine->orbSubType, 0);
    EXPECT_EQ(engine->optType, 12);
    EXPECT_EQ(engine->displayValue, "V-Twin 60 Degree Odd Fire, Sequential Injection");
    EXPECT_EQ(engine->ignRev, 1);
    EXPECT_EQ(engine->p1EgTp, 2 * 16 + 4) << "two coils, odd fire";
    EXPECT_EQ(engine->p2EgTp, 14 * 16 + 2) << "one tach pulse a turn, odd fire";
    EXPECT_EQ(engine->cylinders, 2);
    EXPECT_EQ(engine->engType, 0);
    EXPECT_EQ(engine->minOffset, 1);
    EXPECT_EQ(engine->maxOffset, 48);
    EXPECT_EQ(engine->offsetA, 14);
    EXPECT_EQ(engine->offsetB, 24) << "60 degrees are ten teeth";
    EXPECT_EQ(engine->injEvents, 2);
    EXPECT_EQ(engine->injMode, 0);
    EXPECT_EQ(engine->phdSeq, 3);
    EXPECT_EQ(engine->injReset, 2);
    EXPECT_EQ(engine->injTbl, (std::array<float, 8>{1, 2, 0, 0, 0, 0, 0, 0}));
    EXPECT_FALSE(engine->rotary);
    EXPECT_FALSE(engine->editDfub);
    EXPECT_EQ(engine->defaultSplit, 0);
}

TEST_F(DatabaseTest, AnUnknownEngineIsNoEngine) {
    const Database database = open();
    EXPECT_FALSE(database.engine(3, 200));
    EXPECT_FALSE(database.engine(99, 1));
    EXPECT_FALSE(database.engineByName("Steam Engine", 3));
}

TEST_F(DatabaseTest, AnEngineIsFoundByNameWithinItsKindWhateverItsCase) {
    const Database database = open();
    const auto engine = database.engineByName("2 rotor rotary, leading and trailing plugs", 4);
    ASSERT_TRUE(engine);
    EXPECT_EQ(engine->orbUnit, 4);
    EXPECT_EQ(engine->optType, 14);
    EXPECT_FALSE(database.engineByName("2 Rotor Rotary, Leading and Trailing Plugs", 6));
}

TEST_F(DatabaseTest, AnEngineNameWithAnApostropheIsFound) {
    OtherProgram(path).run(
        "INSERT INTO Engines (OrbUnit, OrbSubType, OptType, DisplayValue) VALUES (3, 0, 250, 'Pat''s V8')");
    const auto engine = open().engineByName("Pat's V8", 3);
    ASSERT_TRUE(engine);
    EXPECT_EQ(engine->optType, 250);
    EXPECT_EQ(engine->cylinders, 0) << "an empty cell reads as 0";
}

TEST_F(DatabaseTest, EachVariantSeesItsOwnEnginesAndTheCommonOnesByName) {
    const Database database = open();
    const auto options = [&](int variant) {
        std::vector<int> found;
        for (const EngineRow& engine : database.engines(3, variant)) found.push_back(engine.optType);
        return found;
    };
    EXPECT_THAT(options(1), testing::AllOf(testing::Contains(1), testing::Not(testing::Contains(16)),
                                           testing::Not(testing::Contains(18))));
    EXPECT_THAT(options(2), testing::AllOf(testing::Contains(1), testing::Contains(16), testing::Contains(17),
                                           testing::Not(testing::Contains(18))));
    EXPECT_THAT(options(3), testing::AllOf(testing::Contains(18), testing::Not(testing::Contains(16))));

    // The number of cylinders first: 4 before 12.
    const auto engines = database.engines(3, 2);
    const auto number = [](const EngineRow& row) { return std::atoi(row.displayValue.c_str()); };
    const auto before = [&](const EngineRow& a, const EngineRow& b) {
        const int left = number(a) == 0 ? 99 : number(a);
        const int right = number(b) == 0 ? 99 : number(b);
        return left != right ? left < right : a.displayValue < b.displayValue;
    };
    EXPECT_TRUE(std::is_sorted(engines.begin(), engines.end(), before));
}

// ---- Sensors

TEST_F(DatabaseTest, EverySensorIsFoundByTheValuesThatACalibrationHolds) {
    const Database database = open();
    for (const MapSensorRow& sensor : database.mapSensors()) {
        const auto exact = database.mapSensorByValues(sensor.scale, sensor.offset);
        ASSERT_TRUE(exact) << sensor.description;
        EXPECT_EQ(exact->id, sensor.id);
        const auto rounded = database.mapSensorByValues(roundTo(sensor.scale, 4), roundTo(sensor.offset, 4));
        ASSERT_TRUE(rounded) << sensor.description;
        EXPECT_EQ(rounded->id, sensor.id) << sensor.description;
    }
}

// 0.05295 lies half a step of the 4th decimal from both 0.0529 and 0.053, and either may come back.
TEST_F(DatabaseTest, TheStandardSensorIsFoundFromEitherRounding) {
    const Database database = open();
    for (const float scale : {0.0529f, 0.053f, 0.05295f}) {
        const auto sensor = database.mapSensorByValues(scale, -0.5474f);
        ASSERT_TRUE(sensor) << scale;
        EXPECT_EQ(sensor->id, 1);
    }
}

TEST_F(DatabaseTest, AWholeStepOfTheFourthDecimalIsAnotherSensor) {
    const Database database = open();
    EXPECT_FALSE(database.mapSensorByValues(0.05285f, -0.54738f));
    EXPECT_FALSE(database.mapSensorByValues(0.05295f, -0.54750f));
    EXPECT_FALSE(database.mapSensorByValues(std::nanf(""), -0.54738f));
}

TEST_F(DatabaseTest, OfTwoNearSensorsTheNearerOneIsFound) {
    Database database = open();
    database.addMapSensor({0, "Left (kPa)", 0.03001f, 0.1f, 1});
    const int right = database.addMapSensor({0, "Right (kPa)", 0.03004f, 0.1f, 1});
    EXPECT_EQ(database.mapSensorByValues(0.03003f, 0.1f)->id, right);
}

TEST_F(DatabaseTest, ASensorNameWithApostrophesAndQuotesRoundTrips) {
    Database database = open();
    const std::string name = "Bob's \"hot\" 2'5 bar; DROP TABLE MAPCals; -- (PSIA)";
    const int id = database.addMapSensor(sensorNamed(name));
    const auto sensor = database.mapSensorByName(name);
    ASSERT_TRUE(sensor);
    EXPECT_EQ(sensor->id, id);
    EXPECT_EQ(sensor->description, name);
    EXPECT_TRUE(database.deleteMapSensor(name));
    EXPECT_FALSE(database.mapSensorByName(name));
    EXPECT_TRUE(database.mapSensor(1));
}

TEST_F(DatabaseTest, AnAddedSensorLastsAndKeepsItsNumbersAsTyped) {
    const int id = open().addMapSensor({77, "Added (inHg)", 0.1793f, -0.5474f, 5});
    const auto sensor = open().mapSensor(id);
    ASSERT_TRUE(sensor);
    EXPECT_EQ(sensor->description, "Added (inHg)");
    EXPECT_EQ(sensor->scale, 0.1793f);
    EXPECT_EQ(sensor->offset, -0.5474f);
    EXPECT_EQ(sensor->units, 5);
    const std::string byText = "SELECT count(*) FROM MAPCals WHERE Scale=0.1793 AND \"Offset\"=-0.5474";
    EXPECT_EQ(OtherProgram(path).count(byText), 1) << "stored as the decimal number, not as its 32-bit form";
}

// A calibration's sensor may be one of flow, and the user may add it from there.
TEST_F(DatabaseTest, AFlowSensorIsTaken) {
    const int id = open().addMapSensor({0, "Meter (%Flow)", 0.05f, 0, 6});
    EXPECT_EQ(open().mapSensor(id)->units, 6);
}

// Calibrations hold the ID, so it must not come to mean another sensor.
TEST_F(DatabaseTest, TheIdOfADeletedSensorIsNotGivenAgain) {
    Database database = open();
    const int id = database.addMapSensor(sensorNamed("First (PSIA)"));
    database.deleteMapSensor("First (PSIA)");
    EXPECT_GT(database.addMapSensor(sensorNamed("Second (PSIA)")), id);
}

TEST_F(DatabaseTest, ASecondSensorOfANameIsRefusedWhateverItsCase) {
    Database database = open();
    const auto before = database.mapSensors().size();
    EXPECT_EQ(failureOf<Failure>([&] { database.addMapSensor(sensorNamed("1 bar (10-105 KPA)")); }),
              "There is already a sensor with that name.");
    EXPECT_EQ(database.mapSensors().size(), before);
}

TEST_F(DatabaseTest, ASensorWithoutASlopeANameOrAUnitIsRefused) {
    Database database = open();
    const auto before = database.mapSensors().size();
    EXPECT_THROW(database.addMapSensor({0, "Flat", 0, 1, 1}), Failure);
    EXPECT_THROW(database.addMapSensor({0, "Steep", INFINITY, 1, 1}), Failure);
    EXPECT_THROW(database.addMapSensor({0, "Lost", 0.05f, std::nanf(""), 1}), Failure);
    EXPECT_THROW(database.addMapSensor({0, "  ", 0.05f, 1, 1}), Failure);
    EXPECT_THROW(database.addMapSensor({0, "Odd", 0.05f, 1, 7}), Failure);
    EXPECT_EQ(database.mapSensors().size(), before);
}

TEST_F(DatabaseTest, EditingASensorRewritesItsLineAndUnit) {
    Database database = open();
    EXPECT_TRUE(database.updateMapSensor({0, "2.5 BAR (10-260 kPa)", 0.0123f, 0.5f, 3}));
    const auto sensor = database.mapSensor(6);
    ASSERT_TRUE(sensor);
    EXPECT_EQ(sensor->scale, 0.0123f);
    EXPECT_EQ(sensor->offset, 0.5f);
    EXPECT_EQ(sensor->units, 3);
    EXPECT_FALSE(database.updateMapSensor(sensorNamed("Nobody")));
    EXPECT_FALSE(database.deleteMapSensor("Nobody"));
}

// ---- Default values

TEST_F(DatabaseTest, DefaultsComeInOrderWithoutTheEmptyCells) {
    const Database database = open();
    EXPECT_EQ(database.defaults("BARO_TRIM"), (std::vector<float>{-50, -43, -35, -28, -20, -13, -5, 3}));
    EXPECT_EQ(database.defaults("KNK_MIN"), std::vector<float>{50});
    EXPECT_EQ(database.defaults("barO_trim").size(), 8u) << "names are found whatever their case";
}

TEST_F(DatabaseTest, AnUnknownSetOfDefaultsFails) {
    const Database database = open();
    EXPECT_EQ(failureOf<Failure>([&] { database.defaults("NOSUCH"); }), "Table Defaults has no set NOSUCH");
    EXPECT_THROW(database.defaults(R"(ADV" FROM Defaults; --)"), Failure);
    EXPECT_THROW(database.defaults(""), Failure);
}

TEST_F(DatabaseTest, TheSetsOfDefaultsCanBeListed) {
    EXPECT_THAT(open().defaultsSets(),
                testing::IsSupersetOf({"ADV", "VE", "MATADV_PZK2", "Initial_Advance"}));
}

// ---- Help, tips, files, scratch tables

TEST_F(DatabaseTest, HelpIsFoundByKeyWhateverItsCase) {
    const Database database = open();
    const auto help = database.help("HELPKNOCK");
    ASSERT_TRUE(help);
    EXPECT_EQ(help->key, "helpknock");
    EXPECT_EQ(help->topic, "Knock Control");
    EXPECT_FALSE(database.help("help'knock"));
}

TEST_F(DatabaseTest, TipsAreCountedFromOne) {
    const Database database = open();
    const auto tips = database.tips();
    EXPECT_EQ(database.tip(1), tips.front());
    EXPECT_EQ(database.tip(static_cast<int>(tips.size())), tips.back());
    EXPECT_THROW(database.tip(0), BoundsError);
    EXPECT_THROW(database.tip(static_cast<int>(tips.size()) + 1), BoundsError);
}

TEST_F(DatabaseTest, AFileIsRememberedOnceAndUpdated) {
    const std::string file = "/home/pat/Pat's car/street.ZQ4OA";
    Database database = open();
    EXPECT_FALSE(database.config(file));
    database.storeConfig({file, 3, "ORB A Standard"});
    database.storeConfig({file, 7, "ORB D"});
    const auto config = open().config(file);
    ASSERT_TRUE(config);
    EXPECT_EQ(config->orbUnit, 7);
    EXPECT_EQ(config->orbName, "ORB D");
    EXPECT_EQ(OtherProgram(path).count("SELECT count(*) FROM Configs"), 1);
    EXPECT_FALSE(database.config("/home/pat/Pat's car/STREET.ZQ4OA")) << "paths are compared exactly";
}

}  // namespace
}  // namespace zentaq::refdata
